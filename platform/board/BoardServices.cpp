#include "platform/board/BoardServices.h"

#include "platform/board/ArtworkPack.h"
#include "platform/board/ArtworkServices.h"
#include "platform/board/CursorService.h"
#include "platform/board/Decoder.h"
#include "platform/board/FloatMath.h"
#include "platform/board/HandKeys.h"
#include "platform/board/HardwareService.h"
#include "platform/board/Lines.h"
#include "platform/board/MessageBox.h"
#include "platform/board/TabStops.h"
#include "platform/board/TakeHome.h"

namespace {

EFI_BOOT_SERVICES* gServices;

DRAW_PRIMITIVES_PROTOCOL gBoardDrawPrimitives = {
    .Unused0 = {},
    .CreateMessageBox = CreateMessageBox,
    .UpdateMessageBox = UpdateMessageBox,
    .DrawMessageBox = DrawMessageBox,
    .Unused11 = {},
    .DrawLine = DrawLine,
};

// A service that the console wants to find and never calls; it needs an interface all the same.
UINT64 gBoardRequiredService;

} // namespace

EFI_STATUS InstallBoardServices(EFI_SYSTEM_TABLE* SystemTable, const BOARD_OPTIONS* Options, EFI_HANDLE* Handle)
{
    if (SystemTable == nullptr || Options == nullptr || Handle == nullptr || Options->Board == nullptr ||
        Options->Microseconds == nullptr || !CheckArtworkPack(Options->ArtworkPack, Options->ArtworkPackSize)) {
        return EFI_INVALID_PARAMETER;
    }
    gServices = SystemTable->BootServices;
    UseHardware(Options->Board, Options->Microseconds, Options->Refused, gServices);
    UsePointerSource(Options->Pointer, Options->Microseconds);
    UseTabStops(Options->Board, SystemTable->RuntimeServices);
    UseTakeHome(SystemTable, Options->Board, Options->Microseconds, Options->Home);
    UseMessageBoxServices(gServices);
    UseArtworkPool(gServices);
    UseArtworkPack(Options->ArtworkPack, Options->ArtworkPackSize);
    SetDecoderGeneration(Options->Generation);

    *Handle = nullptr;
    const EFI_STATUS Status = gServices->InstallMultipleProtocolInterfaces(
        Handle, &gImageDecoderProtocolGuid, &gBoardImageDecoder, &gCursorServiceProtocolGuid, &gBoardCursor,
        &gRequiredServiceProtocolGuid, &gBoardRequiredService, &gFloatMathProtocolGuid, &gBoardFloatMath,
        &gImageLookupProtocolGuid, &gBoardImageLookup, &gHwServiceProtocolGuid, &gBoardHardware,
        &gDrawPrimitivesProtocolGuid, &gBoardDrawPrimitives, &gImageSectionProtocolGuid, &gBoardImageSection,
        static_cast<VOID*>(nullptr));
    if (!EfiError(Status)) {
        OpenHandKeys(SystemTable, Options->StrokeClock);
    } else {
        UseTakeHome(nullptr, nullptr, nullptr, nullptr); // it may hold pool
    }
    return Status;
}

EFI_STATUS UninstallBoardServices(EFI_HANDLE Handle)
{
    if (Handle == nullptr || gServices == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    const EFI_STATUS Status = gServices->UninstallMultipleProtocolInterfaces(
        Handle, &gImageDecoderProtocolGuid, &gBoardImageDecoder, &gCursorServiceProtocolGuid, &gBoardCursor,
        &gRequiredServiceProtocolGuid, &gBoardRequiredService, &gFloatMathProtocolGuid, &gBoardFloatMath,
        &gImageLookupProtocolGuid, &gBoardImageLookup, &gHwServiceProtocolGuid, &gBoardHardware,
        &gDrawPrimitivesProtocolGuid, &gBoardDrawPrimitives, &gImageSectionProtocolGuid, &gBoardImageSection,
        static_cast<VOID*>(nullptr));
    if (EfiError(Status)) {
        return Status;
    }
    CloseHandKeys();
    ResetArtwork();
    UsePointerSource(nullptr, nullptr);
    UseTabStops(nullptr, nullptr);
    UseTakeHome(nullptr, nullptr, nullptr, nullptr);
    UseMessageBoxServices(nullptr);
    gServices = nullptr;
    return EFI_SUCCESS;
}
