// The player runs a script's commands at the moments that a script means.
//
// The commands before the first `turn` run before the first start. From then on the player works at the beginning of each
// turn: it runs on to the next `turn`, which lets that many turns go by, the present one included; the lines before the
// first `turn` are those of turn 1. When the script is at its end, or wants a start while the console still runs, Escape
// is fed in every turn until the console returns.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/host/Boot.h"
#include "platform/host/Script.h"

enum PLAYER_NEXT : UINT8 { NEXT_END, NEXT_START, NEXT_RESET };

struct PLAYER {
    // The script outlives the player.
    explicit PLAYER(const SCRIPT* Script) : mScript(Script) {}

    bool KeepPictures = false;               // screenshots go into Pictures instead of files
    std::map<std::string, PICTURE> Pictures; // by the file names of the script
    std::string Error;                       // first command that couldn't be done; empty if there is none

    // On a boot whose board is installed.
    VOID RunBeforeFirstStart(BOOT& Boot);
    VOID BeginTurn(BOOT& Boot);
    // Runs on from where the console returned to the next start or reset, or to the end; turns are stepped over.
    PLAYER_NEXT RunAfterReturn(BOOT& Boot);
    // What the script said of the machine and its board, said again to a new boot: the protocols that aren't there
    // before its board is installed, artwork and default settings afterwards.
    VOID HideProtocols(BOOT& Boot) const;
    VOID PrepareBoard(BOOT& Boot);

private:
    VOID RunToTurn(BOOT& Boot);
    VOID Do(BOOT& Boot, const SCRIPT_COMMAND& Command);
    VOID FeedEscape(BOOT& Boot);
    VOID TakeScreenshot(BOOT& Boot, const SCRIPT_COMMAND& Command);

    const SCRIPT* mScript;
    size_t mNext = 0;
    UINT64 mTurnsToGo = 0; // turns that go by before the next command
    UINT64 mTicksLeft = 0; // of the command that was the last to run
    bool mFeeding = false;
    std::vector<const SCRIPT_COMMAND*> mOfBoard; // artwork and defaults
    std::vector<EFI_GUID> mHidden;
};

// Puts the display into the file at Path.
bool SaveDisplay(const BOOT& Boot, const std::string& Path);
