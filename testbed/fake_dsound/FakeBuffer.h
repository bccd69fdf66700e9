#pragma once
// A sound buffer of the simulated device: the primary buffer (one per device) or a secondary
// buffer with real sample memory. Its play cursor moves only when the test says so.

#include "BufferMemory.h"
#include "FakeNotify.h"
#include "FakeObject.h"
#include "FakeRecords.h"
#include "Spatial.h"

#include <dsound.h>

#include <memory>

namespace fakeds
{

class FakeDevice;
class Fake3DBuffer;
class Fake3DListener;

class FakeBuffer final : public IDirectSoundBuffer8, public FakeObject, public NotifyOwner
{
public:
    static constexpr DWORD kPrimaryBytes = 32768;

    // A primary buffer: its format and status are the device's (FakeState::settings).
    static std::unique_ptr<FakeBuffer> makePrimary(FakeState& state, FakeDevice& device, DWORD flags);
    FakeBuffer(FakeState& state, FakeDevice& device, DWORD flags, const WAVEFORMATEX& format,
               std::shared_ptr<BufferMemory> memory);

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    // IDirectSoundBuffer
    HRESULT STDMETHODCALLTYPE GetCaps(LPDSBCAPS caps) override;
    HRESULT STDMETHODCALLTYPE GetCurrentPosition(LPDWORD play, LPDWORD write) override;
    HRESULT STDMETHODCALLTYPE GetFormat(LPWAVEFORMATEX format, DWORD sizeAllocated, LPDWORD sizeWritten) override;
    HRESULT STDMETHODCALLTYPE GetVolume(LPLONG volume) override;
    HRESULT STDMETHODCALLTYPE GetPan(LPLONG pan) override;
    HRESULT STDMETHODCALLTYPE GetFrequency(LPDWORD frequency) override;
    HRESULT STDMETHODCALLTYPE GetStatus(LPDWORD status) override;
    HRESULT STDMETHODCALLTYPE Initialize(LPDIRECTSOUND sound, LPCDSBUFFERDESC desc) override;
    HRESULT STDMETHODCALLTYPE Lock(DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes,
                                   LPVOID* second, LPDWORD secondBytes, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE Play(DWORD reserved, DWORD priority, DWORD flags) override;
    HRESULT STDMETHODCALLTYPE SetCurrentPosition(DWORD position) override;
    HRESULT STDMETHODCALLTYPE SetFormat(LPCWAVEFORMATEX format) override;
    HRESULT STDMETHODCALLTYPE SetVolume(LONG volume) override;
    HRESULT STDMETHODCALLTYPE SetPan(LONG pan) override;
    HRESULT STDMETHODCALLTYPE SetFrequency(DWORD frequency) override;
    HRESULT STDMETHODCALLTYPE Stop() override;
    HRESULT STDMETHODCALLTYPE Unlock(LPVOID first, DWORD firstBytes, LPVOID second, DWORD secondBytes) override;
    HRESULT STDMETHODCALLTYPE Restore() override;
    // IDirectSoundBuffer8
    HRESULT STDMETHODCALLTYPE SetFX(DWORD count, LPDSEFFECTDESC effects, LPDWORD results) override;
    HRESULT STDMETHODCALLTYPE AcquireResources(DWORD flags, DWORD count, LPDWORD results) override;
    HRESULT STDMETHODCALLTYPE GetObjectInPath(REFGUID object, DWORD index, REFGUID iface, LPVOID* out) override;

    // NotifyOwner
    bool running() const override { return (status() & DSBSTATUS_PLAYING) != 0; }
    DWORD bufferBytes() const override { return bytes_; }
    NotificationTable& notifications() override { return notes_; }
    FakeObject& ownerObject() override { return *this; }
    const char* queryMethod() const override { return "IDirectSoundBuffer::QueryInterface"; }
    HRESULT query(REFIID riid, void** out) override;
    void tearOffReleased() override { settle(); }

    std::string describe() const override;

    // For the device, the 3D interfaces and the test bed; called under the state's lock.
    IDirectSoundBuffer* asBuffer() { return reinterpret_cast<IDirectSoundBuffer*>(static_cast<IDirectSoundBuffer8*>(this)); }
    bool isPrimary() const { return primary_; }
    bool gone() const;
    void reopen(DWORD flags);
    FakeDevice& device() { return device_; }
    Spatial<DS3DBUFFER>& spatial() { return spatial_; }
    const std::shared_ptr<BufferMemory>& memory() const { return memory_; }
    DWORD flags() const { return flags_; }
    const WAVEFORMATEX& format() const;
    BufferInfo info() const;
    void setLost(bool lost);
    void advance(DWORD bytes);

private:
    FakeBuffer(FakeState& state, FakeDevice& device, DWORD flags, bool primary,
               const WAVEFORMATEX& format, std::shared_ptr<BufferMemory> memory);

    DWORD status() const;
    DWORD writeCursor() const;
    bool has(DWORD control) const { return (flags_ & control) != 0; }
    HRESULT lock(DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes, LPVOID* second,
                 LPDWORD secondBytes, DWORD flags);
    HRESULT play(DWORD reserved, DWORD priority, DWORD flags);
    HRESULT setFormat(LPCWAVEFORMATEX format);
    HRESULT setFrequency(DWORD frequency);
    void stop();
    void settle();
    void onLastRelease() override { settle(); }

    FakeDevice& device_;
    DWORD flags_;
    const bool primary_;
    WAVEFORMATEX format_; // secondary buffers only
    std::shared_ptr<BufferMemory> memory_;
    DWORD bytes_;
    DWORD status_ = 0; // DSBSTATUS_PLAYING | DSBSTATUS_LOOPING of a secondary buffer
    DWORD play_ = 0;
    bool lost_ = false;
    LONG pan_ = DSBPAN_CENTER;
    LONG volume_ = DSBVOLUME_MAX;
    DWORD frequency_;
    int locks_ = 0;
    NotificationTable notes_;
    Spatial<DS3DBUFFER> spatial_;
    Fake3DBuffer* threeD_ = nullptr;
    Fake3DListener* listener_ = nullptr;
    FakeNotify* notify_ = nullptr;
};

} // namespace fakeds
