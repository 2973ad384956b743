#include "docs/examples/minimal_board.h"

namespace {

constexpr UINT8 gTemperature = 0; // items that this board has
constexpr UINT8 gFan = 4;
constexpr UINT8 gVoltage = 11;

// 40, 55, 70 and 85 degrees at levels 2, 4, 6 and 8 of 8.
constexpr FAN_SETTING gDefault = {
    .CurveEnabled = 1,
    .Column3 = 10,
    .Column2 = 7,
    .Column1 = 4,
    .Column0 = 1,
    .Level0 = 2,
    .Level1 = 4,
    .Level2 = 6,
    .Level3 = 8,
    .Reserved9 = 0,
    .FixedLevel = 0,
    .Reserved12 = {},
};

// Stands for the chip that runs the fan: a board of one's own talks to one here. It goes on by its last setting when the
// console has left.
struct CONTROLLER {
    FAN_SETTING Setting;
    FAN_SETTING AtStart; // what Cancel goes back to
    bool FullSpeed;
};
CONTROLLER gController = {gDefault, gDefault, false};

EFI_STATUS Hold(const FAN_SETTING& Setting)
{
    gController.Setting = Setting;
    gController.FullSpeed = false;
    return EFI_SUCCESS;
}

const CHAR16* NameOf(BOARD_SOURCE*, UINT8 Item)
{
    switch (Item) {
    case gTemperature:
        return u"CPU";
    case gFan:
        return u"CPU Fan";
    case gVoltage:
        return u"CPU Core";
    default:
        return nullptr; // the service has texts for the rest
    }
}

EFI_STATUS Read(BOARD_SOURCE*, UINT8 Item, UINT64* Value)
{
    const UINT64 Speed = gController.FullSpeed ? 2400 : 300 * UINT64{gController.Setting.Level1};
    *Value = Item == gTemperature ? 48 : Item == gFan ? Speed : 1200;
    return EFI_SUCCESS;
}

// Default and Cancel read fans that aren't there, too.
EFI_STATUS GetFan(BOARD_SOURCE*, UINT8 FanItem, FAN_SETTING* Setting)
{
    *Setting = FanItem == gFan ? gController.Setting : FAN_SETTING{};
    return FanItem == gFan ? EFI_SUCCESS : EFI_NOT_FOUND;
}

// Only fans that are there are set.
EFI_STATUS SetFan(BOARD_SOURCE*, UINT8, const FAN_SETTING* Setting) { return Hold(*Setting); }

EFI_STATUS SetFullSpeed(BOARD_SOURCE*)
{
    gController.FullSpeed = true;
    return EFI_SUCCESS;
}

} // namespace

BOARD_SOURCE gMinimalBoard = {
    .Present = 1u << gTemperature | 1u << gFan | 1u << gVoltage,
    .FanKind = 1,
    .NameOf = NameOf,
    .Read = Read,
    .GetFan = GetFan,
    .SetFan = SetFan,
    .LoadDefaults = [](BOARD_SOURCE*) { return Hold(gDefault); },
    .SetFullSpeed = SetFullSpeed,
    .Restore = [](BOARD_SOURCE*) { return Hold(gController.AtStart); },
    .Begin = [](BOARD_SOURCE*) { gController.AtStart = gController.Setting; },
    .Advance = nullptr, // the chip moves by itself
};
