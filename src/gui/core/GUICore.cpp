#include "gui/core/GUICore.h"

#include "gui/core/Drag.h"
#include "gui/core/Listeners.h"
#include "shell/contract/Board.h"
#include "support/Lists.h"
#include "support/Pool.h"
#include "support/Report.h"

GUI_CORE* gGuiCore = nullptr;

namespace {

constexpr CHAR8 gSourcePath[] = "gui\\GUICore.cpp";

constexpr INT64 gFirstPointerX = 174;
constexpr INT64 gFirstPointerY = 196;

VOID ClearTargetOf(GUI_CORE* Core)
{
    Core->TargetId = 0;
    Core->Target = nullptr;
    Core->TargetKind = FocusEventDestroy;
    Core->TargetReset = 0;
}

VOID FreeComponents(GUI_COMPONENT_LIST* List)
{
    while (!ListIsEmpty(&List->Head)) {
        GUI_COMPONENT* Component = RecordOf<GUI_COMPONENT>(List->Head.ForwardLink, offsetof(GUI_COMPONENT, Link));
        RemoveEntry(&Component->Link);
        FreePool(Component);
        List->Count--;
    }
    FreePool(List);
}

VOID FreeCore(GUI_CORE* Core)
{
    FreePool(Core->CursorImage);
    FreePool(Core->CursorSaveUnder);
    if (Core->Components != nullptr) {
        FreeComponents(Core->Components);
    }
    FreePool(Core->Screen);
    FreePool(Core->Overlay);
    FreePool(Core->Background);
    FreePool(Core->CursorBlend);
    FreePool(Core);
}

VOID SetStartValues(GUI_CORE* Core)
{
    Core->CursorImage = nullptr;
    Core->CursorSaveUnder = nullptr;
    Core->CursorBlend = nullptr;
    Core->CursorClipHeight = 0;
    Core->CursorClipWidth = 0;
    Core->CursorWidth = 0;
    Core->CursorHeight = 0;
    Core->CursorImageSize = 0;
    Core->CursorX = gScreenWidth; // off the screen: the first composition has nothing to restore
    Core->CursorY = gScreenHeight;
    Core->LeftButton = 0;
    Core->RightButton = 0;
    Core->PointerX = gFirstPointerX;
    Core->PointerY = gFirstPointerY;
    Core->PointerZ = 0;
    Core->HoverPhase = HOVER_NONE;
    Core->MouseState = NOEVENT;
    Core->HitId = 0;
    Core->LastHitId = ~0u;
    Core->Key = {};
    Core->ExitRequested = 0;
    Core->PressDuration = 0;
    Core->TimerPeriod = 0;
    Core->StartTicks = 0;
    Core->LastTicks = 0;
    Core->CursorSettled = 1;
    ClearTargetOf(Core);
}

// The pointer's picture and the two buffers of its size.
EFI_STATUS InitCursorBlt(GUI_CORE* Core)
{
    TEMPORARY<VOID> Stored;
    UINTN StoredSize = 0;
    EFI_STATUS Status = gImageLookup->GetFileSection(&gCursorFileGuid, EFI_SECTION_RAW, &Stored.Data, &StoredSize);
    if (EfiError(Status)) {
        Status = gImageLookup->GetFileSection(&gCursorFileGuid, EFI_SECTION_PE32, &Stored.Data, &StoredSize);
    }
    if (EfiError(Status) || !Stored) {
        Stored.Data = nullptr; // whatever the service left there
        REPORT("can't find the image (InitCursorBlt)");
        return EFI_NO_MEDIA;
    }

    UINTN ImageSize = 0;
    UINT32 Height = 0;
    UINT32 Width = 0;
    Status = gImageDecoder->ConvertBmpToGopBltA(gImageDecoder, Stored.Data, static_cast<UINT32>(StoredSize),
                                                &Core->CursorImage, &ImageSize, &Height, &Width);
    if (EfiError(Status)) {
        Core->CursorImage = nullptr;
    }
    // Composition needs the picture whenever it runs, so a pointer that can't be decoded ends the start here.
    if (EfiError(Status) || Core->CursorImage == nullptr || !PlausibleSize(Width, Height)) {
        REPORT("can't decode the image (InitCursorBlt)");
        return EfiError(Status) ? Status : EFI_UNSUPPORTED;
    }
    Core->CursorImageSize = ImageSize;
    Core->CursorClipHeight = Height;
    Core->CursorClipWidth = Width;

    const UINTN Size = static_cast<UINTN>(Height) * Width * sizeof(PIXEL);
    VOID* Block = nullptr;
    Status = gBS->AllocatePool(EfiBootServicesData, Size, &Block);
    if (EfiError(Status)) {
        REPORT("AllocatePool Fail");
        return Status;
    }
    Core->CursorBlend = static_cast<PIXEL*>(Block);
    Core->CursorHeight = Core->CursorClipHeight;
    Core->CursorWidth = Core->CursorClipWidth;
    ReleasePool(Stored.Data);

    Status = gBS->AllocatePool(EfiBootServicesData, Size, &Block);
    if (EfiError(Status)) {
        REPORT("AllocatePool Fail");
        return Status;
    }
    Core->CursorSaveUnder = static_cast<PIXEL*>(Block);
    SetMem(Core->CursorSaveUnder, Size, 0);
    return EFI_SUCCESS;
}

} // namespace

