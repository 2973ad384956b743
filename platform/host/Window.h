// The window of the hosted firmware: it shows the display on the user's screen and gives the mouse and the keys.
//
// One turn of the console, where it reads the mouse: PumpWindow, ShowDisplay, PaceWindow. The picture keeps its shape
// in a window of any size (bars fill the rest); F11 goes to full screen and back, and the console doesn't see that key.
// The host's own pointer is hidden over the picture, where the console draws its own.
#pragma once

#include <vector>

#include "uefi/TextInputEx.h"

// A display's size in pixels.
struct DISPLAY_SIZE {
    int Width;
    int Height;
};

struct WINDOW;

// What the user did since the last turn.
struct WINDOW_INPUT {
    INT32 PointerX; // display pixels, always on the display
    INT32 PointerY;
    bool Left; // held down
    bool Right;
    bool Moved;                     // the pointer's place or a button differs from the last turn's
    bool Closed;                    // the user asked to close the window; stays true from then on
    std::vector<EFI_KEY_DATA> Keys; // in the order typed; those of this turn alone
};

// Opens a window with the title Title (UTF-8) for a display of that size. Null when there is no screen to open it on, and *Error then says why,
// valid until the next call. A process has one window at a time.
WINDOW* OpenWindow(const char* Title, const DISPLAY_SIZE& Display, const char** Error);

VOID CloseWindow(WINDOW* Window);

// Takes in what happened since the last call and writes all of Input. A click that began and ended between two turns
// isn't lost, and a button goes down and up where the pointer was: a turn takes in one change of a button at most and
// no movement after it, and the turns that follow take in the rest. A release of the left button is shown for two turns:
// a console that meets the next press in the turn behind it takes that for a click that goes on. False once the user asked
// to close the window.
bool PumpWindow(WINDOW* Window, WINDOW_INPUT* Input);

// Shows the display: its rows back to back, in words of the display's order (blue lowest).
// Cheap to call in every turn: the screen is touched about 60 times a second at most, and only when the picture or the
// window changed.
VOID ShowDisplay(WINDOW* Window, const UINT32* Pixels);

// Sleeps until the next turn is due: 4 ms after the last one while anything moves (input, or the picture that
// ShowDisplay was given), 16 ms after it at rest, or sooner at rest when input comes.
VOID PaceWindow(WINDOW* Window);

// Microseconds from the beginning of one turn to the next, SinceChange microseconds after input or picture last
// changed.
UINT64 TurnInterval(UINT64 SinceChange);

// Where the picture stands in an output area, in its pixels.
struct DISPLAY_PLACE {
    int X;
    int Y;
    int Width;
    int Height;
};

// The largest place of the display's shape in the middle of an area of Width by Height pixels; a whole multiple of the
// display's size where that costs little of it. Never empty, even where the area is.
DISPLAY_PLACE PlaceDisplay(const DISPLAY_SIZE& Display, int Width, int Height);

// The display pixel under the point (X, Y) of the output area; a point beside the picture gives the nearest pixel.
VOID MapToDisplay(const DISPLAY_SIZE& Display, const DISPLAY_PLACE& Place, int X, int Y, INT32* DisplayX,
                  INT32* DisplayY);

// True where the point lies on the picture.
bool IsOnDisplay(const DISPLAY_PLACE& Place, int X, int Y);
