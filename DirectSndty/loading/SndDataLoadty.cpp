#include "SndDataLoadty.h"
#include "SndDataReadtyStream.h"
#include "SndDatatyx.h"

#include <cmath>
#include <cstring>
#include <new>

namespace
{
bool isFloatFormat(const tWAVEFORMATEX& wfx)
{
    return wfx.wFormatTag == WAVE_FORMAT_IEEE_FLOAT;
}

// A sample of the 16-bit range, not yet rounded.
double toSixteenBitScale(const BYTE* pSample, const tWAVEFORMATEX& wfx)
{
    if (isFloatFormat(wfx))
    {
        float fValue;
        std::memcpy(&fValue, pSample, sizeof fValue);
        return std::isfinite(fValue) ? fValue * 32768.0 : 0.0;
    }
    if (wfx.wBitsPerSample == 24)
    {
        const long lValue = pSample[0] | (pSample[1] << 8) | (static_cast<signed char>(pSample[2]) * 65536L);
        return lValue / 256.0;
    }
    long lValue;
    std::memcpy(&lValue, pSample, sizeof lValue);
    return lValue / 65536.0;
}
}

CSndDataLoadty::CSndDataLoadty()
    : m_result(kLoaded),
      m_uDitherState(0x9E3779B9u)
{
}

CSndDataLoadty::~CSndDataLoadty()
{
}

int CSndDataLoadty::refuse(LoadResult result, const CString& strReason)
{
    m_result = result;
    m_strReason = strReason;
    return 0;
}

CSndDataLoadty::LoadResult CSndDataLoadty::getLoadResult() const
{
    return m_result;
}

CString CSndDataLoadty::getLoadReason() const
{
    return m_strReason;
}

int CSndDataLoadty::checkFormat(const tWAVEFORMATEX& wfx)
{
    CString strReason;
    if (wfx.nChannels != 1 && wfx.nChannels != 2)
    {
        strReason.Format(_T("%u channels cannot be played (1 or 2 only)"), wfx.nChannels);
        return refuse(kFormatRefused, strReason);
    }
    const bool bInteger = wfx.wFormatTag == WAVE_FORMAT_PCM &&
                          (wfx.wBitsPerSample == 8 || wfx.wBitsPerSample == 16 || wfx.wBitsPerSample == 24 ||
                           wfx.wBitsPerSample == 32);
    const bool bFloat = isFloatFormat(wfx) && wfx.wBitsPerSample == 32;
    if (!bInteger && !bFloat)
    {
        strReason.Format(_T("%u-bit sound of format %u cannot be played"), wfx.wBitsPerSample, wfx.wFormatTag);
        return refuse(kFormatRefused, strReason);
    }
    if (wfx.nSamplesPerSec == 0 || wfx.nBlockAlign != wfx.nChannels * wfx.wBitsPerSample / 8)
        return refuse(kFormatRefused, _T("the format's block alignment or rate is inconsistent"));
    return 1;
}

int CSndDataLoadty::loadWaveFile(LPCWSTR pszPathName, CSndDatatyx* pData)
{
    CSndDataReadtyStream reader;
    unsigned long ulSize = 0;
    tWAVEFORMATEX wfx = {};
    if (pData == NULL || pszPathName == NULL)
        return refuse(kFileRefused, _T("no file or no container"));
    if (!reader.initStream2Read(CString(pszPathName), &ulSize, &wfx))
        return refuse(kFileRefused, describeWaveFileResult(reader.getSndFileResult()));
    if (reader.getSndDataSize64() > 0x7FFFFFFFull)
        return refuse(kTooLarge, _T("the sound is too long to be held whole"));
    if (ulSize == 0)
        return refuse(kFileRefused, _T("the wave file holds no sound"));
    if (!checkFormat(wfx))
        return 0;
    std::vector<BYTE> pcm;
    try
    {
        pcm.resize(ulSize);
    }
    catch (const std::bad_alloc&)
    {
        return refuse(kNoMemory, _T("not enough memory for the sound"));
    }
    unsigned long ulRead = ulSize;
    if (!reader.readNewData(pcm.data(), ulRead) || ulRead != ulSize)
        return refuse(kFileRefused, describeWaveFileResult(reader.getSndFileResult()));
    return storePlayable(wfx, pcm.data(), ulSize, pData);
}

int CSndDataLoadty::loadPcm(const tWAVEFORMATEX& wfx, const void* pPcm, unsigned long ulBytes, CSndDatatyx* pData)
{
    if (pData == NULL || pPcm == NULL)
        return refuse(kFormatRefused, _T("no sound or no container"));
    if (!checkFormat(wfx))
        return 0;
    if (ulBytes < wfx.nBlockAlign)
        return refuse(kFormatRefused, _T("less than one sample frame of sound"));
    return storePlayable(wfx, static_cast<const BYTE*>(pPcm), ulBytes, pData);
}

// Whole frames only; what the buffers take goes in as it is.
int CSndDataLoadty::storePlayable(const tWAVEFORMATEX& wfx, const BYTE* pPcm, unsigned long ulBytes,
                                  CSndDatatyx* pData)
{
    ulBytes -= ulBytes % wfx.nBlockAlign;
    if (!isFloatFormat(wfx) && wfx.wBitsPerSample <= 16)
        return store(pData, pPcm, ulBytes, wfx);
    const unsigned long ulSamples = ulBytes / (wfx.wBitsPerSample / 8);
    std::vector<short> converted;
    try
    {
        converted.resize(ulSamples);
    }
    catch (const std::bad_alloc&)
    {
        return refuse(kNoMemory, _T("not enough memory for the sound"));
    }
    for (unsigned long i = 0; i < ulSamples; i++)
        converted[i] = ditheredSample(toSixteenBitScale(pPcm + i * (wfx.wBitsPerSample / 8), wfx));
    tWAVEFORMATEX wfx16 = wfx;
    wfx16.wFormatTag = WAVE_FORMAT_PCM;
    wfx16.wBitsPerSample = 16;
    wfx16.nBlockAlign = static_cast<WORD>(2 * wfx.nChannels);
    wfx16.nAvgBytesPerSec = wfx16.nBlockAlign * wfx.nSamplesPerSec;
    wfx16.cbSize = 0;
    return store(pData, reinterpret_cast<const BYTE*>(converted.data()), ulSamples * 2, wfx16);
}

int CSndDataLoadty::store(CSndDatatyx* pData, const BYTE* pPcm, unsigned long ulBytes, const tWAVEFORMATEX& wfx)
{
    if (!pData->setNewSndData(reinterpret_cast<const char*>(pPcm), ulBytes, wfx))
        return refuse(kNoMemory, _T("the sound could not be held"));
    m_strReason.Empty();
    m_result = kLoaded;
    return 1;
}

// Rounded after adding the difference of two uniform values of one step each, which spreads
// the rounding error evenly over the signal.
short CSndDataLoadty::ditheredSample(double dValue)
{
    auto uniform = [this]() {
        m_uDitherState ^= m_uDitherState << 13;
        m_uDitherState ^= m_uDitherState >> 17;
        m_uDitherState ^= m_uDitherState << 5;
        return m_uDitherState / 4294967296.0;
    };
    const double dDithered = std::floor(dValue + uniform() - uniform() + 0.5);
    return static_cast<short>(dDithered > 32767.0 ? 32767.0 : dDithered < -32768.0 ? -32768.0 : dDithered);
}
