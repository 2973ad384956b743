#include "platform/host/Variables.h"

#include <cstring>

#include "platform/host/HostText.h"

namespace {

constexpr UINT32 gAccessAttributes = EFI_VARIABLE_BOOTSERVICE_ACCESS | EFI_VARIABLE_RUNTIME_ACCESS;
constexpr UINT32 gKnownAttributes = gAccessAttributes | EFI_VARIABLE_NON_VOLATILE;

} // namespace

const VARIABLE* VARIABLES::Find(const CHAR16* Name, const EFI_GUID& Vendor) const
{
    for (const VARIABLE& Variable : mVariables) {
        if (Variable.Name == Name && SameGuid(Variable.Vendor, Vendor)) {
            return &Variable;
        }
    }
    return nullptr;
}

EFI_STATUS VARIABLES::Get(const CHAR16* Name, const EFI_GUID* Vendor, UINT32* Attributes, UINTN* Size, VOID* Data) const
{
    if (Name == nullptr || Vendor == nullptr || Size == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    const VARIABLE* Variable = Find(Name, *Vendor);
    if (Variable == nullptr) {
        return EFI_NOT_FOUND;
    }
    const UINTN Room = *Size;
    *Size = Variable->Data.size();
    if (Attributes != nullptr) {
        *Attributes = Variable->Attributes;
    }
    if (Room < Variable->Data.size()) {
        return EFI_BUFFER_TOO_SMALL;
    }
    if (Data == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    std::memcpy(Data, Variable->Data.data(), Variable->Data.size());
    return EFI_SUCCESS;
}

EFI_STATUS VARIABLES::Set(const CHAR16* Name, const EFI_GUID* Vendor, UINT32 Attributes, UINTN Size, const VOID* Data)
{
    const bool Deletes = Size == 0 || (Attributes & gAccessAttributes) == 0;
    if (Name == nullptr || *Name == 0 || Vendor == nullptr || (Size != 0 && Data == nullptr)) {
        return EFI_INVALID_PARAMETER;
    }
    if ((Attributes & ~gKnownAttributes) != 0) {
        return EFI_UNSUPPORTED;
    }
    if (!Deletes && (Attributes & gAccessAttributes) == EFI_VARIABLE_RUNTIME_ACCESS) {
        return EFI_INVALID_PARAMETER; // access at run time includes access in the boot
    }
    VARIABLE* Variable = const_cast<VARIABLE*>(Find(Name, *Vendor));
    if (Deletes) {
        if (Variable == nullptr) {
            return EFI_NOT_FOUND;
        }
        mVariables.erase(mVariables.begin() + (Variable - mVariables.data()));
        return EFI_SUCCESS;
    }
    if (Variable == nullptr) {
        mVariables.push_back({Name, *Vendor, Attributes, {}});
        Variable = &mVariables.back();
    } else if (Variable->Attributes != Attributes) {
        return EFI_INVALID_PARAMETER;
    }
    const UINT8* Bytes = static_cast<const UINT8*>(Data);
    Variable->Data.assign(Bytes, Bytes + Size);
    return EFI_SUCCESS;
}
