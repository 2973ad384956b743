#include "graphics/Text.h"

#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "support/Report.h"
#include "support/Strings.h"
#include "uefi/Hii.h"

namespace {

constexpr CHAR8 gSourcePath[] = "graphics\\Text.cpp";

// The generation whose font protocol gives pictures of the text's own size.
constexpr UINT8 gTightGeneration = 4;
constexpr UINTN gLongestRequest = 128;

// One row of text; characters that the font doesn't have are left out.
constexpr EFI_HII_OUT_FLAGS gTextFlags = EFI_HII_OUT_FLAG_WRAP | EFI_HII_IGNORE_IF_NO_GLYPH | EFI_HII_IGNORE_LINE_BREAK;

constexpr UINT32 gBoxWidth = 40; // five characters

VOID FreeImage(EFI_IMAGE_OUTPUT* Image)
{
    if (Image != nullptr) {
        FreePool(Image->Image.Bitmap);
        FreePool(Image);
    }
}

// The firmware's picture is the text.
EFI_STATUS TakeWholeImage(const EFI_IMAGE_OUTPUT& Image, PIXEL** Out, UINT16* Width, UINT16* Height)
{
    const UINTN Size = static_cast<UINTN>(Image.Width) * Image.Height * sizeof(PIXEL);
    VOID* Copy = nullptr;
    const EFI_STATUS Status = gBS->AllocatePool(EfiBootServicesData, Size, &Copy);
    if (EfiError(Status)) {
        return Status;
    }
    CopyMem(Copy, Image.Image.Bitmap, Size);
    *Out = static_cast<PIXEL*>(Copy);
    *Width = Image.Width;
    *Height = Image.Height;
    return EFI_SUCCESS;
}

// The firmware's picture is wider than the text; the first row says how much of it is text.
EFI_STATUS TakeFirstRow(const EFI_IMAGE_OUTPUT& Image, const EFI_HII_ROW_INFO& Row, PIXEL** Out, UINT16* Width,
                        UINT16* Height)
{
    const UINTN RowWidth = Row.LineWidth < Image.Width ? Row.LineWidth : Image.Width;
    const UINTN RowHeight = Row.LineHeight < Image.Height ? Row.LineHeight : Image.Height;
    const EFI_STATUS Status = CropBlt(Out, RowWidth, RowHeight, Image.Width, Image.Image.Bitmap);
    if (!EfiError(Status)) {
        *Width = static_cast<UINT16>(RowWidth);
        *Height = static_cast<UINT16>(RowHeight);
    }
    return Status;
}

} // namespace

EFI_STATUS StringToBlt(const PIXEL* Foreground, const PIXEL* Background, PIXEL** Out, UINT16* Width, UINT16* Height,
                       const CHAR16* String)
{
    EFI_HII_FONT_PROTOCOL* Font = nullptr;
    EFI_STATUS Status = gBS->LocateProtocol(&gEfiHiiFontProtocolGuid, nullptr, reinterpret_cast<VOID**>(&Font));
    if (EfiError(Status)) {
        REPORT("gEfiHiiFontProtocolGuid was not loaded");
        return Status;
    }

    const bool Tight = gImageDecoder->GetFirmwareGeneration(gImageDecoder) == gTightGeneration;
    const UINTN Characters = StringLength(String);
    const UINTN Request = Tight ? Characters : (Characters + 1) * sizeof(CHAR16);
    if (Request == 0 || Request > gLongestRequest) {
        return EFI_INVALID_PARAMETER;
    }

    EFI_FONT_DISPLAY_INFO Info = {};
    Info.ForegroundColor = Foreground != nullptr ? *Foreground : gWhiteColor;
    Info.BackgroundColor = Background != nullptr ? *Background : gBlackPixel;
    Info.FontInfoMask = EFI_FONT_INFO_SYS_FONT | EFI_FONT_INFO_SYS_SIZE | EFI_FONT_INFO_SYS_STYLE;

    EFI_IMAGE_OUTPUT* Image = nullptr;
    if (Tight) {
        Status = Font->StringToImage(Font, gTextFlags, String, &Info, &Image, 0, 0, nullptr, nullptr, nullptr);
        if (!EfiError(Status)) {
            Status = Image == nullptr || Image->Image.Bitmap == nullptr ? EFI_NOT_FOUND
                                                                        : TakeWholeImage(*Image, Out, Width, Height);
        } else {
            Image = nullptr; // whatever a failing service left there
        }
    } else {
        EFI_HII_ROW_INFO* Rows = nullptr;
        UINTN RowCount = 0;
        Status = Font->StringToImage(Font, gTextFlags, String, &Info, &Image, 0, 0, &Rows, &RowCount, nullptr);
        if (!EfiError(Status)) {
            Status = Image == nullptr || Image->Image.Bitmap == nullptr || Rows == nullptr || RowCount == 0
                         ? EFI_NOT_FOUND
                         : TakeFirstRow(*Image, Rows[0], Out, Width, Height);
            FreePool(Rows);
        } else {
            Image = nullptr;
        }
    }
    FreeImage(Image);
    return Status;
}

