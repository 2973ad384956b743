#include "platform/host/Handles.h"

#include <algorithm>

#include "platform/host/HostText.h"

namespace {

constexpr UINTN gHandleStep = 64;

} // namespace

EFI_STATUS HANDLES::Install(EFI_HANDLE* Handle, const EFI_GUID* Guid, VOID* Interface)
{
    if (Handle == nullptr || Guid == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    if (*Handle == nullptr) {
        *Handle = reinterpret_cast<EFI_HANDLE>(mNextHandle);
        mNextHandle += gHandleStep;
    } else if (mHandles.count(*Handle) == 0) {
        return EFI_INVALID_PARAMETER;
    }
    std::vector<PROTOCOL_ON_HANDLE>& Protocols = mHandles[*Handle];
    for (const PROTOCOL_ON_HANDLE& Protocol : Protocols) {
        if (SameGuid(Protocol.Guid, *Guid)) {
            return EFI_INVALID_PARAMETER;
        }
    }
    Protocols.push_back({*Guid, Interface, {}});
    return EFI_SUCCESS;
}

EFI_STATUS HANDLES::Uninstall(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID* Interface)
{
    const auto Owner = mHandles.find(Handle);
    if (Guid == nullptr || Owner == mHandles.end()) {
        return EFI_INVALID_PARAMETER;
    }
    const auto Protocol = std::find_if(Owner->second.begin(), Owner->second.end(), [&](const PROTOCOL_ON_HANDLE& At) {
        return SameGuid(At.Guid, *Guid) && At.Interface == Interface;
    });
    if (Protocol == Owner->second.end()) {
        return EFI_NOT_FOUND;
    }
    Owner->second.erase(Protocol);
    if (Owner->second.empty()) {
        mHandles.erase(Owner);
    }
    return EFI_SUCCESS;
}

EFI_STATUS HANDLES::Open(EFI_HANDLE Handle, const EFI_GUID* Guid, VOID** Interface, EFI_HANDLE Agent,
                         EFI_HANDLE Controller)
{
    if (Guid == nullptr || Interface == nullptr || mHandles.count(Handle) == 0) {
        return EFI_INVALID_PARAMETER;
    }
    *Interface = nullptr;
    PROTOCOL_ON_HANDLE* Protocol = FindOn(Handle, *Guid);
    if (Protocol == nullptr) {
        return EFI_UNSUPPORTED;
    }
    const PROTOCOL_USE Use = {Agent, Controller};
    if (std::find(Protocol->Uses.begin(), Protocol->Uses.end(), Use) == Protocol->Uses.end()) {
        Protocol->Uses.push_back(Use);
    }
    *Interface = Protocol->Interface;
    return EFI_SUCCESS;
}

EFI_STATUS HANDLES::Close(EFI_HANDLE Handle, const EFI_GUID* Guid, EFI_HANDLE Agent, EFI_HANDLE Controller)
{
    if (Guid == nullptr || mHandles.count(Handle) == 0) {
        return EFI_INVALID_PARAMETER;
    }
    PROTOCOL_ON_HANDLE* Protocol = FindOn(Handle, *Guid);
    if (Protocol == nullptr) {
        return EFI_NOT_FOUND;
    }
    return std::erase(Protocol->Uses, PROTOCOL_USE{Agent, Controller}) == 0 ? EFI_NOT_FOUND : EFI_SUCCESS;
}

EFI_STATUS HANDLES::Locate(const EFI_GUID* Guid, VOID** Interface) const
{
    if (Guid == nullptr || Interface == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    *Interface = nullptr;
    for (const auto& [Handle, Protocols] : mHandles) {
        const PROTOCOL_ON_HANDLE* Protocol = FindOn(Handle, *Guid);
        if (Protocol != nullptr) {
            *Interface = Protocol->Interface;
            return EFI_SUCCESS;
        }
    }
    return EFI_NOT_FOUND;
}

std::vector<EFI_HANDLE> HANDLES::Find(const EFI_GUID* Guid) const
{
    std::vector<EFI_HANDLE> Found;
    for (const auto& [Handle, Protocols] : mHandles) {
        if (Guid == nullptr || FindOn(Handle, *Guid) != nullptr) {
            Found.push_back(Handle);
        }
    }
    return Found;
}

const std::vector<PROTOCOL_USE>* HANDLES::Uses(EFI_HANDLE Handle, const EFI_GUID* Guid) const
{
    const PROTOCOL_ON_HANDLE* Protocol = FindOn(Handle, *Guid);
    return Protocol == nullptr ? nullptr : &Protocol->Uses;
}

const PROTOCOL_ON_HANDLE* HANDLES::FindOn(EFI_HANDLE Handle, const EFI_GUID& Guid) const
{
    const auto Owner = mHandles.find(Handle);
    if (Owner == mHandles.end() || IsHidden(Guid)) {
        return nullptr;
    }
    for (const PROTOCOL_ON_HANDLE& Protocol : Owner->second) {
        if (SameGuid(Protocol.Guid, Guid)) {
            return &Protocol;
        }
    }
    return nullptr;
}

PROTOCOL_ON_HANDLE* HANDLES::FindOn(EFI_HANDLE Handle, const EFI_GUID& Guid)
{
    return const_cast<PROTOCOL_ON_HANDLE*>(static_cast<const HANDLES*>(this)->FindOn(Handle, Guid));
}

bool HANDLES::IsHidden(const EFI_GUID& Guid) const
{
    return std::any_of(mHidden.begin(), mHidden.end(), [&](const EFI_GUID& Hidden) { return SameGuid(Hidden, Guid); });
}
