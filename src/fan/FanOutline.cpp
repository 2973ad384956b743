#include "fan/FanOutline.h"

#include "fan/FanPage.h"
#include "graphics/Kernels.h"
#include "gui/core/GUICore.h"
#include "shell/contract/Board.h"

namespace {

// The panel, edges included.
constexpr UINT32 gPanelLeft = 274;
constexpr UINT32 gPanelRight = 963;
constexpr UINT32 gPanelTop = 220;
constexpr UINT32 gPanelBottom = 547;

// The bar under a tab, from the tab's left edge and on the panel's top edge.
constexpr UINT32 gBarOffset = 41;
constexpr UINT32 gBarWidth = 16;
constexpr UINT32 gBarHeight = 3;

// The first tab rests in the colour of the panel, on which it opens; the others in that of the cells.
constexpr PIXEL RestingColor(UINTN Index) { return Index == 0 ? gPanelColor : gCellColor; }

// Column just right of the tab. A picture of any width is cut at the screen.
UINT32 RightOfTab(const BTN_COMPONENT* Tab)
{
    return Tab->Rect.X + Smaller(Tab->Rect.Width, gScreenWidth - Tab->Rect.X);
}

VOID PlotTabOutline(const BTN_COMPONENT* Tab, PIXEL Color)
{
    const UINT32 Left = Tab->Rect.X - 1;
    const UINT32 Right = RightOfTab(Tab);
    const UINT32 Top = Tab->Rect.Y - 1;
    for (UINT32 X = Left; X <= Right; X++) {
        PlotOutlinePixel(Color, X, Top);
    }
    for (UINT32 Y = Top; Y < gPanelTop; Y++) {
        PlotOutlinePixel(Color, Left, Y);
    }
    for (UINT32 Y = Top; Y < gPanelTop; Y++) {
        PlotOutlinePixel(Color, Right, Y);
    }
}

VOID PlotBar(const BTN_COMPONENT* Tab, PIXEL Color)
{
    for (UINT32 Y = gPanelTop; Y < gPanelTop + gBarHeight; Y++) {
        for (UINT32 X = 0; X < gBarWidth; X++) {
            PlotOutlinePixel(Color, Tab->Rect.X + gBarOffset + X, Y);
        }
    }
}

// The top edge leaves out the tab's columns and the one right of them, which the tab's right edge comes down to.
VOID PlotPanel(const BTN_COMPONENT* Tab)
{
    for (UINT32 Y = gPanelTop; Y <= gPanelBottom; Y++) {
        for (UINT32 X = gPanelLeft; X <= gPanelRight; X++) {
            const bool OnSide = X == gPanelLeft || X == gPanelRight;
            const bool OnTop = Y == gPanelTop && (X < Tab->Rect.X || X > RightOfTab(Tab));
            if (OnSide || OnTop || Y == gPanelBottom) {
                PlotOutlinePixel(gPageOutlineColor, X, Y);
            }
        }
    }
}

template <UINTN Index> EFI_STATUS ShowFanPageFrame(EFI_EVENT, VOID*)
{
    const BTN_COMPONENT* Tab = gFanPage[Index].Tab;
    if (Tab == nullptr) {
        return EFI_NOT_FOUND;
    }
    EraseFanOutlines();
    PlotPanel(Tab);
    PlotTabOutline(Tab, gPageOutlineColor);
    PlotBar(Tab, gPageOutlineColor);
    return EFI_SUCCESS;
}

} // namespace

constinit const EFI_EVENT_NOTIFY gShowFanPageFrame[gFanItemCount] = {
    ShowFanPageFrame<0>, ShowFanPageFrame<1>, ShowFanPageFrame<2>, ShowFanPageFrame<3>,
    ShowFanPageFrame<4>, ShowFanPageFrame<5>, ShowFanPageFrame<6>,
};

VOID ClearPanel()
{
    for (UINT32 Y = gPanelTop; Y <= gPanelBottom; Y++) {
        FillPixels(gGuiCore->Screen + Y * gScreenWidth + gPanelLeft, gPanelRight - gPanelLeft + 1, gPanelColor);
    }
}

VOID EraseFanOutlines()
{
    for (UINT32 X = gPanelLeft; X <= gPanelRight; X++) {
        PlotOutlinePixel(gPanelColor, X, gPanelTop);
    }
    for (UINTN Index = 0; Index < gFanItemCount; Index++) {
        EraseFanTabOutline(gFanPage[Index].Tab, RestingColor(Index));
    }
}

VOID EraseFanTabOutline(const BTN_COMPONENT* Tab, PIXEL Color)
{
    if (Tab != nullptr) {
        PlotTabOutline(Tab, Color);
        PlotBar(Tab, Color);
    }
}

VOID PlotOutlinePixel(PIXEL Color, UINT32 X, UINT32 Y)
{
    if (!PointOnScreen(X, Y)) {
        return;
    }
    (void)gGraphicsOutput->Blt(gGraphicsOutput, &Color, EfiBltVideoFill, 0, 0, X, Y, 1, 1, 0);
    gGuiCore->Screen[static_cast<UINTN>(Y) * gScreenWidth + X] = Color;
}
