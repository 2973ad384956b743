// The recorder writes the window's input as a script that plays back.
//
// Each turn becomes the time since the turn before (`advance`), what changed (`pointer`, `left`, `right`, `key`), and
// `turn`. The clock is counted from the first turn. Lines reach the file turn by turn, so that a record survives a
// crash.
#pragma once

#include "platform/host/Window.h"

struct RECORDER;

// Creates or replaces the file at Path. Null when that can't be done.
RECORDER* OpenRecorder(const char* Path);

// Records one turn that began Now microseconds on the machine's clock and saw Input.
VOID RecordTurn(RECORDER* Recorder, UINT64 Now, const WINDOW_INPUT& Input);

// Tells that the console stalled for so long: when the script plays, the stall moves the clock by itself, and the next
// `advance` is shorter by it.
VOID RecordStall(RECORDER* Recorder, UINT64 Microseconds);

// False when a line couldn't be written, now or before.
bool CloseRecorder(RECORDER* Recorder);
