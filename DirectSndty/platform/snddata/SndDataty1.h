#pragma once
// First layer of the sound-data container: a copy of a block of PCM bytes and its wave
// format, and the read operations playback needs.

#include <afx.h>
#include <mmsystem.h>
#include <mmreg.h>
#include <vector>
#include "SndDataExport.h"

class SNDDATA_API CSndDataty1 : public CObject
{
    DECLARE_DYNAMIC(CSndDataty1)
    friend class CSndDataConvertty; // rewrites the held data in place (stereo to mono)

public:
    CSndDataty1();
    virtual ~CSndDataty1();

    // Bytes held; 0 when empty.
    unsigned long getDataSize() const;
    // The first held byte, or null when empty. The bytes may be written through the
    // pointer; it stays valid until the next operation that changes the content.
    char* getDataPointer() const;
    // Format of the held bytes (all zero until a format is given).
    tWAVEFORMATEX getAudioWaveDataWfx() const;
    // Nonzero when the container holds audio: at least one byte in a format with channels,
    // a rate and a block alignment. The bytes of an open recording count: they are held.
    int hasAudioWaveData();
    // The whole content as one block. copy false: *data points into the container's own
    // storage (valid as getDataPointer's). copy true: *data is a new[] array that the
    // caller releases with delete[]. 0 (with *data null and *size 0) when empty, when an
    // out-pointer is null or when the copy cannot be allocated.
    int getBlockDataPointer(char** data, unsigned long* size, bool copy);
    // Nonzero when the held format equals wfx in all seven fields.
    int isWaveFormatexSame(tWAVEFORMATEX wfx) const;

protected:
    // Replace the content with a copy of size bytes at data; the container is unchanged
    // on failure.
    int replaceData(const char* data, unsigned long size, const tWAVEFORMATEX& wfx);
    // Append a copy of size bytes; the container is unchanged on failure.
    int appendData(const char* data, unsigned long size);
    // Keep the first size bytes and label them with wfx (for in-place rewrites).
    void truncateData(unsigned long size, const tWAVEFORMATEX& wfx);
    void clearData();
    void setWfx(const tWAVEFORMATEX& wfx);
    void reserveData(unsigned long extra);
    void releaseSpareCapacity();
    // A format that describes sample frames: it has channels, a rate and a block alignment.
    static bool isUsableWfx(const tWAVEFORMATEX& wfx);
    // True while the content is still being assembled (a recording is open): such data
    // are not offered for playing yet.
    bool isAssembling() const;
    void setAssembling(bool assembling);

private:
    std::vector<char> m_data;
    tWAVEFORMATEX m_wfx;
    bool m_bAssembling;
};
