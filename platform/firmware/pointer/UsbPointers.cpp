#include "platform/firmware/pointer/UsbPointers.h"

#include "platform/firmware/Report.h"
#include "platform/firmware/pointer/HidReport.h"
#include "src/uefi/UsbIo.h"

namespace {

constexpr UINT8 gHidClass = 3;
constexpr UINT8 gBootSubClass = 1;
constexpr UINT8 gKeyboardProtocol = 1;
constexpr UINT8 gMouseProtocol = 2;

constexpr UINT8 gEndpointIn = 0x80;
constexpr UINT8 gTransferTypeMask = 3;
constexpr UINT8 gInterruptTransfer = 3;

// Requests: to an interface, of the HID class.
constexpr UINT8 gToInterfaceOfClass = 0x21;
constexpr UINT8 gFromInterface = 0x81;
constexpr UINT8 gToEndpoint = 0x02;
constexpr UINT8 gGetDescriptor = 6;
constexpr UINT8 gClearFeature = 1;
constexpr UINT8 gSetIdle = 10;
constexpr UINT8 gSetProtocol = 11;
constexpr UINT16 gReportDescriptor = 0x2200;
constexpr UINT16 gBootProtocol = 0;
constexpr UINT16 gReportProtocol = 1;
constexpr UINT32 gRequestTime = 500; // milliseconds

constexpr UINT8 gMaximumReport = 64;
constexpr UINTN gMaximumDescriptor = 1024;
constexpr UINTN gMinimumInterval = 1; // milliseconds
constexpr UINTN gMaximumInterval = 10;
constexpr UINT64 gRecoveryTime = 100000; // microseconds between a failed transfer and the next try

// One device that this driver runs.
struct USB_POINTER {
    USB_POINTER* Next;
    EFI_HANDLE Controller;
    EFI_USB_IO_PROTOCOL* UsbIo;
    HID_LAYOUT Layout;
    UINT8 Endpoint;
    UINTN Interval;
    UINTN ReportSize;
    bool Failed;      // the transfer has ended in an error and has to be set up again
    UINT64 RecoverAt; // microseconds; 0: not decided yet
    INT64 PlaceX;     // of a tablet as it was last told, in gFullScale; -1 before
    INT64 PlaceY;
    UINT8 Left;
    UINT8 Right;
};

// Reports wait here between the transfer's notification and the next poll. When it is full, ways are lost, but the
// buttons of the newest report are kept.
constexpr UINTN gQueueLength = 64;
struct QUEUED_REPORT {
    USB_POINTER* Device;
    POINTER_CHANGE Change;
};

EFI_BOOT_SERVICES* gBoot;
USB_POINTER* gDevices;
QUEUED_REPORT gQueue[gQueueLength];
UINTN gQueueFirst;
UINTN gQueueCount;
EFI_DRIVER_BINDING_PROTOCOL gDriverBinding;

EFI_STATUS Request(EFI_USB_IO_PROTOCOL* UsbIo, UINT8 Type, UINT8 Code, UINT16 Value, UINT16 Index, VOID* Data,
                   UINT16 Length)
{
    EFI_USB_DEVICE_REQUEST Packet = {
        .RequestType = Type, .Request = Code, .Value = Value, .Index = Index, .Length = Length};
    UINT32 Status = 0;
    return UsbIo->UsbControlTransfer(UsbIo, &Packet, Length == 0 ? EfiUsbNoData : EfiUsbDataIn, gRequestTime, Data,
                                     Length, &Status);
}

EFI_STATUS OpenUsbIo(EFI_HANDLE Controller, EFI_USB_IO_PROTOCOL** UsbIo)
{
    VOID* Interface = nullptr;
    EFI_STATUS Status = gBoot->OpenProtocol(Controller, &gEfiUsbIoProtocolGuid, &Interface, gDriverBinding.ImageHandle,
                                            Controller, EFI_OPEN_PROTOCOL_BY_DRIVER);
    *UsbIo = static_cast<EFI_USB_IO_PROTOCOL*>(Interface);
    return Status;
}

VOID CloseUsbIo(EFI_HANDLE Controller)
{
    (void)gBoot->CloseProtocol(Controller, &gEfiUsbIoProtocolGuid, gDriverBinding.ImageHandle, Controller);
}

bool MayBePointer(const EFI_USB_INTERFACE_DESCRIPTOR* Interface)
{
    return Interface->InterfaceClass == gHidClass && Interface->InterfaceProtocol != gKeyboardProtocol;
}

bool IsBootMouse(const EFI_USB_INTERFACE_DESCRIPTOR* Interface)
{
    return Interface->InterfaceSubClass == gBootSubClass && Interface->InterfaceProtocol == gMouseProtocol;
}

bool FindEndpoint(EFI_USB_IO_PROTOCOL* UsbIo, const EFI_USB_INTERFACE_DESCRIPTOR* Interface,
                  EFI_USB_ENDPOINT_DESCRIPTOR* Endpoint)
{
    for (UINT8 Index = 0; Index < Interface->NumEndpoints; Index++) {
        if (!EfiError(UsbIo->UsbGetEndpointDescriptor(UsbIo, Index, Endpoint)) &&
            (Endpoint->EndpointAddress & gEndpointIn) != 0 &&
            (Endpoint->Attributes & gTransferTypeMask) == gInterruptTransfer) {
            return true;
        }
    }
    return false;
}

// How the device lays out its report: as its descriptor says, or as the boot protocol has it for all mice.
bool ChooseLayout(EFI_USB_IO_PROTOCOL* UsbIo, const EFI_USB_INTERFACE_DESCRIPTOR* Interface, HID_LAYOUT* Layout)
{
    UINT16 Number = Interface->InterfaceNumber;
    bool Boot = IsBootMouse(Interface);
    VOID* Block = nullptr;
    if (EfiError(gBoot->AllocatePool(EfiBootServicesData, gMaximumDescriptor, &Block))) {
        return false;
    }
    auto* Descriptor = static_cast<UINT8*>(Block);
    // A device sends a shorter descriptor than was asked for, and some firmware doesn't say how much came: what it didn't
    // write must read as items without meaning.
    gBoot->SetMem(Descriptor, gMaximumDescriptor, 0);
    (void)Request(UsbIo, gFromInterface, gGetDescriptor, gReportDescriptor, Number, Descriptor, gMaximumDescriptor);
    bool Parsed = ParseHidDescriptor(Descriptor, gMaximumDescriptor, Layout);
    (void)gBoot->FreePool(Block);
    if (Parsed) {
        if (Boot) {
            (void)Request(UsbIo, gToInterfaceOfClass, gSetProtocol, gReportProtocol, Number, nullptr, 0);
        }
    } else if (Boot) {
        *Layout = gBootMouseLayout;
        (void)Request(UsbIo, gToInterfaceOfClass, gSetProtocol, gBootProtocol, Number, nullptr, 0);
    } else {
        return false;
    }
    // Reports come when something changes, and not again and again.
    (void)Request(UsbIo, gToInterfaceOfClass, gSetIdle, 0, Number, nullptr, 0);
    return true;
}

VOID QueueReport(USB_POINTER* Device, const POINTER_CHANGE* Change)
{
    if (gQueueCount == gQueueLength) {
        QUEUED_REPORT* Newest = &gQueue[(gQueueFirst + gQueueCount - 1) % gQueueLength];
        if (Newest->Device == Device) {
            Newest->Change = *Change;
        }
        return;
    }
    gQueue[(gQueueFirst + gQueueCount) % gQueueLength] = {.Device = Device, .Change = *Change};
    gQueueCount++;
}

// Called by the firmware's host controller driver, above the level of the polls.
EFI_STATUS OnReport(VOID* Data, UINTN Length, VOID* Context, UINT32 Status)
{
    auto* Device = static_cast<USB_POINTER*>(Context);
    if (Status != EFI_USB_NOERROR) {
        Device->Failed = true;
        return EFI_DEVICE_ERROR;
    }
    POINTER_CHANGE Change;
    if (Data != nullptr && DecodeHidReport(&Device->Layout, static_cast<const UINT8*>(Data), Length, &Change)) {
        QueueReport(Device, &Change);
    }
    return EFI_SUCCESS;
}

EFI_STATUS StartTransfer(USB_POINTER* Device)
{
    return Device->UsbIo->UsbAsyncInterruptTransfer(Device->UsbIo, Device->Endpoint, 1, Device->Interval,
                                                    Device->ReportSize, OnReport, Device);
}

VOID StopTransfer(USB_POINTER* Device)
{
    (void)Device->UsbIo->UsbAsyncInterruptTransfer(Device->UsbIo, Device->Endpoint, 0, 0, 0, nullptr, nullptr);
}

// A device whose transfer failed has no button down, and gets a new transfer after a while.
VOID RecoverDevice(USB_POINTER* Device, UINT64 Now)
{
    Device->Left = 0;
    Device->Right = 0;
    if (Device->RecoverAt == 0) {
        Device->RecoverAt = Now + gRecoveryTime;
        return;
    }
    if (Now < Device->RecoverAt) {
        return;
    }
    Device->RecoverAt = 0;
    StopTransfer(Device);
    (void)Request(Device->UsbIo, gToEndpoint, gClearFeature, 0, Device->Endpoint, nullptr, 0);
    Device->Failed = EfiError(StartTransfer(Device));
}

// The device as it now is. False for a tablet at rest, which some tell again and again: it leaves the pointer to others; a
// press on it brings the pointer there.
bool TakeReport(const QUEUED_REPORT& Report)
{
    USB_POINTER* Device = Report.Device;
    const POINTER_CHANGE& Change = Report.Change;
    const bool Rests = Change.Absolute && Change.X == Device->PlaceX && Change.Y == Device->PlaceY &&
                       Change.Left == Device->Left && Change.Right == Device->Right;
    if (Change.Absolute) {
        Device->PlaceX = Change.X;
        Device->PlaceY = Change.Y;
    }
    Device->Left = Change.Left;
    Device->Right = Change.Right;
    return !Rests;
}

VOID DropReports(const USB_POINTER* Device)
{
    UINTN Kept = 0;
    for (UINTN Index = 0; Index < gQueueCount; Index++) {
        QUEUED_REPORT Report = gQueue[(gQueueFirst + Index) % gQueueLength];
        if (Report.Device != Device) {
            gQueue[(gQueueFirst + Kept) % gQueueLength] = Report;
            Kept++;
        }
    }
    gQueueCount = Kept;
}

EFI_STATUS DriverSupported(EFI_DRIVER_BINDING_PROTOCOL*, EFI_HANDLE Controller, EFI_DEVICE_PATH_PROTOCOL*)
{
    EFI_USB_IO_PROTOCOL* UsbIo = nullptr;
    EFI_STATUS Status = OpenUsbIo(Controller, &UsbIo);
    if (EfiError(Status)) {
        return Status; // no USB interface, or one that has its driver
    }
    EFI_USB_INTERFACE_DESCRIPTOR Interface = {};
    Status = UsbIo->UsbGetInterfaceDescriptor(UsbIo, &Interface);
    CloseUsbIo(Controller);
    return !EfiError(Status) && MayBePointer(&Interface) ? EFI_SUCCESS : EFI_UNSUPPORTED;
}

// Fills the record of an opened device and starts its transfer.
EFI_STATUS StartDevice(USB_POINTER* Device)
{
    EFI_USB_INTERFACE_DESCRIPTOR Interface = {};
    EFI_USB_ENDPOINT_DESCRIPTOR Endpoint = {};
    if (EfiError(Device->UsbIo->UsbGetInterfaceDescriptor(Device->UsbIo, &Interface)) ||
        !FindEndpoint(Device->UsbIo, &Interface, &Endpoint) ||
        !ChooseLayout(Device->UsbIo, &Interface, &Device->Layout)) {
        return EFI_UNSUPPORTED;
    }
    Device->Endpoint = Endpoint.EndpointAddress;
    Device->Interval = Endpoint.Interval < gMinimumInterval   ? gMinimumInterval
                       : Endpoint.Interval > gMaximumInterval ? gMaximumInterval
                                                              : Endpoint.Interval;
    Device->ReportSize = Endpoint.MaxPacketSize < gMaximumReport ? Endpoint.MaxPacketSize : gMaximumReport;
    return StartTransfer(Device);
}

EFI_STATUS DriverStart(EFI_DRIVER_BINDING_PROTOCOL*, EFI_HANDLE Controller, EFI_DEVICE_PATH_PROTOCOL*)
{
    EFI_USB_IO_PROTOCOL* UsbIo = nullptr;
    EFI_STATUS Status = OpenUsbIo(Controller, &UsbIo);
    if (EfiError(Status)) {
        return Status;
    }
    VOID* Block = nullptr;
    Status = gBoot->AllocatePool(EfiBootServicesData, sizeof(USB_POINTER), &Block);
    if (EfiError(Status)) {
        CloseUsbIo(Controller);
        return Status;
    }
    auto* Device = static_cast<USB_POINTER*>(Block);
    *Device = {};
    Device->Controller = Controller;
    Device->UsbIo = UsbIo;
    Device->PlaceX = -1;
    Status = StartDevice(Device);
    if (EfiError(Status)) {
        (void)gBoot->FreePool(Device);
        CloseUsbIo(Controller);
        return Status;
    }
    EFI_TPL Level = gBoot->RaiseTPL(TPL_NOTIFY);
    Device->Next = gDevices;
    gDevices = Device;
    gBoot->RestoreTPL(Level);
    Report(Device->Layout.Absolute ? "ventara: USB tablet\n" : "ventara: USB mouse\n");
    return EFI_SUCCESS;
}

EFI_STATUS DriverStop(EFI_DRIVER_BINDING_PROTOCOL*, EFI_HANDLE Controller, UINTN, EFI_HANDLE*)
{
    for (USB_POINTER** Link = &gDevices; *Link != nullptr; Link = &(*Link)->Next) {
        USB_POINTER* Device = *Link;
        if (Device->Controller != Controller) {
            continue;
        }
        StopTransfer(Device);
        Report(Device->Layout.Absolute ? "ventara: USB tablet gone\n" : "ventara: USB mouse gone\n");
        EFI_TPL Level = gBoot->RaiseTPL(TPL_NOTIFY);
        *Link = Device->Next;
        DropReports(Device);
        gBoot->RestoreTPL(Level);
        CloseUsbIo(Controller);
        (void)gBoot->FreePool(Device);
        return EFI_SUCCESS;
    }
    return EFI_DEVICE_ERROR;
}

}

