// Short ways to the board's artwork services, on a hosted boot.
#pragma once

#include "platform/board/ArtworkPack.h"
#include "platform/board/ArtworkServices.h"
#include "platform/board/Decoder.h"
#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

struct DECODED {
    UINT32 Width = 0;
    UINT32 Height = 0;
    UINT32 Stride = 0;
    UINTN Size = 0;
    std::vector<PIXEL> Pixels;

    const PIXEL& At(UINT32 X, UINT32 Y) const { return Pixels[size_t{Y} * Stride + X]; }
    // 0xRRGGBB
    UINT32 Color(UINT32 X, UINT32 Y) const { return ColorOf(At(X, Y)); }
};

struct ARTWORK_BENCH : HOSTED {
    // The bytes of a section; empty when the service has none.
    std::vector<UINT8> Section(UINT32 Instance, const EFI_GUID& File = gArtworkFileGuid) const
    {
        const UINT8 Type = EFI_SECTION_RAW;
        TEMPORARY<VOID> Data;
        UINTN Size = 0;
        if (EfiError(gBoardImageSection.GetArtworkSection(Instance, &Data.Data, &Size, &File, &Type))) {
            return {};
        }
        const auto* First = static_cast<UINT8*>(Data.Data);
        return {First, First + Size};
    }

    EFI_STATUS DecodeJpeg(const std::vector<UINT8>& Bytes, DECODED* Out) const
    {
        TEMPORARY<PIXEL> Blt;
        const EFI_STATUS Status = gBoardImageDecoder.ConvertJPEGToUgaBltA(
            &gBoardImageDecoder, Bytes.data(), static_cast<UINT32>(Bytes.size()), &Blt.Data, &Out->Size, &Out->Height,
            &Out->Width, &Out->Stride);
        Out->Pixels.assign(Blt.Data, Blt.Data + Out->Size / sizeof(PIXEL));
        return Status;
    }

    EFI_STATUS DecodeBmp(const std::vector<UINT8>& Bytes, DECODED* Out) const
    {
        TEMPORARY<PIXEL> Blt;
        const EFI_STATUS Status = gBoardImageDecoder.ConvertBmpToGopBltA(
            &gBoardImageDecoder, Bytes.data(), static_cast<UINT32>(Bytes.size()), &Blt.Data, &Out->Size, &Out->Height,
            &Out->Width);
        Out->Stride = Out->Width;
        Out->Pixels.assign(Blt.Data, Blt.Data + Out->Size / sizeof(PIXEL));
        return Status;
    }

    DECODED Jpeg(UINT32 Instance) const
    {
        DECODED Picture;
        (void)DecodeJpeg(Section(Instance), &Picture);
        return Picture;
    }

    DECODED Bmp(UINT32 Instance, const EFI_GUID& File = gArtworkFileGuid) const
    {
        DECODED Picture;
        (void)DecodeBmp(Section(Instance, File), &Picture);
        return Picture;
    }
};
