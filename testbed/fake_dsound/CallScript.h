#pragma once
// Scripted results: which calls answer with a chosen HRESULT instead of the simulated one.

#include <windows.h>

#include <map>
#include <optional>
#include <string>

namespace fakeds
{

class CallScript
{
public:
    // Both throw std::invalid_argument for a name the fake never logs (a typo would otherwise
    // make a test pass without scripting anything).
    void failAlways(const std::string& method, HRESULT result);
    void failNth(const std::string& method, int nth, HRESULT result);
    void clear();

    // Counts one call of the method and gives its scripted result, if any. The count runs from
    // the start of the test and is not reset by clear(), so "nth" always means the nth call.
    std::optional<HRESULT> next(const std::string& method);

private:
    std::map<std::string, HRESULT> always_;
    std::map<std::string, std::map<int, HRESULT>> nth_;
    std::map<std::string, int> seen_;
};

} // namespace fakeds
