#include "controls/DragDropFrame.h"

#include "controls/GridImage.h"
#include "controls/Labels.h"
#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "gui/PointerEngine.h"
#include "shell/Board.h"
#include "support/Library.h"
#include "support/Print.h"

constexpr UINT8 gPanelByte = 0x24;      // every byte of gPanelColor
constexpr UINT32 gPlainGridHeight = 240; // rows of pixels that the cells of a frame without artwork share
constexpr UINTN gNameSize = 256;         // bytes of a node's name

constexpr CHAR8 gSourcePath[] = "src\\controls\\DragDropFrame.cpp";

UINT8 gDragging = 0;
DRAG_REPORT gFrameDragReport = {};

static INT64 gDragStartX = 0;
static INT64 gDragStartY = 0;
// Top left corner of the dragged picture at its last drawing, relative to the frame. They keep their values between
// drags, of whatever frame.
static INT64 gDragFrameX = 0;
static INT64 gDragFrameY = 0;

struct POINT {
    INT64 X;
    INT64 Y;
};

static bool FrameIsLive(const DRAGDROP_COMPONENT* Frame)
{
    return (Frame->Linked != 0) != (Frame->Inverted != 0);
}

// False for a frame whose creation didn't get as far as its cells and its three pictures.
static bool FrameIsWhole(const DRAGDROP_COMPONENT* Frame)
{
    return Frame != nullptr && Frame->Cells != nullptr && Frame->GridImage != nullptr &&
           Frame->WorkImage != nullptr && Frame->CleanImage != nullptr;
}

static UINT32 CellCount(const DRAGDROP_COMPONENT* Frame)
{
    return static_cast<UINT32>(Frame->Columns) * Frame->Rows;
}

// The cell of that index, or null when there is none.
static const DD_FRAME_CELL* CellAt(const DRAGDROP_COMPONENT* Frame, UINT32 Index)
{
    return Index < CellCount(Frame) ? &Frame->Cells[Index] : nullptr;
}

// Where the picture of a node stands at rest, in frame coordinates.
static POINT RestingPlace(const DRAGDROP_COMPONENT* Frame, const DD_FRAME_NODE& Node)
{
    return {
        .X = static_cast<INT64>(Node.CenterX) - Frame->CellWidth / 2 - Frame->Rect.X,
        .Y = static_cast<INT64>(Node.CenterY) - Frame->CellHeight / 2 - Frame->Rect.Y,
    };
}

static VOID StandOnCell(DD_FRAME_NODE* Node, const DD_FRAME_CELL& Cell)
{
    Node->CenterX = Cell.X;
    Node->CenterY = Cell.Y;
    Node->Column = Cell.Column;
    Node->Row = Cell.Row;
}

// --- Creation ---

// The strip of node pictures, or four plain blocks in the nodes' colours where the file has none that fits: one of the
// nominal size, so that the grid has its place. Without pool the nodes can be dragged all the same and aren't seen.
static VOID LoadNodeStrip(DRAGDROP_COMPONENT* Frame, UINT32 Instance, const EFI_GUID* FileGuid, UINT32* Width,
                          UINT32* Height)
{
    (void)LoadBmpBlt(Instance, FileGuid, &Frame->NodeImages, Width, Height);
    *Height /= gNodeCount;
    if (Frame->NodeImages != nullptr && *Width > 0 && *Height > 0 &&
        GridFitsScreen(static_cast<UINT64>(*Width) * Frame->Columns + 1,
                       static_cast<UINT64>(*Height) * Frame->Rows + 1)) {
        return;
    }
    REPORT("No usable picture (CreateDragDropFrame)");
    ReleasePool(Frame->NodeImages);
    *Width = gGridCellWidth;
    *Height = gPlainGridHeight / Frame->Rows;
    const UINTN NodePixels = static_cast<UINTN>(*Width) * *Height;
    Frame->NodeImages = AllocateArray<PIXEL>(NodePixels * gNodeCount);
    for (UINT32 I = 0; Frame->NodeImages != nullptr && I < gNodeCount; I++) {
        FillPixels(Frame->NodeImages + I * NodePixels, NodePixels, gNodeColor[I]);
    }
}

