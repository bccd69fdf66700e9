// A C++ host of the installed classes: it opens the default device, plays a short tone through
// the record/play facade, and says what it did.
#include "DirectSndty.h"

#include <cmath>
#include <cstdio>
#include <vector>

int main()
{
    HWND window = CreateWindowW(L"STATIC", L"package host", WS_OVERLAPPED, 0, 0, 10, 10, NULL, NULL,
                                GetModuleHandleW(NULL), NULL);
    CDirectSndDevicety device;
    if (!device.initDSndStimX(window, NULL, DSSCL_PRIORITY))
    {
        std::printf("the default device could not be opened\n");
        return 1;
    }
    std::vector<short> pcm(2 * 4410);
    for (size_t i = 0; i < pcm.size() / 2; i++)
        pcm[2 * i] = pcm[2 * i + 1] = static_cast<short>(12000.0 * std::sin(i * 2.0 * 3.14159265 * 440.0 / 44100));
    const tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
    CSndDatatyx tone;
    tone.setNewSndData(reinterpret_cast<const char*>(pcm.data()), static_cast<unsigned long>(pcm.size() * 2), wfx);
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(&device);
    int played = 0;
    {
        CSndDataRecordPlaytyx player;
        player.setSndData(&tone);
        played = player.playBegin(NULL, 0, 0);
        Sleep(200);
        player.playStop();
    }
    CSndDataRecordPlayty4Pdsnd::setDirectSndDevice(NULL);
    device.releaseDSndty(&device);
    DestroyWindow(window);
    std::printf("C++ host played a tone: %s\n", played ? "yes" : "no");
    return played ? 0 : 1;
}
