#include "platform/firmware/pointer/ProtocolPointers.h"

#include "src/uefi/Pointers.h"
#include "uefi/Devices.h"

namespace {

constexpr UINTN gMaximumDevices = 8;
constexpr UINT64 gLookAgainTime = 1000000; // microseconds

// A mouse of the simple protocol moves the pointer by this many pixels a millimetre.
constexpr INT64 gPixelsPerMillimetre = 8;

// An ACPI node holds the device's name as a compressed number: "PNP" below, the device above. 0x0F00 to 0x0FFF are mice.
constexpr UINT8 gAcpiPlainSubType = 0x01;
constexpr UINT32 gPnpVendor = 0x41D0;
constexpr UINT32 gPnpMouseClass = 0x0F;

struct DEVICE {
    EFI_HANDLE Handle;
    EFI_SIMPLE_POINTER_PROTOCOL* Simple; // one of the two
    EFI_ABSOLUTE_POINTER_PROTOCOL* Absolute;
    INT64 RestX; // counts that made no whole pixel yet
    INT64 RestY;
    INT64 PlaceX; // of an absolute one as it was last told, in gFullScale; -1 before
    INT64 PlaceY;
    UINT8 Left;
    UINT8 Right;
};

EFI_BOOT_SERVICES* gBoot;
DEVICE gDevices[gMaximumDevices];
UINTN gDeviceCount;
UINTN gNextDevice;
UINT64 gNextLook;

EFI_DEVICE_PATH_PROTOCOL* PathOf(EFI_HANDLE Handle)
{
    VOID* Interface = nullptr;
    if (EfiError(gBoot->HandleProtocol(Handle, &gEfiDevicePathProtocolGuid, &Interface))) {
        return nullptr;
    }
    return static_cast<EFI_DEVICE_PATH_PROTOCOL*>(Interface);
}

bool HasRange(const EFI_ABSOLUTE_POINTER_PROTOCOL* Absolute)
{
    const EFI_ABSOLUTE_POINTER_MODE* Mode = Absolute->Mode;
    return Mode->AbsoluteMaxX > Mode->AbsoluteMinX && Mode->AbsoluteMaxY > Mode->AbsoluteMinY;
}

// A device that tells places may tell ways as well: the same movement a second time.
bool TellsPlaces(const DEVICE* Devices, UINTN Count, EFI_HANDLE Handle)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        if (Devices[Index].Handle == Handle && Devices[Index].Absolute != nullptr &&
            HasRange(Devices[Index].Absolute)) {
            return true;
        }
    }
    return false;
}

const DEVICE* FindDevice(const DEVICE* Devices, UINTN Count, EFI_HANDLE Handle, const VOID* Protocol)
{
    for (UINTN Index = 0; Index < Count; Index++) {
        if (Devices[Index].Handle == Handle &&
            (Devices[Index].Simple == Protocol || Devices[Index].Absolute == Protocol)) {
            return &Devices[Index];
        }
    }
    return nullptr;
}

// Adds the handles that have the protocol, and a device path or none, as asked.
VOID AddDevices(DEVICE* Devices, UINTN* Count, const EFI_GUID* Protocol, bool WithPath)
{
    UINTN HandleCount = 0;
    EFI_HANDLE* Handles = nullptr;
    if (EfiError(gBoot->LocateHandleBuffer(ByProtocol, Protocol, nullptr, &HandleCount, &Handles))) {
        return;
    }
    for (UINTN Index = 0; Index < HandleCount && *Count < gMaximumDevices; Index++) {
        VOID* Interface = nullptr;
        if ((PathOf(Handles[Index]) != nullptr) != WithPath || TellsPlaces(Devices, *Count, Handles[Index]) ||
            EfiError(gBoot->HandleProtocol(Handles[Index], Protocol, &Interface))) {
            continue;
        }
        // A device that was known keeps its buttons and its rests.
        if (const DEVICE* Known = FindDevice(gDevices, gDeviceCount, Handles[Index], Interface)) {
            Devices[(*Count)++] = *Known;
            continue;
        }
        DEVICE Device = {};
        Device.PlaceX = -1;
        Device.Handle = Handles[Index];
        if (Protocol == &gEfiAbsolutePointerProtocolGuid) {
            Device.Absolute = static_cast<EFI_ABSOLUTE_POINTER_PROTOCOL*>(Interface);
        } else {
            Device.Simple = static_cast<EFI_SIMPLE_POINTER_PROTOCOL*>(Interface);
        }
        Devices[(*Count)++] = Device;
    }
    (void)gBoot->FreePool(Handles);
}

