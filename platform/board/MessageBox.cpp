#include "platform/board/MessageBox.h"

#include "platform/board/ConsoleDisplay.h"
#include "platform/board/TabStops.h"
#include "shell/contract/Screen.h"
#include "uefi/Hii.h"

namespace {

// Characters of the East Asian scripts take two cells.
constexpr UINTN gCellWidth = gCharacterWidth;
constexpr UINTN gCellHeight = gCharacterHeight;

constexpr UINTN gMarginX = 20; // between the box's edge and its text
constexpr UINTN gMarginTop = 16;
constexpr UINTN gMarginBottom = 14; // below the button
constexpr UINTN gButtonGap = 12;    // between the last line and the button
constexpr UINTN gButtonHeight = 27;
constexpr UINTN gButtonMarginX = 20; // between the button's edge and its text
constexpr UINTN gButtonMinimumWidth = 88;
constexpr UINTN gOutline = 2;

constexpr PIXEL gPanel = {.Blue = 0x24, .Green = 0x24, .Red = 0x24, .Reserved = 0};
// A dark rim parts the box from what it lies on; inside it runs the cyan of the panel that is open, which the box is now.
constexpr PIXEL gRim = {.Blue = 0x0A, .Green = 0x0A, .Red = 0x0A, .Reserved = 0};
constexpr PIXEL gBorder = {.Blue = 0xC7, .Green = 0xC3, .Red = 0x3E, .Reserved = 0};
constexpr PIXEL gText = {.Blue = 0xC8, .Green = 0xC8, .Red = 0xC8, .Reserved = 0};
constexpr PIXEL gButtonFill = {.Blue = 0x04, .Green = 0x04, .Red = 0x04, .Reserved = 0};
constexpr PIXEL gButtonRest = {.Blue = 0x43, .Green = 0x40, .Red = 0x3C, .Reserved = 0};
constexpr PIXEL gButtonHover = {.Blue = 0xF5, .Green = 0xF4, .Red = 0xF2, .Reserved = 0};

// A row of the screen holds no more characters than this, so longer ones are cut.
constexpr UINTN gRowCapacity = gScreenWidth / gCellWidth;

// MESSAGE_BOX as this unit reads it.
struct BOX_STATE {
    CHAR16** Lines;
    UINT32 BoxWidth;
    UINT32 BoxHeight;
    CHAR16* ButtonText; // null: no button
    UINT16 X;
    UINT16 Y;
    UINT16 LineCount;
    UINT16 ButtonX; // on the screen, as all places here
    UINT16 ButtonY;
    UINT16 ButtonWidth;
    UINT16 ButtonHeight;
    UINT16 LastX; // where the pointer was at the last update
    UINT16 LastY;
    UINT8 Hover; // the look on the display
    UINT8 Moved; // the pointer had moved at the last update
    UINT8 Unused44[22];
    UINT16 ButtonFocus;
    UINT16 ButtonMode;
    UINT8 Unused70[2];
};
static_assert(sizeof(BOX_STATE) == sizeof(MESSAGE_BOX));
static_assert(offsetof(BOX_STATE, BoxWidth) == offsetof(MESSAGE_BOX, BoxWidth));
static_assert(offsetof(BOX_STATE, BoxHeight) == offsetof(MESSAGE_BOX, BoxHeight));
static_assert(offsetof(BOX_STATE, ButtonFocus) == offsetof(MESSAGE_BOX, ButtonFocus));
static_assert(offsetof(BOX_STATE, ButtonMode) == offsetof(MESSAGE_BOX, ButtonMode));

EFI_BOOT_SERVICES* gServices;

template <typename T> T* LocateService(const EFI_GUID& Guid)
{
    VOID* Interface = nullptr;
    if (gServices == nullptr || EfiError(gServices->LocateProtocol(&Guid, nullptr, &Interface))) {
        return nullptr;
    }
    return static_cast<T*>(Interface);
}

// Where the console draws, and with which font.
EFI_GRAPHICS_OUTPUT_PROTOCOL* LocateDisplay()
{
    const auto* Layer = LocateService<CONSOLE_DISPLAY>(gConsoleDisplayGuid);
    return Layer != nullptr ? Layer->Graphics
                            : LocateService<EFI_GRAPHICS_OUTPUT_PROTOCOL>(gEfiGraphicsOutputProtocolGuid);
}

const EFI_HII_FONT_PROTOCOL* LocateFont()
{
    const auto* Layer = LocateService<CONSOLE_DISPLAY>(gConsoleDisplayGuid);
    return Layer != nullptr ? Layer->Font : LocateService<EFI_HII_FONT_PROTOCOL>(gEfiHiiFontProtocolGuid);
}

bool IsWide(CHAR16 Char)
{
    return (Char >= 0x1100 && Char <= 0x115F) || (Char >= 0x2E80 && Char <= 0xD7A3) ||
           (Char >= 0xF900 && Char <= 0xFAFF) || (Char >= 0xFF00 && Char <= 0xFF60);
}

// One row of a line: up to the line feed or the end.
struct TEXT_ROW {
    const CHAR16* Text;
    UINTN Count;
    UINTN Width; // pixels
    bool Blank;
};

// Takes the next row off *Text, which becomes null behind the last one.
TEXT_ROW NextRow(const CHAR16** Text)
{
    TEXT_ROW Row = {.Text = *Text, .Count = 0, .Width = 0, .Blank = true};
    const CHAR16* Char = *Text;
    for (; *Char != 0 && *Char != u'\n'; Char++) {
        Row.Count++;
        Row.Width += IsWide(*Char) ? 2 * gCellWidth : gCellWidth;
        Row.Blank = Row.Blank && *Char == u' ';
    }
    *Text = *Char == 0 ? nullptr : Char + 1;
    return Row;
}

struct TEXT_SIZE {
    UINTN Rows;
    UINTN Width;
};

VOID AddTextSize(TEXT_SIZE* Size, const CHAR16* Text)
{
    for (const CHAR16* Rest = Text; Rest != nullptr;) {
        const TEXT_ROW Row = NextRow(&Rest);
        Size->Rows++;
        Size->Width = Larger<UINTN>(Size->Width, Row.Width);
    }
}

const CHAR16* TextOrEmpty(const CHAR16* Text) { return Text == nullptr ? u"" : Text; }

// The button lies in the middle, above the lower margin. In a box too small for it, it is as large as the box allows.
VOID PlaceButton(BOX_STATE* State)
{
    if (State->ButtonText == nullptr) {
        return;
    }
    TEXT_SIZE Size = {};
    AddTextSize(&Size, State->ButtonText);
    const UINTN Width =
        Smaller<UINTN>(Larger<UINTN>(Size.Width + 2 * gButtonMarginX, gButtonMinimumWidth), State->BoxWidth);
    const UINTN Height = Smaller<UINTN>(gButtonHeight, State->BoxHeight);
    const UINTN Below = Smaller<UINTN>(gMarginBottom, State->BoxHeight - Height);
    State->ButtonWidth = static_cast<UINT16>(Width);
    State->ButtonHeight = static_cast<UINT16>(Height);
    State->ButtonX = static_cast<UINT16>(State->X + (State->BoxWidth - Width) / 2);
    State->ButtonY = static_cast<UINT16>(State->Y + State->BoxHeight - Height - Below);
}

VOID Fill(EFI_GRAPHICS_OUTPUT_PROTOCOL* Display, const PIXEL& Color, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    if (Width == 0 || Height == 0) {
        return;
    }
    PIXEL Pixel = Color;
    (void)Display->Blt(Display, &Pixel, EfiBltVideoFill, 0, 0, X, Y, Width, Height, 0);
}

// Four bars inside the rectangle.
VOID DrawOutline(EFI_GRAPHICS_OUTPUT_PROTOCOL* Display, const PIXEL& Color, UINTN X, UINTN Y, UINTN Width, UINTN Height,
                 UINTN Thickness)
{
    if (Width < 2 * Thickness || Height < 2 * Thickness) {
        Fill(Display, Color, X, Y, Width, Height);
        return;
    }
    Fill(Display, Color, X, Y, Width, Thickness);
    Fill(Display, Color, X, Y + Height - Thickness, Width, Thickness);
    Fill(Display, Color, X, Y + Thickness, Thickness, Height - 2 * Thickness);
    Fill(Display, Color, X + Width - Thickness, Y + Thickness, Thickness, Height - 2 * Thickness);
}

VOID DrawButtonOutline(EFI_GRAPHICS_OUTPUT_PROTOCOL* Display, const BOX_STATE& State)
{
    DrawOutline(Display, State.Hover != 0 ? gButtonHover : gButtonRest, State.ButtonX, State.ButtonY, State.ButtonWidth,
                State.ButtonHeight, gOutline);
}

// Draws one row with its left upper corner at (X, Y), cut to Width by Height; nothing where the font has no picture.
VOID DrawRow(EFI_GRAPHICS_OUTPUT_PROTOCOL* Display, const TEXT_ROW& Row, const PIXEL& Background, UINTN X, UINTN Y,
             UINTN Width, UINTN Height)
{
    const EFI_HII_FONT_PROTOCOL* Font = LocateFont();
    if (Font == nullptr || Row.Blank || Width == 0 || Height == 0) {
        return;
    }
    CHAR16 Text[gRowCapacity + 1];
    const UINTN Count = Smaller<UINTN>(Row.Count, gRowCapacity);
    for (UINTN Index = 0; Index < Count; Index++) {
        Text[Index] = Row.Text[Index];
    }
    Text[Count] = 0;

    const EFI_FONT_DISPLAY_INFO Info = {
        .ForegroundColor = gText,
        .BackgroundColor = Background,
        .FontInfoMask = EFI_FONT_INFO_SYS_FONT | EFI_FONT_INFO_SYS_SIZE | EFI_FONT_INFO_SYS_STYLE,
        .FontInfo = {},
    };
    EFI_IMAGE_OUTPUT* Image = nullptr;
    EFI_HII_ROW_INFO* Rows = nullptr;
    UINTN RowCount = 0;
    const EFI_STATUS Status = Font->StringToImage(Font, EFI_HII_IGNORE_IF_NO_GLYPH | EFI_HII_IGNORE_LINE_BREAK, Text,
                                                  &Info, &Image, 0, 0, &Rows, &RowCount, nullptr);
    if (!EfiError(Status) && Image != nullptr && Image->Image.Bitmap != nullptr) {
        // The firmware's picture may be wider and higher than the text; the row says how much of it is text.
        const bool HasRow = Rows != nullptr && RowCount != 0;
        const UINTN TextWidth = HasRow ? Smaller<UINTN>(Rows[0].LineWidth, Image->Width) : Image->Width;
        const UINTN TextHeight = HasRow ? Smaller<UINTN>(Rows[0].LineHeight, Image->Height) : Image->Height;
        const UINTN ShownWidth = Smaller<UINTN>(TextWidth, Width);
        const UINTN ShownHeight = Smaller<UINTN>(TextHeight, Height);
        if (ShownWidth != 0 && ShownHeight != 0) {
            (void)Display->Blt(Display, Image->Image.Bitmap, EfiBltBufferToVideo, 0, 0, X, Y, ShownWidth, ShownHeight,
                               Image->Width * sizeof(PIXEL));
        }
    }
    if (Rows != nullptr) {
        (void)gServices->FreePool(Rows);
    }
    if (Image != nullptr) {
        if (Image->Image.Bitmap != nullptr) {
            (void)gServices->FreePool(Image->Image.Bitmap);
        }
        (void)gServices->FreePool(Image);
    }
}

VOID DrawLines(EFI_GRAPHICS_OUTPUT_PROTOCOL* Display, const BOX_STATE& State)
{
    if (State.BoxWidth <= 2 * gMarginX) {
        return;
    }
    const UINTN Left = State.X + gMarginX;
    const UINTN Width = State.BoxWidth - 2 * gMarginX;
    const UINTN Bottom = State.ButtonText != nullptr ? State.ButtonY : UINTN{State.Y} + State.BoxHeight - 1;
    UINTN Top = State.Y + gMarginTop;
    for (UINT16 Line = 0; Line < State.LineCount; Line++) {
        for (const CHAR16* Rest = TextOrEmpty(State.Lines[Line]); Rest != nullptr; Top += gCellHeight) {
            const TEXT_ROW Row = NextRow(&Rest);
            if (Top >= Bottom) {
                return;
            }
            DrawRow(Display, Row, gPanel, Left, Top, Width, Bottom - Top);
        }
    }
}

VOID DrawButton(EFI_GRAPHICS_OUTPUT_PROTOCOL* Display, const BOX_STATE& State)
{
    Fill(Display, gButtonFill, State.ButtonX, State.ButtonY, State.ButtonWidth, State.ButtonHeight);
    DrawButtonOutline(Display, State);
    if (State.ButtonWidth <= 2 * gOutline || State.ButtonHeight <= 2 * gOutline) {
        return;
    }
    const UINTN Width = State.ButtonWidth - 2 * gOutline;
    const UINTN Height = State.ButtonHeight - 2 * gOutline;
    const CHAR16* Rest = State.ButtonText;
    const TEXT_ROW Row = NextRow(&Rest);
    const UINTN TextWidth = Smaller<UINTN>(Row.Width, Width);
    const UINTN TextHeight = Smaller<UINTN>(gCellHeight, Height);
    DrawRow(Display, Row, gButtonFill, State.ButtonX + gOutline + (Width - TextWidth) / 2,
            State.ButtonY + gOutline + (Height - TextHeight) / 2, TextWidth, TextHeight);
}

VOID TellButton(const BOX_STATE& State)
{
    if (State.ButtonText != nullptr) {
        NoteBoxButton({State.ButtonX, State.ButtonY, State.ButtonWidth, State.ButtonHeight, false});
    }
}

bool IsOnButton(const BOX_STATE& State, UINTN X, UINTN Y)
{
    return State.ButtonText != nullptr && X >= State.ButtonX && X < UINTN{State.ButtonX} + State.ButtonWidth &&
           Y >= State.ButtonY && Y < UINTN{State.ButtonY} + State.ButtonHeight;
}

} // namespace

