#include "platform/host/Recorder.h"

#include <algorithm>
#include <cstdio>
#include <iterator>

#include "platform/host/Script.h"

struct RECORDER {
    FILE* File;
    bool Begun; // a turn was recorded, and Last is its input
    bool Failed;
    UINT64 LastTurn; // when it began
    UINT64 Stalled;  // since then
    INT32 PointerX;
    INT32 PointerY;
    bool Left;
    bool Right;
};

namespace {

bool IsStrokeOf(const HAND_NAME& Hand, const EFI_KEY_DATA& Stroke)
{
    return Hand.Key.ScanCode == Stroke.Key.ScanCode && Hand.Key.UnicodeChar == Stroke.Key.UnicodeChar &&
           (Hand.TakesShift || Hand.ShiftState == Stroke.KeyState.KeyShiftState);
}

VOID RecordKey(FILE* File, const EFI_KEY_DATA& Stroke)
{
    const EFI_INPUT_KEY& Key = Stroke.Key;
    const auto* Hand = std::find_if(std::begin(gHandNames), std::end(gHandNames),
                                    [&](const HAND_NAME& Name) { return IsStrokeOf(Name, Stroke); });
    if (Hand != std::end(gHandNames)) {
        const bool Shift = Hand->TakesShift && Stroke.KeyState.KeyShiftState != 0;
        std::fprintf(File, "hand %s%s\n", Shift ? "shift " : "", Hand->Name);
    } else if (Key.ScanCode == SCAN_ESC && Key.UnicodeChar == 0) {
        std::fputs("key esc\n", File);
    } else if (Key.ScanCode == SCAN_NULL && Key.UnicodeChar == CHAR_CARRIAGE_RETURN) {
        std::fputs("key enter\n", File);
    } else if (Key.ScanCode == SCAN_NULL && Key.UnicodeChar > u' ' && Key.UnicodeChar < 0x7F &&
               Key.UnicodeChar != u'#') {
        // '#' would begin a comment.
        std::fprintf(File, "key %c\n", static_cast<char>(Key.UnicodeChar));
    } else {
        std::fprintf(File, "key %x %x\n", static_cast<unsigned>(Key.ScanCode), static_cast<unsigned>(Key.UnicodeChar));
    }
}

VOID RecordTime(RECORDER* Recorder, UINT64 Now)
{
    if (!Recorder->Begun) {
        Recorder->LastTurn = Now;
        Recorder->Stalled = 0;
        return;
    }
    const UINT64 Due = Recorder->LastTurn + Recorder->Stalled;
    if (Now > Due) {
        std::fprintf(Recorder->File, "advance %llu\n", Now - Due);
        Recorder->LastTurn = Now;
        Recorder->Stalled = 0;
    }
    // A stall never ends before its time on the machine's clock. If rounding makes it seem so, the turns that follow
    // make up for it: the player's clock has run ahead, and LastTurn stays where it was.
}

} // namespace

RECORDER* OpenRecorder(const char* Path)
{
    FILE* File = std::fopen(Path, "w");
    if (File == nullptr) {
        return nullptr;
    }
    return new RECORDER{.File = File,
                        .Begun = false,
                        .Failed = false,
                        .LastTurn = 0,
                        .Stalled = 0,
                        .PointerX = 0,
                        .PointerY = 0,
                        .Left = false,
                        .Right = false};
}

VOID RecordTurn(RECORDER* Recorder, UINT64 Now, const WINDOW_INPUT& Input)
{
    RecordTime(Recorder, Now);
    // The first turn says where the pointer is; that the buttons are up, a player takes for granted. So does each press, since
    // keys may have moved the pointer.
    const bool Pressed = (Input.Left && !Recorder->Left) || (Input.Right && !Recorder->Right);
    if (!Recorder->Begun || Pressed || Input.PointerX != Recorder->PointerX || Input.PointerY != Recorder->PointerY) {
        std::fprintf(Recorder->File, "pointer %d %d\n", Input.PointerX, Input.PointerY);
    }
    if (Input.Left != Recorder->Left) {
        std::fprintf(Recorder->File, "left %s\n", Input.Left ? "down" : "up");
    }
    if (Input.Right != Recorder->Right) {
        std::fprintf(Recorder->File, "right %s\n", Input.Right ? "down" : "up");
    }
    for (const EFI_KEY_DATA& Stroke : Input.Keys) {
        RecordKey(Recorder->File, Stroke);
    }
    std::fputs("turn\n", Recorder->File);
    Recorder->Begun = true;
    Recorder->PointerX = Input.PointerX;
    Recorder->PointerY = Input.PointerY;
    Recorder->Left = Input.Left;
    Recorder->Right = Input.Right;
    if (std::fflush(Recorder->File) != 0) {
        Recorder->Failed = true;
    }
}

VOID RecordStall(RECORDER* Recorder, UINT64 Microseconds)
{
    if (Recorder->Begun) {
        Recorder->Stalled += Microseconds;
    }
}

bool CloseRecorder(RECORDER* Recorder)
{
    const bool Written = !Recorder->Failed && std::ferror(Recorder->File) == 0;
    const bool Closed = std::fclose(Recorder->File) == 0;
    delete Recorder;
    return Written && Closed;
}
