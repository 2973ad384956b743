// The two services that hand out stored pictures: copies in pool of the artwork pack's sections.
#pragma once

#include "platform/board/ArtworkPool.h"
#include "shell/contract/Services.h"

extern IMAGE_LOOKUP_PROTOCOL gBoardImageLookup;
extern IMAGE_SECTION_PROTOCOL gBoardImageSection;
