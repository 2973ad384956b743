// The UEFI shells' interfaces to the programs that they start, the new shell's and the old one's.
#pragma once

#include "uefi/Base.h"

constexpr EFI_GUID gEfiShellProtocolGuid = {0x6302D008, 0x7F9B, 0x4F30, {0x87, 0xAC, 0x60, 0xC9, 0xFE, 0xF5, 0xDA, 0x4E}};
constexpr EFI_GUID gEfiShellParametersProtocolGuid = {
    0x752F3136, 0x4E16, 0x4FDC, {0xA2, 0x2A, 0xE5, 0xF4, 0x68, 0x12, 0xF4, 0xCA}};
constexpr EFI_GUID gShellEnvironmentGuid = {
    0x47C7B221, 0xC42A, 0x11D2, {0x8E, 0x57, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};
constexpr EFI_GUID gShellEnvironmentSignature = {
    0xD2C18636, 0x40E5, 0x4EB5, {0xA3, 0x1B, 0x36, 0x69, 0x5F, 0xD4, 0x2C, 0x87}};
constexpr EFI_GUID gShellInterfaceGuid = {
    0x47C7B223, 0xC42A, 0x11D2, {0x8E, 0x57, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};

// The arguments as the new shell hands them over.
struct EFI_SHELL_PARAMETERS_PROTOCOL {
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
