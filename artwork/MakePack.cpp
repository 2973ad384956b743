// Turns the rendered pictures into the numbered sections of the artwork pack.
//
//   MakePack PNG-DIRECTORY PACK-FILE      makes the pack
//   MakePack --sheet PACK-FILE SHEET.png  shows every picture of a pack at double size, as it decodes
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "platform/board/ArtworkPack.h"
#include "platform/board/ArtworkPool.h"
#include "platform/board/PackedPicture.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_NO_SIMD
#include <stb/stb_image.h>
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#include <stb/stb_image_write.h>

VOID* AllocateArtworkPool(UINTN Size) { return std::malloc(Size); }
VOID FreeArtworkPool(VOID* Block) { std::free(Block); }

namespace {

enum class FORMAT {
    Jpeg,   // flattened on black
    Packed, // what the decoder makes of that JPEG, packed: for those that take long to decode
    Bmp,    // what is more than half see-through becomes the key colour, the rest opaque
    Cursor, // a BMP where see-through is black and no opaque pixel has a zero byte
};

struct PICTURE {
    ARTWORK_FILE File;
    UINT32 Instance;
    const char* Source; // name of the PNG
    FORMAT Format;
    int CropSide = 0;        // 0: the whole picture; else a square of this side at the left edge,
    bool CropBottom = false; // from the top or the bottom
};

// The corners are cut from the frame's own picture, so that they can't differ from it.
constexpr int gCornerSide = 20;

constexpr PICTURE gPictures[] = {
    {ARTWORK_FILE_MAIN, 2, "frame", FORMAT::Bmp, gCornerSide, true},
    {ARTWORK_FILE_MAIN, 3, "frame", FORMAT::Bmp, gCornerSide, false},
    {ARTWORK_FILE_MAIN, 4, "frame", FORMAT::Packed},
    {ARTWORK_FILE_MAIN, 5, "tab", FORMAT::Packed},
    {ARTWORK_FILE_MAIN, 6, "button", FORMAT::Packed},
    {ARTWORK_FILE_MAIN, 7, "button", FORMAT::Packed},
    {ARTWORK_FILE_MAIN, 8, "button", FORMAT::Packed},
    {ARTWORK_FILE_MAIN, 9, "digits-duty", FORMAT::Jpeg},
    {ARTWORK_FILE_MAIN, 10, "digits-temperature", FORMAT::Jpeg},
    {ARTWORK_FILE_MAIN, 11, "nodes-8", FORMAT::Bmp},
    {ARTWORK_FILE_MAIN, 13, "nodes-6", FORMAT::Bmp},
    {ARTWORK_FILE_MAIN, 15, "about-button", FORMAT::Packed},
    {ARTWORK_FILE_MAIN, 16, "help-button", FORMAT::Packed},
    {ARTWORK_FILE_MAIN, 17, "exit-button", FORMAT::Packed},
    {ARTWORK_FILE_MAIN, 18, "temperature-radio", FORMAT::Packed},
    {ARTWORK_FILE_MAIN, 19, "check-box", FORMAT::Bmp},
    {ARTWORK_FILE_MAIN, 20, "readout-fan", FORMAT::Jpeg},
    {ARTWORK_FILE_MAIN, 21, "readout-temperature", FORMAT::Jpeg},
    {ARTWORK_FILE_MAIN, 22, "caption-temperature", FORMAT::Jpeg},
    {ARTWORK_FILE_MAIN, 23, "caption-duty", FORMAT::Jpeg},
    {ARTWORK_FILE_MAIN, 24, "caption-rpm", FORMAT::Jpeg},
    {ARTWORK_FILE_MAIN, 26, "thumb", FORMAT::Bmp},
    {ARTWORK_FILE_CURSOR, 0, "cursor", FORMAT::Cursor},
};

// Quality at which every quantiser step is 1 and no colour channel is halved: flat areas stay exactly flat.
constexpr int gJpegQuality = 100;

using BYTES = std::vector<UINT8>;

struct RGB_IMAGE {
    int Width = 0;
    int Height = 0;
    BYTES Pixels; // red, green, blue
};

[[noreturn]] void Fail(const std::string& Text)
{
    std::fprintf(stderr, "MakePack: %s\n", Text.c_str());
    std::exit(1);
}

void AppendBytes(void* Context, void* Data, int Size)
{
    auto* Bytes = static_cast<BYTES*>(Context);
    const auto* First = static_cast<const UINT8*>(Data);
    Bytes->insert(Bytes->end(), First, First + Size);
}

UINT8 FlattenOnBlack(int Value, int Alpha) { return static_cast<UINT8>((Value * Alpha + 127) / 255); }

RGB_IMAGE LoadPicture(const std::string& Path, const PICTURE& Picture)
{
    RGB_IMAGE Image;
    int Channels = 0;
    int FullHeight = 0;
    UINT8* Full = stbi_load(Path.c_str(), &Image.Width, &FullHeight, &Channels, 4);
    if (Full == nullptr) {
        Fail("can't read " + Path);
    }
    const int FullWidth = Image.Width;
    Image.Height = FullHeight;
    int Top = 0;
    if (Picture.CropSide != 0) {
        Image.Width = Picture.CropSide;
        Image.Height = Picture.CropSide;
        Top = Picture.CropBottom ? FullHeight - Picture.CropSide : 0;
    }
    constexpr int Half = 128;
    for (int Row = 0; Row < Image.Height; Row++) {
        for (int Column = 0; Column < Image.Width; Column++) {
            const UINT8* Pixel = Full + (static_cast<size_t>(Top + Row) * FullWidth + Column) * 4;
            UINT8 Color[3] = {Pixel[0], Pixel[1], Pixel[2]};
            const int Alpha = Pixel[3];
            switch (Picture.Format) {
            case FORMAT::Jpeg:
            case FORMAT::Packed:
                for (UINT8& Value : Color) {
                    Value = FlattenOnBlack(Value, Alpha);
                }
                break;
            case FORMAT::Bmp:
                if (Alpha < Half) {
                    Color[0] = 0xFF;
                    Color[1] = 0x00;
                    Color[2] = 0xFF;
                }
                break;
            case FORMAT::Cursor:
                for (UINT8& Value : Color) {
                    Value = Alpha < Half ? UINT8{0} : std::max(Value, UINT8{1});
                }
                break;
            }
            Image.Pixels.insert(Image.Pixels.end(), Color, Color + 3);
        }
    }
    stbi_image_free(Full);
    return Image;
}

void PutNumber(BYTES* Bytes, UINT64 Value, int Bits)
{
    for (int Shift = 0; Shift < Bits; Shift += 8) {
        Bytes->push_back(static_cast<UINT8>(Value >> Shift));
    }
}

void PutUint32(BYTES* Bytes, UINT64 Value) { PutNumber(Bytes, Value, 32); }

// The steps of PackedPicture.h for rows of Stride pixels: of the two kinds of reference the one that reaches further, unless
// it reaches over less than a step takes.
void PackPixels(BYTES* Bytes, const std::vector<UINT32>& Pixels, size_t Stride)
{
    constexpr size_t Worthwhile = 2;
    const auto Reach = [&](size_t At, size_t Back) {
        size_t Count = 0;
        while (At >= Back && Count < gPackedMostPixels && At + Count < Pixels.size() &&
               Pixels[At + Count] == Pixels[At + Count - Back]) {
            Count++;
        }
        return Count;
    };
    size_t New = 0; // that wait for their step
    const auto PutNew = [&](size_t Behind) {
        for (size_t At = Behind - New; New > 0;) {
            const size_t Count = std::min<size_t>(New, gPackedMostPixels);
            PutNumber(Bytes, (Count - 1) | PACKED_NEW * gPackedMostPixels, 16);
            for (New -= Count; At < Behind - New; At++) {
                PutNumber(Bytes, Pixels[At], 24);
            }
        }
    };
    for (size_t At = 0; At < Pixels.size();) {
        const size_t Left = Reach(At, 1);
        const size_t Above = Reach(At, Stride);
        const size_t Count = std::max(Left, Above);
        if (Count < Worthwhile) {
            New++;
            At++;
            continue;
        }
        PutNew(At);
        PutNumber(Bytes, (Count - 1) | (Left >= Above ? PACKED_LEFT : PACKED_ABOVE) * gPackedMostPixels, 16);
        At += Count;
    }
    PutNew(Pixels.size());
}

RGB_IMAGE DecodePicture(const BYTES& Bytes)
{
    const auto Size = static_cast<UINT32>(Bytes.size());
    RGB_IMAGE Image;
    if (IsPackedPicture(Bytes.data(), Size)) {
        EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Pixels = nullptr;
        UINT32 Width = 0;
        UINT32 Height = 0;
        UINT32 Stride = 0;
        if (EfiError(ReadPackedPicture(Bytes.data(), Size, &Pixels, &Width, &Height, &Stride))) {
            Fail("a packed picture doesn't decode");
        }
        Image = {.Width = static_cast<int>(Width), .Height = static_cast<int>(Height), .Pixels = {}};
        for (UINT32 At = 0; At < Width * Height; At++) {
            const auto& Pixel = Pixels[At / Width * Stride + At % Width];
            Image.Pixels.insert(Image.Pixels.end(), {Pixel.Red, Pixel.Green, Pixel.Blue});
        }
        std::free(Pixels);
        return Image;
    }
    int Channels = 0;
    UINT8* Colors =
        stbi_load_from_memory(Bytes.data(), static_cast<int>(Size), &Image.Width, &Image.Height, &Channels, 3);
    if (Colors == nullptr) {
        Fail("a picture doesn't decode");
    }
    Image.Pixels.assign(Colors, Colors + static_cast<size_t>(Image.Width) * static_cast<size_t>(Image.Height) * 3);
    stbi_image_free(Colors);
    return Image;
}

BYTES PackPicture(const RGB_IMAGE& Image)
{
    const size_t Stride = static_cast<size_t>(Image.Width + 7) / gPackedRowMultiple * gPackedRowMultiple;
    std::vector<UINT32> Pixels(Stride * static_cast<size_t>(Image.Height));
    for (int At = 0; At < Image.Width * Image.Height; At++) {
        const UINT8* Color = &Image.Pixels[static_cast<size_t>(At) * 3];
        Pixels[static_cast<size_t>(At / Image.Width) * Stride + static_cast<size_t>(At % Image.Width)] =
            Color[2] | static_cast<UINT32>(Color[1]) << 8 | static_cast<UINT32>(Color[0]) << 16;
    }
    BYTES Bytes(std::begin(gPackedSignature), std::end(gPackedSignature));
    PutNumber(&Bytes, static_cast<UINT64>(Image.Width), 16);
    PutNumber(&Bytes, static_cast<UINT64>(Image.Height), 16);
    PackPixels(&Bytes, Pixels, Stride);
    if (DecodePicture(Bytes).Pixels != Image.Pixels) {
        Fail("a packed picture isn't the one that was packed");
    }
    return Bytes;
}

BYTES StorePicture(const RGB_IMAGE& Image, FORMAT Format)
{
    const bool AsJpeg = Format == FORMAT::Jpeg || Format == FORMAT::Packed;
    BYTES Bytes;
    const int Written =
        AsJpeg ? stbi_write_jpg_to_func(AppendBytes, &Bytes, Image.Width, Image.Height, 3, Image.Pixels.data(),
                                        gJpegQuality)
               : stbi_write_bmp_to_func(AppendBytes, &Bytes, Image.Width, Image.Height, 3, Image.Pixels.data());
    if (Written == 0) {
        Fail("can't encode a picture");
    }
    return Format == FORMAT::Packed ? PackPicture(DecodePicture(Bytes)) : Bytes;
}

UINT32 TakeUint32(const BYTES& Bytes, size_t Offset)
{
    UINT32 Value = 0;
    for (size_t Index = 0; Index < 4; Index++) {
        Value |= static_cast<UINT32>(Bytes[Offset + Index]) << (8 * Index);
    }
    return Value;
}

void WriteFile(const char* Path, const BYTES& Bytes)
{
    FILE* File = std::fopen(Path, "wb");
    if (File == nullptr || std::fwrite(Bytes.data(), 1, Bytes.size(), File) != Bytes.size() || std::fclose(File) != 0) {
        Fail(std::string("can't write ") + Path);
    }
}

BYTES ReadFile(const char* Path)
{
    FILE* File = std::fopen(Path, "rb");
    if (File == nullptr) {
        Fail(std::string("can't read ") + Path);
    }
    BYTES Bytes;
    UINT8 Block[65536];
    for (size_t Count = 0; (Count = std::fread(Block, 1, sizeof(Block), File)) > 0;) {
        Bytes.insert(Bytes.end(), Block, Block + Count);
    }
    std::fclose(File);
    return Bytes;
}

void MakePack(const std::string& Directory, const char* PackPath)
{
    BYTES Pack = {'V', 'T', 'R', 'P', 'A', 'C', 'K', '1'};
    PutUint32(&Pack, std::size(gPictures));
    PutUint32(&Pack, 0);
    BYTES Stored;
    const size_t DataStart = sizeof(ARTWORK_PACK_HEADER) + std::size(gPictures) * sizeof(ARTWORK_PACK_ENTRY);
    constexpr UINT8 RawSection = 25;
    for (const PICTURE& Picture : gPictures) {
        const BYTES Bytes =
            StorePicture(LoadPicture(Directory + "/" + Picture.Source + ".png", Picture), Picture.Format);
        Pack.push_back(Picture.File);
        Pack.push_back(RawSection);
        Pack.push_back(0);
        Pack.push_back(0);
        PutUint32(&Pack, Picture.Instance);
        PutUint32(&Pack, DataStart + Stored.size());
        PutUint32(&Pack, Bytes.size());
        Stored.insert(Stored.end(), Bytes.begin(), Bytes.end());
    }
    Pack.insert(Pack.end(), Stored.begin(), Stored.end());
    WriteFile(PackPath, Pack);
}

// Pictures from left to right in rows, each as high as its highest.
void MakeSheet(const char* PackPath, const char* SheetPath)
{
    constexpr int Scale = 2;
    constexpr int Gap = 16;
    constexpr int SheetWidth = 942 * Scale + 2 * Gap;
    constexpr UINT8 PageColor = 0x50;
    const BYTES Pack = ReadFile(PackPath);
    RGB_IMAGE Sheet{.Width = SheetWidth, .Height = 0, .Pixels = {}};
    int X = Gap;
    int Y = Gap;
    for (size_t Index = 0; Index < TakeUint32(Pack, offsetof(ARTWORK_PACK_HEADER, Count)); Index++) {
        const size_t Entry = sizeof(ARTWORK_PACK_HEADER) + Index * sizeof(ARTWORK_PACK_ENTRY);
        const UINT32 Offset = TakeUint32(Pack, Entry + offsetof(ARTWORK_PACK_ENTRY, Offset));
        const UINT32 Size = TakeUint32(Pack, Entry + offsetof(ARTWORK_PACK_ENTRY, Size));
        const RGB_IMAGE Picture = DecodePicture({Pack.begin() + Offset, Pack.begin() + Offset + Size});
        if (X + Picture.Width * Scale + Gap > SheetWidth) {
            X = Gap;
            Y = Sheet.Height + Gap;
        }
        Sheet.Height = std::max(Sheet.Height, Y + Picture.Height * Scale);
        Sheet.Pixels.resize(static_cast<size_t>(Sheet.Height + Gap) * SheetWidth * 3, PageColor);
        for (int Row = 0; Row < Picture.Height * Scale; Row++) {
            for (int Column = 0; Column < Picture.Width * Scale; Column++) {
                const UINT8* From =
                    &Picture.Pixels[(static_cast<size_t>(Row / Scale) * Picture.Width + Column / Scale) * 3];
                std::copy_n(From, 3, &Sheet.Pixels[(static_cast<size_t>(Y + Row) * SheetWidth + X + Column) * 3]);
            }
        }
        X += Picture.Width * Scale + Gap;
    }
    if (stbi_write_png(SheetPath, Sheet.Width, Sheet.Height + Gap, 3, Sheet.Pixels.data(), SheetWidth * 3) == 0) {
        Fail(std::string("can't write ") + SheetPath);
    }
}

} // namespace

int main(int Count, char** Arguments)
{
    if (Count == 4 && std::string_view(Arguments[1]) == "--sheet") {
        MakeSheet(Arguments[2], Arguments[3]);
        return 0;
    }
    if (Count != 3) {
        Fail("usage: MakePack PNG-DIRECTORY PACK-FILE, or MakePack --sheet PACK-FILE SHEET.png");
    }
    MakePack(Arguments[1], Arguments[2]);
    return 0;
}
