#include "controls/Button.h"

#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "graphics/Text.h"
#include "gui/core/Drag.h"
#include "support/Identifiers.h"
#include "support/Lists.h"
#include "support/Pool.h"
#include "support/Report.h"
#include "support/Strings.h"

namespace {

// How the caption of each frame is rendered. The key is the colour around the letters, which stays out.
struct CAPTION_LOOK {
    PIXEL Color;
    PIXEL Key;
};
constexpr CAPTION_LOOK gCaptionLooks[gButtonFrameCount] = {
    {gButtonCaptionColor, gWhiteColor},
    {gWhiteColor, gBlackPixel},
    {gButtonCaptionColor, gWhiteColor},
    {gButtonCaptionColor, gWhiteColor},
};

constexpr UINT32 gListenerTypeCount = 4;
static_assert(sizeof(BTN_COMPONENT::ListenerGroups) == gListenerTypeCount * sizeof(EFI_GUID));

constexpr CHAR8 gSourcePath[] = "src\\controls\\Button.cpp";

// Loads the strip and sets the rectangle, to the visible part of a picture that hangs over the screen's edge. False
// without a picture of which anything shows there.
bool LoadButtonStrip(BTN_COMPONENT* Button, UINT32 ImageId, const EFI_GUID* FileGuid, UINT32 X, UINT32 Y)
{
    UINT32 Width = 0;
    UINT32 Height = 0;
    (void)LoadJpegBlt(ImageId, FileGuid, &Button->Strip, &Width, &Height);
    if (Button->Strip == nullptr) {
        return false;
    }
    Button->StripWidth = static_cast<INT32>(Width);
    Button->StripHeight = static_cast<INT32>(Height);
    UINT32 FrameHeight = Height / gButtonFrameCount;
    if (!CutStripToScreen(Button->Strip, gButtonFrameCount, X, Y, &Width, &FrameHeight)) {
        return false;
    }
    Button->Rect = PictureRect(X, Y, Width, FrameHeight);
    return true;
}

VOID DrawButtonCaption(BTN_COMPONENT* Button, UINT32 Frame, const CHAR16* Title, UINT16 TextX, UINT16 TextY)
{
    const CAPTION_LOOK& Look = gCaptionLooks[Frame];
    if (!EfiError(StringToBlt(&Look.Color, &Look.Key, &Button->TextPicture, &Button->TextWidth, &Button->TextHeight,
                              Title)) &&
        Button->TextPicture != nullptr) {
        (void)OverlayBlt(Button->TextPicture, Button->TextWidth, Button->TextHeight, Button->Frames[Frame],
                         Button->Rect.Width, Button->Rect.Height, TextX, TextY, &Look.Key, nullptr, 0);
    }
    ReleasePool(Button->TextPicture);
}

VOID FreeButtonPool(BTN_COMPONENT* Button)
{
    ReleasePool(Button->Strip);
    ReleasePool(Button->CaptionStrip);
    ReleasePool(Button->TextPicture);
    ReleasePool(Button->Title);
}

// The first listener of the click stands for all: they are members of one event group.
VOID SignalClickListeners(const BTN_COMPONENT* Button)
{
    for (LIST_ENTRY* Link = Button->Listeners.ForwardLink; Link != &Button->Listeners; Link = Link->ForwardLink) {
        const BUTTON_LISTENER* Listener = RecordOf<BUTTON_LISTENER>(Link, offsetof(BUTTON_LISTENER, Link));
        if (Listener->Type == BUTTON_LISTENER_CLICK) {
            SignalIfAny(Listener->Event);
            return;
        }
    }
}

VOID TargetButton(BTN_COMPONENT* Button, UINT8 Reset)
{
    gGuiCore->TargetId = static_cast<UINT16>(Button->Id);
    gGuiCore->Target = Button;
    gGuiCore->TargetKind = _BTN_COMPONENT;
    gGuiCore->TargetReset = Reset;
    (void)ButtonDispatch();
}

} // namespace

