#include "tests/faults/Invariants.h"

#include "fan/FanPage.h"
#include "graphics/GraphicProtocol.h"
#include "gui/GUICore.h"
#include "gui/PageBar.h"
#include "gui/PointerEngine.h"
#include "platform/host/Boot.h"
#include "support/Library.h"

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
            if (X >= gScreenWidth || Y >= gScreenHeight || (Pixel.Red == 0xFF && Pixel.Blue == 0xFF && Pixel.Green == 0)) {
                continue;
            }
            const PIXEL& Shown = gGuiCore->Screen[Y * gScreenWidth + X];
            Opaque++;
            Equal += Pixel.Red == Shown.Red && Pixel.Green == Shown.Green && Pixel.Blue == Shown.Blue ? 1 : 0;
        }
    }
    return Opaque > 20 && Equal * 10 > Opaque * 9 ? "the surface holds the pointer" : "";
}

} // namespace

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
    if (gGuiCore->TargetKind > FocusEventDestroy || (gGuiCore->TargetId > gGuiCore->Components->Count && gGuiCore->TargetId != gUnregisteredId) ||
        gGuiCore->TargetReset > 1 || gDragLock > 1) {
        return "the mailbox holds no legal target";
    }
    if (gGuiCore->MouseState > NOEVENT || gGuiCore->HoverPhase > HOVER_LEFT) {
        return "no legal state of the mouse";
    }
    if (!Watch->Begun) {
        *Watch = {gBoot->Pool.Count(), true};
    }
    if (gBoot->Pool.Count() != Watch->PoolBlocks) {
        return std::to_string(gBoot->Pool.Count()) + " blocks of pool instead of " + std::to_string(Watch->PoolBlocks);
    }
    return "";
}
