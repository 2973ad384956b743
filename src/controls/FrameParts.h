// What a drag-and-drop frame and the drag of its nodes share. Nobody else uses it.
#pragma once

#include "controls/DragDropFrame.h"

// A place in frame coordinates.
struct POINT {
    INT64 X;
    INT64 Y;
};

// False for a null frame, and for one whose creation didn't get as far as its pictures.
bool FrameIsWhole(const DRAGDROP_COMPONENT* Frame);

// The cell of that index, or null when there is none.
const DD_FRAME_CELL* CellAt(const DRAGDROP_COMPONENT* Frame, UINT32 Index);

// Where the top left corner of a node's picture stands at rest.
POINT RestingPlace(const DRAGDROP_COMPONENT* Frame, const DD_FRAME_NODE& Node);

// Puts a node and its component on a cell.
VOID MoveNode(const DRAGDROP_COMPONENT* Frame, DD_FRAME_NODE* Node, GUI_COMPONENT* Component,
              const DD_FRAME_CELL& Cell);

// Lays a node's picture over WorkImage.
VOID OverlayNode(DRAGDROP_COMPONENT* Frame, const DD_FRAME_NODE& Node, POINT Place);
