#include "controls/DragDropFrame.h"

#include "controls/FrameParts.h"
#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "graphics/KeptPicture.h"
#include "support/Pool.h"
#include "support/Report.h"
#include "support/Print.h"

namespace {

constexpr UINT32 gPlainGridHeight = 240; // rows of pixels that the cells of a frame without artwork share
constexpr UINTN gNameSize = 256;         // bytes of a node's name

constexpr CHAR8 gSourcePath[] = "src\\controls\\DragDropFrame.cpp";

UINT32 CellCount(const DRAGDROP_COMPONENT* Frame) { return static_cast<UINT32>(Frame->Columns) * Frame->Rows; }

VOID StandOnCell(DD_FRAME_NODE* Node, const DD_FRAME_CELL& Cell)
{
    Node->CenterX = Cell.X;
    Node->CenterY = Cell.Y;
    Node->Column = Cell.Column;
    Node->Row = Cell.Row;
}

// The strip of node pictures, or four plain blocks in the nodes' colours where the file has none that fits: one of the
// nominal size, so that the grid has its place. Without pool the nodes can be dragged all the same and aren't seen.
VOID LoadNodeStrip(DRAGDROP_COMPONENT* Frame, UINT32 Instance, const EFI_GUID* FileGuid, UINT32* Width, UINT32* Height)
{
    (void)LoadBmpBlt(Instance, FileGuid, &Frame->NodeImages, Width, Height);
    *Height = static_cast<UINT32>(*Height / gNodeCount);
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
    for (UINT32 Index = 0; Frame->NodeImages != nullptr && Index < gNodeCount; Index++) {
        FillPixels(Frame->NodeImages + Index * NodePixels, NodePixels, gNodeColor[Index]);
    }
}

EFI_STATUS AllocateFramePictures(DRAGDROP_COMPONENT* Frame)
{
    Frame->Cells = AllocateZeroArray<DD_FRAME_CELL>(CellCount(Frame));
    if (Frame->Cells == nullptr) {
        return EFI_BUFFER_TOO_SMALL;
    }
    return TakeGridPictures(*Frame, &Frame->GridImage, &Frame->WorkImage, &Frame->CleanImage);
}

VOID FillCells(DRAGDROP_COMPONENT* Frame)
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
const DD_FRAME_CELL& FirstCell(const DRAGDROP_COMPONENT* Frame, UINT32 Number, UINT32 Index)
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

VOID CreateNode(DRAGDROP_COMPONENT* Frame, UINT32 Number, UINT32 CellIndex, UINT32 Width, UINT32 Height)
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
        FormatUnicodeText(Node->Name, gNameSize, u"%s%d", u"DDFrameNode_", static_cast<INT32>(Number));
    }
    const GUI_RECT Rect = PictureRect(Node->CenterX - Frame->CellWidth / 2u, Node->CenterY - Frame->CellHeight / 2u,
                                      Frame->CellWidth, Frame->CellHeight);
    RegisterControl(Frame, &Rect, _DRAGDROP_COMPONENT, &Node->Id, Frame->PrimaryEvent, nullptr, Node->Name);
}

SCAN_RESULT ScanNode(const GUI_COMPONENT* Component)
{
    if (gGuiCore->MouseState == NOEVENT && Component->Enabled == 1) {
        return SCAN_STOP;
    }
    return ScanHeldPart(Component, static_cast<const DRAGDROP_COMPONENT*>(Component->Owner)->Id);
}

} // namespace

bool FrameIsWhole(const DRAGDROP_COMPONENT* Frame) { return Frame != nullptr && Frame->CleanImage != nullptr; }

const DD_FRAME_CELL* CellAt(const DRAGDROP_COMPONENT* Frame, UINT32 Index)
{
    return Index < CellCount(Frame) ? &Frame->Cells[Index] : nullptr;
}

POINT RestingPlace(const DRAGDROP_COMPONENT* Frame, const DD_FRAME_NODE& Node)
{
    return {
        .X = static_cast<INT64>(Node.CenterX) - Frame->CellWidth / 2 - Frame->Rect.X,
        .Y = static_cast<INT64>(Node.CenterY) - Frame->CellHeight / 2 - Frame->Rect.Y,
    };
}

