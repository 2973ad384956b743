#include "platform/firmware/starter/Display.h"

#include "platform/board/BootScreen.h"
#include "platform/firmware/Report.h"
#include "uefi/GraphicsOutput.h"
#include "uefi/Hii.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

constexpr UINTN gPicturePixels = static_cast<UINTN>(BOOT_SCREEN_WIDTH) * BOOT_SCREEN_HEIGHT;

// The panel behind the text: as wide as the rows of a page, with a margin, in the lower half of the screen.
constexpr UINTN gCharacterWidth = 8;
constexpr UINTN gCharacterHeight = 19;
constexpr UINTN gMargin = 24;
constexpr UINTN gPanelWidth = gPageColumns * gCharacterWidth + 2 * gMargin;
constexpr UINTN gPanelX = (BOOT_SCREEN_WIDTH - gPanelWidth) / 2;
constexpr UINTN gPanelBottom = BOOT_SCREEN_HEIGHT - 40;
constexpr PIXEL gPanelPixel = {.Blue = 36, .Green = 26, .Red = 20, .Reserved = 0};
constexpr PIXEL gTextPixel = {.Blue = 236, .Green = 232, .Red = 228, .Reserved = 0};

EFI_SYSTEM_TABLE* gTable;
EFI_GRAPHICS_OUTPUT_PROTOCOL* gGraphics;
PIXEL* gPicture; // null until there is memory for it
bool gReady;     // the display is in the console's mode

// The display as it was found: whoever started the starter, a shell for one, writes on it again afterwards, in the places
// that its own mode has.
EFI_GRAPHICS_OUTPUT_PROTOCOL* gFoundGraphics; // null: none yet
UINT32 gFoundMode;
BOOLEAN gFoundCursor;

// Whether the picture lies in memory with four bytes a pixel. By masks a pixel has as many bytes as the highest bit of
// any of them asks for.
bool HasWidePixels(const EFI_GRAPHICS_OUTPUT_MODE_INFORMATION* Mode)
{
    const EFI_PIXEL_BITMASK& Masks = Mode->PixelInformation;
    switch (Mode->PixelFormat) {
    case PixelRedGreenBlueReserved8BitPerColor:
    case PixelBlueGreenRedReserved8BitPerColor:
        return true;
    case PixelBitMask:
        return ((Masks.RedMask | Masks.GreenMask | Masks.BlueMask | Masks.ReservedMask) & 0xff000000) != 0;
    case PixelBltOnly:
        break;
    }
    return false;
}

// How well a mode serves, 0 for not at all. The console copies the frame buffer as it lies in memory, so the pixels
// should lie there as it reads them: four bytes each, rows back to back, blue first.
UINTN RateMode(const EFI_GRAPHICS_OUTPUT_MODE_INFORMATION* Mode)
{
    if (Mode->HorizontalResolution != BOOT_SCREEN_WIDTH || Mode->VerticalResolution != BOOT_SCREEN_HEIGHT) {
        return 0;
    }
    UINTN Rating = 1;
    if (Mode->PixelFormat == PixelBlueGreenRedReserved8BitPerColor) {
        Rating += 2;
    } else if (Mode->PixelFormat == PixelRedGreenBlueReserved8BitPerColor) {
        Rating += 1;
    }
    if (Mode->PixelsPerScanLine == BOOT_SCREEN_WIDTH) {
        Rating += 4;
    }
    if (HasWidePixels(Mode)) {
        Rating += 8;
    }
    return Rating;
}

bool ChooseMode()
{
    UINTN BestRating = 0;
    UINT32 BestMode = 0;
    for (UINT32 Number = 0; Number < gGraphics->Mode->MaxMode; Number++) {
        UINTN Size = 0;
        EFI_GRAPHICS_OUTPUT_MODE_INFORMATION* Mode = nullptr;
        if (EfiError(gGraphics->QueryMode(gGraphics, Number, &Size, &Mode)) || Mode == nullptr) {
            continue;
        }
        UINTN Rating = RateMode(Mode);
        (void)gTable->BootServices->FreePool(Mode);
        if (Rating > BestRating) {
            BestRating = Rating;
            BestMode = Number;
        }
    }
    return BestRating != 0 && !EfiError(gGraphics->SetMode(gGraphics, BestMode));
}

VOID SendPicture()
{
    (void)gGraphics->Blt(gGraphics, gPicture, EfiBltBufferToVideo, 0, 0, 0, 0, BOOT_SCREEN_WIDTH, BOOT_SCREEN_HEIGHT, 0);
}

