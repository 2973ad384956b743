// A machine's clock, and what was written on its debug console.
#pragma once

#include "uefi/Base.h"

#include <string>

extern UINT64 gMicroseconds;
extern std::string gReported;
