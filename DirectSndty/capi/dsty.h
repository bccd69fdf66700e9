/* DirectSndty's C interface: sound stimuli played, scheduled and recorded through DirectSound 8
 * from any program that can call a C function in a DLL (C, C++ of any compiler, Python ctypes,
 * MATLAB loadlibrary, C# P/Invoke, LabVIEW). It lives in dsty.dll, over the C++ classes of
 * DirectSndty.dll.
 *
 * Handles are opaque. Every function returns DSTY_OK (0) or a negative DSTY_E_... code unless
 * it says otherwise; dsty_error_text tells what a code means, and dsty_last_error what the last
 * failed call of the calling thread found. Strings and paths are UTF-8. Any function may be
 * called from any thread; a handle may be freed in any state, from any thread, and a handle
 * once freed (or never made) is refused with DSTY_E_HANDLE. Closing a device frees the sounds,
 * streams and schedules made on it. Frames are sample frames of the format in use.
 *
 * The library's own messages (the texts its C++ classes would show in a message box) go to the
 * handler given to dsty_set_message_handler, and no box is shown while one is set. */
#ifndef DSTY_H
#define DSTY_H

#include <stddef.h>

#ifdef DSTY_BUILD
#define DSTY_API __declspec(dllexport)
#else
#define DSTY_API __declspec(dllimport)
#endif

