// Formats of any text. Every argument is a pointer that holds as string, as GUID and as time, and a number anyway.
#include <cstdlib>
#include <cstring>
#include <vector>

#include "fuzz/Input.h"
#include "support/Print.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    INPUT Input = {Data, Size};
    const size_t Room = Input.Word() % 1200;
    const bool Wide = Input.Byte() % 2 == 0;
    alignas(16) static CHAR16 Argument[64] = u"Argument \u00B0 of a format, long enough for what it stands for";
    // A buffer of its own size, so that a step beyond it shows.
    std::vector<UINT8> Buffer(Room, 0xEE);
    CHAR16* Text = reinterpret_cast<CHAR16*>(Buffer.data());
    UINTN Length;
#define ARGUMENTS                                                                                                    \
    Argument, Argument, Argument, Argument, Argument, Argument, Argument, Argument, Argument, Argument, Argument,    \
        Argument, Argument, Argument, Argument, Argument
    // Each element takes at most three arguments: more elements than that would read past the last.
    size_t Elements = 0;
    for (size_t At = 0; At < Input.Size; At++) {
        Elements += Input.Data[At] == '%' ? 1u : 0u;
        Elements += Input.Data[At] == '*' ? 1u : 0u;
    }
    if (Elements > 16) {
        return 0;
    }
    if (Wide) {
        std::vector<CHAR16> Format(Input.Size / 2 + 1, 0);
        std::memcpy(Format.data(), Input.Data, Input.Size / 2 * 2);
        Length = FormatUnicodeText(Text, Room, Format.data(), ARGUMENTS);
    } else {
        std::vector<CHAR8> Format(Input.Data, Input.Data + Input.Size);
        Format.push_back(0);
        Length = FormatAsciiText(Text, Room, Format.data(), ARGUMENTS);
    }
    const size_t Characters = Room / sizeof(CHAR16);
    if (Characters == 0 ? Length != 0 : Length >= Characters || Text[Length] != 0) {
        std::abort();
    }
    return 0;
}
