#include "support/Shell.h"

#include "support/Pool.h"
#include "uefi/Shell.h"

namespace {

struct BINDING {
    const EFI_GUID* Protocol;
    VOID* Interface;
    EFI_HANDLE OpenedOn; // null when there is nothing to close
};

constinit BINDING gShell = {&gEfiShellProtocolGuid, nullptr, nullptr};
constinit BINDING gParameters = {&gEfiShellParametersProtocolGuid, nullptr, nullptr};
constinit BINDING gEnvironment = {&gShellEnvironmentGuid, nullptr, nullptr};
constinit BINDING gInterface = {&gShellInterfaceGuid, nullptr, nullptr};

bool Open(BINDING& Binding, EFI_HANDLE Handle)
{
    VOID* Interface = nullptr;
    const EFI_STATUS Status =
        gBS->OpenProtocol(Handle, Binding.Protocol, &Interface, gImageHandle, nullptr, EFI_OPEN_PROTOCOL_GET_PROTOCOL);
    if (EfiError(Status)) {
        return false;
    }
    Binding.Interface = Interface;
    Binding.OpenedOn = Handle;
    return true;
}

VOID Close(BINDING& Binding)
{
    if (Binding.OpenedOn != nullptr) {
        (void)gBS->CloseProtocol(Binding.OpenedOn, Binding.Protocol, gImageHandle, nullptr);
    }
    Binding.Interface = nullptr;
    Binding.OpenedOn = nullptr;
}

// The environment has had several layouts under one GUID; only a record with the signature is the one we know.
bool OpenEnvironment(EFI_HANDLE Handle)
{
    if (!Open(gEnvironment, Handle)) {
        return false;
    }
    const SHELL_ENVIRONMENT* Environment = static_cast<const SHELL_ENVIRONMENT*>(gEnvironment.Interface);
    if (Environment != nullptr && SameGuid(Environment->Signature, gShellEnvironmentSignature)) {
        return true;
    }
    Close(gEnvironment);
    return false;
}

VOID FindEnvironment()
{
    if (OpenEnvironment(gImageHandle)) {
        return;
    }
    UINTN Size = 0;
    if (gBS->LocateHandle(ByProtocol, &gShellEnvironmentGuid, nullptr, &Size, nullptr) != EFI_BUFFER_TOO_SMALL) {
        return;
    }
    TEMPORARY<EFI_HANDLE> Handles(static_cast<EFI_HANDLE*>(AllocatePool(Size)));
    if (!Handles || EfiError(gBS->LocateHandle(ByProtocol, &gShellEnvironmentGuid, nullptr, &Size, Handles.Data))) {
        return;
    }
    for (UINTN Index = 0; Index < Size / sizeof(EFI_HANDLE); ++Index) {
        if (OpenEnvironment(Handles.Data[Index])) {
            return;
        }
    }
}

bool NewShellIsComplete() { return gShell.Interface != nullptr && gParameters.Interface != nullptr; }
bool OldShellIsComplete() { return gEnvironment.Interface != nullptr && gInterface.Interface != nullptr; }

} // namespace

EFI_STATUS BindShellProtocols()
{
    if (!Open(gShell, gImageHandle) && EfiError(gBS->LocateProtocol(gShell.Protocol, nullptr, &gShell.Interface))) {
        gShell.Interface = nullptr;
    }
    (void)Open(gParameters, gImageHandle);
    if (NewShellIsComplete()) {
        return EFI_SUCCESS;
    }
    FindEnvironment();
    (void)Open(gInterface, gImageHandle);
    return OldShellIsComplete() ? EFI_SUCCESS : EFI_NOT_FOUND;
}

VOID CloseShellInterface()
{
    (void)gBS->CloseProtocol(gImageHandle, &gShellInterfaceGuid, gImageHandle, nullptr);
    gInterface = {&gShellInterfaceGuid, nullptr, nullptr};
}

VOID ReleaseShellProtocols()
{
    Close(gShell);
    Close(gParameters);
    Close(gEnvironment);
    Close(gInterface);
}

bool ShellArguments(CHAR16*** Argv, UINTN* Argc)
{
    if (NewShellIsComplete()) {
        const EFI_SHELL_PARAMETERS_PROTOCOL* Parameters =
            static_cast<const EFI_SHELL_PARAMETERS_PROTOCOL*>(gParameters.Interface);
        *Argv = Parameters->Argv;
        *Argc = Parameters->Argc;
        return true;
    }
    if (OldShellIsComplete()) {
        const SHELL_INTERFACE* Interface = static_cast<const SHELL_INTERFACE*>(gInterface.Interface);
        *Argv = Interface->Argv;
        *Argc = Interface->Argc;
        return true;
    }
    return false;
}