static EFI_STATUS AllocateFramePictures(DRAGDROP_COMPONENT* Frame)
{
    Frame->Cells = AllocateZeroArray<DD_FRAME_CELL>(CellCount(Frame));
    if (Frame->Cells == nullptr) {
        return EFI_BUFFER_TOO_SMALL;
    }
    Frame->GridImage = static_cast<PIXEL*>(AllocateZeroPool(Frame->Rect.BufferSize));
    if (Frame->GridImage == nullptr) {
        return EFI_BUFFER_TOO_SMALL;
    }
    Frame->WorkImage = static_cast<PIXEL*>(AllocatePool(Frame->Rect.BufferSize));
    if (Frame->WorkImage == nullptr) {
        return EFI_BUFFER_TOO_SMALL;
    }
    SetMem(Frame->WorkImage, Frame->Rect.BufferSize, gPanelByte);
    Frame->CleanImage = static_cast<PIXEL*>(AllocatePool(Frame->Rect.BufferSize));
    if (Frame->CleanImage == nullptr) {
        return EFI_BUFFER_TOO_SMALL;
    }
    return EFI_SUCCESS;
}

static VOID FillCells(DRAGDROP_COMPONENT* Frame)
{
    for (UINT32 Row = 0; Row < Frame->Rows; Row++) {
        for (UINT32 Column = 0; Column < Frame->Columns; Column++) {
            Frame->Cells[Frame->Columns * Row + Column] = {
                .X = Frame->Rect.X + Column * Frame->CellWidth + Frame->CellWidth / 2,
                .Y = Frame->Rect.Y + Row * Frame->CellHeight + Frame->CellHeight / 2,
                .Width = Frame->CellWidth,
                .Height = Frame->CellHeight,
                .Column = Column,
                .Row = Row,
            };
        }
    }
}

// The cell that a node starts on. For an index that is no cell it is the one up and right of the node before, as on the
// default curve, so that the curve still rises.
static const DD_FRAME_CELL& FirstCell(const DRAGDROP_COMPONENT* Frame, UINT32 Number, UINT32 Index)
{
    if (const DD_FRAME_CELL* Cell = CellAt(Frame, Index)) {
        return *Cell;
    }
    UINT32 Column = 0;
    UINT32 Row = Frame->Rows - 1u;
    if (Number > 0) {
        const DD_FRAME_NODE& Before = Frame->Nodes[Number - 1];
        Column = Before.Column + 1 < Frame->Columns ? Before.Column + 1 : Before.Column;
        Row = Before.Row > 0 ? Before.Row - 1 : 0;
    }
    return Frame->Cells[Frame->Columns * Row + Column];
}

static VOID CreateNode(DRAGDROP_COMPONENT* Frame, UINT32 Number, UINT32 CellIndex, UINT32 Width, UINT32 Height)
{
    DD_FRAME_NODE* Node = &Frame->Nodes[Number];
    StandOnCell(Node, FirstCell(Frame, Number, CellIndex));
    Node->ImageWidth = Width;
    Node->ImageHeight = Height;
    if (Frame->NodeImages != nullptr) {
        Node->Image = Frame->NodeImages + static_cast<UINTN>(Number) * Width * Height;
    }
    Node->Name = static_cast<CHAR16*>(AllocateZeroPool(gNameSize));
    if (Node->Name != nullptr) {
        (void)FormatUnicodeText(Node->Name, gNameSize, u"%s%d", u"DDFrameNode_", static_cast<INT32>(Number));
    }
    const GUI_RECT Rect = {
        .X = Node->CenterX - Frame->CellWidth / 2u,
        .Y = Node->CenterY - Frame->CellHeight / 2u,
        .Width = Frame->CellWidth,
        .Height = Frame->CellHeight,
        .BufferSize = static_cast<UINT64>(Frame->CellWidth) * Frame->CellHeight * sizeof(PIXEL),
    };
    if (gGuiCore->Components != nullptr) {
        (void)RegisterComponent(gGuiCore->Components, Frame, &Rect, _DRAGDROP_COMPONENT, &Node->Id,
                                Frame->PrimaryEvent, nullptr, Node->Name);
    }
}

