#include "tests/faults/Invariants.h"

#include "fan/FanLegend.h"
#include "fan/FanPage.h"
#include "fan/Fan_Ctrl_Function.h"
#include "graphics/GraphicProtocol.h"
#include "gui/core/Drag.h"
#include "gui/core/GUICore.h"
#include "gui/PageBar.h"
#include "gui/PointerEngine.h"
#include "platform/board/FanStore.h"
#include "platform/host/CurrentBoot.h"
#include "support/Lists.h"

namespace {

std::string CheckRegistry()
{
    const GUI_COMPONENT_LIST& List = *gGuiCore->Components;
    UINT32 Count = 0;
    for (LIST_ENTRY* Link = List.Head.ForwardLink; Link != &List.Head; Link = Link->ForwardLink) {
        if (Link->ForwardLink->BackLink != Link || Link->BackLink->ForwardLink != Link) {
            return "the registry's links don't agree";
        }
        const GUI_COMPONENT* Component = RecordOf<GUI_COMPONENT>(Link, offsetof(GUI_COMPONENT, Link));
        if (Component->Id != Count || Component->Kind > FocusEventDestroy || Component->Enabled > 1 ||
            Component->Active > 1) {
            return "component " + std::to_string(Count) + " of the registry is damaged";
        }
        Count++;
    }
    return Count == List.Count ? "" : "the registry's count is wrong";
}

// Exactly one of a bar's members is the selected one.
std::string CheckBar(const PAGE_BAR* Bar)
{
    if (Bar == nullptr || Bar->Entries->Count == 0) {
        return "";
    }
    PAGE_BAR_ENTRY* Selected = nullptr;
    if (EfiError(FindPageBarEntry(Bar->Entries, static_cast<UINT16>(Bar->SelectedIndex), &Selected)) ||
        Selected == nullptr) {
        return "no page is on";
    }
    return "";
}

// A component that is active belongs to the selected page, or to none.
std::string CheckPages()
{
    if (gFanPageBar == nullptr) {
        return "";
    }
    PAGE_BAR_LIST& Entries = *gFanPageBar->Entries;
    for (LIST_ENTRY* Link = Entries.Head.ForwardLink; Link != &Entries.Head; Link = Link->ForwardLink) {
        const PAGE_BAR_ENTRY* Entry = RecordOf<PAGE_BAR_ENTRY>(Link, offsetof(PAGE_BAR_ENTRY, Link));
        for (LIST_ENTRY* At = Entry->Targets.ForwardLink; At != &Entry->Targets; At = At->ForwardLink) {
            const PAGE_BAR_TARGET* Target = RecordOf<PAGE_BAR_TARGET>(At, offsetof(PAGE_BAR_TARGET, Link));
            GUI_COMPONENT* Component = nullptr;
            (void)FindComponent(gGuiCore->Components, Target->ComponentId, &Component);
            if (Component != nullptr && Component->Active == 1 && Entry->Index != gFanPageBar->SelectedIndex) {
                return "a component of page " + std::to_string(Entry->Index) + " is on, page " +
                       std::to_string(gFanPageBar->SelectedIndex) + " is selected";
            }
        }
    }
    return "";
}

// The surface is the picture without the pointer: where the pointer was drawn last it doesn't hold the pointer's pixels.
std::string CheckScreen()
{
    const PIXEL* Image = gGuiCore->CursorImage;
    UINTN Opaque = 0;
    UINTN Equal = 0;
    for (UINTN Row = 0; Row < gGuiCore->CursorHeight; Row++) {
        for (UINTN Column = 0; Column < gGuiCore->CursorWidth; Column++) {
            const UINTN X = gGuiCore->CursorX + Column;
            const UINTN Y = gGuiCore->CursorY + Row;
            const PIXEL& Pixel = Image[Row * gGuiCore->CursorWidth + Column];
            if (X >= gScreenWidth || Y >= gScreenHeight ||
                (Pixel.Red == 0xFF && Pixel.Blue == 0xFF && Pixel.Green == 0)) {
                continue;
            }
            const PIXEL& Shown = gGuiCore->Screen[Y * gScreenWidth + X];
            Opaque++;
            Equal += Pixel.Red == Shown.Red && Pixel.Green == Shown.Green && Pixel.Blue == Shown.Blue ? 1 : 0;
        }
    }
    return Opaque > 20 && Equal * 10 > Opaque * 9 ? "the surface holds the pointer" : "";
}

bool SameColors(const PIXEL* A, const PIXEL* B, UINTN Count)
{
    for (UINTN At = 0; At < Count; At++) {
        if (A[At].Red != B[At].Red || A[At].Green != B[At].Green || A[At].Blue != B[At].Blue) {
            return false;
        }
    }
    return true;
}

// Whether a picture, of which rows of Width pixels are compared, stands on the surface.
bool Stands(const PIXEL* Picture, UINTN PictureWidth, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    for (UINTN Row = 0; Row < Height; Row++) {
        if (!SameColors(Picture + Row * PictureWidth, gGuiCore->Screen + (Y + Row) * gScreenWidth + X, Width)) {
            return false;
        }
    }
    return true;
}

// A frame's picture is its nodes on their cells, or none, and nothing else.
bool FrameShows(const DRAGDROP_COMPONENT& Frame, bool Nodes)
{
    std::vector<PIXEL> Picture(static_cast<UINTN>(Frame.Rect.Width) * Frame.Rect.Height, gPanelColor);
    for (const DD_FRAME_NODE& Node : Frame.Nodes) {
        if (Nodes) {
            (void)OverlayBlt(Node.Image, static_cast<INT32>(Node.ImageWidth), static_cast<INT32>(Node.ImageHeight),
                             Picture.data(), Frame.Rect.Width, Frame.Rect.Height,
                             static_cast<INT32>(Node.Column * Frame.CellWidth),
                             static_cast<INT32>(Node.Row * Frame.CellHeight), &gKeyColor, &gKeyColor, 1);
        }
    }
    return SameColors(Picture.data(), Frame.WorkImage, Picture.size());
}

std::string CheckNothingInHand()
{
    for (const FAN_PAGE& Page : gFanPage) {
        if ((PageHasFrame(&Page) && (Page.Frame.ActiveNode != gNoActiveNode || Page.Frame.DragStarted != 0)) ||
            (PageHasSlider(&Page) && Page.Slider.Dragging != 0)) {
            return "something of fan " + std::to_string(Page.ItemId) + " is in hand";
        }
    }
    return gDragging != 0 || gSliderDragging != 0 || gDragLock != 0 ? "a drag is under way" : "";
}

// The labels and captions around the chart, which a drag replaces.
std::string CheckFace(std::vector<PIXEL>* RestFace)
{
    constexpr GUI_RECT Parts[] = {{328, 247, 50, 270, 0}, {328, 520, 560, 24, 0}};
    std::vector<PIXEL> Face;
    for (const GUI_RECT& Part : Parts) {
        for (UINTN Row = Part.Y; Row < Part.Y + Part.Height; Row++) {
            const PIXEL* From = gGuiCore->Screen + Row * gScreenWidth + Part.X;
            Face.insert(Face.end(), From, From + Part.Width);
        }
    }
    if (RestFace->empty()) {
        *RestFace = Face;
    }
    return SameColors(Face.data(), RestFace->data(), Face.size()) ? "" : "the editor's face is left";
}

std::string CheckBoxed(const FAN_PAGE* Page)
{
    const CHECK_BOX_COMPONENT* Box = Page->CheckBox;
    const bool On = Box->State != 0;
    const bool Swaps = Page->Layout == FAN_LAYOUT_CURVE6_SLIDER;
    if ((Page->Frame.Linked != 0) != On || (Swaps && (Page->Slider.Linked != 0) != On)) {
        return "frame or slider don't follow the box";
    }
    if ((ComponentOf(Page->Frame.Id)->Active == 1) != (On || !Swaps) ||
        (Swaps && (ComponentOf(Page->Slider.FrameId)->Active == 1) == On)) {
        return "the wrong one of frame and slider takes the mouse";
    }
    const GUI_RECT& Rect = Box->Rect;
    if (!Stands(Box->Frame[On ? CHECK_BOX_CHECKED : CHECK_BOX_UNCHECKED], Rect.Width, Rect.X, Rect.Y, Rect.Width,
                Rect.Height) &&
        !Stands(Box->Frame[On ? CHECK_BOX_CHECKED_HOVER : CHECK_BOX_UNCHECKED_HOVER], Rect.Width, Rect.X, Rect.Y,
                Rect.Width, Rect.Height)) {
        return "the box shows the other state";
    }
    if ((On || !Swaps) && !FrameShows(Page->Frame, On)) {
        return On ? "the nodes aren't what the frame shows" : "the frame isn't empty";
    }
    constexpr UINTN IconWidth = 30; // right of them is text
    return Stands(On ? gLegendActive : gLegendInactive, gLegendWidth, 836, 250, IconWidth, gLegendHeight)
               ? ""
               : "the legend shows the other state";
}

// The board holds what the page shows. A command leaves a six-row frame's nodes where the user put them, so those agree
// again only when the page has written.
std::string CheckBoard(const FAN_PAGE* Page, bool Set)
{
    const UINTN Index = IndexOfFanPage(Page);
    const FAN_SETTING& Held = gFanStore.Held[Index];
    const bool On = PageBoxIsChecked(Page);
    if (Page->CheckBox != nullptr && On != (Held.CurveEnabled != 0 && !gFanStore.FullSpeed[Index])) {
        return "box and board don't agree";
    }
    FAN_SETTING Shown;
    (void)BuildFanSetting(Page, On ? 1 : 0, &Shown);
    if (!Set) {
        return "";
    }
    if (LayoutHasFrame(Page->Layout)) {
        const FAN_CURVE A = CurveOfSetting(Held);
        const FAN_CURVE B = CurveOfSetting(Shown);
        for (UINTN Node = 0; Node < gNodeCount; Node++) {
            if (A.Column[Node] != B.Column[Node] || A.Level[Node] != B.Level[Node] ||
                A.Column[Node] != Page->Frame.Nodes[Node].Column + 1) {
                return "nodes and board don't agree";
            }
        }
    }
    return LayoutHasSlider(Page->Layout) && Held.FixedLevel != Page->Slider.Level + 1 ? "thumb and board don't agree"
                                                                                      : "";
}

} // namespace