EFI_STATUS OpenUsbPointers(EFI_SYSTEM_TABLE* SystemTable, EFI_HANDLE Image)
{
    gBoot = SystemTable->BootServices;
    gDriverBinding = {
        .Supported = DriverSupported,
        .Start = DriverStart,
        .Stop = DriverStop,
        .Version = 0x10,
        .ImageHandle = Image,
        .DriverBindingHandle = Image,
    };
    EFI_HANDLE Handle = Image;
    EFI_STATUS Status =
        gBoot->InstallMultipleProtocolInterfaces(&Handle, &gEfiDriverBindingProtocolGuid, &gDriverBinding, nullptr);
    if (EfiError(Status)) {
        return Status;
    }
    UINTN Count = 0;
    EFI_HANDLE* Handles = nullptr;
    if (!EfiError(gBoot->LocateHandleBuffer(ByProtocol, &gEfiUsbIoProtocolGuid, nullptr, &Count, &Handles))) {
        for (UINTN Index = 0; Index < Count; Index++) {
            (void)gBoot->ConnectController(Handles[Index], nullptr, nullptr, 0);
        }
        (void)gBoot->FreePool(Handles);
    }
    return EFI_SUCCESS;
}

bool PollUsbPointers(UINT64 Now, POINTER_CHANGE* Change)
{
    *Change = {};
    // A device that was pulled out is stopped by its hub's timer, at TPL_CALLBACK: not while we hold its record.
    EFI_TPL Level = gBoot->RaiseTPL(TPL_CALLBACK);
    for (USB_POINTER* Device = gDevices; Device != nullptr; Device = Device->Next) {
        if (Device->Failed) {
            RecoverDevice(Device, Now);
        }
    }
    (void)gBoot->RaiseTPL(TPL_NOTIFY);
    bool Reported = false;
    while (gQueueCount != 0 && !Reported) {
        const QUEUED_REPORT& Report = gQueue[gQueueFirst];
        gQueueFirst = (gQueueFirst + 1) % gQueueLength;
        gQueueCount--;
        Reported = TakeReport(Report);
        if (Reported) {
            *Change = Report.Change;
        }
    }
    Change->Left = 0;
    Change->Right = 0;
    for (const USB_POINTER* Device = gDevices; Device != nullptr; Device = Device->Next) {
        Change->Left |= Device->Left;
        Change->Right |= Device->Right;
    }
    gBoot->RestoreTPL(Level);
    return Reported;
}

