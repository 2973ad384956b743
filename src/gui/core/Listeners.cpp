#include "gui/core/Listeners.h"

#include "support/Lists.h"
#include "support/Pool.h"

namespace {

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

VOID AddSliderListener(GUI_CALLBACK Callback, UINT32 State) { AddListener(&gSliderListeners, Callback, State); }

VOID AddDragDropListener(GUI_CALLBACK Callback, UINT32 State) { AddListener(&gDragDropListeners, Callback, State); }

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

EFI_STATUS FireSliderListeners(UINT32 State) { return FireListeners(&gSliderListeners, State); }

EFI_STATUS FireDragDropListeners(UINT32 State) { return FireListeners(&gDragDropListeners, State); }

VOID FreeListeners()
{
    FreeListenerList(&gDragDropListeners);
    FreeListenerList(&gSliderListeners);
}
