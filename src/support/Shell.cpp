#include "support/Shell.h"

#include "support/Library.h"

namespace {

constexpr EFI_GUID gShellGuid = {0x6302D008, 0x7F9B, 0x4F30, {0x87, 0xAC, 0x60, 0xC9, 0xFE, 0xF5, 0xDA, 0x4E}};
constexpr EFI_GUID gShellParametersGuid = {
    0x752F3136, 0x4E16, 0x4FDC, {0xA2, 0x2A, 0xE5, 0xF4, 0x68, 0x12, 0xF4, 0xCA}};
constexpr EFI_GUID gShellEnvironmentGuid = {
    0x47C7B221, 0xC42A, 0x11D2, {0x8E, 0x57, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};
constexpr EFI_GUID gShellEnvironmentSignature = {
    0xD2C18636, 0x40E5, 0x4EB5, {0xA3, 0x1B, 0x36, 0x69, 0x5F, 0xD4, 0x2C, 0x87}};
constexpr EFI_GUID gShellInterfaceGuid = {
    0x47C7B223, 0xC42A, 0x11D2, {0x8E, 0x57, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};

// The arguments as the new shell hands them over.
struct SHELL_PARAMETERS {
    CHAR16** Argv;
    UINTN Argc;
    VOID* StdIn;
    VOID* StdOut;
    VOID* StdErr;
};

// The arguments as the old shell hands them over.
struct SHELL_INTERFACE {
    EFI_HANDLE ImageHandle;
    VOID* Info;
    CHAR16** Argv;
    UINTN Argc;
};

// The old shell's environment: twelve functions, then the signature.
struct SHELL_ENVIRONMENT {
    VOID* Functions[12];
    EFI_GUID Signature;
};

struct BINDING {
    const EFI_GUID* Protocol;
    VOID* Interface;
    EFI_HANDLE OpenedOn; // null when there is nothing to close
};

constinit BINDING gShell = {&gShellGuid, nullptr, nullptr};
constinit BINDING gParameters = {&gShellParametersGuid, nullptr, nullptr};
constinit BINDING gEnvironment = {&gShellEnvironmentGuid, nullptr, nullptr};
constinit BINDING gInterface = {&gShellInterfaceGuid, nullptr, nullptr};

bool Open(BINDING& Binding, EFI_HANDLE Handle)
{
    VOID* Interface = nullptr;
    const EFI_STATUS Status = gBS->OpenProtocol(Handle, Binding.Protocol, &Interface, gImageHandle, nullptr,
                                                EFI_OPEN_PROTOCOL_GET_PROTOCOL);
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
    if (!Handles ||
        EfiError(gBS->LocateHandle(ByProtocol, &gShellEnvironmentGuid, nullptr, &Size, Handles.Data))) {
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
    if (!Open(gShell, gImageHandle) &&
        EfiError(gBS->LocateProtocol(gShell.Protocol, nullptr, &gShell.Interface))) {
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
        const SHELL_PARAMETERS* Parameters = static_cast<const SHELL_PARAMETERS*>(gParameters.Interface);
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
