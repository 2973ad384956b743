// A firmware of a few records for the tests of src/support: pool, clock, count, memory map, handles with protocols,
// and a console that keeps what was written. Each test makes one; it stands behind gST, gBS and gRT until it goes.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "support/Library.h"

class FakeFirmware {
public:
    FakeFirmware()
    {
        sCurrent = this;
        BootServices.AllocatePool = [](EFI_MEMORY_TYPE Type, UINTN Size, VOID** Buffer) -> EFI_STATUS {
            if (Type != EfiBootServicesData || sCurrent->PoolIsEmpty) {
                return EFI_OUT_OF_RESOURCES;
            }
            *Buffer = std::malloc(Size);
            std::memset(*Buffer, 0xAF, Size);
            sCurrent->Blocks.insert(*Buffer);
            sCurrent->AllocatedSizes.push_back(Size);
            if (sCurrent->OnAllocate) {
                sCurrent->OnAllocate(Size);
            }
            return EFI_SUCCESS;
        };
        BootServices.FreePool = [](VOID* Buffer) -> EFI_STATUS {
            if (sCurrent->Blocks.erase(Buffer) == 0) {
                return EFI_INVALID_PARAMETER;
            }
            std::free(Buffer);
            return EFI_SUCCESS;
        };
        BootServices.CopyMem = [](VOID* To, const VOID* From, UINTN Length) { std::memmove(To, From, Length); };
        BootServices.SetMem = [](VOID* To, UINTN Size, UINT8 Value) { std::memset(To, Value, Size); };
        BootServices.GetNextMonotonicCount = [](UINT64* Count) -> EFI_STATUS {
            sCurrent->Calls.push_back("GetNextMonotonicCount");
            *Count = sCurrent->MonotonicCount;
            return EFI_SUCCESS;
        };
        BootServices.GetMemoryMap = [](UINTN* Size, EFI_MEMORY_DESCRIPTOR* Map, UINTN*, UINTN* DescriptorSize,
                                       UINT32*) -> EFI_STATUS {
            sCurrent->Calls.push_back("GetMemoryMap");
            if (sCurrent->MemoryMapStatus != EFI_SUCCESS) {
                return sCurrent->MemoryMapStatus;
            }
            const std::vector<UINT8>& Bytes = sCurrent->MemoryMap;
            *DescriptorSize = sCurrent->DescriptorSize;
            const bool Fits = *Size >= Bytes.size();
            *Size = Bytes.size();
            if (!Fits) {
                return EFI_BUFFER_TOO_SMALL;
            }
            std::memcpy(Map, Bytes.data(), Bytes.size());
            return EFI_SUCCESS;
        };
        BootServices.LocateHandle = [](EFI_LOCATE_SEARCH_TYPE, const EFI_GUID* Protocol, VOID*, UINTN* Size,
                                       EFI_HANDLE* Buffer) -> EFI_STATUS {
            sCurrent->Calls.push_back("LocateHandle");
            std::vector<EFI_HANDLE> Found;
            for (const auto& [Handle, Guid, Interface] : sCurrent->Protocols) {
                if (SameGuid(Guid, *Protocol)) {
                    Found.push_back(Handle);
                }
            }
            if (Found.empty()) {
                return EFI_NOT_FOUND;
            }
            const bool Fits = *Size >= Found.size() * sizeof(EFI_HANDLE);
            *Size = Found.size() * sizeof(EFI_HANDLE);
            if (!Fits) {
                return EFI_BUFFER_TOO_SMALL;
            }
            std::memcpy(Buffer, Found.data(), *Size);
            return EFI_SUCCESS;
        };
        BootServices.HandleProtocol = [](EFI_HANDLE Handle, const EFI_GUID* Protocol, VOID** Interface) -> EFI_STATUS {
            return sCurrent->Find(Handle, *Protocol, Interface);
        };
        BootServices.OpenProtocol = [](EFI_HANDLE Handle, const EFI_GUID* Protocol, VOID** Interface, EFI_HANDLE Agent,
                                       EFI_HANDLE, UINT32) -> EFI_STATUS {
            const EFI_STATUS Status = sCurrent->Find(Handle, *Protocol, Interface);
            if (!EfiError(Status) && Agent == gImageHandle) {
                ++sCurrent->OpenCount;
            }
            return Status;
        };
        BootServices.CloseProtocol = [](EFI_HANDLE Handle, const EFI_GUID* Protocol, EFI_HANDLE Agent,
                                        EFI_HANDLE) -> EFI_STATUS {
            VOID* Interface = nullptr;
            const EFI_STATUS Status = sCurrent->Find(Handle, *Protocol, &Interface);
            if (!EfiError(Status) && Agent == gImageHandle) {
                --sCurrent->OpenCount;
            }
            return Status;
        };
        BootServices.LocateProtocol = [](const EFI_GUID* Protocol, VOID*, VOID** Interface) -> EFI_STATUS {
            for (const RECORD& Record : sCurrent->Protocols) {
                if (SameGuid(Record.Guid, *Protocol)) {
                    *Interface = Record.Interface;
                    return EFI_SUCCESS;
                }
            }
            return EFI_NOT_FOUND;
        };
        RuntimeServices.GetTime = [](EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities) -> EFI_STATUS {
            sCurrent->Calls.push_back("GetTime");
            const EFI_STATUS Status = sCurrent->TimeStatus;
            if (!EfiError(Status)) {
                *Time = sCurrent->Time;
                if (Capabilities != nullptr) {
                    *Capabilities = {.Resolution = sCurrent->ClockResolution, .Accuracy = 0, .SetsToZero = 0};
                }
            }
            ++sCurrent->TimeReadings;
            if (sCurrent->AfterTimeReading) {
                sCurrent->AfterTimeReading(sCurrent->TimeReadings);
            }
            return Status;
        };
        Console.OutputString = [](EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL*, const CHAR16* String) -> EFI_STATUS {
            sCurrent->Printed += String;
            return sCurrent->ConsoleStatus;
        };
        SystemTable.ConOut = &Console;
        SystemTable.BootServices = &BootServices;
        SystemTable.RuntimeServices = &RuntimeServices;
        gST = &SystemTable;
        gBS = &BootServices;
        gRT = &RuntimeServices;
        gImageHandle = nullptr;
    }

