// Every road a host takes, run once to log its platform calls, then once per logged call with
// that call failing: generically, as a lost buffer where a buffer is asked, and as a success
// other than S_OK. Every run must end without a crash or a hang, with a result that says the
// road failed unless the library deliberately passes over that call, with only the library's
// own message texts shown, and with every interface and notification event let go.

#include "UnitFixtures.h"
#include "SndDataReadtyStream.h"
#include "SndWaveWriteStreamty.h"

#include <cstdio>
#include <functional>
#include <map>
#include <set>

namespace
{
using Results = std::vector<int>;

const tWAVEFORMATEX kCd = pcmFormat(2, 44100, 16);

class SweptFacade : public CSndDataRecordPlaytyx
{
public:
    using CSndDataRecordPlayty2Rdsnd::killDirectSndCpture;
};

// What a road works on; made afresh for every run, the device before the objects made of it.
struct Roadside
{
    TestDevice device;
    std::unique_ptr<CSndDatatyx> data = rampData(kCd, 17640); // a tenth of a second
    TempFile file;

    int openDevice() { return device.createDSndObject(NULL); }
};

struct Road
{
    const char* name;
    std::function<Results(Roadside&)> run; // the results of its operations, in order
    // Calls whose failure the road's operations pass over by design: "Interface::Method#n", the
    // interface without its "IDirectSound" ("8::Compact#1" is IDirectSound8's first Compact).
    const char* passedOver;
};

// A braced list is evaluated in order, so each road reads as the host's calls.
Results stimulusBringUp(Roadside& side)
{
    TestDevice& d = side.device;
    return {d.initDSndStimX(kWindow, NULL, DSSCL_EXCLUSIVE), d.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY),
            d.createDSndBuff1Primary(), d.setDSndPrimaryWfx(kCd)};
}

Results hardwareBringUp(Roadside& side)
{
    TestDevice& d = side.device;
    return {d.enumerateDirectSndDeviceInfo() != NULL, side.openDevice(), d.get2ndChannels(),
            d.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY), d.setDSndCooperatLevelStd(kWindow, DSSCL_PRIORITY),
            d.createDSndBuff1Primary(), d.setDSndPrimaryWfx(kCd), d.playDSnd1PrimaryBuf(), d.stopDSnd1PrimaryBuf(),
            d.setHeadPhone()};
}

Results plays2D(Roadside& side)
{
    TestBuffer b;
    return {side.openDevice(), b.setSndData2DSndBuf2ndStd(side.data.get(), &side.device), b.sendAudioStim(),
            b.sendAudioStimLoop(), b.panMuteLeft(), b.panMuteRight(), b.panCenter(), b.stopAudioStim(),
            b.releaseDirectSnd2DBuff()};
}

Results plays3D(Roadside& side)
{
    TestBuffer b;
    Results r{side.openDevice(), b.setSndData2DS3Dbuff2(side.data.get(), &side.device), b.sendAudStim3DSndStatic(),
              b.stopAudioStimDS3D()};
    b.m_ds3dBuffer.vVelocity = {2, 0, 0};
    r.push_back(b.sendAudioStimDS3D()); // the test clock runs it to its end in a few steps
    if (b.m_pMoveThread)
        r.push_back(WaitForSingleObject(b.m_pMoveThread->m_hThread, kWait) == WAIT_OBJECT_0);
    CDirectSndDevicety& d = side.device;
    r.insert(r.end(), {b.getDS3DBuffPara(), d.getDS3DListenerPara(), d.setCommitDS3DListenerParam(),
                       d.commitDS3DListenerDeferredSettings()});
    return r;
}

Results notifiedPlay(Roadside& side)
{
    TestBuffer b;
    b.m_wfx = kCd;
    b.m_dsbd.dwFlags = DSBCAPS_CTRLPOSITIONNOTIFY;
    b.m_dsbd.dwBufferBytes = 176400;
    b.m_pDSndDevice = &side.device;
    return {side.openDevice(), b.createDSndBuff2ndStd() == 176400, b.quaryNotify(), b.initNotifyEvt(1000000, 1000, kCd),
            b.playDSnd2ndBuf(), b.stopDSnd2ndBuf(), b.initStopEvt(), b.playDSnd2ndBufLoop(), b.stopDSnd2ndBuf()};
}

