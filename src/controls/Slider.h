// A slider: a thumb in the first column of a grid of temperature against duty, which sets a fan's fixed level.
//
// At rest it shows the thumb on a plain panel. While the thumb is dragged the grid comes up, the thumb's column is
// tinted and framed, and a guide line leads from the thumb across the whole width; on release the thumb snaps to the
// nearest row. The slider knows only its Level. Who wants to know of a change is a slider listener of the pointer
// engine, told 0 when a drag begins and 4 when it ends.
//
// The record belongs to the caller; CreateSlider fills it. SliderStep runs in every turn of the main loop.
#pragma once

#include "controls/Grid.h"
#include "gui/core/GUICore.h"

// The height of a cell is that of the thumb's picture; the pitch of the thumb's places is 40 all the same.
struct _SLIDER_COMPONENT : GRID_CONTROL {
    UINT16 Level; // 0 is the bottom row, Rows - 1 the top row. Values beyond are kept and not drawn
    GUI_RECT ThumbRect;
    PIXEL* ThumbImage; // owned
    UINT32 ThumbId;    // 0 before it is registered, gUnregisteredId where that failed
    CHAR16* ThumbName; // 128 characters. Owned
    UINT8 Dragging;
    PIXEL* GridImage;  // shared with other sliders and frames
    PIXEL* PlainImage; // shared likewise
    PIXEL* Canvas;     // the picture as last composed, from which the fan's chart starts. Owned
    CHAR16* FrameName; // 128 characters. Owned
    UINT8 Inverted;    // the slider takes a drag when exactly one of Inverted and Linked isn't 0
    UINT8 Linked;      // a check box writes its state here
    UINT32 FrameId;    // the component that pages switch; its Active decides for the thumb too
    EFI_EVENT PrimaryEvent;
    HOVER_HANDLER HoverHandler;
    EFI_EVENT SecondaryEvent;
};
using SLIDER_COMPONENT = struct _SLIDER_COMPONENT;

// 1 while a drag of any slider is under way.
extern UINT8 gSliderDragging;
// Where the thumb in hand is. The horizontal part says nothing: RelX is always 0.
extern DRAG_REPORT gSliderDragReport;

// Fills the record with a slider at its fixed place, its thumb from section 26 of the file, standing at Level, and
// registers thumb and frame. Paints nothing. Without a usable picture the thumb is a plain block. EFI_BUFFER_TOO_SMALL
// when a picture can't be allocated: the record then has no component, and every operation on it is without effect.
// EFI_SUCCESS for a null slider.
EFI_STATUS CreateSlider(SLIDER_COMPONENT* Slider, const EFI_GUID* FileGuid, UINT16 Level);

// Frees what the slider owns; the record stays the caller's. The status of the last timer cancel, EFI_SUCCESS if the
// slider has no event.
EFI_STATUS DestroySlider(SLIDER_COMPONENT* Slider);

// Sets the level, counted from 1 as the board's service counts it, and moves the thumb. Doesn't paint. 0 gives the
// level 65535, which is nowhere. EFI_NOT_FOUND if the thumb has no component; the level is changed all the same.
EFI_STATUS SetSliderLevel(SLIDER_COMPONENT* Slider, UINT8 LevelPlusOne);

// The same for a distance in pixels from the control's top: the nearest level, half-way the lower one.
EFI_STATUS SetSliderPosition(SLIDER_COMPONENT* Slider, UINT16 Offset);

// Paints the picture at rest. The status of ComposeScreen.
EFI_STATUS RefreshSlider(SLIDER_COMPONENT* Slider);

// RefreshSlider as a notify function: of SecondaryEvent, and of a page's target. Always EFI_NOT_FOUND.
EFI_STATUS OnSliderRefresh(EFI_EVENT Event, VOID* Context);

// Notify function of PrimaryEvent and hover handler: takes the thumb in hand when it was pressed, the slider is live, and
// neither a thumb nor a node is being dragged. EFI_NOT_FOUND, with nothing changed, in any other case.
EFI_STATUS OnSliderEvent(EFI_EVENT Event, VOID* Context);

// One step of the drag under way, if there is one. Always EFI_NOT_FOUND.
EFI_STATUS SliderStep();

// A thumb's: it answers to the held button while its slider is on the page.
extern const COMPONENT_CLASS gThumbClass;
