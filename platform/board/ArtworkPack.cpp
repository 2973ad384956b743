#include "platform/board/ArtworkPack.h"

#include "platform/board/ArtworkSections.h"
#include "shell/contract/Services.h"

namespace {

struct ARTWORK_OVERRIDE {
    UINT32 Instance;
    const UINT8* Data; // null: the section is missing
    UINTN Size;
};

// Room for every instance of the catalogue twice over; a script that names more is refused the rest.
constexpr UINTN gMaxOverrides = 64;

const UINT8* gPack = nullptr;
UINT32 gSectionCount = 0;
UINT8 gForcedSectionType = 0; // 0: as stored
ARTWORK_OVERRIDE gOverride[gMaxOverrides] = {};
UINTN gOverrideCount = 0;

// The pack is a block of bytes without alignment: it is read byte by byte, and so also the same on every machine.
UINT32 ReadUint32(const UINT8* Bytes)
{
    return static_cast<UINT32>(Bytes[0]) | static_cast<UINT32>(Bytes[1]) << 8 | static_cast<UINT32>(Bytes[2]) << 16 |
           static_cast<UINT32>(Bytes[3]) << 24;
}

ARTWORK_PACK_ENTRY ReadEntry(const UINT8* Pack, UINT32 Index)
{
    const UINT8* Bytes = Pack + sizeof(ARTWORK_PACK_HEADER) + Index * sizeof(ARTWORK_PACK_ENTRY);
    return {
        .File = Bytes[offsetof(ARTWORK_PACK_ENTRY, File)],
        .SectionType = Bytes[offsetof(ARTWORK_PACK_ENTRY, SectionType)],
        .Reserved = 0,
        .Instance = ReadUint32(Bytes + offsetof(ARTWORK_PACK_ENTRY, Instance)),
        .Offset = ReadUint32(Bytes + offsetof(ARTWORK_PACK_ENTRY, Offset)),
        .Size = ReadUint32(Bytes + offsetof(ARTWORK_PACK_ENTRY, Size)),
    };
}

bool IsType(UINT8 Stored, UINT8 Wanted) { return Wanted == (gForcedSectionType != 0 ? gForcedSectionType : Stored); }

const ARTWORK_OVERRIDE* FindOverride(UINT32 Instance)
{
    for (UINTN Index = 0; Index < gOverrideCount; Index++) {
        if (gOverride[Index].Instance == Instance) {
            return &gOverride[Index];
        }
    }
    return nullptr;
}

bool HasSection(UINT32 Instance)
{
    for (UINT32 Index = 0; Index < gSectionCount; Index++) {
        const ARTWORK_PACK_ENTRY Entry = ReadEntry(gPack, Index);
        if (Entry.File == ARTWORK_FILE_MAIN && Entry.Instance == Instance) {
            return true;
        }
    }
    return false;
}

} // namespace

bool CheckArtworkPack(const UINT8* Pack, UINTN Size)
{
    if (Pack == nullptr || Size < sizeof(ARTWORK_PACK_HEADER)) {
        return false;
    }
    constexpr UINT8 Signature[8] = {'V', 'T', 'R', 'P', 'A', 'C', 'K', '1'};
    for (UINTN Index = 0; Index < sizeof(Signature); Index++) {
        if (Pack[Index] != Signature[Index]) {
            return false;
        }
    }
    const UINT32 Count = ReadUint32(Pack + offsetof(ARTWORK_PACK_HEADER, Count));
    if (Count > (Size - sizeof(ARTWORK_PACK_HEADER)) / sizeof(ARTWORK_PACK_ENTRY)) {
        return false;
    }
    const UINTN TableEnd = sizeof(ARTWORK_PACK_HEADER) + UINTN{Count} * sizeof(ARTWORK_PACK_ENTRY);
    for (UINT32 Index = 0; Index < Count; Index++) {
        const ARTWORK_PACK_ENTRY Entry = ReadEntry(Pack, Index);
        if (Entry.Offset < TableEnd || UINTN{Entry.Offset} + Entry.Size > Size) {
            return false;
        }
    }
    return true;
}

VOID UseArtworkPack(const UINT8* Pack, UINTN Size)
{
    const bool Usable = CheckArtworkPack(Pack, Size);
    gPack = Usable ? Pack : nullptr;
    gSectionCount = Usable ? ReadUint32(Pack + offsetof(ARTWORK_PACK_HEADER, Count)) : 0;
}

VOID OverrideArtwork(UINT32 Instance, const UINT8* Data, UINTN Size)
{
    UINTN Index = 0;
    while (Index < gOverrideCount && gOverride[Index].Instance != Instance) {
        Index++;
    }
    if (Index == gMaxOverrides) {
        return;
    }
    gOverride[Index] = {.Instance = Instance, .Data = Data, .Size = Size};
    if (Index == gOverrideCount) {
        gOverrideCount++;
    }
}

VOID SetArtworkSectionType(UINT8 SectionType) { gForcedSectionType = SectionType; }

VOID ResetArtwork()
{
    gOverrideCount = 0;
    gForcedSectionType = 0;
}

bool FindArtworkSection(UINT8 File, UINT8 SectionType, const UINT32* Instance, const UINT8** Data, UINTN* Size)
{
    for (UINT32 Index = 0; Index < gSectionCount; Index++) {
        const ARTWORK_PACK_ENTRY Entry = ReadEntry(gPack, Index);
        if (Entry.File != File || !IsType(Entry.SectionType, SectionType) ||
            (Instance != nullptr && Entry.Instance != *Instance)) {
            continue;
        }
        const ARTWORK_OVERRIDE* Override = FindOverride(Entry.Instance);
        if (Override != nullptr && Override->Data == nullptr) {
            continue;
        }
        *Data = Override != nullptr ? Override->Data : gPack + Entry.Offset;
        *Size = Override != nullptr ? Override->Size : Entry.Size;
        return true;
    }
    // A number that the pack doesn't have may come from a script alone.
    const ARTWORK_OVERRIDE* Added = Instance != nullptr && *Instance != 0 ? FindOverride(*Instance) : nullptr;
    if (File != ARTWORK_FILE_MAIN || !IsType(EFI_SECTION_RAW, SectionType) || Added == nullptr ||
        Added->Data == nullptr || HasSection(*Instance)) {
        return false;
    }
    *Data = Added->Data;
    *Size = Added->Size;
    return true;
}
