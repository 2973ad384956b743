#include "shell/contract/Board.h"

#include "shell/contract/Screen.h"
#include "support/Pool.h"

EFI_GRAPHICS_OUTPUT_PROTOCOL* gGraphicsOutput = nullptr;
EFI_CPU_ARCH_PROTOCOL* gCpuArch = nullptr;
IMAGE_DECODER_PROTOCOL* gImageDecoder = nullptr;
CURSOR_SERVICE_PROTOCOL* gCursorService = nullptr;
FLOAT_MATH_PROTOCOL* gFloatMath = nullptr;
IMAGE_LOOKUP_PROTOCOL* gImageLookup = nullptr;
HW_SERVICE_PROTOCOL* gHwService = nullptr;
DRAW_PRIMITIVES_PROTOCOL* gDrawPrimitives = nullptr;
IMAGE_SECTION_PROTOCOL* gImageSection = nullptr;
GLOBAL_VARIABLE gGlobalVariable = {};
UINT8 gItemPresent[gItemCount] = {};
EFI_GRAPHICS_OUTPUT_BLT_PIXEL* gSavedScreen = nullptr;

namespace {

constexpr CHAR16 gSettingsName[] = u"GlobalVariable";
constexpr EFI_GUID gSettingsGuid = {0x1D1140CD, 0x3B1C, 0x4B04, {0xA3, 0xBE, 0xD8, 0xA9, 0x23, 0xE5, 0x73, 0xB8}};

// Called with 10 and 0, as the service's own users do.
constexpr UINTN gConfigureA = 10;
constexpr UINTN gConfigureB = 0;

// The order in which the items are asked whether they exist.
constexpr UINT8 gPresenceOrder[] = {4, 5, 6, 7, 8, 9, 10, 0, 1, 2, 11, 12, 13, 14, 15, 16, 17};

struct SERVICE {
    const EFI_GUID* Guid;
    const EFI_GUID* OtherGuid;
    VOID** Interface;
    EFI_STATUS (*WhenFound)(); // its failure ends the search too
};

template <typename T> VOID** Place(T** Interface) { return reinterpret_cast<VOID**>(Interface); }

// What the display shows now, on the assumption of a linear 1024 by 768 frame buffer with rows back to back.
EFI_STATUS SaveScreen()
{
    VOID* Block = nullptr;
    const EFI_STATUS Status = gBS->AllocatePool(EfiBootServicesData, gScreenBytes, &Block);
    if (EfiError(Status)) {
        return Status;
    }
    SetMem(Block, gScreenBytes, 0);
    // A display without a linear frame buffer, or with a smaller one, leaves the rest black. A size of 0 doesn't mean an
    // empty buffer: the firmware hasn't told its size.
    const EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE* Mode = gGraphicsOutput->Mode;
    if (Mode != nullptr && Mode->FrameBufferBase != 0) {
        const UINTN Size = Mode->FrameBufferSize;
        CopyMem(Block, reinterpret_cast<const VOID*>(Mode->FrameBufferBase),
                Size == 0 || Size > gScreenBytes ? gScreenBytes : Size);
    }
    gSavedScreen = static_cast<EFI_GRAPHICS_OUTPUT_BLT_PIXEL*>(Block);
    return EFI_SUCCESS;
}

EFI_STATUS InitializeBoard()
{
    (void)gHwService->Initialize(gHwService);
    return EFI_SUCCESS;
}

EFI_STATUS ConfigureSections() { return gImageSection->Configure(gConfigureA, gConfigureB); }

// EFI_BUFFER_TOO_SMALL when the variable exists, since there is no room for any; EFI_NOT_FOUND when it doesn't.
EFI_STATUS ProbeSettings()
{
    UINTN Size = 0;
    return gRT->GetVariable(gSettingsName, &gSettingsGuid, nullptr, &Size, nullptr);
}

// A variable of another size, or one that can't be read, leaves the record as it is.
VOID ReadSettings()
{
    GLOBAL_VARIABLE Stored = {};
    UINTN Size = sizeof(Stored);
    const EFI_STATUS Status = gRT->GetVariable(gSettingsName, &gSettingsGuid, nullptr, &Size, &Stored);
    if (!EfiError(Status) && Size == sizeof(Stored)) {
        gGlobalVariable = Stored;
    }
}

} // namespace

EFI_STATUS LocateProtocols()
{
    VOID* Required = nullptr; // only its presence counts
    const SERVICE Services[] = {
        // service                         under its other GUID            interface              at once when found
        {&gEfiGraphicsOutputProtocolGuid, nullptr, Place(&gGraphicsOutput), SaveScreen},
        {&gEfiCpuArchProtocolGuid, nullptr, Place(&gCpuArch), nullptr},
        {&gImageDecoderProtocolGuid, nullptr, Place(&gImageDecoder), nullptr},
        {&gCursorServiceProtocolGuid, &gCursorServiceProtocol2Guid, Place(&gCursorService), nullptr},
        {&gRequiredServiceProtocolGuid, nullptr, &Required, nullptr},
        {&gFloatMathProtocolGuid, nullptr, Place(&gFloatMath), nullptr},
        {&gImageLookupProtocolGuid, nullptr, Place(&gImageLookup), nullptr},
        {&gImageDecoderProtocolGuid, nullptr, Place(&gImageDecoder), nullptr},
        {&gHwServiceProtocolGuid, nullptr, Place(&gHwService), InitializeBoard},
        {&gDrawPrimitivesProtocolGuid, nullptr, Place(&gDrawPrimitives), nullptr},
        {&gImageSectionProtocolGuid, nullptr, Place(&gImageSection), ConfigureSections},
    };
    for (const SERVICE& Service : Services) {
        EFI_STATUS Status = gBS->LocateProtocol(Service.Guid, nullptr, Service.Interface);
        if (EfiError(Status) && Service.OtherGuid != nullptr) {
            Status = gBS->LocateProtocol(Service.OtherGuid, nullptr, Service.Interface);
        }
        if (!EfiError(Status) && Service.WhenFound != nullptr) {
            Status = Service.WhenFound();
        }
        if (EfiError(Status)) {
            return Status;
        }
    }
    return EFI_SUCCESS;
}

VOID LoadSettingsAndCapabilities()
{
    EFI_STATUS Status = ProbeSettings();
    if (Status == EFI_NOT_FOUND) {
        gGlobalVariable.SelectedFanItem = gFirstFanItem;
        StoreSettings();
        Status = ProbeSettings();
    }
    if (Status == EFI_BUFFER_TOO_SMALL) {
        ReadSettings();
    }

    UINT8 Present = 0; // set once: an answer that leaves it alone repeats the one before
    for (const UINT8 Item : gPresenceOrder) {
        UINT64 Value = 0;
        (void)gHwService->GetItemValue(gHwService, Item, &Value, &Present);
        gItemPresent[Item] = Present;
    }
}

VOID StoreSettings()
{
    (void)gRT->SetVariable(gSettingsName, &gSettingsGuid, EFI_VARIABLE_BOOTSERVICE_ACCESS, sizeof(gGlobalVariable),
                           &gGlobalVariable);
}
