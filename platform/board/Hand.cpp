#include "platform/board/Hand.h"

#include "platform/board/TabStops.h"

namespace {

constexpr INT64 gStep = 10;
constexpr INT64 gLongStep = 30;
constexpr UINTN gStrokesToLongStep = 5;
constexpr UINT64 gRepeatPause = 600000; // a held key's first repeat comes within half a second, the others faster
constexpr UINT64 gRowPause = 150000;    // microseconds; strokes of a row come faster, a held key's among them

// A press shorter than 185 ms would be a click, and a click leaves a node where it was.
constexpr UINT64 gShortestHold = 200000;

// Reads without a stroke after the button changed. The console looks at what is under the pointer in the turn after the
// press; it works from where the pointer is when it takes something in hand, one turn later; and a release that is seen
// for one turn alone passes for part of the next click.
constexpr UINTN gReadsAfterClick = 2;
constexpr UINTN gReadsAfterHold = 1;

struct HAND {
    INT64 X; // the pointer, as the console saw it last
    INT64 Y;
    INT64 SourceX; // what the source said last
    INT64 SourceY;
    UINT8 SourceLeft;
    bool Reading; // since the first read
    bool Holding;
    UINT64 HeldAt;
    INT64 StepX; // of an arrow while something is dragged; 0: nothing is
    INT64 StepY;
    UINTN Waits; // reads that take no stroke
    bool InBox;  // Tab has gone to the button of a message box, from there:
    INT64 OutX;
    INT64 OutY;
    HAND_KEY LastKey;
    UINT64 LastAt;
    UINTN Row;    // strokes of LastKey in a row
    bool Picture; // is to be taken
};
HAND gHand;

// Written by the keyboard's notifications at gHead alone, and read at gTail alone.
HAND_KEY gStrokes[256];
UINT8 gHead;
UINT8 gTail;

// Of strokes of a keyboard that repeats them.
HAND_KEY gStruckKey;
UINT64 gStruckAt; // 0: none yet

bool HasStroke() { return gTail != __atomic_load_n(&gHead, __ATOMIC_ACQUIRE); }

VOID DropStroke() { __atomic_store_n(&gTail, static_cast<UINT8>(gTail + 1), __ATOMIC_RELEASE); }

INT64 Distance(INT64 A, INT64 B) { return A < B ? B - A : A - B; }

VOID Jump(bool Back)
{
    TAB_STOP Stops[gMostTabStops];
    const UINTN Count = ListTabStops(Stops);
    UINTN Nearest = 0;
    INT64 Least = 0;
    for (UINTN Index = 0; Index < Count; Index++) {
        const TAB_STOP& Stop = Stops[Index];
        if (IsInside(Stop, gHand.X, gHand.Y)) {
            Nearest = (Index + (Back ? Count - 1 : 1)) % Count;
            break;
        }
        const INT64 Way = Distance(gHand.X, Stop.X + Stop.Width / 2) + Distance(gHand.Y, Stop.Y + Stop.Height / 2);
        if (Index == 0 || Way < Least) {
            Nearest = Index;
            Least = Way;
        }
    }
    if (IsBoxOpen() && !gHand.InBox) {
        gHand.InBox = true;
        gHand.OutX = gHand.X;
        gHand.OutY = gHand.Y;
    }
    gHand.X = Stops[Nearest].X + Stops[Nearest].Width / 2;
    gHand.Y = Stops[Nearest].Y + Stops[Nearest].Height / 2;
}

VOID MoveBy(HAND_KEY Key, UINT64 Now)
{
    const bool InRow = Key == gHand.LastKey && gHand.Row != 0 && Now - gHand.LastAt < gRowPause;
    gHand.Row = InRow ? gHand.Row + 1 : 1;
    gHand.LastKey = Key;
    gHand.LastAt = Now;

    const bool Fine = Key >= HAND_LEFT_FINE;
    const INT64 Plain = Fine ? 1 : gHand.Row >= gStrokesToLongStep ? gLongStep : gStep;
    const bool ByCells = !Fine && gHand.Holding && gHand.StepX != 0;
    const INT64 StepX = ByCells ? gHand.StepX : Plain;
    const INT64 StepY = ByCells ? gHand.StepY : Plain;
    switch (Fine ? Key - HAND_LEFT_FINE + HAND_LEFT : Key) {
    case HAND_LEFT:
        gHand.X -= StepX;
        break;
    case HAND_RIGHT:
        gHand.X += StepX;
        break;
    case HAND_UP:
        gHand.Y -= StepY;
        break;
    default:
        gHand.Y += StepY;
        break;
    }
}

VOID TakeHold(UINT64 Now)
{
    gHand.Holding = true;
    gHand.HeldAt = Now;
    gHand.StepX = 0;
    TAB_STOP Stops[gMostTabStops];
    const UINTN Count = ListTabStops(Stops);
    for (UINTN Index = 0; Index < Count; Index++) {
        if (Stops[Index].Dragged && IsInside(Stops[Index], gHand.X, gHand.Y)) {
            gHand.StepX = Stops[Index].Width;
            gHand.StepY = Stops[Index].Height;
        }
    }
}

// Carries strokes out up to the next change of the button, which has to be seen before anything else happens. True while
// the button is down for a click.
bool TakeStrokes(UINTN Width, UINTN Height, UINT64 Now)
{
    bool Moved = false;
    while (HasStroke()) {
        const HAND_KEY Key = gStrokes[gTail];
        if (gHand.Holding && (Key == HAND_CLICK || Key == HAND_GRAB)) {
            // What is dragged has to be seen at its new place before it is let go.
            if (Moved || Now - gHand.HeldAt < gShortestHold) {
                return false;
            }
            DropStroke();
            gHand.Holding = false;
            gHand.Waits = gReadsAfterHold;
            return false;
        }
        DropStroke();
        if (Key == HAND_LEAVE) {
            // The box is open up to the console's own read of that key, and one read of the pointer longer for us. The
            // strokes behind it are for what is under the box.
            if (IsBoxOpen()) {
                gHand.Waits = gReadsAfterClick;
                return false;
            }
            continue;
        }
        if (Key == HAND_CLICK || (Key == HAND_GRAB && IsBoxOpen())) {
            gHand.Waits = gReadsAfterClick;
            return true;
        }
        if (Key == HAND_PICTURE) {
            gHand.Picture = true;
            return false;
        }
        if (Key == HAND_GRAB) {
            TakeHold(Now);
            gHand.Waits = gReadsAfterHold;
            return false;
        }
        if (Key < HAND_NEXT) {
            MoveBy(Key, Now);
        } else if (!gHand.Holding) { // what is in hand goes where arrows bring it
            Jump(Key == HAND_BACK);
        }
        gHand.X = HoldInside(gHand.X, Width);
        gHand.Y = HoldInside(gHand.Y, Height);
        Moved = true;
    }
    return false;
}

} // namespace

