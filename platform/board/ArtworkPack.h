// The artwork pack: all pictures of the console in numbered sections, as one block of bytes that both worlds embed.
//
// Layout, little-endian: 8 bytes "VTRPACK1", a 32-bit count of sections, 4 bytes 0; then for each section 16 bytes:
// 8-bit file (0 the artwork file, 1 the pointer's file), 8-bit section type (25), 16 bits 0, 32-bit instance (0 for the
// pointer's), 32-bit offset from the start of the pack, 32-bit size; then the stored pictures (JPEG, BMP or PackedPicture.h).
#pragma once

#include "uefi/Base.h"

struct ARTWORK_PACK_HEADER {
    UINT8 Signature[8];
    UINT32 Count;
    UINT32 Reserved;
};
static_assert(sizeof(ARTWORK_PACK_HEADER) == 16);

enum ARTWORK_FILE : UINT8 { ARTWORK_FILE_MAIN = 0, ARTWORK_FILE_CURSOR = 1 };

struct ARTWORK_PACK_ENTRY {
    UINT8 File; // ARTWORK_FILE
    UINT8 SectionType;
    UINT16 Reserved;
    UINT32 Instance;
    UINT32 Offset;
    UINT32 Size;
};
static_assert(sizeof(ARTWORK_PACK_ENTRY) == 16);

// True when the header, the table and every section lie inside Size bytes.
bool CheckArtworkPack(const UINT8* Pack, UINTN Size);

// What the artwork services serve from; set by InstallBoardServices.
VOID UseArtworkPack(const UINT8* Pack, UINTN Size);
// For scripts: a section is missing (Data null), or comes from these bytes, which the caller keeps alive.
VOID OverrideArtwork(UINT32 Instance, const UINT8* Data, UINTN Size);
// For scripts: all sections answer under this type, 25 or 16.
VOID SetArtworkSectionType(UINT8 SectionType);
// Back to the pack as it is.
VOID ResetArtwork();

// Defined by the build: the pack's bytes in this image.
extern "C" const UINT8 gArtworkPack[];
extern "C" const UINT64 gArtworkPackSize;
