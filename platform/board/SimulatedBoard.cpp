#include "platform/board/SimulatedBoard.h"

#include "platform/board/BoardServices.h"

const CHAR8* const gBoardNames[] = {"full", "kind0", "kind2", "small", "second-source", "bare"};
const UINTN gBoardNameCount = sizeof(gBoardNames) / sizeof(gBoardNames[0]);

// The pump turns much faster than the fans, and the small fans of the case are the slowest.
const SIMULATED_FAN gSimulatedFans[gFanItemCount] = {
    {.Source = 0, .LowSpeed = 450, .TopSpeed = 2200}, // 4
    {.Source = 0, .LowSpeed = 400, .TopSpeed = 2000}, // 5
    {.Source = 1, .LowSpeed = 350, .TopSpeed = 1500}, // 6
    {.Source = 1, .LowSpeed = 350, .TopSpeed = 1400}, // 7
    {.Source = 2, .LowSpeed = 300, .TopSpeed = 1200}, // 8
    {.Source = 1, .LowSpeed = 400, .TopSpeed = 1800}, // 9
    {.Source = 2, .LowSpeed = 900, .TopSpeed = 5000}, // 10
};

namespace {

constexpr UINT32 Bit(UINT8 Item) { return UINT32{1} << Item; }

constexpr UINT32 BitsOf(UINT8 First, UINT8 Count) { return ((UINT32{1} << Count) - 1) << First; }

constexpr UINT32 gEverything = BitsOf(gFirstTemperatureItem, gTemperatureItemCount) |
                               BitsOf(gFirstFanItem, gFanItemCount) |
                               BitsOf(gFirstVoltageItem, gVoltageItemCount);

// In the order of gBoardNames.
constexpr SIMULATED_BOARD gBoards[] = {
    {.Present = gEverything, .FanKind = 1},
    {.Present = gEverything, .FanKind = 0},
    {.Present = gEverything, .FanKind = 2},
    {.Present = Bit(0) | Bit(1) | Bit(4) | Bit(6) | Bit(9) | Bit(11) | Bit(15), .FanKind = 1},
    {.Present = Bit(1) | Bit(4), .FanKind = 1},
    {.Present = 0, .FanKind = 1},
};
static_assert(sizeof(gBoards) / sizeof(gBoards[0]) == sizeof(gBoardNames) / sizeof(gBoardNames[0]));

struct ITEM_TEXT {
    UINT8 Item;
    const CHAR16* Text;
};

// The console gives each name a fixed place, in cells of 8 pixels: 6 for a source, 8 for a fan, 15 for a voltage. A
// fan's name of 4 to 6 cells stands in the middle of its tab. The blanks in front centre a title in its button.
constexpr ITEM_TEXT gItemTexts[] = {
    {0, u"CPU"},
    {1, u"System"},
    {2, u"PCH"},
    {4, u"CPU 1"},
    {5, u"CPU 2"},
    {6, u"Case 1"},
    {7, u"Case 2"},
    {8, u"Case 3"},
    {9, u"Case 4"},
    {10, u" Pump"},
    {11, u"CPU Core"},
    {12, u"CPU I/O"},
    {13, u"System/3.3V"},
    {14, u"System/5V"},
    {15, u"System/12V"},
    {16, u"GPU"},
    {17, u"DRAM"},
    {STRING_GAUGE_CAPTION, u"Voltages"},
    {STRING_FULL_SPEED, u"   Full Speed"},
    {STRING_DEFAULT, u"     Default"},
    {STRING_CANCEL, u"     Cancel"},
    {STRING_ABOUT, u"About"},
    {STRING_HELP, u"Help"},
    {STRING_EXIT, u"Exit"},
    {STRING_PANEL_TITLE, u"Fan Control"},
    {STRING_HELP_TEXT, u"You can set CPU or System target temperature \nand set Fan duty cycle."},
    {STRING_HELP_ESCAPE, u"ESC    : Exit"},
    {STRING_HELP_FULL_SPEED, u"(F)key : All full speed."},
    {STRING_HELP_DEFAULT, u"(D)key : All set default."},
    {STRING_HELP_CANCEL, u"(C)key : All set cancel."},
    {STRING_OK, u"OK"},
    {STRING_ABOUT_MAKER, u"Ventara Fan Console by Kestrin"},
    {STRING_ABOUT_RIGHTS, u"            All rights reserved"},
    {STRING_ABOUT_ADDRESS, u"            www.kestrin.example"},
};

bool SameText(const CHAR8* A, const CHAR8* B)
{
    while (*A != 0 && *A == *B) {
        A++;
        B++;
    }
    return *A == *B;
}

} // namespace

const SIMULATED_BOARD* FindSimulatedBoard(const CHAR8* Name)
{
    if (Name == nullptr) {
        return &gBoards[0];
    }
    for (UINTN Index = 0; Index < gBoardNameCount; Index++) {
        if (SameText(Name, gBoardNames[Index])) {
            return &gBoards[Index];
        }
    }
    return nullptr;
}

bool HasItem(const SIMULATED_BOARD* Board, UINT8 Item)
{
    return Item < gItemCount && (Board->Present & Bit(Item)) != 0;
}

bool IsFanItem(UINT8 Item) { return Item >= gFirstFanItem && Item < gFirstFanItem + gFanItemCount; }

FAN_CONTROL ControlOfFan(const SIMULATED_BOARD* Board, UINT8 FanItem)
{
    switch (FanItem) {
    case 4:
        return CONTROL_CURVE8;
    case 5:
        return Board->FanKind == 1 ? CONTROL_CURVE8 : Board->FanKind == 0 ? CONTROL_CURVE6 : CONTROL_NONE;
    case 6:
    case 7:
    case 8:
        return CONTROL_CURVE6;
    default:
        return CONTROL_FIXED_LEVEL;
    }
}

UINT8 SourceOfFan(const SIMULATED_BOARD* Board, UINT8 FanItem)
{
    const UINT8 Own = gSimulatedFans[FanItem - gFirstFanItem].Source;
    if (HasItem(Board, Own)) {
        return Own;
    }
    for (UINT8 Source = gFirstTemperatureItem; Source < gTemperatureItemCount; Source++) {
        if (HasItem(Board, Source)) {
            return Source;
        }
    }
    return gNoSource;
}

const CHAR16* TextOfItem(const SIMULATED_BOARD* Board, UINT8 Item)
{
    if (Item < gItemCount && !HasItem(Board, Item)) {
        return nullptr;
    }
    for (const ITEM_TEXT& Entry : gItemTexts) {
        if (Entry.Item == Item) {
            return Entry.Text;
        }
    }
    return nullptr;
}