    ~FakeFirmware()
    {
        for (VOID* Block : Blocks) {
            std::free(Block);
        }
        gST = nullptr;
        gBS = nullptr;
        gRT = nullptr;
        sCurrent = nullptr;
    }

    FakeFirmware(const FakeFirmware&) = delete;
    FakeFirmware& operator=(const FakeFirmware&) = delete;

    VOID Install(EFI_HANDLE Handle, const EFI_GUID& Guid, VOID* Interface)
    {
        Protocols.push_back({Handle, Guid, Interface});
    }

    EFI_BOOT_SERVICES BootServices = {};
    EFI_RUNTIME_SERVICES RuntimeServices = {};
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL Console = {};
    EFI_SYSTEM_TABLE SystemTable = {};

    std::set<VOID*> Blocks;
    std::vector<UINTN> AllocatedSizes;
    bool PoolIsEmpty = false;
    std::function<void(UINTN)> OnAllocate;

    EFI_TIME Time = {};
    EFI_STATUS TimeStatus = EFI_SUCCESS;
    UINT32 ClockResolution = 1000;
    UINTN TimeReadings = 0;
    std::function<void(UINTN)> AfterTimeReading; // given how many readings there have been

    UINT64 MonotonicCount = 0;
    EFI_STATUS MemoryMapStatus = EFI_SUCCESS;
    std::vector<UINT8> MemoryMap = std::vector<UINT8>(sizeof(EFI_MEMORY_DESCRIPTOR), 0x11);
    UINTN DescriptorSize = sizeof(EFI_MEMORY_DESCRIPTOR);

    std::vector<std::string> Calls; // of clock, count, memory map and handle search
    UINTN OpenCount = 0;
    std::u16string Printed;
    EFI_STATUS ConsoleStatus = EFI_SUCCESS;

private:
    struct RECORD {
        EFI_HANDLE Handle;
        EFI_GUID Guid;
        VOID* Interface;
    };

    EFI_STATUS Find(EFI_HANDLE Handle, const EFI_GUID& Guid, VOID** Interface) const
    {
        for (const RECORD& Record : Protocols) {
            if (Record.Handle == Handle && SameGuid(Record.Guid, Guid)) {
                *Interface = Record.Interface;
                return EFI_SUCCESS;
            }
        }
        return EFI_UNSUPPORTED;
    }

    std::vector<RECORD> Protocols;
    static inline FakeFirmware* sCurrent = nullptr;
};
