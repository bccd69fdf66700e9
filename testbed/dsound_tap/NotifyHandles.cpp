#include "NotifyHandles.h"

#include <winternl.h>

#include <atomic>
#include <vector>

namespace dstap
{

namespace
{

std::atomic<LONG> g_witnesses{0};

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
    ++g_witnesses;
    return copy;
}

// SystemHandleInformation: one entry per handle open in the system.
constexpr ULONG kSystemHandleInformation = 16;
constexpr NTSTATUS kInfoLengthMismatch = static_cast<NTSTATUS>(0xC0000004L);

struct SystemHandleEntry
{
    ULONG ownerPid;
    BYTE objectType;
    BYTE flags;
    USHORT value;
    PVOID object;
    ACCESS_MASK access;
};

struct SystemHandleTable
{
    ULONG count;
    SystemHandleEntry entries[1];
};

using QuerySystemFn = NTSTATUS(NTAPI*)(ULONG, PVOID, ULONG, PULONG);

DWORD countInSystemTable()
{
    const auto query = reinterpret_cast<QuerySystemFn>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    if (!query)
        return 0;
    std::vector<BYTE> table(1 << 16);
    NTSTATUS status;
    while ((status = query(kSystemHandleInformation, table.data(), static_cast<ULONG>(table.size()),
                           nullptr)) == kInfoLengthMismatch)
        table.resize(table.size() * 2);
    if (status != 0)
        return 0;
    const auto* handles = reinterpret_cast<const SystemHandleTable*>(table.data());
    const ULONG self = GetCurrentProcessId();
    DWORD count = 0;
    for (ULONG i = 0; i < handles->count; ++i)
        count += handles->entries[i].ownerPid == self ? 1 : 0;
    return count;
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

DWORD NotifyHandles::processHandleCount()
{
    DWORD count = 0;
    if (!GetProcessHandleCount(GetCurrentProcess(), &count) || count == 0)
        count = countInSystemTable();
    return count - static_cast<DWORD>(g_witnesses.load());
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
    --g_witnesses;
}

} // namespace dstap
