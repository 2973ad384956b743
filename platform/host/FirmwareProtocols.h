// The protocols that the firmware itself has beside its tables: graphics output, the processor's timer, the system font.
#pragma once

#include "uefi/CpuArch.h"
#include "uefi/Hii.h"

struct HANDLES;

struct FIRMWARE_PROTOCOLS {
    EFI_GRAPHICS_OUTPUT_PROTOCOL GraphicsOutput = {};
    EFI_CPU_ARCH_PROTOCOL Processor = {};
    EFI_HII_FONT_PROTOCOL Font = {};

    EFI_GRAPHICS_OUTPUT_PROTOCOL* Shown = nullptr; // what everybody finds: GraphicsOutput, or a layer over it

    // Fills them in; nobody finds them yet.
    VOID Fill(EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE* DisplayMode);
    // Installs all of them, and those of the HII family that a program only looks for.
    VOID Install(HANDLES& Handles);
};