UINTN CountUsbPointers()
{
    UINTN Count = 0;
    const EFI_TPL Level = gBoot->RaiseTPL(TPL_CALLBACK);
    for (const USB_POINTER* Device = gDevices; Device != nullptr; Device = Device->Next) {
        Count++;
    }
    gBoot->RestoreTPL(Level);
    return Count;
}

VOID ForgetUsbPlaces()
{
    const EFI_TPL Level = gBoot->RaiseTPL(TPL_CALLBACK);
    for (USB_POINTER* Device = gDevices; Device != nullptr; Device = Device->Next) {
        Device->PlaceX = -1;
    }
    gBoot->RestoreTPL(Level);
}

VOID CloseUsbPointers()
{
    // No device comes or goes meanwhile, see PollUsbPointers.
    const EFI_TPL Level = gBoot->RaiseTPL(TPL_CALLBACK);
    while (gDevices != nullptr) {
        EFI_HANDLE Controller = gDevices->Controller;
        if (EfiError(gBoot->DisconnectController(Controller, gDriverBinding.DriverBindingHandle, nullptr))) {
            (void)DriverStop(&gDriverBinding, Controller, 0, nullptr);
        }
    }
    (void)gBoot->UninstallMultipleProtocolInterfaces(gDriverBinding.DriverBindingHandle, &gEfiDriverBindingProtocolGuid,
                                                     &gDriverBinding, nullptr);
    gBoot->RestoreTPL(Level);
}
