#include "platform/firmware/starter/Display.h"

#include "platform/board/BootScreen.h"
#include "platform/board/ConsoleDisplay.h"
#include "platform/board/TextService.h"
#include "platform/display/DisplayLayer.h"
#include "platform/firmware/BoardControl.h"
#include "platform/firmware/Report.h"
#include "platform/firmware/starter/Lookups.h"
#include "platform/firmware/starter/Modes.h"
#include "shell/contract/Services.h"
#include "uefi/GraphicsOutput.h"
#include "uefi/Hii.h"

namespace {

constexpr UINTN gPicturePixels = static_cast<UINTN>(BOOT_SCREEN_WIDTH) * BOOT_SCREEN_HEIGHT;

// The panel behind the text: as wide as the rows of a page, with a margin, in the lower half of the screen.
constexpr UINTN gMargin = 24;
constexpr UINTN gPanelWidth = gPageColumns * gCharacterWidth + 2 * gMargin;
constexpr UINTN gPanelX = (BOOT_SCREEN_WIDTH - gPanelWidth) / 2;
constexpr UINTN gPanelBottom = BOOT_SCREEN_HEIGHT - 40;
constexpr PIXEL gPanelPixel = {.Blue = 36, .Green = 26, .Red = 20, .Reserved = 0};
constexpr PIXEL gTextPixel = {.Blue = 236, .Green = 232, .Red = 228, .Reserved = 0};

EFI_SYSTEM_TABLE* gTable;
EFI_GRAPHICS_OUTPUT_PROTOCOL* gGraphics; // the firmware's
DISPLAY_LAYER* gLayer;                   // null: the console works on the firmware's display itself
EFI_EVENT gLayerTimer;
PIXEL* gPicture; // null until there is memory for it
bool gReady;     // the display is in the console's mode

// What the display offers, and which of it was chosen.
constexpr UINTN gMostOffers = 64;
MODE_OFFER gOffers[gMostOffers];
UINTN gOfferCount;
UINTN gOffer;
bool gPicked;       // by a person: holds until the display is closed
UINT32 gPickedMode; // the firmware's number of that mode
CHAR16 gModeText[32];

// How long single pixels may be held back, in units of 100 ns.
constexpr UINT64 gLayerPeriod = 100000;

// The display as it was found: whoever started the starter, a shell for one, writes on it again afterwards, in the places
// that its own mode has.
EFI_GRAPHICS_OUTPUT_PROTOCOL* gFoundGraphics; // null: none yet
UINT32 gFoundMode;
PANEL_SIZE gFoundSize;
BOOLEAN gFoundCursor;

// What the board's driver finds, to draw where the console draws.
CONSOLE_DISPLAY gConsoleDisplay;
EFI_HANDLE gConsoleDisplayHandle; // null: not installed

VOID ListModes()
{
    gOfferCount = 0;
    for (UINT32 Number = 0; Number < gGraphics->Mode->MaxMode && gOfferCount < gMostOffers; Number++) {
        UINTN Size = 0;
        EFI_GRAPHICS_OUTPUT_MODE_INFORMATION* Mode = nullptr;
        if (EfiError(gGraphics->QueryMode(gGraphics, Number, &Size, &Mode)) || Mode == nullptr) {
            continue;
        }
        gOfferCount += OfferMode(Number, Mode, &gOffers[gOfferCount]) ? 1 : 0;
        (void)gTable->BootServices->FreePool(Mode);
    }
}

// The identification data of the display that is used: on its own handle, or, where that has none, since it stands for all
// displays, the only ones there are. Null where it isn't known whose they are.
const EFI_EDID_ACTIVE_PROTOCOL* FindEdid()
{
    const EFI_BOOT_SERVICES* Boot = gTable->BootServices;
    UINTN Count = 0;
    EFI_HANDLE* Handles = nullptr;
    if (EfiError(Boot->LocateHandleBuffer(ByProtocol, &gEfiEdidActiveProtocolGuid, nullptr, &Count, &Handles))) {
        return nullptr;
    }
    const EFI_EDID_ACTIVE_PROTOCOL* Found = nullptr;
    for (UINTN Index = 0; Index < Count; Index++) {
        VOID* Graphics = nullptr;
        const bool Own = !EfiError(Boot->HandleProtocol(Handles[Index], &gEfiGraphicsOutputProtocolGuid, &Graphics)) &&
                         Graphics == gGraphics;
        VOID* Interface = nullptr;
        if ((Own || Count == 1) &&
            !EfiError(Boot->HandleProtocol(Handles[Index], &gEfiEdidActiveProtocolGuid, &Interface))) {
            Found = static_cast<const EFI_EDID_ACTIVE_PROTOCOL*>(Interface);
        }
    }
    (void)Boot->FreePool(Handles);
    return Found;
}

// The panel's own size: as it says itself, or else the mode that the firmware found good.
PANEL_SIZE NativeSize()
{
    const EFI_EDID_ACTIVE_PROTOCOL* Edid = FindEdid();
    const PANEL_SIZE Size = Edid != nullptr ? ReadNativeSize(Edid->Edid, Edid->SizeOfEdid) : PANEL_SIZE{};
    return Size.Width != 0 ? Size : gFoundSize;
}

VOID AppendNumber(CHAR16** At, UINT32 Number)
{
    CHAR16 Digits[10];
    UINTN Count = 0;
    do {
        Digits[Count++] = static_cast<CHAR16>(u'0' + Number % 10);
        Number /= 10;
    } while (Number != 0);
    while (Count > 0) {
        *(*At)++ = Digits[--Count];
    }
}

VOID DescribeOffer(const MODE_OFFER& Offer)
{
    CHAR16* At = gModeText;
    AppendNumber(&At, Offer.Width);
    for (const CHAR16* Text = u" by "; *Text != 0; Text++) {
        *At++ = *Text;
    }
    AppendNumber(&At, Offer.Height);
    *At = 0;
}

EFI_STATUS OnLayerTimer(EFI_EVENT, VOID*)
{
    FlushDisplayLayer(gLayer);
    return EFI_SUCCESS;
}

VOID CloseLayer()
{
    EFI_BOOT_SERVICES* Boot = gTable->BootServices;
    ReplaceLookup(&gEfiGraphicsOutputProtocolGuid, nullptr);
    ReplaceLookup(&gEfiHiiFontProtocolGuid, nullptr);
    if (gLayerTimer != nullptr) {
        (void)Boot->CloseEvent(gLayerTimer);
        gLayerTimer = nullptr;
    }
    if (gConsoleDisplayHandle != nullptr) {
        gConsoleDisplay.Graphics = gGraphics; // if it stays, the layer doesn't
        (void)Boot->UninstallProtocolInterface(gConsoleDisplayHandle, &gConsoleDisplayGuid, &gConsoleDisplay);
        gConsoleDisplayHandle = nullptr;
    }
    CloseDisplayLayer(gLayer);
    gLayer = nullptr;
}

VOID* AllocateForText(UINTN Size)
{
    VOID* Block = nullptr;
    if (EfiError(gTable->BootServices->AllocatePool(EfiBootServicesData, Size, &Block))) {
        return nullptr;
    }
    gTable->BootServices->SetMem(Block, Size, 0);
    return Block;
}

VOID FreeForText(VOID* Block) { (void)gTable->BootServices->FreePool(Block); }

EFI_STATUS StringToImage(const EFI_HII_FONT_PROTOCOL*, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                         const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Image, UINTN, UINTN,
                         EFI_HII_ROW_INFO** Rows, UINTN* RowCount, UINTN*)
{
    return RenderText({.Allocate = AllocateForText, .Free = FreeForText}, Flags, String, Information, Image, Rows,
                      RowCount);
}

constexpr EFI_HII_FONT_PROTOCOL gOwnFont = {
    .StringToImage = StringToImage, .StringIdToImage = nullptr, .GetGlyph = nullptr, .GetFontInfo = nullptr};

// The firmware's font, or our own where it has none that shows a degree sign.
const EFI_HII_FONT_PROTOCOL* ChooseFont()
{
    VOID* Interface = nullptr;
    const bool Found = !EfiError(gTable->BootServices->LocateProtocol(&gEfiHiiFontProtocolGuid, nullptr, &Interface));
    const auto* Font = static_cast<const EFI_HII_FONT_PROTOCOL*>(Interface);
    return Found && ShowsDegreeSign(Font, FreeForText) ? Font : &gOwnFont;
}

// Puts the layer between where the mode needs it, and our font where the firmware's won't do.
DISPLAY_RESULT OpenLayer()
{
    EFI_BOOT_SERVICES* Boot = gTable->BootServices;
    if (NeedsDisplayLayer(gGraphics->Mode) && EfiError(OpenDisplayLayer(Boot, gGraphics, &gLayer))) {
        return DISPLAY_NO_MEMORY;
    }
    const EFI_HII_FONT_PROTOCOL* Font = ChooseFont();
    Report(Font == &gOwnFont ? "ventara: font of our own\n" : "ventara: font of the firmware\n");
    if (gLayer == nullptr && Font != &gOwnFont) {
        return DISPLAY_READY;
    }
    const PLACEMENT Place = gLayer != nullptr ? gLayer->Place : PlacePicture(gPictureWidth, gPictureHeight);
    gConsoleDisplay = {.Graphics = gLayer != nullptr ? &gLayer->Graphics : gGraphics,
                       .Font = Font,
                       .PanelWidth = Place.PanelWidth,
                       .PanelHeight = Place.PanelHeight,
                       .X = Place.X,
                       .Y = Place.Y,
                       .Width = Place.Width,
                       .Height = Place.Height};
    // Without it a message box isn't scaled and has the firmware's letters.
    (void)Boot->InstallProtocolInterface(&gConsoleDisplayHandle, &gConsoleDisplayGuid, EFI_NATIVE_INTERFACE,
                                         &gConsoleDisplay);
    if (Font == &gOwnFont) {
        ReplaceLookup(&gEfiHiiFontProtocolGuid, const_cast<EFI_HII_FONT_PROTOCOL*>(Font));
    }
    if (gLayer == nullptr) {
        return DISPLAY_READY;
    }
    ReplaceLookup(&gEfiGraphicsOutputProtocolGuid, &gLayer->Graphics);
    // Without a timer a pixel comes late.
    if (!EfiError(
            Boot->CreateEvent(EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnLayerTimer, nullptr, &gLayerTimer))) {
        (void)Boot->SetTimer(gLayerTimer, TimerPeriodic, gLayerPeriod);
    } else {
        gLayerTimer = nullptr;
    }
    return DISPLAY_READY;
}

VOID SendPicture()
{
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Shown = gLayer != nullptr ? &gLayer->Graphics : gGraphics;
    (void)Shown->Blt(Shown, gPicture, EfiBltBufferToVideo, 0, 0, 0, 0, BOOT_SCREEN_WIDTH, BOOT_SCREEN_HEIGHT, 0);
}

// A board's own services draw on the firmware's display and know of no layer: only a mode that needs none shows the whole
// console.
bool IsBoardOfFirmware()
{
    EFI_BOOT_SERVICES* Boot = gTable->BootServices;
    VOID* Interface = nullptr;
    return !EfiError(Boot->LocateProtocol(&gHwServiceProtocolGuid, nullptr, &Interface)) &&
           EfiError(Boot->LocateProtocol(&gBoardControlGuid, nullptr, &Interface));
}

// The offer that a person chose; the best one where nobody has, or where it is no longer there.
UINTN ChooseOffer()
{
    for (UINTN Index = 0; gPicked && Index < gOfferCount; Index++) {
        if (gOffers[Index].Number == gPickedMode) {
            return Index;
        }
    }
    return ChooseMode(gOffers, gOfferCount, NativeSize(), !IsBoardOfFirmware());
}

// Sets the chosen mode and shows the boot screen in it.
DISPLAY_RESULT EnterMode()
{
    CloseLayer();
    gReady = false;
    if (gOffer >= gOfferCount || EfiError(gGraphics->SetMode(gGraphics, gOffers[gOffer].Number))) {
        return DISPLAY_NO_MODE;
    }
    DescribeOffer(gOffers[gOffer]);
    const DISPLAY_RESULT Result = OpenLayer();
    if (Result != DISPLAY_READY) {
        return Result;
    }
    if (gPicture == nullptr) {
        VOID* Block = nullptr;
        if (EfiError(gTable->BootServices->AllocatePool(EfiBootServicesData, gPicturePixels * sizeof(PIXEL), &Block))) {
            return DISPLAY_NO_MEMORY;
        }
        gPicture = static_cast<PIXEL*>(Block);
    }
    gReady = true;
    Report("ventara: display ");
    ReportDecimal(gOffers[gOffer].Width);
    Report("x");
    ReportDecimal(gOffers[gOffer].Height);
    Report(gLayer != nullptr ? ", by a layer\n" : "\n");
    ShowBootScreen();
    return DISPLAY_READY;
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
    gOfferCount = 0;
    EFI_BOOT_SERVICES* Boot = SystemTable->BootServices;
    VOID* Interface = nullptr;
    if (EfiError(Boot->LocateProtocol(&gEfiGraphicsOutputProtocolGuid, nullptr, &Interface))) {
        return DISPLAY_NO_GRAPHICS;
    }
    gGraphics = static_cast<EFI_GRAPHICS_OUTPUT_PROTOCOL*>(Interface);
    if (gFoundGraphics == nullptr) {
        gFoundGraphics = gGraphics;
        gFoundMode = gGraphics->Mode->Mode;
        gFoundSize = {gGraphics->Mode->Info->HorizontalResolution, gGraphics->Mode->Info->VerticalResolution};
        gFoundCursor = SystemTable->ConOut != nullptr ? SystemTable->ConOut->Mode->CursorVisible : BOOLEAN{0};
    }
    if (SystemTable->ConOut != nullptr) {
        (void)SystemTable->ConOut->EnableCursor(SystemTable->ConOut, 0);
    }
    ListModes();
    for (;;) {
        gOffer = ChooseOffer();
        const DISPLAY_RESULT Result = EnterMode();
        if (Result != DISPLAY_NO_MODE || gOfferCount == 0) {
            return Result;
        }
        // Offered, and can't be set: the best of the others.
        gOffers[gOffer] = gOffers[--gOfferCount];
    }
}

DISPLAY_RESULT NextDisplayMode()
{
    if (gOfferCount == 0) {
        return DISPLAY_NO_MODE;
    }
    // A mode that is offered and can't be set is passed over.
    for (UINTN Tries = 0; Tries < gOfferCount; Tries++) {
        gOffer = (gOffer + 1) % gOfferCount;
        const DISPLAY_RESULT Result = EnterMode();
        if (Result != DISPLAY_NO_MODE) {
            gPicked = true;
            gPickedMode = gOffers[gOffer].Number;
            return Result;
        }
    }
    return DISPLAY_NO_MODE;
}

const CHAR16* DescribeDisplayMode() { return gModeText; }

VOID ShowBootScreen()
{
    if (gReady) {
        PaintBootScreen(gPicture);
        SendPicture();
    }
}

VOID ShowPage(const PAGE* Page)
{
    if (!gReady) {
        PrintPage(Page);
        return;
    }
    PaintBootScreen(gPicture);
    UINTN Height = Page->RowCount * gCharacterHeight + 2 * gMargin;
    UINTN Top = gPanelBottom - Height;
    for (UINTN Y = Top; Y < gPanelBottom; Y++) {
        for (UINTN X = gPanelX; X < gPanelX + gPanelWidth; X++) {
            gPicture[Y * BOOT_SCREEN_WIDTH + X] = gPanelPixel;
        }
    }
    for (UINTN Row = 0; Row < Page->RowCount; Row++) {
        DrawText(gPicture, BOOT_SCREEN_WIDTH, BOOT_SCREEN_HEIGHT, gPanelX + gMargin,
                 Top + gMargin + Row * gCharacterHeight, Page->Rows[Row], gTextPixel, gPanelPixel);
    }
    SendPicture();
}

VOID CloseDisplay()
{
    gReady = false;
    gPicked = false;
    gOfferCount = 0;
    CloseLayer();
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
