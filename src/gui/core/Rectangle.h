// Rectangles of the screen, and the questions that are asked of them.
#pragma once

#include "shell/contract/Screen.h"

// Head of GUI_CORE, of GUI_COMPONENT and of every control's record, in screen pixels.
struct GUI_RECT {
    UINT32 X;
    UINT32 Y;
    UINT32 Width;
    UINT32 Height;
    UINT64 BufferSize; // bytes of a picture of that size: Width x Height x 4
};
static_assert(sizeof(GUI_RECT) == 24);

// The rectangle of a picture.
constexpr GUI_RECT PictureRect(UINT32 X, UINT32 Y, UINT32 Width, UINT32 Height)
{
    return {X, Y, Width, Height, UINT64{Width} * Height * sizeof(PIXEL)};
}

// Left and top edge belong to a rectangle, right and bottom edge don't.
constexpr bool PointInRect(const GUI_RECT& Rect, INT64 X, INT64 Y)
{
    return X >= Rect.X && X < static_cast<INT64>(Rect.X) + Rect.Width && Y >= Rect.Y &&
           Y < static_cast<INT64>(Rect.Y) + Rect.Height;
}

// The same for a pointer, which is in nothing while one of its coordinates is 0: so a service says that it has none.
constexpr bool PointerInRect(const GUI_RECT& Rect, INT64 X, INT64 Y)
{
    return X != 0 && Y != 0 && PointInRect(Rect, X, Y);
}

constexpr bool PointOnScreen(INT64 X, INT64 Y) { return X >= 0 && X < gScreenWidth && Y >= 0 && Y < gScreenHeight; }

// How much of an extent that begins at At is left before End. A place outside, a negative one seen as unsigned included,
// leaves nothing.
constexpr UINTN VisibleExtent(UINTN Extent, UINTN At, UINTN End) { return At >= End ? 0 : Smaller(Extent, End - At); }

// Whether all of it lies on the screen, and it has any pixel.
constexpr bool RectOnScreen(UINT64 X, UINT64 Y, UINT64 Width, UINT64 Height)
{
    return Width > 0 && Height > 0 && Width <= gScreenWidth && Height <= gScreenHeight && X <= gScreenWidth - Width &&
           Y <= gScreenHeight - Height;
}
