// The board as the console knows it: the interfaces that LocateProtocols found, which items exist, and the settings
// variable. The interfaces belong to the firmware; none is null once LocateProtocols has succeeded, so nobody tests.
#pragma once

#include "shell/contract/Services.h"
#include "uefi/CpuArch.h"

// The record of the firmware variable "GlobalVariable": what the user had on screen, from one start of the console to
// the next within a boot.
struct GLOBAL_VARIABLE {
    UINT8 SelectedFanItem; // item id of the fan whose page is on top, 4 to 10
    UINT8 Reserved1[7];
    UINT64 CurrentTemperature; // last value read from the selected source, degrees
    UINT32 TemperatureSource;  // 0 to 2
    UINT32 Reserved20;
};
static_assert(sizeof(GLOBAL_VARIABLE) == 24);
static_assert(offsetof(GLOBAL_VARIABLE, CurrentTemperature) == 8 && offsetof(GLOBAL_VARIABLE, TemperatureSource) == 16);

extern EFI_GRAPHICS_OUTPUT_PROTOCOL* gGraphicsOutput;
extern EFI_CPU_ARCH_PROTOCOL* gCpuArch;
extern IMAGE_DECODER_PROTOCOL* gImageDecoder;
extern CURSOR_SERVICE_PROTOCOL* gCursorService;
extern FLOAT_MATH_PROTOCOL* gFloatMath;
extern IMAGE_LOOKUP_PROTOCOL* gImageLookup;
extern HW_SERVICE_PROTOCOL* gHwService;
extern DRAW_PRIMITIVES_PROTOCOL* gDrawPrimitives;
extern IMAGE_SECTION_PROTOCOL* gImageSection;

extern GLOBAL_VARIABLE gGlobalVariable;

// 1 for an item that exists on this board. Filled once at start. Every reader tests for exactly 1.
extern UINT8 gItemPresent[gItemCount];

// What the display showed when the console started: 1024 by 768 pixels, owned by the shell.
extern EFI_GRAPHICS_OUTPUT_BLT_PIXEL* gSavedScreen;

// Finds every service in a fixed order and stops at the first that is missing, with its status. Also copies the
// display's first picture into gSavedScreen and calls Initialize and Configure.
EFI_STATUS LocateProtocols();

// Reads the settings variable, or writes it with its defaults at the first start in a boot, and asks the board which
// items exist. A stored variable of another size than the record is not followed: the record then stays zero.
VOID LoadSettingsAndCapabilities();

// Writes the settings variable as the record stands.
VOID StoreSettings();
