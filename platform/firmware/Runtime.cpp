// The functions that a compiler may call without being asked: it writes a copy of a record as a call of memcpy, a
// cleared array as a call of memset. A freestanding image has to bring them, and brings nothing more.
//
// For the hosted tests of these functions RUNTIME_NAME gives them other names than the C library's.
#include <stddef.h>

#ifndef RUNTIME_NAME
#define RUNTIME_NAME(Name) Name
#endif

extern "C" {

// Without this the compiler may see that the loop below is a memcpy, and make it call itself.
#if defined(__clang__)
#define PLAIN_LOOP __attribute__((no_builtin("memcpy", "memmove", "memset", "memcmp")))
#else
#define PLAIN_LOOP __attribute__((optimize("no-tree-loop-distribute-patterns")))
#endif

// The string instructions are what every x86-64 processor of the last ten years does fastest, at the smallest size. The
// direction flag is clear at every call by the calling convention.
void* RUNTIME_NAME(memcpy)(void* Destination, const void* Source, size_t Length)
{
    void* To = Destination;
    asm volatile("rep movsb" : "+D"(To), "+S"(Source), "+c"(Length) : : "memory");
    return Destination;
}

void* RUNTIME_NAME(memset)(void* Destination, int Value, size_t Length)
{
    void* To = Destination;
    asm volatile("rep stosb" : "+D"(To), "+c"(Length) : "a"(Value) : "memory");
    return Destination;
}

PLAIN_LOOP void* RUNTIME_NAME(memmove)(void* Destination, const void* Source, size_t Length)
{
    auto* To = static_cast<unsigned char*>(Destination);
    const auto* From = static_cast<const unsigned char*>(Source);
    // Upwards unless the destination begins inside the source: the difference wraps to a large number when it lies below.
    if (static_cast<size_t>(To - From) >= Length) {
        return RUNTIME_NAME(memcpy)(Destination, Source, Length);
    }
    while (Length != 0) {
        Length--;
        To[Length] = From[Length];
    }
    return Destination;
}

PLAIN_LOOP int RUNTIME_NAME(memcmp)(const void* A, const void* B, size_t Length)
{
    const auto* Left = static_cast<const unsigned char*>(A);
    const auto* Right = static_cast<const unsigned char*>(B);
    for (size_t Index = 0; Index < Length; Index++) {
        if (Left[Index] != Right[Index]) {
            return Left[Index] - Right[Index];
        }
    }
    return 0;
}

#if defined(_WIN32)
// The target's mark that an image uses floating point; the linker asks for the symbol, nobody reads it.
extern const int _fltused;
const int _fltused = 0;
#endif
}