INT64 HoldInside(INT64 Position, UINTN Extent)
{
    return Limit<INT64>(Position, 0, Extent == 0 ? 0 : static_cast<INT64>(Extent - 1));
}

VOID PressHand(HAND_KEY Key)
{
    const UINT8 Next = static_cast<UINT8>(gHead + 1);
    if (Next != __atomic_load_n(&gTail, __ATOMIC_ACQUIRE)) {
        gStrokes[gHead] = Key;
        __atomic_store_n(&gHead, Next, __ATOMIC_RELEASE);
    }
}

VOID StrikeHand(HAND_KEY Key, UINT64 Now)
{
    const bool Repeated = Key == gStruckKey && gStruckAt != 0 && Now - gStruckAt < gRepeatPause;
    gStruckKey = Key;
    gStruckAt = Now;
    if (!Repeated || (Key != HAND_CLICK && Key != HAND_GRAB && Key != HAND_PICTURE)) {
        PressHand(Key);
    }
}

bool MoveHand(HAND_POINTER* Pointer, POINTER_SOURCE* Source, UINTN Width, UINTN Height, UINT64 Now)
{
    HAND& Hand = gHand;
    if (!Hand.Reading) {
        while (HasStroke()) {
            DropStroke();
        }
    }
    if (!Hand.Reading || Pointer->X != Hand.SourceX || Pointer->Y != Hand.SourceY) {
        Hand.X = Pointer->X;
        Hand.Y = Pointer->Y;
        Hand.InBox = false;
    } else if (Hand.InBox && !IsBoxOpen()) { // back to where the box was opened
        Hand.X = Hand.OutX;
        Hand.Y = Hand.OutY;
        Hand.InBox = false;
    }
    Hand.Reading = true;
    Hand.Picture = false;
    Hand.SourceX = Pointer->X;
    Hand.SourceY = Pointer->Y;
    if (Pointer->Left != 0 && Hand.SourceLeft == 0) {
        Hand.Holding = false;
    }
    Hand.SourceLeft = Pointer->Left;

    bool Down = false;
    if (Hand.Waits != 0) {
        Hand.Waits--;
    } else {
        Down = TakeStrokes(Width, Height, Now);
    }
    if ((Hand.X != Pointer->X || Hand.Y != Pointer->Y) && Source->Place != nullptr) {
        Source->Place(Source, Hand.X, Hand.Y);
        Hand.SourceX = Hand.X;
        Hand.SourceY = Hand.Y;
    }
    Pointer->X = Hand.X;
    Pointer->Y = Hand.Y;
    Pointer->Left = Hand.SourceLeft != 0 || Hand.Holding || Down ? 1 : 0;
    return Hand.Picture;
}

VOID ResetHand() { gHand = {}; }
