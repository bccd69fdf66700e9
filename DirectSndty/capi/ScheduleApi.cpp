// Stimuli scheduled to the frame on a running output stream of a device.

#include "DstyHandles.h"

#include <algorithm>
#include <memory>

namespace
{
int checkSchedule(const dsty_schedule* schedule)
{
    return checkHandle(schedule, DstyKind::Schedule);
}
}

void freeSchedule(dsty_schedule* schedule)
{
    CDstyHost::instance().close(schedule);
    auto& list = schedule->owner->schedules;
    list.erase(std::remove(list.begin(), list.end(), schedule), list.end());
    schedule->schedule.closeSchedule();
    delete schedule;
}

int dsty_schedule_open(dsty_device* device, const dsty_format* format, unsigned lead_ms, dsty_schedule** out)
{
    DstyCall call;
    CDstyHost& host = CDstyHost::instance();
    const int begun = beginMaking(device, out);
    if (begun != DSTY_OK)
        return begun;
    tWAVEFORMATEX wfx;
    if (!toWaveFormat(format, wfx) || wfx.wBitsPerSample > 16)
        return host.fail(DSTY_E_FORMAT, "a schedule plays 8- or 16-bit PCM of one or two channels");
    std::unique_ptr<dsty_schedule> schedule(new (std::nothrow) dsty_schedule);
    if (!schedule)
        return host.fail(DSTY_E_MEMORY);
    if (!schedule->schedule.openSchedule(&device->device, wfx, lead_ms))
    {
        const HRESULT hr = schedule->schedule.getLastResult();
        if (hr == DSERR_UNSUPPORTED)
            return host.fail(DSTY_E_LEAD, "the platform writes too far ahead to keep this lead");
        if (hr == DSERR_INVALIDPARAM)
            return host.fail(DSTY_E_ARGUMENT, "a lead of 10 to 5000 ms");
        return host.fail(DSTY_E_DEVICE, "the output stream could not be started");
    }
    schedule->owner = device;
    schedule->wfx = wfx;
    device->schedules.push_back(schedule.get());
    host.open(schedule.get(), DstyKind::Schedule);
    *out = schedule.release();
    return DSTY_OK;
}

long long dsty_schedule_earliest_frame(dsty_schedule* schedule)
{
    DstyCall call;
    const int checked = checkSchedule(schedule);
    return checked != DSTY_OK ? checked : schedule->schedule.getEarliestFrame();
}

long long dsty_schedule_play_frame(dsty_schedule* schedule)
{
    DstyCall call;
    const int checked = checkSchedule(schedule);
    return checked != DSTY_OK ? checked : schedule->schedule.getPlayFrame();
}

int dsty_schedule_stim(dsty_schedule* schedule, const dsty_sound* sound, long long frame)
{
    DstyCall call;
    CDstyHost& host = CDstyHost::instance();
    int checked = checkSchedule(schedule);
    if (checked == DSTY_OK)
        checked = checkHandle(sound, DstyKind::Sound);
    if (checked != DSTY_OK)
        return checked;
    CSndDatatyx& data = const_cast<CSndDatatyx&>(sound->data);
    const tWAVEFORMATEX wfx = data.getAudioWaveDataWfx();
    if (wfx.nChannels != schedule->wfx.nChannels || wfx.nSamplesPerSec != schedule->wfx.nSamplesPerSec ||
        wfx.wBitsPerSample != schedule->wfx.wBitsPerSample)
        return host.fail(DSTY_E_FORMAT, "the sound's format is not the schedule's");
    const int id = schedule->schedule.scheduleStim(&data, frame);
    return id > 0 ? id : host.fail(DSTY_E_LATE, "the frame is before the earliest the schedule can still write");
}

int dsty_schedule_cancel(dsty_schedule* schedule, int id)
{
    DstyCall call;
    const int checked = checkSchedule(schedule);
    if (checked != DSTY_OK)
        return checked;
    return schedule->schedule.cancelStim(id) ? DSTY_OK : CDstyHost::instance().fail(DSTY_E_ARGUMENT, "no such stimulus pending");
}

int dsty_schedule_stim_on_time(dsty_schedule* schedule, int id)
{
    DstyCall call;
    const int checked = checkSchedule(schedule);
    if (checked != DSTY_OK)
        return checked;
    switch (schedule->schedule.getStimState(id))
    {
    case CDirectSndSchedulety::kStimOnTime: return 1;
    case CDirectSndSchedulety::kStimPending: return 0;
    case CDirectSndSchedulety::kStimLate: return CDstyHost::instance().fail(DSTY_E_LATE, "the stimulus was cut or lost");
    default: return CDstyHost::instance().fail(DSTY_E_ARGUMENT, "no such stimulus");
    }
}

long long dsty_schedule_time_to_frame(dsty_schedule* schedule, long long counter)
{
    DstyCall call;
    const int checked = checkSchedule(schedule);
    return checked != DSTY_OK ? checked : schedule->schedule.timeToFrame(counter);
}

long long dsty_schedule_frame_to_time(dsty_schedule* schedule, long long frame)
{
    DstyCall call;
    const int checked = checkSchedule(schedule);
    return checked != DSTY_OK ? checked : schedule->schedule.frameToTime(frame);
}

int dsty_schedule_set_output_latency(dsty_schedule* schedule, long long frames)
{
    DstyCall call;
    const int checked = checkSchedule(schedule);
    if (checked != DSTY_OK)
        return checked;
    schedule->schedule.setOutputLatencyFrames(frames);
    return DSTY_OK;
}

int dsty_schedule_latency(dsty_schedule* schedule, long long* write_ahead, long long* effective_lead, long long* skipped)
{
    DstyCall call;
    const int checked = checkSchedule(schedule);
    if (checked != DSTY_OK)
        return checked;
    if (write_ahead != nullptr)
        *write_ahead = schedule->schedule.getWriteAheadFrames();
    if (effective_lead != nullptr)
        *effective_lead = schedule->schedule.getEffectiveLeadFrames();
    if (skipped != nullptr)
        *skipped = schedule->schedule.getSkippedFrames();
    return DSTY_OK;
}

void dsty_schedule_close(dsty_schedule* schedule)
{
    DstyCall call;
    if (checkSchedule(schedule) == DSTY_OK)
        freeSchedule(schedule);
}
