#include "Fake3D.h"

#include "FakeBuffer.h"
#include "FakeDevice.h"
#include "FakeState.h"

#include <cfloat>

namespace fakeds
{

namespace
{

bool inRange(D3DVALUE value, D3DVALUE low, D3DVALUE high)
{
    return value >= low && value <= high;
}

} // namespace

// ---- IDirectSound3DBuffer ------------------------------------------------------------------

Fake3DBuffer::Fake3DBuffer(FakeState& state, FakeBuffer& owner)
    : FakeObject(state, static_cast<IDirectSound3DBuffer*>(this), "IDirectSound3DBuffer"), owner_(owner)
{
}

HRESULT Fake3DBuffer::QueryInterface(REFIID riid, void** out)
{
    return queryThrough(owner_.queryMethod(), riid, out,
                        [this](REFIID id, void** result) { return owner_.query(id, result); });
}

ULONG Fake3DBuffer::AddRef()
{
    return addRef();
}

ULONG Fake3DBuffer::Release()
{
    return release();
}

template <class T>
HRESULT Fake3DBuffer::get(const char* method, T* out, T DS3DBUFFER::*field)
{
    Entry call = enter(method, args(out));
    if (call.refused())
        return call.refusal();
    if (!out)
        return call.finish(DSERR_INVALIDPARAM);
    *out = owner_.spatial().set.*field;
    return call.finish(DS_OK);
}

template <class Edit>
HRESULT Fake3DBuffer::set(const char* method, std::vector<std::uintptr_t> arguments, DWORD apply,
                          bool valid, Edit edit)
{
    Entry call = enter(method, std::move(arguments));
    if (call.refused())
        return call.refusal();
    if (!valid || !isValidApply(apply))
        return call.finish(DSERR_INVALIDPARAM);
    if (owner_.spatial().change(apply, edit))
        owner_.device().noteDeferred();
    return call.finish(DS_OK);
}

HRESULT Fake3DBuffer::GetAllParameters(LPDS3DBUFFER parameters)
{
    Entry call = enter("IDirectSound3DBuffer::GetAllParameters", args(parameters));
    if (call.refused())
        return call.refusal();
    if (!parameters || parameters->dwSize != sizeof(DS3DBUFFER))
        return call.finish(DSERR_INVALIDPARAM);
    *parameters = owner_.spatial().set;
    return call.finish(DS_OK);
}

HRESULT Fake3DBuffer::GetConeAngles(LPDWORD inside, LPDWORD outside)
{
    Entry call = enter("IDirectSound3DBuffer::GetConeAngles", args(inside, outside));
    if (call.refused())
        return call.refusal();
    if (!inside || !outside)
        return call.finish(DSERR_INVALIDPARAM);
    *inside = owner_.spatial().set.dwInsideConeAngle;
    *outside = owner_.spatial().set.dwOutsideConeAngle;
    return call.finish(DS_OK);
}

HRESULT Fake3DBuffer::GetConeOrientation(LPD3DVECTOR orientation)
{
    return get("IDirectSound3DBuffer::GetConeOrientation", orientation, &DS3DBUFFER::vConeOrientation);
}

HRESULT Fake3DBuffer::GetConeOutsideVolume(LPLONG volume)
{
    return get("IDirectSound3DBuffer::GetConeOutsideVolume", volume, &DS3DBUFFER::lConeOutsideVolume);
}

HRESULT Fake3DBuffer::GetMaxDistance(LPD3DVALUE distance)
{
    return get("IDirectSound3DBuffer::GetMaxDistance", distance, &DS3DBUFFER::flMaxDistance);
}

HRESULT Fake3DBuffer::GetMinDistance(LPD3DVALUE distance)
{
    return get("IDirectSound3DBuffer::GetMinDistance", distance, &DS3DBUFFER::flMinDistance);
}

HRESULT Fake3DBuffer::GetMode(LPDWORD mode)
{
    return get("IDirectSound3DBuffer::GetMode", mode, &DS3DBUFFER::dwMode);
}

HRESULT Fake3DBuffer::GetPosition(LPD3DVECTOR position)
{
    return get("IDirectSound3DBuffer::GetPosition", position, &DS3DBUFFER::vPosition);
}

HRESULT Fake3DBuffer::GetVelocity(LPD3DVECTOR velocity)
{
    return get("IDirectSound3DBuffer::GetVelocity", velocity, &DS3DBUFFER::vVelocity);
}

HRESULT Fake3DBuffer::SetAllParameters(LPCDS3DBUFFER parameters, DWORD apply)
{
    Entry call = enter("IDirectSound3DBuffer::SetAllParameters", args(parameters, apply));
    Buffer3DSet record{address(), parameters ? *parameters : DS3DBUFFER{}, apply, S_OK};
    const bool valid = parameters && parameters->dwSize == sizeof(DS3DBUFFER) &&
                       isValidBuffer3D(*parameters) && isValidApply(apply);
    if (call.refused()) {
        record.result = call.refusal();
    } else if (!valid) {
        record.result = call.finish(DSERR_INVALIDPARAM);
    } else {
        if (owner_.spatial().change(apply, [&](DS3DBUFFER& p) { p = *parameters; }))
            owner_.device().noteDeferred();
        record.result = call.finish(DS_OK);
    }
    state_.records.buffer3DSets.push_back(record);
    return record.result;
}

HRESULT Fake3DBuffer::SetConeAngles(DWORD inside, DWORD outside, DWORD apply)
{
    const bool valid = inside <= DS3D_MAXCONEANGLE && outside <= DS3D_MAXCONEANGLE;
    return set("IDirectSound3DBuffer::SetConeAngles", args(inside, outside, apply), apply, valid,
               [&](DS3DBUFFER& p) {
                   p.dwInsideConeAngle = inside;
                   p.dwOutsideConeAngle = outside;
               });
}

HRESULT Fake3DBuffer::SetConeOrientation(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply)
{
    return set("IDirectSound3DBuffer::SetConeOrientation", args(x, y, z, apply), apply, true,
               [&](DS3DBUFFER& p) { p.vConeOrientation = vector3(x, y, z); });
}

HRESULT Fake3DBuffer::SetConeOutsideVolume(LONG volume, DWORD apply)
{
    const bool valid = volume >= DSBVOLUME_MIN && volume <= DSBVOLUME_MAX;
    return set("IDirectSound3DBuffer::SetConeOutsideVolume", args(volume, apply), apply, valid,
               [&](DS3DBUFFER& p) { p.lConeOutsideVolume = volume; });
}

HRESULT Fake3DBuffer::SetMaxDistance(D3DVALUE distance, DWORD apply)
{
    return set("IDirectSound3DBuffer::SetMaxDistance", args(distance, apply), apply, true,
               [&](DS3DBUFFER& p) { p.flMaxDistance = distance; });
}

HRESULT Fake3DBuffer::SetMinDistance(D3DVALUE distance, DWORD apply)
{
    return set("IDirectSound3DBuffer::SetMinDistance", args(distance, apply), apply, true,
               [&](DS3DBUFFER& p) { p.flMinDistance = distance; });
}

HRESULT Fake3DBuffer::SetMode(DWORD mode, DWORD apply)
{
    return set("IDirectSound3DBuffer::SetMode", args(mode, apply), apply, mode <= DS3DMODE_DISABLE,
               [&](DS3DBUFFER& p) { p.dwMode = mode; });
}

HRESULT Fake3DBuffer::SetPosition(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply)
{
    return set("IDirectSound3DBuffer::SetPosition", args(x, y, z, apply), apply, true,
               [&](DS3DBUFFER& p) { p.vPosition = vector3(x, y, z); });
}

HRESULT Fake3DBuffer::SetVelocity(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply)
{
    return set("IDirectSound3DBuffer::SetVelocity", args(x, y, z, apply), apply, true,
               [&](DS3DBUFFER& p) { p.vVelocity = vector3(x, y, z); });
}

std::string Fake3DBuffer::describe() const
{
    return "IDirectSound3DBuffer of " + owner_.describe();
}

FakeObject& Fake3DBuffer::owner()
{
    return owner_;
}

void Fake3DBuffer::onLastRelease()
{
    owner_.tearOffReleased();
}

// ---- IDirectSound3DListener ----------------------------------------------------------------

Fake3DListener::Fake3DListener(FakeState& state, FakeBuffer& primary)
    : FakeObject(state, static_cast<IDirectSound3DListener*>(this), "IDirectSound3DListener"),
      primary_(primary),
      device_(primary.device())
{
}

HRESULT Fake3DListener::QueryInterface(REFIID riid, void** out)
{
    return queryThrough(primary_.queryMethod(), riid, out,
                        [this](REFIID id, void** result) { return primary_.query(id, result); });
}

ULONG Fake3DListener::AddRef()
{
    return addRef();
}

ULONG Fake3DListener::Release()
{
    return release();
}

template <class T>
HRESULT Fake3DListener::get(const char* method, T* out, T DS3DLISTENER::*field)
{
    Entry call = enter(method, args(out));
    if (call.refused())
        return call.refusal();
    if (!out)
        return call.finish(DSERR_INVALIDPARAM);
    *out = device_.listener().set.*field;
    return call.finish(DS_OK);
}

template <class Edit>
HRESULT Fake3DListener::set(const char* method, std::vector<std::uintptr_t> arguments, DWORD apply,
                            bool valid, Edit edit)
{
    Entry call = enter(method, std::move(arguments));
    if (call.refused())
        return call.refusal();
    if (!valid || !isValidApply(apply))
        return call.finish(DSERR_INVALIDPARAM);
    if (device_.listener().change(apply, edit))
        device_.noteDeferred();
    return call.finish(DS_OK);
}

HRESULT Fake3DListener::GetAllParameters(LPDS3DLISTENER parameters)
{
    Entry call = enter("IDirectSound3DListener::GetAllParameters", args(parameters));
    if (call.refused())
        return call.refusal();
    if (!parameters || parameters->dwSize != sizeof(DS3DLISTENER))
        return call.finish(DSERR_INVALIDPARAM);
    *parameters = device_.listener().set;
    return call.finish(DS_OK);
}

HRESULT Fake3DListener::GetDistanceFactor(LPD3DVALUE factor)
{
    return get("IDirectSound3DListener::GetDistanceFactor", factor, &DS3DLISTENER::flDistanceFactor);
}

HRESULT Fake3DListener::GetDopplerFactor(LPD3DVALUE factor)
{
    return get("IDirectSound3DListener::GetDopplerFactor", factor, &DS3DLISTENER::flDopplerFactor);
}

HRESULT Fake3DListener::GetOrientation(LPD3DVECTOR front, LPD3DVECTOR top)
{
    Entry call = enter("IDirectSound3DListener::GetOrientation", args(front, top));
    if (call.refused())
        return call.refusal();
    if (!front || !top)
        return call.finish(DSERR_INVALIDPARAM);
    *front = device_.listener().set.vOrientFront;
    *top = device_.listener().set.vOrientTop;
    return call.finish(DS_OK);
}

HRESULT Fake3DListener::GetPosition(LPD3DVECTOR position)
{
    return get("IDirectSound3DListener::GetPosition", position, &DS3DLISTENER::vPosition);
}

HRESULT Fake3DListener::GetRolloffFactor(LPD3DVALUE factor)
{
    return get("IDirectSound3DListener::GetRolloffFactor", factor, &DS3DLISTENER::flRolloffFactor);
}

HRESULT Fake3DListener::GetVelocity(LPD3DVECTOR velocity)
{
    return get("IDirectSound3DListener::GetVelocity", velocity, &DS3DLISTENER::vVelocity);
}

HRESULT Fake3DListener::SetAllParameters(LPCDS3DLISTENER parameters, DWORD apply)
{
    Entry call = enter("IDirectSound3DListener::SetAllParameters", args(parameters, apply));
    ListenerSet record{address(), parameters ? *parameters : DS3DLISTENER{}, apply, S_OK};
    const bool valid = parameters && parameters->dwSize == sizeof(DS3DLISTENER) &&
                       isValidListener(*parameters) && isValidApply(apply);
    if (call.refused()) {
        record.result = call.refusal();
    } else if (!valid) {
        record.result = call.finish(DSERR_INVALIDPARAM);
    } else {
        if (device_.listener().change(apply, [&](DS3DLISTENER& p) { p = *parameters; }))
            device_.noteDeferred();
        record.result = call.finish(DS_OK);
    }
    state_.records.listenerSets.push_back(record);
    return record.result;
}

HRESULT Fake3DListener::SetDistanceFactor(D3DVALUE factor, DWORD apply)
{
    return set("IDirectSound3DListener::SetDistanceFactor", args(factor, apply), apply,
               factor >= DS3D_MINDISTANCEFACTOR,
               [&](DS3DLISTENER& p) { p.flDistanceFactor = factor; });
}

HRESULT Fake3DListener::SetDopplerFactor(D3DVALUE factor, DWORD apply)
{
    return set("IDirectSound3DListener::SetDopplerFactor", args(factor, apply), apply,
               inRange(factor, DS3D_MINDOPPLERFACTOR, DS3D_MAXDOPPLERFACTOR),
               [&](DS3DLISTENER& p) { p.flDopplerFactor = factor; });
}

HRESULT Fake3DListener::SetOrientation(D3DVALUE xFront, D3DVALUE yFront, D3DVALUE zFront,
                                       D3DVALUE xTop, D3DVALUE yTop, D3DVALUE zTop, DWORD apply)
{
    return set("IDirectSound3DListener::SetOrientation",
               args(xFront, yFront, zFront, xTop, yTop, zTop, apply), apply, true,
               [&](DS3DLISTENER& p) {
                   p.vOrientFront = vector3(xFront, yFront, zFront);
                   p.vOrientTop = vector3(xTop, yTop, zTop);
               });
}

HRESULT Fake3DListener::SetPosition(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply)
{
    return set("IDirectSound3DListener::SetPosition", args(x, y, z, apply), apply, true,
               [&](DS3DLISTENER& p) { p.vPosition = vector3(x, y, z); });
}

HRESULT Fake3DListener::SetRolloffFactor(D3DVALUE factor, DWORD apply)
{
    return set("IDirectSound3DListener::SetRolloffFactor", args(factor, apply), apply,
               inRange(factor, DS3D_MINROLLOFFFACTOR, DS3D_MAXROLLOFFFACTOR),
               [&](DS3DLISTENER& p) { p.flRolloffFactor = factor; });
}

HRESULT Fake3DListener::SetVelocity(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply)
{
    return set("IDirectSound3DListener::SetVelocity", args(x, y, z, apply), apply, true,
               [&](DS3DLISTENER& p) { p.vVelocity = vector3(x, y, z); });
}

HRESULT Fake3DListener::CommitDeferredSettings()
{
    Entry call = enter("IDirectSound3DListener::CommitDeferredSettings", args());
    if (call.refused())
        return call.refusal();
    device_.commitDeferred();
    return call.finish(DS_OK);
}

std::string Fake3DListener::describe() const
{
    return "IDirectSound3DListener of " + primary_.describe();
}

FakeObject& Fake3DListener::owner()
{
    return primary_;
}

void Fake3DListener::onLastRelease()
{
    primary_.tearOffReleased();
}

} // namespace fakeds
