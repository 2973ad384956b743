// A fan of a chip that the user may set: the console's record put into its registers, read back, and what they held
// given back.
//
// Nothing here goes by a wish: a state that can't be read isn't changed, what was written is read back, a fan whose chip
// doesn't take a state gets back what it had before, and when that isn't taken either, full speed.
#pragma once

#include "platform/board/FanPage.h"
#include "platform/board/chips/Chip.h"

struct CHIP_FAN {
    const CHIP* Chip;
    UINT8 Number;
    FAN_MEANS_OF_CHIP Means;
    FAN_STATE AtStart; // what is given back
    bool Written;
};

// Looks at a fan's registers and keeps what they hold.
VOID OpenChipFan(CHIP_FAN* Fan, const CHIP* Chip, UINT8 Number);
// Keeps what they hold now, unless one of them has been written.
VOID KeepChipFan(CHIP_FAN* Fan);

// What they hold, as near as the page comes; a legal record always. A fan that can't be set shows its duty.
FAN_SETTING GetChipFan(const CHIP_FAN& Fan, FAN_CONTROL Control);
// These three are for fans with Means.WhyNot null. False when the fan has no use for such a record, or the chip doesn't
// take it.
bool SetChipFan(CHIP_FAN* Fan, FAN_CONTROL Control, const FAN_SETTING& Setting);
bool SetChipFanToFullSpeed(CHIP_FAN* Fan);
bool GiveChipFanBack(CHIP_FAN* Fan);
