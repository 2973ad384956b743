// The system table and what hangs on it: boot services, runtime services, and the consoles.
// Runtime services that nothing here calls keep their place as untyped pointers; all other entries have their types.
#pragma once

#include "uefi/Base.h"

struct EFI_TABLE_HEADER {
    UINT64 Signature;
    UINT32 Revision;
    UINT32 HeaderSize;
    UINT32 CRC32;
    UINT32 Reserved;
};

// --- Consoles ---

struct EFI_INPUT_KEY {
    UINT16 ScanCode;
    CHAR16 UnicodeChar;
};

constexpr UINT16 SCAN_NULL = 0x00;
constexpr UINT16 SCAN_UP = 0x01;
constexpr UINT16 SCAN_DOWN = 0x02;
constexpr UINT16 SCAN_RIGHT = 0x03;
constexpr UINT16 SCAN_LEFT = 0x04;
constexpr UINT16 SCAN_F12 = 0x16;
constexpr UINT16 SCAN_ESC = 0x17;
constexpr CHAR16 CHAR_TAB = 0x09;
constexpr CHAR16 CHAR_CARRIAGE_RETURN = 0x0D;

struct EFI_SIMPLE_TEXT_INPUT_PROTOCOL {
    EFI_STATUS (*Reset)(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* This, BOOLEAN ExtendedVerification);
    EFI_STATUS (*ReadKeyStroke)(EFI_SIMPLE_TEXT_INPUT_PROTOCOL* This, EFI_INPUT_KEY* Key);
    EFI_EVENT WaitForKey;
};

struct EFI_SIMPLE_TEXT_OUTPUT_MODE {
    INT32 MaxMode;
    INT32 Mode;
    INT32 Attribute;
    INT32 CursorColumn;
    INT32 CursorRow;
    BOOLEAN CursorVisible;
};

struct EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL {
    EFI_STATUS (*Reset)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, BOOLEAN ExtendedVerification);
    EFI_STATUS (*OutputString)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, const CHAR16* String);
    EFI_STATUS (*TestString)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, const CHAR16* String);
    EFI_STATUS (*QueryMode)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, UINTN ModeNumber, UINTN* Columns, UINTN* Rows);
    EFI_STATUS (*SetMode)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, UINTN ModeNumber);
    EFI_STATUS (*SetAttribute)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, UINTN Attribute);
    EFI_STATUS (*ClearScreen)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This);
    EFI_STATUS (*SetCursorPosition)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, UINTN Column, UINTN Row);
    EFI_STATUS (*EnableCursor)(EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* This, BOOLEAN Visible);
    EFI_SIMPLE_TEXT_OUTPUT_MODE* Mode;
};

// --- Boot services ---

enum EFI_ALLOCATE_TYPE : UINT32 { AllocateAnyPages, AllocateMaxAddress, AllocateAddress };

enum EFI_MEMORY_TYPE : UINT32 {
    EfiReservedMemoryType,
    EfiLoaderCode,
    EfiLoaderData,
    EfiBootServicesCode,
    EfiBootServicesData,
    EfiRuntimeServicesCode,
    EfiRuntimeServicesData,
    EfiConventionalMemory,
};

struct EFI_MEMORY_DESCRIPTOR {
    UINT32 Type;
    UINT64 PhysicalStart;
    UINT64 VirtualStart;
    UINT64 NumberOfPages;
    UINT64 Attribute;
};

constexpr UINT32 EVT_TIMER = 0x80000000;
constexpr UINT32 EVT_NOTIFY_WAIT = 0x00000100;
constexpr UINT32 EVT_NOTIFY_SIGNAL = 0x00000200;

// The firmware expects nothing back from a notify function. Ours return a status for their direct callers, in a register
// that the firmware doesn't look at, so that one function serves as notify function and as hover handler without a cast.
using EFI_EVENT_NOTIFY = EFI_STATUS (*)(EFI_EVENT Event, VOID* Context);

