// USB I/O protocol as far as a pointing device's driver needs it, with the HID class requests, and the driver binding
// protocol by which the firmware hands a device to its driver and takes it away again.
#pragma once

#include "uefi/Devices.h"

constexpr EFI_GUID gEfiUsbIoProtocolGuid = {
    0x2B2F68D6, 0x0CD2, 0x44CF, {0x8E, 0x8B, 0xBB, 0xA2, 0x0B, 0x1B, 0x5B, 0x75}};
constexpr EFI_GUID gEfiDriverBindingProtocolGuid = {
    0x18A031AB, 0xB443, 0x4D1A, {0xA5, 0xC0, 0x0C, 0x09, 0x26, 0x1E, 0x9F, 0x71}};

struct EFI_USB_DEVICE_REQUEST {
    UINT8 RequestType;
    UINT8 Request;
    UINT16 Value;
    UINT16 Index;
    UINT16 Length;
};
static_assert(sizeof(EFI_USB_DEVICE_REQUEST) == 8);

enum EFI_USB_DATA_DIRECTION : UINT32 { EfiUsbDataIn, EfiUsbDataOut, EfiUsbNoData };

struct EFI_USB_INTERFACE_DESCRIPTOR {
    UINT8 Length;
    UINT8 DescriptorType;
    UINT8 InterfaceNumber;
    UINT8 AlternateSetting;
    UINT8 NumEndpoints;
    UINT8 InterfaceClass;
    UINT8 InterfaceSubClass;
    UINT8 InterfaceProtocol;
    UINT8 Interface;
};
static_assert(sizeof(EFI_USB_INTERFACE_DESCRIPTOR) == 9);

#pragma pack(push, 1)
struct EFI_USB_ENDPOINT_DESCRIPTOR {
    UINT8 Length;
    UINT8 DescriptorType;
    UINT8 EndpointAddress;
    UINT8 Attributes;
    UINT16 MaxPacketSize;
    UINT8 Interval;
};
#pragma pack(pop)
static_assert(sizeof(EFI_USB_ENDPOINT_DESCRIPTOR) == 7);

constexpr UINT32 EFI_USB_NOERROR = 0;
constexpr UINT32 EFI_USB_ERR_STALL = 2;

using EFI_ASYNC_USB_TRANSFER_CALLBACK = EFI_STATUS (*)(VOID* Data, UINTN DataLength, VOID* Context, UINT32 Status);

struct EFI_USB_IO_PROTOCOL {
    EFI_STATUS (*UsbControlTransfer)(EFI_USB_IO_PROTOCOL* This, EFI_USB_DEVICE_REQUEST* Request,
                                     EFI_USB_DATA_DIRECTION Direction, UINT32 Timeout, VOID* Data, UINTN DataLength,
                                     UINT32* Status);
    VOID* UsbBulkTransfer;
    // Timed in milliseconds. With IsNewTransfer 0 the transfer is taken back.
    EFI_STATUS (*UsbAsyncInterruptTransfer)(EFI_USB_IO_PROTOCOL* This, UINT8 DeviceEndpoint, BOOLEAN IsNewTransfer,
                                            UINTN PollingInterval, UINTN DataLength,
                                            EFI_ASYNC_USB_TRANSFER_CALLBACK InterruptCallBack, VOID* Context);
    VOID* UsbSyncInterruptTransfer;
    VOID* UsbIsochronousTransfer;
    VOID* UsbAsyncIsochronousTransfer;
    VOID* UsbGetDeviceDescriptor;
    VOID* UsbGetConfigDescriptor;
    EFI_STATUS (*UsbGetInterfaceDescriptor)(EFI_USB_IO_PROTOCOL* This, EFI_USB_INTERFACE_DESCRIPTOR* Descriptor);
    EFI_STATUS (*UsbGetEndpointDescriptor)(EFI_USB_IO_PROTOCOL* This, UINT8 EndpointIndex,
                                           EFI_USB_ENDPOINT_DESCRIPTOR* Descriptor);
    VOID* UsbGetStringDescriptor;
    VOID* UsbGetSupportedLanguages;
    VOID* UsbPortReset;
};
static_assert(offsetof(EFI_USB_IO_PROTOCOL, UsbGetInterfaceDescriptor) == 64);

struct EFI_DRIVER_BINDING_PROTOCOL {
    EFI_STATUS (*Supported)(EFI_DRIVER_BINDING_PROTOCOL* This, EFI_HANDLE Controller,
                            EFI_DEVICE_PATH_PROTOCOL* RemainingDevicePath);
    EFI_STATUS (*Start)(EFI_DRIVER_BINDING_PROTOCOL* This, EFI_HANDLE Controller,
                        EFI_DEVICE_PATH_PROTOCOL* RemainingDevicePath);
    EFI_STATUS (*Stop)(EFI_DRIVER_BINDING_PROTOCOL* This, EFI_HANDLE Controller, UINTN NumberOfChildren,
                       EFI_HANDLE* ChildHandleBuffer);
    UINT32 Version;
    EFI_HANDLE ImageHandle;
    EFI_HANDLE DriverBindingHandle;
};
