// For the image library in a build without a C library: what it uses of this header.
#pragma once

#include <stddef.h>

inline int abs(int Value) { return Value < 0 ? -Value : Value; }
