// What the board holds for its fans: the record set last, the defaults, and the mark that Cancel goes back to.
//
// A record that the user's console sends is checked before it is taken: a fan is never run by a curve that falls, and a
// record against the contract is counted (BoardContractFaults), so that tests can ask for the count to be 0.
#pragma once

#include "platform/board/SimulatedBoard.h"

using REFUSED_LISTENER = VOID (*)(UINT8 FanItem, const CHAR8* Fault);

// All fans to the built-in defaults, which are also the mark; no fan at full speed; no faults. The listener, which may be
// null, is told of the records refused from now on.
VOID ResetFanStore(const SIMULATED_BOARD* Board, REFUSED_LISTENER Refused = nullptr);

// The records held now are what RestoreFanStore brings back.
VOID MarkFanStore();

// The record in force; FanItem is 4 to 10.
const FAN_SETTING* HeldFanSetting(UINT8 FanItem);

// Takes a record of the console and ends the full speed of that fan. EFI_INVALID_PARAMETER, the held record untouched
// and the fault counted, when the record breaks the contract.
EFI_STATUS StoreFanSetting(UINT8 FanItem, const FAN_SETTING* Setting);

VOID LoadFanDefaults();
VOID RestoreFanStore();

// Until the next of the calls above, the fans run at full duty whatever their records say.
VOID HoldFullSpeed();
bool RunsFullSpeed(UINT8 FanItem);

// The default curve of a fan that is regulated by the board itself while its curve is off.
const FAN_SETTING* AutomaticFanSetting();

// Null for a record within the contract, else a text that names the first rule broken.
const CHAR8* CheckFanSetting(FAN_CONTROL Control, const FAN_SETTING* Setting);
