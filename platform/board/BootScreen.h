// The picture that a board's firmware leaves on the display when it hands over: what the console finds there at its
// start.
#pragma once

#include "uefi/GraphicsOutput.h"

constexpr UINT32 BOOT_SCREEN_WIDTH = 1024;
constexpr UINT32 BOOT_SCREEN_HEIGHT = 768;

// Paints the boot screen over BOOT_SCREEN_WIDTH by BOOT_SCREEN_HEIGHT pixels, rows top to bottom without gaps. Every
// pixel is written, the reserved bytes as zero, and the picture is the same in every world.
VOID PaintBootScreen(EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Display);
