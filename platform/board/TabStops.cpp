#include "platform/board/TabStops.h"

namespace {

// Places of the console's screen.
constexpr TAB_STOP gTopButtons[] = {{770, 81, 72, 26}, {851, 81, 72, 26}, {932, 81, 51, 30}};
constexpr TAB_STOP gCommandButtons[] = {{531, 558, 138, 26}, {678, 558, 138, 26}, {825, 558, 138, 26}};
constexpr TAB_STOP gSources[gTemperatureItemCount] = {{55, 296, 106, 32}, {55, 333, 106, 32}, {55, 370, 106, 32}};
constexpr INT64 gTabLefts[gFanItemCount] = {275, 374, 473, 572, 672, 770, 869};
constexpr TAB_STOP gTab = {0, 118, 97, 63};
constexpr TAB_STOP gCurveBox = {286, 232, 20, 20};
constexpr INT64 gGridX = 382;
constexpr INT64 gGridY = 262;
constexpr INT64 gGridHeight = 240;
constexpr INT64 gCellWidth = 30;
constexpr INT64 gRows8 = 8;
constexpr INT64 gRows6 = 6;

// A shorter press is a click for the console.
constexpr UINT64 gLongPress = 185000; // microseconds

// Where the console keeps its view from one start to the next; the first byte is the item of the fan on top.
constexpr CHAR16 gViewName[] = u"GlobalVariable";
constexpr EFI_GUID gViewGuid = {0x1D1140CD, 0x3B1C, 0x4B04, {0xA3, 0xBE, 0xD8, 0xA9, 0x23, 0xE5, 0x73, 0xB8}};
constexpr UINTN gViewSize = 24;

// What a fan's page shows.
struct SHOWN_FAN {
    bool Known;
    bool CurveOn;
    CURVE Curve;
    UINT16 Level;
};

const BOARD_SOURCE* gBoard;
EFI_RUNTIME_SERVICES* gRuntime;
SHOWN_FAN gShown[gFanItemCount];
UINT8 gFanOnTop; // 0 for none
bool gViewKnown; // gFanOnTop has been found since the console's start
bool gDown;      // the left button, of a press that the console times
UINT64 gDownAt;
TAB_STOP gBoxButton;
bool gBoxTurn; // the button was told of since the last read of the pointer
bool gBoxOpen;

bool HasPage(UINT8 FanItem)
{
    return gBoard != nullptr && IsFanItem(FanItem) && HasItem(*gBoard, FanItem) &&
           ControlOfFan(gBoard->FanKind, FanItem) != CONTROL_NONE;
}

TAB_STOP TabOf(UINT8 FanItem)
{
    TAB_STOP Tab = gTab;
    Tab.X = gTabLefts[FanItem - gFirstFanItem];
    return Tab;
}

// Column and level count from 1, the level from the foot.
TAB_STOP Cell(INT64 Rows, INT64 Column, INT64 Level)
{
    const INT64 Height = gGridHeight / Rows;
    return {gGridX + gCellWidth * (Column - 1), gGridY + Height * (Rows - Level), gCellWidth, Height, true};
}

// Fans 7 and 8 have a thumb while their curve is off.
bool HasThumb(UINT8 FanItem, FAN_CONTROL Control, bool CurveOn)
{
    return Control == CONTROL_FIXED_LEVEL || (!CurveOn && (FanItem == 7 || FanItem == 8));
}

// Box, nodes and thumb of the page on top; gives the place behind the last one.
TAB_STOP* AddPage(TAB_STOP* At)
{
    if (!HasPage(gFanOnTop)) {
        return At;
    }
    const FAN_CONTROL Control = ControlOfFan(gBoard->FanKind, gFanOnTop);
    const SHOWN_FAN& Fan = gShown[gFanOnTop - gFirstFanItem];
    if (Control != CONTROL_FIXED_LEVEL) {
        *At++ = gCurveBox;
    }
    if (!Fan.Known) {
        return At;
    }
    if (HasThumb(gFanOnTop, Control, Fan.CurveOn)) {
        *At++ = Cell(gRows6, 1, Fan.Level >= 1 && Fan.Level <= gFixedLevels ? Fan.Level : 1);
    } else if (Fan.CurveOn) {
        for (const CURVE_NODE& Node : Fan.Curve.Nodes) {
            *At++ = Cell(Control == CONTROL_CURVE8 ? gRows8 : gRows6, Node.Column, Node.Level);
        }
    }
    return At;
}

VOID FindFirstPage()
{
    UINT8 View[gViewSize] = {};
    UINTN Size = gViewSize;
    UINT32 Attributes = 0;
    gViewKnown = true;
    if (gRuntime != nullptr && !EfiError(gRuntime->GetVariable(gViewName, &gViewGuid, &Attributes, &Size, View))) {
        gFanOnTop = View[0];
    }
}

// The console has taken a press for a click at that place.
VOID NoteClick(INT64 X, INT64 Y)
{
    for (UINT8 Fan = gFirstFanItem; Fan < gFirstFanItem + gFanItemCount; Fan++) {
        if (HasPage(Fan) && IsInside(TabOf(Fan), X, Y)) {
            gFanOnTop = Fan;
        }
    }
}

} // namespace

