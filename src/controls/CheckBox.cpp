#include "controls/CheckBox.h"

#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "graphics/KeptPicture.h"
#include "graphics/Text.h"
#include "gui/core/Drag.h"
#include "support/Identifiers.h"
#include "support/Lists.h"
#include "support/Pool.h"
#include "support/Report.h"
#include "support/Strings.h"
#include "support/Print.h"

namespace {

constexpr UINT32 gFrameCount = 4;
constexpr UINTN gNameSize = 256; // bytes of a generated name's block

// A box without artwork is a square of this size: a frame, a gap, and a filled middle while checked.
constexpr UINT32 gPlainSize = 20;
constexpr UINT32 gPlainFrame = 2;
constexpr UINT32 gPlainGap = 5;

constexpr CHAR8 gSourcePath[] = "src\\controls\\CheckBox.cpp";

// Links of destroyed boxes whose events are still open.
LIST_ENTRY gLeftLinks = {&gLeftLinks, &gLeftLinks};

VOID FillSquare(PIXEL* Picture, UINT32 Width, UINT32 Inset, PIXEL Color)
{
    for (UINT32 Row = Inset; Row < gPlainSize - Inset; Row++) {
        FillPixels(Picture + static_cast<UINTN>(Row) * Width + Inset, gPlainSize - 2 * Inset, Color);
    }
}

// A strip drawn from nothing, wide enough for the caption. Null without pool.
PIXEL* DrawPlainStrip(UINT32 Width, UINT32 Height)
{
    const UINTN FramePixels = static_cast<UINTN>(Width) * Height;
    PIXEL* Strip = AllocateArray<PIXEL>(FramePixels * gFrameCount);
    if (Strip == nullptr) {
        return nullptr;
    }
    FillPixels(Strip, FramePixels * gFrameCount, gPanelColor);
    for (UINT32 Index = 0; Index < gFrameCount; Index++) {
        PIXEL* Picture = Strip + Index * FramePixels;
        const bool Hover = Index == CHECK_BOX_CHECKED_HOVER || Index == CHECK_BOX_UNCHECKED_HOVER;
        const bool Checked = Index == CHECK_BOX_CHECKED || Index == CHECK_BOX_CHECKED_HOVER;
        FillSquare(Picture, Width, 0, Hover ? gWhiteColor : gLabelColor);
        FillSquare(Picture, Width, gPlainFrame, gPanelColor);
        if (Checked) {
            FillSquare(Picture, Width, gPlainGap, gCheckBoxTextColor);
        }
    }
    return Strip;
}

// Loads the strip, or draws a plain one where the file has none, and cuts it at the screen's edge. Without pool the box
// stays without a picture and without a size: it is then neither drawn nor hit.
VOID LoadBoxStrip(CHECK_BOX_COMPONENT* Box, const CHAR16* Caption, UINT32 Instance, const EFI_GUID* FileGuid,
                  UINT8 Format, UINT16 CaptionX, UINT16 CaptionY)
{
    UINT32 Width = 0;
    UINT32 Height = 0;
    if (Format == CHECK_BOX_JPEG) {
        (void)LoadJpegBlt(Instance, FileGuid, &Box->Images, &Width, &Height);
    } else {
        (void)LoadBmpBlt(Instance, FileGuid, &Box->Images, &Width, &Height);
    }
    Height /= gFrameCount;
    if (Box->Images == nullptr ||
        !CutStripToScreen(Box->Images, gFrameCount, Box->Rect.X, Box->Rect.Y, &Width, &Height)) {
        REPORT("No usable picture (CreateCheckBox)");
        ReleasePool(Box->Images);
        Width = gPlainSize;
        Height = gPlainSize;
        if (Caption != nullptr) {
            Width = Larger(Width, CaptionX + static_cast<UINT32>(StringLength(Caption)) * gCharacterWidth);
            Height = Larger(Height, CaptionY + gCharacterHeight);
        }
        Width = Smaller(Width, gScreenWidth); // however long the caption
        Box->Images = DrawPlainStrip(Width, Height);
        if (Box->Images == nullptr ||
            !CutStripToScreen(Box->Images, gFrameCount, Box->Rect.X, Box->Rect.Y, &Width, &Height)) {
            ReleasePool(Box->Images);
            return;
        }
    }
    Box->Rect = PictureRect(Box->Rect.X, Box->Rect.Y, Width, Height);
    for (UINT32 Index = 0; Index < gFrameCount; Index++) {
        Box->Frame[Index] = Box->Images + static_cast<UINTN>(Index) * Width * Height;
    }
}

VOID NameBox(CHECK_BOX_COMPONENT* Box, const CHAR16* Caption, UINT16 CaptionX, UINT16 CaptionY)
{
    if (Caption != nullptr) {
        Box->HasCaption = 1;
        Box->CaptionX = CaptionX;
        Box->CaptionY = CaptionY;
        Box->Name = CopyString(Caption);
        return;
    }
    Box->Name = static_cast<CHAR16*>(AllocateZeroPool(gNameSize));
    if (Box->Name != nullptr) {
        FormatUnicodeText(Box->Name, gNameSize, u"%s%d", u"Check_Box_", static_cast<INT32>(gCheckBoxCount));
    }
}

CHECK_BOX_LINK* LinkOf(LIST_ENTRY* Entry) { return RecordOf<CHECK_BOX_LINK>(Entry, offsetof(CHECK_BOX_LINK, Link)); }

VOID MirrorState(const CHECK_BOX_COMPONENT* Box, const CHECK_BOX_LINK* Link)
{
    if (Link->Target != nullptr) {
        *Link->Target = Box->State;
    }
}

VOID SwitchComponent(const CHECK_BOX_COMPONENT* Box, const CHECK_BOX_LINK* Link)
{
    if (Link->ComponentId == 0) {
        return;
    }
    GUI_COMPONENT* Component = ComponentOf(Link->ComponentId);
    if (Component == nullptr) {
        return;
    }
    const UINT8 Checked = Box->State != 0 ? 1 : 0;
    if (Link->Kind == CHECK_BOX_LINK_CHECKED) {
        Component->Active = Checked;
    } else if (Link->Kind == CHECK_BOX_LINK_UNCHECKED) {
        Component->Active = 1 - Checked;
    }
}

// Signals the first link of a kind that has an event, which reaches the whole group. False if the box has no link of the
// kind.
bool SignalLinks(CHECK_BOX_COMPONENT* Box, UINT8 Kind)
{
    bool Found = false;
    for (LIST_ENTRY* Entry = Box->Links.ForwardLink; Entry != &Box->Links; Entry = Entry->ForwardLink) {
        const CHECK_BOX_LINK* Link = LinkOf(Entry);
        if (Link->Kind == Kind) {
            Found = true;
            if (Link->Event != nullptr) {
                (void)gBS->SignalEvent(Link->Event);
                break;
            }
        }
    }
    return Found;
}

VOID TargetBox(CHECK_BOX_COMPONENT* Box, UINT8 Reset)
{
    gGuiCore->TargetId = static_cast<UINT16>(Box->Id);
    gGuiCore->Target = Box;
    gGuiCore->TargetKind = _CHECK_BOX_COMPONENT;
    gGuiCore->TargetReset = Reset;
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
        SignalComponent(Component);
        return SCAN_STOP;
    }
    return SCAN_NEXT;
}

} // namespace

