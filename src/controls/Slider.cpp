#include "controls/Slider.h"

#include "controls/DragDropFrame.h"
#include "controls/Labels.h"
#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "graphics/KeptPicture.h"
#include "gui/core/Listeners.h"
#include "support/Pool.h"
#include "support/Report.h"
#include "support/Print.h"

namespace {

constexpr UINT32 gThumbSection = 26;
constexpr UINT32 gThumbPitch = 40; // from one place of the thumb to the next, and the height of a plain thumb

constexpr UINTN gNameLength = 128;     // characters of a component's name
constexpr UINTN gNameFormatSize = 128; // bytes of it that the format may fill

constexpr CHAR8 gSourcePath[] = "src\\controls\\Slider.cpp";

INT64 gSliderDragStartX = 0;
INT64 gSliderDragStartY = 0;
// The thumb's distance from the control's top when its drag began. A command may change the level meanwhile; the pointer
// keeps its grip.
INT64 gSliderDragStart = 0;
// The thumb's distance from the control's top as last worked out. It survives from drag to drag, of whatever slider.
INT64 gSliderOffset = 0;

// Screen row of the thumb's top for the slider's level. A level that doesn't exist lands off the control.
UINT32 ThumbTop(const SLIDER_COMPONENT* Slider)
{
    return Slider->Rect.Y + (static_cast<UINT32>(Slider->Rows) - Slider->Level) * gThumbPitch - gThumbPitch;
}

// The thumb's picture, or a plain block where the file has none that fits. Without pool the thumb can be dragged all
// the same and isn't seen.
VOID LoadThumb(SLIDER_COMPONENT* Slider, const EFI_GUID* FileGuid)
{
    UINT32 Width = 0;
    UINT32 Height = 0;
    (void)LoadBmpBlt(gThumbSection, FileGuid, &Slider->ThumbImage, &Width, &Height);
    if (Slider->ThumbImage == nullptr || !GridFitsScreen(Width, static_cast<UINT64>(Height) * Slider->Rows + 1) ||
        Height == 0) {
        REPORT("No usable picture (CreateSlider)");
        ReleasePool(Slider->ThumbImage);
        Width = gGridCellWidth;
        Height = gThumbPitch;
        Slider->ThumbImage = AllocateArray<PIXEL>(static_cast<UINTN>(Width) * Height);
        if (Slider->ThumbImage != nullptr) {
            FillPixels(Slider->ThumbImage, static_cast<UINTN>(Width) * Height, gSliderMarkColor);
        }
    }
    Slider->ThumbRect = PictureRect(0, 0, Width, Height);
}

// Registers one of the two components. Its name carries the id that comes out of it, and so is written afterwards.
VOID RegisterSliderPart(SLIDER_COMPONENT* Slider, const GUI_RECT* Rect, COMPONENT_KIND Kind, UINT32* IdOut,
                        EFI_EVENT SecondaryEvent, CHAR16** NameOut, const CHAR16* Stem)
{
    CHAR16* Name = AllocateArray<CHAR16>(gNameLength);
    if (Name != nullptr) {
        FormatUnicodeText(Name, gNameFormatSize, u"N/A");
    }
    *NameOut = Name;
    RegisterControl(Slider, Rect, Kind, IdOut, Slider->PrimaryEvent, SecondaryEvent, Name);
    if (Name != nullptr) {
        FormatUnicodeText(Name, gNameFormatSize, u"%s%d", Stem, static_cast<INT32>(*IdOut));
    }
}

// Brings the thumb, in the record and in the registry, to the place of the slider's level.
EFI_STATUS MoveThumb(SLIDER_COMPONENT* Slider)
{
    GUI_COMPONENT* Thumb = Slider->ThumbId == 0 ? nullptr : ComponentOf(Slider->ThumbId);
    if (Thumb == nullptr) {
        return EFI_NOT_FOUND;
    }
    Thumb->Rect.Y = ThumbTop(Slider);
    Slider->ThumbRect.Y = Thumb->Rect.Y;
    return EFI_SUCCESS;
}

VOID OverlayThumb(SLIDER_COMPONENT* Slider, INT64 Offset)
{
    const GUI_RECT& Thumb = Slider->ThumbRect;
    OverlayOnGrid(*Slider, Slider->Canvas, Slider->ThumbImage, Thumb.Width, Thumb.Height, 0, Offset);
}

// False for a slider whose creation didn't get as far as its pictures.
bool SliderCanPaint(const SLIDER_COMPONENT* Slider) { return Slider != nullptr && Slider->PlainImage != nullptr; }

// The picture of a drag, with the thumb's top Offset pixels below the control's. For a column that can't be marked the
// picture of the turn before stays.
VOID PaintSliderDrag(SLIDER_COMPONENT* Slider, INT64 Offset)
{
    if (!SliderCanPaint(Slider)) {
        return;
    }
    const GUI_RECT& Rect = Slider->Rect;
    CopyMem(Slider->Canvas, Slider->GridImage, Rect.BufferSize);
    if (!MarkRectangle(Slider->Canvas, Rect.Width, Rect.Height, 0, 0, gGridCellWidth, Slider->Rows * gThumbPitch,
                       gSliderMarkColor)) {
        return;
    }
    const INT64 GuideRow = Slider->ThumbRect.Height / 2 + Offset;
    if (GuideRow >= 0 && GuideRow < Rect.Height) {
        FillPixels(Slider->Canvas + GuideRow * Rect.Width, Rect.Width, gSliderMarkColor);
    }
    OverlayThumb(Slider, Offset);
    (void)RepaintBlt(Slider->Canvas, Rect);
    gSliderDragReport = ReportOnGrid(*Slider, 0, Offset);
}

// Works out gSliderOffset from the pointer. On the exact lines around the column, and beyond the band at its sides, the
// offset stays.
VOID FollowPointer(const SLIDER_COMPONENT* Slider, INT64 DeltaY)
{
    const INT64 Left = Slider->Rect.X;
    const INT64 Right = Left + gGridCellWidth;
    const INT64 Top = Slider->Rect.Y;
    const INT64 Band = static_cast<INT64>(Slider->Rows) * gThumbPitch;
    const INT64 Most = Band - gThumbPitch;
    const INT64 X = gGuiCore->PointerX;
    const INT64 Y = gGuiCore->PointerY;

    if (X != Left && X != Right && Y > Top && Y < Top + Band) {
        gSliderOffset = Limit<INT64>(gSliderDragStart + DeltaY, 0, Most);
    } else if (X > Left && X < Right && Y > Top + Band) {
        gSliderOffset = Most;
    } else if (X > Left && X < Right && Y < Top) {
        gSliderOffset = 0;
    }
}

UINT8* SliderDragStarted(VOID* Control) { return &static_cast<SLIDER_COMPONENT*>(Control)->Dragging; }

VOID HoldThumb(VOID* Control)
{
    const auto* Slider = static_cast<SLIDER_COMPONENT*>(Control);
    if (Slider->Dragging == 0) {
        gSliderDragStart = static_cast<INT64>(Slider->ThumbRect.Y) - Slider->Rect.Y;
    }
}

VOID MoveHeldThumb(VOID* Control)
{
    auto* Slider = static_cast<SLIDER_COMPONENT*>(Control);
    const GUI_RECT& Rect = Slider->Rect;
    const GUI_RECT& Thumb = Slider->ThumbRect;
    const INT64 DeltaX = gGuiCore->PointerX - gSliderDragStartX;
    const INT64 DeltaY = gGuiCore->PointerY - gSliderDragStartY;
    const INT64 Left = Thumb.X + DeltaX;
    const INT64 Top = Rect.Y + gSliderDragStart + DeltaY;
    // A thumb narrower than its column isn't followed while all of it is inside the column.
    if (Left > Rect.X && Top > Rect.Y && Left + Thumb.Width < static_cast<INT64>(Rect.X) + Slider->CellWidth &&
        Top + Thumb.Height < static_cast<INT64>(Rect.Y) + Slider->CellHeight * Slider->Rows) {
        return;
    }
    FollowPointer(Slider, DeltaY);
    PaintSliderDrag(Slider, gSliderOffset);
}

VOID DropThumb(VOID* Control)
{
    auto* Slider = static_cast<SLIDER_COMPONENT*>(Control);
    (void)SetSliderPosition(Slider, static_cast<UINT16>(gSliderOffset));
    (void)RefreshSlider(Slider);
    // Unlike a node, a thumb is no longer in hand when the listeners are told.
    if (Slider->Dragging == 1) {
        Slider->Dragging = 0;
        gSliderDragging = 0;
    }
}

} // namespace

