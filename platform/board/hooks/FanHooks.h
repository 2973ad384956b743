// For scripts and tests: the simulated board's records behind the console's back. No part of the firmware's driver.
//
// FanItem is 4 to 10, else the answer is EFI_INVALID_PARAMETER, and any record is taken as it is.
#pragma once

#include "shell/contract/Services.h"

// The record that the board holds for a fan. RestoreFanSettings goes back to what the board held at the last
// Initialize, but this counts as no change of the console's, so it brings back this record.
EFI_STATUS PutBoardSetting(UINT8 FanItem, const FAN_SETTING* Setting);
// The record that LoadDefaultFanSettings brings back.
EFI_STATUS PutBoardDefault(UINT8 FanItem, const FAN_SETTING* Setting);
// The record that the board holds now.
EFI_STATUS ReadBoardSetting(UINT8 FanItem, FAN_SETTING* Setting);