enum EFI_TIMER_DELAY : UINT32 { TimerCancel, TimerPeriodic, TimerRelative };

enum EFI_INTERFACE_TYPE : UINT32 { EFI_NATIVE_INTERFACE };

enum EFI_LOCATE_SEARCH_TYPE : UINT32 { AllHandles, ByRegisterNotify, ByProtocol };

constexpr UINT32 EFI_OPEN_PROTOCOL_BY_HANDLE_PROTOCOL = 0x01;
constexpr UINT32 EFI_OPEN_PROTOCOL_GET_PROTOCOL = 0x02;
constexpr UINT32 EFI_OPEN_PROTOCOL_TEST_PROTOCOL = 0x04;
constexpr UINT32 EFI_OPEN_PROTOCOL_BY_DRIVER = 0x10;
constexpr UINT32 EFI_OPEN_PROTOCOL_EXCLUSIVE = 0x20;

struct EFI_OPEN_PROTOCOL_INFORMATION_ENTRY {
    EFI_HANDLE AgentHandle;
    EFI_HANDLE ControllerHandle;
    UINT32 Attributes;
    UINT32 OpenCount;
};

struct EFI_DEVICE_PATH_PROTOCOL;

struct EFI_BOOT_SERVICES {
    EFI_TABLE_HEADER Hdr;

    EFI_TPL (*RaiseTPL)(EFI_TPL NewTpl);
    VOID (*RestoreTPL)(EFI_TPL OldTpl);

    EFI_STATUS (*AllocatePages)(EFI_ALLOCATE_TYPE Type, EFI_MEMORY_TYPE MemoryType, UINTN Pages, UINT64* Memory);
    EFI_STATUS (*FreePages)(UINT64 Memory, UINTN Pages);
    EFI_STATUS (*GetMemoryMap)(UINTN* MemoryMapSize, EFI_MEMORY_DESCRIPTOR* MemoryMap, UINTN* MapKey,
                               UINTN* DescriptorSize, UINT32* DescriptorVersion);
    EFI_STATUS (*AllocatePool)(EFI_MEMORY_TYPE PoolType, UINTN Size, VOID** Buffer);
    EFI_STATUS (*FreePool)(VOID* Buffer);

    EFI_STATUS (*CreateEvent)(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY NotifyFunction, VOID* NotifyContext,
                              EFI_EVENT* Event);
    EFI_STATUS (*SetTimer)(EFI_EVENT Event, EFI_TIMER_DELAY Type, UINT64 TriggerTime);
    EFI_STATUS (*WaitForEvent)(UINTN NumberOfEvents, EFI_EVENT* Event, UINTN* Index);
    EFI_STATUS (*SignalEvent)(EFI_EVENT Event);
    EFI_STATUS (*CloseEvent)(EFI_EVENT Event);
    EFI_STATUS (*CheckEvent)(EFI_EVENT Event);

    EFI_STATUS (*InstallProtocolInterface)(EFI_HANDLE* Handle, const EFI_GUID* Protocol, EFI_INTERFACE_TYPE Type,
                                           VOID* Interface);
    EFI_STATUS (*ReinstallProtocolInterface)(EFI_HANDLE Handle, const EFI_GUID* Protocol, VOID* OldInterface,
                                             VOID* NewInterface);
    EFI_STATUS (*UninstallProtocolInterface)(EFI_HANDLE Handle, const EFI_GUID* Protocol, VOID* Interface);
    EFI_STATUS (*HandleProtocol)(EFI_HANDLE Handle, const EFI_GUID* Protocol, VOID** Interface);
    VOID* Reserved;
    EFI_STATUS (*RegisterProtocolNotify)(const EFI_GUID* Protocol, EFI_EVENT Event, VOID** Registration);
    EFI_STATUS (*LocateHandle)(EFI_LOCATE_SEARCH_TYPE SearchType, const EFI_GUID* Protocol, VOID* SearchKey,
                               UINTN* BufferSize, EFI_HANDLE* Buffer);
    EFI_STATUS (*LocateDevicePath)(const EFI_GUID* Protocol, EFI_DEVICE_PATH_PROTOCOL** DevicePath, EFI_HANDLE* Device);
    EFI_STATUS (*InstallConfigurationTable)(const EFI_GUID* Guid, VOID* Table);

