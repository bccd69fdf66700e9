// Run-time class records and the root object.
#include "afx.h"

CObject* CRuntimeClass::CreateObject()
{
    // Classes declared without DECLARE_DYNCREATE cannot be made by name.
    if (m_pfnCreateObject == NULL)
        return NULL;
    return (*m_pfnCreateObject)();
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBaseClass) const
{
    for (const CRuntimeClass* pClass = this; pClass != NULL;)
    {
        if (pClass == pBaseClass)
            return TRUE;
        if (pClass->m_pfnGetBaseClass == NULL)
            return FALSE;
        pClass = (*pClass->m_pfnGetBaseClass)();
    }
    return FALSE;
}

// The root has no base and cannot be created.
const CRuntimeClass CObject::classCObject = {"CObject", sizeof(CObject), 0xFFFF, NULL, NULL, NULL, NULL};

CRuntimeClass* PASCAL CObject::_GetBaseClass()
{
    return NULL;
}

CRuntimeClass* PASCAL CObject::GetThisClass()
{
    return _RUNTIME_CLASS(CObject);
}

CObject::CObject() {}

CObject::~CObject() {}

CRuntimeClass* CObject::GetRuntimeClass() const
{
    return _RUNTIME_CLASS(CObject);
}

BOOL CObject::IsSerializable() const
{
    return GetRuntimeClass()->m_wSchema != 0xFFFF;
}

BOOL CObject::IsKindOf(const CRuntimeClass* pClass) const
{
    return GetRuntimeClass()->IsDerivedFrom(pClass);
}

void CObject::Serialize(CArchive&) {}

void CObject::AssertValid() const {}

void CObject::Dump(CDumpContext&) const {}
