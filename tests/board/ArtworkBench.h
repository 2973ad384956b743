// Short ways to the board's artwork services, on a hosted boot.
#pragma once

#include <cstdlib>
#include <cstring>

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

// A BMP with a palette where its depth needs one. Rows are filled to four bytes, and stand bottom up where Height is above 0.
inline std::vector<UINT8> MakeBmp(UINT32 Width, INT32 Height, UINT32 Depth)
{
    const UINT32 Palette = Depth <= 8 ? 4u << Depth : 0;
    const size_t Rows = static_cast<size_t>(std::abs(Height));
    std::vector<UINT8> Bytes(54 + Palette + Rows * ((Width * Depth + 31) / 32 * 4));
    const auto Put = [&Bytes](size_t At, UINT32 Value) { std::memcpy(Bytes.data() + At, &Value, 4); };
    for (size_t At = 54; At < Bytes.size(); At++) {
        Bytes[At] = static_cast<UINT8>(37 * At);
    }
    Put(0, 0x4D42);
    Put(2, static_cast<UINT32>(Bytes.size()));
    Put(10, 54 + Palette);
    Put(14, 40);
    Put(18, Width);
    Put(22, static_cast<UINT32>(Height));
    Put(26, 1 | Depth << 16);
    Bytes[0] = 'B';
    Bytes[1] = 'M';
    return Bytes;
}

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
        const EFI_STATUS Status =
            gBoardImageDecoder.ConvertBmpToGopBltA(&gBoardImageDecoder, Bytes.data(), static_cast<UINT32>(Bytes.size()),
                                                   &Blt.Data, &Out->Size, &Out->Height, &Out->Width);
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
