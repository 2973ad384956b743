#include "platform/board/ArtworkServices.h"
#include "platform/board/ArtworkSections.h"

namespace {

EFI_STATUS CopySection(const EFI_GUID* FileGuid, UINT8 SectionType, const UINT32* Instance, VOID** Data, UINTN* Size)
{
    UINT8 File = 0;
    if (SameGuid(*FileGuid, gArtworkFileGuid)) {
        File = ARTWORK_FILE_MAIN;
    } else if (SameGuid(*FileGuid, gCursorFileGuid)) {
        File = ARTWORK_FILE_CURSOR;
    } else {
        return EFI_NOT_FOUND;
    }
    const UINT8* Stored = nullptr;
    UINTN StoredSize = 0;
    if (!FindArtworkSection(File, SectionType, Instance, &Stored, &StoredSize)) {
        return EFI_NOT_FOUND;
    }
    auto* Copy = static_cast<UINT8*>(AllocateArtworkPool(StoredSize));
    if (Copy == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    for (UINTN Index = 0; Index < StoredSize; Index++) {
        Copy[Index] = Stored[Index];
    }
    *Data = Copy;
    *Size = StoredSize;
    return EFI_SUCCESS;
}

EFI_STATUS GetFileSection(const EFI_GUID* FileGuid, UINT8 SectionType, VOID** Data, UINTN* Size)
{
    if (FileGuid == nullptr || Data == nullptr || Size == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    return CopySection(FileGuid, SectionType, nullptr, Data, Size);
}

EFI_STATUS GetArtworkSection(UINT32 Instance, VOID** Data, UINTN* Size, const EFI_GUID* FileGuid,
                             const UINT8* SectionType)
{
    if (FileGuid == nullptr || SectionType == nullptr || Data == nullptr || Size == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    return CopySection(FileGuid, *SectionType, &Instance, Data, Size);
}

// There is nothing to set up here: the pack is in memory already.
EFI_STATUS Configure(UINTN, UINTN) { return EFI_SUCCESS; }

} // namespace

IMAGE_LOOKUP_PROTOCOL gBoardImageLookup = {.Unused0 = nullptr, .GetFileSection = GetFileSection};

IMAGE_SECTION_PROTOCOL gBoardImageSection = {
    .Unused0 = nullptr,
    .GetArtworkSection = GetArtworkSection,
    .Unused2 = {},
    .Configure = Configure,
};
