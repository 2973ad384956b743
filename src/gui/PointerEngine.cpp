#include "gui/PointerEngine.h"

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/DragDropFrame.h"
#include "controls/Slider.h"
#include "gui/PageBar.h"
#include "shell/Board.h"
#include "support/Library.h"

UINT8 gDragLock = 0;

namespace {

constexpr UINT64 gLongPress = 185000; // microseconds; a press of exactly this length is long
constexpr UINT64 gFemtosecondsPerMicrosecond = 1000000000;

UINT8 gPressTimed = 0;  // 1 from the moment the left button goes down until it comes up
UINT8 gHoverActive = 0; // 1 while LastHitId was told of the entry and not yet of the leave
UINT64 gPressStartTicks = 0;
UINT64 gPressEndTicks = 0;

struct GUI_LISTENER {
    LIST_ENTRY Link;
    UINT32 Index;
    GUI_CALLBACK Callback;
    UINT32 State;
};

struct GUI_LISTENER_LIST {
    LIST_ENTRY Head;
    UINT16 Count;
    bool Ready;
};

GUI_LISTENER_LIST gSliderListeners = {};
GUI_LISTENER_LIST gDragDropListeners = {};

bool IsActive(UINT32 Id)
{
    const GUI_COMPONENT* Component = ComponentOf(Id);
    return Component != nullptr && Component->Active == 1;
}

enum SCAN_RESULT { SCAN_STOP, SCAN_NEXT };

SCAN_RESULT SignalBoth(const GUI_COMPONENT* Component)
{
    SignalIfAny(Component->PrimaryEvent);
    SignalIfAny(Component->SecondaryEvent);
    return SCAN_STOP;
}

// A node or a thumb answers to the held button while the frame that it belongs to is on the page.
SCAN_RESULT ScanDraggable(const GUI_COMPONENT* Component, UINT32 FrameId)
{
    if (gGuiCore->MouseState == L_HOLD && IsActive(FrameId)) {
        SignalIfAny(Component->PrimaryEvent);
        return SCAN_STOP;
    }
    return SCAN_NEXT;
}

SCAN_RESULT ScanButton(const GUI_COMPONENT* Component)
{
    if (Component->Enabled != 1) {
        return SCAN_NEXT;
    }
    const bool Member = Component->Kind == _RADIO_BTN_COMPONENT;
    switch (gGuiCore->MouseState) {
    case NOEVENT:
        return SCAN_STOP;
    case L_HOLD:
        if (gDragLock == 0) {
            gGuiCore->MouseState = NOEVENT; // the press is taken; the scan goes on and sees the new state
        }
        return SCAN_NEXT;
    case L_CLICK:
        if (Member) {
            return SignalBoth(Component);
        }
        SignalIfAny(Component->PrimaryEvent);
        return SCAN_STOP;
    default:
        return SCAN_NEXT;
    }
}

// A radio acts on the press, with the click state set only for the length of the signalling.
SCAN_RESULT ScanRadio(const GUI_COMPONENT* Component)
{
    if (Component->Enabled != 1) {
        return SCAN_NEXT;
    }
    switch (gGuiCore->MouseState) {
    case NOEVENT:
        return SCAN_STOP;
    case L_HOLD:
        if (gDragLock != 0) {
            return SCAN_NEXT;
        }
        gGuiCore->MouseState = L_CLICK;
        (void)SignalBoth(Component);
        gGuiCore->MouseState = NOEVENT;
        return SCAN_STOP;
    case L_CLICK:
        return SignalBoth(Component);
    default:
        return SCAN_NEXT;
    }
}

SCAN_RESULT ScanCheckBox(const GUI_COMPONENT* Component)
{
    if (Component->Enabled == 0) {
        gGuiCore->HitId = 0;
        return SCAN_NEXT;
    }
    if (Component->Enabled != 1) {
        return SCAN_NEXT;
    }
    if (gGuiCore->MouseState == NOEVENT) {
        return SCAN_STOP;
    }
    if (gGuiCore->MouseState == L_CLICK && Component->Active == 1) {
        return SignalBoth(Component);
    }
    return SCAN_NEXT;
}

SCAN_RESULT ScanComponent(const GUI_COMPONENT* Component)
{
    switch (Component->Kind) {
    case _DRAGDROP_COMPONENT:
        if (gGuiCore->MouseState == NOEVENT && Component->Enabled == 1) {
            return SCAN_STOP;
        }
        return ScanDraggable(Component, static_cast<DRAGDROP_COMPONENT*>(Component->Owner)->Id);
    case _SLIDER_COMPONENT:
        return ScanDraggable(Component, static_cast<SLIDER_COMPONENT*>(Component->Owner)->FrameId);
    case _BTN_COMPONENT:
    case _RADIO_BTN_COMPONENT:
        return ScanButton(Component);
    case _RADIO_CBOX_COMPONENT:
        return ScanRadio(Component);
    case _CHECK_BOX_COMPONENT:
        return ScanCheckBox(Component);
    default:
        return SCAN_NEXT;
    }
}

VOID DispatchHover(const GUI_COMPONENT* Component)
{
    if (Component == nullptr) {
        return;
    }
    switch (Component->Kind) {
    case FOCUS_BUTTON:
    case GROUP_BUTTONS:
    case SUB_BTN_IN_SLIDER:
    case _BLT_BUF:
    case TEMPERATURE_SLIDER:
    case FocusEventDestroy:
        ClearTarget();
        break;
    case _SLIDER_COMPONENT:
        (void)static_cast<SLIDER_COMPONENT*>(Component->Owner)->HoverHandler(nullptr, Component->Owner);
        break;
    case _BTN_COMPONENT:
        (void)static_cast<BTN_COMPONENT*>(Component->Owner)->HoverHandler(nullptr, Component->Owner);
        break;
    case _RADIO_BTN_COMPONENT:
    case _RADIO_CBOX_COMPONENT:
        (void)static_cast<PAGE_BAR*>(Component->Owner)->HoverHandler(nullptr, Component->Owner);
        break;
    case _CHECK_BOX_COMPONENT:
        (void)static_cast<CHECK_BOX_COMPONENT*>(Component->Owner)->HoverHandler(nullptr, Component->Owner);
        break;
    default: // a drag node has no hover reaction
        break;
    }
}

VOID StepHover()
{
    GUI_CORE* Core = gGuiCore;
    if ((Core->MouseState != NOEVENT && Core->MouseState != L_HOLD_TO_RELEASE) || Core->HitId == Core->LastHitId) {
        return;
    }
    if (Core->HitId == 0 && gHoverActive == 1) {
        Core->HoverPhase = HOVER_LEFT;
        gHoverActive = 0;
        DispatchHover(ComponentOf(Core->LastHitId));
        Core->HoverPhase = HOVER_NONE;
        Core->LastHitId = Core->HitId;
    } else if (Core->HitId > 0 && gHoverActive == 0) {
        Core->HoverPhase = HOVER_ENTERED;
        gHoverActive = 1;
        Core->LastHitId = Core->HitId;
        DispatchHover(ComponentOf(Core->HitId));
        Core->HoverPhase = HOVER_NONE;
    } else if (Core->HitId > 0 && gHoverActive == 1) {
        Core->HoverPhase = HOVER_LEFT;
        DispatchHover(ComponentOf(Core->LastHitId));
        const GUI_COMPONENT* Entered = ComponentOf(Core->HitId);
        // The position is the one just read: the pointer may have gone on since the scan.
        if (PointerInComponent(Entered, Core->PointerX, Core->PointerY)) {
            Core->HoverPhase = HOVER_ENTERED;
            Core->LastHitId = 0;
            DispatchHover(Entered);
        }
        Core->HoverPhase = HOVER_NONE;
        gHoverActive = 0; // with LastHitId 0 the entry is announced once more in the next turn
    }
}

VOID ReadTimer(UINT64* Ticks)
{
    (void)gCpuArch->GetTimerValue(gCpuArch, 0, Ticks, &gGuiCore->TimerPeriod);
}

VOID StepPress()
{
    GUI_CORE* Core = gGuiCore;
    const bool Timed = gPressTimed != 0; // as it was before this step

    if (Core->LeftButton == 0 && !Timed &&
        (Core->MouseState == L_CLICK || Core->MouseState == L_HOLD || Core->MouseState == L_HOLD_TO_RELEASE)) {
        Core->MouseState = NOEVENT;
        Core->TargetId = 0; // kind and reset stay
        Core->Target = nullptr;
    }
    if (Core->LeftButton == 1 && !Timed && Core->MouseState == NOEVENT) {
        ReadTimer(&gPressStartTicks);
        Core->MouseState = L_HOLD;
        gHoverActive = 0;
        Core->LastHitId = 0;
        gPressTimed = 1;
    }
    if (Core->LeftButton == 0 && Timed) {
        ReadTimer(&gPressEndTicks);
        gPressTimed = 0;
        Core->PressDuration =
            (gPressEndTicks - gPressStartTicks) * Core->TimerPeriod / gFemtosecondsPerMicrosecond;
        Core->MouseState = Core->PressDuration >= gLongPress ? L_HOLD_TO_RELEASE : L_CLICK;
    }
}

VOID AddListener(GUI_LISTENER_LIST* List, GUI_CALLBACK Callback, UINT32 State)
{
    if (!List->Ready) {
        InitializeList(&List->Head);
        List->Count = 0;
        List->Ready = true;
    }
    GUI_LISTENER* Listener = AllocateZeroRecord<GUI_LISTENER>();
    if (Listener == nullptr) {
        return;
    }
    Listener->Index = List->Count;
    Listener->Callback = Callback;
    Listener->State = State;
    InsertTail(&List->Head, &Listener->Link);
    List->Count++;
}

EFI_STATUS FireListeners(GUI_LISTENER_LIST* List, UINT32 State)
{
    if (!List->Ready) {
        return EFI_SUCCESS;
    }
    // The next entry is looked up after the call: a listener may add another.
    for (LIST_ENTRY* Link = List->Head.ForwardLink; Link != &List->Head; Link = Link->ForwardLink) {
        const GUI_LISTENER* Listener = RecordOf<GUI_LISTENER>(Link, offsetof(GUI_LISTENER, Link));
        if (Listener->State == State) {
            Listener->Callback();
        }
    }
    return EFI_SUCCESS;
}

VOID FreeListenerList(GUI_LISTENER_LIST* List)
{
    while (List->Ready && !ListIsEmpty(&List->Head)) {
        GUI_LISTENER* Listener = RecordOf<GUI_LISTENER>(List->Head.ForwardLink, offsetof(GUI_LISTENER, Link));
        RemoveEntry(&Listener->Link);
        FreePool(Listener);
        List->Count--;
    }
}

} // namespace

