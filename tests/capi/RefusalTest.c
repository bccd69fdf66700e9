/* The C interface's refusals, from C: null and foreign handles, handles already freed, formats
 * it cannot take, files it cannot read, paths it cannot write, values out of range. Each gives
 * its negative code and a text, none crashes, and no message box is shown (the handler is
 * set, so any would wait for nobody). */
#include "dsty.h"

#include <stdio.h>
#include <string.h>
#include <windows.h>

static dsty_device* g_device;
static dsty_sound* g_sound; /* 16-bit stereo at 44.1 kHz */
static dsty_sound* g_freed;
static dsty_sound* g_mono;
static dsty_schedule* g_schedule;
static char g_dir[MAX_PATH];
static int g_foreign[64]; /* the memory behind a handle the library never made */
static const dsty_format kStereo16 = {2, 44100, 16}, kMono16 = {1, 44100, 16}, kThree = {3, 44100, 16},
                         kTwelve = {2, 44100, 12}, kStereo24 = {2, 44100, 24};
static short g_pcm[2 * 4410];

static const char* path(const char* name)
{
    static char buffer[MAX_PATH + 32];
    snprintf(buffer, sizeof buffer, "%s%s", g_dir, name);
    return buffer;
}

static void write_file(const char* name, const void* bytes, size_t size)
{
    FILE* file = fopen(path(name), "wb");
    if (file != NULL)
    {
        fwrite(bytes, 1, size, file);
        fclose(file);
    }
}

/* A wave header with `channels` of 16 bits and no sound after it but two frames. */
static void write_wave(const char* name, unsigned short channels, unsigned short bits)
{
    unsigned char h[44 + 24] = {0};
    const unsigned align = channels * bits / 8, data = 2 * align, riff = 36 + data, rate = 44100, bytes = rate * align;
    const unsigned fmt = 16, pcm = 1;
    memcpy(h, "RIFF", 4), memcpy(h + 4, &riff, 4), memcpy(h + 8, "WAVEfmt ", 8), memcpy(h + 16, &fmt, 4);
    memcpy(h + 20, &pcm, 2), memcpy(h + 22, &channels, 2), memcpy(h + 24, &rate, 4), memcpy(h + 28, &bytes, 4);
    memcpy(h + 32, &align, 2), memcpy(h + 34, &bits, 2), memcpy(h + 36, "data", 4), memcpy(h + 40, &data, 4);
    write_file(name, h, 44 + data);
}

static int messages;
static void count_message(const char* text, void* user)
{
    (void)user;
    printf("  message: %s\n", text);
    messages++;
}

