#pragma once
// Core of the MFC subset: objects with run-time class records, the wide string,
// exceptions, files and archives. Names, signatures and behaviour follow MFC so that
// code written against this header compiles unchanged against the real framework.

#include <windows.h>
#include <tchar.h>
#include <cstdarg>
#include <string>

#ifdef AFX_SUBSET_BUILD
#define AFX_SUBSET_API __declspec(dllexport)
#else
#define AFX_SUBSET_API __declspec(dllimport)
#endif

#define AFX_CLASS_EXPORT __declspec(dllexport)
#define AFX_CLASS_IMPORT __declspec(dllimport)
#define AFX_API_EXPORT __declspec(dllexport)
#define AFX_API_IMPORT __declspec(dllimport)
#define AFX_DATA_EXPORT __declspec(dllexport)
#define AFX_DATA_IMPORT __declspec(dllimport)

// An extension DLL is compiled with _AFXEXT: its classes are exported there and imported by hosts.
#ifdef _AFXEXT
#define AFX_EXT_CLASS AFX_CLASS_EXPORT
#define AFX_EXT_API AFX_API_EXPORT
#define AFX_EXT_DATA AFX_DATA_EXPORT
#else
#define AFX_EXT_CLASS AFX_CLASS_IMPORT
#define AFX_EXT_API AFX_API_IMPORT
#define AFX_EXT_DATA AFX_DATA_IMPORT
#endif

#define AFXAPI __stdcall
#define AFX_CDECL __cdecl
#define AFX_MSG_CALL
#define afx_msg

// Diagnostics exist only in MFC's debug builds; this subset is a release build.
#define ASSERT(f) ((void)0)
#define VERIFY(f) ((void)(f))
#define ASSERT_VALID(p) ((void)0)
#define TRACE(...) ((void)0)
#define DEBUG_NEW new

class CObject;
class CArchive;
class CDumpContext;
struct CRuntimeClass;

// ---------------------------------------------------------------------------
// Run-time class information

struct AFX_SUBSET_API CRuntimeClass
{
    LPCSTR m_lpszClassName;
    int m_nObjectSize;
    UINT m_wSchema;
    CObject*(PASCAL* m_pfnCreateObject)();
    CRuntimeClass*(PASCAL* m_pfnGetBaseClass)();
    CRuntimeClass* m_pNextClass;
    const void* m_pClassInit;

    CObject* CreateObject();
    BOOL IsDerivedFrom(const CRuntimeClass* pBaseClass) const;
};

#define _RUNTIME_CLASS(class_name) ((CRuntimeClass*)(&class_name::class##class_name))
#define RUNTIME_CLASS(class_name) (class_name::GetThisClass())

#define DECLARE_DYNAMIC(class_name)                 \
public:                                             \
    static CRuntimeClass* PASCAL _GetBaseClass();   \
    static const CRuntimeClass class##class_name;   \
    static CRuntimeClass* PASCAL GetThisClass();    \
    virtual CRuntimeClass* GetRuntimeClass() const;

#define DECLARE_DYNCREATE(class_name) \
    DECLARE_DYNAMIC(class_name)       \
    static CObject* PASCAL CreateObject();

#define IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, wSchema, pfnNew)                    \
    CRuntimeClass* PASCAL class_name::_GetBaseClass() { return RUNTIME_CLASS(base_class_name); } \
    const CRuntimeClass class_name::class##class_name = {                                        \
        #class_name, sizeof(class class_name), wSchema, pfnNew,                                  \
        &class_name::_GetBaseClass, NULL, NULL};                                                 \
    CRuntimeClass* PASCAL class_name::GetThisClass() { return _RUNTIME_CLASS(class_name); }      \
    CRuntimeClass* class_name::GetRuntimeClass() const { return _RUNTIME_CLASS(class_name); }

#define IMPLEMENT_DYNAMIC(class_name, base_class_name) \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, NULL)