VOID UseMessageBoxServices(EFI_BOOT_SERVICES* BootServices) { gServices = BootServices; }

EFI_STATUS CreateMessageBox(MESSAGE_BOX* Box, UINTN X, UINTN Y, UINTN Width, UINTN Height, UINT16 LineCount,
                            CHAR16** Lines, UINT16 ButtonCount, CHAR16** Buttons)
{
    if (Box == nullptr || X >= gScreenWidth || Y >= gScreenHeight || (LineCount != 0 && Lines == nullptr) ||
        (ButtonCount != 0 && Buttons == nullptr)) {
        return EFI_INVALID_PARAMETER;
    }
    BOX_STATE State = {};
    State.Lines = Lines;
    State.LineCount = LineCount;
    State.ButtonText = ButtonCount != 0 ? Buttons[0] : nullptr;
    State.X = static_cast<UINT16>(X);
    State.Y = static_cast<UINT16>(Y);
    State.LastX = State.X;
    State.LastY = State.Y;

    TEXT_SIZE Text = {};
    for (UINT16 Line = 0; Line < LineCount; Line++) {
        AddTextSize(&Text, TextOrEmpty(Lines[Line]));
    }
    UINTN NeedWidth = Text.Width + 2 * gMarginX;
    UINTN NeedHeight = gMarginTop + Text.Rows * gCellHeight + gMarginBottom;
    if (State.ButtonText != nullptr) {
        TEXT_SIZE Title = {};
        AddTextSize(&Title, State.ButtonText);
        NeedWidth = Larger<UINTN>(NeedWidth, Title.Width + 2 * gButtonMarginX + 2 * gMarginX);
        NeedHeight += gButtonGap + gButtonHeight;
    }
    State.BoxWidth = static_cast<UINT32>(Smaller<UINTN>(Larger<UINTN>(Width, NeedWidth), gScreenWidth - X));
    State.BoxHeight = static_cast<UINT32>(Smaller<UINTN>(Larger<UINTN>(Height, NeedHeight), gScreenHeight - Y));
    PlaceButton(&State);
    *Box = __builtin_bit_cast(MESSAGE_BOX, State);
    return EFI_SUCCESS;
}

