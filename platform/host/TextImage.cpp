#include "platform/host/TextImage.h"

#include <algorithm>
#include <cstring>
#include <vector>

#include "platform/host/Boot.h"
#include "platform/host/SystemFont.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

constexpr EFI_STATUS gWarnUnknownGlyph = 1;
constexpr UINT32 EFI_FONT_INFO_SYS_FORE_COLOR = 0x08;
constexpr UINT32 EFI_FONT_INFO_SYS_BACK_COLOR = 0x10;
constexpr PIXEL gSystemForeground = {0x98, 0x98, 0x98, 0};
constexpr PIXEL gSystemBackground = {0, 0, 0, 0};
constexpr CHAR16 gReplacementCharacter = 0xFFFD;

struct TEXT_ROW {
    UINTN StartIndex = 0; // of its first and last character in the string
    UINTN EndIndex = 0;
    std::vector<const UINT8*> Glyphs;
    std::vector<UINTN> Indices; // the character that each glyph is of
};

bool FlagsAgree(EFI_HII_OUT_FLAGS Flags, bool CallersImage)
{
    const auto Has = [&](EFI_HII_OUT_FLAGS Flag) { return (Flags & Flag) != 0; };
    if ((Has(EFI_HII_OUT_FLAG_CLIP_CLEAN_X) || Has(EFI_HII_OUT_FLAG_CLIP_CLEAN_Y)) && !Has(EFI_HII_OUT_FLAG_CLIP)) {
        return false;
    }
    if (Has(EFI_HII_OUT_FLAG_WRAP) && Has(EFI_HII_OUT_FLAG_CLIP_CLEAN_X)) {
        return false;
    }
    return CallersImage || (!Has(EFI_HII_OUT_FLAG_TRANSPARENT) && !Has(EFI_HII_DIRECT_TO_SCREEN));
}

bool IsLineBreak(CHAR16 Char) { return Char == u'\n' || Char == u'\r' || Char == 0x2028 || Char == 0x2029; }

// Breaks the string into rows of at most MaxGlyphs glyphs (0: any number). At least one row comes back.
std::vector<TEXT_ROW> BreakIntoRows(const CHAR16* String, EFI_HII_OUT_FLAGS Flags, UINTN MaxGlyphs, bool* Unknown)
{
    std::vector<TEXT_ROW> Rows(1);
    for (UINTN At = 0; String[At] != 0; At++) {
        if (IsLineBreak(String[At])) {
            if ((Flags & EFI_HII_IGNORE_LINE_BREAK) == 0) {
                if (String[At] == u'\r' && String[At + 1] == u'\n') {
                    At++;
                }
                Rows.emplace_back();
                Rows.back().StartIndex = Rows.back().EndIndex = At + 1;
            }
            continue;
        }
        const UINT8* Glyph = SystemFontGlyph(String[At]);
        if (Glyph == nullptr) {
            if ((Flags & EFI_HII_IGNORE_IF_NO_GLYPH) != 0) {
                continue;
            }
            *Unknown = true;
            Glyph = SystemFontGlyph(gReplacementCharacter);
            Glyph = Glyph == nullptr ? SystemFontGlyph(u'?') : Glyph;
            if (Glyph == nullptr) {
                continue;
            }
        }
        if (MaxGlyphs != 0 && Rows.back().Glyphs.size() == MaxGlyphs) {
            if ((Flags & EFI_HII_OUT_FLAG_WRAP) == 0) {
                continue; // cut at the edge
            }
            Rows.emplace_back();
            Rows.back().StartIndex = At;
        }
        Rows.back().Glyphs.push_back(Glyph);
        Rows.back().Indices.push_back(At);
        Rows.back().EndIndex = At;
    }
    return Rows;
}

