#include "platform/firmware/starter/Page.h"

VOID AddParagraph(PAGE* Page, const CHAR16* A, const CHAR16* B, const CHAR16* C, const CHAR16* D, const CHAR16* E)
{
    const CHAR16* const Pieces[] = {A, B, C, D, E, nullptr};
    if (Page->RowCount == gPageRows) {
        return;
    }
    CHAR16* Row = Page->Rows[Page->RowCount++];
    UINTN Column = 0;
    UINTN LastSpace = 0; // column after the last space of the row; 0: there is none
    for (const CHAR16* const* Piece = Pieces; *Piece != nullptr; Piece++) {
        for (const CHAR16* At = *Piece; *At != 0; At++) {
            if (Column == gPageColumns) {
                if (Page->RowCount == gPageRows) {
                    Row[Column] = 0;
                    return;
                }
                CHAR16* Next = Page->Rows[Page->RowCount++];
                UINTN Kept = LastSpace == 0 ? Column : LastSpace;
                Column = 0;
                for (UINTN From = Kept; From < gPageColumns; From++) {
                    Next[Column++] = Row[From];
                }
                Row[Kept] = 0;
                Row = Next;
                LastSpace = 0;
            }
            Row[Column++] = *At;
            if (*At == u' ') {
                LastSpace = Column;
            }
        }
    }
    Row[Column] = 0;
}

VOID AddGap(PAGE* Page)
{
    if (Page->RowCount < gPageRows) {
        Page->Rows[Page->RowCount++][0] = 0;
    }
}
