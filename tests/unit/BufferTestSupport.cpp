#include "BufferTestSupport.h"
#include <algorithm>

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
    for (const size_t end = written + bytes; written < end; written++)
        memory[written % memory.size()] = pattern(written);
}

// The library reads capture on the test's thread, so the ring needs no lock.
std::shared_ptr<CaptureRing> scriptCapture(dstap::DSoundTap& tap, size_t ringBytes, BYTE (*pattern)(size_t))
{
    auto ring = std::make_shared<CaptureRing>();
    ring->memory.resize(ringBytes);
    ring->pattern = pattern;
    tap.answerWith("IDirectSoundCaptureBuffer::GetStatus", 0, DWORD{DSCBSTATUS_CAPTURING});
    tap.answer("IDirectSoundCaptureBuffer::GetCurrentPosition", [ring](const dstap::Call& call) {
        *call.out<DWORD>(0) = *call.out<DWORD>(1) = static_cast<DWORD>(ring->written);
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