// Draws one glyph with its upper left corner at (X, Y); what lies outside the picture is left out.
VOID DrawGlyph(PIXEL* Picture, UINTN Width, UINTN Height, UINTN X, UINTN Y, const UINT8* Glyph, const PIXEL& Foreground,
               const PIXEL* Background)
{
    for (UINTN Row = 0; Row < SYSTEM_FONT_HEIGHT && Y + Row < Height; Row++) {
        for (UINTN Column = 0; Column < SYSTEM_FONT_WIDTH && X + Column < Width; Column++) {
            PIXEL& Pixel = Picture[(Y + Row) * Width + X + Column];
            if ((Glyph[Row] & (0x80 >> Column)) != 0) {
                Pixel = Foreground;
            } else if (Background != nullptr) {
                Pixel = *Background;
            }
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
                        const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Blt, UINTN X, UINTN Y,
                        EFI_HII_ROW_INFO** RowInfoArray, UINTN* RowInfoArraySize, UINTN* ColumnInfoArray)
{
    if (String == nullptr || Blt == nullptr || (RowInfoArray != nullptr && RowInfoArraySize == nullptr) ||
        !FlagsAgree(Flags, *Blt != nullptr)) {
        return EFI_INVALID_PARAMETER;
    }
    PIXEL Foreground = gSystemForeground;
    PIXEL Background = gSystemBackground;
    if (Information != nullptr && (Information->FontInfoMask & EFI_FONT_INFO_SYS_FORE_COLOR) == 0) {
        Foreground = Information->ForegroundColor;
    }
    if (Information != nullptr && (Information->FontInfoMask & EFI_FONT_INFO_SYS_BACK_COLOR) == 0) {
        Background = Information->BackgroundColor;
    }

    const bool Wide = *Blt == nullptr && RowInfoArray != nullptr;
    bool Unknown = false;
    std::vector<TEXT_ROW> Rows =
        BreakIntoRows(String, Flags, Wide ? gWideImageWidth / SYSTEM_FONT_WIDTH : 0, &Unknown);
    UINTN Longest = 0;
    for (const TEXT_ROW& Row : Rows) {
        Longest = std::max<UINTN>(Longest, Row.Glyphs.size());
    }

    EFI_HII_ROW_INFO* RowInfo = nullptr;
    if (RowInfoArray != nullptr) {
        VOID* Block;
        VOID* const Caller = __builtin_return_address(0);
        if (EfiError(Boot.Pool.Allocate(Rows.size() * sizeof(EFI_HII_ROW_INFO), Caller, &Block))) {
            return EFI_OUT_OF_RESOURCES;
        }
        RowInfo = static_cast<EFI_HII_ROW_INFO*>(Block);
    }
    EFI_IMAGE_OUTPUT* Image = *Blt;
    if (Image == nullptr) {
        const UINTN RowsHeight = Rows.size() * SYSTEM_FONT_HEIGHT;
        const UINTN WideHeight = Boot.Options().LowTextPictures ? RowsHeight : gWideImageHeight;
        Image = Wide ? CreateImage(Boot, gWideImageWidth, WideHeight)
                     : CreateImage(Boot, Longest * SYSTEM_FONT_WIDTH, RowsHeight);
        if (Image == nullptr) {
            if (RowInfo != nullptr) {
                (void)Boot.Pool.Free(RowInfo, __builtin_return_address(0));
            }
            return EFI_OUT_OF_RESOURCES;
        }
        *Blt = Image;
    }

    const bool OnDisplay = (Flags & EFI_HII_DIRECT_TO_SCREEN) != 0;
    PIXEL* Picture = OnDisplay ? Boot.Display.Pixels : Image->Image.Bitmap;
    const UINTN Width = OnDisplay ? gDisplayWidth : Image->Width;
    const UINTN Height = OnDisplay ? gDisplayHeight : Image->Height;
    const PIXEL* Beside = (Flags & EFI_HII_OUT_FLAG_TRANSPARENT) != 0 ? nullptr : &Background;
    for (UINTN At = 0; At < Rows.size(); At++) {
        const TEXT_ROW& Row = Rows[At];
        for (UINTN Column = 0; Column < Row.Glyphs.size(); Column++) {
            DrawGlyph(Picture, Width, Height, X + Column * SYSTEM_FONT_WIDTH, Y + At * SYSTEM_FONT_HEIGHT,
                      Row.Glyphs[Column], Foreground, Beside);
        }
        if (RowInfo != nullptr) {
            RowInfo[At] = {.StartIndex = Row.StartIndex,
                           .EndIndex = Row.EndIndex,
                           .LineHeight = SYSTEM_FONT_HEIGHT,
                           .LineWidth = Row.Glyphs.size() * SYSTEM_FONT_WIDTH,
                           .BaselineOffset = SYSTEM_FONT_BASELINE};
        }
    }
    if (RowInfo != nullptr) {
        *RowInfoArray = RowInfo;
        *RowInfoArraySize = Rows.size();
    }
    if (ColumnInfoArray != nullptr) {
        // One entry a character of the string: its column in pixels, all ones where nothing was drawn for it.
        for (UINTN At = 0; String[At] != 0; At++) {
            ColumnInfoArray[At] = ~UINTN{0};
        }
        for (const TEXT_ROW& Row : Rows) {
            for (UINTN Column = 0; Column < Row.Indices.size(); Column++) {
                ColumnInfoArray[Row.Indices[Column]] = X + Column * SYSTEM_FONT_WIDTH;
            }
        }
    }
    return Unknown ? gWarnUnknownGlyph : EFI_SUCCESS;
}
