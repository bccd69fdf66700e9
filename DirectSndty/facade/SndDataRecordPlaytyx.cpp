#include "SndDataRecordPlaytyx.h"
#include "../buffer/DirectSnd3DBuffty.h"
#include "../dialogs/DlgSoundStreamPlay.h"
#include "../dialogs/DlgSoundStreamRecord.h"
#include <new>

CDlgSoundStreamRecord* CSndDataRecordPlaytyx::m_pRecordStream = NULL;
CDlgSoundStreamPlay* CSndDataRecordPlaytyx::m_pPlayStream = NULL;

namespace
{
// The stream player with a streaming buffer of its own, so that a host gets a working
// player without making one. The buffer outlives the player's worker.
class CStreamPlayerWithBuffer : public CDlgSoundStreamPlay
{
public:
    CStreamPlayerWithBuffer()
    {
        m_pSndBuffStream = &m_streamBuffer;
    }
    virtual ~CStreamPlayerWithBuffer()
    {
        endStreamThread();
    }

    CDirectSnd3DBuffty m_streamBuffer;
};
}

CSndDataRecordPlaytyx::CSndDataRecordPlaytyx()
{
}

CSndDataRecordPlaytyx::~CSndDataRecordPlaytyx()
{
}

int CSndDataRecordPlaytyx::recordStreamty(bool bModal)
{
    delete m_pRecordStream;
    m_pRecordStream = new (std::nothrow) CDlgSoundStreamRecord;
    if (m_pRecordStream == NULL)
        return 0;
    if (bModal)
        return m_pRecordStream->DoModal() == IDOK ? 1 : 0;
    if (m_pRecordStream->Create(CDlgSoundStreamRecord::IDD, NULL))
        m_pRecordStream->ShowWindow(SW_SHOWNORMAL);
    return 1;
}

// Replaced like the recording dialog: a player still streaming stops first.
int CSndDataRecordPlaytyx::playStreamty()
{
    delete m_pPlayStream;
    CStreamPlayerWithBuffer* pPlayer = new (std::nothrow) CStreamPlayerWithBuffer;
    m_pPlayStream = pPlayer;
    if (pPlayer == NULL)
        return 1;
    placeOnRegisteredDevice(pPlayer->m_streamBuffer);
    if (pPlayer->Create(CDlgSoundStreamPlay::IDD, NULL))
        pPlayer->ShowWindow(SW_SHOWNORMAL);
    return 1;
}