UINT32 gCheckBoxCount = 0;

EFI_STATUS CreateCheckBox(CHECK_BOX_COMPONENT** Box, const CHAR16* Caption, UINT32 X, UINT32 Y, UINT32 Instance,
                          const EFI_GUID* FileGuid, UINT8 Format, UINT16 CaptionX, UINT16 CaptionY)
{
    if (Format != CHECK_BOX_JPEG && Format != CHECK_BOX_BMP) {
        return EFI_OUT_OF_RESOURCES;
    }
    VOID* Block = nullptr;
    const EFI_STATUS Status = gBS->AllocatePool(EfiBootServicesData, sizeof(CHECK_BOX_COMPONENT), &Block);
    if (EfiError(Status)) {
        PrintToConsole(u"AllocatePool Fail (CreateCheckBox) ,Status=%r\n", Status);
        return Status;
    }
    SetMem(Block, sizeof(CHECK_BOX_COMPONENT), 0);
    CHECK_BOX_COMPONENT* New = static_cast<CHECK_BOX_COMPONENT*>(Block);
    for (EFI_GUID& Group : New->LinkGroup) {
        GenerateGuid(&Group);
    }
    InitializeList(&New->Links);
    New->Rect.X = X;
    New->Rect.Y = Y;
    LoadBoxStrip(New, Caption, Instance, FileGuid, Format, CaptionX, CaptionY);

    (void)CreateEvent(EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnCheckBoxEvent, New, &New->PrimaryEvent);
    GenerateGuid(&New->EventGroup);
    (void)CreateGroupEvent(EVT_NOTIFY_SIGNAL, TPL_CALLBACK, SetCheckBoxState, New, &New->EventGroup,
                           &New->SecondaryEvent);
    NameBox(New, Caption, CaptionX, CaptionY);
    RegisterControl(New, &New->Rect, _CHECK_BOX_COMPONENT, &New->Id, New->PrimaryEvent, New->SecondaryEvent, New->Name);
    gCheckBoxCount++;
    New->HoverHandler = OnCheckBoxEvent;
    New->State = 1;
    *Box = New;
    return EFI_SUCCESS;
}

