// A page of text that the starter shows: paragraphs put together from pieces, wrapped at words.
#pragma once

#include "uefi/Base.h"

constexpr UINTN gPageColumns = 84;
constexpr UINTN gPageRows = 28;

struct PAGE {
    CHAR16 Rows[gPageRows][gPageColumns + 1]; // zero-ended
    UINTN RowCount;
};

// Adds the pieces, read as one text without anything between them, as a paragraph. A null piece ends the list early; a
// word longer than a row is cut at the row's end; what doesn't fit on the page any more is dropped.
VOID AddParagraph(PAGE* Page, const CHAR16* A, const CHAR16* B = nullptr, const CHAR16* C = nullptr,
                  const CHAR16* D = nullptr, const CHAR16* E = nullptr);
// An empty row.
VOID AddGap(PAGE* Page);
