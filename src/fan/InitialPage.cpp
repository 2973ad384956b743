#include "fan/InitialPage.h"

#include "fan/FanPage.h"
#include "gui/PageBarMembers.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"

namespace {

// As if the tab of the stored fan were clicked.
VOID ClickStoredTab()
{
    gGuiCore->MouseState = L_CLICK;
    for (UINT8 Item = gFirstFanItem; Item < gFirstFanItem + gFanItemCount; Item++) {
        if (gItemPresent[Item] != 1 || Item != gGlobalVariable.SelectedFanItem) {
            continue;
        }
        const FAN_PAGE* Page = FindFanPage(Item);
        const BTN_COMPONENT* Tab = Page == nullptr ? nullptr : Page->Tab;
        const GUI_COMPONENT* Component = Tab == nullptr ? nullptr : ComponentOf(Tab->Id);
        if (Component != nullptr) {
            gFanPageBar->SelectedId = Tab->Id;
            gGuiCore->HitId = Tab->Id;
            SignalIfAny(Component->PrimaryEvent);
            SignalIfAny(Component->SecondaryEvent);
        }
        break;
    }
    gGuiCore->MouseState = NOEVENT;
}

VOID ShowSelectedPage()
{
    PAGE_BAR_LIST* Entries = gFanPageBar->Entries;
    for (LIST_ENTRY* Link = Entries->Head.ForwardLink; Link != &Entries->Head; Link = Link->ForwardLink) {
        PAGE_BAR_ENTRY* Entry = EntryOf(Link);
        if (ControlId(Entry) != gFanPageBar->SelectedId) {
            continue;
        }
        SignalIfAny(Entry->SelectEvent);
        for (LIST_ENTRY* Item = Entry->Targets.ForwardLink; Item != &Entry->Targets; Item = Item->ForwardLink) {
            const PAGE_BAR_TARGET* Target = TargetOf(Item);
            GUI_COMPONENT* Component = ComponentOf(Target->ComponentId);
            if (Component != nullptr && (Target->Flag == nullptr || *Target->Flag == Target->FlagValue)) {
                Component->Active = 1;
            }
            SignalIfAny(Target->Event);
        }
        break;
    }

    UINT32 Position = 0;
    for (LIST_ENTRY* Link = Entries->Head.ForwardLink; Link != &Entries->Head; Link = Link->ForwardLink) {
        const PAGE_BAR_ENTRY* Entry = EntryOf(Link);
        if (ControlId(Entry) != gFanPageBar->SelectedId) {
            PaintButton(BUTTON_FRAME_REST, ButtonOf(Entry));
        } else {
            gFanPageBar->SelectedIndex = Position;
            PaintButton(BUTTON_FRAME_SELECTED, ButtonOf(Entry));
            SignalIfAny(Entry->SelectEvent);
        }
        Position++;
    }
}

VOID ShowSelectedSource()
{
    for (UINT8 Item = gFirstTemperatureItem; Item < gFirstTemperatureItem + gTemperatureItemCount; Item++) {
        if (gItemPresent[Item] != 1 || Item != gGlobalVariable.TemperatureSource) {
            continue;
        }
        const CHECK_BOX_COMPONENT* Radio = gTemperatureRadio[Item];
        if (gTemperaturePageBar != nullptr && Radio != nullptr && ComponentOf(Radio->Id) != nullptr) {
            gTemperaturePageBar->SelectedId = Radio->Id;
        }
        break;
    }
    if (gTemperaturePageBar == nullptr) {
        return;
    }
    PAGE_BAR_LIST* Entries = gTemperaturePageBar->Entries;
    UINT32 Position = 0;
    for (LIST_ENTRY* Link = Entries->Head.ForwardLink; Link != &Entries->Head; Link = Link->ForwardLink) {
        CHECK_BOX_COMPONENT* Box = CheckBoxOf(EntryOf(Link));
        DrawCheckBox(Box->State == 0 ? CHECK_BOX_UNCHECKED : CHECK_BOX_CHECKED, Box);
        if (Box->Id == gTemperaturePageBar->SelectedId) {
            gTemperaturePageBar->SelectedIndex = Position;
        }
        Position++;
    }
}

} // namespace

VOID SelectInitialPage()
{
    if (gFanPageBar != nullptr) {
        ClickStoredTab();
        ShowSelectedPage();
    }
    ShowSelectedSource();
}
