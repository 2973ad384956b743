// A drag-and-drop frame: a grid of temperature columns and duty rows, on which four numbered nodes stand as a rising
// curve. The user moves a node with the mouse; the frame confines it between its neighbours and drops it into the cell
// under its centre. What the nodes mean for a fan is the page's business: a drag-and-drop listener of the pointer
// engine is told 0 when a drag begins and 4 when it ends.
//
// At rest WorkImage holds the nodes on plain panel colour, the ground on which the page's chart draws. During a drag
// the frame shows the grid, the limits of the node in hand, and two guide lines. Only a live frame shows its nodes and
// lets them be picked up: one whose Linked differs from Inverted as a truth value.
//
// The record belongs to the caller. DragDropFrameDispatch runs in every turn of the main loop.
#pragma once

#include "controls/Grid.h"
#include "gui/core/GUICore.h"

constexpr UINT8 gNoActiveNode = 4; // ActiveNode while no node is in hand

// One cell of the grid. The cell (column c, row r) has the index Columns x r + c.
struct DD_FRAME_CELL {
    UINT32 X; // the cell's centre on the screen
    UINT32 Y;
    UINT32 Width;
    UINT32 Height;
    UINT32 Column; // 0 is the left column
    UINT32 Row;    // 0 is the top row
};

struct DD_FRAME_NODE {
    UINT32 CenterX; // the centre of the cell that it stands on
    UINT32 CenterY;
    UINT32 ImageWidth;
    UINT32 ImageHeight;
    UINT32 Top; // limits of the drag on the screen, valid while this node is dragged
    UINT32 Bottom;
    UINT32 Left;
    UINT32 Right;
    UINT32 Column;
    UINT32 Row;
    UINT32 Id;    // of its component; 0 before it is registered, gUnregisteredId where that failed
    CHAR16* Name; // 256 bytes. Owned
    PIXEL* Image; // inside NodeImages
};

struct _DRAGDROP_COMPONENT : GRID_CONTROL {
    UINT8 ActiveNode; // number of the node in hand, gNoActiveNode for none
    UINT8 DragStarted;
    DD_FRAME_CELL* Cells;            // owned
    DD_FRAME_NODE Nodes[gNodeCount]; // node 0 is the low end of the curve
    PIXEL* GridImage;                // shared with other frames and sliders
    PIXEL* CleanImage;               // shared with other frames and sliders
    PIXEL* WorkImage;                // the picture of the moment. Owned
    PIXEL* NodeImages;               // strip of four node pictures. Owned
    UINT8 Inverted;
    UINT8 Linked; // a check box writes its state here
    UINT32 Id;    // the component that pages switch for the whole frame; 0 and gUnregisteredId as for a node
    EFI_EVENT PrimaryEvent;
    EFI_EVENT SecondaryEvent;
};
using DRAGDROP_COMPONENT = struct _DRAGDROP_COMPONENT;

// 1 from the start of a drag to its end.
extern UINT8 gDragging;
// Where the node in hand is.
extern DRAG_REPORT gFrameDragReport;

// Fills the record with a frame at its fixed place and registers the four nodes, then the frame. DutyLabels is a
// null-ended table whose length gives the rows. The node pictures are the BMP section Instance of the file; without
// usable ones the nodes are plain blocks. NodeCells are four cell indices, node 0 first; a node whose index is no cell
// stands one cell up and right of the node before. Paints nothing. EFI_BUFFER_TOO_SMALL when there is no pool for the
// cells or a picture: the record then has no component, and every operation on it is without effect. EFI_SUCCESS for a
// null frame, EFI_INVALID_PARAMETER for an empty table.
EFI_STATUS CreateDragDropFrame(DRAGDROP_COMPONENT* Frame, const CHAR16* const* DutyLabels, const EFI_GUID* FileGuid,
                               UINT32 Instance, const UINT32* NodeCells);

// Frees what the frame owns; the record stays the caller's. The status of the last timer cancel, EFI_SUCCESS for none.
EFI_STATUS DestroyDragDropFrame(DRAGDROP_COMPONENT* Frame);

// Moves all nodes. Places is eight bytes: the columns, counted from 1, of nodes 3, 2, 1, 0, then the levels of nodes 0,
// 1, 2, 3, level 1 being the bottom row: the order of a FAN_SETTING from Column3 on. A place that is no cell leaves its
// node where it was. Doesn't repaint. The status of the last lookup of a node's component.
EFI_STATUS SetDragDropNodes(DRAGDROP_COMPONENT* Frame, const UINT8* Places);

// Builds the picture at rest and shows it if the frame is live. If it isn't, WorkImage is empty and the screen stays.
VOID RepaintDragDropFrame(DRAGDROP_COMPONENT* Frame);

// The same, and shows the empty picture too: for a frame whose place still shows somebody else's nodes, or its own that
// are no longer live.
VOID ShowDragDropFrame(DRAGDROP_COMPONENT* Frame);

// RepaintDragDropFrame as a notify function: of SecondaryEvent, and of a page's target. Always EFI_NOT_FOUND.
EFI_STATUS OnDragDropRefresh(EFI_EVENT Event, VOID* Context);

// Notify function of PrimaryEvent: takes the node under the pointer in hand when it was pressed, the frame is live, and
// neither a node nor a thumb is being dragged. EFI_NOT_FOUND, with nothing changed, in any other case.
EFI_STATUS OnDragDropEvent(EFI_EVENT Event, VOID* Context);

// One step of the drag under way, if there is one. Its status carries no information.
EFI_STATUS DragDropFrameDispatch();

// A node's: it answers to the held button while its frame is on the page, and not to the pointer alone.
extern const COMPONENT_CLASS gNodeClass;
