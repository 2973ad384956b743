#include "platform/board/TextService.h"

#include "platform/board/SystemFont.h"

namespace {

constexpr EFI_HII_OUT_FLAGS gNeededFlags = EFI_HII_IGNORE_IF_NO_GLYPH | EFI_HII_IGNORE_LINE_BREAK;
constexpr UINTN gRoomyWidth = 800;
constexpr UINTN gRoomyHeight = 600;
constexpr UINTN gMostGlyphs = gRoomyWidth / SYSTEM_FONT_WIDTH; // of a row in a wide picture
constexpr PIXEL gSystemForeground = {0x98, 0x98, 0x98, 0};
constexpr PIXEL gSystemBackground = {0, 0, 0, 0};

VOID DrawGlyph(PIXEL* Picture, UINTN Width, UINTN Height, UINTN X, UINTN Y, const UINT8* Glyph, PIXEL Foreground,
               PIXEL Background)
{
    for (UINTN Row = 0; Row < SYSTEM_FONT_HEIGHT && Y + Row < Height; Row++) {
        for (UINTN Column = 0; Column < SYSTEM_FONT_WIDTH && X + Column < Width; Column++) {
            Picture[(Y + Row) * Width + X + Column] = (Glyph[Row] & (0x80 >> Column)) != 0 ? Foreground : Background;
        }
    }
}

// A walk over a string's glyphs as they stand in rows. It is made twice, to measure and to draw.
struct TEXT_WALK {
    const CHAR16* String;
    UINTN MostGlyphs;          // of a row
    bool Wraps;                // a row that is full goes on in the next; else it is cut
    EFI_HII_ROW_INFO* RowInfo; // filled in for each row; null: not wanted

    UINTN Next = 0;  // the character to be looked at
    UINTN Row = 0;   // where the last glyph stands
    UINTN Count = 0; // glyphs of that row so far, it included
};

VOID BeginRow(TEXT_WALK* Walk, UINTN At)
{
    Walk->Count = 0;
    if (Walk->RowInfo != nullptr) {
        Walk->RowInfo[Walk->Row] = {.StartIndex = At,
                                    .EndIndex = At,
                                    .LineHeight = SYSTEM_FONT_HEIGHT,
                                    .LineWidth = 0,
                                    .BaselineOffset = SYSTEM_FONT_BASELINE};
    }
}

// Null at the end of the string.
const UINT8* NextGlyph(TEXT_WALK* Walk)
{
    while (Walk->String[Walk->Next] != 0) {
        const UINTN At = Walk->Next++;
        const UINT8* Glyph = SystemFontGlyph(Walk->String[At]); // a line break has none either
        if (Glyph == nullptr || (Walk->Count == Walk->MostGlyphs && !Walk->Wraps)) {
            continue;
        }
        if (Walk->Count == Walk->MostGlyphs) {
            Walk->Row++;
            BeginRow(Walk, At);
        }
        Walk->Count++;
        if (Walk->RowInfo != nullptr) {
            Walk->RowInfo[Walk->Row].EndIndex = At;
            Walk->RowInfo[Walk->Row].LineWidth = Walk->Count * SYSTEM_FONT_WIDTH;
        }
        return Glyph;
    }
    return nullptr;
}

// A picture from pool with its head, all pixels zero. Null without pool.
EFI_IMAGE_OUTPUT* CreateImage(const TEXT_MEANS& Means, UINTN Width, UINTN Height)
{
    auto* Image = static_cast<EFI_IMAGE_OUTPUT*>(Means.Allocate(sizeof(EFI_IMAGE_OUTPUT)));
    if (Image == nullptr) {
        return nullptr;
    }
    Image->Width = static_cast<UINT16>(Width);
    Image->Height = static_cast<UINT16>(Height);
    Image->Image.Bitmap = static_cast<PIXEL*>(Means.Allocate(Width * Height * sizeof(PIXEL)));
    if (Image->Image.Bitmap == nullptr) {
        Means.Free(Image);
        return nullptr;
    }
    return Image;
}

} // namespace

