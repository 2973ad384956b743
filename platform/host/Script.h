// Scripts: what a person or a test does to the console and to the machine around it, one command a line.
//
// A script is read as a whole before anything starts, so that a mistake in its last line shows at once and not after the
// run.
#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "platform/host/Consoles.h"
#include "platform/host/Crossing.h"
#include "shell/contract/Services.h"
#include "uefi/TextInputEx.h"

enum SCRIPT_VERB : UINT8 {
    SCRIPT_POINTER,
    SCRIPT_LEFT,
    SCRIPT_RIGHT,
    SCRIPT_KEY,
    SCRIPT_TURN,
    SCRIPT_ADVANCE,
    SCRIPT_TICK,
    SCRIPT_READING,
    SCRIPT_STRING,
    SCRIPT_SETTING,
    SCRIPT_DEFAULT,
    SCRIPT_FAIL,
    SCRIPT_SLOW,
    SCRIPT_WITHOUT,
    SCRIPT_ARTWORK,
    SCRIPT_SCREENSHOT,
    SCRIPT_START,
    SCRIPT_RESET,
};

enum SCRIPT_ARTWORK_KIND : UINT8 { ARTWORK_NONE, ARTWORK_FROM_FILE, ARTWORK_TYPE };

// One command. Which fields mean something depends on the verb.
struct SCRIPT_COMMAND {
    SCRIPT_VERB Verb;
    UINT32 Line; // in the script, from 1
    INT64 X = 0; // pointer
    INT64 Y = 0;
    bool Down = false;                         // left, right
    EFI_INPUT_KEY Key = {};                    // key
    UINT32 ShiftState = 0;                     // of the key; see EFI_KEY_STATE
    UINT64 Count = 1;                          // turn, tick, fail, key; microseconds of advance and slow
    UINT8 Item = 0;                            // reading, string; the fan of setting and default
    bool Live = false;                         // reading: the model again
    READING_OVERRIDE Reading = {};             // reading
    std::optional<std::u16string> String = {}; // string
    FAN_SETTING Setting = {};                  // setting, default
    CALL Call = CALL_COUNT;                    // fail, slow
    EFI_STATUS Status = EFI_SUCCESS;           // fail
    EFI_GUID Guid = {};                        // without
    SCRIPT_ARTWORK_KIND ArtworkKind = ARTWORK_NONE;
    UINT32 Instance = 0;      // artwork: the section's number, or the type that all answer under
    std::vector<UINT8> Bytes; // artwork from a file
    std::string Path;         // screenshot
};


// A key that takes the mouse's place, by its name behind `hand`.
struct HAND_NAME {
    const char* Name;
    EFI_INPUT_KEY Key;
    UINT32 ShiftState;
    bool TakesShift; // the name can have `shift` in front
};
constexpr HAND_NAME gHandNames[] = {
    {"left", {SCAN_LEFT, 0}, 0, true},
    {"right", {SCAN_RIGHT, 0}, 0, true},
    {"up", {SCAN_UP, 0}, 0, true},
    {"down", {SCAN_DOWN, 0}, 0, true},
    {"tab", {SCAN_NULL, CHAR_TAB}, 0, false},
    {"back", {SCAN_NULL, CHAR_TAB}, gShiftPressed, false},
    {"space", {SCAN_NULL, u' '}, 0, false},
    {"grab", {SCAN_NULL, u'g'}, 0, false},
    {"picture", {SCAN_F12, 0}, 0, false},
};

struct SCRIPT {
    std::string Name; // as it stands in messages
    std::vector<SCRIPT_COMMAND> Commands;
};

// Reads a script's text. False with "NAME:LINE: what was expected" in *Error for the first mistake.
bool ParseScript(const std::string& Name, std::string_view Text, SCRIPT* Script, std::string* Error);

// "NAME:LINE: expected ..." for a command that turned out to be impossible when it was played.
std::string DescribeScriptError(const SCRIPT& Script, UINT32 Line, std::string_view Expected);

// The whole of a file. False when it can't be read.
bool ReadWholeFile(const std::string& Path, std::string* Bytes);
