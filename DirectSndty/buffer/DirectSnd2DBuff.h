#pragma once
// One DirectSound secondary buffer holding a whole block of PCM data from a sound-data
// container, played once or looped as a stimulus, panned centre or to one side.

#include "../foundation/DirectSndBasicty.h"
#include "SndDataConvertty.h"
#include <dsound.h>

class CSndDatatyx;
class CDirectSndDevicety;

class AFX_EXT_CLASS CDirectSnd2DBuff : public CDirectSndBasicty
{
public:
    CDirectSnd2DBuff();
    virtual ~CDirectSnd2DBuff();

    int resetDSBDesc2DBuff();
    int setSndData2DSndBuf2ndStd(CSndDatatyx* pSndData, CDirectSndDevicety* pDevice);
    // The buffer's byte count on success.
    int setSndData2DSndBuf2ndPro(CSndDatatyx* pSndData, CDirectSndDevicety* pDevice);

    int sendAudioStim();
    int sendAudioStimLoop();
    int stopAudioStim();
    int panCenter();
    int panMuteLeft();
    int panMuteRight();
    int releaseDirectSnd2DBuff();

protected:
    // The facade refills the buffer it plays from.
    friend class CSndDataRecordPlayty4Pdsnd;

    unsigned long createDSndBuff2ndStd();
    unsigned long createDSndBuff2ndPro(unsigned long ulBytes, tWAVEFORMATEX wfx);
    int copySndData2DSndBuf2nd(const BYTE* pData, unsigned long ulBytes);
    // The container's size and data, or 0 with the message that says what is missing.
    int takeSndData(CSndDatatyx* pSndData, unsigned long& ulSize, const BYTE*& pData);
    // A play buffer's size within what DirectSound can make, with a warning when clamped.
    unsigned long clampPlayBufferBytes(unsigned long ulSize);

    CSndDataConvertty m_sndDataConvert;
    CSndDatatyx* m_pSndData;
    tWAVEFORMATEX m_wfx;
    DSBUFFERDESC m_dsbd;
    IDirectSoundBuffer8* m_pDSBuffer;
    CDirectSndDevicety* m_pDSndDevice;

private:
    int lockAndCopy(const BYTE* pData, unsigned long ulBytes);
    int playFromStart(DWORD dwFlags);
    int setPan(LONG lPan);
};
