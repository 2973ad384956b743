// The board's image decoder: stored JPEG and BMP pictures to pixel buffers in pool, and in a JPEG's place what the artwork
// pack has packed (PackedPicture.h).
#pragma once

#include "platform/board/ArtworkPool.h"
#include "shell/contract/Services.h"

extern IMAGE_DECODER_PROTOCOL gBoardImageDecoder;

// What GetFirmwareGeneration answers from now on.
VOID SetDecoderGeneration(UINT8 Generation);
