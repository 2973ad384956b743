#include "platform/board/BootScreen.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

constexpr INT32 gWidth = BOOT_SCREEN_WIDTH;
constexpr INT32 gHeight = BOOT_SCREEN_HEIGHT;

//                             blue  green red
constexpr PIXEL gGroundTop = {0xEC, 0xE4, 0xDA, 0};
constexpr PIXEL gGroundBottom = {0x4E, 0x3C, 0x2E, 0};
constexpr PIXEL gBladeRoot = {0x52, 0x3A, 0x20, 0};
constexpr PIXEL gBladeTip = {0x9A, 0x8A, 0x1E, 0};
constexpr PIXEL gTextColor = {0xEE, 0xE8, 0xE0, 0};
constexpr PIXEL gTextDimColor = {0xC0, 0xB0, 0xA2, 0};

// The mark: leaf-shaped blades round a hub, a fan at rest. A blade is what two discs share; its centres are given along
// and across the blade's own axis, in pixels.
struct BLADE_DISC {
    INT32 Along;
    INT32 Across;
    INT32 Radius;
};
constexpr BLADE_DISC gBladeDiscs[] = {
    {58, -62, 80},
    {86, 14, 56},
};
constexpr INT32 gMarkX = 512;
constexpr INT32 gMarkY = 318;
constexpr INT32 gMarkRadius = 150; // nothing of the mark lies beyond
constexpr INT32 gHubRadius = 17;
constexpr INT32 gRingRadius = 25; // a bare ring parts the hub from the blades

// Directions of the blades' axes, cosine and sine in units of 1/1024: seven of them, from straight up clockwise.
constexpr INT32 gUnit = 1024;
struct BLADE_AXIS {
    INT32 Cosine;
    INT32 Sine;
};
constexpr BLADE_AXIS gBladeAxes[] = {
    {0, -1024}, {801, -638}, {998, 228}, {444, 923}, {-444, 923}, {-998, 228}, {-801, -638},
};

// Edges are smoothed by counting samples: gSamples each way in a pixel.
constexpr INT32 gSamples = 4;

// The line of text comes as pictures, because a firmware has no font at hand this early: '#' is ink, and the rows of a
// part are equally wide. It stands in parts so that the key's name is brighter than the rest.
constexpr INT32 gTextHeight = 14;
struct TEXT_PART {
    PIXEL Color;
    const CHAR8* Rows[gTextHeight];
};
constexpr TEXT_PART gLine[] = {
    {gTextDimColor,
     {
         "#######                                         ",
         "##    ##                                        ",
         "##     ##                                       ",
         "##     ##   ## ##     ####      #####     ##### ",
         "##    ##    ####     ##  ##    ##   ##   ##   ##",
         "#######     ##      ##    ##   ##        ##     ",
         "##          ##      ########    ####      ####  ",
         "##          ##      ##            ###       ### ",
         "##          ##      ##              ##        ##",
         "##          ##       ##   #    ##   ##   ##   ##",
         "##          ##        ####      #####     ##### ",
         "                                                ",
         "                                                ",
         "                                                ",
     }},
    {gTextColor,
     {
         "#######     ########   ##      ",
         "##    ##    ##         ##      ",
         "##     ##   ##         ##      ",
         "##     ##   ##         ##      ",
         "##     ##   ##         ##      ",
         "##     ##   #######    ##      ",
         "##     ##   ##         ##      ",
         "##     ##   ##         ##      ",
         "##     ##   ##         ##      ",
         "##    ##    ##         ##      ",
         "#######     ########   ########",
         "                               ",
         "                               ",
         "                               ",
     }},
    {gTextDimColor,
     {
         "  ###                                                                              ",
         " ##                                                      ##                        ",
         " ##                                                      ##                        ",
         "#####     ####     ## ##            #####      ####     #####   ##    ##   ## ###  ",
         " ##      ##  ##    ####            ##   ##    ##  ##     ##     ##    ##   ###  ## ",
         " ##     ##    ##   ##              ##        ##    ##    ##     ##    ##   ##    ##",
         " ##     ##    ##   ##               ####     ########    ##     ##    ##   ##    ##",
         " ##     ##    ##   ##                 ###    ##          ##     ##    ##   ##    ##",
         " ##     ##    ##   ##                   ##   ##          ##     ##    ##   ##    ##",
         " ##      ##  ##    ##              ##   ##    ##   #     ## #    ##  ###   ###  ## ",
         " ##       ####     ##               #####      ####       ###     ### ##   ## ###  ",
         "                                                                           ##      ",
         "                                                                           ##      ",
         "                                                                           ##      ",
     }},
};
constexpr INT32 gLineY = 690;
constexpr INT32 gWordGap = 11;

