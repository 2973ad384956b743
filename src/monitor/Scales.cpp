#include "monitor/Scales.h"

#include "fan/FanPage.h"
#include "graphics/BltFont.h"
#include "graphics/GraphicProtocol.h"
#include "gui/core/GUICore.h"
#include "support/Strings.h"

namespace {

constexpr UINT32 gFanScaleSection = 9;
constexpr UINT32 gTempScaleSection = 10;

BLT_FONT* gFanScaleFont;
BLT_FONT* gTempScaleFont;

// The left scale stands against this edge in both faces: the strips' glyphs are 6 pixels wide.
constexpr UINT32 gLeftScaleRight = 360;
constexpr UINT32 gStripGlyphWidth = 6;
constexpr UINT32 gRpmScaleX = 800;

// Rectangles that a face clears before it draws its labels.
constexpr UINT32 gLeftClearX = 330;
constexpr UINT32 gLeftClearWidth = 40;
constexpr UINT32 gRightClearX = 800;
constexpr UINT32 gRightClearWidth = 33;
constexpr UINT32 gSideClearHeight = 270;
constexpr UINT32 gIdleLeftClearY = 247;
constexpr UINT32 gFootClearX = 382;
constexpr UINT32 gFootClearY = 522;
constexpr UINT32 gFootClearWidth = 520;
constexpr UINT32 gFootClearHeight = 23;

// The chart face, top to bottom. The spacing isn't even: the labels stand where these numbers put them.
struct IDLE_LABEL {
    const CHAR16* Degrees;
    const CHAR16* Rpm;
    UINT32 Y;
};

constexpr IDLE_LABEL gIdleLabels[] = {
    // degrees, revolutions, top edge
    {u"100", u"7000", 259}, {u"90", u"6300", 282}, {u"80", u"5600", 305}, {u"70", u"4900", 328},
    {u"60", u"4200", 351},  {u"50", u"3500", 377}, {u"40", u"2800", 400}, {u"30", u"2100", 426},
    {u"20", u"1400", 450},  {u"10", u"700", 474},  {u"0", u"0", 501},
};

// The editor face. The labels of 8 rows are counted from the control's top edge; those of 6 rows have fixed places.
constexpr UINT32 gDuty8FirstY = 15;
constexpr UINT32 gDuty8Pitch = 30;
constexpr UINT32 gDuty6FirstY = 281;
constexpr UINT32 gDuty6Pitch = 40;
constexpr UINT32 gColumnFirstX = 391;
constexpr UINT32 gColumnPitch = 30;
constexpr UINT32 gColumnY = 525;

VOID DrawLabel(BLT_FONT* Font, UINT32 X, UINT32 Y, const CHAR16* Text)
{
    (void)DrawBltFontString(Font, X, Y, Text, gGuiCore->Screen);
}

VOID DrawLeftLabel(BLT_FONT* Font, UINT32 Y, const CHAR16* Text)
{
    DrawLabel(Font, gLeftScaleRight - gStripGlyphWidth * static_cast<UINT32>(StringLength(Text)), Y, Text);
}

bool DragIsUnderWay()
{
    return gGuiCore->MouseState == L_HOLD &&
           (gGuiCore->TargetKind == _DRAGDROP_COMPONENT || gGuiCore->TargetKind == _SLIDER_COMPONENT);
}

bool NodeIsInHand(const FAN_PAGE& Page) { return PageHasFrame(&Page) && Page.Frame.ActiveNode != gNoActiveNode; }

VOID DrawDutyLabel(ACTIVE_SCALE Scale, UINT32 Top, UINT32 Index)
{
    if (Scale == ACTIVE_SCALE_8 && Index < gScaleRows8) {
        DrawLeftLabel(gFanScaleFont, Top + gDuty8FirstY + gDuty8Pitch * Index, gScaleDuty8[Index]);
    } else if (Scale == ACTIVE_SCALE_6 && Index < gScaleRows6) {
        DrawLeftLabel(gFanScaleFont, gDuty6FirstY + gDuty6Pitch * Index, gScaleDuty6[Index]);
    }
}

} // namespace