EFI_STATUS CreateDragDropFrame(DRAGDROP_COMPONENT* Frame, const CHAR16* const* DutyLabels, const EFI_GUID* FileGuid,
                               UINT32 Instance, const UINT32* NodeCells)
{
    if (Frame == nullptr) {
        return EFI_SUCCESS;
    }
    SetMem(Frame, sizeof(*Frame), 0);
    Frame->ActiveNode = gNoActiveNode;
    CountCells(Frame, DutyLabels);
    if (Frame->Rows == 0) {
        return EFI_INVALID_PARAMETER;
    }
    UINT32 Width = 0;
    UINT32 Height = 0;
    LoadNodeStrip(Frame, Instance, FileGuid, &Width, &Height);

    PlaceGrid(Frame, Width, Height);
    const EFI_STATUS Status = AllocateFramePictures(Frame);
    if (EfiError(Status)) {
        REPORT("AllocatePool Fail (CreateDragDropFrame)");
        return Status;
    }
    FillCells(Frame);

    (void)CreateEvent(EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnDragDropEvent, Frame, &Frame->PrimaryEvent);
    (void)CreateEvent(EVT_TIMER | EVT_NOTIFY_SIGNAL, TPL_CALLBACK, OnDragDropRefresh, Frame, &Frame->SecondaryEvent);
    // The nodes come first, so that the hit scan finds a node before the frame that it stands on.
    for (UINT32 Index = 0; Index < gNodeCount; Index++) {
        CreateNode(Frame, Index, NodeCells[Index], Width, Height);
    }
    RegisterControl(Frame, &Frame->Rect, _BLT_BUF, &Frame->Id, Frame->PrimaryEvent, Frame->SecondaryEvent, u"DD_Frame");
    return EFI_SUCCESS;
}

EFI_STATUS DestroyDragDropFrame(DRAGDROP_COMPONENT* Frame)
{
    if (Frame == nullptr) {
        return EFI_SUCCESS;
    }
    ReleaseGridPictures(Frame->GridImage, Frame->WorkImage, Frame->CleanImage);
    ReleasePool(Frame->NodeImages);
    ReleasePool(Frame->Cells);
    const EFI_STATUS Status = CloseGridEvents(Frame->PrimaryEvent, Frame->SecondaryEvent);
    for (DD_FRAME_NODE& Node : Frame->Nodes) {
        ReleasePool(Node.Name);
    }
    return Status;
}

VOID MoveNode(const DRAGDROP_COMPONENT* Frame, DD_FRAME_NODE* Node, GUI_COMPONENT* Component, const DD_FRAME_CELL& Cell)
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
    for (UINT32 Index = 0; Index < gNodeCount; Index++) {
        const UINT8 Column = Places[gNodeCount - 1 - Index];
        const UINT8 Level = Places[gNodeCount + Index];
        GUI_COMPONENT* Component = nullptr;
        Status = FindComponent(gGuiCore->Components, static_cast<UINT16>(Frame->Nodes[Index].Id), &Component);
        if (EfiError(Status)) {
            continue;
        }
        const DD_FRAME_CELL* Cell =
            CellAt(Frame, static_cast<UINT8>(Frame->Columns * (Frame->Rows - Level) + Column - 1));
        if (Cell != nullptr) {
            MoveNode(Frame, &Frame->Nodes[Index], Component, *Cell);
        }
    }
    return Status;
}

VOID OverlayNode(DRAGDROP_COMPONENT* Frame, const DD_FRAME_NODE& Node, POINT Place)
{
    OverlayOnGrid(*Frame, Frame->WorkImage, Node.Image, Node.ImageWidth, Node.ImageHeight, Place.X, Place.Y);
}

VOID ShowDragDropFrame(DRAGDROP_COMPONENT* Frame)
{
    if (!FrameIsWhole(Frame)) {
        return;
    }
    CopyMem(Frame->WorkImage, Frame->CleanImage, Frame->Rect.BufferSize);
    const bool Live = IsLive(Frame->Inverted, Frame->Linked);
    for (UINT32 Index = 0; Live && Index < gNodeCount; Index++) {
        OverlayNode(Frame, Frame->Nodes[Index], RestingPlace(Frame, Frame->Nodes[Index]));
    }
    // The chart takes this picture for its ground later, so the pointer of a held button must not get into it.
    const GUI_RECT& Rect = Frame->Rect;
    ShowPicture(Frame->WorkImage, Rect.Width, Rect.Height, Rect.X, Rect.Y);
}

VOID RepaintDragDropFrame(DRAGDROP_COMPONENT* Frame)
{
    if (!FrameIsWhole(Frame)) {
        return;
    }
    if (IsLive(Frame->Inverted, Frame->Linked)) {
        ShowDragDropFrame(Frame);
    } else {
        CopyMem(Frame->WorkImage, Frame->CleanImage, Frame->Rect.BufferSize);
    }
}

EFI_STATUS OnDragDropRefresh(EFI_EVENT, VOID* Context)
{
    RepaintDragDropFrame(static_cast<DRAGDROP_COMPONENT*>(Context));
    return EFI_NOT_FOUND;
}

const COMPONENT_CLASS gNodeClass = {.Kind = _DRAGDROP_COMPONENT, .Scan = ScanNode, .HoverOf = nullptr};
