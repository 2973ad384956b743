#include "controls/DragDropFrame.h"

#include "controls/FrameParts.h"
#include "controls/Slider.h"
#include "graphics/GraphicProtocol.h"
#include "gui/core/Listeners.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"

namespace {

INT64 gDragStartX = 0;
INT64 gDragStartY = 0;
// Where the node in hand stood when its drag began. A command may move it meanwhile; the pointer keeps its grip.
POINT gDragBase = {};
// Top left corner of the dragged picture at its last drawing, relative to the frame. They keep their values between
// drags, of whatever frame.
INT64 gDragFrameX = 0;
INT64 gDragFrameY = 0;

// Works out the limits of the node in hand from its neighbours' cells: it stays right of the node before and left of
// the node after, and passes neither of their rows.
VOID SetDragDropNodeLimits(DRAGDROP_COMPONENT* Frame)
{
    const UINT32 Number = Frame->ActiveNode;
    const GUI_RECT& Rect = Frame->Rect;
    const UINT32 HalfWidth = Frame->CellWidth / 2u;
    const UINT32 HalfHeight = Frame->CellHeight / 2u;
    DD_FRAME_NODE& Node = Frame->Nodes[Number];

    Node.Left = Rect.X;
    Node.Bottom = Rect.Y + Rect.Height;
    if (Number > 0) {
        Node.Left = Frame->Nodes[Number - 1].CenterX + HalfWidth;
        Node.Bottom = Frame->Nodes[Number - 1].CenterY + HalfHeight;
    }
    Node.Right = Rect.X + Rect.Width;
    Node.Top = Rect.Y;
    if (Number < gNodeCount - 1) {
        Node.Right = Frame->Nodes[Number + 1].CenterX - HalfWidth;
        Node.Top = Frame->Nodes[Number + 1].CenterY - HalfHeight;
    }
}

// The cell under (X, Y), frame coordinates, or null when there is none.
const DD_FRAME_CELL* CellUnder(const DRAGDROP_COMPONENT* Frame, INT64 X, INT64 Y)
{
    const INT64 Column = X / Frame->CellWidth;
    const INT64 Row = Y / Frame->CellHeight;
    if (X < 0 || Y < 0 || Column >= Frame->Columns || Row >= Frame->Rows) {
        return nullptr;
    }
    return CellAt(Frame, static_cast<UINT8>(Column + Frame->Columns * Row));
}

// Drops the node in hand into the cell under (X, Y), frame coordinates, unless another node stands there.
EFI_STATUS SnapDragDropNode(DRAGDROP_COMPONENT* Frame, INT64 X, INT64 Y)
{
    const DD_FRAME_CELL* Cell = CellUnder(Frame, X, Y);
    GUI_COMPONENT* Component = ComponentOf(Frame->Nodes[Frame->ActiveNode].Id);
    if (Component == nullptr) {
        return EFI_NOT_FOUND;
    }
    if (Cell == nullptr) {
        return EFI_SUCCESS;
    }
    for (UINT32 Index = 0; Index < gNodeCount; Index++) {
        const DD_FRAME_NODE& Other = Frame->Nodes[Index];
        if (Index != Frame->ActiveNode && Other.CenterX == Cell->X && Other.CenterY == Cell->Y &&
            Other.Column == Cell->Column && Other.Row == Cell->Row) {
            return EFI_SUCCESS;
        }
    }
    MoveNode(Frame, &Frame->Nodes[Frame->ActiveNode], Component, *Cell);
    return EFI_SUCCESS;
}

// The lines that lead from the centre of the dragged picture to the frame's two scales.
VOID DrawGuideLines(DRAGDROP_COMPONENT* Frame, POINT Place, PIXEL Color)
{
    const INT64 CenterX = Place.X + Frame->CellWidth / 2;
    const INT64 CenterY = Place.Y + Frame->CellHeight / 2;
    const UINTN Width = Frame->Rect.Width;
    const UINTN Height = Frame->Rect.Height;
    if (CenterX < 0 || CenterY < 0 || CenterX >= static_cast<INT64>(Width) || CenterY >= static_cast<INT64>(Height)) {
        return;
    }
    const UINTN X = static_cast<UINTN>(CenterX);
    const UINTN Y = static_cast<UINTN>(CenterY);
    (void)gDrawPrimitives->DrawLine(Frame->WorkImage, Width, Height, X, Y, X, Height - 1, 1, PixelWord(Color));
    (void)gDrawPrimitives->DrawLine(Frame->WorkImage, Width, Height, 1, Y, X, Y, 1, PixelWord(Color));
}

// The picture of a drag, with the top left corner of the node in hand at Place. A node over which the pointer passes is
// not drawn in that turn.
VOID DrawDragDropDrag(DRAGDROP_COMPONENT* Frame, POINT Place)
{
    const DD_FRAME_NODE& Active = Frame->Nodes[Frame->ActiveNode];
    const PIXEL Color = gNodeColor[Frame->ActiveNode];
    const GUI_RECT& Rect = Frame->Rect;
    CopyMem(Frame->WorkImage, Frame->GridImage, Rect.BufferSize);
    MarkRectangle(Frame->WorkImage, Rect.Width, Rect.Height, static_cast<INT32>(Active.Left - Rect.X),
                  static_cast<INT32>(Active.Top - Rect.Y), Distance(Active.Right, Active.Left),
                  Distance(Active.Bottom, Active.Top), Color);
    for (const DD_FRAME_NODE& Node : Frame->Nodes) {
        if (Node.Id != gGuiCore->HitId && &Node != &Active) {
            OverlayNode(Frame, Node, RestingPlace(Frame, Node));
        }
    }
    DrawGuideLines(Frame, Place, Color);
    OverlayNode(Frame, Active, Place);
    (void)RepaintBlt(Frame->WorkImage, Rect);
    gFrameDragReport = ReportOnGrid(*Frame, Place.X, Place.Y);
}

// The limits of the node in hand for the top left corner of its picture, in frame coordinates.
struct PLACE_LIMITS {
    INT64 MinX;
    INT64 MaxX;
    INT64 MinY;
    INT64 MaxY;

