#include "monitor/InformationPages.h"

#include "graphics/GraphicProtocol.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"

namespace {

// A line without an item is always the text given here; the others take it when the board has none.
constexpr UINT8 gNoItem = 0;

struct PAGE_TEXT {
    UINT8 Item; // ITEM_STRING
    const CHAR16* Fallback;
};

constexpr PAGE_TEXT gSpacer = {gNoItem, u"        \n          "};
constexpr PAGE_TEXT gButtonText = {STRING_OK, u"OK"};

constexpr PAGE_TEXT gAboutLines[] = {
    {STRING_ABOUT_MAKER, u"Ventara, made by Kestrin"},
    {STRING_ABOUT_RIGHTS, u"            All rights reserved."},
    {STRING_ABOUT_ADDRESS, u"            https://www.kestrin.example"},
};

constexpr PAGE_TEXT gHelpLines[] = {
    {STRING_HELP_TEXT, u"You can set CPU or System target temperature \nand set Fan duty cycle."},
    gSpacer,
    {STRING_HELP_ESCAPE, u"ESC    : Exit"},
    {STRING_HELP_FULL_SPEED, u"(F)key : All full speed."},
    {STRING_HELP_DEFAULT, u"(D)key : All set default."},
    {STRING_HELP_CANCEL, u"(C)key : All set cancel."},
    gSpacer,
};

constexpr UINT16 gMostLines = sizeof(gHelpLines) / sizeof(gHelpLines[0]);

struct INFORMATION_PAGE {
    UINT32 X;
    UINT32 Y;
    const PAGE_TEXT* Lines;
    UINT16 LineCount;
};

template <UINTN Count> constexpr INFORMATION_PAGE PageAt(UINT32 X, UINT32 Y, const PAGE_TEXT (&Lines)[Count])
{
    static_assert(Count <= gMostLines);
    return {X, Y, Lines, Count};
}

constexpr INFORMATION_PAGE gAboutPage = PageAt(300, 240, gAboutLines);
constexpr INFORMATION_PAGE gHelpPage = PageAt(300, 159, gHelpLines);

constexpr UINT32 gWidthAsked = 295;
constexpr UINT32 gHeightAsked = 137;

constexpr UINT16 gFocusAtFirst = 1;
constexpr UINT16 gModeAtFirst = 2;

constexpr UINTN gCloseDelay = 300000; // microseconds

// The page's strings as the service takes them: from the board, or ours.
struct PAGE_STRINGS {
    CHAR16* Lines[gMostLines];
    CHAR16* Button;
    CHAR16* FromPool[gMostLines + 1];
    UINTN FromPoolCount;
};

CHAR16* FetchString(PAGE_STRINGS* Strings, const PAGE_TEXT& Text)
{
    CHAR16* Fetched = Text.Item == gNoItem ? nullptr : gHwService->GetItemString(gHwService, Text.Item);
    if (Fetched == nullptr) {
        return const_cast<CHAR16*>(Text.Fallback); // the service only reads it
    }
    Strings->FromPool[Strings->FromPoolCount++] = Fetched;
    return Fetched;
}

VOID FetchStrings(const INFORMATION_PAGE& Page, PAGE_STRINGS* Strings)
{
    for (UINT16 Line = 0; Line < Page.LineCount; Line++) {
        Strings->Lines[Line] = FetchString(Strings, Page.Lines[Line]);
    }
    Strings->Button = FetchString(Strings, gButtonText);
}

VOID FreeStrings(PAGE_STRINGS* Strings)
{
    for (UINTN Index = 0; Index < Strings->FromPoolCount; Index++) {
        FreePool(Strings->FromPool[Index]);
    }
}

// Reads a rectangle of the display. A firmware that can't read its display leaves anything in the buffer, and that would
// stay on the screen for good: then it is what Screen holds there.
VOID ReadRect(const GUI_RECT& Rect, PIXEL* Buffer)
{
    if (EfiError(gGraphicsOutput->Blt(gGraphicsOutput, Buffer, EfiBltVideoToBltBuffer, Rect.X, Rect.Y, 0, 0, Rect.Width,
                                      Rect.Height, Rect.Width * sizeof(PIXEL)))) {
        (void)ExtractBlt(Buffer, Rect.Width, Rect.Height, gGuiCore->Screen, gScreenWidth, gScreenHeight,
                         static_cast<INT32>(Rect.Y), static_cast<INT32>(Rect.X));
    }
}

VOID WriteRect(const GUI_RECT& Rect, PIXEL* Buffer)
{
    (void)gGraphicsOutput->Blt(gGraphicsOutput, Buffer, EfiBltBufferToVideo, 0, 0, Rect.X, Rect.Y, Rect.Width,
                               Rect.Height, Rect.Width * sizeof(PIXEL));
}

// One turn of the page's own loop. False when the page is to be closed. It only polls.
bool RunPageTurn(MESSAGE_BOX* Box)
{
    bool Open = true;
    (void)gCursorService->SetCursorLimits(gScreenWidth, gScreenHeight);
    (void)gCursorService->GetCursorState(&gGuiCore->PointerX, &gGuiCore->PointerY, &gGuiCore->PointerZ,
                                         &gGuiCore->LeftButton, &gGuiCore->RightButton);
    (void)gDrawPrimitives->UpdateMessageBox(Box, static_cast<UINTN>(gGuiCore->PointerX),
                                            static_cast<UINTN>(gGuiCore->PointerY));
    if (Box->ButtonFocus == 1 && gGuiCore->LeftButton == 1) {
        Open = false;
    }
    EFI_INPUT_KEY Key = {};
    (void)gST->ConIn->ReadKeyStroke(gST->ConIn, &Key);
    if (Key.ScanCode == SCAN_ESC || Key.UnicodeChar == CHAR_CARRIAGE_RETURN) {
        Open = false;
    }
    if (gGuiCore->RightButton == 1) {
        Open = false;
    }
    (void)ComposeScreen(gGuiCore, nullptr, 0, 0, 0, 0);
    return Open;
}

VOID RunPage(MESSAGE_BOX* Box, const GUI_RECT& Rect)
{
    const TEMPORARY<PIXEL> Under(static_cast<PIXEL*>(AllocatePool(Rect.BufferSize)));
    const TEMPORARY<PIXEL> Shown(static_cast<PIXEL*>(AllocatePool(Rect.BufferSize)));
    const TEMPORARY<MESSAGE_BOX> Copy(AllocateRecord<MESSAGE_BOX>());
    if (!Under || !Shown || !Copy) {
        // Without what is under the box the screen couldn't be given back.
        return;
    }

    ReadRect(Rect, Under.Data);
    Box->ButtonFocus = gFocusAtFirst;
    Box->ButtonMode = gModeAtFirst;
    (void)gDrawPrimitives->DrawMessageBox(Box);
    // The box becomes part of Screen, so that the pointer can move over it.
    ReadRect(Rect, Shown.Data);
    (void)PasteBlt(Shown.Data, Rect.Width, Rect.Height, Rect.X, Rect.Y, gGuiCore->Screen);
    gGuiCore->MouseState = NOEVENT;
    CopyMem(Copy.Data, Box, sizeof(MESSAGE_BOX));

    while (RunPageTurn(Copy.Data)) {
    }

    // The main loop must not take the right button that closed the page for its own.
    gGuiCore->RightButton = 0;
    gGuiCore->MouseState = NOEVENT;
    (void)RepaintBlt(Under.Data, Rect);
    WriteRect(Rect, Under.Data);
    (void)gBS->Stall(gCloseDelay);
}

// The page that an action asked for; null: none.
const INFORMATION_PAGE* gWantedPage = nullptr;

VOID ShowPage(const INFORMATION_PAGE& Page)
{
    PAGE_STRINGS Strings = {};
    FetchStrings(Page, &Strings);

    MESSAGE_BOX Box = {};
    if (EfiError(gDrawPrimitives->CreateMessageBox(&Box, Page.X, Page.Y, gWidthAsked, gHeightAsked, Page.LineCount,
                                                   Strings.Lines, 1, &Strings.Button))) {
        Box = {}; // no box, no page
    }
    // The service settles the size; what of it lies off the screen isn't ours to keep.
    const GUI_RECT Rect = PictureRect(Page.X, Page.Y, Smaller(Box.BoxWidth, gScreenWidth - Page.X),
                                      Smaller(Box.BoxHeight, gScreenHeight - Page.Y));
    if (Rect.BufferSize != 0) {
        RunPage(&Box, Rect);
    }
    FreeStrings(&Strings);
}

} // namespace

EFI_STATUS ShowAboutPage(EFI_EVENT, VOID*)
{
    gWantedPage = &gAboutPage;
    return EFI_SUCCESS;
}

EFI_STATUS ShowHelpPage(EFI_EVENT, VOID*)
{
    gWantedPage = &gHelpPage;
    return EFI_SUCCESS;
}

VOID RunWantedPage()
{
    if (gWantedPage != nullptr) {
        const INFORMATION_PAGE& Page = *gWantedPage;
        gWantedPage = nullptr;
        ShowPage(Page);
    }
}
