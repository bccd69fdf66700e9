#pragma once
// Sample memory of a simulated buffer, the locking of a region of it, and the movement of a
// cursor round it.

#include <windows.h>

#include <memory>
#include <vector>

namespace fakeds
{

class BufferMemory
{
public:
    // Null when the memory cannot be had. Pages come zeroed from the system and cost nothing
    // until written, so a buffer of DSBSIZE_MAX bytes is cheap as long as nobody fills it.
    static std::shared_ptr<BufferMemory> allocate(DWORD bytes);
    ~BufferMemory();
    BufferMemory(const BufferMemory&) = delete;
    BufferMemory& operator=(const BufferMemory&) = delete;

    BYTE* data() const { return data_; }
    DWORD size() const { return size_; }
    bool contains(const void* start, DWORD bytes) const;
    std::vector<BYTE> copy() const;

    // Lock/Unlock over the ring: a region that runs past the end continues, as a second
    // region, at the start (only when the caller asks for a second region).
    HRESULT lock(DWORD offset, DWORD bytes, LPVOID* first, LPDWORD firstBytes, LPVOID* second,
                 LPDWORD secondBytes) const;
    HRESULT checkUnlock(LPVOID first, DWORD firstBytes, LPVOID second, DWORD secondBytes) const;

private:
    BufferMemory(BYTE* data, DWORD size) : data_(data), size_(size) {}

    BYTE* data_;
    DWORD size_;
};

// Lock's outputs on failure: nothing locked.
void clearLockOutputs(LPVOID* first, LPDWORD firstBytes, LPVOID* second, LPDWORD secondBytes);

// A cursor moved by a number of bytes: round and round when looping; otherwise up to the end,
// where the buffer stops and the cursor returns to 0, as DirectSound leaves a one-shot buffer.
struct Travel
{
    DWORD from;
    DWORD moved; // bytes actually passed
    DWORD to;
    bool ended;
};

Travel travel(DWORD cursor, DWORD bytes, DWORD size, bool looping);

} // namespace fakeds