EFI_STATUS CreateButton(BTN_COMPONENT** ButtonOut, const EFI_GUID* FileGuid, UINT32 ImageId, const CHAR16* Title,
                        UINT32 X, UINT32 Y, UINT16 TextX, UINT16 TextY)
{
    *ButtonOut = nullptr;
    BTN_COMPONENT* Button = AllocateZeroRecord<BTN_COMPONENT>();
    if (Button == nullptr) {
        REPORT("AllocatePool Fail (CreateButton)");
        return EFI_OUT_OF_RESOURCES;
    }
    if (Title != nullptr) {
        Button->Title = CopyString(Title);
    }
    if (!LoadButtonStrip(Button, ImageId, FileGuid, X, Y)) {
        REPORT("No usable picture (CreateButton)");
        FreeButtonPool(Button);
        FreePool(Button);
        return EFI_NOT_FOUND;
    }
    GenerateGuid(&Button->PrimaryGroup);
    InitializeList(&Button->Listeners);

    Button->CaptionStrip = static_cast<PIXEL*>(AllocatePool(gButtonFrameCount * Button->Rect.BufferSize));
    PIXEL* FirstFrame = Button->Strip;
    if (Button->CaptionStrip != nullptr) {
        CopyMem(Button->CaptionStrip, Button->Strip, gButtonFrameCount * Button->Rect.BufferSize);
        FirstFrame = Button->CaptionStrip;
        ReleasePool(Button->Strip); // nothing shows it any more
    } else {
        REPORT("AllocatePool Fail (button caption)");
    }
    const UINTN FramePixels = Button->Rect.BufferSize / sizeof(PIXEL);
    for (UINT32 Index = 0; Index < gButtonFrameCount; Index++) {
        Button->Frames[Index] = FirstFrame + Index * FramePixels;
        GenerateGuid(&Button->ListenerGroups[Index]);
        if (Button->Title != nullptr && Button->CaptionStrip != nullptr) {
            DrawButtonCaption(Button, Index, Title, TextX, TextY);
        }
    }

    (void)CreateGroupEvent(EVT_NOTIFY_SIGNAL, TPL_NOTIFY, OnButtonEvent, Button, &Button->PrimaryGroup,
                           &Button->Events[BUTTON_SLOT_PRIMARY]);
    const EFI_STATUS Status =
        CreateEvent(EVT_NOTIFY_SIGNAL, TPL_NOTIFY, OnButtonReset, Button, &Button->SecondaryEvent);
    RegisterControl(Button, &Button->Rect, _BTN_COMPONENT, &Button->Id, Button->Events[BUTTON_SLOT_PRIMARY],
                    Button->SecondaryEvent, Button->Title);
    Button->HoverHandler = OnButtonEvent;
    *ButtonOut = Button;
    return Status;
}

VOID DestroyButton(BTN_COMPONENT* Button)
{
    if (Button == nullptr) {
        return;
    }
    FreeButtonPool(Button);
    while (!ListIsEmpty(&Button->Listeners)) {
        BUTTON_LISTENER* Listener =
            RecordOf<BUTTON_LISTENER>(Button->Listeners.ForwardLink, offsetof(BUTTON_LISTENER, Link));
        (void)CancelAndCloseEvent(Listener->Event);
        RemoveEntry(&Listener->Link);
        FreePool(Listener);
        Button->ListenerCount--;
    }
    // The callback slots hold events of timer type, which are cancelled first; the others aren't.
    for (UINT32 Slot = 0; Slot < BUTTON_SLOT_PRIMARY; Slot++) {
        (void)CancelAndCloseEvent(Button->Events[Slot]);
    }
    CloseIfAny(Button->Events[BUTTON_SLOT_PRIMARY]);
    CloseIfAny(Button->SecondaryEvent);
    FreePool(Button);
}

