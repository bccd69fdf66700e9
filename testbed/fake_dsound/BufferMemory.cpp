#include "BufferMemory.h"

#include <dsound.h>

#include <algorithm>

namespace fakeds
{

std::shared_ptr<BufferMemory> BufferMemory::allocate(DWORD bytes)
{
    void* data = VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    if (!data)
        return nullptr;
    return std::shared_ptr<BufferMemory>(new BufferMemory(static_cast<BYTE*>(data), bytes));
}

BufferMemory::~BufferMemory()
{
    VirtualFree(data_, 0, MEM_RELEASE);
}

bool BufferMemory::contains(const void* start, DWORD bytes) const
{
    const auto* begin = static_cast<const BYTE*>(start);
    return begin >= data_ && begin <= data_ + size_ &&
           bytes <= static_cast<DWORD>(data_ + size_ - begin);
}

std::vector<BYTE> BufferMemory::copy() const
{
    return std::vector<BYTE>(data_, data_ + size_);
}

HRESULT BufferMemory::lock(DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes,
                           LPVOID* second, LPDWORD secondBytes) const
{
    if (offset >= size_ || bytes == 0 || bytes > size_)
        return DSERR_INVALIDPARAM;
    const DWORD head = std::min(bytes, size_ - offset);
    *first = data_ + offset;
    *firstBytes = head;
    if (second)
        *second = head < bytes ? data_ : nullptr;
    if (secondBytes)
        *secondBytes = second && head < bytes ? bytes - head : 0;
    return DS_OK;
}

HRESULT BufferMemory::checkUnlock(LPVOID first, DWORD firstBytes, LPVOID second,
                                  DWORD secondBytes) const
{
    if (!first || !contains(first, firstBytes))
        return DSERR_INVALIDPARAM;
    if (second && !contains(second, secondBytes))
        return DSERR_INVALIDPARAM;
    return DS_OK;
}

void clearLockOutputs(LPVOID* first, LPDWORD firstBytes, LPVOID* second, LPDWORD secondBytes)
{
    if (first)
        *first = nullptr;
    if (firstBytes)
        *firstBytes = 0;
    if (second)
        *second = nullptr;
    if (secondBytes)
        *secondBytes = 0;
}

Travel travel(DWORD cursor, DWORD bytes, DWORD size, bool looping)
{
    if (looping)
        return {cursor, bytes, static_cast<DWORD>((cursor + bytes % size) % size), false};
    const DWORD moved = std::min(bytes, size - cursor);
    const bool ended = cursor + moved == size;
    return {cursor, moved, ended ? 0 : cursor + moved, ended};
}

} // namespace fakeds
