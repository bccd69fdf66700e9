#pragma once
// The 3D interfaces: IDirectSound3DBuffer of a secondary buffer made with DSBCAPS_CTRL3D, and
// IDirectSound3DListener of a primary buffer made with DSBCAPS_CTRL3D. Both are views: the
// parameters live in the buffer and in the device, so they outlast the interface.

#include "FakeObject.h"
#include "Spatial.h"

#include <dsound.h>

namespace fakeds
{

class FakeBuffer;
class FakeDevice;

class Fake3DBuffer final : public IDirectSound3DBuffer, public FakeObject
{
public:
    Fake3DBuffer(FakeState& state, FakeBuffer& owner);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetAllParameters(LPDS3DBUFFER parameters) override;
    HRESULT STDMETHODCALLTYPE GetConeAngles(LPDWORD inside, LPDWORD outside) override;
    HRESULT STDMETHODCALLTYPE GetConeOrientation(LPD3DVECTOR orientation) override;
    HRESULT STDMETHODCALLTYPE GetConeOutsideVolume(LPLONG volume) override;
    HRESULT STDMETHODCALLTYPE GetMaxDistance(LPD3DVALUE distance) override;
    HRESULT STDMETHODCALLTYPE GetMinDistance(LPD3DVALUE distance) override;
    HRESULT STDMETHODCALLTYPE GetMode(LPDWORD mode) override;
    HRESULT STDMETHODCALLTYPE GetPosition(LPD3DVECTOR position) override;
    HRESULT STDMETHODCALLTYPE GetVelocity(LPD3DVECTOR velocity) override;
    HRESULT STDMETHODCALLTYPE SetAllParameters(LPCDS3DBUFFER parameters, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetConeAngles(DWORD inside, DWORD outside, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetConeOrientation(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetConeOutsideVolume(LONG volume, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetMaxDistance(D3DVALUE distance, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetMinDistance(D3DVALUE distance, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetMode(DWORD mode, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetPosition(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetVelocity(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply) override;

    std::string describe() const override;
    FakeObject& owner() override;

private:
    template <class T>
    HRESULT get(const char* method, T* out, T DS3DBUFFER::*field);
    template <class Edit>
    HRESULT set(const char* method, std::vector<std::uintptr_t> arguments, DWORD apply, bool valid, Edit edit);
    void onLastRelease() override;

    FakeBuffer& owner_;
};

class Fake3DListener final : public IDirectSound3DListener, public FakeObject
{
public:
    Fake3DListener(FakeState& state, FakeBuffer& primary);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE GetAllParameters(LPDS3DLISTENER parameters) override;
    HRESULT STDMETHODCALLTYPE GetDistanceFactor(LPD3DVALUE factor) override;
    HRESULT STDMETHODCALLTYPE GetDopplerFactor(LPD3DVALUE factor) override;
    HRESULT STDMETHODCALLTYPE GetOrientation(LPD3DVECTOR front, LPD3DVECTOR top) override;
    HRESULT STDMETHODCALLTYPE GetPosition(LPD3DVECTOR position) override;
    HRESULT STDMETHODCALLTYPE GetRolloffFactor(LPD3DVALUE factor) override;
    HRESULT STDMETHODCALLTYPE GetVelocity(LPD3DVECTOR velocity) override;
    HRESULT STDMETHODCALLTYPE SetAllParameters(LPCDS3DLISTENER parameters, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetDistanceFactor(D3DVALUE factor, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetDopplerFactor(D3DVALUE factor, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetOrientation(D3DVALUE xFront, D3DVALUE yFront, D3DVALUE zFront,
                                             D3DVALUE xTop, D3DVALUE yTop, D3DVALUE zTop, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetPosition(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetRolloffFactor(D3DVALUE factor, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE SetVelocity(D3DVALUE x, D3DVALUE y, D3DVALUE z, DWORD apply) override;
    HRESULT STDMETHODCALLTYPE CommitDeferredSettings() override;

    std::string describe() const override;
    FakeObject& owner() override;

private:
    template <class T>
    HRESULT get(const char* method, T* out, T DS3DLISTENER::*field);
    template <class Edit>
    HRESULT set(const char* method, std::vector<std::uintptr_t> arguments, DWORD apply, bool valid, Edit edit);
    void onLastRelease() override;

    FakeBuffer& primary_;
    FakeDevice& device_;
};

} // namespace fakeds
