#include "SndDataty1.h"

#include <climits>
#include <cstring>
#include <new>

IMPLEMENT_DYNAMIC(CSndDataty1, CObject)

CSndDataty1::CSndDataty1()
    : m_wfx(), m_bAssembling(false)
{
}

CSndDataty1::~CSndDataty1()
{
}

unsigned long CSndDataty1::getDataSize() const
{
    return static_cast<unsigned long>(m_data.size());
}

// Callers (sound buffers, the converter) write through the pointer, hence not const char*.
char* CSndDataty1::getDataPointer() const
{
    if (m_data.empty())
        return nullptr;
    return const_cast<char*>(m_data.data());
}

tWAVEFORMATEX CSndDataty1::getAudioWaveDataWfx() const
{
    return m_wfx;
}

int CSndDataty1::hasAudioWaveData()
{
    if (m_data.empty())
        return 0;
    return isUsableWfx(m_wfx) ? 1 : 0;
}

int CSndDataty1::getBlockDataPointer(char** data, unsigned long* size, bool copy)
{
    if (data == nullptr || size == nullptr)
        return 0;
    *data = nullptr;
    *size = 0;
    if (m_data.empty())
        return 0;
    char* block = getDataPointer();
    if (copy)
    {
        block = new (std::nothrow) char[m_data.size()];
        if (block == nullptr)
            return 0;
        std::memcpy(block, m_data.data(), m_data.size());
    }
    *data = block;
    *size = getDataSize();
    return 1;
}

int CSndDataty1::isWaveFormatexSame(tWAVEFORMATEX wfx) const
{
    bool same = wfx.wFormatTag == m_wfx.wFormatTag && wfx.nChannels == m_wfx.nChannels &&
                wfx.nSamplesPerSec == m_wfx.nSamplesPerSec &&
                wfx.nAvgBytesPerSec == m_wfx.nAvgBytesPerSec &&
                wfx.nBlockAlign == m_wfx.nBlockAlign &&
                wfx.wBitsPerSample == m_wfx.wBitsPerSample && wfx.cbSize == m_wfx.cbSize;
    return same ? 1 : 0;
}

// The copy is made before anything is touched, so a failed allocation changes nothing.
int CSndDataty1::replaceData(const char* data, unsigned long size, const tWAVEFORMATEX& wfx)
{
    try
    {
        std::vector<char> copy(data, data + size);
        m_data.swap(copy);
    }
    catch (const std::bad_alloc&)
    {
        return 0;
    }
    m_wfx = wfx;
    return 1;
}

// The held size is reported as unsigned long (32 bits on Windows); growth stops there.
int CSndDataty1::appendData(const char* data, unsigned long size)
{
    if (size > ULONG_MAX - m_data.size())
        return 0;
    try
    {
        m_data.insert(m_data.end(), data, data + size);
    }
    catch (const std::bad_alloc&)
    {
        return 0;
    }
    return 1;
}

void CSndDataty1::truncateData(unsigned long size, const tWAVEFORMATEX& wfx)
{
    if (size < m_data.size())
        m_data.resize(size);
    m_wfx = wfx;
}

void CSndDataty1::clearData()
{
    std::vector<char>().swap(m_data);
}

void CSndDataty1::setWfx(const tWAVEFORMATEX& wfx)
{
    m_wfx = wfx;
}

// Only a hint: when the memory is not there, appending later grows the storage as needed.
void CSndDataty1::reserveData(unsigned long extra)
{
    try
    {
        m_data.reserve(m_data.size() + extra);
    }
    catch (const std::exception&)
    {
    }
}

// A recording reserves generously; once it is closed the unused part is handed back.
void CSndDataty1::releaseSpareCapacity()
{
    try
    {
        m_data.shrink_to_fit();
    }
    catch (const std::bad_alloc&)
    {
    }
}

bool CSndDataty1::isUsableWfx(const tWAVEFORMATEX& wfx)
{
    return wfx.nChannels != 0 && wfx.nSamplesPerSec != 0 && wfx.nBlockAlign != 0;
}

bool CSndDataty1::isAssembling() const
{
    return m_bAssembling;
}

void CSndDataty1::setAssembling(bool assembling)
{
    m_bAssembling = assembling;
}
