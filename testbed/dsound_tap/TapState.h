#pragma once
// Everything one tap knows: the call log, the script, the clock, the device lists, the tapped
// interfaces and the notification events. Shared by the tap, the seam and every interface the
// tap handed out. The methods lock; code that touches the fields holds `mutex`.

#include "TapRecords.h"

#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace dstap
{

class TapObject;

// How the calls to one method are to be answered.
struct Script
{
    std::optional<HRESULT> always;
    std::map<int, HRESULT> nth; // by the call's number, 1-based
    Answer answer;              // the test's replacement for the platform's work
    int seen = 0;               // calls made since the tap started, logged or not
};

// An event handle given to SetNotificationPositions, with a duplicate of the tap's own that
// tells whether the library's handle still names the same object (a closed value may be
// reused). Where CompareObjectHandles is missing, such a reuse goes unnoticed.
struct TrackedEvent
{
    HANDLE original;
    HANDLE witness; // null once seen closed, or if the handle was never valid
};

struct TapState
{
    // Logs a call, answers it as scripted, by the test's answer or by `work` (the platform),
    // and logs what the library got.
    HRESULT run(const std::string& method, const void* object, std::vector<std::uintptr_t> args,
                std::vector<BYTE> data, const std::function<HRESULT()>& work);
    void logCount(const std::string& method, const void* object, ULONG count); // AddRef/Release
    void fault(const std::string& text);
    TapObject* find(const void* tapped) const;
    void trackEvent(HANDLE event);
    int openEvents();
    // The tap is gone: forget the script (answers may refer to a finished test) and the log.
    void retire();

    mutable std::mutex mutex;
    std::vector<Call> log;
    size_t logBase = 0; // calls dropped from the log, so that run's indexes stay valid
    std::map<std::string, Script> scripts;
    std::optional<std::vector<DeviceEntry>> playbackDevices, captureDevices;
    DWORD clock = 0;
    DWORD clockStep = 0; // added after every read
    // The tapped interfaces, which live as long as the process (a late call must not crash).
    std::vector<TapObject*> objects;
    std::vector<std::string> faults;
    std::vector<TrackedEvent> events;
    bool retired = false;
};

// Every name the tap logs, but AddRef and Release; scripting any other name is a test's typo.
bool isScriptable(const std::string& method);

// Puts a tap's state behind the library's DirectSound seam, and takes it away.
void install(std::shared_ptr<TapState> state); // throws std::logic_error if one is installed
void uninstall();

} // namespace dstap