VOID PaintButton(INT32 Frame, BTN_COMPONENT* Button)
{
    if (Button == nullptr || Frame < 0 || Frame >= static_cast<INT32>(gButtonFrameCount)) {
        return;
    }
    (void)RepaintBlt(Button->Frames[Frame], Button->Rect);
}

EFI_STATUS SetButtonCallback(BTN_COMPONENT* Button, EFI_EVENT_NOTIFY Notify, UINT32 Slot)
{
    if (Button == nullptr || Slot >= BUTTON_SLOT_PRIMARY) {
        return EFI_INVALID_PARAMETER;
    }
    (void)CancelAndCloseEvent(Button->Events[Slot]);
    Button->Events[Slot] = nullptr;
    return CreateEvent(EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_NOTIFY, Notify, Button, &Button->Events[Slot]);
}

EFI_STATUS AddButtonListener(BTN_COMPONENT* Button, UINT32 Type, EFI_EVENT_NOTIFY Notify)
{
    if (Button == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    BUTTON_LISTENER* Listener = AllocateZeroRecord<BUTTON_LISTENER>();
    if (Listener == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    InsertTail(&Button->Listeners, &Listener->Link);
    Listener->Index = Button->ListenerCount;
    Listener->Type = Type;
    EFI_STATUS Status = EFI_SUCCESS;
    if (Type < gListenerTypeCount) {
        Status = CreateGroupEvent(EVT_NOTIFY_SIGNAL, TPL_CALLBACK, Notify, Button, &Button->ListenerGroups[Type],
                                  &Listener->Event);
    }
    Button->ListenerCount++;
    return Status;
}

EFI_STATUS ButtonDispatch()
{
    if (gGuiCore->TargetKind != _BTN_COMPONENT || gGuiCore->Target == nullptr) {
        return EFI_NOT_FOUND;
    }
    BTN_COMPONENT* Button = static_cast<BTN_COMPONENT*>(gGuiCore->Target);
    if (gGuiCore->MouseState == L_CLICK) {
        SignalIfAny(Button->Events[BUTTON_SLOT_CLICKED]);
        SignalClickListeners(Button);
        ClearTarget();
        return EFI_NOT_FOUND;
    }
    if (gGuiCore->MouseState != NOEVENT) {
        return EFI_NOT_FOUND;
    }
    if (gGuiCore->HoverPhase == HOVER_ENTERED) {
        PaintButton(BUTTON_FRAME_HOVER, Button);
        SignalIfAny(Button->Events[BUTTON_SLOT_ENTERED]);
        ClearTarget();
    } else if (gGuiCore->HoverPhase == HOVER_LEFT ||
               (gGuiCore->HoverPhase == HOVER_NONE && gGuiCore->TargetReset == 1)) {
        PaintButton(BUTTON_FRAME_REST, Button);
        ClearTarget();
    }
    return EFI_NOT_FOUND;
}

EFI_STATUS OnButtonEvent(EFI_EVENT, VOID* Context)
{
    BTN_COMPONENT* Button = static_cast<BTN_COMPONENT*>(Context);
    if (Button->Id != gGuiCore->HitId && Button->Id != gGuiCore->LastHitId) {
        return EFI_NOT_FOUND;
    }
    TargetButton(Button, 0);
    return EFI_SUCCESS;
}

EFI_STATUS OnButtonReset(EFI_EVENT, VOID* Context)
{
    TargetButton(static_cast<BTN_COMPONENT*>(Context), 1);
    return EFI_SUCCESS;
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
            SignalComponent(Component);
            return SCAN_STOP;
        }
        SignalIfAny(Component->PrimaryEvent);
        return SCAN_STOP;
    default:
        return SCAN_NEXT;
    }
}

const COMPONENT_CLASS gButtonClass = {
    .Kind = _BTN_COMPONENT,
    .Scan = ScanButton,
    .HoverOf = [](const VOID* Owner) { return static_cast<const BTN_COMPONENT*>(Owner)->HoverHandler; },
};
