#include "platform/firmware/pointer/MachinePointer.h"

#include "platform/board/ConsoleDisplay.h"
#include "platform/firmware/Clock.h"
#include "platform/firmware/Ports.h"
#include "platform/firmware/Report.h"
#include "platform/firmware/pointer/ProtocolPointers.h"
#include "platform/firmware/pointer/Ps2Mouse.h"
#include "platform/firmware/pointer/UsbPointers.h"

namespace {

constexpr UINTN gDefaultWidth = 1024;
constexpr UINTN gDefaultHeight = 768;

// Reports taken in one read, so that a fast mouse isn't left behind by a slow turn of the console's loop.
constexpr UINTN gReportsPerRead = 16;

constexpr UINTN gSilenceStep = 500; // microseconds between two looks for the last byte of a mouse
constexpr UINTN gSilenceSteps = 1000;

// Without a report for so long (microseconds) the pointer has come to rest, and whoever watches is told where.
constexpr UINT64 gRestTime = 30000;

// The kinds of devices, each with its buttons as it last reported them.
enum KIND : UINT8 { KIND_PROTOCOL, KIND_USB, KIND_PS2, KIND_COUNT };

struct MACHINE_POINTER {
    POINTER_SOURCE Source; // first, so that a pointer to it is a pointer to the whole
    INT64 X;
    INT64 Y;
    INT64 Width;
    INT64 Height;
    UINT8 Left[KIND_COUNT];
    UINT8 Right[KIND_COUNT];
    bool InUse;     // between the console's first read and its close
    bool Moved;     // since its place was last told
    bool Released;  // the last read was the first that saw the left button up again
    UINT8 LastLeft; // what that read gave
    UINT64 LeftAt;  // when it last changed, microseconds
    UINT64 MovedAt; // microseconds
    PS2_MOUSE Ps2;
};

EFI_BOOT_SERVICES* gBoot;
MACHINE_POINTER gPointer;
const CONSOLE_DISPLAY* gLayer; // null: the display shows the console's picture and nothing else

VOID ReportPlace(const MACHINE_POINTER* Pointer)
{
    Report("ventara: pointer ");
    ReportDecimal(static_cast<UINT64>(Pointer->X));
    Report(" ");
    ReportDecimal(static_cast<UINT64>(Pointer->Y));
    Report("\n");
}

// What of the console's picture is under a place on the panel, for one axis. Frame pixels of the panel's, from Begin on,
// show the Extent pixels of the picture.
INT64 PlaceUnder(INT64 Share, INT64 Panel, INT64 Begin, INT64 Frame, INT64 Extent)
{
    const INT64 OnPanel = (Share * (Panel - 1) + gFullScale / 2) / gFullScale;
    return OnPanel <= Begin ? 0 : (OnPanel - Begin) * Extent / Frame;
}

// A press is a click or not by its length, and only the machine knows that.
VOID ReportButton(UINT8 Left, UINT64 Length)
{
    if (Left != 0) {
        Report("ventara: left button down\n");
        return;
    }
    Report("ventara: left button up after ");
    ReportDecimal(Length / 1000);
    Report(" ms\n");
}

// Moves the pointer and keeps the buttons; true when the kind's buttons changed.
bool ApplyChange(MACHINE_POINTER* Pointer, KIND Kind, const POINTER_CHANGE* Change)
{
    const bool ButtonsChanged = Pointer->Left[Kind] != Change->Left || Pointer->Right[Kind] != Change->Right;
    if (Change->Absolute) {
        const UINT32 Width = static_cast<UINT32>(Pointer->Width);
        const UINT32 Height = static_cast<UINT32>(Pointer->Height);
        const CONSOLE_DISPLAY Plain = {nullptr, nullptr, Width, Height, 0, 0, Width, Height};
        const CONSOLE_DISPLAY& Panel = gLayer != nullptr ? *gLayer : Plain;
        Pointer->X = PlaceUnder(Change->X, Panel.PanelWidth, Panel.X, Panel.Width, Pointer->Width);
        Pointer->Y = PlaceUnder(Change->Y, Panel.PanelHeight, Panel.Y, Panel.Height, Pointer->Height);
    } else {
        Pointer->X += Change->X;
        Pointer->Y += Change->Y;
    }
    Pointer->X = Limit<INT64>(Pointer->X, 0, Pointer->Width - 1);
    Pointer->Y = Limit<INT64>(Pointer->Y, 0, Pointer->Height - 1);
    Pointer->Left[Kind] = Change->Left;
    Pointer->Right[Kind] = Change->Right;
    return ButtonsChanged;
}

bool PollKind(MACHINE_POINTER* Pointer, KIND Kind, UINT64 Now, POINTER_CHANGE* Change)
{
    switch (Kind) {
    case KIND_PROTOCOL:
        return PollProtocolPointers(Now, Change);
    case KIND_USB:
        return PollUsbPointers(Now, Change);
    case KIND_PS2: {
        if (FirmwareDrivesPs2Mouse()) {
            return false;
        }
        // The keyboard's driver polls the same controller from a timer; it is kept out while bytes are looked at.
        bool WasSetUp = Pointer->Ps2.State != PS2_SETTING_UP;
        EFI_TPL Level = gBoot->RaiseTPL(TPL_NOTIFY);
        bool Reported = PollPs2Mouse(&Pointer->Ps2, Now, Change);
        gBoot->RestoreTPL(Level);
        if (!WasSetUp && Pointer->Ps2.State == PS2_STREAMING) {
            Report("ventara: PS/2 mouse\n");
        }
        return Reported;
    }
    case KIND_COUNT:
        break;
    }
    return false;
}

// What a mouse reported while nobody looked is no way that the pointer went; a tablet's place still holds.
VOID ApplyFirstChange(MACHINE_POINTER* Pointer, KIND Kind, POINTER_CHANGE* Change)
{
    if (!Change->Absolute) {
        Change->X = 0;
        Change->Y = 0;
    }
    (void)ApplyChange(Pointer, Kind, Change);
}

VOID BeginUse(MACHINE_POINTER* Pointer, UINT64 Now)
{
    Pointer->InUse = true;
    VOID* Interface = nullptr;
    const bool Layered = !EfiError(gBoot->LocateProtocol(&gConsoleDisplayGuid, nullptr, &Interface));
    gLayer = Layered ? static_cast<const CONSOLE_DISPLAY*>(Interface) : nullptr;
    // Looks for the firmware's own devices first, which may be the mouse at the keyboard controller.
    POINTER_CHANGE Change = {};
    if (PollProtocolPointers(Now, &Change)) {
        ApplyFirstChange(Pointer, KIND_PROTOCOL, &Change);
    }
    while (PollUsbPointers(Now, &Change)) {
        ApplyFirstChange(Pointer, KIND_USB, &Change);
    }
    if (!FirmwareDrivesPs2Mouse()) {
        EFI_TPL Level = gBoot->RaiseTPL(TPL_NOTIFY);
        StartPs2Mouse(&Pointer->Ps2, Now);
        gBoot->RestoreTPL(Level);
    }
    // The console reads the pointer for the first time when its first screen is complete.
    Report("ventara: first screen\n");
}

VOID ReadPointer(POINTER_SOURCE* This, INT64* X, INT64* Y, UINT8* Left, UINT8* Right)
{
    auto* Pointer = reinterpret_cast<MACHINE_POINTER*>(This);
    UINT64 Now = ReadMicroseconds();
    if (!Pointer->InUse) {
        BeginUse(Pointer, Now);
    }
    // A press in the read behind a release would pass for the click that the release ended, again in each turn until the
    // next one. So no reports are taken in that read.
    bool ButtonsChanged = Pointer->Released;
    Pointer->Released = false;
    for (UINT8 Kind = 0; Kind < KIND_COUNT; Kind++) {
        // A change of buttons is left to be seen before the next report is taken: a short press isn't lost.
        for (UINTN Count = 0; Count < gReportsPerRead && !ButtonsChanged; Count++) {
            POINTER_CHANGE Change = {};
            bool Reported = PollKind(Pointer, static_cast<KIND>(Kind), Now, &Change);
            // Without a report too: a device that is gone has its buttons up.
            ButtonsChanged = ApplyChange(Pointer, static_cast<KIND>(Kind), &Change);
            if (!Reported) {
                break;
            }
            Pointer->Moved = true;
            Pointer->MovedAt = Now;
        }
    }
    if (Pointer->Moved && Now - Pointer->MovedAt >= gRestTime) {
        Pointer->Moved = false;
        ReportPlace(Pointer);
    }
    *X = Pointer->X;
    *Y = Pointer->Y;
    *Left = 0;
    *Right = 0;
    for (UINT8 Kind = 0; Kind < KIND_COUNT; Kind++) {
        *Left |= Pointer->Left[Kind];
        *Right |= Pointer->Right[Kind];
    }
    Pointer->Released = Pointer->LastLeft != 0 && *Left == 0;
    if (Pointer->LastLeft != *Left) {
        ReportButton(*Left, Now - Pointer->LeftAt);
        Pointer->LastLeft = *Left;
        Pointer->LeftAt = Now;
    }
}

VOID SetPointerLimits(POINTER_SOURCE* This, UINTN Width, UINTN Height)
{
    auto* Pointer = reinterpret_cast<MACHINE_POINTER*>(This);
    if (Width == 0 || Height == 0 || Width > 0xFFFF || Height > 0xFFFF) {
        return;
    }
    Pointer->Width = static_cast<INT64>(Width);
    Pointer->Height = static_cast<INT64>(Height);
    Pointer->X = Limit<INT64>(Pointer->X, 0, Pointer->Width - 1);
    Pointer->Y = Limit<INT64>(Pointer->Y, 0, Pointer->Height - 1);
}

VOID PlacePointer(POINTER_SOURCE* This, INT64 X, INT64 Y)
{
    auto* Pointer = reinterpret_cast<MACHINE_POINTER*>(This);
    Pointer->X = X;
    Pointer->Y = Y;
    Pointer->Moved = true;
    Pointer->MovedAt = ReadMicroseconds();
}

// The next start finds the pointer in the middle again, and no button down.
VOID ResetPointer(MACHINE_POINTER* Pointer)
{
    Pointer->InUse = false;
    Pointer->Moved = false;
    Pointer->Released = false;
    Pointer->LastLeft = 0;
    Pointer->X = Pointer->Width / 2;
    Pointer->Y = Pointer->Height / 2;
    for (UINT8 Kind = 0; Kind < KIND_COUNT; Kind++) {
        Pointer->Left[Kind] = 0;
        Pointer->Right[Kind] = 0;
    }
}

VOID SilencePs2Mouse(MACHINE_POINTER* Pointer)
{
    EFI_TPL Level = gBoot->RaiseTPL(TPL_NOTIFY);
    StopPs2Mouse(&Pointer->Ps2, ReadMicroseconds());
    gBoot->RestoreTPL(Level);
    // At the level in between, the keyboard's driver takes its bytes.
    for (UINTN Step = 0; Pointer->Ps2.State != PS2_STOPPED && Step < gSilenceSteps; Step++) {
        (void)gBoot->Stall(gSilenceStep);
        POINTER_CHANGE Change;
        Level = gBoot->RaiseTPL(TPL_NOTIFY);
        (void)PollPs2Mouse(&Pointer->Ps2, ReadMicroseconds(), &Change);
        gBoot->RestoreTPL(Level);
    }
}

VOID EndPointer(POINTER_SOURCE* This)
{
    auto* Pointer = reinterpret_cast<MACHINE_POINTER*>(This);
    if (!Pointer->InUse) {
        return;
    }
    SilencePs2Mouse(Pointer);
    ResetPointer(Pointer);
    CloseProtocolPointers();
    ForgetUsbPlaces();
    gLayer = nullptr; // it may be gone by the next start
    Report("ventara: pointer closed\n");
}

}