UINT8 gSliderDragging = 0;
DRAG_REPORT gSliderDragReport = {};

EFI_STATUS CreateSlider(SLIDER_COMPONENT* Slider, const EFI_GUID* FileGuid, UINT16 Level)
{
    if (Slider == nullptr) {
        return EFI_SUCCESS;
    }
    SetMem(Slider, sizeof(*Slider), 0);
    CountCells(Slider, gDutyLabels6);
    LoadThumb(Slider, FileGuid);

    PlaceGrid(Slider, gGridCellWidth, Slider->ThumbRect.Height);
    if (EfiError(TakeGridPictures(*Slider, &Slider->GridImage, &Slider->Canvas, &Slider->PlainImage))) {
        REPORT("AllocatePool Fail (CreateSlider)");
        return EFI_BUFFER_TOO_SMALL;
    }

    (void)CreateEvent(EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnSliderEvent, Slider, &Slider->PrimaryEvent);
    (void)CreateEvent(EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnSliderRefresh, Slider, &Slider->SecondaryEvent);

    Slider->Level = Level;
    Slider->ThumbRect.X = Slider->Rect.X;
    Slider->ThumbRect.Y = ThumbTop(Slider);
    RegisterSliderPart(Slider, &Slider->ThumbRect, _SLIDER_COMPONENT, &Slider->ThumbId, nullptr, &Slider->ThumbName,
                       u"CtrlBox_");
    RegisterSliderPart(Slider, &Slider->Rect, _BLT_BUF, &Slider->FrameId, Slider->SecondaryEvent, &Slider->FrameName,
                       u"SliderFrame_");
    Slider->HoverHandler = OnSliderEvent;
    return EFI_SUCCESS;
}