#ifdef __cplusplus
extern "C" {
#endif

#define DSTY_OK 0
#define DSTY_E_ARGUMENT (-1) /* a null or out-of-range argument */
#define DSTY_E_HANDLE (-2)   /* a handle that is not (or no longer) open */
#define DSTY_E_FORMAT (-3)   /* a format the call cannot take */
#define DSTY_E_FILE (-4)     /* a file that cannot be read */
#define DSTY_E_WRITE (-5)    /* a path that cannot be written, or a file that stopped taking data */
#define DSTY_E_DEVICE (-6)   /* the sound device refused */
#define DSTY_E_LATE (-7)     /* a frame the schedule has already written */
#define DSTY_E_LEAD (-8)     /* a lead the platform cannot keep */
#define DSTY_E_TIMEOUT (-9)  /* the wait ended before what it waited for */
#define DSTY_E_MEMORY (-10)  /* not enough memory */

typedef struct dsty_device dsty_device;
typedef struct dsty_sound dsty_sound;
typedef struct dsty_recording dsty_recording;
typedef struct dsty_schedule dsty_schedule;
typedef struct dsty_stream dsty_stream;
typedef struct dsty_format { unsigned channels, rate, bits; } dsty_format; /* integer PCM */
typedef void (*dsty_message_fn)(const char* utf8_text, void* user);

/* What the device can do. */
typedef struct dsty_caps
{
    unsigned min_rate, max_rate; /* sample rates its secondary buffers take, Hz */
    unsigned speaker_config;     /* DSSPEAKER_... as DirectSound reports it */
} dsty_caps;

/* ---- The library ---------------------------------------------------------------------- */
DSTY_API const char* dsty_version(void);
DSTY_API const char* dsty_error_text(int code);
/* What the calling thread's last failed call found ("": nothing yet). */
DSTY_API const char* dsty_last_error(void);
DSTY_API void dsty_set_message_handler(dsty_message_fn fn, void* user); /* NULL: the library's message boxes again */

/* ---- Devices -------------------------------------------------------------------------- */
DSTY_API int dsty_device_count(void); /* playback devices, or a negative code */
DSTY_API int dsty_device_name(int index, char* utf8, size_t size);
/* Opens a playback device (-1: the default device) at the priority level, with its primary
 * buffer, ready for every kind of play. */
DSTY_API int dsty_device_open(int index, dsty_device** out);
DSTY_API void dsty_device_close(dsty_device* device);
DSTY_API int dsty_device_caps(dsty_device* device, dsty_caps* out);

/* ---- Sounds: PCM held whole in a sound buffer ----------------------------------------- */
/* 8- or 16-bit PCM is taken as it is; 24- and 32-bit are made 16-bit (with dither). */
DSTY_API int dsty_sound_from_pcm(dsty_device* device, const dsty_format* format, const void* pcm, size_t bytes,
                                 dsty_sound** out);
/* A wave file of 8-, 16-, 24- or 32-bit integer or 32-bit float PCM, mono or stereo, plain or
 * extensible header, RF64 included; what the buffers cannot take is made 16-bit (with dither). */
DSTY_API int dsty_sound_from_file(dsty_device* device, const char* wav_path, dsty_sound** out);
DSTY_API int dsty_sound_format(const dsty_sound* sound, dsty_format* out);
DSTY_API int dsty_sound_play(dsty_sound* sound, int loop);
DSTY_API int dsty_sound_stop(dsty_sound* sound);
DSTY_API int dsty_sound_is_playing(dsty_sound* sound); /* 1, 0, or a negative code */
/* Heard on the left (-1), from the centre (0) or on the right (1); the other side is muted. */
DSTY_API int dsty_sound_pan(dsty_sound* sound, int side);
DSTY_API int dsty_sound_set_volume(dsty_sound* sound, long hundredths_db); /* 0 (full) down to -10000 */
DSTY_API int dsty_sound_set_frequency(dsty_sound* sound, unsigned long hz); /* 0: the sound's own rate */
/* Plays the sound as a 3D source at position (x, y, z) moving at velocity (units a second;
 * NULL: standing still), heard by the device's listener. A stereo sound is made mono. */
DSTY_API int dsty_sound_play_3d(dsty_sound* sound, const float position[3], const float velocity[3]);
DSTY_API void dsty_sound_free(dsty_sound* sound);

/* ---- Streamed playback of a wave file of any length ----------------------------------- */
/* 8- or 16-bit PCM, mono or stereo; a worker of the library's refills the device's buffer. */
DSTY_API int dsty_stream_open(dsty_device* device, const char* wav_path, dsty_stream** out);
DSTY_API int dsty_stream_play(dsty_stream* stream);   /* from the start of the file */
DSTY_API int dsty_stream_stop(dsty_stream* stream);
DSTY_API int dsty_stream_is_playing(dsty_stream* stream); /* 1, 0 once the file has played out or was stopped */
DSTY_API int dsty_stream_wait(dsty_stream* stream, unsigned timeout_ms); /* DSTY_OK when it has ended */
DSTY_API void dsty_stream_close(dsty_stream* stream);

/* ---- Recording -------------------------------------------------------------------------- */
DSTY_API int dsty_record_start(const dsty_format* format, const char* wav_path, dsty_recording** out); /* streamed to the file until stopped */
/* DSTY_OK while it goes on; DSTY_E_WRITE once the file has stopped taking data (the recording
 * then ends by itself, the file holding all it took). */
DSTY_API int dsty_record_status(dsty_recording* recording);
/* Frames lost while the recording was held up past its buffer; the file holds silence there. */
DSTY_API long long dsty_record_lost_frames(dsty_recording* recording);
DSTY_API int dsty_record_stop(dsty_recording* recording); /* writes the tail, finishes the file, frees the handle */
/* Records `bytes` (whole frames) into `pcm` from the default capture device, waiting until
 * they are in. */
DSTY_API int dsty_record_into(const dsty_format* format, void* pcm, size_t bytes);

/* ---- Scheduled stimuli, placed on a running output stream to the frame ------------------ */
DSTY_API int dsty_schedule_open(dsty_device* device, const dsty_format* format, unsigned lead_ms, dsty_schedule** out);
DSTY_API long long dsty_schedule_earliest_frame(dsty_schedule* schedule); /* or a negative code */
DSTY_API long long dsty_schedule_play_frame(dsty_schedule* schedule);     /* or a negative code */
DSTY_API int dsty_schedule_stim(dsty_schedule* schedule, const dsty_sound* sound, long long frame); /* an id above 0, or a negative code */
DSTY_API int dsty_schedule_cancel(dsty_schedule* schedule, int id);
/* 1 written whole and on time, 0 not yet written, or DSTY_E_LATE (cut or lost), or a negative code. */
DSTY_API int dsty_schedule_stim_on_time(dsty_schedule* schedule, int id);
/* The stream frame heard at a QueryPerformanceCounter value, and back; negative while unknown. */
DSTY_API long long dsty_schedule_time_to_frame(dsty_schedule* schedule, long long counter);
DSTY_API long long dsty_schedule_frame_to_time(dsty_schedule* schedule, long long frame);
DSTY_API int dsty_schedule_set_output_latency(dsty_schedule* schedule, long long frames);
/* The platform's write-ahead and the lead in effect, in frames, and the frames skipped. */
DSTY_API int dsty_schedule_latency(dsty_schedule* schedule, long long* write_ahead, long long* effective_lead,
                                   long long* skipped);
DSTY_API void dsty_schedule_close(dsty_schedule* schedule);

#ifdef __cplusplus
}
#endif

#endif
