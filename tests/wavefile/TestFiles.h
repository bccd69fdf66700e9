#pragma once
// Files of the Windows tests: the inputs other programs made in the build tree (reached
// through Wine's Z: drive), whole-file reads and writes, and a file read back through the
// stream reader as the stream player reads it.
#include <fstream>
#include <iterator>
#include "SndDataReadtyStream.h"
#include "TestRiff.h"
#include "WaveFileTestData.h"
#include <gtest/gtest.h>

inline std::wstring dataPath(const std::wstring& name)
{
    return std::wstring(WAVEFILE_TEST_DATA) + L"\\" + name;
}

inline Bytes readFile(const std::wstring& path)
{
    std::ifstream file(path.c_str(), std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

inline void writeFile(const std::wstring& path, const Bytes& bytes)
{
    std::ofstream(path.c_str(), std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

// What opening `path` answers; size and format start out as junk, so that a reader which
// leaves them unset shows.
struct Opened
{
    int result = -1;
    unsigned long size = 12345;
    tWAVEFORMATEX wfx;
};

inline Opened openWith(CSndDataReadtyStream& reader, const std::wstring& path)
{
    Opened o;
    std::memset(&o.wfx, 0xCD, sizeof o.wfx);
    o.result = reader.initStream2Read(path.c_str(), &o.size, &o.wfx);
    return o;
}

// All the reader gives in pieces of `piece` bytes, up to the first short piece.
inline Bytes readAll(CSndDataReadtyStream& reader, unsigned int piece = 999)
{
    Bytes all, buffer(piece);
    for (unsigned int got = piece; got == piece;)
    {
        EXPECT_EQ(1, reader.readNewData(buffer.data(), got));
        all.insert(all.end(), buffer.begin(), buffer.begin() + got);
    }
    return all;
}
