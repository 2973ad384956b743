#include "platform/host/Png.h"

#include <cstdio>
#include <cstdlib>

// Static copies: whoever else in the program decodes with stb_image has a copy with a cut of its own.
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_NO_FAILURE_STRINGS
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

namespace {

constexpr int gChannels = 3;
constexpr unsigned gMaximumSide = 32768; // keeps every product of sides and channels within an int

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
    int Size = 0;
    UINT8* Encoded = stbi_write_png_to_mem(Bytes.data(), static_cast<int>(Width) * gChannels, static_cast<int>(Width),
                                           static_cast<int>(Height), gChannels, &Size);
    if (Encoded == nullptr) {
        return false;
    }
    bool Written = false;
    if (FILE* File = std::fopen(Path, "wb")) {
        const size_t Stored = std::fwrite(Encoded, 1, static_cast<size_t>(Size), File);
        // A full disk may show only when the file is closed, which stb's own file writer doesn't look at.
        Written = std::fclose(File) == 0 && Stored == static_cast<size_t>(Size);
    }
    std::free(Encoded);
    return Written;
}

bool ReadPng(const char* Path, std::vector<UINT32>* Pixels, unsigned* Width, unsigned* Height)
{
    int FileWidth = 0;
    int FileHeight = 0;
    int FileChannels = 0;
    stbi_uc* Bytes = stbi_load(Path, &FileWidth, &FileHeight, &FileChannels, gChannels);
    if (Bytes == nullptr) {
        return false;
    }
    const size_t Count = static_cast<size_t>(FileWidth) * static_cast<size_t>(FileHeight);
    Pixels->resize(Count);
    for (size_t Index = 0; Index < Count; Index++) {
        const stbi_uc* Pixel = Bytes + Index * gChannels;
        (*Pixels)[Index] = UINT32{Pixel[0]} << 16 | UINT32{Pixel[1]} << 8 | Pixel[2];
    }
    *Width = static_cast<unsigned>(FileWidth);
    *Height = static_cast<unsigned>(FileHeight);
    stbi_image_free(Bytes);
    return true;
}
