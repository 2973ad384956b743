#include "platform/board/StoredImage.h"
#include "platform/board/ArtworkPool.h"
#include "platform/board/JpegMarkers.h"

namespace {

// The library asks for blocks through these. When the pool says no, it reports a damaged picture like any other, so the
// shortage is noted here.
bool gPoolRanOut = false;

// The blocks are cleared: a JPEG that uses a table which it hasn't defined finds an empty one.
VOID* AllocateForImage(size_t Size)
{
    auto* Block = static_cast<UINT8*>(AllocateArtworkPool(Size));
    if (Block == nullptr) {
        gPoolRanOut = true;
        return nullptr;
    }
    for (size_t Index = 0; Index < Size; Index++) {
        Block[Index] = 0;
    }
    return Block;
}

} // namespace

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_JPEG
#define STBI_ONLY_BMP
#define STBI_NO_STDIO
#define STBI_NO_HDR
#define STBI_NO_LINEAR
#define STBI_NO_THREAD_LOCALS
#define STBI_NO_FAILURE_STRINGS
// The vector paths round colours differently; without them a picture has the same pixels in both worlds.
#define STBI_NO_SIMD
#define STBI_MAX_DIMENSIONS 4096
#define STBI_ASSERT(Condition) ((void)0)
#define STBI_MALLOC(Size) AllocateForImage(Size)
#define STBI_REALLOC_SIZED(Old, OldSize, NewSize) nullptr // never asked for by these two formats
#define STBI_FREE(Block) FreeArtworkPool(Block)
#include <stb/stb_image.h>

namespace {

static_assert(gMaxImageSide == STBI_MAX_DIMENSIONS);

UINT64 ReadLittleEndian(const UINT8* Bytes, UINTN Count)
{
    UINT64 Value = 0;
    for (UINTN Index = 0; Index < Count; Index++) {
        Value |= static_cast<UINT64>(Bytes[Index]) << (8 * Index);
    }
    return Value;
}

// The library fills a BMP that ends too early with zeros: all its rows have to be there.
bool HasBmpRows(const UINT8* Image, UINT32 ImageSize, UINT32 Width, UINT32 Height)
{
    constexpr UINT32 SmallestHeaders = 26;
    constexpr UINT64 OldInfoHeaderSize = 12; // that form has 16-bit sides, so its depth stands earlier
    if (ImageSize < SmallestHeaders + 4) {
        return false;
    }
    const UINT64 PixelOffset = ReadLittleEndian(Image + 10, 4);
    const bool OldForm = ReadLittleEndian(Image + 14, 4) == OldInfoHeaderSize;
    const UINT64 BitsPerPixel = ReadLittleEndian(Image + (OldForm ? 24 : 28), 2);
    const UINT64 RowSize = (Width * BitsPerPixel + 31) / 32 * 4;
    return PixelOffset <= ImageSize && RowSize * Height <= ImageSize - PixelOffset;
}

bool IsFormat(STORED_IMAGE_FORMAT Format, const UINT8* Image, UINT32 ImageSize)
{
    if (ImageSize < 2) {
        return false;
    }
    return Format == STORED_IMAGE_JPEG ? Image[0] == 0xFF && Image[1] == 0xD8 : Image[0] == 'B' && Image[1] == 'M';
}

} // namespace

EFI_STATUS ReadStoredImage(STORED_IMAGE_FORMAT Format, const UINT8* Image, UINT32 ImageSize, UINT32 RowMultiple,
                           EFI_GRAPHICS_OUTPUT_BLT_PIXEL** Pixels, UINT32* Width, UINT32* Height, UINT32* Stride)
{
    if (ImageSize > 0x7FFFFFFF || !IsFormat(Format, Image, ImageSize)) {
        return EFI_UNSUPPORTED;
    }
    if (Format == STORED_IMAGE_JPEG && !CheckJpegMarkers(Image, ImageSize)) {
        return EFI_VOLUME_CORRUPTED;
    }
    gPoolRanOut = false;
    const int Size = static_cast<int>(ImageSize);
    int PictureWidth = 0;
    int PictureHeight = 0;
    int Channels = 0;
    // Headers first: a picture beyond the limit isn't decoded only to be thrown away.
    if (stbi_info_from_memory(Image, Size, &PictureWidth, &PictureHeight, &Channels) == 0) {
        return gPoolRanOut ? EFI_OUT_OF_RESOURCES : EFI_VOLUME_CORRUPTED;
    }
    const auto ColumnCount = static_cast<UINT32>(PictureWidth);
    const auto RowCount = static_cast<UINT32>(PictureHeight);
    if (PictureWidth <= 0 || PictureHeight <= 0 || ColumnCount > gMaxImageSide || RowCount > gMaxImageSide) {
        return EFI_UNSUPPORTED;
    }
    if (Format == STORED_IMAGE_BMP && !HasBmpRows(Image, ImageSize, ColumnCount, RowCount)) {
        return EFI_VOLUME_CORRUPTED;
    }
    UINT8* Colors = stbi_load_from_memory(Image, Size, &PictureWidth, &PictureHeight, &Channels, 3);
    if (Colors == nullptr) {
        return gPoolRanOut ? EFI_OUT_OF_RESOURCES : EFI_VOLUME_CORRUPTED;
    }
    const UINT32 RowPixels = (ColumnCount + RowMultiple - 1) / RowMultiple * RowMultiple;
    const UINTN BufferSize = UINTN{RowPixels} * RowCount * sizeof(EFI_GRAPHICS_OUTPUT_BLT_PIXEL);
    auto* Buffer = static_cast<EFI_GRAPHICS_OUTPUT_BLT_PIXEL*>(AllocateArtworkPool(BufferSize));
    if (Buffer == nullptr) {
        FreeArtworkPool(Colors);
        return EFI_OUT_OF_RESOURCES;
    }
    const UINT8* Color = Colors;
    for (UINT32 Row = 0; Row < RowCount; Row++) {
        EFI_GRAPHICS_OUTPUT_BLT_PIXEL* RowStart = Buffer + UINTN{Row} * RowPixels;
        for (UINT32 Column = 0; Column < ColumnCount; Column++, Color += 3) {
            RowStart[Column] = {.Blue = Color[2], .Green = Color[1], .Red = Color[0], .Reserved = 0};
        }
        for (UINT32 Column = ColumnCount; Column < RowPixels; Column++) {
            RowStart[Column] = {};
        }
    }
    FreeArtworkPool(Colors);
    *Pixels = Buffer;
    *Width = ColumnCount;
    *Height = RowCount;
    *Stride = RowPixels;
    return EFI_SUCCESS;
}
