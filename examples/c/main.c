/* DirectSndty from C: lists the playback devices, plays a tone, records a few seconds
 * streamed to a wave file while a second tone plays, and plays a train of clicks placed to
 * the frame by the schedule. Usage: dsty_example [OUT.wav] (default: dsty_example.wav) */
#include <dsty.h>

#include <math.h>
#include <stdio.h>
#include <stdlib.h>

#ifdef _WIN32
#include <windows.h>
#define sleep_ms(ms) Sleep(ms)
#endif

static const dsty_format kStereo16 = {2, 44100, 16};

/* Prints what went wrong and gives 1 for the program's exit status. */
static int failed(const char* what, int code)
{
    fprintf(stderr, "%s: %s (%s)\n", what, dsty_error_text(code), dsty_last_error());
    return 1;
}

/* The library's messages, printed instead of shown in a box. */
static void print_message(const char* text, void* user)
{
    (void)user;
    fprintf(stderr, "library: %s\n", text);
}

/* `seconds` of a sine at `hz`, half of full scale, on both channels. */
static short* sine(double hz, double seconds, size_t* bytes)
{
    const size_t frames = (size_t)(seconds * kStereo16.rate);
    short* pcm = (short*)malloc(frames * 4);
    size_t i;
    if (pcm == NULL)
        return NULL;
    for (i = 0; i < frames; i++)
        pcm[2 * i] = pcm[2 * i + 1] = (short)(16000.0 * sin(2.0 * 3.14159265358979 * hz * i / kStereo16.rate));
    *bytes = frames * 4;
    return pcm;
}

static int list_devices(void)
{
    char name[256];
    int i, count = dsty_device_count();
    if (count < 0)
        return failed("listing the devices", count);
    for (i = 0; i < count; i++)
        if (dsty_device_name(i, name, sizeof name) == DSTY_OK)
            printf("device %d: %s\n", i, name);
    return 0;
}

static int play_tone(dsty_device* device, double hz, double seconds)
{
    size_t bytes = 0;
    short* pcm = sine(hz, seconds, &bytes);
    dsty_sound* tone = NULL;
    int code = pcm != NULL ? dsty_sound_from_pcm(device, &kStereo16, pcm, bytes, &tone) : DSTY_E_MEMORY;
    free(pcm);
    if (code != DSTY_OK)
        return failed("making the tone", code);
    code = dsty_sound_play(tone, 0);
    if (code == DSTY_OK)
        sleep_ms((unsigned)(seconds * 1000) + 100);
    dsty_sound_free(tone);
    return code == DSTY_OK ? 0 : failed("playing the tone", code);
}

static int record_while_playing(dsty_device* device, const char* path)
{
    dsty_recording* recording = NULL;
    int code = dsty_record_start(&kStereo16, path, &recording);
    if (code != DSTY_OK)
        return failed("starting the recording", code);
    play_tone(device, 660.0, 1.5);
    sleep_ms(500);
    code = dsty_record_stop(recording);
    if (code != DSTY_OK)
        return failed("finishing the recording", code);
    printf("recorded about 2 s to %s\n", path);
    return 0;
}

/* Ten clicks 250 ms apart, each at the frame asked for, ahead of a 20 ms lead. */
static int play_train(dsty_device* device)
{
    size_t bytes = 0;
    short* pcm = sine(2000.0, 0.01, &bytes);
    dsty_sound* click = NULL;
    dsty_schedule* schedule = NULL;
    long long first, write_ahead = 0, lead = 0, skipped = 0;
    int k, late = 0, code = pcm != NULL ? dsty_sound_from_pcm(device, &kStereo16, pcm, bytes, &click) : DSTY_E_MEMORY;
    free(pcm);
    if (code != DSTY_OK || (code = dsty_schedule_open(device, &kStereo16, 20, &schedule)) != DSTY_OK)
    {
        dsty_sound_free(click);
        return failed("opening the schedule", code);
    }
    dsty_schedule_latency(schedule, &write_ahead, &lead, &skipped);
    printf("schedule: write-ahead %lld frames, lead in effect %lld frames\n", write_ahead, lead);
    first = dsty_schedule_earliest_frame(schedule) + kStereo16.rate / 5;
    for (k = 0; k < 10; k++)
    {
        const int id = dsty_schedule_stim(schedule, click, first + k * (long long)kStereo16.rate / 4);
        if (id < 0)
            late++;
    }
    sleep_ms(2800);
    printf("played a train of 10 clicks, %d refused\n", late);
    dsty_schedule_close(schedule);
    dsty_sound_free(click);
    return late == 0 ? 0 : 1;
}

int main(int argc, char** argv)
{
    const char* path = argc > 1 ? argv[1] : "dsty_example.wav";
    dsty_device* device = NULL;
    int code, status;
    printf("DirectSndty %s\n", dsty_version());
    dsty_set_message_handler(print_message, NULL);
    if (list_devices() != 0)
        return 1;
    code = dsty_device_open(-1, &device);
    if (code != DSTY_OK)
        return failed("opening the default device", code);
    status = play_tone(device, 440.0, 0.5) || record_while_playing(device, path) || play_train(device);
    dsty_device_close(device);
    return status;
}
