#include "platform/board/SimulatedBoard.h"

#include "platform/board/FanStore.h"
#include "platform/board/Thermal.h"

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
                               BitsOf(gFirstFanItem, gFanItemCount) | BitsOf(gFirstVoltageItem, gVoltageItemCount);

// In the order of gBoardNames.
constexpr struct {
    UINT32 Present;
    UINT8 FanKind;
} gBoards[] = {
    {.Present = gEverything, .FanKind = 1},
    {.Present = gEverything, .FanKind = 0},
    {.Present = gEverything, .FanKind = 2},
    {.Present = Bit(0) | Bit(1) | Bit(4) | Bit(6) | Bit(9) | Bit(11) | Bit(15), .FanKind = 1},
    {.Present = Bit(1) | Bit(4), .FanKind = 1},
    {.Present = 0, .FanKind = 1},
};
static_assert(sizeof(gBoards) / sizeof(gBoards[0]) == sizeof(gBoardNames) / sizeof(gBoardNames[0]));

// The console gives each name a fixed place, in cells of 8 pixels: 6 for a source, 8 for a fan, 15 for a voltage. A
// fan's name of 4 to 6 cells stands in the middle of its tab.
constexpr const CHAR16* gNames[gItemCount] = {
    u"CPU",    u"System", u"PCH",      nullptr,    u"CPU 1",       u"CPU 2",     u"Case 1",     u"Case 2", u"Case 3",
    u"Case 4", u" Pump",  u"CPU Core", u"CPU I/O", u"System/3.3V", u"System/5V", u"System/12V", u"GPU",    u"DRAM",
};

bool SameText(const CHAR8* A, const CHAR8* B)
{
    while (*A != 0 && *A == *B) {
        A++;
        B++;
    }
    return *A == *B;
}

const CHAR16* NameOf(BOARD_SOURCE*, UINT8 Item) { return Item < gItemCount ? gNames[Item] : nullptr; }

EFI_STATUS Read(BOARD_SOURCE*, UINT8 Item, UINT64* Value)
{
    *Value = ReadModel(Item);
    return EFI_SUCCESS;
}

EFI_STATUS GetFan(BOARD_SOURCE*, UINT8 FanItem, FAN_SETTING* Setting)
{
    *Setting = gFanStore.Held[FanItem - gFirstFanItem];
    return EFI_SUCCESS;
}

EFI_STATUS SetFan(BOARD_SOURCE*, UINT8 FanItem, const FAN_SETTING* Setting)
{
    StoreFanSetting(FanItem, Setting);
    return EFI_SUCCESS;
}

template <VOID (*Command)()> EFI_STATUS Do(BOARD_SOURCE*)
{
    Command();
    return EFI_SUCCESS;
}

BOARD_SOURCE gSimulation = {
    .Present = 0,
    .FanKind = 0,
    .NameOf = NameOf,
    .Read = Read,
    .GetFan = GetFan,
    .SetFan = SetFan,
    .LoadDefaults = Do<LoadFanDefaults>,
    .SetFullSpeed = Do<HoldFullSpeed>,
    .Restore = Do<RestoreFanStore>,
    .Begin = [](BOARD_SOURCE*) { MarkFanStore(); },
    // Before a setting changes, the model catches up under the old one: time that has passed keeps its setting.
    .Advance = [](BOARD_SOURCE*, UINT64 Microseconds) { AdvanceThermal(Microseconds); },
};

} // namespace

BOARD_SOURCE* OpenSimulatedBoard(const CHAR8* Name, UINT64 Seed, UINT64 Now)
{
    UINTN Which = 0;
    while (Name != nullptr && Which < gBoardNameCount && !SameText(Name, gBoardNames[Which])) {
        Which++;
    }
    if (Which == gBoardNameCount) {
        return nullptr;
    }
    gSimulation.Present = gBoards[Which].Present;
    gSimulation.FanKind = gBoards[Which].FanKind;
    ResetFanStore(gSimulation);
    ResetThermal(&gSimulation, Seed, Now);
    return &gSimulation;
}

UINT8 SourceOfFan(const BOARD_SOURCE& Board, UINT8 FanItem)
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
