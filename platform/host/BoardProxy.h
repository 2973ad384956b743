// Stands between the console and the board's services: every call is traced, can be made to fail, and answers what the
// script said for a reading or a string.
#pragma once

#include "shell/Services.h"

struct BOARD_PROXY {
    HW_SERVICE_PROTOCOL* Hardware = nullptr;
    CURSOR_SERVICE_PROTOCOL* Cursor = nullptr;
    FLOAT_MATH_PROTOCOL* Float = nullptr;
    IMAGE_LOOKUP_PROTOCOL* Lookup = nullptr;
    IMAGE_SECTION_PROTOCOL* Sections = nullptr;
    IMAGE_DECODER_PROTOCOL* Decoder = nullptr;
    DRAW_PRIMITIVES_PROTOCOL* Draw = nullptr;

    // What the console gets for a board's interface: a table in front of it. Any other interface comes back as it is.
    VOID* Cover(const EFI_GUID& Guid, VOID* Interface);

private:
    HW_SERVICE_PROTOCOL mHardware = {};
    CURSOR_SERVICE_PROTOCOL mCursor = {};
    FLOAT_MATH_PROTOCOL mFloat = {};
    IMAGE_LOOKUP_PROTOCOL mLookup = {};
    IMAGE_SECTION_PROTOCOL mSections = {};
    IMAGE_DECODER_PROTOCOL mDecoder = {};
    DRAW_PRIMITIVES_PROTOCOL mDraw = {};
};