// The colour that lies Part of Whole of the way from one colour to another.
PIXEL Mix(const PIXEL& From, const PIXEL& To, INT32 Part, INT32 Whole)
{
    const auto Channel = [&](INT32 A, INT32 B) {
        return static_cast<UINT8>((A * (Whole - Part) + B * Part + Whole / 2) / Whole);
    };
    return {Channel(From.Blue, To.Blue), Channel(From.Green, To.Green), Channel(From.Red, To.Red), 0};
}

VOID PaintGround(PIXEL* Display)
{
    // Mostly from top to bottom, a little from left to right: light comes from the upper left. So a row begins with what
    // the row above has four pixels on.
    constexpr INT32 Slope = 4;
    for (INT32 Y = 0; Y < gHeight; Y++) {
        PIXEL* Row = Display + Y * gWidth;
        const INT32 Known = Y == 0 ? 0 : gWidth - Slope;
        __builtin_memcpy(Row, Row - (Y == 0 ? 0 : gWidth - Slope), static_cast<UINTN>(Known) * sizeof(PIXEL));
        for (INT32 X = Known; X < gWidth; X++) {
            Row[X] = Mix(gGroundTop, gGroundBottom, Slope * Y + X, Slope * gHeight + gWidth);
        }
    }
}

// All places of a sample are in units of 1/(2 * gSamples) of a pixel from the mark's centre, squares fit an INT32.
constexpr INT32 gGrain = 2 * gSamples;

bool IsInBlade(INT32 X, INT32 Y, const BLADE_AXIS& Axis)
{
    const INT32 Along = (X * Axis.Cosine + Y * Axis.Sine) / gUnit;
    const INT32 Across = (Y * Axis.Cosine - X * Axis.Sine) / gUnit;
    for (const BLADE_DISC& Disc : gBladeDiscs) {
        const INT32 FromAlong = Along - Disc.Along * gGrain;
        const INT32 FromAcross = Across - Disc.Across * gGrain;
        const INT32 Radius = Disc.Radius * gGrain;
        if (FromAlong * FromAlong + FromAcross * FromAcross > Radius * Radius) {
            return false;
        }
    }
    return true;
}

bool IsInMark(INT32 X, INT32 Y)
{
    const INT32 Square = X * X + Y * Y;
    if (Square <= gHubRadius * gHubRadius * gGrain * gGrain) {
        return true;
    }
    if (Square < gRingRadius * gRingRadius * gGrain * gGrain) {
        return false;
    }
    for (const BLADE_AXIS& Axis : gBladeAxes) {
        if (IsInBlade(X, Y, Axis)) {
            return true;
        }
    }
    return false;
}

// How much of a square of the mark's plane is mark.
enum COVER { COVER_NONE, COVER_SOME, COVER_ALL };

// The square's places all lie within Reach of (X, Y), rounding included.
COVER CoverOfDisc(INT32 X, INT32 Y, INT32 Radius, INT32 Reach)
{
    const INT32 Square = X * X + Y * Y;
    const INT32 Outer = Radius + Reach;
    const INT32 Inner = Radius - Reach;
    return Square > Outer * Outer ? COVER_NONE : Inner > 0 && Square < Inner * Inner ? COVER_ALL : COVER_SOME;
}

COVER CoverOfMark(INT32 X, INT32 Y, INT32 Reach)
{
    const COVER Hub = CoverOfDisc(X, Y, gHubRadius * gGrain, Reach);
    const COVER Ring = CoverOfDisc(X, Y, gRingRadius * gGrain, Reach);
    if (Ring != COVER_NONE) {
        return Hub == COVER_ALL ? COVER_ALL : Hub == COVER_NONE && Ring == COVER_ALL ? COVER_NONE : COVER_SOME;
    }
    COVER Most = COVER_NONE;
    for (const BLADE_AXIS& Axis : gBladeAxes) {
        const INT32 Along = (X * Axis.Cosine + Y * Axis.Sine) / gUnit;
        const INT32 Across = (Y * Axis.Cosine - X * Axis.Sine) / gUnit;
        COVER Blade = COVER_ALL;
        for (const BLADE_DISC& Disc : gBladeDiscs) {
            const COVER One =
                CoverOfDisc(Along - Disc.Along * gGrain, Across - Disc.Across * gGrain, Disc.Radius * gGrain, Reach);
            Blade = One < Blade ? One : Blade;
        }
        Most = Blade > Most ? Blade : Most;
    }
    return Most;
}

