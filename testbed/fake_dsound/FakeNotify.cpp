#include "FakeNotify.h"

#include "FakeState.h"

#include <algorithm>

namespace fakeds
{

void NotificationTable::signalPassed(FakeState& state, const void* buffer, DWORD from,
                                     DWORD bytes, DWORD size) const
{
    const DWORD span = std::min(bytes, size);
    std::vector<std::pair<DWORD, const Position*>> reached;
    for (const Position& position : positions_) {
        if (position.offset >= size)
            continue; // DSBPN_OFFSETSTOP, or an offset no cursor can reach
        const DWORD distance = (position.offset + size - from) % size;
        if (distance < span)
            reached.emplace_back(distance, &position);
    }
    std::stable_sort(reached.begin(), reached.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    for (const auto& hit : reached)
        signal(state, buffer, *hit.second);
}

void NotificationTable::signalStop(FakeState& state, const void* buffer) const
{
    for (const Position& position : positions_) {
        if (position.offset == kOffsetStop)
            signal(state, buffer, position);
    }
}

void NotificationTable::signal(FakeState& state, const void* buffer, const Position& position) const
{
    if (state.detached)
        return;
    state.records.signals.push_back({buffer, position.offset, position.event});
    state.handles.signal(position.handleId);
}

FakeNotify::FakeNotify(FakeState& state, NotifyOwner& owner)
    : FakeObject(state, static_cast<IDirectSoundNotify*>(this), "IDirectSoundNotify"), owner_(owner)
{
}

HRESULT FakeNotify::QueryInterface(REFIID riid, void** out)
{
    return queryThrough(owner_.queryMethod(), riid, out,
                        [this](REFIID id, void** result) { return owner_.query(id, result); });
}

ULONG FakeNotify::AddRef()
{
    return addRef();
}

ULONG FakeNotify::Release()
{
    return release();
}

HRESULT FakeNotify::SetNotificationPositions(DWORD count, LPCDSBPOSITIONNOTIFY positions)
{
    Entry call = enter("IDirectSoundNotify::SetNotificationPositions", args(count, positions));
    NotificationSet record{address(), owner_.ownerObject().address(), {}, S_OK};
    if (positions && count <= DSBNOTIFICATIONS_MAX)
        record.positions.assign(positions, positions + count);
    record.result = call.refused() ? call.refusal() : call.finish(assign(count, positions));
    state_.records.notificationSets.push_back(record);
    return record.result;
}

HRESULT FakeNotify::assign(DWORD count, LPCDSBPOSITIONNOTIFY positions)
{
    if ((count > 0 && !positions) || count > DSBNOTIFICATIONS_MAX)
        return DSERR_INVALIDPARAM;
    if (owner_.running())
        return DSERR_INVALIDCALL;
    const DWORD size = owner_.bufferBytes();
    std::vector<NotificationTable::Position> table;
    for (DWORD i = 0; i < count; ++i) {
        const DSBPOSITIONNOTIFY& p = positions[i];
        if (state_.settings.strictNotifyOffsets && p.dwOffset >= size && p.dwOffset != kOffsetStop)
            return DSERR_INVALIDPARAM;
        table.push_back({p.dwOffset, p.hEventNotify, 0});
    }
    for (auto& position : table)
        position.handleId = state_.handles.track(position.event);
    owner_.notifications().assign(std::move(table));
    return DS_OK;
}

std::string FakeNotify::describe() const
{
    return "IDirectSoundNotify of " + owner_.ownerObject().describe();
}

} // namespace fakeds