VOID LookForDevices()
{
    DEVICE Devices[gMaximumDevices] = {};
    UINTN Count = 0;
    AddDevices(Devices, &Count, &gEfiAbsolutePointerProtocolGuid, true);
    AddDevices(Devices, &Count, &gEfiSimplePointerProtocolGuid, true);
    if (Count == 0) {
        AddDevices(Devices, &Count, &gEfiAbsolutePointerProtocolGuid, false);
        AddDevices(Devices, &Count, &gEfiSimplePointerProtocolGuid, false);
    }
    for (UINTN Index = 0; Index < gMaximumDevices; Index++) {
        gDevices[Index] = Devices[Index];
    }
    gDeviceCount = Count;
}

// Whole pixels out of counts; what is left over stays in Rest for the next time.
INT64 ScaleWay(INT64 Counts, UINT64 Resolution, INT64* Rest)
{
    if (Resolution == 0 || Resolution > 0x7FFFFFFF) {
        return Counts;
    }
    INT64 Divisor = static_cast<INT64>(Resolution);
    INT64 Total = Counts * gPixelsPerMillimetre + *Rest;
    INT64 Pixels = Total / Divisor;
    *Rest = Total - Pixels * Divisor;
    return Pixels;
}

INT64 ScalePlace(UINT64 Place, UINT64 Minimum, UINT64 Maximum)
{
    if (Place <= Minimum) {
        return 0;
    }
    if (Place >= Maximum) {
        return gFullScale;
    }
    UINT64 Range = Maximum - Minimum;
    UINT64 Offset = Place - Minimum;
    // Devices report some ten bits; a range beyond 32 bits is halved until the product fits.
    while (Range > 0xFFFFFFFF) {
        Range >>= 1;
        Offset >>= 1;
    }
    return static_cast<INT64>(Offset * static_cast<UINT64>(gFullScale) / Range);
}

bool PollSimple(DEVICE* Device, POINTER_CHANGE* Change)
{
    EFI_SIMPLE_POINTER_STATE State = {};
    if (EfiError(Device->Simple->GetState(Device->Simple, &State))) {
        return false;
    }
    const EFI_SIMPLE_POINTER_MODE* Mode = Device->Simple->Mode;
    Change->X = ScaleWay(State.RelativeMovementX, Mode->ResolutionX, &Device->RestX);
    Change->Y = ScaleWay(State.RelativeMovementY, Mode->ResolutionY, &Device->RestY);
    Device->Left = State.LeftButton != 0 ? 1 : 0;
    Device->Right = State.RightButton != 0 ? 1 : 0;
    return true;
}

// A tablet at rest, whose state some firmware gives again and again, leaves the pointer to others; a press on it brings the
// pointer there.
bool PollAbsolute(DEVICE* Device, POINTER_CHANGE* Change)
{
    const EFI_ABSOLUTE_POINTER_MODE* Mode = Device->Absolute->Mode;
    EFI_ABSOLUTE_POINTER_STATE State = {};
    // Without a range there is no device, or none with a place.
    if (!HasRange(Device->Absolute) || EfiError(Device->Absolute->GetState(Device->Absolute, &State))) {
        return false;
    }
    const INT64 X = ScalePlace(State.CurrentX, Mode->AbsoluteMinX, Mode->AbsoluteMaxX);
    const INT64 Y = ScalePlace(State.CurrentY, Mode->AbsoluteMinY, Mode->AbsoluteMaxY);
    const UINT8 Left = (State.ActiveButtons & EFI_ABSP_TouchActive) != 0 ? 1 : 0;
    const UINT8 Right = (State.ActiveButtons & EFI_ABS_AltActive) != 0 ? 1 : 0;
    if (X == Device->PlaceX && Y == Device->PlaceY && Left == Device->Left && Right == Device->Right) {
        return false;
    }
    Device->PlaceX = X;
    Device->PlaceY = Y;
    Device->Left = Left;
    Device->Right = Right;
    Change->Absolute = true;
    Change->X = X;
    Change->Y = Y;
    return true;
}

