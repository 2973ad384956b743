// The little firmware that block operations need: pool, copying, filling, the board's floats and a display that takes
// everything and costs nothing, so that the figures are those of the operations alone.
#pragma once

#include <cstdlib>
#include <cstring>

#include "gui/core/GUICore.h"
#include "platform/board/FloatMath.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"

struct PIXEL_FIRMWARE {
    EFI_BOOT_SERVICES BootServices = {};
    EFI_GRAPHICS_OUTPUT_PROTOCOL GraphicsOutput = {};

    PIXEL_FIRMWARE()
    {
        BootServices.AllocatePool = [](EFI_MEMORY_TYPE, UINTN Size, VOID** Buffer) -> EFI_STATUS {
            *Buffer = std::malloc(Size);
            return EFI_SUCCESS;
        };
        BootServices.FreePool = [](VOID* Buffer) -> EFI_STATUS {
            std::free(Buffer);
            return EFI_SUCCESS;
        };
        BootServices.CopyMem = [](VOID* To, const VOID* From, UINTN Length) { std::memmove(To, From, Length); };
        BootServices.SetMem = [](VOID* To, UINTN Size, UINT8 Value) { std::memset(To, Value, Size); };
        GraphicsOutput.Blt = [](EFI_GRAPHICS_OUTPUT_PROTOCOL*, EFI_GRAPHICS_OUTPUT_BLT_PIXEL*,
                                EFI_GRAPHICS_OUTPUT_BLT_OPERATION, UINTN, UINTN, UINTN, UINTN, UINTN, UINTN,
                                UINTN) -> EFI_STATUS { return EFI_SUCCESS; };
        gBS = &BootServices;
        gGraphicsOutput = &GraphicsOutput;
        gFloatMath = &gBoardFloatMath;
    }
    ~PIXEL_FIRMWARE()
    {
        gBS = nullptr;
        gGraphicsOutput = nullptr;
        gFloatMath = nullptr;
    }
    PIXEL_FIRMWARE(const PIXEL_FIRMWARE&) = delete;
    PIXEL_FIRMWARE& operator=(const PIXEL_FIRMWARE&) = delete;
};
