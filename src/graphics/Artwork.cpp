#include "graphics/Artwork.h"

#include "gui/core/GUICore.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "support/Report.h"

namespace {

constexpr CHAR8 gSourcePath[] = "graphics\\Artwork.cpp";

// What a service left in its outputs when it failed isn't ours to free.
EFI_STATUS GiveNothing(EFI_STATUS Status, VOID** Data, UINTN* Size)
{
    *Data = nullptr;
    *Size = 0;
    return Status;
}

} // namespace

EFI_STATUS FindImageFile(const EFI_GUID* FileGuid, UINT32 Instance, VOID** Data, UINTN* Size)
{
    if (Instance != 0) {
        VOID* Probe = nullptr;
        UINTN ProbeSize = 0;
        const EFI_STATUS ProbeStatus = gImageLookup->GetFileSection(FileGuid, EFI_SECTION_RAW, &Probe, &ProbeSize);
        const UINT8 SectionType = EfiError(ProbeStatus) ? EFI_SECTION_PE32 : EFI_SECTION_RAW;
        if (!EfiError(ProbeStatus)) {
            FreePool(Probe);
        }
        EFI_GUID File = *FileGuid;
        const EFI_STATUS Found = gImageSection->GetArtworkSection(Instance, Data, Size, &File, &SectionType);
        return EfiError(Found) ? GiveNothing(Found, Data, Size) : Found;
    }

    EFI_STATUS Status = gImageLookup->GetFileSection(FileGuid, EFI_SECTION_RAW, Data, Size);
    if (!EfiError(Status)) {
        return Status;
    }
    Status = gImageLookup->GetFileSection(FileGuid, EFI_SECTION_PE32, Data, Size);
    if (!EfiError(Status)) {
        return Status;
    }
    REPORT("Can't find the image (InitCursorBlt)");
    return GiveNothing(EFI_NO_MEDIA, Data, Size);
}

EFI_STATUS LoadJpegBlt(UINT32 Instance, const EFI_GUID* FileGuid, PIXEL** Out, UINT32* Width, UINT32* Height)
{
    *Out = nullptr;
    *Width = 0;
    *Height = 0;

    EFI_GUID File = *FileGuid;
    TEMPORARY<VOID> Stored;
    UINTN StoredSize = 0;
    if (EfiError(FindImageFile(&File, Instance, &Stored.Data, &StoredSize)) || !Stored) {
        return EFI_SUCCESS;
    }

    PIXEL* Decoded = nullptr;
    UINTN DecodedSize = 0;
    UINT32 PictureHeight = 0;
    UINT32 PictureWidth = 0;
    UINT32 PixelsPerRow = 0;
    const EFI_STATUS Status =
        gImageDecoder->ConvertJPEGToUgaBltA(gImageDecoder, Stored.Data, static_cast<UINT32>(StoredSize), &Decoded,
                                            &DecodedSize, &PictureHeight, &PictureWidth, &PixelsPerRow);
    if (!EfiError(Status) && Decoded != nullptr && PlausibleSize(PictureWidth, PictureHeight) &&
        PixelsPerRow >= PictureWidth && !EfiError(CropBlt(Out, PictureWidth, PictureHeight, PixelsPerRow, Decoded))) {
        *Width = PictureWidth;
        *Height = PictureHeight;
    }
    ReleasePool(Stored.Data);
    if (!EfiError(Status)) {
        FreePool(Decoded);
    }
    return EFI_SUCCESS;
}

EFI_STATUS LoadBmpBlt(UINT32 Instance, const EFI_GUID* FileGuid, PIXEL** Out, UINT32* Width, UINT32* Height)
{
    *Out = nullptr;
    *Width = 0;
    *Height = 0;

    TEMPORARY<VOID> Stored;
    UINTN StoredSize = 0;
    EFI_STATUS Status = FindImageFile(FileGuid, Instance, &Stored.Data, &StoredSize);
    if (EfiError(Status) || !Stored) {
        return EfiError(Status) ? Status : EFI_NOT_FOUND;
    }

    PIXEL* Decoded = nullptr;
    UINTN DecodedSize = 0;
    UINT32 PictureHeight = 0;
    UINT32 PictureWidth = 0;
    Status = gImageDecoder->ConvertBmpToGopBltA(gImageDecoder, Stored.Data, static_cast<UINT32>(StoredSize), &Decoded,
                                                &DecodedSize, &PictureHeight, &PictureWidth);
    if (EfiError(Status)) {
        return Status;
    }
    if (Decoded == nullptr || !PlausibleSize(PictureWidth, PictureHeight)) {
        FreePool(Decoded);
        return EFI_UNSUPPORTED;
    }
    *Out = Decoded;
    *Width = PictureWidth;
    *Height = PictureHeight;
    return EFI_SUCCESS;
}

EFI_STATUS CropBlt(PIXEL** Out, UINTN Width, UINTN Height, UINTN SrcStride, const PIXEL* Src)
{
    VOID* Block = nullptr;
    const EFI_STATUS Status = gBS->AllocatePool(EfiBootServicesData, Width * Height * sizeof(PIXEL), &Block);
    if (EfiError(Status)) {
        REPORT("LocatePool fail");
        return Status;
    }
    PIXEL* Tight = static_cast<PIXEL*>(Block);
    for (UINTN Row = 0; Row < Height; Row++) {
        CopyMem(Tight + Row * Width, Src + Row * SrcStride, Width * sizeof(PIXEL));
    }
    *Out = Tight;
    return EFI_SUCCESS;
}

bool CutStripToScreen(PIXEL* Strip, UINT32 Count, UINT32 X, UINT32 Y, UINT32* Width, UINT32* Height)
{
    const UINT32 Columns = static_cast<UINT32>(VisibleExtent(*Width, X, gScreenWidth));
    const UINT32 Rows = static_cast<UINT32>(VisibleExtent(*Height, Y, gScreenHeight));
    if (Columns == 0 || Rows == 0) {
        return false;
    }
    if (Columns == *Width && Rows == *Height) {
        return true;
    }
    // Rows only move towards the beginning, over rows that have been moved already.
    PIXEL* To = Strip;
    for (UINT32 Index = 0; Index < Count; Index++) {
        const PIXEL* From = Strip + static_cast<UINTN>(Index) * *Width * *Height;
        for (UINT32 Row = 0; Row < Rows; Row++, To += Columns, From += *Width) {
            CopyMem(To, From, Columns * sizeof(PIXEL));
        }
    }
    *Width = Columns;
    *Height = Rows;
    return true;
}

EFI_STATUS MirrorBlt(const PIXEL* Src, PIXEL** Out, INT32 Width, INT32 Height)
{
    PIXEL* Mirror = AllocateArray<PIXEL>(static_cast<UINTN>(Width) * static_cast<UINTN>(Height));
    if (Mirror == nullptr) {
        return EFI_SUCCESS;
    }
    for (INTN Row = 0; Row < Height; Row++) {
        for (INTN Column = 0; Column < Width; Column++) {
            Mirror[Row * Width + (Width - 1 - Column)] = Src[Row * Width + Column];
        }
    }
    *Out = Mirror;
    return EFI_SUCCESS;
}

UINT8 CountStringTable(const CHAR16* const* Table)
{
    UINT8 Count = 0;
    while (Table[Count] != nullptr) {
        Count++;
    }
    return Count;
}
