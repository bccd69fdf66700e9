// Exceptions, thrown as pointers and deleted by whoever catches them.
#include "afxwin.h"

IMPLEMENT_DYNAMIC(CException, CObject)
IMPLEMENT_DYNAMIC(CUserException, CException)
IMPLEMENT_DYNAMIC(CArchiveException, CException)
IMPLEMENT_DYNAMIC(CFileException, CException)

namespace
{
// Copies a message into the caller's buffer, cut to fit, always terminated.
BOOL copyMessage(const CString& strMessage, LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext)
{
    if (pnHelpContext != NULL)
        *pnHelpContext = 0;
    if (lpszError == NULL || nMaxError == 0)
        return FALSE;
    lstrcpynW(lpszError, strMessage, (int)nMaxError);
    return TRUE;
}

// MFC's prompts name the file, or say that it has no name.
CString withFileName(LPCWSTR pszPrompt, const CString& strFileName)
{
    CString strMessage(pszPrompt);
    strMessage.Replace(L"%1", strFileName.IsEmpty() ? CString(L"an unnamed file") : strFileName);
    return strMessage;
}
} // namespace

CException::CException(BOOL bAutoDelete) : m_bAutoDelete(bAutoDelete) {}

CException::~CException() {}

void CException::Delete()
{
    // An exception made on the stack or kept by its owner is not deleted.
    if (m_bAutoDelete)
        delete this;
}

BOOL CException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    copyMessage(CString(), lpszError, nMaxError, pnHelpContext);
    return FALSE;
}

int CException::ReportError(UINT nType, UINT nMessageID)
{
    wchar_t szMessage[512];
    if (GetErrorMessage(szMessage, _countof(szMessage)))
        return AfxMessageBox(szMessage, nType, nMessageID);
    return AfxMessageBox(L"No error message is available.", nType, nMessageID);
}

CUserException::CUserException() {}

CArchiveException::CArchiveException(int cause, LPCTSTR lpszArchiveName)
    : m_cause(cause), m_strFileName(lpszArchiveName)
{
}

BOOL CArchiveException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    static const LPCWSTR prompts[] = {
        L"No error occurred while reading or writing %1.",
        L"An unexpected error occurred while reading or writing %1.",
        L"Tried to write to %1 while it was being read.",
        L"An unexpected end of file was met while reading %1.",
        L"Tried to read from %1 while it was being written.",
        L"%1 has a bad format.",
        L"%1 contained an unexpected object.",
        L"%1 has an incorrect schema.",
        L"The archive buffer of %1 is full.",
    };
    int cause = (m_cause >= 0 && m_cause < (int)_countof(prompts)) ? m_cause : genericException;
    return copyMessage(withFileName(prompts[cause], m_strFileName), lpszError, nMaxError, pnHelpContext);
}

CFileException::CFileException(int cause, LONG lOsError, LPCTSTR lpszArchiveName)
    : m_cause(cause), m_lOsError(lOsError), m_strFileName(lpszArchiveName)
{
}

BOOL CFileException::GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext) const
{
    static const LPCWSTR prompts[] = {
        L"No error occurred while accessing %1.",
        L"An unexpected error occurred while accessing %1.",
        L"%1 was not found.",
        L"%1 contains an invalid path.",
        L"%1 could not be opened because there are too many open files.",
        L"Access to %1 was denied.",
        L"An invalid file handle was associated with %1.",
        L"%1 could not be removed because it is the current directory.",
        L"%1 could not be created because the directory is full.",
        L"Seek failed on %1.",
        L"A hardware input/output error was reported while accessing %1.",
        L"A sharing violation occurred while accessing %1.",
        L"A locking violation occurred while accessing %1.",
        L"Disk full while accessing %1.",
        L"An attempt was made to access %1 past its end.",
    };
    int cause = (m_cause >= 0 && m_cause < (int)_countof(prompts)) ? m_cause : genericException;
    return copyMessage(withFileName(prompts[cause], m_strFileName), lpszError, nMaxError, pnHelpContext);
}

int PASCAL CFileException::OsErrorToException(LONG lOsError)
{
    switch (lOsError)
    {
    case NO_ERROR:
        return none;
    case ERROR_FILE_NOT_FOUND:
    case ERROR_NO_MORE_FILES:
    case ERROR_OPEN_FAILED:
        return fileNotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_DRIVE:
    case ERROR_NOT_SAME_DEVICE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_NAME:
    case ERROR_FILENAME_EXCED_RANGE:
    case ERROR_DIRECTORY:
        return badPath;
    case ERROR_TOO_MANY_OPEN_FILES:
    case ERROR_SHARING_BUFFER_EXCEEDED:
        return tooManyOpenFiles;
    case ERROR_ACCESS_DENIED:
    case ERROR_INVALID_ACCESS:
    case ERROR_WRITE_PROTECT:
    case ERROR_WRITE_FAULT:
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
    case ERROR_NETWORK_ACCESS_DENIED:
        return accessDenied;
    case ERROR_INVALID_HANDLE:
    case ERROR_BAD_FORMAT:
        return invalidFile;
    case ERROR_CURRENT_DIRECTORY:
        return removeCurrentDir;
    case ERROR_CANNOT_MAKE:
        return directoryFull;
    case ERROR_SEEK:
    case ERROR_NEGATIVE_SEEK:
    case ERROR_SECTOR_NOT_FOUND:
        return badSeek;
    case ERROR_CRC:
    case ERROR_NOT_READY:
    case ERROR_READ_FAULT:
    case ERROR_GEN_FAILURE:
        return hardIO;
    case ERROR_SHARING_VIOLATION:
        return sharingViolation;
    case ERROR_LOCK_VIOLATION:
    case ERROR_DRIVE_LOCKED:
        return lockViolation;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return diskFull;
    case ERROR_HANDLE_EOF:
        return endOfFile;
    default:
        return genericException;
    }
}

void PASCAL CFileException::ThrowOsError(LONG lOsError, LPCTSTR lpszFileName)
{
    AfxThrowFileException(OsErrorToException(lOsError), lOsError, lpszFileName);
}

void AFXAPI AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName)
{
    throw new CArchiveException(cause, lpszArchiveName);
}

void AFXAPI AfxThrowFileException(int cause, LONG lOsError, LPCTSTR lpszFileName)
{
    throw new CFileException(cause, lOsError, lpszFileName);
}

void AFXAPI AfxThrowUserException()
{
    throw new CUserException();
}
