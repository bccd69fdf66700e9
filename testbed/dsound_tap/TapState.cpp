#include "TapState.h"

#include "TapObject.h"

#include <algorithm>

namespace dstap
{

float Call::argFloat(size_t index) const
{
    const auto bits = static_cast<std::uint32_t>(args.at(index));
    float value = 0;
    std::memcpy(&value, &bits, sizeof value);
    return value;
}

TapState::TapState() = default;
TapState::~TapState() = default;

Decision TapState::begin(const std::string& method, const void* object, std::vector<std::uintptr_t> args,
                         std::vector<BYTE> data)
{
    std::lock_guard<std::mutex> lock(mutex_);
    Decision decision{0, Call{method, object, std::move(args), std::move(data), S_OK}, std::nullopt, {}};
    if (retired_)
        return decision;
    const int nth = ++seen_[method];
    if (const auto answer = answers_.find(method); answer != answers_.end())
        decision.answer = answer->second;
    if (const auto always = always_.find(method); always != always_.end())
        decision.scripted = always->second;
    if (const auto byCount = nth_.find(method); byCount != nth_.end()) {
        if (const auto hit = byCount->second.find(nth); hit != byCount->second.end())
            decision.scripted = hit->second;
    }
    decision.index = logBase_ + log_.size();
    log_.push_back(decision.call);
    return decision;
}

void TapState::finish(size_t index, HRESULT result)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (!retired_ && index >= logBase_ && index - logBase_ < log_.size())
        log_[index - logBase_].result = result;
}

void TapState::logCount(const std::string& method, const void* object, ULONG count)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (!retired_)
        log_.push_back(Call{method, object, {}, {}, static_cast<HRESULT>(count)});
}

void TapState::fault(const std::string& text)
{
    std::lock_guard<std::mutex> lock(mutex_);
    faults_.push_back(text);
}

void TapState::script(const std::string& method, std::optional<int> nth, HRESULT result)
{
    std::lock_guard<std::mutex> lock(mutex_);
    if (nth)
        nth_[method][*nth] = result;
    else
        always_[method] = result;
}

int TapState::seen(const std::string& method) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto found = seen_.find(method);
    return found == seen_.end() ? 0 : found->second;
}

void TapState::answer(const std::string& method, Answer answer)
{
    std::lock_guard<std::mutex> lock(mutex_);
    answers_[method] = std::move(answer);
}

void TapState::clearScript()
{
    std::lock_guard<std::mutex> lock(mutex_);
    always_.clear();
    nth_.clear();
    answers_.clear();
}

void TapState::clearLog()
{
    std::lock_guard<std::mutex> lock(mutex_);
    logBase_ += log_.size();
    log_.clear();
}

std::vector<Call> TapState::calls() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return log_;
}

std::optional<std::vector<DeviceEntry>> TapState::playbackDevices() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return playback_;
}

std::optional<std::vector<DeviceEntry>> TapState::captureDevices() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return capture_;
}

void TapState::setDevices(bool capture, std::vector<DeviceEntry> devices)
{
    std::lock_guard<std::mutex> lock(mutex_);
    (capture ? capture_ : playback_) = std::move(devices);
}

DWORD TapState::readClock()
{
    std::lock_guard<std::mutex> lock(mutex_);
    const DWORD now = clock_;
    clock_ += clockStep_;
    return now;
}

void TapState::setClock(DWORD ms, std::optional<DWORD> step)
{
    std::lock_guard<std::mutex> lock(mutex_);
    clock_ = ms;
    if (step)
        clockStep_ = *step;
}

void TapState::advanceClock(DWORD ms)
{
    std::lock_guard<std::mutex> lock(mutex_);
    clock_ += ms;
}

DWORD TapState::clock() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return clock_;
}

void TapState::adopt(TapObject* object)
{
    std::lock_guard<std::mutex> lock(mutex_);
    objects_.push_back(object);
}

TapObject* TapState::find(const void* tapped) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    const auto found = std::find_if(objects_.begin(), objects_.end(),
                                    [tapped](TapObject* object) { return object->self() == tapped; });
    return found == objects_.end() ? nullptr : *found;
}

TapObject* TapState::liveTapOf(IUnknown* real, const char* interfaceName) const
{
    std::lock_guard<std::mutex> lock(mutex_);
    for (TapObject* object : objects_) {
        if (object->realUnknown() == real && object->count() > 0 &&
            std::string(object->interfaceName()) == interfaceName)
            return object;
    }
    return nullptr;
}

std::vector<TapObject*> TapState::objects() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return objects_;
}

void TapState::trackEvent(HANDLE event)
{
    std::lock_guard<std::mutex> lock(mutex_);
    events_.track(event);
}

int TapState::openEvents() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return events_.open();
}

void TapState::retire()
{
    std::lock_guard<std::mutex> lock(mutex_);
    retired_ = true;
    always_.clear();
    nth_.clear();
    answers_.clear();
    log_.clear();
    events_.closeWitnesses();
}

bool TapState::retired() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return retired_;
}

std::vector<std::string> TapState::faults() const
{
    std::lock_guard<std::mutex> lock(mutex_);
    return faults_;
}

} // namespace dstap
