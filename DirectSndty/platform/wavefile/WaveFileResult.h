#pragma once
// Why a reader or writer operation of the wave-file library answered 0. Each object keeps
// the result of its last operation for the caller to ask. Plain C++ (no Windows header):
// the library's Windows-free RIFF core reports with the same codes.

enum WaveFileResult
{
    WAVEFILE_OK = 0,
    WAVEFILE_ERR_ARGUMENT,      // empty file name, null pointer, format the writer cannot write
    WAVEFILE_ERR_OPEN,          // the file could not be opened or created
    WAVEFILE_ERR_IO,            // reading or writing the file failed
    WAVEFILE_ERR_NOT_OPEN,      // no file is open
    WAVEFILE_ERR_NOT_WAVE,      // the file does not start with a RIFF/WAVE header
    WAVEFILE_ERR_NO_FORMAT,     // the file has no fmt chunk
    WAVEFILE_ERR_NO_DATA,       // the file has no data chunk
    WAVEFILE_ERR_TRUNCATED,     // the file ends inside a chunk needed before the sound data
    WAVEFILE_ERR_BAD_FORMAT,    // the fmt chunk is too short or contradicts itself
    WAVEFILE_ERR_UNSUPPORTED,   // the sound is neither integer PCM nor 32-bit float (ADPCM, a-law, ...)
    WAVEFILE_ERR_TOO_LARGE,     // the data would grow past what a RIFF header can describe
    WAVEFILE_ERR_SIZE_MISMATCH  // Close was told of more bytes than were written
};

// English text for a result, for messages and logs.
inline const wchar_t* describeWaveFileResult(WaveFileResult result)
{
    switch (result)
    {
    case WAVEFILE_OK: return L"No error";
    case WAVEFILE_ERR_ARGUMENT: return L"Invalid file name, pointer or format";
    case WAVEFILE_ERR_OPEN: return L"The file cannot be opened";
    case WAVEFILE_ERR_IO: return L"The file cannot be read or written";
    case WAVEFILE_ERR_NOT_OPEN: return L"No file is open";
    case WAVEFILE_ERR_NOT_WAVE: return L"Not a RIFF wave file";
    case WAVEFILE_ERR_NO_FORMAT: return L"The wave file has no format chunk";
    case WAVEFILE_ERR_NO_DATA: return L"The wave file has no data chunk";
    case WAVEFILE_ERR_TRUNCATED: return L"The wave file is cut off";
    case WAVEFILE_ERR_BAD_FORMAT: return L"The wave format is inconsistent";
    case WAVEFILE_ERR_UNSUPPORTED: return L"The wave file is neither integer PCM nor 32-bit float";
    case WAVEFILE_ERR_TOO_LARGE: return L"The wave data would exceed 4 GB";
    case WAVEFILE_ERR_SIZE_MISMATCH: return L"Fewer bytes were written than the size given";
    }
    return L"Unknown result";
}
