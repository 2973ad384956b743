// The keyboard in the mouse's place: strokes of a few keys move the pointer, click, and hold the button down.
//
// Arrows go 10 pixels, 30 from the fifth stroke in a row on, and 1 with Shift. Tab and Shift+Tab jump to the next place
// that answers a press, from beside all of them to the nearest (TabStops.h); when a message box closes, the pointer goes
// back to where Tab took it from. Space clicks. G takes hold, and lets go when it is pressed again; with a node or a thumb
// in hand an arrow goes one cell of the grid. In a message box, where nothing is dragged, G clicks. F12 takes a picture
// (TakeHome.h).
//
// The mouse and the hand share one pointer. It is the mouse's again as soon as the mouse moves, and a press of its button
// ends what G holds.
#pragma once

#include "platform/board/BoardServices.h"

enum HAND_KEY : UINT8 {
    HAND_LEFT,
    HAND_RIGHT,
    HAND_UP,
    HAND_DOWN,
    HAND_LEFT_FINE,
    HAND_RIGHT_FINE,
    HAND_UP_FINE,
    HAND_DOWN_FINE,
    HAND_NEXT,
    HAND_BACK,
    HAND_CLICK,
    HAND_GRAB,
    HAND_PICTURE,
    HAND_LEAVE, // Enter or Escape, which close a message box
};

struct HAND_POINTER {
    INT64 X;
    INT64 Y;
    UINT8 Left;
};

// A stroke, to be carried out by the reads of the pointer that follow. It may come between any two instructions of
// theirs. Beyond some 250 that wait, strokes are lost.
VOID PressHand(HAND_KEY Key);
// A stroke of a keyboard on which a held key goes on giving strokes, of which nothing tells them from presses but their
// pace. A Space, G or F12 that is held counts once; pressed twice within 0.6 s with no other key in between, it does, too.
VOID StrikeHand(HAND_KEY Key, UINT64 Now);
// One read of the pointer: takes what the source says, and leaves in it what the console is to see. The first one after
// ResetHand drops the strokes that came before it: they were meant for something else. Now in microseconds. True when a
// picture is to be taken.
bool MoveHand(HAND_POINTER* Pointer, POINTER_SOURCE* Source, UINTN Width, UINTN Height, UINT64 Now);
// A coordinate, held inside a display of that extent.
INT64 HoldInside(INT64 Position, UINTN Extent);
// A console is gone, or comes.
VOID ResetHand();
