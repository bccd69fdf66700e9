#pragma once
// Recording into a container through the library's record/play object: the standard
// recording (8000000 bytes of capture memory in the capture device's default format), with
// what has arrived collected every 100 ms.

#include "DirectSndty.h"
#include "Console.h"

#include <string>

// The standard recording must be stopped before its capture memory is full: the bytes that
// arrive after the last collection before it fills up are not handed out.
const unsigned long kMaxRecordBytes = 7800000;

// Starts recording into `data` and returns once sound arrives: a process's first capture
// delivers nothing for most of a second. False with the reason.
bool startRecording(CSndDataRecordPlaytyx& recorder, const CSndDatatyx& data, std::string& reason);

// Collects until `data` holds at least `bytes`, showing progress; then stops the recording.
// False with the reason when the capture stops delivering first (the recording is stopped).
bool recordUntil(CSndDataRecordPlaytyx& recorder, const CSndDatatyx& data, unsigned long bytes,
                 ProgressLine& progress, std::string& reason);

// Collects for a while, so that the capture runs steadily before a stimulus starts.
void recordFor(CSndDataRecordPlaytyx& recorder, double seconds);

unsigned long wholeFrames(double bytes, const tWAVEFORMATEX& wfx);
