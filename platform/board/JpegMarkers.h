// A walk over the segments of a JPEG, before anything is decoded.
//
// The image library trusts three things that a damaged or hostile file can get wrong: it fills a picture that ends too
// early with gray, it skips what stands between segments, and it lets a Huffman table have more symbols than there is
// room for. The walk refuses all three.
#pragma once

#include "uefi/Base.h"

// True when the bytes are a start mark, segments that follow each other without a gap, at least one scan, and an end
// mark; what follows the end mark isn't looked at.
bool CheckJpegMarkers(const UINT8* Image, UINT32 ImageSize);
