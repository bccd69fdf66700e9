#include "CallScript.h"

#include "CallLog.h"

#include <stdexcept>

namespace fakeds
{

namespace
{

void requireScriptable(const std::string& method)
{
    if (!isScriptable(method))
        throw std::invalid_argument("no scriptable DirectSound call named \"" + method + "\"");
}

} // namespace

void CallScript::failAlways(const std::string& method, HRESULT result)
{
    requireScriptable(method);
    always_[method] = result;
}

void CallScript::failNth(const std::string& method, int nth, HRESULT result)
{
    requireScriptable(method);
    if (nth < 1)
        throw std::invalid_argument("calls are counted from 1");
    nth_[method][nth] = result;
}

void CallScript::clear()
{
    always_.clear();
    nth_.clear();
}

std::optional<HRESULT> CallScript::next(const std::string& method)
{
    const int number = ++seen_[method];
    const auto perCall = nth_.find(method);
    if (perCall != nth_.end()) {
        const auto hit = perCall->second.find(number);
        if (hit != perCall->second.end())
            return hit->second;
    }
    const auto always = always_.find(method);
    if (always != always_.end())
        return always->second;
    return std::nullopt;
}

} // namespace fakeds