    bool operator==(const PLACE_LIMITS&) const = default;
};

PLACE_LIMITS PlaceLimits(const DRAGDROP_COMPONENT* Frame)
{
    const DD_FRAME_NODE& Node = Frame->Nodes[Frame->ActiveNode];
    return {
        .MinX = static_cast<INT64>(Node.Left) - Frame->Rect.X,
        .MaxX = static_cast<INT64>(Node.Right) - Frame->Rect.X - Frame->CellWidth,
        .MinY = static_cast<INT64>(Node.Top) - Frame->Rect.Y,
        .MaxY = static_cast<INT64>(Node.Bottom) - Frame->Rect.Y - Frame->CellHeight,
    };
}

POINT Hold(POINT Place, const PLACE_LIMITS& Limits)
{
    return {Limit(Place.X, Limits.MinX, Limits.MaxX), Limit(Place.Y, Limits.MinY, Limits.MaxY)};
}

// Where to draw the node in hand for the pointer's present place, in frame coordinates: the wanted place while the
// whole picture is inside the limits; along one of their sides while the pointer is beyond that side alone; else where
// it was.
POINT DragPlace(const DRAGDROP_COMPONENT* Frame)
{
    const DD_FRAME_NODE& Node = Frame->Nodes[Frame->ActiveNode];
    const INT64 PointerX = gGuiCore->PointerX;
    const INT64 PointerY = gGuiCore->PointerY;
    const POINT Want = {gDragBase.X + PointerX - gDragStartX, gDragBase.Y + PointerY - gDragStartY};
    const PLACE_LIMITS Limits = PlaceLimits(Frame);
    const POINT Held = Hold(Want, Limits);

    if (Want.X > Limits.MinX && Want.X < Limits.MaxX && Want.Y > Limits.MinY && Want.Y < Limits.MaxY) {
        return Want;
    }
    const bool InsideX = PointerX > Node.Left && PointerX < Node.Right;
    const bool InsideY = PointerY > Node.Top && PointerY < Node.Bottom;
    if (InsideX && InsideY) {
        return Held;
    }
    if (InsideY && (PointerX < Node.Left || PointerX > Node.Right)) {
        return {PointerX < Node.Left ? Limits.MinX : Limits.MaxX, Held.Y};
    }
    if (InsideX && (PointerY < Node.Top || PointerY > Node.Bottom)) {
        return {Held.X, PointerY < Node.Top ? Limits.MinY : Limits.MaxY};
    }
    return {gDragFrameX, gDragFrameY};
}

UINT8* NodeDragStarted(VOID* Control)
{
    auto* Frame = static_cast<DRAGDROP_COMPONENT*>(Control);
    return FrameIsWhole(Frame) && Frame->ActiveNode < gNoActiveNode ? &Frame->DragStarted : nullptr;
}

VOID HoldNode(VOID* Control)
{
    auto* Frame = static_cast<DRAGDROP_COMPONENT*>(Control);
    SetDragDropNodeLimits(Frame);
    if (Frame->DragStarted == 0) {
        gDragBase = RestingPlace(Frame, Frame->Nodes[Frame->ActiveNode]);
    }
}

VOID MoveHeldNode(VOID* Control)
{
    auto* Frame = static_cast<DRAGDROP_COMPONENT*>(Control);
    const POINT Place = DragPlace(Frame);
    gDragFrameX = Place.X;
    gDragFrameY = Place.Y;
    DrawDragDropDrag(Frame, Place);
}

VOID DropNode(VOID* Control)
{
    auto* Frame = static_cast<DRAGDROP_COMPONENT*>(Control);
    // A press too short for a drag leaves the node where it was.
    if (gGuiCore->MouseState != L_CLICK) {
        POINT Place = {gDragFrameX, gDragFrameY};
        const PLACE_LIMITS Drawn = PlaceLimits(Frame);
        SetDragDropNodeLimits(Frame);
        if (PlaceLimits(Frame) != Drawn) { // a command has moved the neighbours since the last picture
            Place = Hold(Place, PlaceLimits(Frame));
        }
        (void)SnapDragDropNode(Frame, Place.X + Frame->CellWidth / 2, Place.Y + Frame->CellHeight / 2);
    }
    RepaintDragDropFrame(Frame);
    Frame->ActiveNode = gNoActiveNode;
}

} // namespace