// Whether the device is still what it was when it was found: pulled out, its driver frees the protocol. Holds for as long as
// TPL_CALLBACK is held, at which hubs see their devices go.
bool IsThere(const DEVICE* Device)
{
    const EFI_GUID* Protocol =
        Device->Absolute != nullptr ? &gEfiAbsolutePointerProtocolGuid : &gEfiSimplePointerProtocolGuid;
    const VOID* Known = Device->Absolute;
    if (Known == nullptr) {
        Known = Device->Simple;
    }
    VOID* Interface = nullptr;
    return !EfiError(gBoot->HandleProtocol(Device->Handle, Protocol, &Interface)) && Interface == Known;
}

bool IsPs2Mouse(const EFI_DEVICE_PATH_PROTOCOL* Path)
{
    const auto* At = reinterpret_cast<const UINT8*>(Path);
    while (At != nullptr && At[0] != END_DEVICE_PATH_TYPE) {
        UINTN Length = static_cast<UINTN>(At[2]) | (static_cast<UINTN>(At[3]) << 8);
        if (Length < sizeof(EFI_DEVICE_PATH_PROTOCOL)) {
            return false;
        }
        if (At[0] == ACPI_DEVICE_PATH && At[1] == gAcpiPlainSubType && Length >= 8) {
            UINT32 Name = static_cast<UINT32>(At[4]) | (static_cast<UINT32>(At[5]) << 8) |
                          (static_cast<UINT32>(At[6]) << 16) | (static_cast<UINT32>(At[7]) << 24);
            if ((Name & 0xFFFF) == gPnpVendor && (Name >> 24) == gPnpMouseClass) {
                return true;
            }
        }
        At += Length;
    }
    return false;
}

}

VOID OpenProtocolPointers(EFI_SYSTEM_TABLE* SystemTable)
{
    gBoot = SystemTable->BootServices;
    gDeviceCount = 0;
    gNextDevice = 0;
    gNextLook = 0;
}

bool PollProtocolPointers(UINT64 Now, POINTER_CHANGE* Change)
{
    if (Now >= gNextLook) {
        LookForDevices();
        gNextLook = Now + gLookAgainTime;
    }
    *Change = {};
    bool Reported = false;
    const EFI_TPL Level = gBoot->RaiseTPL(TPL_CALLBACK);
    for (UINTN Count = 0; Count < gDeviceCount && !Reported; Count++) {
        gNextDevice = (gNextDevice + 1) % gDeviceCount;
        DEVICE* Device = &gDevices[gNextDevice];
        if (!IsThere(Device)) {
            Device->Left = 0;
            Device->Right = 0;
            gNextLook = Now; // forgotten at the next look
            continue;
        }
        Reported = Device->Absolute != nullptr ? PollAbsolute(Device, Change) : PollSimple(Device, Change);
    }
    gBoot->RestoreTPL(Level);
    for (UINTN Index = 0; Index < gDeviceCount; Index++) {
        Change->Left |= gDevices[Index].Left;
        Change->Right |= gDevices[Index].Right;
    }
    return Reported;
}

bool FirmwareDrivesPs2Mouse()
{
    for (UINTN Index = 0; Index < gDeviceCount; Index++) {
        if (IsPs2Mouse(PathOf(gDevices[Index].Handle))) {
            return true;
        }
    }
    return false;
}

UINTN CountProtocolPointers() { return gDeviceCount; }

VOID CloseProtocolPointers()
{
    gDeviceCount = 0;
    gNextLook = 0;
}
