#include "support/Report.h"

#include "support/Pool.h"
#include "support/Print.h"

VOID AssertPrint(const CHAR8* FileName, UINTN LineNumber, const CHAR8* Description)
{
    CHAR16 Line[256]; // 512 bytes
    FormatAsciiText(Line, sizeof(Line), "ASSERT %a(%d): %a\n", FileName, static_cast<INT32>(LineNumber), Description);
    if (gST != nullptr && gST->StdErr != nullptr) {
        (void)gST->StdErr->OutputString(gST->StdErr, Line);
    }
}

const CHAR8* FileNameOfPath(const CHAR8* Path)
{
    const CHAR8* Name = nullptr;
    // A backslash in the first place doesn't count: the path then has no directory in front.
    for (UINTN Index = 1; Path != nullptr && Path[0] != 0 && Path[Index] != 0; Index++) {
        if (Path[Index] == '\\') {
            Name = Path + Index + 1;
        }
    }
    return Name;
}
