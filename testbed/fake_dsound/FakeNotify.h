#pragma once
// Position notifications: the table a buffer keeps, the signalling of its events as a cursor
// passes them, and the IDirectSoundNotify interface that fills the table.

#include "FakeObject.h"

#include <dsound.h>

#include <vector>

namespace fakeds
{

// DSBPN_OFFSETSTOP is declared as a signed -1.
constexpr DWORD kOffsetStop = static_cast<DWORD>(DSBPN_OFFSETSTOP);

class NotificationTable
{
public:
    struct Position
    {
        DWORD offset;
        HANDLE event;
        int handleId; // in FakeState::handles
    };

    void assign(std::vector<Position> positions) { positions_ = std::move(positions); }

    // Sets the events whose offsets lie in [from, from + bytes) round a ring of `size` bytes,
    // in the order the cursor reaches them (each at most once).
    void signalPassed(FakeState& state, const void* buffer, DWORD from, DWORD bytes, DWORD size) const;
    // Sets the DSBPN_OFFSETSTOP events.
    void signalStop(FakeState& state, const void* buffer) const;

private:
    void signal(FakeState& state, const void* buffer, const Position& position) const;

    std::vector<Position> positions_;
};

// The buffer behind an IDirectSoundNotify: a playback or a capture buffer.
class NotifyOwner
{
public:
    virtual bool running() const = 0; // notifications cannot change while it runs
    virtual DWORD bufferBytes() const = 0;
    virtual NotificationTable& notifications() = 0;
    virtual FakeObject& ownerObject() = 0;
    virtual const char* queryMethod() const = 0;
    virtual HRESULT query(REFIID riid, void** out) = 0; // QueryInterface without the logging
    virtual void tearOffReleased() = 0;

protected:
    ~NotifyOwner() = default;
};

class FakeNotify final : public IDirectSoundNotify, public FakeObject
{
public:
    FakeNotify(FakeState& state, NotifyOwner& owner);

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID riid, void** out) override;
    ULONG STDMETHODCALLTYPE AddRef() override;
    ULONG STDMETHODCALLTYPE Release() override;
    HRESULT STDMETHODCALLTYPE SetNotificationPositions(DWORD count, LPCDSBPOSITIONNOTIFY positions) override;

    std::string describe() const override;
    FakeObject& owner() override { return owner_.ownerObject(); }

private:
    HRESULT assign(DWORD count, LPCDSBPOSITIONNOTIFY positions);
    void onLastRelease() override { owner_.tearOffReleased(); }

    NotifyOwner& owner_;
};

} // namespace fakeds