EFI_STATUS DestroySlider(SLIDER_COMPONENT* Slider)
{
    if (Slider == nullptr) {
        return EFI_SUCCESS;
    }
    ReleaseGridPictures(Slider->GridImage, Slider->Canvas, Slider->PlainImage);
    ReleasePool(Slider->ThumbImage);
    ReleasePool(Slider->FrameName);
    ReleasePool(Slider->ThumbName);
    return CloseGridEvents(Slider->PrimaryEvent, Slider->SecondaryEvent);
}

EFI_STATUS SetSliderLevel(SLIDER_COMPONENT* Slider, UINT8 LevelPlusOne)
{
    if (Slider == nullptr) {
        return EFI_NOT_FOUND;
    }
    Slider->Level = static_cast<UINT16>(LevelPlusOne - 1);
    return MoveThumb(Slider);
}

EFI_STATUS SetSliderPosition(SLIDER_COMPONENT* Slider, UINT16 Offset)
{
    if (Slider == nullptr) {
        return EFI_NOT_FOUND;
    }
    UINT32 RowsDown = (Offset + gThumbPitch) / gThumbPitch;
    if ((Offset + gThumbPitch) % gThumbPitch >= gThumbPitch / 2) {
        RowsDown++;
    }
    Slider->Level = static_cast<UINT16>(Slider->Rows - RowsDown);
    return MoveThumb(Slider);
}

EFI_STATUS RefreshSlider(SLIDER_COMPONENT* Slider)
{
    if (!SliderCanPaint(Slider)) {
        return EFI_NOT_FOUND;
    }
    CopyMem(Slider->Canvas, Slider->PlainImage, Slider->Rect.BufferSize);
    OverlayThumb(Slider, Distance(static_cast<INT32>(Slider->Rect.Y), static_cast<INT32>(Slider->ThumbRect.Y)));
    // The chart takes this picture for its ground later, so the pointer of a held button must not get into it.
    const GUI_RECT& Rect = Slider->Rect;
    ShowPicture(Slider->Canvas, Rect.Width, Rect.Height, Rect.X, Rect.Y);
    return EFI_SUCCESS;
}

EFI_STATUS OnSliderRefresh(EFI_EVENT, VOID* Context)
{
    (void)RefreshSlider(static_cast<SLIDER_COMPONENT*>(Context));
    return EFI_NOT_FOUND;
}

EFI_STATUS OnSliderEvent(EFI_EVENT, VOID* Context)
{
    SLIDER_COMPONENT* Slider = static_cast<SLIDER_COMPONENT*>(Context);
    // A command may bring a thumb in where a node is being dragged.
    if (gSliderDragging != 0 || gDragging != 0 || gGuiCore->MouseState != L_HOLD ||
        !IsLive(Slider->Inverted, Slider->Linked) || gGuiCore->HitId != Slider->ThumbId) {
        return EFI_NOT_FOUND;
    }
    gGuiCore->TargetId = static_cast<UINT16>(Slider->ThumbId);
    gGuiCore->Target = Slider;
    gGuiCore->TargetKind = _SLIDER_COMPONENT;
    return EFI_SUCCESS;
}

EFI_STATUS SliderStep()
{
    static constexpr DRAG_BEATS Beats = {
        .Kind = _SLIDER_COMPONENT,
        .UnderWay = &gSliderDragging,
        .StartX = &gSliderDragStartX,
        .StartY = &gSliderDragStartY,
        .Report = &gSliderDragReport,
        .Started = SliderDragStarted,
        .Hold = HoldThumb,
        .Move = MoveHeldThumb,
        .Drop = DropThumb,
        .Fire = FireSliderListeners,
    };
    return StepDrag(Beats);
}

const COMPONENT_CLASS gThumbClass = {
    .Kind = _SLIDER_COMPONENT,
    .Scan =
        [](const GUI_COMPONENT* Component) {
            return ScanHeldPart(Component, static_cast<const SLIDER_COMPONENT*>(Component->Owner)->FrameId);
        },
    .HoverOf = [](const VOID* Owner) { return static_cast<const SLIDER_COMPONENT*>(Owner)->HoverHandler; },
};