EFI_STATUS CreateDragDropFrame(DRAGDROP_COMPONENT* Frame, const CHAR16* const* DutyLabels, const EFI_GUID* FileGuid,
                               UINT32 Instance, const UINT32* NodeCells)
{
    if (Frame == nullptr) {
        return EFI_SUCCESS;
    }
    SetMem(Frame, sizeof(*Frame), 0);
    Frame->ActiveNode = gNoActiveNode;
    Frame->Columns = CountStringTable(gTemperatureLabels);
    Frame->Rows = CountStringTable(DutyLabels);
    if (Frame->Rows == 0) {
        return EFI_INVALID_PARAMETER;
    }
    UINT32 Width = 0;
    UINT32 Height = 0;
    LoadNodeStrip(Frame, Instance, FileGuid, &Width, &Height);

    Frame->CellWidth = gGridCellWidth;
    Frame->CellHeight = static_cast<UINT16>(Height);
    GUI_RECT& Rect = Frame->Rect;
    Rect.X = gGridX;
    Rect.Y = gGridY;
    Rect.Width = Frame->Columns * Width + 1;
    Rect.Height = static_cast<UINT32>(Frame->CellHeight) * Frame->Rows + 1;
    Rect.BufferSize = static_cast<UINT64>(Rect.Width) * Rect.Height * sizeof(PIXEL);

    const EFI_STATUS Status = AllocateFramePictures(Frame);
    if (EfiError(Status)) {
        REPORT("AllocatePool Fail (CreateDragDropFrame)");
        return Status;
    }
    PaintGridImage(Frame->GridImage, Rect.Width, Rect.Height, Frame->CellWidth, Frame->CellHeight);
    FillCells(Frame);
    FillPixels(Frame->CleanImage, static_cast<UINTN>(Rect.Width) * Rect.Height, gPanelColor);

    (void)gBS->CreateEvent(EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnDragDropEvent, Frame, &Frame->PrimaryEvent);
    (void)gBS->CreateEvent(EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnDragDropRefresh, Frame,
                           &Frame->SecondaryEvent);
    // The nodes come first, so that the hit scan finds a node before the frame that it stands on.
    for (UINT32 I = 0; I < gNodeCount; I++) {
        CreateNode(Frame, I, NodeCells[I], Width, Height);
    }
    if (gGuiCore->Components != nullptr) {
        (void)RegisterComponent(gGuiCore->Components, Frame, &Rect, _BLT_BUF, &Frame->Id, Frame->PrimaryEvent,
                                Frame->SecondaryEvent, u"DD_Frame");
    }
    return EFI_SUCCESS;
}

EFI_STATUS DestroyDragDropFrame(DRAGDROP_COMPONENT* Frame)
{
    if (Frame == nullptr) {
        return EFI_SUCCESS;
    }
    ReleasePool(Frame->GridImage);
    ReleasePool(Frame->CleanImage);
    ReleasePool(Frame->WorkImage);
    ReleasePool(Frame->NodeImages);
    ReleasePool(Frame->Cells);
    EFI_STATUS Status = EFI_SUCCESS;
    EFI_EVENT* const Events[] = {&Frame->PrimaryEvent, &Frame->SecondaryEvent};
    for (EFI_EVENT* Event : Events) {
        if (*Event != nullptr) {
            Status = CancelAndCloseEvent(*Event);
            *Event = nullptr;
        }
    }
    for (DD_FRAME_NODE& Node : Frame->Nodes) {
        ReleasePool(Node.Name);
    }
    return Status;
}

// --- Places of the nodes ---

// The registry's entry of a node. A registration that found no pool leaves an id that belongs to another component, or
// to none: that is no entry either.
static EFI_STATUS FindNodeComponent(DRAGDROP_COMPONENT* Frame, const DD_FRAME_NODE& Node, GUI_COMPONENT** Component)
{
    const EFI_STATUS Status = FindComponent(gGuiCore->Components, static_cast<UINT16>(Node.Id), Component);
    if (EfiError(Status)) {
        return Status;
    }
    const bool Ours = *Component != nullptr && (*Component)->Owner == Frame && (*Component)->Kind == _DRAGDROP_COMPONENT;
    return Ours ? EFI_SUCCESS : EFI_NOT_FOUND;
}