UINTN ListTabStops(TAB_STOP (&Stops)[gMostTabStops])
{
    if (gBoxOpen) {
        Stops[0] = gBoxButton;
        return 1;
    }
    TAB_STOP* At = Stops;
    for (const TAB_STOP& Button : gTopButtons) {
        *At++ = Button;
    }
    for (UINT8 Fan = gFirstFanItem; Fan < gFirstFanItem + gFanItemCount; Fan++) {
        if (HasPage(Fan)) {
            *At++ = TabOf(Fan);
        }
    }
    At = AddPage(At);
    for (UINT8 Source = 0; Source < gTemperatureItemCount; Source++) {
        if (gBoard != nullptr && HasItem(*gBoard, Source)) {
            *At++ = gSources[Source];
        }
    }
    for (const TAB_STOP& Button : gCommandButtons) {
        *At++ = Button;
    }
    return static_cast<UINTN>(At - Stops);
}

bool IsBoxOpen() { return gBoxOpen; }

VOID UseTabStops(const BOARD_SOURCE* Board, EFI_RUNTIME_SERVICES* RuntimeServices)
{
    gBoard = Board;
    gRuntime = RuntimeServices;
    NoteConsoleStart();
}

VOID NoteConsoleStart()
{
    for (SHOWN_FAN& Fan : gShown) {
        Fan = {};
    }
    gFanOnTop = 0;
    gViewKnown = false;
    gDown = false;
    gBoxTurn = false;
    gBoxOpen = false;
}

VOID NoteFanRead(UINT8 FanItem, FAN_CONTROL Control, const FAN_SETTING& Setting)
{
    SHOWN_FAN& Fan = gShown[FanItem - gFirstFanItem];
    // A command on all fans brings back the nodes of eight rows and no others.
    if (!Fan.Known || Control == CONTROL_CURVE8) {
        Fan.Curve = CurveOf(Setting);
    }
    Fan.Known = true;
    Fan.CurveOn = Setting.CurveEnabled != 0;
    Fan.Level = Setting.FixedLevel;
}

VOID NoteFanSent(UINT8 FanItem, const FAN_SETTING& Setting)
{
    gShown[FanItem - gFirstFanItem] = {true, Setting.CurveEnabled != 0, CurveOf(Setting), Setting.FixedLevel};
}

VOID NoteFullSpeed()
{
    for (SHOWN_FAN& Fan : gShown) {
        Fan.CurveOn = false;
        Fan.Level = gFixedLevels;
    }
}

VOID NotePointer(INT64 X, INT64 Y, UINT8 Left, UINT64 Now)
{
    if (!gViewKnown) {
        FindFirstPage(); // the console has written its view by now
    }
    gBoxOpen = gBoxTurn;
    gBoxTurn = false;
    if (gBoxOpen) {
        gDown = false; // the box has the pointer to itself
        return;
    }
    if (Left != 0 && !gDown) {
        gDownAt = Now;
    } else if (Left == 0 && gDown && Now - gDownAt < gLongPress) {
        NoteClick(X, Y);
    }
    gDown = Left != 0;
}

VOID NoteBoxButton(const TAB_STOP& Button)
{
    gBoxButton = Button;
    gBoxTurn = true;
    gBoxOpen = true;
}
