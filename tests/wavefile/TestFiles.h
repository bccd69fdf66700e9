#pragma once
// Files of the Windows tests: the inputs other programs made in the build tree (reached
// through Wine's Z: drive), and whole-file reads and writes.
#include <cstdio>
#include <string>
#include <windows.h>
#include "TestRiff.h"
#include "WaveFileTestData.h"

inline std::wstring dataPath(const std::wstring& name)
{
    return std::wstring(WAVEFILE_TEST_DATA) + L"\\" + name;
}

inline Bytes readFile(const std::wstring& path)
{
    Bytes bytes;
    if (FILE* f = _wfopen(path.c_str(), L"rb"))
    {
        for (int c; (c = std::fgetc(f)) != EOF;)
            bytes.push_back(static_cast<uint8_t>(c));
        std::fclose(f);
    }
    return bytes;
}

inline void writeFile(const std::wstring& path, const Bytes& bytes)
{
    if (FILE* f = _wfopen(path.c_str(), L"wb"))
    {
        std::fwrite(bytes.data(), 1, bytes.size(), f);
        std::fclose(f);
    }
}

inline bool fileExists(const std::wstring& path)
{
    return GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}
