#pragma once
// The wave-file stream reader: the file is opened once and its sound data is pulled in
// pieces of any size, straight into the caller's memory (a locked sound buffer), so a file
// of any length plays without being held whole.
//
// The byte counts are 32-bit. Windows code holds them as DWORD (unsigned long), other code
// as UINT; both forms are accepted.

#include "SndDataRead01Wav.h"

class WAVEFILE_API CSndDataReadtyStream : public CSndDataRead01Wav
{
    DECLARE_DYNAMIC(CSndDataReadtyStream)

public:
    CSndDataReadtyStream();
    virtual ~CSndDataReadtyStream();

    // Opens pathName (closing any file open before) and positions at the start of its sound
    // data; *dataSize gets the bytes of sound data and *wfx the format. 1 on success. On
    // failure 0, and both come back zero, so a caller that does not check the result still
    // holds a format that no player accepts. Either out-pointer may be null.
    int initStream2Read(CString pathName, unsigned long* dataSize, tWAVEFORMATEX* wfx);
    int initStream2Read(CString pathName, unsigned int* dataSize, tWAVEFORMATEX* wfx);

    // Copies up to bytes of sound data into data and sets bytes to the number copied: fewer
    // than asked means the sound data has ended (0 once it is used up). The result is 1
    // unless no file is open (after closeSndFileMmio too), data is null, or reading failed.
    int readNewData(void* data, unsigned long& bytes);
    int readNewData(void* data, unsigned int& bytes);
};