bool PointerInComponent(const GUI_COMPONENT* Component, INT64 X, INT64 Y)
{
    if (Component == nullptr || X == 0 || Y == 0) {
        return false;
    }
    const GUI_RECT& Rect = Component->Rect;
    return X >= Rect.X && X < static_cast<INT64>(Rect.X) + Rect.Width && Y >= Rect.Y &&
           Y < static_cast<INT64>(Rect.Y) + Rect.Height;
}

EFI_STATUS ScanPointerTargets()
{
    // Registration may go on inside a reaction, so the count is read again at every step.
    for (UINT32 Id = 0; Id < gGuiCore->Components->Count; Id++) {
        const GUI_COMPONENT* Component = ComponentOf(Id);
        if (!PointerInComponent(Component, gGuiCore->PointerX, gGuiCore->PointerY)) {
            gGuiCore->HitId = 0;
            continue;
        }
        gGuiCore->HitId = Id;
        if (ScanComponent(Component) == SCAN_STOP) {
            break;
        }
    }
    return EFI_SUCCESS;
}

VOID UpdatePointer()
{
    GUI_CORE* Core = gGuiCore;
    (void)gCursorService->SetCursorLimits(gScreenWidth, gScreenHeight);
    (void)gCursorService->GetCursorState(&Core->PointerX, &Core->PointerY, &Core->PointerZ, &Core->LeftButton,
                                         &Core->RightButton);
    StepHover();
    StepPress();
}

VOID AddSliderListener(GUI_CALLBACK Callback, UINT32 State)
{
    AddListener(&gSliderListeners, Callback, State);
}

VOID AddDragDropListener(GUI_CALLBACK Callback, UINT32 State)
{
    AddListener(&gDragDropListeners, Callback, State);
}

VOID AddListenerByKind(GUI_CALLBACK Callback, UINT8 Kind, UINT32 State)
{
    if (Callback == nullptr) {
        return;
    }
    if (Kind == _DRAGDROP_COMPONENT) {
        AddDragDropListener(Callback, State);
    } else if (Kind == _SLIDER_COMPONENT) {
        AddSliderListener(Callback, State);
    }
}

EFI_STATUS FireSliderListeners(UINT32 State)
{
    return FireListeners(&gSliderListeners, State);
}

EFI_STATUS FireDragDropListeners(UINT32 State)
{
    return FireListeners(&gDragDropListeners, State);
}

VOID FreeListeners()
{
    FreeListenerList(&gDragDropListeners);
    FreeListenerList(&gSliderListeners);
}
