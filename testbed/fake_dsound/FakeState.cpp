#include "FakeState.h"

namespace fakeds
{

namespace
{

// Made-up identifiers for the non-default devices.
constexpr GUID kNullSinkGuid = {0x5a7c3e1d, 0x92b4, 0x4f06, {0x8d, 0x31, 0x6e, 0x0b, 0x47, 0xa2, 0xc9, 0x15}};
constexpr GUID kNullSinkMonitorGuid = {0x5a7c3e1e, 0x92b4, 0x4f06, {0x8d, 0x31, 0x6e, 0x0b, 0x47, 0xa2, 0xc9, 0x15}};

DSCAPS defaultCaps()
{
    DSCAPS caps{};
    caps.dwSize = sizeof(DSCAPS);
    caps.dwFlags = 0xF5F;
    caps.dwMinSecondarySampleRate = DSBFREQUENCY_MIN;
    caps.dwMaxSecondarySampleRate = 200000;
    caps.dwPrimaryBuffers = 1;
    caps.dwMaxHwMixingAllBuffers = 1;
    caps.dwMaxHwMixingStaticBuffers = 1;
    caps.dwMaxHwMixingStreamingBuffers = 1;
    caps.dwFreeHwMixingAllBuffers = 1;
    caps.dwFreeHwMixingStaticBuffers = 1;
    caps.dwFreeHwMixingStreamingBuffers = 1;
    return caps;
}

WAVEFORMATEX pcm(WORD channels, DWORD rate, WORD bits)
{
    WAVEFORMATEX format{};
    format.wFormatTag = WAVE_FORMAT_PCM;
    format.nChannels = channels;
    format.nSamplesPerSec = rate;
    format.wBitsPerSample = bits;
    format.nBlockAlign = static_cast<WORD>(channels * bits / 8);
    format.nAvgBytesPerSec = rate * format.nBlockAlign;
    return format;
}

} // namespace

Settings::Settings()
    : caps(defaultCaps()),
      captureCaps{sizeof(DSCCAPS), 0, 0xFFFFF, 2},
      speakerConfig(DSSPEAKER_COMBINED(DSSPEAKER_STEREO, DSSPEAKER_GEOMETRY_WIDE)),
      primaryFormat(pcm(2, 22050, 16)),
      primaryStatus(0),
      playbackDevices{{false, GUID{}, "Primary Sound Driver", ""},
                      {true, kNullSinkGuid, "Null Output", "winemm.vxd"}},
      captureDevices{{false, GUID{}, "Primary Sound Capture Driver", ""},
                     {true, kNullSinkMonitorGuid, "Monitor of Null Output", "winemm.vxd"}}
{
}

} // namespace fakeds
