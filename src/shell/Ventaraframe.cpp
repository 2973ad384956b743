#include "shell/Ventaraframe.h"

#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "support/Report.h"

SCREEN_FRAME* gScreenFrame = nullptr;

namespace {

constexpr CHAR8 gSourcePath[] = "shell\\Ventaraframe.cpp";

constexpr UINT32 gFrameX = 43;
constexpr UINT32 gFrameY = 36;
constexpr UINT32 gLowerCornerInstance = 2;
constexpr UINT32 gUpperCornerInstance = 3;
constexpr UINT32 gFrameInstance = 4;

// Size of the plain frame that stands in for a missing picture: it covers every fixed element.
constexpr UINT32 gPlainFrameWidth = 916;
constexpr UINT32 gPlainFrameHeight = 670;

struct CORNER {
    UINT32 Instance;
    bool Upper;
};

// Leaves Picture null when there is none. The status is that of the look-up, which the caller reports; a picture that
// doesn't decode is reported here, and one that there is no pool for by CropBlt.
EFI_STATUS LoadFramePicture(SCREEN_FRAME* Frame, const EFI_GUID* FileGuid, UINT8 SectionType)
{
    TEMPORARY<VOID> Stored;
    UINTN StoredSize = 0;
    EFI_STATUS Status =
        gImageSection->GetArtworkSection(gFrameInstance, &Stored.Data, &StoredSize, FileGuid, &SectionType);
    if (EfiError(Status) || !Stored) {
        Stored.Data = nullptr; // whatever the service left there
        return EfiError(Status) ? Status : EFI_NOT_FOUND;
    }
    PIXEL* Decoded = nullptr;
    UINTN DecodedSize = 0;
    UINT32 Height = 0;
    UINT32 Width = 0;
    UINT32 PixelsPerRow = 0;
    Status = gImageDecoder->ConvertJPEGToUgaBltA(gImageDecoder, Stored.Data, static_cast<UINT32>(StoredSize), &Decoded,
                                                 &DecodedSize, &Height, &Width, &PixelsPerRow);
    if (EfiError(Status) || Decoded == nullptr || !PlausibleSize(Width, Height) || PixelsPerRow < Width) {
        if (!EfiError(Status)) {
            FreePool(Decoded);
        }
        REPORT("ConvertJPEGToUgaBltA Fail");
        REPORT("LocatePool Fail");
        return EFI_SUCCESS;
    }
    ReleasePool(Stored.Data);
    if (!EfiError(CropBlt(&Frame->Picture, Width, Height, PixelsPerRow, Decoded))) {
        Frame->Width = Width;
        Frame->Height = Height;
    }
    FreePool(Decoded);
    return EFI_SUCCESS;
}

EFI_STATUS CopySavedScreen(SCREEN_FRAME* Frame)
{
    VOID* Block = nullptr;
    const EFI_STATUS Status = gBS->AllocatePool(EfiBootServicesData, gScreenBytes, &Block);
    if (EfiError(Status)) {
        REPORT("LocatePool Fail");
        return Status;
    }
    Frame->FullScreen = static_cast<PIXEL*>(Block);
    CopyMem(Frame->FullScreen, gSavedScreen, gScreenBytes);
    return EFI_SUCCESS;
}

// Without the stored picture a plain panel keeps the console usable; its place and size cover every fixed element. That
// the stored one is missing has its report line, and there is none more for a panel without pool.
VOID MakePlainPicture(SCREEN_FRAME* Frame)
{
    Frame->Picture = AllocateArray<PIXEL>(static_cast<UINTN>(gPlainFrameWidth) * gPlainFrameHeight);
    if (Frame->Picture != nullptr) {
        Frame->Width = gPlainFrameWidth;
        Frame->Height = gPlainFrameHeight;
        FillPixels(Frame->Picture, Frame->Width * Frame->Height, gPanelColor);
    }
}

// Where the corner has the key colour, what lies under it on the old screen shows through.
VOID FillCorner(PIXEL* Corner, const PIXEL* Under, UINTN Count)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        if (SameColor(Corner[Index], gKeyColor)) {
            Corner[Index] = Under[Index];
        }
    }
}

VOID PutBlock(SCREEN_FRAME* Frame, const PIXEL* Block, UINT32 Width, UINT32 Height, UINTN X, UINTN Y)
{
    for (UINTN Row = 0; Row < Height; Row++) {
        CopyMem(Frame->Picture + (Y + Row) * Frame->Width + X, Block + Row * Width, Width * sizeof(PIXEL));
    }
}

