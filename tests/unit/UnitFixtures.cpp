#include "UnitFixtures.h"
#include <algorithm>
#include <mutex>

namespace
{
std::mutex g_lock;
std::vector<std::wstring> g_texts;

int CALLBACK recordAndAnswerOk(LPCTSTR lpszText, UINT /*nType*/, UINT /*nIDHelp*/)
{
    std::lock_guard<std::mutex> hold(g_lock);
    g_texts.push_back(lpszText);
    return IDOK;
}
}

MessageBoxLog::MessageBoxLog()
{
    clear();
    AfxSetMessageBoxAnswerer(recordAndAnswerOk);
}

MessageBoxLog::~MessageBoxLog()
{
    AfxSetMessageBoxAnswerer(NULL);
}

Texts MessageBoxLog::texts() const
{
    std::lock_guard<std::mutex> hold(g_lock);
    return g_texts;
}

bool MessageBoxLog::saw(const std::wstring& text) const
{
    const Texts seen = texts();
    return std::find(seen.begin(), seen.end(), text) != seen.end();
}

void MessageBoxLog::clear()
{
    std::lock_guard<std::mutex> hold(g_lock);
    g_texts.clear();
}

TempFile::TempFile()
{
    wchar_t folder[MAX_PATH], name[MAX_PATH];
    GetTempPathW(MAX_PATH, folder);
    GetTempFileNameW(folder, L"dst", 0, name);
    path = name;
}

TempFile::~TempFile()
{
    DeleteFileW(path.c_str());
}

Bytes TempFile::bytes() const
{
    CFile file(path.c_str(), CFile::modeRead);
    Bytes data(static_cast<size_t>(file.GetLength()));
    if (!data.empty())
        file.Read(data.data(), static_cast<UINT>(data.size()));
    return data;
}

void TempFile::write(const Bytes& data) const
{
    CFile file(path.c_str(), CFile::modeCreate | CFile::modeWrite);
    file.Write(data.data(), static_cast<UINT>(data.size()));
}

tWAVEFORMATEX pcmFormat(WORD channels, DWORD rate, WORD bits)
{
    const WORD align = static_cast<WORD>(channels * bits / 8);
    return {WAVE_FORMAT_PCM, channels, rate, rate * align, align, bits, 0};
}

bool sameFormat(const tWAVEFORMATEX& a, const tWAVEFORMATEX& b)
{
    return memcmp(&a, &b, sizeof(tWAVEFORMATEX)) == 0;
}

std::unique_ptr<CSndDatatyx> rampData(tWAVEFORMATEX wfx, unsigned long bytes)
{
    std::vector<char> data(bytes);
    for (unsigned long i = 0; i < bytes; i++)
        data[i] = static_cast<char>(i * 7 + 1);
    auto pSndData = std::make_unique<CSndDatatyx>();
    pSndData->setNewSndData(data.data(), bytes, wfx);
    return pSndData;
}

Names sequence(const dstap::DSoundTap& tap, std::initializer_list<const char*> methods)
{
    Names seen;
    for (const dstap::Call& call : tap.calls())
    {
        if (std::find(methods.begin(), methods.end(), call.method) == methods.end())
            continue;
        const std::string name = call.method.substr(call.method.find("::") + 2);
        const LONG last = call.args.empty() ? 0 : static_cast<LONG>(call.args.back());
        seen.push_back(call.args.empty() ? name : name + "(" + std::to_string(last) + ")");
    }
    return seen;
}

Names starts(const dstap::DSoundTap& tap)
{
    return sequence(tap, {"IDirectSoundBuffer::Stop", "IDirectSoundBuffer::SetCurrentPosition",
                          "IDirectSoundBuffer::Play", "IDirectSoundBuffer::Restore"});
}

void CaptureRing::advance(size_t bytes)
{
    const size_t valid = written > readLag ? written - readLag : 0;
    written += bytes;
    for (size_t i = valid; i + readLag < written; i++)
        memory[i % memory.size()] = pattern(i);
    for (size_t i = written > readLag ? written - readLag : 0; i < written; i++)
        memory[i % memory.size()] = kNotYet;
    if (clock != nullptr && bytesPerSecond != 0)
        clock->setClock(static_cast<DWORD>(1000 + written * 1000 / bytesPerSecond));
}

// The library reads capture on the test's thread, so the ring needs no lock.
std::shared_ptr<CaptureRing> scriptCapture(dstap::DSoundTap& tap, size_t ringBytes, BYTE (*pattern)(size_t),
                                           bool wrapCursors, DWORD bytesPerSecond)
{
    auto ring = std::make_shared<CaptureRing>();
    ring->memory.resize(ringBytes);
    ring->pattern = pattern;
    ring->clock = &tap;
    ring->bytesPerSecond = bytesPerSecond;
    ring->advance(0);
    tap.answer("IDirectSoundCaptureBuffer::GetStatus", [ring](const dstap::Call& call) {
        if (DWORD* status = call.out<DWORD>(0))
            *status = ring->capturing() ? DSCBSTATUS_CAPTURING : 0;
        return DS_OK;
    });
    // A buffer stopped when full reads both cursors at its start again.
    tap.answer("IDirectSoundCaptureBuffer::GetCurrentPosition", [ring, wrapCursors](const dstap::Call& call) {
        const size_t read = ring->written > ring->readLag ? ring->written - ring->readLag : 0;
        const size_t size = ring->memory.size();
        const size_t at[2] = {ring->capturing() ? ring->written : 0, ring->capturing() ? read : 0};
        for (size_t k = 0; k < 2; k++)
            if (DWORD* cursor = call.out<DWORD>(k))
                *cursor = static_cast<DWORD>(wrapCursors ? at[k] % size : at[k]);
        return DS_OK;
    });
    tap.answer("IDirectSoundCaptureBuffer::Lock", [ring](const dstap::Call& call) {
        const size_t size = ring->memory.size(), offset = call.args[0] % size, bytes = call.args[1];
        const size_t first = std::min(bytes, size - offset);
        *call.out<void*>(2) = ring->memory.data() + offset;
        *call.out<DWORD>(3) = static_cast<DWORD>(first);
        *call.out<void*>(4) = bytes > first ? ring->memory.data() : nullptr;
        *call.out<DWORD>(5) = static_cast<DWORD>(bytes - first);
        ring->openLocks++;
        return DS_OK;
    });
    tap.answer("IDirectSoundCaptureBuffer::Unlock", [ring](const dstap::Call&) {
        ring->openLocks--;
        return DS_OK;
    });
    return ring;
}

void DeviceTest::openDevice()
{
    ASSERT_EQ(1, device.createDSndObject(NULL));
    tap.clearLog();
}

void DeviceTest::bringLevel(TestDevice& target, DWORD level)
{
    ASSERT_EQ(1, target.setDSndCooperatLevelStd(kWindow, level));
    ASSERT_EQ(1, target.setDSndCooperatLevelStd(kWindow, level));
    const auto levels = tap.callsTo("IDirectSound8::SetCooperativeLevel");
    ASSERT_FALSE(levels.empty());
    ASSERT_EQ(level, levels.back().args[1]);
}