static int open_null_out(void) { return dsty_device_open(-1, NULL); }
static int open_unknown_device(void) { dsty_device* d; return dsty_device_open(999, &d); }
static int name_null_buffer(void) { return dsty_device_name(0, NULL, 10); }
static int name_unknown_device(void) { char n[8]; return dsty_device_name(-5, n, sizeof n); }
static int caps_null_device(void) { dsty_caps c; return dsty_device_caps(NULL, &c); }
static int caps_foreign_device(void) { dsty_caps c; return dsty_device_caps((dsty_device*)g_foreign, &c); }
static int caps_null_out(void) { return dsty_device_caps(g_device, NULL); }
static int pcm_null_device(void) { dsty_sound* s; return dsty_sound_from_pcm(NULL, &kStereo16, g_pcm, sizeof g_pcm, &s); }
static int pcm_three_channels(void) { dsty_sound* s; return dsty_sound_from_pcm(g_device, &kThree, g_pcm, sizeof g_pcm, &s); }
static int pcm_twelve_bits(void) { dsty_sound* s; return dsty_sound_from_pcm(g_device, &kTwelve, g_pcm, sizeof g_pcm, &s); }
static int pcm_null_format(void) { dsty_sound* s; return dsty_sound_from_pcm(g_device, NULL, g_pcm, sizeof g_pcm, &s); }
static int pcm_null_data(void) { dsty_sound* s; return dsty_sound_from_pcm(g_device, &kStereo16, NULL, 100, &s); }
static int pcm_part_frame(void) { dsty_sound* s; return dsty_sound_from_pcm(g_device, &kStereo16, g_pcm, 3, &s); }
static int file_missing(void) { dsty_sound* s; return dsty_sound_from_file(g_device, path("missing.wav"), &s); }
static int file_not_wave(void) { dsty_sound* s; return dsty_sound_from_file(g_device, path("text.wav"), &s); }
static int file_six_channels(void) { dsty_sound* s; return dsty_sound_from_file(g_device, path("six.wav"), &s); }
static int file_null_path(void) { dsty_sound* s; return dsty_sound_from_file(g_device, NULL, &s); }
static int play_null(void) { return dsty_sound_play(NULL, 0); }
static int play_freed(void) { return dsty_sound_play(g_freed, 0); }
static int play_foreign(void) { return dsty_sound_play((dsty_sound*)g_foreign, 1); }
static int playing_freed(void) { return dsty_sound_is_playing(g_freed); }
static int pan_off_side(void) { return dsty_sound_pan(g_sound, 2); }
static int volume_above_full(void) { return dsty_sound_set_volume(g_sound, 1); }
static int play_3d_no_position(void) { return dsty_sound_play_3d(g_sound, NULL, NULL); }
static int stream_missing(void) { dsty_stream* s; return dsty_stream_open(g_device, path("missing.wav"), &s); }
static int stream_24_bits(void) { dsty_stream* s; return dsty_stream_open(g_device, path("deep.wav"), &s); }
static int stream_wait_foreign(void) { return dsty_stream_wait((dsty_stream*)g_foreign, 0); }
static int record_unwritable(void) { dsty_recording* r; return dsty_record_start(&kStereo16, path("no\\such\\folder\\r.wav"), &r); }
static int record_24_bits(void) { dsty_recording* r; return dsty_record_start(&kStereo24, path("r24.wav"), &r); }
static int record_null_out(void) { return dsty_record_start(&kStereo16, path("r.wav"), NULL); }
static int record_stop_null(void) { return dsty_record_stop(NULL); }
static int record_stop_foreign(void) { return dsty_record_stop((dsty_recording*)g_foreign); }
static int record_into_null(void) { return dsty_record_into(&kStereo16, NULL, 400); }
static int schedule_short_lead(void) { dsty_schedule* s; return dsty_schedule_open(g_device, &kStereo16, 5, &s); }
static int schedule_24_bits(void) { dsty_schedule* s; return dsty_schedule_open(g_device, &kStereo24, 50, &s); }
static int stim_other_format(void) { return dsty_schedule_stim(g_schedule, g_mono, dsty_schedule_earliest_frame(g_schedule) + 4410); }
static int stim_written_frame(void) { return dsty_schedule_stim(g_schedule, g_sound, 0); }
static int stim_freed_sound(void) { return dsty_schedule_stim(g_schedule, g_freed, dsty_schedule_earliest_frame(g_schedule) + 4410); }
static int cancel_unknown(void) { return dsty_schedule_cancel(g_schedule, 12345); }
static int on_time_unknown(void) { return dsty_schedule_stim_on_time(g_schedule, 12345); }
static int earliest_foreign(void) { return (int)dsty_schedule_earliest_frame((dsty_schedule*)g_foreign); }

