#pragma once
// Brings PCM into a sound-data container in a form the sound buffers play: one or two
// channels of 8- or 16-bit integer PCM as they are; 24- and 32-bit integer and 32-bit float
// PCM made 16-bit, with triangular dither so that the rounding leaves no distortion that
// follows the signal. From memory, or from a whole wave file (plain, extensible or RF64).

#include <afxwin.h>
#include <mmsystem.h>
#include <mmreg.h>
#include <vector>

class CSndDatatyx;

class AFX_EXT_CLASS CSndDataLoadty : public CObject
{
public:
    enum LoadResult
    {
        kLoaded = 0,
        kFileRefused,   // the file cannot be opened or read, or is no wave file
        kFormatRefused, // a sample format or channel count the buffers cannot be given
        kTooLarge,      // more than a container holds (stream such a file instead)
        kNoMemory
    };

    CSndDataLoadty();
    virtual ~CSndDataLoadty();

    // The whole file into the container. 1, or 0 with the container unchanged.
    int loadWaveFile(LPCWSTR pszPathName, CSndDatatyx* pData);
    // ulBytes of PCM in wfx (integer tag WAVE_FORMAT_PCM, or WAVE_FORMAT_IEEE_FLOAT) into the
    // container, whole frames only. 1, or 0 with the container unchanged.
    int loadPcm(const tWAVEFORMATEX& wfx, const void* pPcm, unsigned long ulBytes, CSndDatatyx* pData);

    LoadResult getLoadResult() const;
    // Why the last load failed, in English; empty after a load that worked.
    CString getLoadReason() const;

private:
    int refuse(LoadResult result, const CString& strReason);
    int checkFormat(const tWAVEFORMATEX& wfx);
    int storePlayable(const tWAVEFORMATEX& wfx, const BYTE* pPcm, unsigned long ulBytes, CSndDatatyx* pData);
    int store(CSndDatatyx* pData, const BYTE* pPcm, unsigned long ulBytes, const tWAVEFORMATEX& wfx);
    short ditheredSample(double dValue);

    LoadResult m_result;
    CString m_strReason;
    unsigned int m_uDitherState;
};
