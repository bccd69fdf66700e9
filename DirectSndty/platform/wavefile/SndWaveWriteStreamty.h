#pragma once
// The wave-file stream writer: a PCM wave file written piece by piece while it is recorded.
// The file starts with the canonical 44-byte header (RIFF, WAVE, a 16-byte fmt chunk,
// data). After every Write the header tells the data written so far, so a process killed
// while recording leaves a file that reads whole; Close, or destruction without Close, sets
// the sizes for good and pads an odd data size with one zero byte. A RIFF file describes
// less than 4 GiB: a Write that would pass that is refused whole and the file stays valid,
// unless the file was opened to grow past 4 GiB. Such a file keeps the room of a ds64 chunk
// in a 36-byte JUNK chunk before fmt (80-byte header, still a plain wave file) and becomes
// an RF64 file (EBU Tech 3306) in place when its data outgrows the 32-bit sizes.

#include <afx.h>
#include <mmsystem.h>
#include <mmreg.h>
#include <memory>
#include "WaveFileExport.h"
#include "WaveFileResult.h"

class WAVEFILE_API CSndWaveWriteStreamty : public CObject
{
    DECLARE_DYNAMIC(CSndWaveWriteStreamty)

public:
    CSndWaveWriteStreamty();
    // Finishes an open file as Close() does.
    virtual ~CSndWaveWriteStreamty();

    // Finishes any file still open, then creates (or replaces) fileName, relative to the
    // current folder unless it has one, with a header describing no data yet. The format
    // must be integer PCM (tag 1) of 8, 16, 24 or 32 bits with nBlockAlign = nChannels x
    // bytes per sample; nAvgBytesPerSec is written as rate x block alignment and cbSize is
    // not used. 1 on success; 0, with no file created, for an empty name or a format that
    // cannot be written, or when the file cannot be created.
    int Open(CString fileName, tWAVEFORMATEX* wfx);
    // The same, for a file that may grow past 4 GiB when bMayPass4GiB is TRUE.
    int Open(CString fileName, tWAVEFORMATEX* wfx, BOOL bMayPass4GiB);

    // Appends size bytes of data; *written (may be null) gets the bytes that reached the
    // file, which the header then counts. 1 when all did; 0 when none is open, data is null,
    // the data would pass the RIFF limit (then nothing is written) or the file cannot be
    // written (a full disk: then what did reach the file is kept and counted).
    int Write(unsigned int size, unsigned char* data, unsigned int* written);

    // Finishes the file with totalDataBytes of data and closes it. Bytes written beyond that
    // are cut off. A size beyond the bytes written cannot be described: the file is then
    // finished with the bytes written and the result is 0 (WAVEFILE_ERR_SIZE_MISMATCH).
    // 0 when no file is open or the header cannot be written.
    int Close(unsigned long totalDataBytes);
    // Finishes the file with all the bytes written and closes it.
    int Close();

    BOOL IsOpen() const;
    // Bytes of data written since Open; after Close, the data size the file was finished with.
    // The 32-bit count stops at 0xFFFFFFFF; the 64-bit one counts on.
    unsigned long GetDataBytesWritten() const;
    ULONGLONG GetDataBytesWritten64() const;
    // TRUE once the file has become an RF64 file.
    BOOL IsRf64() const;
    // The format being written; all zero when no file is open.
    tWAVEFORMATEX GetFormat() const;
    // Result of the last operation.
    WaveFileResult GetResult() const;

private:
    struct Impl;
    std::unique_ptr<Impl> m_pImpl;
};
