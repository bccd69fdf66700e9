// Command targets: the message-map search shared by every window class.
#include "afxwin.h"

IMPLEMENT_DYNAMIC(CCmdTarget, CObject)

CCmdTarget::CCmdTarget() {}

CCmdTarget::~CCmdTarget() {}

// The root of every message map: no entries, no base.
const AFX_MSGMAP* PASCAL CCmdTarget::GetThisMessageMap()
{
    static const AFX_MSGMAP_ENTRY entries[] = {{0, 0, 0, 0, AfxSig_end, (AFX_PMSG)0}};
    static const AFX_MSGMAP messageMap = {NULL, &entries[0]};
    return &messageMap;
}

const AFX_MSGMAP* CCmdTarget::GetMessageMap() const
{
    return GetThisMessageMap();
}

static const AFX_MSGMAP_ENTRY* findInMap(const AFX_MSGMAP_ENTRY* pEntry, UINT nMessage, UINT nCode, UINT nID)
{
    for (; pEntry->nSig != AfxSig_end; ++pEntry)
    {
        if (pEntry->nMessage == nMessage && pEntry->nCode == nCode && nID >= pEntry->nID &&
            nID <= pEntry->nLastID)
            return pEntry;
    }
    return NULL;
}

const AFX_MSGMAP_ENTRY* CCmdTarget::FindMessageEntry(UINT nMessage, UINT nCode, UINT nID) const
{
    // The most derived map first, so that a derived class's entry hides its base's.
    for (const AFX_MSGMAP* pMap = GetMessageMap(); pMap != NULL;)
    {
        if (const AFX_MSGMAP_ENTRY* pEntry = findInMap(pMap->lpEntries, nMessage, nCode, nID))
            return pEntry;
        if (pMap->pfnGetBaseMap == NULL)
            return NULL;
        pMap = (*pMap->pfnGetBaseMap)();
    }
    return NULL;
}
