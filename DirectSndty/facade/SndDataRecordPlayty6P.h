#pragma once
// The public play calls; the window and the integers are accepted for callers' future use.

#include "SndDataRecordPlayty4Pdsnd.h"

class AFX_EXT_CLASS CSndDataRecordPlayty6P : public CSndDataRecordPlayty4Pdsnd
{
public:
    CSndDataRecordPlayty6P();
    virtual ~CSndDataRecordPlayty6P();

    int playBegin(const CWnd* pWnd, int nFirst, int nSecond);
    int playBeginLoop(const CWnd* pWnd, int nFirst, int nSecond);
    // Plays the container's data again through the buffer an earlier play made.
    int playBeginPro(const CWnd* pWnd, int nFirst);
    int playStop();
    // Always 0, whatever is playing.
    int getPlayPosition();

    int m_nReserved;
};