EFI_STATUS DrawMessageBox(MESSAGE_BOX* Box)
{
    if (Box == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    auto* Display = LocateDisplay();
    if (Display == nullptr) {
        return EFI_NOT_FOUND;
    }
    BOX_STATE State = __builtin_bit_cast(BOX_STATE, *Box);
    State.Hover = 0;
    Fill(Display, gPanel, State.X, State.Y, State.BoxWidth, State.BoxHeight);
    DrawOutline(Display, gRim, State.X, State.Y, State.BoxWidth, State.BoxHeight, 1);
    if (State.BoxWidth > 2 * gOutline && State.BoxHeight > 2 * gOutline) {
        DrawOutline(Display, gBorder, State.X + 1u, State.Y + 1u, State.BoxWidth - 2, State.BoxHeight - 2, 1);
    }
    DrawLines(Display, State);
    TellButton(State);
    if (State.ButtonText != nullptr) {
        DrawButton(Display, State);
    }
    *Box = __builtin_bit_cast(MESSAGE_BOX, State);
    return EFI_SUCCESS;
}

EFI_STATUS UpdateMessageBox(MESSAGE_BOX* Box, UINTN X, UINTN Y)
{
    if (Box == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    BOX_STATE State = __builtin_bit_cast(BOX_STATE, *Box);
    const UINT8 Hover = IsOnButton(State, X, Y) ? 1 : 0;
    const UINT8 Moved = X != State.LastX || Y != State.LastY ? 1 : 0;
    // The pointer's picture is put back one call after it moved, so the turn after a move counts as well.
    const bool Repaint = Hover != State.Hover || (Hover == 1 && (Moved == 1 || State.Moved == 1));
    State.Hover = Hover;
    State.Moved = Moved;
    State.LastX = static_cast<UINT16>(X);
    State.LastY = static_cast<UINT16>(Y);
    State.ButtonFocus = Hover;
    *Box = __builtin_bit_cast(MESSAGE_BOX, State);
    TellButton(State);
    if (!Repaint) {
        return EFI_SUCCESS;
    }
    auto* Display = LocateDisplay();
    if (Display == nullptr) {
        return EFI_NOT_FOUND;
    }
    DrawButtonOutline(Display, State);
    return EFI_SUCCESS;
}