    EFI_STATUS (*LoadImage)(BOOLEAN BootPolicy, EFI_HANDLE ParentImageHandle, EFI_DEVICE_PATH_PROTOCOL* DevicePath,
                            VOID* SourceBuffer, UINTN SourceSize, EFI_HANDLE* ImageHandle);
    EFI_STATUS (*StartImage)(EFI_HANDLE ImageHandle, UINTN* ExitDataSize, CHAR16** ExitData);
    EFI_STATUS (*Exit)(EFI_HANDLE ImageHandle, EFI_STATUS ExitStatus, UINTN ExitDataSize, CHAR16* ExitData);
    EFI_STATUS (*UnloadImage)(EFI_HANDLE ImageHandle);
    EFI_STATUS (*ExitBootServices)(EFI_HANDLE ImageHandle, UINTN MapKey);

    EFI_STATUS (*GetNextMonotonicCount)(UINT64* Count);
    EFI_STATUS (*Stall)(UINTN Microseconds);
    EFI_STATUS (*SetWatchdogTimer)(UINTN Timeout, UINT64 WatchdogCode, UINTN DataSize, CHAR16* WatchdogData);

    EFI_STATUS (*ConnectController)(EFI_HANDLE ControllerHandle, EFI_HANDLE* DriverImageHandle,
                                    EFI_DEVICE_PATH_PROTOCOL* RemainingDevicePath, BOOLEAN Recursive);
    EFI_STATUS (*DisconnectController)(EFI_HANDLE ControllerHandle, EFI_HANDLE DriverImageHandle,
                                       EFI_HANDLE ChildHandle);

    EFI_STATUS (*OpenProtocol)(EFI_HANDLE Handle, const EFI_GUID* Protocol, VOID** Interface, EFI_HANDLE AgentHandle,
                               EFI_HANDLE ControllerHandle, UINT32 Attributes);
    EFI_STATUS (*CloseProtocol)(EFI_HANDLE Handle, const EFI_GUID* Protocol, EFI_HANDLE AgentHandle,
                                EFI_HANDLE ControllerHandle);
    EFI_STATUS (*OpenProtocolInformation)(EFI_HANDLE Handle, const EFI_GUID* Protocol,
                                          EFI_OPEN_PROTOCOL_INFORMATION_ENTRY** EntryBuffer, UINTN* EntryCount);

    EFI_STATUS (*ProtocolsPerHandle)(EFI_HANDLE Handle, EFI_GUID*** ProtocolBuffer, UINTN* ProtocolBufferCount);
    EFI_STATUS (*LocateHandleBuffer)(EFI_LOCATE_SEARCH_TYPE SearchType, const EFI_GUID* Protocol, VOID* SearchKey,
                                     UINTN* NoHandles, EFI_HANDLE** Buffer);
    EFI_STATUS (*LocateProtocol)(const EFI_GUID* Protocol, VOID* Registration, VOID** Interface);
    EFI_STATUS (*InstallMultipleProtocolInterfaces)(EFI_HANDLE* Handle, ...);
    EFI_STATUS (*UninstallMultipleProtocolInterfaces)(EFI_HANDLE Handle, ...);

    EFI_STATUS (*CalculateCrc32)(VOID* Data, UINTN DataSize, UINT32* Crc32);

