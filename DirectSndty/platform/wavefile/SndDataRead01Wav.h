#pragma once
// First layer of the wave-file reader: opens a RIFF/WAVE file, finds its format and its
// sound data, and reads the data in pieces.
//
// Accepted: integer PCM stored as WAVE_FORMAT_PCM or as WAVE_FORMAT_EXTENSIBLE with the PCM
// sub-format, at any channel count and at 8, 16, 24 or 32 bits (sizes below whole bytes
// round up to whole bytes, as the format prescribes), and 32-bit IEEE float, plain or
// extensible. The format is reported as a plain record (tag WAVE_FORMAT_PCM, or
// WAVE_FORMAT_IEEE_FLOAT for float; cbSize 0) with nAvgBytesPerSec recomputed from rate and
// block alignment; whether a player can use it (the sound library plays 8- and 16-bit
// integers) is the player's call.
// Refused: any other format, a fmt chunk whose block alignment disagrees with channels and
// sample size, files cut off before the sound data starts. A data chunk that claims more
// than the file holds is clipped to what is there. RF64 files (EBU Tech 3306), whose sound
// data may pass 4 GiB, are read as well: the 32-bit byte counts then stop at 0xFFFFFFFF,
// and getSndDataSize64 tells the whole size.

#include <afx.h>
#include <mmsystem.h>
#include <mmreg.h>
#include <memory>
#include "WaveFileExport.h"
#include "WaveFileResult.h"

class WAVEFILE_API CSndDataRead01Wav : public CObject
{
    DECLARE_DYNAMIC(CSndDataRead01Wav)

public:
    CSndDataRead01Wav();
    // Closes the file.
    virtual ~CSndDataRead01Wav();

    // Opens pathName and positions at the start of its sound data, closing any file open
    // before. 1 on success; 0 otherwise, with no file open and the reason in getSndFileResult.
    int openSndFileMmio(LPCWSTR pathName);
    // Closes the file; harmless when none is open. Always 1.
    int closeSndFileMmio();
    BOOL isSndFileOpen() const;

    // The open file's format as a plain PCM record; all zero when no file is open.
    tWAVEFORMATEX getSndFileWfx() const;
    // The tag the file stores (WAVE_FORMAT_PCM or WAVE_FORMAT_EXTENSIBLE); 0 when none is open.
    WORD getSndFileFormatTag() const;
    // Bytes of sound data in whole sample frames, clipped to what the file holds.
    unsigned long getSndDataSize() const;
    // Bytes of sound data not read yet.
    unsigned long getSndDataLeft() const;
    ULONGLONG getSndDataSize64() const;
    // TRUE when the open file is an RF64 file.
    BOOL isSndFileRf64() const;
    // TRUE when the data chunk claims more bytes than the file holds (a cut-off file).
    BOOL isSndDataClipped() const;
    // Result of the last operation.
    WaveFileResult getSndFileResult() const;

protected:
    // Copies up to bytes of sound data into data; bytes becomes the number copied. 1 unless
    // no file is open, data is null or the file cannot be read.
    int readSndData(void* data, unsigned long& bytes);

private:
    struct Impl;
    std::unique_ptr<Impl> m_pImpl;
};
