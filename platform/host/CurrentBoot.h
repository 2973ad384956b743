// The boot that a function works on which the firmware's own form gives no context. These are three, and nobody else reaches
// for it:
// - the operations of the true tables and of the protocols that have no record of ours, in FirmwareTables.cpp and
//   FirmwareProtocols.cpp;
// - a CROSSED_CALL, which each cover of the console's tables begins with; the cover takes the boot from there;
// - what tests put into a session: an entry point, a failure plan.
#pragma once

#include "platform/host/Boot.h"

// Null between two boots. Set by BOOT's constructor.
extern BOOT* gCurrentBoot;