const CHAR16* const gScaleTemperatures[gScaleColumns] = {u"40", u"45", u"50", u"55", u"60", u"65", u"70",
                                                         u"75", u"80", u"85", u"90", u"95", u"100"};
const CHAR16* const gScaleBlanks[gScaleColumns] = {u"  ", u"  ", u"  ", u"  ", u"  ", u"  ", u"  ",
                                                   u"  ", u"  ", u"  ", u"  ", u"  ", u"   "};
const CHAR16* const gScaleDuty8[gScaleRows8] = {u"100", u"87.5", u"75", u"62.5", u"50", u"37.5", u"25", u"12.5"};
const CHAR16* const gScaleDuty6[gScaleRows6] = {u"100", u"90", u"80", u"70", u"60", u"50"};

VOID CreateScaleFonts()
{
    (void)CreateBltFont(&gFanScaleFont, gFanScaleSection, &gArtworkFileGuid);
    (void)CreateBltFont(&gTempScaleFont, gTempScaleSection, &gArtworkFileGuid);
}

VOID DestroyScaleFonts()
{
    (void)DestroyBltFont(gFanScaleFont);
    gFanScaleFont = nullptr;
    (void)DestroyBltFont(gTempScaleFont);
    gTempScaleFont = nullptr;
}

VOID PaintScalesIdle()
{
    RestoreBackground(gLeftClearX, gIdleLeftClearY, gLeftClearWidth, gSideClearHeight);
    RestoreBackground(gFootClearX, gFootClearY, gFootClearWidth, gFootClearHeight);
    for (const IDLE_LABEL& Label : gIdleLabels) {
        DrawLeftLabel(gTempScaleFont, Label.Y, Label.Degrees);
    }
    for (const IDLE_LABEL& Label : gIdleLabels) {
        DrawLabel(gFanScaleFont, gRpmScaleX, Label.Y, Label.Rpm);
    }
}

VOID PaintScalesActive()
{
    DrawDutyScale(1, 0);
    DrawTemperatureScale(1, 0);
}

ACTIVE_SCALE GetActiveScale(UINT32* Top)
{
    ACTIVE_SCALE Scale = ACTIVE_SCALE_NONE;
    for (const FAN_PAGE& Page : gFanPage) {
        if (NodeIsInHand(Page)) {
            Scale = Page.Frame.Rows == gScaleRows8 ? ACTIVE_SCALE_8 : ACTIVE_SCALE_6;
            *Top = Page.Frame.Rect.Y - 1;
            break;
        }
    }
    for (const FAN_PAGE& Page : gFanPage) {
        if (PageHasSlider(&Page) && Page.Slider.Dragging == 1) {
            Scale = ACTIVE_SCALE_6;
            *Top = Page.Slider.Rect.Y - 1;
        }
    }
    return Scale;
}

VOID DrawDutyScale(UINT8 All, UINT8 Index)
{
    if (!DragIsUnderWay()) {
        return;
    }
    UINT32 Top = 0;
    const ACTIVE_SCALE Scale = GetActiveScale(&Top);
    if (Scale == ACTIVE_SCALE_NONE) {
        return;
    }
    if (All != 1) {
        DrawDutyLabel(Scale, Top, Index);
        return;
    }
    RestoreBackground(gRightClearX, Top - 10, gRightClearWidth, gSideClearHeight);
    RestoreBackground(gLeftClearX, Top - 10, gLeftClearWidth, gSideClearHeight);
    for (UINT32 Row = 0; Row < gScaleRows8; Row++) {
        DrawDutyLabel(Scale, Top, Row);
    }
}

VOID DrawTemperatureScale(UINT8 All, UINT8 Index)
{
    if (!DragIsUnderWay()) {
        return;
    }
    for (UINT32 Column = 0; Column < gScaleColumns; Column++) {
        if (All == 1 || Column == Index) {
            DrawLabel(gTempScaleFont, gColumnPitch * Column + gColumnFirstX, gColumnY, gScaleTemperatures[Column]);
        }
    }
}