#define IMPLEMENT_DYNCREATE(class_name, base_class_name)                  \
    CObject* PASCAL class_name::CreateObject() { return new class_name; } \
    IMPLEMENT_RUNTIMECLASS(class_name, base_class_name, 0xFFFF, class_name::CreateObject)

// ---------------------------------------------------------------------------
// CObject: the root, with MFC's virtual slots in MFC's order.

class AFX_SUBSET_API CObject
{
public:
    virtual CRuntimeClass* GetRuntimeClass() const;
    virtual ~CObject() = 0;

protected:
    CObject();

private:
    CObject(const CObject&) = delete;
    void operator=(const CObject&) = delete;

public:
    BOOL IsSerializable() const;
    BOOL IsKindOf(const CRuntimeClass* pClass) const;

    virtual void Serialize(CArchive& ar);
    virtual void AssertValid() const;
    virtual void Dump(CDumpContext& dc) const;

    static const CRuntimeClass classCObject;
    static CRuntimeClass* PASCAL _GetBaseClass();
    static CRuntimeClass* PASCAL GetThisClass();
};

// ---------------------------------------------------------------------------
// CString: MFC's wide string (the UNICODE build's CString).

class AFX_SUBSET_API CString
{
public:
    CString();
    CString(const CString& stringSrc);
    CString(LPCWSTR psz);
    CString(LPCWSTR pch, int nLength);
    CString(LPCSTR psz); // converts from the ANSI code page, as CStringW does
    CString(wchar_t ch, int nRepeat = 1);

    CString& operator=(const CString& stringSrc);
    CString& operator=(LPCWSTR psz);
    CString& operator=(LPCSTR psz);
    CString& operator=(wchar_t ch);

    int GetLength() const;
    BOOL IsEmpty() const;
    void Empty();
    wchar_t GetAt(int iChar) const;
    wchar_t operator[](int iChar) const;
    void SetAt(int iChar, wchar_t ch);
    operator LPCWSTR() const;
    LPCWSTR GetString() const;

    CString& operator+=(const CString& str);
    CString& operator+=(LPCWSTR psz);
    CString& operator+=(wchar_t ch);
    AFX_SUBSET_API friend CString operator+(const CString& str1, const CString& str2);
    AFX_SUBSET_API friend CString operator+(const CString& str1, LPCWSTR psz2);
    AFX_SUBSET_API friend CString operator+(LPCWSTR psz1, const CString& str2);
    AFX_SUBSET_API friend CString operator+(const CString& str1, wchar_t ch2);

    int Compare(LPCWSTR psz) const;
    int CompareNoCase(LPCWSTR psz) const;

    CString Mid(int iFirst) const;
    CString Mid(int iFirst, int nCount) const;
    CString Left(int nCount) const;
    CString Right(int nCount) const;
    int Find(wchar_t ch, int iStart = 0) const;
    int Find(LPCWSTR pszSub, int iStart = 0) const;
    int ReverseFind(wchar_t ch) const;
    int Replace(LPCWSTR pszOld, LPCWSTR pszNew);

    CString& MakeUpper();
    CString& MakeLower();
    CString& Trim();
    CString& TrimLeft();
    CString& TrimRight();

    void AFX_CDECL Format(LPCWSTR pszFormat, ...);
    void AFX_CDECL AppendFormat(LPCWSTR pszFormat, ...);
    void FormatV(LPCWSTR pszFormat, va_list args);
    void AppendFormatV(LPCWSTR pszFormat, va_list args);

    LPWSTR GetBuffer();
    LPWSTR GetBuffer(int nMinBufferLength);
    LPWSTR GetBufferSetLength(int nLength);
    void ReleaseBuffer(int nNewLength = -1);

private:
    std::wstring m_str;
};

