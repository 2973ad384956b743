// What on the console's screen answers a press, for whoever goes there without a mouse.
//
// The console tells nobody what it shows, but all that it shows follows from what goes over the services: what the board
// has, the records that fans were read from and set to, where the pointer clicked, which message box is open. The services
// say so here as it happens; ListTabStops makes the places of it.
#pragma once

#include "platform/board/BoardSource.h"
#include "platform/board/FanContract.h"
#include "uefi/SystemTable.h"

// Places are in pixels of the console's screen.
struct TAB_STOP {
    INT64 X;
    INT64 Y;
    INT64 Width;
    INT64 Height;
    bool Dragged = false; // a node or a thumb: its place is a cell of the grid, and the next cells are as large
};
constexpr bool IsInside(const TAB_STOP& Stop, INT64 X, INT64 Y)
{
    return X >= Stop.X && X < Stop.X + Stop.Width && Y >= Stop.Y && Y < Stop.Y + Stop.Height;
}

// Six buttons, tabs and sources, and on a page its box and four nodes, or a thumb.
constexpr UINTN gMostTabStops = 6 + gFanItemCount + gTemperatureItemCount + 1 + gCurveNodes;

// In the order in which one goes through them: from the top of the screen to its foot. Their count.
UINTN ListTabStops(TAB_STOP (&Stops)[gMostTabStops]);

// A message box is open, and its button is the only place.
bool IsBoxOpen();

// The board that the services stand for, and the firmware whose variables say which page comes up first; null for neither.
VOID UseTabStops(const BOARD_SOURCE* Board, EFI_RUNTIME_SERVICES* RuntimeServices);
// A console starts.
VOID NoteConsoleStart();
// The console reads a fan's record, or sends one: that one is what its page shows, even if the board refuses it.
VOID NoteFanRead(UINT8 FanItem, FAN_CONTROL Control, const FAN_SETTING& Setting);
VOID NoteFanSent(UINT8 FanItem, const FAN_SETTING& Setting);
VOID NoteFullSpeed();
// The pointer as the console gets it, at each read, Now in microseconds.
VOID NotePointer(INT64 X, INT64 Y, UINT8 Left, UINT64 Now);
// The button of the message box that is open, when it is drawn and at each of its turns.
VOID NoteBoxButton(const TAB_STOP& Button);