static VOID MoveNode(const DRAGDROP_COMPONENT* Frame, DD_FRAME_NODE* Node, GUI_COMPONENT* Component,
                     const DD_FRAME_CELL& Cell)
{
    Component->Rect.X = Cell.X - Frame->CellWidth / 2u;
    Component->Rect.Y = Cell.Y - Frame->CellHeight / 2u;
    StandOnCell(Node, Cell);
}

EFI_STATUS SetDragDropNodes(DRAGDROP_COMPONENT* Frame, const UINT8* Places)
{
    if (!FrameIsWhole(Frame)) {
        return EFI_NOT_FOUND;
    }
    EFI_STATUS Status = EFI_SUCCESS;
    for (UINT32 I = 0; I < gNodeCount; I++) {
        const UINT8 Column = Places[gNodeCount - 1 - I];
        const UINT8 Level = Places[gNodeCount + I];
        GUI_COMPONENT* Component = nullptr;
        Status = FindNodeComponent(Frame, Frame->Nodes[I], &Component);
        if (EfiError(Status)) {
            continue;
        }
        const DD_FRAME_CELL* Cell =
            CellAt(Frame, static_cast<UINT8>(Frame->Columns * (Frame->Rows - Level) + Column - 1));
        if (Cell != nullptr) {
            MoveNode(Frame, &Frame->Nodes[I], Component, *Cell);
        }
    }
    return Status;
}

// Works out the limits of the node in hand from its neighbours' cells: it stays right of the node before and left of the
// node after, and passes neither of their rows.
static VOID SetDragDropNodeLimits(DRAGDROP_COMPONENT* Frame)
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

// Drops the node in hand into the cell under (X, Y), frame coordinates, unless another node stands there.
static EFI_STATUS SnapDragDropNode(DRAGDROP_COMPONENT* Frame, INT64 X, INT64 Y)
{
    const DD_FRAME_CELL* Cell =
        CellAt(Frame, static_cast<UINT8>(X / Frame->CellWidth + Frame->Columns * (Y / Frame->CellHeight)));
    GUI_COMPONENT* Component = nullptr;
    if (EfiError(FindNodeComponent(Frame, Frame->Nodes[Frame->ActiveNode], &Component))) {
        return EFI_NOT_FOUND;
    }
    if (Cell == nullptr) {
        return EFI_SUCCESS;
    }
    for (UINT32 I = 0; I < gNodeCount; I++) {
        const DD_FRAME_NODE& Other = Frame->Nodes[I];
        if (I != Frame->ActiveNode && Other.CenterX == Cell->X && Other.CenterY == Cell->Y &&
            Other.Column == Cell->Column && Other.Row == Cell->Row) {
            return EFI_SUCCESS;
        }
    }
    MoveNode(Frame, &Frame->Nodes[Frame->ActiveNode], Component, *Cell);
    return EFI_SUCCESS;
}

// --- Painting ---

static VOID OverlayNode(DRAGDROP_COMPONENT* Frame, const DD_FRAME_NODE& Node, POINT Place)
{
    if (Node.Image == nullptr) {
        return;
    }
    (void)OverlayBlt(Node.Image, static_cast<INT32>(Node.ImageWidth), static_cast<INT32>(Node.ImageHeight),
                     Frame->WorkImage, Frame->Rect.Width, Frame->Rect.Height, static_cast<INT32>(Place.X),
                     static_cast<INT32>(Place.Y), &gKeyColor, &gKeyColor, 1);
}

static VOID ShowWorkImage(DRAGDROP_COMPONENT* Frame)
{
    const GUI_RECT& Rect = Frame->Rect;
    (void)PasteBlt(Frame->WorkImage, Rect.Width, Rect.Height, Rect.X, Rect.Y, gGuiCore->Screen);
    (void)ComposeScreen(gGuiCore, Frame->WorkImage, Rect.X, Rect.Y, Rect.Width, Rect.Height);
}

