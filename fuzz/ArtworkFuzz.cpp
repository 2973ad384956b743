// Artwork of any bytes: the first byte says whether they are a pack, a section that the services hand out, or a stored
// picture.
#include <cstdlib>

#include "fuzz/Input.h"
#include "platform/board/ArtworkPack.h"
#include "platform/board/StoredImage.h"
#include "platform/host/Boot.h"

namespace {

VOID ReadSections()
{
    for (const EFI_GUID* File : {&gArtworkFileGuid, &gCursorFileGuid}) {
        VOID* Bytes = nullptr;
        UINTN Size = 0;
        VOID* Lookup = nullptr;
        (void)gBoot->FirmwareTable.BootServices->LocateProtocol(&gImageLookupProtocolGuid, nullptr, &Lookup);
        if (!EfiError(static_cast<IMAGE_LOOKUP_PROTOCOL*>(Lookup)->GetFileSection(File, EFI_SECTION_RAW, &Bytes, &Size))) {
            (void)gBoot->FirmwareTable.BootServices->FreePool(Bytes);
        }
    }
}

VOID ReadPicture(STORED_IMAGE_FORMAT Format, const uint8_t* Data, size_t Size)
{
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Pixels = nullptr;
    UINT32 Width = 0;
    UINT32 Height = 0;
    UINT32 Stride = 0;
    if (!EfiError(ReadStoredImage(Format, Data, static_cast<UINT32>(Size), 8, &Pixels, &Width, &Height, &Stride))) {
        if (Width == 0 || Height == 0 || Stride < Width || Width > gMaxImageSide || Height > gMaxImageSide) {
            std::abort();
        }
        volatile UINT8 Last = Pixels[static_cast<UINTN>(Stride) * Height - 1].Blue;
        (void)Last;
        (void)gBoot->FirmwareTable.BootServices->FreePool(Pixels);
    }
}

} // namespace

// One boot for all inputs: what an input leaves in it is a fault.
BOOT& TheBoot()
{
    static BOOT* Boot = [] {
        BOOT_OPTIONS Machine;
        Machine.ArtworkPack = gArtworkPack;
        Machine.ArtworkPackSize = gArtworkPackSize;
        BOOT* New = new BOOT(Machine);
        New->Complaints.Quiet = true;
        if (EfiError(New->InstallBoard())) {
            std::abort();
        }
        return New;
    }();
    return *Boot;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    BOOT& Boot = TheBoot();
    INPUT Input = {Data, Size};
    const uint8_t What = Input.Byte() % 3;
    const UINTN Before = Boot.Pool.Count();
    if (What != 0) {
        ReadPicture(What == 1 ? STORED_IMAGE_JPEG : STORED_IMAGE_BMP, Input.Data, Input.Size);
    } else if (CheckArtworkPack(Input.Data, Input.Size)) {
        UseArtworkPack(Input.Data, Input.Size);
        ReadSections();
        UseArtworkPack(gArtworkPack, gArtworkPackSize);
    }
    if (Boot.Pool.Count() != Before || !Boot.Complaints.Lines.empty()) {
        std::abort();
    }
    return 0;
}