EFI_STATUS RenderText(const TEXT_MEANS& Means, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                      const EFI_FONT_DISPLAY_INFO* Information, EFI_IMAGE_OUTPUT** Blt, EFI_HII_ROW_INFO** RowInfoArray,
                      UINTN* RowInfoArraySize)
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
    const TEXT_WALK Start = {.String = String,
                             .MostGlyphs = Wide ? gMostGlyphs : ~UINTN{0},
                             .Wraps = (Flags & EFI_HII_OUT_FLAG_WRAP) != 0,
                             .RowInfo = nullptr};
    TEXT_WALK Walk = Start;
    while (NextGlyph(&Walk) != nullptr) {
    }
    const UINTN RowCount = Walk.Row + 1;
    EFI_HII_ROW_INFO* RowInfo = nullptr;
    if (Wide) {
        RowInfo = static_cast<EFI_HII_ROW_INFO*>(Means.Allocate(RowCount * sizeof(EFI_HII_ROW_INFO)));
        if (RowInfo == nullptr) {
            return EFI_OUT_OF_RESOURCES;
        }
    }
    // A row that isn't the last is full.
    const UINTN Longest = RowCount > 1 ? gMostGlyphs : Walk.Count;
    EFI_IMAGE_OUTPUT* Image = Wide && Means.Roomy ? CreateImage(Means, gRoomyWidth, gRoomyHeight)
                                                  : CreateImage(Means, (Longest + (Wide ? 1 : 0)) * SYSTEM_FONT_WIDTH,
                                                                RowCount * SYSTEM_FONT_HEIGHT);
    if (Image == nullptr) {
        if (Wide) {
            Means.Free(RowInfo);
        }
        return EFI_OUT_OF_RESOURCES;
    }
    *Blt = Image;
    Walk = Start;
    Walk.RowInfo = RowInfo;
    BeginRow(&Walk, 0);
    while (const UINT8* Glyph = NextGlyph(&Walk)) {
        DrawGlyph(Image->Image.Bitmap, Image->Width, Image->Height, (Walk.Count - 1) * SYSTEM_FONT_WIDTH,
                  Walk.Row * SYSTEM_FONT_HEIGHT, Glyph, Foreground, Background);
    }
    if (Wide) {
        *RowInfoArray = RowInfo;
        *RowInfoArraySize = RowCount;
    }
    return EFI_SUCCESS;
}

VOID DrawText(PIXEL* Picture, UINTN Width, UINTN Height, UINTN X, UINTN Y, const CHAR16* String, PIXEL Foreground,
              PIXEL Background)
{
    for (; *String != 0; String++) {
        if (const UINT8* Glyph = SystemFontGlyph(*String)) {
            DrawGlyph(Picture, Width, Height, X, Y, Glyph, Foreground, Background);
            X += SYSTEM_FONT_WIDTH;
        }
    }
}

bool ShowsDegreeSign(const EFI_HII_FONT_PROTOCOL* Font, VOID (*Free)(VOID* Block))
{
    constexpr PIXEL Ink = {0xFF, 0xFF, 0xFF, 0};
    const EFI_FONT_DISPLAY_INFO Info = {
        .ForegroundColor = Ink,
        .BackgroundColor = {},
        .FontInfoMask = EFI_FONT_INFO_SYS_FONT | EFI_FONT_INFO_SYS_SIZE | EFI_FONT_INFO_SYS_STYLE,
        .FontInfo = {},
    };
    EFI_IMAGE_OUTPUT* Image = nullptr;
    EFI_HII_ROW_INFO* Rows = nullptr;
    UINTN RowCount = 0;
    const EFI_STATUS Status = Font->StringToImage(Font, EFI_HII_IGNORE_IF_NO_GLYPH | EFI_HII_IGNORE_LINE_BREAK,
                                                  u"\u00F8", &Info, &Image, 0, 0, &Rows, &RowCount, nullptr);
    bool High = false;
    bool Low = false;
    if (!EfiError(Status) && Image != nullptr && Image->Image.Bitmap != nullptr) {
        for (UINTN Row = 0; Row < Smaller<UINTN>(Image->Height, SYSTEM_FONT_HEIGHT); Row++) {
            for (UINTN Column = 0; Column < Smaller<UINTN>(Image->Width, SYSTEM_FONT_WIDTH); Column++) {
                const bool IsInk = Image->Image.Bitmap[Row * Image->Width + Column].Green == Ink.Green;
                (Row < SYSTEM_FONT_HEIGHT / 2 ? High : Low) |= IsInk;
            }
        }
        Free(Image->Image.Bitmap);
        Free(Image);
        if (Rows != nullptr) {
            Free(Rows);
        }
    }
    return High && !Low;
}
