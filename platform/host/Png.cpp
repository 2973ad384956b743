#include "platform/host/Png.h"

#include <cstdio>
#include <vector>

// A static copy. Checkers are given the declarations alone: what they would find inside isn't ours to mend.
#ifndef __clang_analyzer__
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#endif
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

namespace {

constexpr int gChannels = 3;
constexpr unsigned gMaximumSide = 32768; // keeps every product of sides and channels within an int

struct PNG_FILE {
    FILE* File;
    bool Whole; // all that was encoded so far is written
};

void Append(void* Context, void* Bytes, int Size)
{
    auto* Output = static_cast<PNG_FILE*>(Context);
    const auto Count = static_cast<size_t>(Size);
    Output->Whole = std::fwrite(Bytes, 1, Count, Output->File) == Count && Output->Whole;
}

} // namespace

bool WritePng(const char* Path, const UINT32* Pixels, unsigned Width, unsigned Height)
{
    if (Width == 0 || Height == 0 || Width > gMaximumSide || Height > gMaximumSide / gChannels) {
        return false;
    }
    const size_t Count = size_t{Width} * Height;
    std::vector<UINT8> Bytes;
    Bytes.reserve(Count * gChannels);
    for (size_t Index = 0; Index < Count; Index++) {
        Bytes.push_back(static_cast<UINT8>(Pixels[Index] >> 16));
        Bytes.push_back(static_cast<UINT8>(Pixels[Index] >> 8));
        Bytes.push_back(static_cast<UINT8>(Pixels[Index]));
    }
    PNG_FILE Output = {.File = std::fopen(Path, "wb"), .Whole = true};
    if (Output.File == nullptr) {
        return false;
    }
    const bool Encoded = stbi_write_png_to_func(Append, &Output, static_cast<int>(Width), static_cast<int>(Height),
                                                gChannels, Bytes.data(), static_cast<int>(Width) * gChannels) != 0;
    // A full disk may show only when the file is closed, which stb's own file writer doesn't look at.
    return std::fclose(Output.File) == 0 && Encoded && Output.Whole;
}
