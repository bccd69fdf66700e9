#include "Win32File.h"

#include <algorithm>

namespace
{
// ReadFile and WriteFile move at most a DWORD's worth of bytes per call.
constexpr size_t kMaxTransfer = 0x7FFFF000;
} // namespace

Win32File::~Win32File()
{
    close();
}

bool Win32File::open(LPCWSTR path, DWORD access, DWORD share, DWORD disposition)
{
    close();
    m_handle = CreateFileW(path, access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
    return isOpen();
}

bool Win32File::openForReading(LPCWSTR path)
{
    return open(path, GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, OPEN_EXISTING);
}

bool Win32File::createForWriting(LPCWSTR path)
{
    return open(path, GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, CREATE_ALWAYS);
}

void Win32File::close()
{
    if (isOpen())
        CloseHandle(m_handle);
    m_handle = INVALID_HANDLE_VALUE;
}

bool Win32File::isOpen() const
{
    return m_handle != INVALID_HANDLE_VALUE;
}

uint64_t Win32File::size() const
{
    LARGE_INTEGER size;
    if (!isOpen() || !GetFileSizeEx(m_handle, &size))
        return 0;
    return static_cast<uint64_t>(size.QuadPart);
}

bool Win32File::seek(uint64_t offset)
{
    LARGE_INTEGER to;
    to.QuadPart = static_cast<LONGLONG>(offset);
    return isOpen() && SetFilePointerEx(m_handle, to, nullptr, FILE_BEGIN);
}

size_t Win32File::readAt(uint64_t offset, void* dst, size_t n)
{
    if (!seek(offset))
        return 0;
    size_t done = 0;
    while (done < n)
    {
        DWORD got = 0;
        const DWORD ask = static_cast<DWORD>(std::min(n - done, kMaxTransfer));
        if (!ReadFile(m_handle, static_cast<char*>(dst) + done, ask, &got, nullptr) || got == 0)
            break;
        done += got;
    }
    return done;
}

size_t Win32File::writeAt(uint64_t offset, const void* src, size_t n)
{
    if (!seek(offset))
        return 0;
    size_t done = 0;
    while (done < n)
    {
        DWORD put = 0;
        const DWORD ask = static_cast<DWORD>(std::min(n - done, kMaxTransfer));
        if (!WriteFile(m_handle, static_cast<const char*>(src) + done, ask, &put, nullptr) || put == 0)
            break;
        done += put;
    }
    return done;
}

bool Win32File::truncateAt(uint64_t offset)
{
    return seek(offset) && SetEndOfFile(m_handle);
}

void Win32File::commit()
{
    const ULONGLONG now = GetTickCount64();
    if (!isOpen() || now - m_lastCommitMs < 1000)
        return;
    FlushFileBuffers(m_handle);
    m_lastCommitMs = now;
}
