#pragma once
// One Win32 file handle, closed when its owner goes, with positioned reads and writes at
// 64-bit offsets (wave files pass 4 GiB). It is the reader's byte source for the RIFF walk
// and the writer's byte sink.

#include <windows.h>
#include "RiffReader.h"
#include "StreamWriter.h"

class Win32File : public wavefile::ByteSource, public wavefile::ByteSink
{
public:
    Win32File() = default;
    ~Win32File() override;
    Win32File(const Win32File&) = delete;
    Win32File& operator=(const Win32File&) = delete;

    // Opens an existing file to read; others may go on reading and writing it.
    bool openForReading(LPCWSTR path);
    // Creates the file, replacing one of the same name; others may read it meanwhile.
    bool createForWriting(LPCWSTR path);
    void close();
    bool isOpen() const;

    uint64_t size() const override;
    size_t readAt(uint64_t offset, void* dst, size_t n) override;
    size_t writeAt(uint64_t offset, const void* src, size_t n) override;
    // Makes offset the end of the file.
    bool truncateAt(uint64_t offset) override;
    // Puts what was written on the disk, at most once a second: a file kept whole when the
    // machine loses power, for a cost that does not grow with the number of writes.
    void commit() override;

private:
    bool seek(uint64_t offset);
    bool open(LPCWSTR path, DWORD access, DWORD share, DWORD disposition);

    HANDLE m_handle = INVALID_HANDLE_VALUE;
    ULONGLONG m_lastCommitMs = 0;
};