EFI_STATUS DestroyCheckBox(CHECK_BOX_COMPONENT* Box)
{
    if (Box == nullptr) {
        return EFI_NOT_FOUND;
    }
    FreePool(Box->Images);
    CloseIfAny(Box->PrimaryEvent);
    CloseIfAny(Box->SecondaryEvent);
    while (!ListIsEmpty(&Box->Links)) {
        CHECK_BOX_LINK* Link = LinkOf(Box->Links.ForwardLink);
        RemoveEntry(&Link->Link);
        if (Link->Event != nullptr) {
            InsertTail(&gLeftLinks, &Link->Link);
        } else {
            FreePool(Link);
        }
        Box->LinkCount--;
    }
    FreePool(Box->Name);
    FreePool(Box);
    return EFI_SUCCESS;
}

VOID CloseLeftLinkEvents()
{
    while (!ListIsEmpty(&gLeftLinks)) {
        CHECK_BOX_LINK* Link = LinkOf(gLeftLinks.ForwardLink);
        RemoveEntry(&Link->Link);
        (void)gBS->CloseEvent(Link->Event);
        FreePool(Link);
    }
}

EFI_STATUS AddCheckBoxLink(CHECK_BOX_COMPONENT* Box, VOID* Context, EFI_EVENT_NOTIFY Notify, UINT8 Kind, UINT8* Target,
                           UINT16 ComponentId)
{
    if (Box == nullptr) {
        return EFI_LOAD_ERROR;
    }
    CHECK_BOX_LINK* Link = AllocateZeroRecord<CHECK_BOX_LINK>();
    if (Link == nullptr) {
        return EFI_SUCCESS;
    }
    InsertTail(&Box->Links, &Link->Link);
    Link->Index = Box->LinkCount;
    Link->Target = Target;
    Link->ComponentId = ComponentId;
    if (Kind < gCheckBoxLinkKindCount) {
        // Without a notify function the firmware refuses the event: such a link only mirrors and switches.
        (void)CreateGroupEvent(EVT_NOTIFY_SIGNAL, TPL_CALLBACK, Notify, Context, &Box->LinkGroup[Kind], &Link->Event);
    }
    Link->Kind = Kind;
    Box->LinkCount++;
    return EFI_SUCCESS;
}

VOID ShowCheckBoxState(CHECK_BOX_COMPONENT* Box)
{
    for (LIST_ENTRY* Entry = Box->Links.ForwardLink; Entry != &Box->Links; Entry = Entry->ForwardLink) {
        MirrorState(Box, LinkOf(Entry));
        SwitchComponent(Box, LinkOf(Entry));
    }
    DrawCheckBox(Box->State != 0 ? CHECK_BOX_CHECKED : CHECK_BOX_UNCHECKED, Box);
}

EFI_STATUS SetCheckBoxState(EFI_EVENT, VOID* Context)
{
    CHECK_BOX_COMPONENT* Box = static_cast<CHECK_BOX_COMPONENT*>(Context);
    if (Box == nullptr) {
        return EFI_NOT_FOUND;
    }
    TargetBox(Box, 1);
    ShowCheckBoxState(Box);
    if (gGuiCore->MouseState != L_CLICK) {
        return EFI_SUCCESS;
    }
    SignalLinks(Box, Box->State == 1 ? CHECK_BOX_LINK_CHECKED : CHECK_BOX_LINK_UNCHECKED);
    const bool Inside = PointInRect(Box->Rect, gGuiCore->PointerX, gGuiCore->PointerY);
    if (Inside && SignalLinks(Box, CHECK_BOX_LINK_INSIDE)) {
        return EFI_SUCCESS;
    }
    SignalLinks(Box, CHECK_BOX_LINK_OUTSIDE);
    return EFI_SUCCESS;
}