// One pass for a pair of corners: the stored left one and its mirror image. Gives the status of its allocations, or, if
// it comes to none, that of the last one before it.
EFI_STATUS MergeCorners(SCREEN_FRAME* Frame, const EFI_GUID* FileGuid, const CORNER& Corner, EFI_STATUS LastAllocation)
{
    const UINT8 SectionType = EFI_SECTION_RAW;
    TEMPORARY<VOID> Stored;
    UINTN StoredSize = 0;
    EFI_STATUS Status =
        gImageSection->GetArtworkSection(Corner.Instance, &Stored.Data, &StoredSize, FileGuid, &SectionType);
    if (EfiError(Status) || !Stored) {
        Stored.Data = nullptr; // whatever the service left there
        return LastAllocation; // the corners stay as the frame's picture has them
    }
    TEMPORARY<PIXEL> Left;
    UINTN LeftSize = 0;
    UINT32 Height = 0;
    UINT32 Width = 0;
    Status = gImageDecoder->ConvertBmpToGopBltA(gImageDecoder, Stored.Data, static_cast<UINT32>(StoredSize), &Left.Data,
                                                &LeftSize, &Height, &Width);
    if (EfiError(Status) || !Left) {
        Left.Data = nullptr;
        if (Corner.Upper) {
            REPORT("ConvertBmpToGopBltA Fail");
        }
        return LastAllocation;
    }
    ReleasePool(Stored.Data);
    if (!PlausibleSize(Width, Height) || Width > Frame->Width || Height > Frame->Height) {
        return LastAllocation; // no such corner fits this frame
    }

    const UINTN Count = static_cast<UINTN>(Width) * Height;
    TEMPORARY<PIXEL> Right;
    (void)MirrorBlt(Left.Data, &Right.Data, static_cast<INT32>(Width), static_cast<INT32>(Height));
    const TEMPORARY<PIXEL> UnderLeft(AllocateZeroArray<PIXEL>(Count));
    const TEMPORARY<PIXEL> UnderRight(AllocateZeroArray<PIXEL>(Count));
    if (!Right || !UnderLeft || !UnderRight) {
        return EFI_OUT_OF_RESOURCES;
    }
    const UINTN FromTop = Corner.Upper ? 0 : Frame->Height - Height;
    const UINTN FromLeft = Frame->Width - Width;
    // The frame's copy of the old screen, or the shell's own when there was no pool for one.
    const PIXEL* OldScreen = Frame->FullScreen != nullptr ? Frame->FullScreen : gSavedScreen;
    (void)ExtractBlt(UnderLeft.Data, Width, Height, OldScreen, gScreenWidth, gScreenHeight,
                     static_cast<INT32>(Frame->Y + FromTop), static_cast<INT32>(Frame->X));
    (void)ExtractBlt(UnderRight.Data, Width, Height, OldScreen, gScreenWidth, gScreenHeight,
                     static_cast<INT32>(Frame->Y + FromTop), static_cast<INT32>(Frame->X + FromLeft));
    FillCorner(Left.Data, UnderLeft.Data, Count);
    FillCorner(Right.Data, UnderRight.Data, Count);
    PutBlock(Frame, Left.Data, Width, Height, 0, FromTop);
    PutBlock(Frame, Right.Data, Width, Height, FromLeft, FromTop);
    return EFI_SUCCESS;
}

VOID FreeFrame(SCREEN_FRAME* Frame)
{
    if (Frame != nullptr) {
        FreePool(Frame->Picture);
        FreePool(Frame->FullScreen);
        FreePool(Frame);
    }
}

} // namespace

VOID CreateScreenFrame(const EFI_GUID* FileGuid)
{
    SCREEN_FRAME* Frame = AllocateZeroRecord<SCREEN_FRAME>();
    if (Frame == nullptr) {
        REPORT("LocatePool Fail");
        return;
    }
    Frame->X = gFrameX;
    Frame->Y = gFrameY;

    VOID* Probe = nullptr;
    UINTN ProbeSize = 0;
    const EFI_STATUS ProbeStatus = gImageLookup->GetFileSection(FileGuid, EFI_SECTION_RAW, &Probe, &ProbeSize);
    if (!EfiError(ProbeStatus)) {
        FreePool(Probe);
    }

    gScreenFrame = Frame;
    const EFI_STATUS LookUp =
        LoadFramePicture(Frame, FileGuid, EfiError(ProbeStatus) ? EFI_SECTION_PE32 : EFI_SECTION_RAW);
    if (Frame->Picture == nullptr) {
        MakePlainPicture(Frame);
    }
    EFI_STATUS LastAllocation = CopySavedScreen(Frame);
    if (EfiError(LookUp) || EfiError(LastAllocation)) {
        REPORT("LocatePool Fail");
    }
    LastAllocation = MergeCorners(Frame, FileGuid, {gUpperCornerInstance, true}, LastAllocation);
    if (EfiError(LastAllocation)) {
        REPORT("ConvertBmpToGopBltA Fail");
    }
    (void)MergeCorners(Frame, FileGuid, {gLowerCornerInstance, false}, LastAllocation);
}

VOID PasteScreenFrame()
{
    if (gScreenFrame == nullptr || gScreenFrame->FullScreen == nullptr) {
        (void)PasteBlt(gSavedScreen, gScreenWidth, gScreenHeight, 0, 0, gGuiCore->Screen);
    } else {
        (void)PasteBlt(gScreenFrame->FullScreen, gScreenWidth, gScreenHeight, 0, 0, gGuiCore->Screen);
    }
    if (gScreenFrame != nullptr && gScreenFrame->Picture != nullptr) {
        (void)PasteBlt(gScreenFrame->Picture, gScreenFrame->Width, gScreenFrame->Height, gScreenFrame->X,
                       gScreenFrame->Y, gGuiCore->Screen);
    }
}

VOID FreeScreenFrame()
{
    FreeFrame(gScreenFrame);
    gScreenFrame = nullptr;
}