AFX_SUBSET_API bool operator==(const CString& str1, const CString& str2);
AFX_SUBSET_API bool operator==(const CString& str1, LPCWSTR psz2);
AFX_SUBSET_API bool operator==(LPCWSTR psz1, const CString& str2);
AFX_SUBSET_API bool operator!=(const CString& str1, const CString& str2);
AFX_SUBSET_API bool operator!=(const CString& str1, LPCWSTR psz2);
AFX_SUBSET_API bool operator!=(LPCWSTR psz1, const CString& str2);
AFX_SUBSET_API bool operator<(const CString& str1, const CString& str2);

// ---------------------------------------------------------------------------
// Exceptions. As in MFC they are thrown as pointers and deleted by the catcher:
//     catch (CArchiveException* e) { ...; e->Delete(); }

class AFX_SUBSET_API CException : public CObject
{
    DECLARE_DYNAMIC(CException)
public:
    explicit CException(BOOL bAutoDelete = TRUE);
    virtual ~CException();

    void Delete();
    virtual BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = NULL) const;
    virtual int ReportError(UINT nType = MB_OK, UINT nMessageID = 0);

    BOOL m_bAutoDelete;
};

class AFX_SUBSET_API CUserException : public CException
{
    DECLARE_DYNAMIC(CUserException)
public:
    CUserException();
};

class AFX_SUBSET_API CArchiveException : public CException
{
    DECLARE_DYNAMIC(CArchiveException)
public:
    enum
    {
        none,
        genericException,
        readOnly,
        endOfFile,
        writeOnly,
        badIndex,
        badClass,
        badSchema,
        bufferFull
    };

    CArchiveException(int cause = CArchiveException::none, LPCTSTR lpszArchiveName = NULL);
    virtual BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = NULL) const;

    int m_cause;
    CString m_strFileName;
};

class AFX_SUBSET_API CFileException : public CException
{
    DECLARE_DYNAMIC(CFileException)
public:
    enum
    {
        none,
        genericException,
        fileNotFound,
        badPath,
        tooManyOpenFiles,
        accessDenied,
        invalidFile,
        removeCurrentDir,
        directoryFull,
        badSeek,
        hardIO,
        sharingViolation,
        lockViolation,
        diskFull,
        endOfFile
    };

    CFileException(int cause = CFileException::none, LONG lOsError = -1, LPCTSTR lpszArchiveName = NULL);
    virtual BOOL GetErrorMessage(LPTSTR lpszError, UINT nMaxError, PUINT pnHelpContext = NULL) const;

    static int PASCAL OsErrorToException(LONG lOsError);
    [[noreturn]] static void PASCAL ThrowOsError(LONG lOsError, LPCTSTR lpszFileName = NULL);

    int m_cause;
    LONG m_lOsError;
    CString m_strFileName;
};

[[noreturn]] AFX_SUBSET_API void AFXAPI AfxThrowArchiveException(int cause, LPCTSTR lpszArchiveName = NULL);
[[noreturn]] AFX_SUBSET_API void AFXAPI AfxThrowFileException(int cause, LONG lOsError = -1, LPCTSTR lpszFileName = NULL);
[[noreturn]] AFX_SUBSET_API void AFXAPI AfxThrowUserException();

// ---------------------------------------------------------------------------
// CFile: an unbuffered Win32 file. Read and write failures throw CFileException*.

class AFX_SUBSET_API CFile : public CObject
{
    DECLARE_DYNAMIC(CFile)
public:
    enum OpenFlags
    {
        modeRead = 0x0000,
        modeWrite = 0x0001,
        modeReadWrite = 0x0002,
        shareCompat = 0x0000,
        shareExclusive = 0x0010,
        shareDenyWrite = 0x0020,
        shareDenyRead = 0x0030,
        shareDenyNone = 0x0040,
        modeNoInherit = 0x0080,
        modeCreate = 0x1000,
        modeNoTruncate = 0x2000,
        typeText = 0x4000,
        typeBinary = 0x8000
    };
    enum SeekPosition
    {
        begin = 0x0,
        current = 0x1,
        end = 0x2
    };

    static const HANDLE hFileNull;

    CFile();
    explicit CFile(HANDLE hFile);
    CFile(LPCTSTR lpszFileName, UINT nOpenFlags);
    virtual ~CFile();

