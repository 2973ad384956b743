// A session: the hosted machine is switched on, the console started as often as a script wants it, and everything that
// could be seen of it handed back. The command `ventara` is a session with a command line in front; tests run sessions
// with the script as a string and the pictures in memory.
//
//     SESSION_OPTIONS Options;
//     Options.Script = "pointer 600 570\nturn\nleft down\nturn\nleft up\nturn 2\nscreenshot after\n";
//     const SESSION_RESULT Result = RunSession(Options);
//
// Without a window and without a script the machine's own clock runs, and the session goes on until RequestStop.
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/host/ImageLoader.h"
#include "platform/host/Player.h"

struct SESSION_OPTIONS {
    std::string Board = "full"; // see gBoardNames
    UINT64 Seed = 1;
    BOARD_SOURCE* Source = nullptr; // a board in the simulation's place
    UINT8 Generation = 0;
    PANEL Panel = {}; // the display, where it isn't the ordinary one; pictures are of its size then
    bool WithNetwork = false;
    std::string Folder = "."; // where F12 writes its files

    std::optional<std::string> Script; // the text; a script makes the clock virtual
    std::string ScriptName = "script"; // as it stands in messages
    bool KeepPictures = true;          // the script's screenshots come back in the result instead of going to files

    bool Window = false;
    std::string RecordPath; // of the window's input; empty: none

    bool KeepDisplay = true;   // what the display shows at the end comes back
    bool KeepTrace = false;    // the lines come back in the result
    bool TracePool = false;    // pool calls too, and who owns what is left over in more detail
    bool TraceBlts = true;     // without them a start's trace is a tenth as long
    FILE* TraceFile = nullptr; // the lines go there too

    // What the CPU's timer and the monotonic count show when the machine is switched on: for tests in which they go over
    // their ends, and in which the timer isn't a nanosecond a tick.
    UINT64 TimerAtStart = 0;
    UINT64 TimerPeriod = 1000000; // femtoseconds of the timer's tick
    UINT64 CountAtStart = 0;

    bool GroupsOldestFirst = false; // see EVENTS

    UINT64 PoolLimit = 0; // the allocation of a start from which on all fail; 0: none
    UINT64 PoolFail = 0;  // the one that fails alone; 0: none

    UINTN PoolFillLimit = ~0ull;    // see POOL
    bool RoomyTextPictures = false; // see platform/board/TextService.h
    FAILURE_PLAN Failures;          // while the console runs

    // The console: an entry point in this process, or an image; by default the one that FindConsoleImage finds. An entry
    // point in this process finds its globals as the start before left them.
    IMAGE_ENTRY_POINT Entry = nullptr;
    std::string ImagePath;

    // The arguments of a UEFI shell, without the program's name; nothing: no shell is there.
    std::optional<std::vector<std::string>> ShellArguments;

    bool EchoConsoles = false;          // ConOut, StdErr and complaints reach the program's own streams
    const UINT8* ArtworkPack = nullptr; // a pack of a test's own
    UINTN ArtworkPackSize = 0;
};

struct SESSION_LEAK {
    UINT32 Start;
    POOL_BLOCK Block;
    std::string Description;
};

struct SESSION_RESULT {
    bool Ran = false;                        // false: nothing was started, and Error says why
    std::string Error;                       // of the script, the board's name or the machine; empty if all went well
    bool ScriptError = false;                // Error is of the script
    EFI_STATUS Status = EFI_SUCCESS;         // the first that wasn't success, else the last
    std::vector<EFI_STATUS> Statuses;        // of each start
    UINT64 Turns = 0;                        // of the last start
    std::vector<std::string> Trace;          // when KeepTrace
    std::string OutputText;                  // what ConOut got
    std::string ErrorText;                   // what StdErr got
    std::string TakenHome;                   // what became of F12, a line each time
    std::map<std::string, PICTURE> Pictures; // the script's screenshots, when KeepPictures
    PICTURE Display;                         // what the display showed at the end, when KeepDisplay
    std::vector<SESSION_LEAK> Leaks;         // pool that a start left behind
    UINTN OpenEvents = 0;                    // events that the starts left open
    std::vector<std::string> Complaints;     // of the firmware about its callers
};

SESSION_RESULT RunSession(const SESSION_OPTIONS& Options);

// Feeds Escape to the console until it returns. May be called from a signal handler.
VOID RequestStop();
