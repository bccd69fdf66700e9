// Sounds held whole in a sound buffer: loaded from PCM or a wave file, played once, looped,
// panned, at a volume and rate, or as a standing or moving 3D source.

#include "DstyHandles.h"

#include <algorithm>
#include <memory>

namespace
{
template <class T>
void forget(std::vector<T*>& list, T* item)
{
    list.erase(std::remove(list.begin(), list.end(), item), list.end());
}

int loadFailure(const CSndDataLoadty& loader, bool fromFile)
{
    const std::string why = utf8Of(loader.getLoadReason().GetString());
    switch (loader.getLoadResult())
    {
    case CSndDataLoadty::kFileRefused: return CDstyHost::instance().fail(fromFile ? DSTY_E_FILE : DSTY_E_FORMAT, why);
    case CSndDataLoadty::kNoMemory: return CDstyHost::instance().fail(DSTY_E_MEMORY, why);
    default: return CDstyHost::instance().fail(DSTY_E_FORMAT, why);
    }
}

// The loaded container into a new sound buffer on the device.
int makeSound(dsty_device* device, std::unique_ptr<dsty_sound> sound, dsty_sound** out)
{
    if (!sound->buffer.setSndData2DSndBuf2ndStd(&sound->data, &device->device))
        return CDstyHost::instance().fail(DSTY_E_DEVICE, "the sound buffer could not be made");
    sound->owner = device;
    device->sounds.push_back(sound.get());
    CDstyHost::instance().open(sound.get(), DstyKind::Sound);
    *out = sound.release();
    return DSTY_OK;
}

int checkSound(const dsty_sound* sound)
{
    return checkHandle(sound, DstyKind::Sound);
}

int result(int nDone, const char* what)
{
    return nDone ? DSTY_OK : CDstyHost::instance().fail(DSTY_E_DEVICE, what);
}
}

bool toWaveFormat(const dsty_format* format, tWAVEFORMATEX& wfx)
{
    if (format == nullptr || format->channels < 1 || format->channels > 2 || format->rate == 0 ||
        format->rate > 1000000 || (format->bits != 8 && format->bits != 16 && format->bits != 24 && format->bits != 32))
        return false;
    wfx.wFormatTag = WAVE_FORMAT_PCM;
    wfx.nChannels = static_cast<WORD>(format->channels);
    wfx.nSamplesPerSec = format->rate;
    wfx.wBitsPerSample = static_cast<WORD>(format->bits);
    wfx.nBlockAlign = static_cast<WORD>(format->channels * format->bits / 8);
    wfx.nAvgBytesPerSec = wfx.nBlockAlign * format->rate;
    wfx.cbSize = 0;
    return true;
}

void freeSound(dsty_sound* sound)
{
    CDstyHost::instance().close(sound);
    forget(sound->owner->sounds, sound);
    sound->buffer.stopAudioStim();
    delete sound;
}

int dsty_sound_from_pcm(dsty_device* device, const dsty_format* format, const void* pcm, size_t bytes,
                        dsty_sound** out)
{
    DstyCall call;
    CDstyHost& host = CDstyHost::instance();
    const int begun = beginMaking(device, out, pcm != nullptr && bytes != 0 && bytes <= 0x7FFFFFFF);
    if (begun != DSTY_OK)
        return begun;
    tWAVEFORMATEX wfx;
    if (!toWaveFormat(format, wfx))
        return host.fail(DSTY_E_FORMAT, "integer PCM of one or two channels and 8, 16, 24 or 32 bits only");
    std::unique_ptr<dsty_sound> sound(new (std::nothrow) dsty_sound);
    if (!sound)
        return host.fail(DSTY_E_MEMORY);
    CSndDataLoadty loader;
    if (!loader.loadPcm(wfx, pcm, static_cast<unsigned long>(bytes), &sound->data))
        return loadFailure(loader, false);
    return makeSound(device, std::move(sound), out);
}

int dsty_sound_from_file(dsty_device* device, const char* wav_path, dsty_sound** out)
{
    DstyCall call;
    CDstyHost& host = CDstyHost::instance();
    const int begun = beginMaking(device, out, wav_path != nullptr);
    if (begun != DSTY_OK)
        return begun;
    std::unique_ptr<dsty_sound> sound(new (std::nothrow) dsty_sound);
    if (!sound)
        return host.fail(DSTY_E_MEMORY);
    CSndDataLoadty loader;
    if (!loader.loadWaveFile(wideOf(wav_path).c_str(), &sound->data))
        return loadFailure(loader, true);
    return makeSound(device, std::move(sound), out);
}