EFI_STATUS OpenMachinePointer(EFI_SYSTEM_TABLE* SystemTable, EFI_HANDLE Image, POINTER_SOURCE** Source)
{
    gBoot = SystemTable->BootServices;
    gPointer = {};
    gPointer.Source = {.Read = ReadPointer, .SetLimits = SetPointerLimits, .Close = EndPointer, .Place = PlacePointer};
    gPointer.Width = gDefaultWidth;
    gPointer.Height = gDefaultHeight;
    ResetPointer(&gPointer);
    constexpr PS2_PORTS Ports = {.Read = ReadPort, .Write = WritePort};
    InitializePs2Mouse(&gPointer.Ps2, &Ports);
    OpenProtocolPointers(SystemTable);
    EFI_STATUS Status = OpenUsbPointers(SystemTable, Image);
    if (EfiError(Status)) {
        CloseProtocolPointers();
        return Status;
    }
    *Source = &gPointer.Source;
    return EFI_SUCCESS;
}

VOID DescribeMachinePointer(REPORT_TEXT* Text)
{
    AddText(Text, "\nPointers\n  pointer protocols of the firmware: ");
    AddNumber(Text, CountProtocolPointers());
    AddText(Text, FirmwareDrivesPs2Mouse() ? ", the PS/2 mouse among them" : "");
    AddText(Text, "\n  USB devices driven by this driver: ");
    AddNumber(Text, CountUsbPointers());
    AddText(Text, "\n  at the keyboard controller: ");
    AddText(Text, gPointer.Ps2.State >= PS2_STREAMING ? "a PS/2 mouse\n" : "none\n");
}

VOID CloseMachinePointer()
{
    EndPointer(&gPointer.Source);
    CloseUsbPointers();
    CloseProtocolPointers();
}
