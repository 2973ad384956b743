#include "platform/host/Player.h"

#include <algorithm>

#include "platform/board/ArtworkPack.h"
#include "platform/board/hooks/FanHooks.h"
#include "platform/host/Png.h"

namespace {

constexpr UINT64 gTickMicroseconds = 200000;
constexpr UINT64 gMostTicks = ~0ull / gTickMicroseconds;

} // namespace

VOID PLAYER::RunBeforeFirstStart(BOOT& Boot) { RunToTurn(Boot); }

VOID PLAYER::BeginTurn(BOOT& Boot)
{
    if (mTurnsToGo == 0) {
        RunToTurn(Boot);
    }
    if (mTurnsToGo > 0) {
        mTurnsToGo--;
    } else {
        FeedEscape(Boot);
    }
}

PLAYER_NEXT PLAYER::RunAfterReturn(BOOT& Boot)
{
    if (mFeeding) {
        // An Escape that nobody read isn't meant for the next start.
        Boot.Consoles.Keys.clear();
        mFeeding = false;
    }
    mTurnsToGo = 0;
    mTicksLeft = 0;
    for (; mNext < mScript->Commands.size(); mNext++) {
        const SCRIPT_COMMAND& Command = mScript->Commands[mNext];
        if (Command.Verb == SCRIPT_START || Command.Verb == SCRIPT_RESET) {
            mNext++;
            return Command.Verb == SCRIPT_START ? NEXT_START : NEXT_RESET;
        }
        if (Command.Verb == SCRIPT_TICK) {
            Boot.Clock.Advance(std::min(Command.Count, gMostTicks) * gTickMicroseconds);
        } else if (Command.Verb != SCRIPT_TURN) {
            Do(Boot, Command);
        }
    }
    return NEXT_END;
}

// Leaves mTurnsToGo at 0 when the script is at its end or at a start or reset.
VOID PLAYER::RunToTurn(BOOT& Boot)
{
    for (;;) {
        if (mTicksLeft > 0) {
            mTicksLeft--;
            Boot.Clock.Advance(gTickMicroseconds);
            mTurnsToGo = 1;
            return;
        }
        if (mNext == mScript->Commands.size()) {
            return;
        }
        const SCRIPT_COMMAND& Command = mScript->Commands[mNext];
        if (Command.Verb == SCRIPT_START || Command.Verb == SCRIPT_RESET) {
            return; // for RunAfterReturn
        }
        mNext++;
        if (Command.Verb == SCRIPT_TURN) {
            mTurnsToGo = Command.Count;
            return;
        }
        if (Command.Verb == SCRIPT_TICK) {
            mTicksLeft = Command.Count;
        } else {
            Do(Boot, Command);
        }
    }
}

VOID PLAYER::Do(BOOT& Boot, const SCRIPT_COMMAND& Command)
{
    OVERRIDES& Overrides = Boot.Crossing.Overrides;
    switch (Command.Verb) {
    case SCRIPT_POINTER:
        Boot.Pointer.State.X = Command.X;
        Boot.Pointer.State.Y = Command.Y;
        break;
    case SCRIPT_LEFT:
        Boot.Pointer.State.Left = Command.Down ? 1 : 0;
        break;
    case SCRIPT_RIGHT:
        Boot.Pointer.State.Right = Command.Down ? 1 : 0;
        break;
    case SCRIPT_KEY:
        for (UINT64 Time = 0; Time < Command.Count; Time++) {
            Boot.Consoles.Press(Command.Key.ScanCode, Command.Key.UnicodeChar, Command.ShiftState);
        }
        break;
    case SCRIPT_ADVANCE:
        Boot.Clock.Advance(Command.Count);
        break;
    case SCRIPT_READING:
        if (Command.Live) {
            Overrides.Readings.erase(Command.Item);
        } else {
            Overrides.Readings[Command.Item] = Command.Reading;
        }
        break;
    case SCRIPT_STRING:
        Overrides.Strings[Command.Item] = Command.String;
        break;
    case SCRIPT_SETTING:
        (void)PutBoardSetting(Command.Item, &Command.Setting);
        break;
    case SCRIPT_FAIL:
        Overrides.Fail(Command.Call, Command.Status, Command.Count);
        break;
    case SCRIPT_SLOW:
        Overrides.Slow[Command.Call] = Command.Count;
        break;
    case SCRIPT_WITHOUT:
        Boot.Handles.Hide(Command.Guid);
        mHidden.push_back(Command.Guid);
        break;
    case SCRIPT_DEFAULT:
    case SCRIPT_ARTWORK:
        mOfBoard.push_back(&Command);
        PrepareBoard(Boot);
        break;
    case SCRIPT_SCREENSHOT:
        TakeScreenshot(Boot, Command);
        break;
    case SCRIPT_TURN:
    case SCRIPT_TICK:
    case SCRIPT_START:
    case SCRIPT_RESET:
        break; // these are the player's own steps
    }
}

VOID PLAYER::HideProtocols(BOOT& Boot) const
{
    for (const EFI_GUID& Guid : mHidden) {
        Boot.Handles.Hide(Guid);
    }
}

VOID PLAYER::PrepareBoard(BOOT&)
{
    for (const SCRIPT_COMMAND* Command : mOfBoard) {
        if (Command->Verb == SCRIPT_DEFAULT) {
            (void)PutBoardDefault(Command->Item, &Command->Setting);
        } else if (Command->ArtworkKind == ARTWORK_TYPE) {
            SetArtworkSectionType(static_cast<UINT8>(Command->Instance));
        } else {
            // An empty file is a section without bytes, not a missing one.
            static constexpr UINT8 Empty[1] = {};
            const UINT8* Bytes = Command->Bytes.empty() ? Empty : Command->Bytes.data();
            OverrideArtwork(Command->Instance, Command->ArtworkKind == ARTWORK_NONE ? nullptr : Bytes,
                            Command->Bytes.size());
        }
    }
}

VOID PLAYER::FeedEscape(BOOT& Boot)
{
    mFeeding = true;
    // Keys that the script left are read first; and a queue that isn't read is not filled without end.
    if (Boot.Consoles.Keys.empty()) {
        Boot.Consoles.Press(SCAN_ESC, 0);
    }
}

VOID PLAYER::TakeScreenshot(BOOT& Boot, const SCRIPT_COMMAND& Command)
{
    Boot.SettleDisplay();
    const DISPLAY& Display = Boot.Display;
    if (KeepPictures) {
        Pictures[Command.Path] = PICTURE(Display.Words(), Display.Words() + UINTN{Display.Width()} * Display.Height());
    } else if (!SaveDisplay(Boot, Command.Path) && Error.empty()) {
        Error = DescribeScriptError(*mScript, Command.Line, "a file that can be written");
    }
}

bool SaveDisplay(const BOOT& Boot, const std::string& Path)
{
    return WritePng(Path.c_str(), Boot.Display.Words(), Boot.Display.Width(), Boot.Display.Height());
}
