// The tables as the console gets them: copies of the firmware's and of the board's own, with a cover in front of each
// operation that the table of calls in Calls.cpp knows. Operations that it doesn't know go straight to their owner.
#pragma once

#include <tuple>

#include "shell/contract/Services.h"
#include "uefi/CpuArch.h"
#include "uefi/Hii.h"
#include "uefi/SystemTable.h"

template <typename TABLE> struct COVERED {
    TABLE* True = nullptr; // as its owner installed it
    TABLE Cover = {};
};

struct CONSOLE_TABLES {
    std::tuple<COVERED<EFI_BOOT_SERVICES>, COVERED<EFI_RUNTIME_SERVICES>, COVERED<EFI_SIMPLE_TEXT_INPUT_PROTOCOL>,
               COVERED<EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL>, COVERED<EFI_GRAPHICS_OUTPUT_PROTOCOL>,
               COVERED<EFI_CPU_ARCH_PROTOCOL>, COVERED<EFI_HII_FONT_PROTOCOL>, COVERED<HW_SERVICE_PROTOCOL>,
               COVERED<CURSOR_SERVICE_PROTOCOL>, COVERED<FLOAT_MATH_PROTOCOL>, COVERED<IMAGE_LOOKUP_PROTOCOL>,
               COVERED<IMAGE_SECTION_PROTOCOL>, COVERED<IMAGE_DECODER_PROTOCOL>, COVERED<DRAW_PRIMITIVES_PROTOCOL>>
        Tables;
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL ErrorOutput = {}; // a second cover of the text output, for StdErr

    template <typename TABLE> COVERED<TABLE>& Of() { return std::get<COVERED<TABLE>>(Tables); }

    // Puts covers into the places of a system table that has the firmware's own.
    VOID CoverSystemTable(EFI_SYSTEM_TABLE* Table);
    // What the console gets for an interface that it found; the interface itself where no operation of it is known.
    VOID* CoverInterface(const EFI_GUID& Guid, VOID* Interface);
};