VOID RepaintDragDropFrame(DRAGDROP_COMPONENT* Frame)
{
    if (!FrameIsWhole(Frame)) {
        return;
    }
    CopyMem(Frame->WorkImage, Frame->CleanImage, Frame->Rect.BufferSize);
    if (!FrameIsLive(Frame)) {
        return;
    }
    for (const DD_FRAME_NODE& Node : Frame->Nodes) {
        OverlayNode(Frame, Node, RestingPlace(Frame, Node));
    }
    ShowWorkImage(Frame);
}

EFI_STATUS OnDragDropRefresh(EFI_EVENT, VOID* Context)
{
    RepaintDragDropFrame(static_cast<DRAGDROP_COMPONENT*>(Context));
    return EFI_NOT_FOUND;
}

static UINT32 Distance(UINT32 A, UINT32 B)
{
    return A > B ? A - B : B - A;
}

// The lines that lead from the centre of the dragged picture to the frame's two scales.
static VOID DrawGuideLines(DRAGDROP_COMPONENT* Frame, POINT Place, PIXEL Color)
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
static VOID DrawDragDropDrag(DRAGDROP_COMPONENT* Frame, POINT Place)
{
    const DD_FRAME_NODE& Active = Frame->Nodes[Frame->ActiveNode];
    const PIXEL Color = gNodeColor[Frame->ActiveNode];
    const GUI_RECT& Rect = Frame->Rect;
    CopyMem(Frame->WorkImage, Frame->GridImage, Rect.BufferSize);
    (void)MarkRectangle(Frame->WorkImage, Rect.Width, Rect.Height, static_cast<INT32>(Active.Left - Rect.X),
                        static_cast<INT32>(Active.Top - Rect.Y), Distance(Active.Right, Active.Left),
                        Distance(Active.Bottom, Active.Top), Color);
    for (const DD_FRAME_NODE& Node : Frame->Nodes) {
        if (Node.Id != gGuiCore->HitId && &Node != &Active) {
            OverlayNode(Frame, Node, RestingPlace(Frame, Node));
        }
    }
    DrawGuideLines(Frame, Place, Color);
    OverlayNode(Frame, Active, Place);
    ShowWorkImage(Frame);
    gFrameDragReport = {
        .RelX = static_cast<UINT16>(Place.X < 0 ? -Place.X : Place.X),
        .RelY = static_cast<UINT16>(Place.Y < 0 ? -Place.Y : Place.Y),
        .AbsX = static_cast<UINT16>(Rect.X + Place.X),
        .AbsY = static_cast<UINT16>(Rect.Y + Place.Y),
        .CellWidth = Frame->CellWidth,
        .CellHeight = Frame->CellHeight,
    };
}

// --- Dragging ---

EFI_STATUS OnDragDropEvent(EFI_EVENT, VOID* Context)
{
    DRAGDROP_COMPONENT* Frame = static_cast<DRAGDROP_COMPONENT*>(Context);
    if (gDragging == 1 || gGuiCore->MouseState != L_HOLD || !FrameIsLive(Frame)) {
        return EFI_NOT_FOUND;
    }
    for (UINT8 I = 0; I < gNodeCount; I++) {
        if (Frame->Nodes[I].Id == gGuiCore->HitId) {
            gGuiCore->TargetId = static_cast<UINT16>(Frame->Nodes[I].Id);
            gGuiCore->Target = Frame;
            gGuiCore->TargetKind = _DRAGDROP_COMPONENT;
            Frame->ActiveNode = I;
            return EFI_SUCCESS;
        }
    }
    return EFI_NOT_FOUND;
}

static INT64 Limit(INT64 Value, INT64 Least, INT64 Most)
{
    return Value < Least ? Least : Value > Most ? Most : Value;
}