EFI_STATUS DrawStringDirect(UINTN X, UINTN Y, const PIXEL* Foreground, const PIXEL* Background, const CHAR16* String)
{
    TEMPORARY<PIXEL> Text;
    UINT16 Width = 0;
    UINT16 Height = 0;
    const EFI_STATUS Status = StringToBlt(Foreground, Background, &Text.Data, &Width, &Height, String);
    if (EfiError(Status)) {
        return Status;
    }
    if (Width == 0 || Height == 0) {
        return EFI_SUCCESS;
    }
    return gGraphicsOutput->Blt(gGraphicsOutput, Text.Data, EfiBltBufferToVideo, 0, 0, X, Y, Width, Height,
                                Width * sizeof(PIXEL));
}

namespace {

// Only the letters go to Screen; what then stands there, letters over the old picture, goes to the display.
VOID DrawKeyed(UINTN X, UINTN Y, PIXEL* Text, UINT16 Width, UINT16 Height, const PIXEL* Background, GUI_CORE* Core)
{
    (void)OverlayBlt(Text, Width, Height, Core->Screen, gScreenWidth, gScreenHeight, static_cast<INT32>(X),
                     static_cast<INT32>(Y), Background, nullptr, 0);
    (void)ExtractBlt(Text, Width, Height, Core->Screen, gScreenWidth, gScreenHeight, static_cast<INT32>(Y),
                     static_cast<INT32>(X));
    (void)ComposeScreen(Core, Text, X, Y, Width, Height);
}

// The box starts as the clean picture of its place, so that an older text disappears. A text wider than the box loses
// its left part; the system font gives none higher than the box.
VOID DrawBoxed(UINTN X, UINTN Y, const PIXEL* Text, UINT16 Width, UINT16 Height, const PIXEL* Background,
               GUI_CORE* Core)
{
    const TEMPORARY<PIXEL> Box(AllocateArray<PIXEL>(gBoxWidth * gCharacterHeight));
    if (!Box) {
        return;
    }
    const UINTN BoxHeight = Height < gCharacterHeight ? Height : gCharacterHeight;
    (void)ExtractBlt(Box.Data, gBoxWidth, gCharacterHeight, Core->Background, gScreenWidth, gScreenHeight,
                     static_cast<INT32>(Y), static_cast<INT32>(X));
    (void)OverlayBlt(Text, Width, Height, Box.Data, gBoxWidth, BoxHeight, static_cast<INT32>(gBoxWidth) - Width, 0,
                     Background, nullptr, 0);
    (void)PasteBlt(Box.Data, gBoxWidth, BoxHeight, X, Y, Core->Screen);
    (void)ComposeScreen(Core, Box.Data, X, Y, gBoxWidth, BoxHeight);
}

} // namespace

EFI_STATUS DrawString(UINTN X, UINTN Y, const CHAR16* String, UINT8 Mode, const PIXEL* Foreground,
                      const PIXEL* Background, GUI_CORE* Core)
{
    if (String == nullptr) {
        return EFI_SUCCESS;
    }
    if (Mode == DRAW_STRING_VIDEO) {
        return DrawStringDirect(X, Y, Foreground, Background, String);
    }
    if (Mode != DRAW_STRING_KEYED && Mode != DRAW_STRING_OPAQUE && Mode != DRAW_STRING_BOX) {
        return EFI_SUCCESS;
    }
    if (Mode != DRAW_STRING_OPAQUE && Background == nullptr) {
        return EFI_SUCCESS;
    }

    TEMPORARY<PIXEL> Text;
    UINT16 Width = 0;
    UINT16 Height = 0;
    const EFI_STATUS Status = StringToBlt(Foreground, Background, &Text.Data, &Width, &Height, String);
    if (EfiError(Status)) {
        return Status;
    }
    switch (Mode) {
    case DRAW_STRING_KEYED:
        DrawKeyed(X, Y, Text.Data, Width, Height, Background, Core);
        break;
    case DRAW_STRING_OPAQUE:
        (void)OverlayBlt(Text.Data, Width, Height, Core->Screen, gScreenWidth, gScreenHeight, static_cast<INT32>(X),
                         static_cast<INT32>(Y), nullptr, nullptr, 0);
        break;
    default:
        DrawBoxed(X, Y, Text.Data, Width, Height, Background, Core);
        break;
    }
    return Status;
}
