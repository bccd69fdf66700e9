#pragma once
// Everything one tap knows: the call log, the script, the clock, the device lists, the tapped
// interfaces and the notification events. Shared by the tap and every interface it handed out.

#include "NotifyHandles.h"
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

// How one call is to be answered.
struct Decision
{
    size_t index;                    // in the log
    Call call;                       // as logged
    std::optional<HRESULT> scripted; // a scripted result
    Answer answer;                   // the test's replacement for the platform's work
};

class TapState
{
public:
    TapState();
    ~TapState();

    // Logs a call, answers it as scripted, by the test's answer or by `work` (the platform),
    // and logs what the library got.
    template <class Work>
    HRESULT run(const std::string& method, const void* object, std::vector<std::uintptr_t> args,
                std::vector<BYTE> data, Work&& work)
    {
        Decision decision = begin(method, object, std::move(args), std::move(data));
        HRESULT hr;
        if (decision.answer)
            hr = decision.answer(decision.call);
        else if (decision.scripted && FAILED(*decision.scripted))
            hr = *decision.scripted;
        else
            hr = decision.scripted ? (work(), *decision.scripted) : work();
        finish(decision.index, hr);
        return hr;
    }

    void logCount(const std::string& method, const void* object, ULONG count); // AddRef/Release
    void fault(const std::string& text);

    void script(const std::string& method, std::optional<int> nth, HRESULT result);
    int seen(const std::string& method) const; // calls made since the tap started, logged or not
    void answer(const std::string& method, Answer answer);
    void clearScript();
    void clearLog();
    std::vector<Call> calls() const;

    std::optional<std::vector<DeviceEntry>> playbackDevices() const;
    std::optional<std::vector<DeviceEntry>> captureDevices() const;
    void setDevices(bool capture, std::vector<DeviceEntry> devices);

    DWORD readClock();
    void setClock(DWORD ms, std::optional<DWORD> step = std::nullopt);
    void advanceClock(DWORD ms);
    DWORD clock() const;

    // The tapped interfaces, which live as long as the process (a late call must not crash).
    void adopt(TapObject* object);
    TapObject* find(const void* tapped) const;
    TapObject* liveTapOf(IUnknown* real, const char* interfaceName) const;
    std::vector<TapObject*> objects() const;

    void trackEvent(HANDLE event);
    int openEvents() const;

    // The tap is gone: forget the script (answers may refer to a finished test) and the log.
    void retire();
    bool retired() const;

    std::vector<std::string> faults() const;

private:
    Decision begin(const std::string& method, const void* object, std::vector<std::uintptr_t> args,
                   std::vector<BYTE> data);
    void finish(size_t index, HRESULT result);

    mutable std::mutex mutex_;
    std::vector<Call> log_;
    size_t logBase_ = 0; // calls dropped by clearLog, so that begin's indexes stay valid
    std::map<std::string, HRESULT> always_;
    std::map<std::string, std::map<int, HRESULT>> nth_;
    std::map<std::string, int> seen_;
    std::map<std::string, Answer> answers_;
    std::optional<std::vector<DeviceEntry>> playback_;
    std::optional<std::vector<DeviceEntry>> capture_;
    DWORD clock_ = 0;
    DWORD clockStep_ = 0;
    std::vector<TapObject*> objects_;
    std::vector<std::string> faults_;
    NotifyHandles events_;
    bool retired_ = false;
};

// Every name the tap logs; scripting any other name is a test's typo.
bool isKnownMethod(const std::string& method);
bool isScriptable(const std::string& method);

} // namespace dstap
