#include "TapState.h"

#include "TapObject.h"

#include <algorithm>

namespace dstap
{

namespace
{

using CompareHandlesFn = BOOL(WINAPI*)(HANDLE, HANDLE);

// Resolved at run time: the build targets Windows 7, where the function does not exist.
bool sameObject(HANDLE first, HANDLE second)
{
    static const HMODULE module = GetModuleHandleW(L"kernelbase.dll");
    static const auto compare = reinterpret_cast<CompareHandlesFn>(
        module ? reinterpret_cast<void*>(GetProcAddress(module, "CompareObjectHandles")) : nullptr);
    return !compare || compare(first, second);
}

void forget(TrackedEvent& event)
{
    if (event.witness)
        CloseHandle(event.witness);
    event.witness = nullptr;
}

// Once closed, always closed: a later reuse of the value is another handle.
bool stillOpen(TrackedEvent& event)
{
    DWORD flags = 0;
    if (event.witness && GetHandleInformation(event.original, &flags) && sameObject(event.original, event.witness))
        return true;
    forget(event);
    return false;
}

} // namespace

HRESULT TapState::run(const std::string& method, const void* object, std::vector<std::uintptr_t> args,
                      std::vector<BYTE> data, const std::function<HRESULT()>& work)
{
    std::unique_lock<std::mutex> lock(mutex);
    if (retired) {
        lock.unlock();
        return work();
    }
    Script& script = scripts[method];
    std::optional<HRESULT> scripted = script.always;
    if (const auto hit = script.nth.find(++script.seen); hit != script.nth.end())
        scripted = hit->second;
    const Answer answer = script.answer;
    const size_t index = logBase + log.size();
    log.push_back(Call{method, object, std::move(args), std::move(data), S_OK});
    const Call call = log.back();
    lock.unlock();

    HRESULT hr;
    if (scripted && FAILED(*scripted))
        hr = *scripted; // neither the platform nor an answer sees the call
    else
    {
        hr = answer ? answer(call) : work();
        hr = scripted ? *scripted : hr;
    }

    lock.lock();
    if (!retired && index >= logBase && index - logBase < log.size())
        log[index - logBase].result = hr;
    return hr;
}

void TapState::logCount(const std::string& method, const void* object, ULONG count)
{
    std::lock_guard<std::mutex> lock(mutex);
    if (!retired)
        log.push_back(Call{method, object, {}, {}, static_cast<HRESULT>(count)});
}

void TapState::fault(const std::string& text)
{
    std::lock_guard<std::mutex> lock(mutex);
    faults.push_back(text);
}

TapObject* TapState::find(const void* tapped) const
{
    std::lock_guard<std::mutex> lock(mutex);
    const auto found =
        std::find_if(objects.begin(), objects.end(), [tapped](TapObject* object) { return object->self() == tapped; });
    return found == objects.end() ? nullptr : *found;
}

void TapState::trackEvent(HANDLE event)
{
    std::lock_guard<std::mutex> lock(mutex);
    for (TrackedEvent& known : events) {
        if (known.original == event && stillOpen(known))
            return;
    }
    HANDLE witness = nullptr;
    const HANDLE self = GetCurrentProcess();
    if (!DuplicateHandle(self, event, self, &witness, 0, FALSE, DUPLICATE_SAME_ACCESS))
        witness = nullptr;
    events.push_back({event, witness});
}

int TapState::openEvents()
{
    std::lock_guard<std::mutex> lock(mutex);
    return static_cast<int>(std::count_if(events.begin(), events.end(), stillOpen));
}

void TapState::retire()
{
    std::lock_guard<std::mutex> lock(mutex);
    retired = true;
    scripts.clear();
    log.clear();
    std::for_each(events.begin(), events.end(), forget);
}

} // namespace dstap
