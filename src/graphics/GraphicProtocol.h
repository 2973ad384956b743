// Block operations on pixel buffers, and the one operation that brings a changed rectangle and the pointer to the
// display together.
//
// A blit buffer is a pool block of Width x Height pixels, row after row, top row first, without header or row gap; its
// size travels beside the pointer. Whoever allocates a buffer owns it.
//
// What is done to each pixel stands in graphics/Kernels.h; FillPixels comes from there.
//
// Everything that changes the screen does so by one of three patterns, because a stored picture must never hold the
// pointer and the display must never show what Screen doesn't hold:
// - repaint: paint a buffer, PasteBlt it to Screen, then ComposeScreen with the same buffer and rectangle: RepaintBlt;
// - erase: ExtractBlt the rectangle from Background, then as above;
// - pointer only: ComposeScreen without a buffer.
#pragma once

#include "graphics/Kernels.h"
#include "graphics/Palette.h"
#include "gui/core/GUICore.h"

// Copies a Width x Height block into a 1024-wide surface with its top left corner at (X, Y). EFI_OUT_OF_RESOURCES, and
// nothing copied, when X is 1024 or more or Y is 768 or more. A block that reaches beyond the right or bottom edge is
// cut there: no caller counts on that, but a picture from a board may be larger than the place laid out for it.
EFI_STATUS PasteBlt(const PIXEL* Src, UINTN Width, UINTN Height, UINTN X, UINTN Y, PIXEL* Dst);

// Copies into Dst the DstWidth x DstHeight block of Src whose top left corner is at (OffsetX, OffsetY); the vertical
// offset comes first. Pixels of Dst beyond the right or bottom edge of Src keep what they held. Always EFI_SUCCESS.
EFI_STATUS ExtractBlt(PIXEL* Dst, UINTN DstWidth, UINTN DstHeight, const PIXEL* Src, UINTN SrcWidth, UINTN SrcHeight,
                      INT32 OffsetY, INT32 OffsetX);

// Lays Src over Dst with its top left corner at (X, Y), which may be negative; what hangs out on any side is dropped.
// For each pixel the first rule that applies decides: equal to *KeyColor: the destination stays; equal to *BlendColor:
// the destination is mixed with Percent (held to 1..99) of the source, its reserved byte staying; otherwise the source
// pixel replaces it. Either colour may be null. Always EFI_SUCCESS; without pool for a cut block nothing is drawn.
EFI_STATUS OverlayBlt(const PIXEL* Src, INT32 SrcWidth, INT32 SrcHeight, PIXEL* Dst, UINTN DstWidth, UINTN DstHeight,
                      INT32 X, INT32 Y, const PIXEL* KeyColor, const PIXEL* BlendColor, UINT8 Percent);

// Writes the gray value of each Src pixel into the pixel at the same place of Dst, where Dst isn't gKeyColor: cut-outs
// stay cut-outs. Dst and Src may be the same buffer. Always EFI_SUCCESS.
EFI_STATUS GrayBlt(PIXEL* Dst, UINTN DstWidth, UINTN DstHeight, const PIXEL* Src, UINTN SrcWidth, UINTN SrcHeight);

// Brings the Width x Height block in Buffer to the display at (X, Y) and draws the pointer at its present place. With a
// null Buffer only the pointer is brought up to date. While the left button is held the pointer is merged into Buffer,
// so that the repaint doesn't wipe it: paste to Screen before composing, never after. Always EFI_SUCCESS.
EFI_STATUS ComposeScreen(GUI_CORE* Core, PIXEL* Buffer, UINTN X, UINTN Y, UINTN Width, UINTN Height);

// The repaint pattern, for a buffer of the rectangle's size. The status of PasteBlt.
EFI_STATUS RepaintBlt(PIXEL* Buffer, const GUI_RECT& Rect);

// The erase pattern: the rectangle's clean picture comes back from Background to Screen and display. Without pool for
// the temporary block nothing happens.
VOID RestoreBackground(UINTN X, UINTN Y, UINTN Width, UINTN Height);
