// For the image library in a build without a C library: the functions that such a build has to bring anyway, since the
// compiler calls them.
#pragma once

#include <stddef.h>

extern "C" void* memcpy(void* Destination, const void* Source, size_t Size);
extern "C" void* memmove(void* Destination, const void* Source, size_t Size);
extern "C" void* memset(void* Buffer, int Value, size_t Size);
extern "C" int memcmp(const void* A, const void* B, size_t Size);