    virtual BOOL Open(LPCTSTR lpszFileName, UINT nOpenFlags, CFileException* pError = NULL);
    virtual UINT Read(void* lpBuf, UINT nCount);
    virtual void Write(const void* lpBuf, UINT nCount);
    virtual ULONGLONG Seek(LONGLONG lOff, UINT nFrom);
    ULONGLONG SeekToEnd();
    void SeekToBegin();
    virtual ULONGLONG GetPosition() const;
    virtual ULONGLONG GetLength() const;
    virtual void SetLength(ULONGLONG dwNewLen);
    virtual void Flush();
    virtual void Close();
    virtual void Abort();
    virtual CString GetFilePath() const;
    operator HANDLE() const;

    HANDLE m_hFile;

protected:
    BOOL m_bCloseOnDelete;
    CString m_strFileName;
};

// ---------------------------------------------------------------------------
// CArchive: MFC's binary serialisation over a CFile, little-endian, unpadded,
// with MFC's string encoding (length prefix, 0xFFFE marker for UTF-16 text).

class AFX_SUBSET_API CArchive
{
public:
    enum Mode
    {
        store = 0,
        load = 1,
        bNoFlushOnDelete = 2,
        bNoByteSwap = 4
    };

    CArchive(CFile* pFile, UINT nMode, int nBufSize = 4096, void* lpBuf = NULL);
    ~CArchive();

    BOOL IsLoading() const;
    BOOL IsStoring() const;
    CFile* GetFile() const;

    UINT Read(void* lpBuf, UINT nMax);
    void Write(const void* lpBuf, UINT nMax);
    void Flush();
    void Close();
    void Abort();

    CArchive& operator<<(BYTE by);
    CArchive& operator<<(WORD w);
    CArchive& operator<<(LONG l);
    CArchive& operator<<(DWORD dw);
    CArchive& operator<<(float f);
    CArchive& operator<<(double d);
    CArchive& operator<<(LONGLONG dwdw);
    CArchive& operator<<(ULONGLONG dwdw);
    CArchive& operator<<(int i);
    CArchive& operator<<(short w);
    CArchive& operator<<(char ch);
    CArchive& operator<<(unsigned u);
    CArchive& operator<<(bool b);

    CArchive& operator>>(BYTE& by);
    CArchive& operator>>(WORD& w);
    CArchive& operator>>(LONG& l);
    CArchive& operator>>(DWORD& dw);
    CArchive& operator>>(float& f);
    CArchive& operator>>(double& d);
    CArchive& operator>>(LONGLONG& dwdw);
    CArchive& operator>>(ULONGLONG& dwdw);
    CArchive& operator>>(int& i);
    CArchive& operator>>(short& w);
    CArchive& operator>>(char& ch);
    CArchive& operator>>(unsigned& u);
    CArchive& operator>>(bool& b);

    CFile* m_pFile;
    CString m_strFileName;

private:
    void requireStoring();
    void requireLoading();
    void readExactly(void* lpBuf, UINT nCount);
    bool fillReadAhead(size_t nCount); // false when the file ends before nCount bytes
    size_t readAheadLeft() const;

    BOOL m_bLoading;
    UINT m_nMode;
    std::string m_pending; // bytes stored but not yet written to the file
    std::string m_readAhead; // bytes read from the file but not yet taken
    size_t m_readPos;
    UINT m_nBufSize;
};

AFX_SUBSET_API CArchive& AFXAPI operator<<(CArchive& ar, const CString& str);
AFX_SUBSET_API CArchive& AFXAPI operator>>(CArchive& ar, CString& str);

// MFC's string length prefix, exposed as MFC exposes it.
AFX_SUBSET_API UINT_PTR AFXAPI AfxReadStringLength(CArchive& ar, int& nCharSize);
AFX_SUBSET_API void AFXAPI AfxWriteStringLength(CArchive& ar, UINT_PTR nLength, BOOL bUnicode);
