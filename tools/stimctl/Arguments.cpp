#include "Arguments.h"
#include "Console.h"

#include <windows.h>
#include <shellapi.h>

#include <cerrno>
#include <cmath>
#include <cstdlib>
#include <cstdio>
#include <cwctype>

std::vector<std::wstring> commandLineWords()
{
    std::vector<std::wstring> words;
    int count = 0;
    LPWSTR* argv = CommandLineToArgvW(GetCommandLineW(), &count);
    if (argv == NULL)
        return words;
    for (int i = 1; i < count; ++i)
        words.emplace_back(argv[i]);
    LocalFree(argv);
    return words;
}

namespace
{
// "--x" and "-h" are options; "-5" is a (negative) number and stays positional.
bool looksLikeOption(const std::wstring& word)
{
    if (word.size() < 2 || word[0] != L'-')
        return false;
    return !std::iswdigit(word[1]) && word[1] != L'.';
}
}

bool splitArguments(const std::vector<std::wstring>& words, const std::set<std::wstring>& known,
                    size_t maxPositional, Arguments& out, std::string& reason,
                    const std::set<std::wstring>& switches)
{
    for (size_t i = 0; i < words.size(); ++i)
    {
        const std::wstring& word = words[i];
        if (word == L"--help" || word == L"-h")
        {
            out.help = true;
            continue;
        }
        if (!looksLikeOption(word))
        {
            out.positional.push_back(word);
            continue;
        }
        const bool isSwitch = switches.count(word) != 0;
        if (!isSwitch && known.count(word) == 0)
        {
            reason = "unknown option " + toUtf8(word);
            return false;
        }
        if (!isSwitch && i + 1 >= words.size())
        {
            reason = toUtf8(word) + " needs a value";
            return false;
        }
        if (!out.options.emplace(word, isSwitch ? std::wstring() : words[++i]).second)
        {
            reason = toUtf8(word) + " given twice";
            return false;
        }
    }
    if (out.positional.size() > maxPositional && !out.help)
    {
        reason = "unexpected argument " + toUtf8(out.positional[maxPositional]);
        return false;
    }
    return true;
}

bool parseNumber(const std::wstring& text, const char* what, double min, double max, double& value,
                 std::string& reason)
{
    wchar_t* end = NULL;
    errno = 0;
    const double parsed = std::wcstod(text.c_str(), &end);
    const bool whole = !text.empty() && end != NULL && *end == L'\0' && errno == 0 && std::isfinite(parsed);
    // wcstod also reads hexadecimal and "inf"; only plain decimals are numbers here.
    const bool plain = text.find_first_not_of(L"0123456789.-+eE") == std::wstring::npos;
    if (!whole || !plain)
    {
        reason = std::string(what) + " must be a number, not \"" + toUtf8(text) + "\"";
        return false;
    }
    if (parsed < min || parsed > max)
    {
        char range[96];
        std::snprintf(range, sizeof range, " must be from %g to %g, not ", min, max);
        reason = std::string(what) + range + toUtf8(text);
        return false;
    }
    value = parsed;
    return true;
}

bool parseWhole(const std::wstring& text, const char* what, unsigned long min, unsigned long max,
                unsigned long& value, std::string& reason)
{
    if (text.empty() || text.find_first_not_of(L"0123456789") != std::wstring::npos || text.size() > 10)
    {
        reason = std::string(what) + " must be a whole number, not \"" + toUtf8(text) + "\"";
        return false;
    }
    const unsigned long long parsed = std::wcstoull(text.c_str(), NULL, 10);
    if (parsed < min || parsed > max)
    {
        reason = std::string(what) + " must be from " + std::to_string(min) + " to " + std::to_string(max) +
                 ", not " + toUtf8(text);
        return false;
    }
    value = static_cast<unsigned long>(parsed);
    return true;
}

bool parseTriple(const std::wstring& text, const char* what, double limit, float (&xyz)[3], std::string& reason)
{
    size_t start = 0;
    for (int axis = 0; axis < 3; ++axis)
    {
        const size_t comma = text.find(L',', start);
        const bool last = axis == 2;
        if (last != (comma == std::wstring::npos))
        {
            reason = std::string(what) + " must be three numbers X,Y,Z, not \"" + toUtf8(text) + "\"";
            return false;
        }
        const std::wstring part = text.substr(start, last ? std::wstring::npos : comma - start);
        double number = 0.0;
        if (!parseNumber(part, what, -limit, limit, number, reason))
            return false;
        xyz[axis] = static_cast<float>(number);
        start = comma + 1;
    }
    return true;
}

bool parseChoice(const std::wstring& text, const char* what, const std::vector<std::wstring>& choices,
                 std::wstring& value, std::string& reason)
{
    for (const std::wstring& choice : choices)
    {
        if (_wcsicmp(choice.c_str(), text.c_str()) == 0)
        {
            value = choice;
            return true;
        }
    }
    std::string list;
    for (const std::wstring& choice : choices)
        list += (list.empty() ? "" : "|") + toUtf8(choice);
    reason = std::string(what) + " must be " + list + ", not \"" + toUtf8(text) + "\"";
    return false;
}