UINT8 gDragging = 0;
DRAG_REPORT gFrameDragReport = {};

EFI_STATUS OnDragDropEvent(EFI_EVENT, VOID* Context)
{
    DRAGDROP_COMPONENT* Frame = static_cast<DRAGDROP_COMPONENT*>(Context);
    // The held button may pass over another node, and a command may bring one in where a thumb is being dragged.
    if (gDragging == 1 || gSliderDragging == 1 || gGuiCore->MouseState != L_HOLD ||
        !IsLive(Frame->Inverted, Frame->Linked)) {
        return EFI_NOT_FOUND;
    }
    for (UINT8 Index = 0; Index < gNodeCount; Index++) {
        if (Frame->Nodes[Index].Id == gGuiCore->HitId) {
            gGuiCore->TargetId = static_cast<UINT16>(Frame->Nodes[Index].Id);
            gGuiCore->Target = Frame;
            gGuiCore->TargetKind = _DRAGDROP_COMPONENT;
            Frame->ActiveNode = Index;
            return EFI_SUCCESS;
        }
    }
    return EFI_NOT_FOUND;
}

EFI_STATUS DragDropFrameDispatch()
{
    static constexpr DRAG_BEATS Beats = {
        .Kind = _DRAGDROP_COMPONENT,
        .UnderWay = &gDragging,
        .StartX = &gDragStartX,
        .StartY = &gDragStartY,
        .Report = &gFrameDragReport,
        .Started = NodeDragStarted,
        .Hold = HoldNode,
        .Move = MoveHeldNode,
        .Drop = DropNode,
        .Fire = FireDragDropListeners,
    };
    return StepDrag(Beats);
}