VOID PaintMarkPixel(PIXEL* Display, INT32 X, INT32 Y, INT32 Inside)
{
    INT32 Square = X * X + Y * Y;
    if (Square > gMarkRadius * gMarkRadius) {
        Square = gMarkRadius * gMarkRadius;
    }
    const PIXEL Ink = Mix(gBladeRoot, gBladeTip, Square, gMarkRadius * gMarkRadius);
    PIXEL* Pixel = &Display[(gMarkY + Y) * gWidth + gMarkX + X];
    *Pixel = Mix(*Pixel, Ink, Inside, gSamples * gSamples);
}

INT32 CountSamples(INT32 X, INT32 Y)
{
    INT32 Inside = 0;
    for (INT32 Sample = 0; Sample < gSamples * gSamples; Sample++) {
        const INT32 SampleX = X * gGrain + 2 * (Sample % gSamples) + 1;
        const INT32 SampleY = Y * gGrain + 2 * (Sample / gSamples) + 1;
        Inside += IsInMark(SampleX, SampleY) ? 1 : 0;
    }
    return Inside;
}

// Paints the mark in a square of Side pixels. Most squares are all mark or none of it: samples are counted where an edge
// goes through a pixel, and only there.
VOID PaintMarkSquare(PIXEL* Display, INT32 Left, INT32 Top, INT32 Side)
{
    constexpr INT32 Rounding = 4; // an axis isn't quite one unit long, and places along it are cut to whole ones
    const INT32 Half = Side * gGrain / 2;
    const COVER Cover = CoverOfMark(Left * gGrain + Half, Top * gGrain + Half, Half * 3 / 2 + Rounding);
    if (Cover == COVER_NONE) {
        return;
    }
    if (Cover == COVER_SOME && Side > 1) {
        const INT32 Part = Side % 2 == 0 ? Side / 2 : 1;
        for (INT32 Y = 0; Y < Side; Y += Part) {
            for (INT32 X = 0; X < Side; X += Part) {
                PaintMarkSquare(Display, Left + X, Top + Y, Part);
            }
        }
        return;
    }
    for (INT32 Y = Top; Y < Top + Side; Y++) {
        for (INT32 X = Left; X < Left + Side; X++) {
            const INT32 Inside = Cover == COVER_ALL ? gSamples * gSamples : CountSamples(X, Y);
            if (Inside != 0) {
                PaintMarkPixel(Display, X, Y, Inside);
            }
        }
    }
}

VOID PaintMark(PIXEL* Display)
{
    constexpr INT32 Side = 12; // halved down to three, then pixel by pixel
    static_assert(2 * gMarkRadius % Side == 0);
    for (INT32 Y = -gMarkRadius; Y < gMarkRadius; Y += Side) {
        for (INT32 X = -gMarkRadius; X < gMarkRadius; X += Side) {
            PaintMarkSquare(Display, X, Y, Side);
        }
    }
}

INT32 MeasureText(const CHAR8* Row)
{
    INT32 Width = 0;
    while (Row[Width] != 0) {
        Width++;
    }
    return Width;
}

VOID PaintPart(PIXEL* Display, INT32 X, INT32 Y, const TEXT_PART& Part)
{
    for (INT32 Row = 0; Row < gTextHeight; Row++) {
        for (INT32 Column = 0; Part.Rows[Row][Column] != 0; Column++) {
            if (Part.Rows[Row][Column] == '#') {
                Display[(Y + Row) * gWidth + X + Column] = Part.Color;
            }
        }
    }
}

// The line stands in the middle of the display's width.
VOID PaintLine(PIXEL* Display)
{
    INT32 Width = -gWordGap;
    for (const TEXT_PART& Part : gLine) {
        Width += MeasureText(Part.Rows[0]) + gWordGap;
    }
    INT32 X = (gWidth - Width) / 2;
    for (const TEXT_PART& Part : gLine) {
        PaintPart(Display, X, gLineY, Part);
        X += MeasureText(Part.Rows[0]) + gWordGap;
    }
}

} // namespace

VOID PaintBootScreen(EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Display)
{
    PaintGround(Display);
    PaintMark(Display);
    PaintLine(Display);
}
