// The variable store. It lives as long as its boot: nothing is kept in a file, so a reset empties it.
#pragma once

#include <string>
#include <vector>

#include "uefi/SystemTable.h"

struct VARIABLE {
    std::u16string Name;
    EFI_GUID Vendor;
    UINT32 Attributes;
    std::vector<UINT8> Data;
};

struct VARIABLES {
    VARIABLES() = default;
    VARIABLES(const VARIABLES&) = delete;
    VARIABLES& operator=(const VARIABLES&) = delete;

    // Attributes may be null. With a buffer that is too small, or none, *Size receives the size needed.
    EFI_STATUS Get(const CHAR16* Name, const EFI_GUID* Vendor, UINT32* Attributes, UINTN* Size, VOID* Data) const;
    // Size 0, or attributes without access, deletes. A variable is only rewritten with the attributes it has.
    EFI_STATUS Set(const CHAR16* Name, const EFI_GUID* Vendor, UINT32 Attributes, UINTN Size, const VOID* Data);

    // The stored variable, for tests; null if there is none.
    const VARIABLE* Find(const CHAR16* Name, const EFI_GUID& Vendor) const;
    const std::vector<VARIABLE>& All() const { return mVariables; }

private:
    std::vector<VARIABLE> mVariables; // in the order of their first writing
};
