#include "platform/board/Decoder.h"
#include "platform/board/PackedPicture.h"
#include "platform/board/StoredImage.h"

namespace {

// A JPEG is coded in blocks of eight by eight, and the decoder's rows are whole blocks.
constexpr UINT32 gJpegRowMultiple = gPackedRowMultiple;

UINT8 gGeneration = 0;

EFI_STATUS ConvertJPEGToUgaBltA(IMAGE_DECODER_PROTOCOL*, const VOID* Image, UINT32 ImageSize,
                                EFI_GRAPHICS_OUTPUT_BLT_PIXEL** Blt, UINTN* BltSize, UINT32* Height, UINT32* Width,
                                UINT32* PixelsPerRow)
{
    if (Image == nullptr || Blt == nullptr || BltSize == nullptr || Height == nullptr || Width == nullptr ||
        PixelsPerRow == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    const auto* Stored = static_cast<const UINT8*>(Image);
    const EFI_STATUS Status =
        IsPackedPicture(Stored, ImageSize)
            ? ReadPackedPicture(Stored, ImageSize, Blt, Width, Height, PixelsPerRow)
            : ReadStoredImage(STORED_IMAGE_JPEG, Stored, ImageSize, gJpegRowMultiple, Blt, Width, Height, PixelsPerRow);
    if (!EfiError(Status)) {
        *BltSize = UINTN{*PixelsPerRow} * *Height * sizeof(EFI_GRAPHICS_OUTPUT_BLT_PIXEL);
    }
    return Status;
}

EFI_STATUS ConvertBmpToGopBltA(IMAGE_DECODER_PROTOCOL*, const VOID* Image, UINT32 ImageSize,
                               EFI_GRAPHICS_OUTPUT_BLT_PIXEL** Blt, UINTN* BltSize, UINT32* Height, UINT32* Width)
{
    if (Image == nullptr || Blt == nullptr || BltSize == nullptr || Height == nullptr || Width == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    UINT32 Stride = 0;
    const EFI_STATUS Status =
        ReadStoredImage(STORED_IMAGE_BMP, static_cast<const UINT8*>(Image), ImageSize, 1, Blt, Width, Height, &Stride);
    if (!EfiError(Status)) {
        *BltSize = UINTN{*Width} * *Height * sizeof(EFI_GRAPHICS_OUTPUT_BLT_PIXEL);
    }
    return Status;
}

UINT8 GetFirmwareGeneration(IMAGE_DECODER_PROTOCOL*) { return gGeneration; }

} // namespace

VOID SetDecoderGeneration(UINT8 Generation) { gGeneration = Generation; }

IMAGE_DECODER_PROTOCOL gBoardImageDecoder = {
    .Unused0 = {},
    .ConvertJPEGToUgaBltA = ConvertJPEGToUgaBltA,
    .ConvertBmpToGopBltA = ConvertBmpToGopBltA,
    .Unused8 = {},
    .GetFirmwareGeneration = GetFirmwareGeneration,
};