VOID DrawRow(EFI_HII_FONT_PROTOCOL* Font, const CHAR16* Text, UINTN X, UINTN Y)
{
    EFI_FONT_DISPLAY_INFO Info = {
        .ForegroundColor = gTextPixel,
        .BackgroundColor = gPanelPixel,
        .FontInfoMask = EFI_FONT_INFO_SYS_FONT | EFI_FONT_INFO_SYS_SIZE | EFI_FONT_INFO_SYS_STYLE,
        .FontInfo = {.FontStyle = 0, .FontSize = 0, .FontName = {0}},
    };
    EFI_IMAGE_OUTPUT Output = {
        .Width = BOOT_SCREEN_WIDTH, .Height = BOOT_SCREEN_HEIGHT, .Image = {.Bitmap = gPicture}};
    EFI_IMAGE_OUTPUT* Target = &Output;
    (void)Font->StringToImage(Font, EFI_HII_IGNORE_IF_NO_GLYPH | EFI_HII_OUT_FLAG_CLIP, Text, &Info, &Target, X, Y,
                              nullptr, nullptr, nullptr);
}

VOID PrintPage(const PAGE* Page)
{
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Console = gTable->ConOut;
    if (Console == nullptr) {
        return;
    }
    (void)Console->ClearScreen(Console);
    for (UINTN Row = 0; Row < Page->RowCount; Row++) {
        (void)Console->OutputString(Console, Page->Rows[Row]);
        (void)Console->OutputString(Console, u"\r\n");
    }
}

}

DISPLAY_RESULT OpenDisplay(EFI_SYSTEM_TABLE* SystemTable)
{
    gTable = SystemTable;
    gReady = false;
    EFI_BOOT_SERVICES* Boot = SystemTable->BootServices;
    VOID* Interface = nullptr;
    if (EfiError(Boot->LocateProtocol(&gEfiGraphicsOutputProtocolGuid, nullptr, &Interface))) {
        return DISPLAY_NO_GRAPHICS;
    }
    gGraphics = static_cast<EFI_GRAPHICS_OUTPUT_PROTOCOL*>(Interface);
    if (gFoundGraphics == nullptr) {
        gFoundGraphics = gGraphics;
        gFoundMode = gGraphics->Mode->Mode;
        gFoundCursor = SystemTable->ConOut != nullptr ? SystemTable->ConOut->Mode->CursorVisible : BOOLEAN{0};
    }
    if (SystemTable->ConOut != nullptr) {
        (void)SystemTable->ConOut->EnableCursor(SystemTable->ConOut, 0);
    }
    if (!ChooseMode()) {
        return DISPLAY_NO_MODE;
    }
    const EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE* Mode = gGraphics->Mode;
    if (Mode->FrameBufferBase == 0 || Mode->Info->PixelsPerScanLine != BOOT_SCREEN_WIDTH || !HasWidePixels(Mode->Info)) {
        return DISPLAY_NO_FRAME_BUFFER;
    }
    if (gPicture == nullptr) {
        VOID* Block = nullptr;
        if (EfiError(Boot->AllocatePool(EfiBootServicesData, gPicturePixels * sizeof(PIXEL), &Block))) {
            return DISPLAY_NO_MEMORY;
        }
        gPicture = static_cast<PIXEL*>(Block);
    }
    gReady = true;
    ShowBootScreen();
    return DISPLAY_READY;
}

VOID ShowBootScreen()
{
    PaintBootScreen(gPicture);
    SendPicture();
}

VOID ShowPage(const PAGE* Page)
{
    VOID* Interface = nullptr;
    if (!gReady ||
        EfiError(gTable->BootServices->LocateProtocol(&gEfiHiiFontProtocolGuid, nullptr, &Interface))) {
        PrintPage(Page);
        return;
    }
    auto* Font = static_cast<EFI_HII_FONT_PROTOCOL*>(Interface);
    PaintBootScreen(gPicture);
    UINTN Height = Page->RowCount * gCharacterHeight + 2 * gMargin;
    UINTN Top = gPanelBottom - Height;
    for (UINTN Y = Top; Y < gPanelBottom; Y++) {
        for (UINTN X = gPanelX; X < gPanelX + gPanelWidth; X++) {
            gPicture[Y * BOOT_SCREEN_WIDTH + X] = gPanelPixel;
        }
    }
    for (UINTN Row = 0; Row < Page->RowCount; Row++) {
        if (Page->Rows[Row][0] != 0) {
            DrawRow(Font, Page->Rows[Row], gPanelX + gMargin, Top + gMargin + Row * gCharacterHeight);
        }
    }
    SendPicture();
}

VOID CloseDisplay()
{
    gReady = false;
    if (gPicture != nullptr) {
        (void)gTable->BootServices->FreePool(gPicture);
        gPicture = nullptr;
    }
    const bool WasOpen = gFoundGraphics != nullptr;
    if (WasOpen) {
        (void)gFoundGraphics->SetMode(gFoundGraphics, gFoundMode);
        gFoundGraphics = nullptr;
    }
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* Console = gTable->ConOut;
    if (Console == nullptr) {
        return;
    }
    (void)Console->ClearScreen(Console);
    if (WasOpen) {
        (void)Console->EnableCursor(Console, gFoundCursor);
    }
}