    VOID (*CopyMem)(VOID* Destination, const VOID* Source, UINTN Length);
    VOID (*SetMem)(VOID* Buffer, UINTN Size, UINT8 Value);
    EFI_STATUS (*CreateEventEx)(UINT32 Type, EFI_TPL NotifyTpl, EFI_EVENT_NOTIFY NotifyFunction,
                                const VOID* NotifyContext, const EFI_GUID* EventGroup, EFI_EVENT* Event);
};
static_assert(sizeof(EFI_TABLE_HEADER) == 24);
static_assert(offsetof(EFI_BOOT_SERVICES, AllocatePool) == 24 + 5 * 8);
static_assert(offsetof(EFI_BOOT_SERVICES, WaitForEvent) == 24 + 9 * 8);
static_assert(offsetof(EFI_BOOT_SERVICES, HandleProtocol) == 24 + 16 * 8);
static_assert(offsetof(EFI_BOOT_SERVICES, LoadImage) == 24 + 22 * 8);
static_assert(offsetof(EFI_BOOT_SERVICES, Stall) == 24 + 28 * 8);
static_assert(offsetof(EFI_BOOT_SERVICES, LocateProtocol) == 24 + 37 * 8);
static_assert(offsetof(EFI_BOOT_SERVICES, CreateEventEx) == 24 + 43 * 8);

// --- Runtime services ---

constexpr UINT32 EFI_VARIABLE_NON_VOLATILE = 1;
constexpr UINT32 EFI_VARIABLE_BOOTSERVICE_ACCESS = 2;
constexpr UINT32 EFI_VARIABLE_RUNTIME_ACCESS = 4;

enum EFI_RESET_TYPE : UINT32 { EfiResetCold, EfiResetWarm, EfiResetShutdown };

struct EFI_RUNTIME_SERVICES {
    EFI_TABLE_HEADER Hdr;

    EFI_STATUS (*GetTime)(EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities);
    VOID* SetTime;
    VOID* GetWakeupTime;
    VOID* SetWakeupTime;
    VOID* SetVirtualAddressMap;
    VOID* ConvertPointer;
    EFI_STATUS (*GetVariable)(const CHAR16* VariableName, const EFI_GUID* VendorGuid, UINT32* Attributes,
                              UINTN* DataSize, VOID* Data);
    EFI_STATUS (*GetNextVariableName)(UINTN* VariableNameSize, CHAR16* VariableName, EFI_GUID* VendorGuid);
    EFI_STATUS (*SetVariable)(const CHAR16* VariableName, const EFI_GUID* VendorGuid, UINT32 Attributes,
                              UINTN DataSize, const VOID* Data);
    VOID* GetNextHighMonotonicCount;
    VOID (*ResetSystem)(EFI_RESET_TYPE ResetType, EFI_STATUS ResetStatus, UINTN DataSize, VOID* ResetData);
    VOID* UpdateCapsule;
    VOID* QueryCapsuleCapabilities;
    VOID* QueryVariableInfo;
};
static_assert(offsetof(EFI_RUNTIME_SERVICES, GetVariable) == 24 + 6 * 8);
static_assert(offsetof(EFI_RUNTIME_SERVICES, ResetSystem) == 24 + 10 * 8);

struct EFI_CONFIGURATION_TABLE {
    EFI_GUID VendorGuid;
    VOID* VendorTable;
};

struct EFI_SYSTEM_TABLE {
    EFI_TABLE_HEADER Hdr;
    CHAR16* FirmwareVendor;
    UINT32 FirmwareRevision;
    EFI_HANDLE ConsoleInHandle;
    EFI_SIMPLE_TEXT_INPUT_PROTOCOL* ConIn;
    EFI_HANDLE ConsoleOutHandle;
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* ConOut;
    EFI_HANDLE StandardErrorHandle;
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL* StdErr;
    EFI_RUNTIME_SERVICES* RuntimeServices;
    EFI_BOOT_SERVICES* BootServices;
    UINTN NumberOfTableEntries;
    EFI_CONFIGURATION_TABLE* ConfigurationTable;
};
static_assert(offsetof(EFI_SYSTEM_TABLE, ConIn) == 48 && offsetof(EFI_SYSTEM_TABLE, BootServices) == 96);
