#pragma once
// The simulated playback device (IDirectSound8): creates buffers, holds the cooperative level,
// and owns the listener's 3D parameters and the deferred-settings batch.

#include "FakeObject.h"
#include "Spatial.h"

#include <dsound.h>

#include <vector>

namespace fakeds
{

class FakeBuffer;

class FakeDevice final : public IDirectSound8, public FakeObject
{
public:
    explicit FakeDevice(FakeState& state);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE CreateSoundBuffer(LPCDSBUFFERDESC desc, LPLPDIRECTSOUNDBUFFER buffer, IUnknown* outer) override;
    HRESULT STDMETHODCALLTYPE GetCaps(LPDSCAPS caps) override;
    HRESULT STDMETHODCALLTYPE DuplicateSoundBuffer(LPDIRECTSOUNDBUFFER original, LPLPDIRECTSOUNDBUFFER duplicate) override;
    HRESULT STDMETHODCALLTYPE SetCooperativeLevel(HWND window, DWORD level) override;
    HRESULT STDMETHODCALLTYPE Compact() override;
    HRESULT STDMETHODCALLTYPE GetSpeakerConfig(LPDWORD config) override;
    HRESULT STDMETHODCALLTYPE SetSpeakerConfig(DWORD config) override;
    HRESULT STDMETHODCALLTYPE Initialize(LPCGUID device) override;
    HRESULT STDMETHODCALLTYPE VerifyCertification(LPDWORD certified) override;

    std::string describe() const override;

    // For the buffers and 3D interfaces of this device, under the state's lock.
    DWORD cooperativeLevel() const { return level_; } // 0 until SetCooperativeLevel succeeds
    HWND window() const { return window_; }
    FakeBuffer* primary() const { return primary_; }
    Spatial<DS3DLISTENER>& listener() { return listener_; }
    void noteDeferred() { ++pendingDeferred_; }
    int pendingDeferred() const { return pendingDeferred_; }
    // Puts every deferred 3D change of this device (listener and buffers) into effect.
    void commitDeferred();

private:
    HRESULT makeBuffer(LPCDSBUFFERDESC desc, bool outMissing, IUnknown* outer, FakeBuffer*& made);
    HRESULT makePrimary(const DSBUFFERDESC& desc, FakeBuffer*& made);
    HRESULT makeSecondary(const DSBUFFERDESC& desc, FakeBuffer*& made);
    HRESULT duplicate(LPDIRECTSOUNDBUFFER original, FakeBuffer*& made);

    DWORD level_ = 0;
    HWND window_ = nullptr;
    FakeBuffer* primary_ = nullptr;
    std::vector<FakeBuffer*> buffers_;
    Spatial<DS3DLISTENER> listener_;
    int pendingDeferred_ = 0;
};

} // namespace fakeds
