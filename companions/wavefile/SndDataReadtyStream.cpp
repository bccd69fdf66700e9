#include "SndDataReadtyStream.h"

IMPLEMENT_DYNAMIC(CSndDataReadtyStream, CSndDataRead01Wav)

CSndDataReadtyStream::CSndDataReadtyStream()
{
}

CSndDataReadtyStream::~CSndDataReadtyStream()
{
}

// After a failure the getters answer zero, which is what the out-values must then hold.
int CSndDataReadtyStream::initStream2Read(CString pathName, unsigned long* dataSize, tWAVEFORMATEX* wfx)
{
    const int opened = openSndFileMmio(pathName);
    if (dataSize != nullptr)
        *dataSize = getSndDataSize();
    if (wfx != nullptr)
        *wfx = getSndFileWfx();
    return opened;
}

int CSndDataReadtyStream::initStream2Read(CString pathName, unsigned int* dataSize, tWAVEFORMATEX* wfx)
{
    unsigned long size = 0;
    const int opened = initStream2Read(pathName, &size, wfx);
    if (dataSize != nullptr)
        *dataSize = size;
    return opened;
}

int CSndDataReadtyStream::readNewData(void* data, unsigned long& bytes)
{
    return readSndData(data, bytes);
}

int CSndDataReadtyStream::readNewData(void* data, unsigned int& bytes)
{
    unsigned long count = bytes;
    const int read = readSndData(data, count);
    bytes = count;
    return read;
}
