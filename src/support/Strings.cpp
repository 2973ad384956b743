#include "support/Strings.h"

#include "support/Pool.h"

UINTN StringLength(const CHAR16* String)
{
    UINTN Length = 0;
    while (String != nullptr && String[Length] != 0) {
        Length++;
    }
    return Length;
}

VOID AppendString(CHAR16* Destination, const CHAR16* Source)
{
    if (Source == nullptr) {
        return;
    }
    MoveBytes(Destination + StringLength(Destination), Source, (StringLength(Source) + 1) * sizeof(CHAR16));
}

CHAR16* CopyString(const CHAR16* String)
{
    if (String == nullptr) {
        String = u"";
    }
    const UINTN Size = (StringLength(String) + 1) * sizeof(CHAR16);
    CHAR16* Copy = static_cast<CHAR16*>(AllocatePool(Size));
    if (Copy != nullptr) {
        CopyMem(Copy, String, Size);
    }
    return Copy;
}
