// How the artwork services look into the pack, with a script's changes laid over it.
#pragma once

#include "platform/board/ArtworkPack.h"

// First section of the file (ARTWORK_FILE) with that type and, unless Instance is null, that instance number. Data
// stays the pack's. False without such a section.
bool FindArtworkSection(UINT8 File, UINT8 SectionType, const UINT32* Instance, const UINT8** Data, UINTN* Size);