static const struct
{
    const char* what;
    int (*call)(void);
    int expected;
} kRefusals[] = {
    {"device_open without an out-pointer", open_null_out, DSTY_E_ARGUMENT},
    {"device_open of no such device", open_unknown_device, DSTY_E_ARGUMENT},
    {"device_name into no buffer", name_null_buffer, DSTY_E_ARGUMENT},
    {"device_name of no such device", name_unknown_device, DSTY_E_ARGUMENT},
    {"device_caps of no device", caps_null_device, DSTY_E_ARGUMENT},
    {"device_caps of a foreign handle", caps_foreign_device, DSTY_E_HANDLE},
    {"device_caps without an out-pointer", caps_null_out, DSTY_E_ARGUMENT},
    {"sound_from_pcm on no device", pcm_null_device, DSTY_E_ARGUMENT},
    {"sound_from_pcm of three channels", pcm_three_channels, DSTY_E_FORMAT},
    {"sound_from_pcm of 12 bits", pcm_twelve_bits, DSTY_E_FORMAT},
    {"sound_from_pcm of no format", pcm_null_format, DSTY_E_FORMAT},
    {"sound_from_pcm of no data", pcm_null_data, DSTY_E_ARGUMENT},
    {"sound_from_pcm of part of a frame", pcm_part_frame, DSTY_E_FORMAT},
    {"sound_from_file of a missing file", file_missing, DSTY_E_FILE},
    {"sound_from_file of a text file", file_not_wave, DSTY_E_FILE},
    {"sound_from_file of six channels", file_six_channels, DSTY_E_FORMAT},
    {"sound_from_file of no path", file_null_path, DSTY_E_ARGUMENT},
    {"sound_play of no sound", play_null, DSTY_E_ARGUMENT},
    {"sound_play of a freed sound", play_freed, DSTY_E_HANDLE},
    {"sound_play of a foreign handle", play_foreign, DSTY_E_HANDLE},
    {"sound_is_playing of a freed sound", playing_freed, DSTY_E_HANDLE},
    {"sound_pan to no side", pan_off_side, DSTY_E_ARGUMENT},
    {"sound_set_volume above full", volume_above_full, DSTY_E_ARGUMENT},
    {"sound_play_3d without a position", play_3d_no_position, DSTY_E_ARGUMENT},
    {"stream_open of a missing file", stream_missing, DSTY_E_FILE},
    {"stream_open of 24 bits", stream_24_bits, DSTY_E_FORMAT},
    {"stream_wait on a foreign handle", stream_wait_foreign, DSTY_E_HANDLE},
    {"record_start into no folder", record_unwritable, DSTY_E_WRITE},
    {"record_start of 24 bits", record_24_bits, DSTY_E_FORMAT},
    {"record_start without an out-pointer", record_null_out, DSTY_E_ARGUMENT},
    {"record_stop of no recording", record_stop_null, DSTY_E_ARGUMENT},
    {"record_stop of a foreign handle", record_stop_foreign, DSTY_E_HANDLE},
    {"record_into no memory", record_into_null, DSTY_E_ARGUMENT},
    {"schedule_open with a 5 ms lead", schedule_short_lead, DSTY_E_ARGUMENT},
    {"schedule_open of 24 bits", schedule_24_bits, DSTY_E_FORMAT},
    {"schedule_stim of a mono sound on a stereo schedule", stim_other_format, DSTY_E_FORMAT},
    {"schedule_stim at a frame already written", stim_written_frame, DSTY_E_LATE},
    {"schedule_stim of a freed sound", stim_freed_sound, DSTY_E_HANDLE},
    {"schedule_cancel of no such stimulus", cancel_unknown, DSTY_E_ARGUMENT},
    {"schedule_stim_on_time of no such stimulus", on_time_unknown, DSTY_E_ARGUMENT},
    {"schedule_earliest_frame of a foreign handle", earliest_foreign, DSTY_E_HANDLE},
};

static int set_up(void)
{
    const char text[] = "not a wave file at all\n";
    GetTempPathA(sizeof g_dir, g_dir);
    write_file("text.wav", text, sizeof text);
    write_wave("six.wav", 6, 16);
    write_wave("deep.wav", 2, 24);
    DeleteFileA(path("missing.wav"));
    return dsty_device_open(-1, &g_device) == DSTY_OK &&
           dsty_sound_from_pcm(g_device, &kStereo16, g_pcm, sizeof g_pcm, &g_sound) == DSTY_OK &&
           dsty_sound_from_pcm(g_device, &kStereo16, g_pcm, sizeof g_pcm, &g_freed) == DSTY_OK &&
           dsty_sound_from_pcm(g_device, &kMono16, g_pcm, sizeof g_pcm, &g_mono) == DSTY_OK &&
           dsty_schedule_open(g_device, &kStereo16, 50, &g_schedule) == DSTY_OK;
}

int main(void)
{
    size_t k;
    int failures = 0;
    dsty_set_message_handler(count_message, NULL);
    if (!set_up())
    {
        printf("set-up failed: %s\n", dsty_last_error());
        return 1;
    }
    dsty_sound_free(g_freed);
    for (k = 0; k < sizeof kRefusals / sizeof kRefusals[0]; k++)
    {
        const int got = kRefusals[k].call();
        const char* why = dsty_last_error();
        const int ok = got == kRefusals[k].expected && why[0] != '\0' && strcmp(dsty_error_text(got), "unknown error code") != 0;
        printf("%s %s: %d (%s)\n", ok ? "ok  " : "FAIL", kRefusals[k].what, got, why);
        failures += !ok;
    }
    /* Freeing what is not open changes nothing. */
    dsty_sound_free(g_freed);
    dsty_sound_free(NULL);
    dsty_schedule_close((dsty_schedule*)g_foreign);
    dsty_device_close(NULL);
    dsty_device_close(g_device); /* with its sounds and schedule */
    if (dsty_sound_play(g_sound, 0) != DSTY_E_HANDLE || dsty_schedule_earliest_frame(g_schedule) != DSTY_E_HANDLE)
    {
        printf("FAIL what the device made outlived it\n");
        failures++;
    }
    printf("%d of %d refusals as expected, %d library messages\n", (int)(sizeof kRefusals / sizeof kRefusals[0]) - failures,
           (int)(sizeof kRefusals / sizeof kRefusals[0]), messages);
    if (failures == 0)
        printf("ALL REFUSALS AS EXPECTED\n");
    return failures == 0 ? 0 : 1;
}