EFI_STATUS CreateGuiCore()
{
    VOID* Block[5] = {}; // the core, Overlay, Background, Screen, the registry
    const UINTN Size[5] = {sizeof(GUI_CORE), gScreenBytes, gScreenBytes, gScreenBytes, sizeof(GUI_COMPONENT_LIST)};
    for (UINTN Index = 0; Index < 5; Index++) {
        const EFI_STATUS Status = gBS->AllocatePool(EfiBootServicesData, Size[Index], &Block[Index]);
        if (EfiError(Status)) {
            while (Index > 0) {
                FreePool(Block[--Index]);
            }
            return Status;
        }
    }
    GUI_CORE* Core = static_cast<GUI_CORE*>(Block[0]);
    Core->Overlay = static_cast<PIXEL*>(Block[1]);
    Core->Background = static_cast<PIXEL*>(Block[2]);
    Core->Screen = static_cast<PIXEL*>(Block[3]);
    Core->Components = static_cast<GUI_COMPONENT_LIST*>(Block[4]);

    SetMem(Core->Screen, gScreenBytes, 0);
    gDragLock = 0;
    InitializeList(&Core->Components->Head);
    Core->Components->Count = 0;
    Core->BaseRect = {};
    (void)RegisterComponent(Core->Components, Core, &Core->BaseRect, FocusEventDestroy, &Core->HitId, nullptr, nullptr,
                            u"BASE");
    SetStartValues(Core);

    const EFI_STATUS Status = InitCursorBlt(Core);
    if (EfiError(Status)) {
        FreeCore(Core);
        return Status;
    }
    (void)gCursorService->SetCursorLimits(gScreenWidth, gScreenHeight);
    gGuiCore = Core;
    return EFI_SUCCESS;
}

EFI_STATUS DestroyGuiCore()
{
    FreeListeners();
    if (gGuiCore == nullptr) {
        return EFI_NOT_FOUND;
    }
    FreeCore(gGuiCore);
    gGuiCore = nullptr;
    (void)gCursorService->CloseCursor();
    return EFI_SUCCESS;
}

EFI_STATUS RegisterComponent(GUI_COMPONENT_LIST* List, VOID* Owner, const GUI_RECT* Rect, UINT32 Kind, UINT32* IdOut,
                             EFI_EVENT PrimaryEvent, EFI_EVENT SecondaryEvent, const CHAR16* Name)
{
    const GUI_RECT Copy = *Rect;
    *IdOut = List->Count;
    GUI_COMPONENT* Component = AllocateZeroRecord<GUI_COMPONENT>();
    if (Component == nullptr) {
        return EFI_SUCCESS;
    }
    InsertTail(&List->Head, &Component->Link);
    Component->Id = List->Count;
    Component->Rect = Copy;
    Component->Kind = static_cast<UINT8>(Kind);
    Component->Active = 0;
    Component->Enabled = 1;
    Component->Owner = Owner;
    Component->Name = Name;
    Component->PrimaryEvent = PrimaryEvent;
    Component->SecondaryEvent = SecondaryEvent;
    List->Count++;
    return EFI_SUCCESS;
}

EFI_STATUS FindComponent(GUI_COMPONENT_LIST* List, UINT16 Id, GUI_COMPONENT** ComponentOut)
{
    *ComponentOut = nullptr;
    for (LIST_ENTRY* Link = List->Head.ForwardLink; Link != &List->Head; Link = Link->ForwardLink) {
        GUI_COMPONENT* Component = RecordOf<GUI_COMPONENT>(Link, offsetof(GUI_COMPONENT, Link));
        if (Component->Id == Id) {
            *ComponentOut = Component;
            return EFI_SUCCESS;
        }
    }
    return EFI_NOT_FOUND;
}

VOID RegisterControl(VOID* Owner, const GUI_RECT* Rect, COMPONENT_KIND Kind, UINT32* IdOut, EFI_EVENT PrimaryEvent,
                     EFI_EVENT SecondaryEvent, const CHAR16* Name)
{
    GUI_COMPONENT_LIST* List = gGuiCore->Components;
    if (List == nullptr) {
        return;
    }
    const UINT16 Before = List->Count;
    (void)RegisterComponent(List, Owner, Rect, Kind, IdOut, PrimaryEvent, SecondaryEvent, Name);
    if (List->Count == Before) {
        *IdOut = gUnregisteredId;
    }
}

GUI_COMPONENT* ComponentOf(UINT32 Id)
{
    GUI_COMPONENT* Component = nullptr;
    (void)FindComponent(gGuiCore->Components, static_cast<UINT16>(Id), &Component);
    return Component;
}

VOID ClearTarget() { ClearTargetOf(gGuiCore); }

VOID SignalComponent(const GUI_COMPONENT* Component)
{
    SignalIfAny(Component->PrimaryEvent);
    SignalIfAny(Component->SecondaryEvent);
}

SCAN_RESULT ScanHeldPart(const GUI_COMPONENT* Component, UINT32 ControlId)
{
    const GUI_COMPONENT* Control = ComponentOf(ControlId);
    if (gGuiCore->MouseState == L_HOLD && Control != nullptr && Control->Active == 1) {
        SignalIfAny(Component->PrimaryEvent);
        return SCAN_STOP;
    }
    return SCAN_NEXT;
}