Results streamedPlay(Roadside& side)
{
    CSndWaveWriteStreamty writer;
    std::vector<BYTE> second(176400, 0x21);
    writer.Open(CString(side.file.path.c_str()), const_cast<tWAVEFORMATEX*>(&kCd));
    writer.Write(static_cast<unsigned>(second.size()), second.data(), nullptr);
    writer.Close();
    CSndDataReadtyStream reader;
    unsigned long size = 0;
    tWAVEFORMATEX wfx = kCd;
    reader.initStream2Read(CString(side.file.path.c_str()), &size, &wfx);
    TestBuffer stream;
    stream.m_pDSndDevice = &side.device;
    stream.m_pSndDataReadStream = &reader;
    Results r{side.openDevice(), stream.initPlayStream(kWindow, kCd), stream.playDSnd2ndBufLargeFileStream()};
    if (r.back() == 1 && SetEvent(stream.m_hStreamEvent[1])) // the cursor at the half: a refill
        r.push_back(stream.waitStreamEvt());
    r.push_back(stream.stopDSnd2ndBufLargeFileStream());
    reader.closeSndFileMmio();
    return r;
}

Results facadePlayAndRecord(Roadside& side)
{
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&side.device);
    SweptFacade player, recorder;
    player.setSndData(side.data.get());
    Results r{side.openDevice(), player.playBegin(NULL, 0, 0), player.playStop(), recorder.recordBegin(NULL, 0),
              recorder.recordUpdate(), recorder.recordStop()};
    recorder.killDirectSndCpture();
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(NULL);
    return r;
}

Results fixedCapture(Roadside&)
{
    auto capture = std::make_unique<CDSndCapturetyx>();
    char* pData = nullptr;
    unsigned long bytes = 0;
    Results r{capture->initDataSizeWfxNonCircle(kCd, 17640), capture->recordStart(),
              capture->copyUnCircleBufferData(pData, &bytes), capture->recordStop()};
    delete[] pData;
    return r;
}

Results circularCapture(Roadside&)
{
    std::vector<char> block(1587600);
    auto c = std::make_unique<CDSndCapturetyx>();
    return {c->initDataSizeWfxCirclePro(kCd, static_cast<unsigned long>(block.size()), block.data()), c->recordStart(),
            static_cast<int>(c->getNewRecordDataSize()), c->recordStop()};
}

Results streamedCapture(Roadside& side)
{
    CSndWaveWriteStreamty writer;
    writer.Open(CString(side.file.path.c_str()), const_cast<tWAVEFORMATEX*>(&kCd));
    auto stream = std::make_unique<CDSndCapturetyStream>();
    stream->m_pSndWaveWriteStream = &writer;
    std::vector<char> ring(4096);
    int position = 0;
    return {stream->initCapture2stream(kCd, 352800), stream->startCaptureStream(),
            stream->getRecordNewStreamData(ring.data(), 4096, position, true), stream->stopCaptureStream()};
}

Results settingsFiles(Roadside& side)
{
    TestBuffer b;
    return {side.openDevice(), side.file.store(side.device), side.file.load(side.device),
            b.setSndData2DS3Dbuff2(side.data.get(), &side.device), side.file.store(b), side.file.load(b)};
}