// Where to draw the node in hand for the pointer's present place, in frame coordinates: the wanted place while the whole
// picture is inside the limits; along one of their sides while the pointer is beyond that side alone; else where it was.
static POINT DragPlace(const DRAGDROP_COMPONENT* Frame)
{
    const DD_FRAME_NODE& Node = Frame->Nodes[Frame->ActiveNode];
    const INT64 PointerX = gGuiCore->PointerX;
    const INT64 PointerY = gGuiCore->PointerY;
    const POINT Base = RestingPlace(Frame, Node);
    const INT64 WantX = Base.X + PointerX - gDragStartX;
    const INT64 WantY = Base.Y + PointerY - gDragStartY;
    const INT64 MinX = static_cast<INT64>(Node.Left) - Frame->Rect.X;
    const INT64 MaxX = static_cast<INT64>(Node.Right) - Frame->Rect.X - Frame->CellWidth;
    const INT64 MinY = static_cast<INT64>(Node.Top) - Frame->Rect.Y;
    const INT64 MaxY = static_cast<INT64>(Node.Bottom) - Frame->Rect.Y - Frame->CellHeight;

    if (WantX > MinX && WantX < MaxX && WantY > MinY && WantY < MaxY) {
        return {WantX, WantY};
    }
    const bool InsideX = PointerX > Node.Left && PointerX < Node.Right;
    const bool InsideY = PointerY > Node.Top && PointerY < Node.Bottom;
    if (InsideX && InsideY) {
        return {Limit(WantX, MinX, MaxX), Limit(WantY, MinY, MaxY)};
    }
    if (InsideY && (PointerX < Node.Left || PointerX > Node.Right)) {
        return {PointerX < Node.Left ? MinX : MaxX, Limit(WantY, MinY, MaxY)};
    }
    if (InsideX && (PointerY < Node.Top || PointerY > Node.Bottom)) {
        return {Limit(WantX, MinX, MaxX), PointerY < Node.Top ? MinY : MaxY};
    }
    return {gDragFrameX, gDragFrameY};
}

static VOID BeginNodeDrag(DRAGDROP_COMPONENT* Frame)
{
    Frame->DragStarted = 1;
    gDragging = 1;
    gDragStartX = gGuiCore->PointerX;
    gDragStartY = gGuiCore->PointerY;
    (void)FireDragDropListeners(L_HOLD);
}

static VOID MoveNodeDrag(DRAGDROP_COMPONENT* Frame)
{
    gDragLock = 1;
    const POINT Place = DragPlace(Frame);
    gDragFrameX = Place.X;
    gDragFrameY = Place.Y;
    DrawDragDropDrag(Frame, Place);
}

static VOID EndNodeDrag(DRAGDROP_COMPONENT* Frame)
{
    gDragLock = 0;
    // A press too short for a drag leaves the node where it was.
    if (gGuiCore->MouseState != L_CLICK) {
        (void)SnapDragDropNode(Frame, gDragFrameX + Frame->CellWidth / 2, gDragFrameY + Frame->CellHeight / 2);
    }
    RepaintDragDropFrame(Frame);
    Frame->ActiveNode = gNoActiveNode;
    ClearTarget();
    gDragStartX = 0;
    gDragStartY = 0;
    gFrameDragReport.RelX = 0;
    gFrameDragReport.RelY = 0;
    gFrameDragReport.AbsX = 0;
    gFrameDragReport.AbsY = 0;
    (void)FireDragDropListeners(L_HOLD_TO_RELEASE);
    if (Frame->DragStarted == 1) {
        Frame->DragStarted = 0;
        gDragging = 0;
    }
}

EFI_STATUS DragDropFrameDispatch()
{
    DRAGDROP_COMPONENT* Frame = nullptr;
    if (gGuiCore->TargetKind == _DRAGDROP_COMPONENT) {
        Frame = static_cast<DRAGDROP_COMPONENT*>(gGuiCore->Target);
    }
    if (!FrameIsWhole(Frame) || Frame->ActiveNode >= gNoActiveNode) {
        gDragging = 0;
        return EFI_NOT_FOUND;
    }
    switch (gGuiCore->MouseState) {
    case L_HOLD:
        SetDragDropNodeLimits(Frame);
        if (Frame->DragStarted == 0) {
            BeginNodeDrag(Frame);
        } else {
            MoveNodeDrag(Frame);
        }
        break;
    case NOEVENT:
    case L_HOLD_TO_RELEASE:
    case L_CLICK:
        EndNodeDrag(Frame);
        break;
    default:
        break;
    }
    return EFI_NOT_FOUND;
}
