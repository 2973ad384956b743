#include "platform/board/PackedPicture.h"

#include "platform/board/ArtworkPool.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

constexpr UINT32 gStepSize = 2;
constexpr UINT32 gColorSize = 3;

UINT32 ReadUint16(const UINT8* Bytes) { return Bytes[0] | static_cast<UINT32>(Bytes[1]) << 8; }

// False when the steps ask for a pixel that isn't there, or don't fill the picture exactly.
bool TakeSteps(const UINT8* At, const UINT8* End, PIXEL* Pixels, UINTN Stride, UINTN Total)
{
    for (UINTN Made = 0; Made < Total;) {
        if (End - At < static_cast<INTN>(gStepSize)) {
            return false;
        }
        const UINT32 Word = ReadUint16(At);
        At += gStepSize;
        UINTN Count = Word % gPackedMostPixels + 1;
        if (Count > Total - Made) {
            return false;
        }
        PIXEL* To = Pixels + Made;
        Made += Count;
        switch (Word / gPackedMostPixels) {
        case PACKED_NEW:
            if (End - At < static_cast<INTN>(Count * gColorSize)) {
                return false;
            }
            for (; Count > 0; Count--, At += gColorSize) {
                *To++ = {.Blue = At[0], .Green = At[1], .Red = At[2], .Reserved = 0};
            }
            break;
        case PACKED_LEFT:
            if (To == Pixels) {
                return false;
            }
            for (const PIXEL Last = To[-1]; Count > 0; Count--) {
                *To++ = Last;
            }
            break;
        case PACKED_ABOVE:
            if (To - Pixels < static_cast<INTN>(Stride)) {
                return false;
            }
            while (Count > 0) { // not more than a row at once, which may be what the next copies
                const UINTN Part = Count < Stride ? Count : Stride;
                __builtin_memcpy(To, To - Stride, Part * sizeof(PIXEL));
                To += Part;
                Count -= Part;
            }
            break;
        default:
            return false;
        }
    }
    return At == End;
}

} // namespace

bool IsPackedPicture(const UINT8* Image, UINT32 ImageSize)
{
    return ImageSize >= gPackedHeadSize && __builtin_memcmp(Image, gPackedSignature, sizeof(gPackedSignature)) == 0;
}

EFI_STATUS ReadPackedPicture(const UINT8* Image, UINT32 ImageSize, PIXEL** Pixels, UINT32* Width, UINT32* Height,
                             UINT32* Stride)
{
    if (!IsPackedPicture(Image, ImageSize)) {
        return EFI_UNSUPPORTED;
    }
    const UINT32 Columns = ReadUint16(Image + 4);
    const UINT32 Rows = ReadUint16(Image + 6);
    if (Columns == 0 || Rows == 0 || Columns > gMaxImageSide || Rows > gMaxImageSide) {
        return EFI_UNSUPPORTED;
    }
    const UINT32 RowPixels = (Columns + gPackedRowMultiple - 1) / gPackedRowMultiple * gPackedRowMultiple;
    const UINTN Total = UINTN{RowPixels} * Rows;
    auto* Buffer = static_cast<PIXEL*>(AllocateArtworkPool(Total * sizeof(PIXEL)));
    if (Buffer == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    if (!TakeSteps(Image + gPackedHeadSize, Image + ImageSize, Buffer, RowPixels, Total)) {
        FreeArtworkPool(Buffer);
        return EFI_VOLUME_CORRUPTED;
    }
    *Pixels = Buffer;
    *Width = Columns;
    *Height = Rows;
    *Stride = RowPixels;
    return EFI_SUCCESS;
}