EFI_STATUS OnCheckBoxEvent(EFI_EVENT, VOID* Context)
{
    CHECK_BOX_COMPONENT* Box = static_cast<CHECK_BOX_COMPONENT*>(Context);
    if (Box->Id != gGuiCore->HitId && Box->Id != gGuiCore->LastHitId) {
        return EFI_NOT_FOUND;
    }
    TargetBox(Box, 0);
    CheckBoxStep();
    for (LIST_ENTRY* Entry = Box->Links.ForwardLink; Entry != &Box->Links; Entry = Entry->ForwardLink) {
        MirrorState(Box, LinkOf(Entry));
    }
    return EFI_SUCCESS;
}

VOID CheckBoxStep()
{
    if (gGuiCore->TargetKind != _CHECK_BOX_COMPONENT || gGuiCore->Target == nullptr) {
        return;
    }
    CHECK_BOX_COMPONENT* Box = static_cast<CHECK_BOX_COMPONENT*>(gGuiCore->Target);
    INT32 Frame = 0;
    if (gGuiCore->MouseState == L_CLICK) {
        Box->State = Box->State == 0 ? 1 : 0;
        Frame = Box->State == 1 ? CHECK_BOX_CHECKED_HOVER : CHECK_BOX_UNCHECKED_HOVER;
    } else if (gGuiCore->MouseState == NOEVENT && gGuiCore->HoverPhase == HOVER_ENTERED) {
        Frame = Box->State == 1 ? CHECK_BOX_CHECKED_HOVER : CHECK_BOX_UNCHECKED_HOVER;
    } else if (gGuiCore->MouseState == NOEVENT && gGuiCore->HoverPhase == HOVER_LEFT) {
        Frame = Box->State == 1 ? CHECK_BOX_CHECKED : CHECK_BOX_UNCHECKED;
    } else {
        return;
    }
    DrawCheckBox(Frame, Box);
    ClearTarget();
}

VOID DrawCheckBox(INT32 Frame, CHECK_BOX_COMPONENT* Box)
{
    if (Box == nullptr || Box->Images == nullptr || Frame < 0 || Frame >= static_cast<INT32>(gFrameCount)) {
        return;
    }
    const GUI_RECT& Rect = Box->Rect;
    if (Box->HasCaption == 0 || Box->Name == nullptr) {
        ShowPicture(Box->Frame[Frame], Rect.Width, Rect.Height, Rect.X, Rect.Y);
        return;
    }
    const TEMPORARY<PIXEL> Picture(static_cast<PIXEL*>(AllocatePool(Rect.BufferSize)));
    if (!Picture) {
        ShowPicture(Box->Frame[Frame], Rect.Width, Rect.Height, Rect.X, Rect.Y);
        return;
    }
    CopyMem(Picture.Data, Box->Frame[Frame], Rect.BufferSize);
    PIXEL* Text = nullptr;
    UINT16 TextWidth = 0;
    UINT16 TextHeight = 0;
    (void)StringToBlt(&gCheckBoxTextColor, &gBlackPixel, &Text, &TextWidth, &TextHeight, Box->Name);
    if (Text != nullptr) {
        (void)OverlayBlt(Text, TextWidth, TextHeight, Picture.Data, Rect.Width, Rect.Height, Box->CaptionX,
                         Box->CaptionY, &gBlackPixel, nullptr, 0);
    }
    FreePool(Text);
    (void)RepaintBlt(Picture.Data, Rect);
}

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
        SignalComponent(Component);
        gGuiCore->MouseState = NOEVENT;
        return SCAN_STOP;
    case L_CLICK:
        SignalComponent(Component);
        return SCAN_STOP;
    default:
        return SCAN_NEXT;
    }
}

const COMPONENT_CLASS gCheckBoxClass = {
    .Kind = _CHECK_BOX_COMPONENT,
    .Scan = ScanCheckBox,
    .HoverOf = [](const VOID* Owner) { return static_cast<const CHECK_BOX_COMPONENT*>(Owner)->HoverHandler; },
};
