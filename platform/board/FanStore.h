// What the simulated board holds for its fans: the record set last, the defaults, and the mark that Cancel goes back to.
#pragma once

#include "platform/board/BoardSource.h"

// Arrays in the order of the fans, from item 4 on.
struct FAN_STORE {
    FAN_SETTING Held[gFanItemCount];
    FAN_SETTING Default[gFanItemCount];
    FAN_SETTING Mark[gFanItemCount];
    bool FullSpeed[gFanItemCount]; // whatever the record says
};
extern FAN_STORE gFanStore;

// All fans to the built-in defaults, which are also the mark; no fan at full speed.
VOID ResetFanStore(const BOARD_SOURCE& Board);

// The records held now are what RestoreFanStore brings back.
VOID MarkFanStore();

// Takes a record within the contract and ends the full speed of that fan; FanItem is 4 to 10.
VOID StoreFanSetting(UINT8 FanItem, const FAN_SETTING* Setting);

VOID LoadFanDefaults();
VOID RestoreFanStore();

// Until the next of the calls above, the fans run at full duty whatever their records say.
VOID HoldFullSpeed();

// The default curve of a fan that is regulated by the board itself while its curve is off.
const FAN_SETTING* AutomaticFanSetting();
