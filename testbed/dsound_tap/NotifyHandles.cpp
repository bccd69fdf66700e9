#include "NotifyHandles.h"

#include <vector>

namespace dstap
{

namespace
{

using CompareHandlesFn = BOOL(WINAPI*)(HANDLE, HANDLE);

// Resolved at run time: the build targets Windows 7, where the function does not exist.
CompareHandlesFn compareHandles()
{
    static const CompareHandlesFn fn = [] {
        HMODULE module = GetModuleHandleW(L"kernelbase.dll");
        if (!module)
            return CompareHandlesFn{};
        return reinterpret_cast<CompareHandlesFn>(
            reinterpret_cast<void*>(GetProcAddress(module, "CompareObjectHandles")));
    }();
    return fn;
}

bool sameObject(HANDLE first, HANDLE second)
{
    const CompareHandlesFn fn = compareHandles();
    return !fn || fn(first, second);
}

HANDLE duplicate(HANDLE event)
{
    HANDLE copy = nullptr;
    const HANDLE self = GetCurrentProcess();
    if (!DuplicateHandle(self, event, self, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS))
        return nullptr;
    return copy;
}

} // namespace

NotifyHandles::~NotifyHandles()
{
    closeWitnesses();
}

void NotifyHandles::track(HANDLE event)
{
    const auto known = latest_.find(event);
    if (known != latest_.end() && stillOpen(tracked_[known->second]))
        return;
    tracked_.push_back({event, duplicate(event)});
    latest_[event] = static_cast<int>(tracked_.size() - 1);
}

int NotifyHandles::open() const
{
    int count = 0;
    for (Tracked& tracked : tracked_)
        count += stillOpen(tracked) ? 1 : 0;
    return count;
}

void NotifyHandles::closeWitnesses()
{
    for (Tracked& tracked : tracked_)
        forget(tracked);
}

bool NotifyHandles::stillOpen(Tracked& tracked) const
{
    if (!tracked.witness)
        return false;
    DWORD flags = 0;
    if (GetHandleInformation(tracked.original, &flags) && sameObject(tracked.original, tracked.witness))
        return true;
    // Once closed, always closed: a later reuse of the value is another handle.
    forget(tracked);
    return false;
}

void NotifyHandles::forget(Tracked& tracked) const
{
    if (!tracked.witness)
        return;
    CloseHandle(tracked.witness);
    tracked.witness = nullptr;
}

} // namespace dstap
