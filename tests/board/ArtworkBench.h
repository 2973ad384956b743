// A pool that counts and can run dry, and short ways to the services, for the artwork tests.
#pragma once

#include <cstdlib>
#include <vector>

#include "platform/board/ArtworkPack.h"
#include "platform/board/ArtworkServices.h"
#include "platform/board/Decoder.h"

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

struct PICTURE {
    UINT32 Width = 0;
    UINT32 Height = 0;
    UINT32 Stride = 0;
    UINTN Size = 0;
    std::vector<PIXEL> Pixels;

    const PIXEL& At(UINT32 X, UINT32 Y) const { return Pixels[size_t{Y} * Stride + X]; }
    // 0xRRGGBB
    UINT32 Color(UINT32 X, UINT32 Y) const {
        const PIXEL& Pixel = At(X, Y);
        return static_cast<UINT32>(Pixel.Red) << 16 | static_cast<UINT32>(Pixel.Green) << 8 | Pixel.Blue;
    }
};

class ARTWORK_BENCH {
public:
    ARTWORK_BENCH()
{
        Services.AllocatePool = Allocate;
        Services.FreePool = Free;
        LiveBlocks = 0;
        AllocationsLeft = -1;
        UseArtworkPool(&Services);
        UseArtworkPack(gArtworkPack, gArtworkPackSize);
        ResetArtwork();
    }
    ~ARTWORK_BENCH() {
        ResetArtwork();
        SetDecoderGeneration(0);
    }

    // The bytes of a section; empty when the service has none.
    std::vector<UINT8> Section(UINT32 Instance, const EFI_GUID& File = gArtworkFileGuid, UINT8 Type = 25) {
        VOID* Data = nullptr;
        UINTN Size = 0;
        if (EfiError(gBoardImageSection.GetArtworkSection(Instance, &Data, &Size, &File, &Type))) {
            return {};
        }
        const auto* First = static_cast<UINT8*>(Data);
        std::vector<UINT8> Bytes(First, First + Size);
        Services.FreePool(Data);
        return Bytes;
    }

    EFI_STATUS DecodeJpeg(const std::vector<UINT8>& Bytes, PICTURE* Out) {
        PIXEL* Blt = nullptr;
        const EFI_STATUS Status = gBoardImageDecoder.ConvertJPEGToUgaBltA(
            &gBoardImageDecoder, Bytes.data(), static_cast<UINT32>(Bytes.size()), &Blt, &Out->Size, &Out->Height,
            &Out->Width, &Out->Stride);
        return Keep(Status, Blt, Out);
    }

    EFI_STATUS DecodeBmp(const std::vector<UINT8>& Bytes, PICTURE* Out) {
        PIXEL* Blt = nullptr;
        const EFI_STATUS Status = gBoardImageDecoder.ConvertBmpToGopBltA(
            &gBoardImageDecoder, Bytes.data(), static_cast<UINT32>(Bytes.size()), &Blt, &Out->Size, &Out->Height,
            &Out->Width);
        Out->Stride = Out->Width;
        return Keep(Status, Blt, Out);
    }

    PICTURE Jpeg(UINT32 Instance) {
        PICTURE Picture;
        (void)DecodeJpeg(Section(Instance), &Picture);
        return Picture;
    }

    PICTURE Bmp(UINT32 Instance, const EFI_GUID& File = gArtworkFileGuid) {
        PICTURE Picture;
        (void)DecodeBmp(Section(Instance, File), &Picture);
        return Picture;
    }

    static inline int LiveBlocks = 0;
    static inline int AllocationsLeft = -1; // -1: no end

    EFI_BOOT_SERVICES Services = {};

private:
    EFI_STATUS Keep(EFI_STATUS Status, PIXEL* Blt, PICTURE* Out)
{
        if (!EfiError(Status)) {
            Out->Pixels.assign(Blt, Blt + Out->Size / sizeof(PIXEL));
            Services.FreePool(Blt);
        }
        return Status;
    }

    static EFI_STATUS Allocate(EFI_MEMORY_TYPE, UINTN Size, VOID** Buffer) {
        if (AllocationsLeft == 0) {
            return EFI_OUT_OF_RESOURCES;
        }
        if (AllocationsLeft > 0) {
            AllocationsLeft--;
        }
        *Buffer = std::malloc(Size);
        LiveBlocks++;
        return EFI_SUCCESS;
    }

    static EFI_STATUS Free(VOID* Buffer) {
        LiveBlocks--;
        std::free(Buffer);
        return EFI_SUCCESS;
    }
};
