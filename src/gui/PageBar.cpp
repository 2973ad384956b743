#include "gui/PageBar.h"

#include "gui/PageBarMembers.h"
#include "support/Identifiers.h"
#include "support/Lists.h"
#include "support/Pool.h"
#include "support/Print.h"

PAGE_BAR* gFanPageBar = nullptr;
PAGE_BAR* gTemperaturePageBar = nullptr;

namespace {

// 1 between finding the entry that the pointer entered and painting it. Shared by both bars, and meant to be: when a
// long release meets an entry it stays 1, and no member shows a hover frame until the first entry of a bar is entered.
UINT8 gHoverLatch = 0;

PAGE_BAR_ENTRY* EntryAt(const PAGE_BAR* Bar, UINT32 Index)
{
    PAGE_BAR_ENTRY* Entry = nullptr;
    (void)FindPageBarEntry(Bar->Entries, static_cast<UINT16>(Index), &Entry);
    return Entry;
}

// The group event only has to exist, so that the scan's signal reaches the group.
EFI_STATUS OnGroupEvent(EFI_EVENT, VOID*) { return EFI_SUCCESS; }

EFI_STATUS CreateSelectEvent(PAGE_BAR_ENTRY* Entry, EFI_EVENT_NOTIFY SelectNotify)
{
    return CreateEvent(EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_NOTIFY, SelectNotify, Entry, &Entry->SelectEvent);
}

EFI_STATUS JoinPageBar(PAGE_BAR* Bar, VOID* Control, UINT32 ControlId, UINT8 Kind, EFI_EVENT_NOTIFY SelectNotify)
{
    GUI_COMPONENT* Component = ComponentOf(ControlId);
    if (Component == nullptr) {
        return EFI_LOAD_ERROR;
    }
    for (LIST_ENTRY* Link = Bar->Entries->Head.ForwardLink; Link != &Bar->Entries->Head; Link = Link->ForwardLink) {
        PAGE_BAR_ENTRY* Member = EntryOf(Link);
        if (Member->Control == Control) {
            (void)CancelAndCloseEvent(Member->SelectEvent);
            Member->SelectEvent = nullptr;
            (void)CreateSelectEvent(Member, SelectNotify);
            return EFI_SUCCESS;
        }
    }

    PAGE_BAR_ENTRY* Entry = AllocateZeroRecord<PAGE_BAR_ENTRY>();
    if (Entry == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    InsertTail(&Bar->Entries->Head, &Entry->Link);
    GenerateGuid(&Entry->GroupGuid);
    InitializeList(&Entry->Targets);
    Entry->Control = Control;
    Component->Kind = Kind;
    Entry->Kind = Kind;
    // The kind says that the owner is a bar, so the owner follows it even when the bar has no event to give.
    Component->Owner = Bar;
    if (Bar->Event != nullptr) {
        Component->PrimaryEvent = Bar->Event;
    }
    (void)CreateSelectEvent(Entry, SelectNotify);
    const EFI_STATUS Status =
        CreateGroupEvent(EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnGroupEvent, Entry, &Entry->GroupGuid, &Entry->GroupEvent);
    Component->SecondaryEvent = Entry->GroupEvent;
    Entry->Index = Bar->Entries->Count;
    if (Entry->Index == 0) {
        Bar->SelectedId = ControlId;
    }
    Bar->Entries->Count++;
    return Status;
}

VOID SwitchTargets(PAGE_BAR_ENTRY* Entry, bool On)
{
    for (LIST_ENTRY* Link = Entry->Targets.ForwardLink; Link != &Entry->Targets; Link = Link->ForwardLink) {
        const PAGE_BAR_TARGET* Target = TargetOf(Link);
        GUI_COMPONENT* Component = ComponentOf(Target->ComponentId);
        if (Component == nullptr) {
            continue;
        }
        if (!On) {
            Component->Enabled = 0;
            Component->Active = 0;
        } else if (Target->Flag == nullptr || *Target->Flag == Target->FlagValue) {
            Component->Enabled = 1;
            Component->Active = 1;
        }
    }
}

// Both selections give back false when the click ends the bar's logic: it went to the selected member.
bool SelectButton(PAGE_BAR* Bar)
{
    const PAGE_BAR_ENTRY* Present = EntryAt(Bar, Bar->SelectedIndex);
    if (Present != nullptr && ControlId(Present) == Bar->SelectedId && Bar->SelectedId == gGuiCore->HitId) {
        return false;
    }
    PAGE_BAR_ENTRY* Selected = nullptr;
    for (LIST_ENTRY* Link = Bar->Entries->Head.ForwardLink; Link != &Bar->Entries->Head; Link = Link->ForwardLink) {
        PAGE_BAR_ENTRY* Entry = EntryOf(Link);
        SwitchTargets(Entry, false);
        const UINT32 Id = ControlId(Entry);
        if (Id == gGuiCore->TargetId && Id == gGuiCore->HitId && Entry->Index != Bar->SelectedIndex) {
            Bar->SelectedIndex = Entry->Index;
            Bar->SelectedId = Id;
            Selected = Entry;
        }
    }
    if (Selected != nullptr) {
        SwitchTargets(Selected, true);
        SignalIfAny(Selected->SelectEvent);
    }
    return true;
}

bool SelectCheckBox(PAGE_BAR* Bar)
{
    if (Bar->SelectedId == gGuiCore->HitId) {
        return false;
    }
    PAGE_BAR_ENTRY* Selected = nullptr;
    for (LIST_ENTRY* Link = Bar->Entries->Head.ForwardLink; Link != &Bar->Entries->Head; Link = Link->ForwardLink) {
        PAGE_BAR_ENTRY* Entry = EntryOf(Link);
        const UINT32 Id = ControlId(Entry);
        if (Id == gGuiCore->TargetId && Id == gGuiCore->HitId && Entry->Index != Bar->SelectedIndex) {
            Bar->SelectedIndex = Entry->Index;
            Bar->SelectedId = Id;
            CheckBoxOf(Entry)->State = 1;
            Selected = Entry;
        } else {
            CheckBoxOf(Entry)->State = 0;
        }
    }
    if (Selected != nullptr) {
        SignalIfAny(Selected->SelectEvent);
    }
    return true;
}

// The entry whose control is under the pointer and waits to be painted as entered; null when there is none.
PAGE_BAR_ENTRY* TakeEntered(PAGE_BAR* Bar, UINT32 Entered, bool StateAllows)
{
    PAGE_BAR_ENTRY* Entry = EntryAt(Bar, Entered);
    if (Entry == nullptr || gHoverLatch != 1 || gGuiCore->HoverPhase != HOVER_ENTERED || !StateAllows ||
        ControlId(Entry) != gGuiCore->HitId) {
        return nullptr;
    }
    gHoverLatch = 0;
    return Entry;
}

bool PointerEntered(const PAGE_BAR_ENTRY* Entry, bool StateAllows)
{
    const UINT32 Id = ControlId(Entry);
    return gGuiCore->HoverPhase == HOVER_ENTERED && StateAllows && gHoverLatch == 0 && Id == gGuiCore->TargetId &&
           Id == gGuiCore->HitId;
}

VOID RepaintButtons(PAGE_BAR* Bar)
{
    UINT32 Entered = 0;
    UINT32 Position = 0;
    for (LIST_ENTRY* Link = Bar->Entries->Head.ForwardLink; Link != &Bar->Entries->Head; Link = Link->ForwardLink) {
        const PAGE_BAR_ENTRY* Entry = EntryOf(Link);
        if (PointerEntered(Entry, gGuiCore->MouseState == NOEVENT)) {
            Entered = Position;
            gHoverLatch = 1;
        }
        if (Position != Bar->SelectedIndex) {
            PaintButton(BUTTON_FRAME_REST, ButtonOf(Entry));
        } else if (gGuiCore->MouseState != L_CLICK) {
            PaintButton(BUTTON_FRAME_SELECTED, ButtonOf(Entry));
        }
        Position++;
    }
    const bool StateAllows = gGuiCore->MouseState == NOEVENT || gGuiCore->MouseState == L_HOLD_TO_RELEASE;
    const PAGE_BAR_ENTRY* Entry = TakeEntered(Bar, Entered, StateAllows);
    if (Entry != nullptr) {
        PaintButton(BUTTON_FRAME_HOVER, ButtonOf(Entry));
        ClearTarget();
    }
}

VOID RepaintCheckBoxes(PAGE_BAR* Bar)
{
    UINT32 Entered = 0;
    UINT32 Position = 0;
    for (LIST_ENTRY* Link = Bar->Entries->Head.ForwardLink; Link != &Bar->Entries->Head; Link = Link->ForwardLink) {
        const PAGE_BAR_ENTRY* Entry = EntryOf(Link);
        CHECK_BOX_COMPONENT* Box = CheckBoxOf(Entry);
        if (PointerEntered(Entry, gGuiCore->MouseState == NOEVENT || gGuiCore->MouseState == L_HOLD_TO_RELEASE)) {
            Entered = Position;
            gHoverLatch = 1;
        }
        if (Position != Bar->SelectedIndex) {
            if (Box->State == 0) {
                DrawCheckBox(CHECK_BOX_UNCHECKED, Box);
            }
        } else if (gGuiCore->MouseState != L_CLICK) {
            DrawCheckBox(Box->State == 0 ? CHECK_BOX_UNCHECKED : CHECK_BOX_CHECKED, Box);
        }
        Position++;
    }
    // Narrower than the test above: an entry met in a long release leaves the latch up.
    const PAGE_BAR_ENTRY* Entry = TakeEntered(Bar, Entered, gGuiCore->MouseState == NOEVENT);
    if (Entry != nullptr) {
        CHECK_BOX_COMPONENT* Box = CheckBoxOf(Entry);
        DrawCheckBox(Box->State == 0 ? CHECK_BOX_UNCHECKED_HOVER : CHECK_BOX_CHECKED_HOVER, Box);
        ClearTarget();
    }
}

// The bar's logic on the target fields: selection when the button was clicked, then repainting.
EFI_STATUS PageBarDispatch()
{
    PAGE_BAR* Bar = static_cast<PAGE_BAR*>(gGuiCore->Target);
    const bool Buttons = gGuiCore->TargetKind == _RADIO_BTN_COMPONENT;
    if (Bar == nullptr || (!Buttons && gGuiCore->TargetKind != _RADIO_CBOX_COMPONENT)) {
        return EFI_NOT_FOUND;
    }
    if (gGuiCore->MouseState == L_CLICK && !(Buttons ? SelectButton(Bar) : SelectCheckBox(Bar))) {
        ClearTarget();
        return Buttons ? EFI_ABORTED : EFI_SUCCESS;
    }
    if (Buttons) {
        RepaintButtons(Bar);
    } else {
        RepaintCheckBoxes(Bar);
    }
    return EFI_NOT_FOUND;
}

} // namespace

EFI_STATUS CreatePageBar(PAGE_BAR** BarOut)
{
    VOID* Block = nullptr;
    EFI_STATUS Status = gBS->AllocatePool(EfiBootServicesData, sizeof(PAGE_BAR), &Block);
    if (EfiError(Status)) {
        PrintToConsole(u"AllocatePool Fail (PageBar Control) ,Status=%r\n", Status);
        return Status;
    }
    SetMem(Block, sizeof(PAGE_BAR), 0);
    PAGE_BAR* Bar = static_cast<PAGE_BAR*>(Block);

    Status = gBS->AllocatePool(EfiBootServicesData, sizeof(PAGE_BAR_LIST), &Block);
    if (EfiError(Status)) {
        FreePool(Bar);
        PrintToConsole(u"AllocatePool Fail (PageBar_Link_List) ,Status=%r\n", Status);
        return Status;
    }
    Bar->Entries = static_cast<PAGE_BAR_LIST*>(Block);
    InitializeList(&Bar->Entries->Head);
    Bar->Entries->Count = 0;
    (void)CreateEvent(EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnPageBarEvent, Bar, &Bar->Event);
    Bar->HoverHandler = OnPageBarEvent;
    *BarOut = Bar;
    return EFI_SUCCESS;
}

EFI_STATUS AddPageBarButton(PAGE_BAR* Bar, BTN_COMPONENT* Button, EFI_EVENT_NOTIFY SelectNotify)
{
    if (Bar == nullptr || Button == nullptr) {
        return EFI_LOAD_ERROR;
    }
    return JoinPageBar(Bar, Button, Button->Id, _RADIO_BTN_COMPONENT, SelectNotify);
}

EFI_STATUS AddPageBarCheckBox(PAGE_BAR* Bar, CHECK_BOX_COMPONENT* CheckBox, EFI_EVENT_NOTIFY SelectNotify)
{
    if (Bar == nullptr || CheckBox == nullptr) {
        return EFI_LOAD_ERROR;
    }
    return JoinPageBar(Bar, CheckBox, CheckBox->Id, _RADIO_CBOX_COMPONENT, SelectNotify);
}

EFI_STATUS AddPageBarTarget(BTN_COMPONENT* Button, VOID* Context, EFI_EVENT_NOTIFY Notify, UINT16 ComponentId,
                            const UINT8* Flag, UINT8 FlagValue)
{
    const GUI_COMPONENT* Component = Button == nullptr ? nullptr : ComponentOf(Button->Id);
    if (Component == nullptr || gFanPageBar == nullptr || Component->Owner != gFanPageBar) {
        return EFI_NO_RESPONSE;
    }
    PAGE_BAR_ENTRY* Entry = nullptr;
    LIST_ENTRY* Head = &gFanPageBar->Entries->Head;
    for (LIST_ENTRY* Link = Head->ForwardLink; Link != Head; Link = Link->ForwardLink) {
        if (EntryOf(Link)->Control == Button) {
            Entry = EntryOf(Link);
            break;
        }
    }
    if (Entry == nullptr) {
        return EFI_NO_RESPONSE;
    }

    PAGE_BAR_TARGET* Target = AllocateZeroRecord<PAGE_BAR_TARGET>();
    if (Target == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    InsertTail(&Entry->Targets, &Target->Link);
    // Without a notify function the firmware refuses, the event stays null, and the target only switches its component.
    (void)CreateGroupEvent(EVT_NOTIFY_SIGNAL, TPL_CALLBACK, Notify, Context, &Entry->GroupGuid, &Target->Event);
    Target->ComponentId = ComponentId;
    if (Flag != nullptr) {
        Target->Flag = Flag;
        Target->FlagValue = FlagValue;
    }
    Target->Index = Entry->TargetCount;
    Entry->TargetCount++;
    return EFI_SUCCESS;
}

EFI_STATUS FindPageBarEntry(PAGE_BAR_LIST* List, UINT16 Index, PAGE_BAR_ENTRY** EntryOut)
{
    *EntryOut = nullptr;
    if (ListIsEmpty(&List->Head)) {
        return EFI_NOT_FOUND;
    }
    for (LIST_ENTRY* Link = List->Head.ForwardLink; Link != &List->Head; Link = Link->ForwardLink) {
        if (EntryOf(Link)->Index == Index) {
            *EntryOut = EntryOf(Link);
            break;
        }
    }
    return EFI_SUCCESS;
}

EFI_STATUS OnPageBarEvent(EFI_EVENT, VOID* Context)
{
    PAGE_BAR* Bar = static_cast<PAGE_BAR*>(Context);
    LIST_ENTRY* Head = &Bar->Entries->Head;
    for (LIST_ENTRY* Link = Head->ForwardLink; Link != Head; Link = Link->ForwardLink) {
        const PAGE_BAR_ENTRY* Entry = EntryOf(Link);
        const UINT32 Id = ControlId(Entry);
        if (Id == gGuiCore->HitId || Id == gGuiCore->LastHitId) {
            gGuiCore->TargetId = static_cast<UINT16>(Id);
            gGuiCore->Target = Bar;
            gGuiCore->TargetKind = Entry->Kind;
            (void)PageBarDispatch();
            break;
        }
    }
    return EFI_NOT_FOUND;
}

EFI_STATUS DestroyPageBarEntries(PAGE_BAR_LIST* List)
{
    if (ListIsEmpty(&List->Head)) {
        return EFI_NOT_FOUND;
    }
    EFI_STATUS Status = EFI_SUCCESS;
    while (!ListIsEmpty(&List->Head)) {
        PAGE_BAR_ENTRY* Entry = EntryOf(List->Head.ForwardLink);
        Status = EFI_SUCCESS;
        (void)CancelAndCloseEvent(Entry->SelectEvent);
        (void)CancelAndCloseEvent(Entry->GroupEvent);
        while (!ListIsEmpty(&Entry->Targets)) {
            PAGE_BAR_TARGET* Target = TargetOf(Entry->Targets.ForwardLink);
            if (Target->Event != nullptr) {
                Status = CancelAndCloseEvent(Target->Event);
            }
            RemoveEntry(&Target->Link);
            FreePool(Target);
            Entry->TargetCount--;
        }
        RemoveEntry(&Entry->Link);
        FreePool(Entry);
        List->Count--;
    }
    return Status;
}

EFI_STATUS DestroyPageBar(PAGE_BAR* Bar)
{
    if (Bar == nullptr) {
        return EFI_SUCCESS;
    }
    EFI_STATUS Status = EFI_SUCCESS;
    if (Bar->Entries != nullptr) {
        Status = DestroyPageBarEntries(Bar->Entries);
    }
    if (Bar->Event != nullptr) {
        Status = CancelAndCloseEvent(Bar->Event);
    }
    FreePool(Bar->Entries);
    FreePool(Bar);
    return Status;
}