int dsty_sound_format(const dsty_sound* sound, dsty_format* out)
{
    DstyCall call;
    const int checked = checkSound(sound);
    if (checked != DSTY_OK)
        return checked;
    if (out == nullptr)
        return CDstyHost::instance().fail(DSTY_E_ARGUMENT);
    const tWAVEFORMATEX wfx = sound->data.getAudioWaveDataWfx();
    *out = dsty_format{wfx.nChannels, wfx.nSamplesPerSec, wfx.wBitsPerSample};
    return DSTY_OK;
}

int dsty_sound_play(dsty_sound* sound, int loop)
{
    DstyCall call;
    const int checked = checkSound(sound);
    if (checked != DSTY_OK)
        return checked;
    return result(loop ? sound->buffer.sendAudioStimLoop() : sound->buffer.sendAudioStim(), "the sound did not play");
}

int dsty_sound_stop(dsty_sound* sound)
{
    DstyCall call;
    const int checked = checkSound(sound);
    if (checked != DSTY_OK)
        return checked;
    return result(sound->buffer.stopAudioStim(), "the sound did not stop");
}

int dsty_sound_is_playing(dsty_sound* sound)
{
    DstyCall call;
    const int checked = checkSound(sound);
    if (checked != DSTY_OK)
        return checked;
    return sound->buffer.isDSndBufferPlaying() ? 1 : 0;
}

// "Left" is heard on the left, so the right side is the one muted.
int dsty_sound_pan(dsty_sound* sound, int side)
{
    DstyCall call;
    const int checked = checkSound(sound);
    if (checked != DSTY_OK)
        return checked;
    if (side < -1 || side > 1)
        return CDstyHost::instance().fail(DSTY_E_ARGUMENT, "a side of -1, 0 or 1");
    CDirectSnd3DBuffty& buffer = sound->buffer;
    return result(side < 0 ? buffer.panMuteRight() : side > 0 ? buffer.panMuteLeft() : buffer.panCenter(),
                  "the sound could not be panned");
}

int dsty_sound_set_volume(dsty_sound* sound, long hundredths_db)
{
    DstyCall call;
    const int checked = checkSound(sound);
    if (checked != DSTY_OK)
        return checked;
    if (hundredths_db > 0 || hundredths_db < -10000)
        return CDstyHost::instance().fail(DSTY_E_ARGUMENT, "a volume from 0 down to -10000");
    return result(sound->buffer.setVolume(hundredths_db), "the volume could not be set");
}

int dsty_sound_set_frequency(dsty_sound* sound, unsigned long hz)
{
    DstyCall call;
    const int checked = checkSound(sound);
    if (checked != DSTY_OK)
        return checked;
    return result(sound->buffer.setFrequency(hz), "the playback rate could not be set");
}

int dsty_sound_play_3d(dsty_sound* sound, const float position[3], const float velocity[3])
{
    DstyCall call;
    const int checked = checkSound(sound);
    if (checked != DSTY_OK)
        return checked;
    if (position == nullptr)
        return CDstyHost::instance().fail(DSTY_E_ARGUMENT);
    CDirectSnd3DBuffty& buffer = sound->buffer;
    if (buffer.m_pDS3DBuffer == NULL && !buffer.setSndData2DS3Dbuff2(&sound->data, &sound->owner->device))
        return CDstyHost::instance().fail(DSTY_E_DEVICE, "the 3D sound buffer could not be made");
    buffer.m_ds3dBuffer.vPosition = D3DVECTOR{position[0], position[1], position[2]};
    buffer.m_ds3dBuffer.vVelocity =
        velocity != nullptr ? D3DVECTOR{velocity[0], velocity[1], velocity[2]} : D3DVECTOR{0.0f, 0.0f, 0.0f};
    return result(buffer.sendAudioStimDS3D(), "the 3D sound did not play");
}

void dsty_sound_free(dsty_sound* sound)
{
    DstyCall call;
    if (checkSound(sound) == DSTY_OK)
        freeSound(sound);
}
