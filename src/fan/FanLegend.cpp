#include "fan/FanLegend.h"

#include "controls/Labels.h"
#include "fan/FanPage.h"
#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "graphics/KeptPicture.h"
#include "graphics/Text.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "support/Strings.h"

namespace {

constexpr UINT32 gIconSection = 11; // the node strip of the 8-row frame: four icons, stacked
constexpr UINT32 gIconTop = 4;

constexpr UINT32 gLegendX = 836;
constexpr UINT32 gLegendY = 250;
constexpr UINT32 gRowY = 260;
constexpr UINT32 gRowPitch = 29; // one less than that of the icons; that is meant
constexpr UINT32 gDutyRight = 956;
constexpr UINT32 gSeparatorX = 908;
constexpr UINT32 gTemperatureRight = 906;

constexpr UINT32 gPanelTitleX = 311;
constexpr UINT32 gPanelTitleY = 232;

PIXEL* gPanelTitle;
UINT16 gPanelTitleWidth;
UINT16 gPanelTitleHeight;

VOID DrawIcons(const PIXEL* Strip, UINT32 Width, UINT32 Height)
{
    const UINT32 IconHeight = static_cast<UINT32>(Height / gNodeCount);
    for (UINT32 Node = 0; Node < gNodeCount; Node++) {
        const PIXEL* Icon = Strip + static_cast<UINTN>(Node) * IconHeight * Width;
        const INT32 Y = static_cast<INT32>(Node * IconHeight + gIconTop);
        (void)OverlayBlt(Icon, static_cast<INT32>(Width), static_cast<INT32>(IconHeight), gLegendActive, gLegendWidth,
                         gLegendHeight, 0, Y, &gKeyColor, &gKeyColor, 1);
        (void)OverlayBlt(Icon, static_cast<INT32>(Width), static_cast<INT32>(IconHeight), gLegendInactive, gLegendWidth,
                         gLegendHeight, 0, Y, &gKeyColor, &gKeyColor, 1);
    }
}

EFI_STATUS CreatePictures()
{
    constexpr UINTN PixelCount = gLegendWidth * gLegendHeight;
    TEMPORARY<PIXEL> Active(AllocateArray<PIXEL>(PixelCount));
    TEMPORARY<PIXEL> Inactive(AllocateArray<PIXEL>(PixelCount));
    if (!Active || !Inactive) {
        return EFI_OUT_OF_RESOURCES;
    }
    gLegendActive = Active.Data;
    gLegendInactive = Inactive.Data;
    Active.Data = nullptr;
    Inactive.Data = nullptr;
    FillPixels(gLegendActive, PixelCount, gPanelColor);
    FillPixels(gLegendInactive, PixelCount, gPanelColor);

    TEMPORARY<PIXEL> Strip;
    UINT32 Width = 0;
    UINT32 Height = 0;
    (void)LoadBmpBlt(gIconSection, &gArtworkFileGuid, &Strip.Data, &Width, &Height);
    if (Strip) {
        DrawIcons(Strip.Data, Width, Height);
    }
    (void)GrayBlt(gLegendInactive, gLegendWidth, gLegendHeight, gLegendInactive, gLegendWidth, gLegendHeight);
    return EFI_SUCCESS;
}

// On the display at once, and in Screen for later compositions.
VOID DrawRowText(UINT32 X, UINT32 Y, const CHAR16* Text, const PIXEL* Color)
{
    (void)DrawString(X, Y, Text, DRAW_STRING_VIDEO, Color, &gPanelColor, gGuiCore);
    (void)DrawString(X, Y, Text, DRAW_STRING_OPAQUE, Color, &gPanelColor, gGuiCore);
}

VOID DrawRowTextRightAligned(UINT32 Right, UINT32 Y, const CHAR16* Text, const PIXEL* Color)
{
    if (Text != nullptr) {
        DrawRowText(Right - gCharacterWidth * static_cast<UINT32>(StringLength(Text)), Y, Text, Color);
    }
}

// Null for an index that the table doesn't have.
const CHAR16* LabelAt(const CHAR16* const* Table, UINT32 Index)
{
    return Index < CountStringTable(Table) ? Table[Index] : nullptr;
}

} // namespace

PIXEL* gLegendActive;
PIXEL* gLegendInactive;

VOID PaintPanelTitle()
{
    const TEMPORARY<CHAR16> Title(gHwService->GetItemString(gHwService, STRING_PANEL_TITLE));
    if (Title) {
        (void)StringToBlt(&gHeadingColor, &gPanelColor, &gPanelTitle, &gPanelTitleWidth, &gPanelTitleHeight,
                          Title.Data);
    }
    (void)DrawString(gPanelTitleX, gPanelTitleY, Title.Data, DRAW_STRING_KEYED, &gHeadingColor, &gHeadingBackColor,
                     gGuiCore);
}

VOID FreePanelTitle() { ReleasePool(gPanelTitle); }

EFI_STATUS CreateFanLegend()
{
    const bool Exists = gLegendActive != nullptr;
    const EFI_STATUS Status = Exists ? EFI_NOT_FOUND : CreatePictures();
    RefreshFanLegend();
    return Status;
}

VOID FreeFanLegend()
{
    ReleasePool(gLegendActive);
    ReleasePool(gLegendInactive);
}

VOID RefreshFanLegend()
{
    if (const FAN_PAGE* OnTop = FanPageOnTop()) {
        gGlobalVariable.SelectedFanItem = OnTop->ItemId;
    }

    const FAN_PAGE* Page = FindFanPage(gGlobalVariable.SelectedFanItem);
    const FAN_PAGE_LAYOUT Layout = Page != nullptr ? LayoutNow(Page) : FAN_LAYOUT_NONE;
    if (LayoutHasFrame(Layout) && PageHasFrame(Page)) {
        DrawFanLegend(Layout == FAN_LAYOUT_CURVE8 ? 1 : 0, PageBoxIsChecked(Page) ? 1 : 0, &Page->Frame);
    }
}

EFI_STATUS RefreshFanLegend(EFI_EVENT, VOID*)
{
    RefreshFanLegend();
    return EFI_SUCCESS;
}

VOID DrawFanLegend(UINT8 Scale, UINT8 Active, const DRAGDROP_COMPONENT* Frame)
{
    ShowPicture(gPanelTitle, gPanelTitleWidth, gPanelTitleHeight, gPanelTitleX, gPanelTitleY);
    const PIXEL* Box = Active != 0 ? gLegendActive : gLegendInactive;
    if (Box != nullptr) {
        ShowPicture(Box, gLegendWidth, gLegendHeight, gLegendX, gLegendY);
    } else {
        RestoreBackground(gLegendX, gLegendY, gLegendWidth, gLegendHeight); // there was no pool for the box
    }

    const CHAR16* const* DutyLabels = Scale == 1 ? gDutyLabels8 : gDutyLabels6;
    for (UINT32 Node = 0; Node < gNodeCount; Node++) {
        const UINT32 Y = gRowY + gRowPitch * Node;
        const UINT32 Level = Frame->Rows - Frame->Nodes[Node].Row;
        const PIXEL* Color = Active != 0 ? &gNodeColor[Node] : &gInactiveColor;
        DrawRowTextRightAligned(gDutyRight, Y, LabelAt(DutyLabels, Level - 1), Color);
        DrawRowText(gSeparatorX, Y, u"/", Color);
        DrawRowTextRightAligned(gTemperatureRight, Y, LabelAt(gTemperatureLabels, Frame->Nodes[Node].Column), Color);
    }
}
