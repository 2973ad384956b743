// Connects a window to a boot: in each turn the display is shown and the mouse and the keys reach the console, and on
// request what they did is recorded as a script. The window shows the whole display, of whatever size; the mouse points at
// the console's pixels on it. The window also sets the console's pace.
#pragma once

#include <string>

#include "platform/display/Placement.h"
#include "platform/host/Display.h"
#include "platform/host/Recorder.h"
#include "platform/host/Window.h"

struct BOOT;

struct WINDOW_DRIVER {
    WINDOW_DRIVER() = default;
    WINDOW_DRIVER(const WINDOW_DRIVER&) = delete;
    WINDOW_DRIVER& operator=(const WINDOW_DRIVER&) = delete;
    ~WINDOW_DRIVER();

    // False with the reason when there is no screen or the record can't be written. An empty path records nothing.
    bool Open(const PANEL& Panel, const std::string& RecordPath, std::string* Error);
    VOID BeginTurn(BOOT& Boot);
    VOID NoteStall(UINT64 Microseconds);
    // Ends the record. False when it couldn't be written.
    bool Close();
    // The user asked to close the window.
    bool IsClosed() const { return mInput.Closed; }

private:
    WINDOW* mWindow = nullptr;
    RECORDER* mRecorder = nullptr;
    PLACEMENT mPlace = {}; // of the console's picture on the display
    WINDOW_INPUT mInput = {};
    bool mBegun = false; // there was a turn
};