std::string CheckRest(const bool (&Set)[gFanItemCount], std::vector<PIXEL>* RestFace)
{
    std::string Fault = CheckNothingInHand();
    Fault = Fault.empty() ? CheckFace(RestFace) : Fault;
    const FAN_PAGE* Page = FanPageOnTop();
    if (!Fault.empty() || Page == nullptr) {
        return Fault;
    }
    if (Page->CheckBox != nullptr) {
        Fault = CheckBoxed(Page);
    }
    Fault = Fault.empty() ? CheckBoard(Page, Set[IndexOfFanPage(Page)]) : Fault;
    const LINE_CHART* Chart = Page->Chart;
    if (Fault.empty() && !Stands(Chart->Pixels, Chart->Rect.Width, Chart->Rect.X, Chart->Rect.Y, Chart->Rect.Width,
                                 Chart->Rect.Height)) {
        Fault = "something else stands in the chart's place";
    }
    return Fault;
}

std::string CheckTurn(TURN_WATCH* Watch)
{
    if (gGuiCore == nullptr) {
        return "a turn without a core";
    }
    std::string Fault = CheckRegistry();
    for (const PAGE_BAR* Bar : {gFanPageBar, gTemperaturePageBar}) {
        Fault = Fault.empty() ? CheckBar(Bar) : Fault;
    }
    Fault = Fault.empty() ? CheckPages() : Fault;
    Fault = Fault.empty() ? CheckScreen() : Fault;
    if (!Fault.empty()) {
        return Fault;
    }
    if (gGuiCore->TargetKind > FocusEventDestroy ||
        (gGuiCore->TargetId > gGuiCore->Components->Count && gGuiCore->TargetId != gUnregisteredId) ||
        gGuiCore->TargetReset > 1 || gDragLock > 1) {
        return "the mailbox holds no legal target";
    }
    if (gGuiCore->MouseState > NOEVENT || gGuiCore->HoverPhase > HOVER_LEFT) {
        return "no legal state of the mouse";
    }
    if (!Watch->Begun) {
        *Watch = {gCurrentBoot->Pool.Count(), true};
    }
    if (gCurrentBoot->Pool.Count() != Watch->PoolBlocks) {
        return std::to_string(gCurrentBoot->Pool.Count()) + " blocks of pool instead of " +
               std::to_string(Watch->PoolBlocks);
    }
    return "";
}
