#pragma once
// Wave files in and out of sound-data containers, through the wave-file library.

#include "SndDatatyx.h"
#include "SndDataReadtyStream.h"

#include <string>

// Reads the whole sound of a wave file into `data`, made playable: 24- and 32-bit integer and
// 32-bit float PCM become 16-bit. False, with the reason, when the file cannot be opened, is
// no wave file, holds a format or channel count that cannot be played, or cannot be read.
bool readWaveFile(const std::wstring& path, CSndDatatyx& data, std::string& reason);

// Opens a PCM wave file for reading piece by piece: `size` gets its bytes of sound and
// `wfx` its format. False, with the reason, as for readWaveFile.
bool openWaveStream(const std::wstring& path, CSndDataReadtyStream& reader, unsigned long& size,
                    tWAVEFORMATEX& wfx, std::string& reason);

// Creates `path` as a wave file with no sound yet, so that a path that cannot be written is
// found before anything is recorded. False with the reason.
bool createEmptyWaveFile(const std::wstring& path, std::string& reason);

// Writes the first `bytes` of `data` (whole sample frames) as a wave file in its format.
bool writeWaveFile(const std::wstring& path, const CSndDatatyx& data, unsigned long bytes, std::string& reason);

// Playable by the library: 8- or 16-bit PCM, one or two channels. False with the reason.
bool isPlayableFormat(const tWAVEFORMATEX& wfx, std::string& reason);

// Seconds of sound that `bytes` hold in `wfx`.
double secondsOf(unsigned long bytes, const tWAVEFORMATEX& wfx);
