// The version of the whole, for what says it to a person; the build's own stands in CMakeLists.txt.
#pragma once

#include "uefi/Base.h"

constexpr CHAR8 gVentaraVersion[] = "0.9.0";