// Passed over everywhere: the primary buffer's format read (a format that cannot be read is
// set), rewinds, a first play that is not a lost buffer (the second decides, or the play counts
// as started), the stream's refill locks, a stop before play, deferred commits of a static
// start, parameter reads into the working records, and the default format a capture object
// reads when it is made (the set-up opens the capture device again).
const Road kRoads[] = {
    {"stimulus bring-up", stimulusBringUp, "8::Compact#1 Buffer::GetFormat#1 Buffer::GetFormat#2"},
    {"hardware bring-up", hardwareBringUp,
     "Buffer::GetFormat#1 Buffer::GetFormat#2 Buffer::SetCurrentPosition#1 Buffer::Play#1"},
    {"2D plays", plays2D, "Buffer::SetCurrentPosition#1 Buffer::Play#1 Buffer::SetCurrentPosition#2 Buffer::Play#3"},
    {"3D plays", plays3D,
     "3DBuffer::GetAllParameters#1 3DListener::GetAllParameters#1 Buffer::Stop#1 Buffer::Stop#3 "
     "3DListener::CommitDeferredSettings#1 3DListener::CommitDeferredSettings#2 Buffer::SetCurrentPosition#1 "
     "Buffer::Play#1 Buffer::SetCurrentPosition#2 Buffer::Play#3 3DBuffer::GetAllParameters#2 "
     "3DListener::GetAllParameters#2"},
    {"notified play", notifiedPlay,
     "Buffer::SetCurrentPosition#1 Buffer::Play#1 Buffer::SetCurrentPosition#2 Buffer::Play#2"},
    {"streamed play", streamedPlay,
     "Buffer::Lock#1 Buffer::Unlock#1 Buffer::Play#1 Buffer::Lock#2 Buffer::Unlock#2 Buffer::Stop#1"},
    // The facade ignores how its play starts and stops, capture copies do not look at Unlock, and
    // the recording's stop takes what is left as far as it can.
    {"facade", facadePlayAndRecord, "Buffer::SetCurrentPosition#1 Buffer::Play#1 Buffer::Stop#1 "
     "DirectSoundCaptureCreate8#1 Capture::GetCaps#1 CaptureBuffer::GetFormat#1 CaptureBuffer::Unlock#1 "
     "CaptureBuffer::GetStatus#2 CaptureBuffer::GetCurrentPosition#2 CaptureBuffer::Stop#1"},
    {"fixed capture", fixedCapture, "DirectSoundCaptureCreate8#1 Capture::GetCaps#1 CaptureBuffer::GetFormat#1 "
     "CaptureBuffer::Unlock#1"},
    {"circular capture", circularCapture,
     "DirectSoundCaptureCreate8#1 Capture::GetCaps#1 CaptureBuffer::GetFormat#1 CaptureBuffer::GetStatus#1"},
    // The stream's stop always answers 1.
    {"streamed capture", streamedCapture, "DirectSoundCaptureCreate8#1 Capture::GetCaps#1 CaptureBuffer::GetFormat#1 "
     "CaptureBuffer::Unlock#1 CaptureBuffer::Stop#1 CaptureBuffer::GetCurrentPosition#2 CaptureBuffer::Stop#2"},
    {"settings files", settingsFiles, "3DBuffer::GetAllParameters#1 3DListener::GetAllParameters#1"},
};

// Calls decided by their result being exactly S_OK; a success other than S_OK from any other
// call must change nothing.
const std::set<std::string> kExactlyOk = {
    "DirectSoundEnumerateA", "IDirectSound8::GetCaps", "IDirectSoundBuffer::QueryInterface",
    "IDirectSoundNotify::SetNotificationPositions", "IDirectSoundCaptureBuffer::QueryInterface",
    "IDirectSoundCaptureBuffer::Start", "IDirectSoundCaptureBuffer::Stop",
    "IDirectSoundCaptureBuffer::GetCurrentPosition"};

// Every text a failure on these roads may show.
const std::set<std::wstring> kTexts = {
    L"CommitDeferredSettings error!", L"Copy data error!", L"Create Direct sound 3D listener error",
    L"Create Direct sound buffer 3D error", L"Direct sound 3D listener set all parameters error",
    L"Direct sound buffer 3D set all parameters error", L"Direct sound is not initialized",
    L"Enumerating audio devices error", L"Init stop event error", L"InitNotify error", L"Make capture buffer error",
    L"No data for copying", L"Please initialize Direct3DSndListener first!",
    L"Please make the second direct sound buffer initialized", L"Primary sound buffer is not initialized",
    L"Query Direct Sound notify error", L"Query Interface error!", L"Set direct sound cooperative level error",
    L"Set speaker configuration error", L"Sound capturer has not been initialized!", L"Stop null direct buffer",
    L"This system does not supoort 2c4kh16b",
    L"To change primary sound buffer formate, direct sound cooperative level at least priority",
    L"make DSnd catpure error", L"prepare sound data buffer  error", L"setup record object error"};

