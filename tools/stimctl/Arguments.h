#pragma once
// The command line as stimctl reads it: a command, its positional arguments and its
// options, each option with one value; and the number formats the commands accept.
// Every parse gives false with a one-line reason that names what was wrong.

#include <map>
#include <set>
#include <string>
#include <vector>

struct Arguments
{
    std::vector<std::wstring> positional;
    std::map<std::wstring, std::wstring> options; // "--loop" -> "2"
    bool help = false;

    bool has(const wchar_t* option) const { return options.count(option) != 0; }
    const std::wstring& value(const wchar_t* option) const { return options.at(option); }
};

// The process's arguments after the program name, as typed (wide, so file names survive).
std::vector<std::wstring> commandLineWords();

// Splits `words` into positional arguments, the options named in `known`, each followed by
// its value, and the switches named in `switches`, which take none (kept with an empty
// value); "--help" or "-h" anywhere asks for help. An option not in `known` or `switches`,
// an option given twice or without its value, or more positional arguments than
// `maxPositional` is an error.
bool splitArguments(const std::vector<std::wstring>& words, const std::set<std::wstring>& known,
                    size_t maxPositional, Arguments& out, std::string& reason,
                    const std::set<std::wstring>& switches = {});

// A decimal number within [min, max], nothing after it.
bool parseNumber(const std::wstring& text, const char* what, double min, double max, double& value,
                 std::string& reason);

// A whole number within [min, max].
bool parseWhole(const std::wstring& text, const char* what, unsigned long min, unsigned long max,
                unsigned long& value, std::string& reason);

// Three numbers "X,Y,Z", each within +-limit.
bool parseTriple(const std::wstring& text, const char* what, double limit, float (&xyz)[3], std::string& reason);

// One of `choices`, compared ignoring case.
bool parseChoice(const std::wstring& text, const char* what, const std::vector<std::wstring>& choices,
                 std::wstring& value, std::string& reason);
