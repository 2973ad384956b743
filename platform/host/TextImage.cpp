#include "platform/host/TextImage.h"

#include <algorithm>
#include <vector>

#include "platform/host/Boot.h"
#include "platform/host/SystemFont.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

constexpr EFI_HII_OUT_FLAGS gNeededFlags = EFI_HII_IGNORE_IF_NO_GLYPH | EFI_HII_IGNORE_LINE_BREAK;
constexpr PIXEL gSystemForeground = {0x98, 0x98, 0x98, 0};
constexpr PIXEL gSystemBackground = {0, 0, 0, 0};

struct TEXT_ROW {
    UINTN StartIndex = 0; // of its first and last character in the string
    UINTN EndIndex = 0;
    std::vector<const UINT8*> Glyphs;
};

// Breaks the string into rows of at most MaxGlyphs glyphs, or where it may not wrap cuts it there. At least one row.
std::vector<TEXT_ROW> BreakIntoRows(const CHAR16* String, bool Wraps, UINTN MaxGlyphs)
{
    std::vector<TEXT_ROW> Rows(1);
    for (UINTN At = 0; String[At] != 0; At++) {
        const UINT8* Glyph = SystemFontGlyph(String[At]); // a line break has none either
        if (Glyph == nullptr || (Rows.back().Glyphs.size() == MaxGlyphs && !Wraps)) {
            continue;
        }
        if (Rows.back().Glyphs.size() == MaxGlyphs) {
            Rows.emplace_back();
            Rows.back().StartIndex = At;
        }
        Rows.back().Glyphs.push_back(Glyph);
        Rows.back().EndIndex = At;
    }
    return Rows;
}

// Draws one glyph with its upper left corner at (X, Y); what lies below the picture is left out.
VOID DrawGlyph(const EFI_IMAGE_OUTPUT& Image, UINTN X, UINTN Y, const UINT8* Glyph, const PIXEL& Foreground,
               const PIXEL& Background)
{
    for (UINTN Row = 0; Row < SYSTEM_FONT_HEIGHT && Y + Row < Image.Height; Row++) {
        for (UINTN Column = 0; Column < SYSTEM_FONT_WIDTH; Column++) {
            Image.Image.Bitmap[(Y + Row) * Image.Width + X + Column] =
                (Glyph[Row] & (0x80 >> Column)) != 0 ? Foreground : Background;
        }
    }
}

// A picture from pool with its head, all pixels zero. Null without pool.
EFI_IMAGE_OUTPUT* CreateImage(BOOT& Boot, UINTN Width, UINTN Height)
{
    VOID* Head;
    VOID* Bitmap;
    const UINTN Size = Width * Height * sizeof(PIXEL);
    VOID* const Caller = __builtin_return_address(0);
    if (EfiError(Boot.Pool.Allocate(sizeof(EFI_IMAGE_OUTPUT), Caller, &Head))) {
        return nullptr;
    }
    if (EfiError(Boot.Pool.AllocateZeroed(Size, Caller, &Bitmap))) {
        (void)Boot.Pool.Free(Head, Caller);
        return nullptr;
    }
    EFI_IMAGE_OUTPUT* Image = static_cast<EFI_IMAGE_OUTPUT*>(Head);
    Image->Width = static_cast<UINT16>(Width);
    Image->Height = static_cast<UINT16>(Height);
    Image->Image.Bitmap = static_cast<PIXEL*>(Bitmap);
    return Image;
}

} // namespace

EFI_STATUS RenderString(BOOT& Boot, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                        const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Blt,
                        EFI_HII_ROW_INFO** RowInfoArray, UINTN* RowInfoArraySize)
{
    if (String == nullptr || Blt == nullptr || (RowInfoArray != nullptr && RowInfoArraySize == nullptr)) {
        return EFI_INVALID_PARAMETER;
    }
    if (*Blt != nullptr || (Flags & ~EFI_HII_OUT_FLAG_WRAP) != gNeededFlags) {
        return EFI_UNSUPPORTED;
    }
    PIXEL Foreground = gSystemForeground;
    PIXEL Background = gSystemBackground;
    if (Information != nullptr && (Information->FontInfoMask & EFI_FONT_INFO_SYS_FORE_COLOR) == 0) {
        Foreground = Information->ForegroundColor;
    }
    if (Information != nullptr && (Information->FontInfoMask & EFI_FONT_INFO_SYS_BACK_COLOR) == 0) {
        Background = Information->BackgroundColor;
    }

    const bool Wide = RowInfoArray != nullptr;
    const std::vector<TEXT_ROW> Rows = BreakIntoRows(String, (Flags & EFI_HII_OUT_FLAG_WRAP) != 0,
                                                     Wide ? gWideImageWidth / SYSTEM_FONT_WIDTH : ~UINTN{0});
    VOID* RowInfo = nullptr;
    VOID* const Caller = __builtin_return_address(0);
    if (Wide && EfiError(Boot.Pool.Allocate(Rows.size() * sizeof(EFI_HII_ROW_INFO), Caller, &RowInfo))) {
        return EFI_OUT_OF_RESOURCES;
    }
    const UINTN RowsHeight = Rows.size() * SYSTEM_FONT_HEIGHT;
    EFI_IMAGE_OUTPUT* Image =
        Wide ? CreateImage(Boot, gWideImageWidth, Boot.Options().LowTextPictures ? RowsHeight : gWideImageHeight)
             : CreateImage(Boot, Rows[0].Glyphs.size() * SYSTEM_FONT_WIDTH, RowsHeight);
    if (Image == nullptr) {
        if (Wide) {
            (void)Boot.Pool.Free(RowInfo, Caller);
        }
        return EFI_OUT_OF_RESOURCES;
    }
    *Blt = Image;
    if (Wide) {
        *RowInfoArray = static_cast<EFI_HII_ROW_INFO*>(RowInfo);
        *RowInfoArraySize = Rows.size();
    }
    for (UINTN At = 0; At < Rows.size(); At++) {
        const TEXT_ROW& Row = Rows[At];
        for (UINTN Column = 0; Column < Row.Glyphs.size(); Column++) {
            DrawGlyph(*Image, Column * SYSTEM_FONT_WIDTH, At * SYSTEM_FONT_HEIGHT, Row.Glyphs[Column], Foreground,
                      Background);
        }
        if (Wide) {
            (*RowInfoArray)[At] = {.StartIndex = Row.StartIndex,
                                   .EndIndex = Row.EndIndex,
                                   .LineHeight = SYSTEM_FONT_HEIGHT,
                                   .LineWidth = Row.Glyphs.size() * SYSTEM_FONT_WIDTH,
                                   .BaselineOffset = SYSTEM_FONT_BASELINE};
        }
    }
    return EFI_SUCCESS;
}