bool knownText(const std::wstring& text)
{
    const std::wstring primary = L"Create direct sound primary buffer error:"; // then the system's error code
    return kTexts.count(text) || (text.rfind(primary, 0) == 0 && text.size() > 3 && text.substr(text.size() - 2) == L" \n");
}

// One platform call: the method and which of its calls it was in the road.
struct CallSite
{
    std::string method;
    int nth;

    bool in(const char* list) const
    {
        const std::string shortName = method.rfind("IDirectSound", 0) == 0 ? method.substr(12) : method;
        const std::string token = " " + shortName + "#" + std::to_string(nth) + " ";
        return (" " + std::string(list) + " ").find(token) != std::string::npos;
    }
};

std::vector<CallSite> callSites(const dstap::DSoundTap& tap)
{
    std::vector<CallSite> sites;
    std::map<std::string, int> seen;
    for (const dstap::Call& call : tap.calls())
    {
        const bool counted = call.method.find("::AddRef") == std::string::npos &&
                             call.method.find("::Release") == std::string::npos;
        if (counted)
            sites.push_back({call.method, ++seen[call.method]});
    }
    return sites;
}

bool asksABuffer(const std::string& method)
{
    return method.rfind("IDirectSoundBuffer", 0) == 0;
}

struct Outcome
{
    Results results;
    Texts shown;
    std::string leaks;
    std::vector<CallSite> sites;
};

Outcome drive(const Road& road, const CallSite* failing, HRESULT hr, MessageBoxLog& messages)
{
    Outcome outcome;
    dstap::DSoundTap tap;
    tap.setClock(10000);
    tap.setClockStep(250);
    messages.clear();
    if (failing)
        tap.failNth(failing->method, failing->nth, hr);
    // Capture always holds 50 ms more than was taken, so what a road reads does not depend on
    // how fast it runs.
    tap.answer("IDirectSoundCaptureBuffer::GetCurrentPosition", [](const dstap::Call& call) {
        for (size_t k = 0; k < 2; k++)
            if (DWORD* cursor = call.out<DWORD>(k))
                *cursor = 8820;
        return DS_OK;
    });
    {
        Roadside side;
        outcome.results = road.run(side);
    }
    outcome.shown = messages.texts();
    outcome.leaks = tap.leakReport();
    if (tap.openNotificationHandles() != 0)
        outcome.leaks += std::to_string(tap.openNotificationHandles()) + " notification events open\n";
    outcome.sites = callSites(tap);
    return outcome;
}

} // namespace

TEST(FailureSweep, EveryPlatformCallFailedOnceEndsInAFailureResultWithNothingLeftBehind)
{
    MessageBoxLog messages;
    int runs = 0;
    for (const Road& road : kRoads)
    {
        const Outcome clean = drive(road, nullptr, S_OK, messages);
        ASSERT_EQ("", clean.leaks) << road.name;
        int roadRuns = 0;
        for (const CallSite& site : clean.sites)
            for (HRESULT hr : {E_FAIL, DSERR_BUFFERLOST, S_FALSE})
            {
                if (hr == DSERR_BUFFERLOST && !asksABuffer(site.method))
                    continue;
                char code[16];
                std::snprintf(code, sizeof code, "0x%08lX", static_cast<unsigned long>(hr));
                const std::string what = std::string(road.name) + ": " + site.method + " #" + std::to_string(site.nth) + " answering " + code;
                std::fprintf(stderr, "%s\n", what.c_str()); // names the run a hang stops in
                const Outcome failed = drive(road, &site, hr, messages);
                roadRuns++;
                EXPECT_EQ("", failed.leaks) << what;
                for (const std::wstring& text : failed.shown)
                    EXPECT_TRUE(knownText(text)) << what << " showed \"" << std::string(text.begin(), text.end()) << '"';
                if (hr == E_FAIL)
                {
                    EXPECT_EQ(site.in(road.passedOver), failed.results == clean.results) << what;
                }
                else if (hr == S_FALSE && !kExactlyOk.count(site.method))
                {
                    EXPECT_EQ(clean.results, failed.results) << what;
                }
            }
        std::printf("%-18s %3zu calls, %4d runs\n", road.name, clean.sites.size(), roadRuns);
        runs += roadRuns;
    }
    std::printf("%d runs\n", runs);
}
