#include "WaveFileIo.h"
#include "Console.h"
#include "SndDataReadtyStream.h"
#include "SndWaveWriteStreamty.h"
#include "loading/SndDataLoadty.h"

#include <vector>

namespace
{
std::string because(WaveFileResult result)
{
    return toUtf8(describeWaveFileResult(result));
}

// The writer takes 32-bit counts; large recordings go in pieces.
const unsigned long kWritePiece = 1u << 20;
}

bool openWaveStream(const std::wstring& path, CSndDataReadtyStream& reader, unsigned long& size,
                    tWAVEFORMATEX& wfx, std::string& reason)
{
    if (!reader.initStream2Read(CString(path.c_str()), &size, &wfx))
    {
        reason = toUtf8(path) + ": " + because(reader.getSndFileResult());
        return false;
    }
    if (size == 0)
    {
        reason = toUtf8(path) + ": the wave file holds no sound";
        return false;
    }
    return true;
}

bool readWaveFile(const std::wstring& path, CSndDatatyx& data, std::string& reason)
{
    CSndDataLoadty loader;
    if (loader.loadWaveFile(path.c_str(), &data))
        return true;
    reason = toUtf8(path) + ": " + toUtf8(std::wstring(loader.getLoadReason().GetString()));
    return false;
}

bool createEmptyWaveFile(const std::wstring& path, std::string& reason)
{
    tWAVEFORMATEX wfx = {WAVE_FORMAT_PCM, 2, 44100, 176400, 4, 16, 0};
    CSndWaveWriteStreamty writer;
    if (!writer.Open(CString(path.c_str()), &wfx) || !writer.Close())
    {
        reason = toUtf8(path) + ": " + because(writer.GetResult());
        return false;
    }
    return true;
}

bool writeWaveFile(const std::wstring& path, const CSndDatatyx& data, unsigned long bytes, std::string& reason)
{
    tWAVEFORMATEX wfx = data.getAudioWaveDataWfx();
    CSndWaveWriteStreamty writer;
    if (!writer.Open(CString(path.c_str()), &wfx))
    {
        reason = toUtf8(path) + ": " + because(writer.GetResult());
        return false;
    }
    unsigned char* next = reinterpret_cast<unsigned char*>(data.getDataPointer());
    for (unsigned long left = bytes; left > 0;)
    {
        const unsigned long piece = left < kWritePiece ? left : kWritePiece;
        unsigned int written = 0;
        if (!writer.Write(piece, next, &written))
        {
            reason = toUtf8(path) + ": " + because(writer.GetResult());
            return false;
        }
        next += piece;
        left -= piece;
    }
    if (!writer.Close(bytes))
    {
        reason = toUtf8(path) + ": " + because(writer.GetResult());
        return false;
    }
    return true;
}

bool isPlayableFormat(const tWAVEFORMATEX& wfx, std::string& reason)
{
    if (wfx.wBitsPerSample != 8 && wfx.wBitsPerSample != 16)
    {
        reason = std::to_string(wfx.wBitsPerSample) + "-bit sound cannot be played (8 or 16 bits only)";
        return false;
    }
    if (wfx.nChannels != 1 && wfx.nChannels != 2)
    {
        reason = std::to_string(wfx.nChannels) + " channels cannot be played (1 or 2 only)";
        return false;
    }
    return true;
}

double secondsOf(unsigned long bytes, const tWAVEFORMATEX& wfx)
{
    if (wfx.nAvgBytesPerSec == 0)
        return 0.0;
    return static_cast<double>(bytes) / wfx.nAvgBytesPerSec;
}
