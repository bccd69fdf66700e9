#include "DSndCapturetyStream.h"
#include "SndWaveWriteStreamty.h"

CDSndCapturetyStream::CDSndCapturetyStream()
    : m_pSndWaveWriteStream(NULL),
      m_ulStreamBytesWritten(0),
      m_ulStreamOffset(0)
{
    ZeroMemory(m_streamNotify, sizeof(m_streamNotify));
    ZeroMemory(m_hStreamEvent, sizeof(m_hStreamEvent));
}

CDSndCapturetyStream::~CDSndCapturetyStream()
{
}

int CDSndCapturetyStream::initCapture2stream(tWAVEFORMATEX /*wfx*/, unsigned long /*ulBytes*/)
{
    return 0;
}

int CDSndCapturetyStream::initNotifyEvtStreamRecord()
{
    return 0;
}

int CDSndCapturetyStream::startCaptureStream()
{
    return 0;
}

int CDSndCapturetyStream::waitRecordStreamEvt()
{
    return 0;
}

int CDSndCapturetyStream::streamData2File(unsigned long /*ulEvent*/)
{
    return 0;
}

int CDSndCapturetyStream::getRecordNewStreamData(void* /*pRing*/, unsigned long /*ulRingBytes*/, int& /*nRingPosition*/,
                                                 bool /*bWriteFile*/)
{
    return 0;
}

int CDSndCapturetyStream::stopCaptureStream()
{
    return 1;
}
