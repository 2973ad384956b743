// Pointing devices behind a firmware's protocols and USB stack, alone and merged into the machine's pointer.
#include "platform/board/ConsoleDisplay.h"
#include "platform/firmware/pointer/MachinePointer.h"
#include "platform/firmware/pointer/ProtocolPointers.h"
#include "src/uefi/Pointers.h"
#include "src/uefi/UsbIo.h"
#include "tests/firmware/MachineStandIns.h"
#include "tests/gui/ToolkitBench.h"
#include "uefi/Devices.h"

#include <deque>

namespace {

// Devices of the firmware's own. Each gives the states put into it and is not ready otherwise.
struct SIMPLE_MOUSE {
    EFI_SIMPLE_POINTER_PROTOCOL Protocol; // first, so that a pointer to it is a pointer to the whole
    EFI_SIMPLE_POINTER_MODE Mode;
    std::deque<EFI_SIMPLE_POINTER_STATE> States;
};

EFI_STATUS GetSimpleState(EFI_SIMPLE_POINTER_PROTOCOL* This, EFI_SIMPLE_POINTER_STATE* State)
{
    auto& States = reinterpret_cast<SIMPLE_MOUSE*>(This)->States;
    if (States.empty()) {
        return EFI_NOT_READY;
    }
    *State = States.front();
    States.pop_front();
    return EFI_SUCCESS;
}

struct TOUCH_SCREEN {
    EFI_ABSOLUTE_POINTER_PROTOCOL Protocol;
    EFI_ABSOLUTE_POINTER_MODE Mode;
    EFI_ABSOLUTE_POINTER_STATE State;
};

EFI_STATUS GetAbsoluteState(EFI_ABSOLUTE_POINTER_PROTOCOL* This, EFI_ABSOLUTE_POINTER_STATE* State)
{
    *State = reinterpret_cast<TOUCH_SCREEN*>(This)->State;
    return EFI_SUCCESS;
}

// A boot mouse at USB that says nothing of its reports: three bytes, buttons first. Or what its descriptor makes it.
struct USB_MOUSE {
    EFI_USB_IO_PROTOCOL Protocol;
    EFI_USB_INTERFACE_DESCRIPTOR Interface;
    EFI_ASYNC_USB_TRANSFER_CALLBACK Notify; // of the running transfer; null: none
    VOID* Context;
    int Transfers;
    std::vector<UINT8> Descriptor;

    VOID Send(std::vector<UINT8> Report)
    {
        ASSERT_NE(Notify, nullptr);
        EXPECT_EQ(Notify(Report.data(), Report.size(), Context, EFI_USB_NOERROR), EFI_SUCCESS);
    }
};

EFI_STATUS Control(EFI_USB_IO_PROTOCOL* This, EFI_USB_DEVICE_REQUEST*, EFI_USB_DATA_DIRECTION Direction, UINT32,
                   VOID* Data, UINTN Size, UINT32*)
{
    const auto& Descriptor = reinterpret_cast<USB_MOUSE*>(This)->Descriptor;
    if (Direction != EfiUsbDataIn || Descriptor.empty()) {
        return EFI_DEVICE_ERROR;
    }
    std::copy_n(Descriptor.begin(), std::min<UINTN>(Size, Descriptor.size()), static_cast<UINT8*>(Data));
    return EFI_SUCCESS;
}

EFI_STATUS Transfer(EFI_USB_IO_PROTOCOL* This, UINT8, BOOLEAN IsNew, UINTN, UINTN,
                    EFI_ASYNC_USB_TRANSFER_CALLBACK Notify, VOID* Context)
{
    auto* Mouse = reinterpret_cast<USB_MOUSE*>(This);
    Mouse->Notify = IsNew ? Notify : nullptr;
    Mouse->Context = Context;
    Mouse->Transfers += IsNew;
    return EFI_SUCCESS;
}

EFI_STATUS GetInterface(EFI_USB_IO_PROTOCOL* This, EFI_USB_INTERFACE_DESCRIPTOR* Descriptor)
{
    *Descriptor = reinterpret_cast<USB_MOUSE*>(This)->Interface;
    return EFI_SUCCESS;
}

EFI_STATUS GetEndpoint(EFI_USB_IO_PROTOCOL*, UINT8, EFI_USB_ENDPOINT_DESCRIPTOR* Descriptor)
{
    *Descriptor = {
        .Length = 7, .DescriptorType = 5, .EndpointAddress = 0x81, .Attributes = 3, .MaxPacketSize = 8, .Interval = 10};
    return EFI_SUCCESS;
}

struct ACPI_PATH {
    UINT8 Bytes[12]; // a plain ACPI node
    UINT8 End[4];
};
constexpr ACPI_PATH PathOfPnp(UINT16 Name, UINT8 Length = 12)
{
    return {{2, 1, Length, 0, 0xD0, 0x41, static_cast<UINT8>(Name), static_cast<UINT8>(Name >> 8)}, {0x7F, 0xFF, 4, 0}};
}
ACPI_PATH gSomePath = PathOfPnp(0x0A03);

struct Pointers : HOSTED {
    Pointers() { Begin(); }

    VOID Begin()
    {
        Reboot({});
        gMicroseconds = 1000000;
        gReported.clear();
        OpenProtocolPointers(&Boot->FirmwareTable);
    }

    EFI_HANDLE Plug(SIMPLE_MOUSE* Mouse, ACPI_PATH* Path = &gSomePath)
    {
        Mouse->Protocol = {.Reset = nullptr, .GetState = GetSimpleState, .WaitForInput = nullptr, .Mode = &Mouse->Mode};
        return Plug(gEfiSimplePointerProtocolGuid, Mouse, Path);
    }
    EFI_HANDLE Plug(TOUCH_SCREEN* Screen)
    {
        Screen->Protocol = {
            .Reset = nullptr, .GetState = GetAbsoluteState, .WaitForInput = nullptr, .Mode = &Screen->Mode};
        return Plug(gEfiAbsolutePointerProtocolGuid, Screen, &gSomePath);
    }
    EFI_HANDLE Plug(const EFI_GUID& Guid, VOID* Device, ACPI_PATH* Path)
    {
        EFI_HANDLE Handle = nullptr;
        Put(&Handle, Guid, Device);
        if (Path != nullptr) {
            Put(&Handle, gEfiDevicePathProtocolGuid, Path);
        }
        return Handle;
    }
    VOID Put(EFI_HANDLE* Handle, const EFI_GUID& Guid, VOID* Interface)
    {
        EXPECT_EQ(Boot->Handles.Install(Handle, &Guid, Interface), EFI_SUCCESS);
    }
    // Takes the protocol away, as a driver does whose device is gone.
    VOID Take(EFI_HANDLE Handle, const EFI_GUID& Guid, VOID* Interface)
    {
        EXPECT_EQ(Boot->Handles.Uninstall(Handle, &Guid, Interface), EFI_SUCCESS);
    }
    POINTER_CHANGE Poll()
    {
        POINTER_CHANGE Change = {};
        Reported = PollProtocolPointers(gMicroseconds, &Change);
        return Change;
    }
    POINTER_CHANGE PollASecondLater()
    {
        gMicroseconds += 1000000;
        return Poll();
    }

    bool Reported = false;
};

TEST_F(Pointers, AMouseGoesEightPixelsAMillimetreAndLosesNoPartOfAPixel)
{
    struct {
        UINT64 Resolution; // counts a millimetre
        INT32 Way;         // told four times
        INT64 Pixels;      // in all
    } const Cases[] = {{8, 3, 12},     {16, 3, 6}, {16, -3, -6}, {400, 25, 2},
                       {400, -75, -6}, {4, 1, 8},  {0, 5, 20},   {~0ull, 5, 20}};
    for (const auto& Case : Cases) {
        Begin();
        SIMPLE_MOUSE Mouse = {};
        Mouse.Mode = {.ResolutionX = Case.Resolution, .ResolutionY = Case.Resolution};
        Plug(&Mouse);
        POINTER_CHANGE Sum = {};
        for (int Time = 0; Time < 4; Time++) {
            Mouse.States.push_back({.RelativeMovementX = Case.Way, .RelativeMovementY = -Case.Way});
            const POINTER_CHANGE Change = Poll();
            EXPECT_FALSE(Change.Absolute);
            Sum.X += Change.X;
            Sum.Y += Change.Y;
        }
        EXPECT_EQ(Sum.X, Case.Pixels) << Case.Resolution << " counts a millimetre, " << Case.Way;
        EXPECT_EQ(Sum.Y, -Case.Pixels);
    }
}

TEST_F(Pointers, APlaceIsItsShareOfTheRange)
{
    struct {
        UINT64 Minimum, Maximum, Place;
        INT64 Share; // -1: not read
    } const Cases[] = {{0, 1023, 0, 0},
                       {0, 1023, 1023, gFullScale},
                       {100, 300, 200, gFullScale / 2},
                       {100, 300, 99, 0},
                       {100, 300, 999, gFullScale},
                       {0, ~0ull, 1ull << 63, gFullScale / 2},
                       {0, 0, 0, -1},
                       {5, 4, 4, -1}};
    for (const auto& Case : Cases) {
        Begin();
        TOUCH_SCREEN Screen = {};
        Screen.Mode = {.AbsoluteMinX = Case.Minimum,
                       .AbsoluteMinY = Case.Minimum,
                       .AbsoluteMaxX = Case.Maximum,
                       .AbsoluteMaxY = Case.Maximum};
        Screen.State = {.CurrentX = Case.Place, .CurrentY = Case.Place, .CurrentZ = 0, .ActiveButtons = 3};
        Plug(&Screen);
        const POINTER_CHANGE Change = Poll();
        EXPECT_EQ(Reported, Case.Share >= 0);
        if (Reported) {
            EXPECT_TRUE(Change.Absolute);
            EXPECT_NEAR(static_cast<double>(Change.X), static_cast<double>(Case.Share), 1);
            EXPECT_EQ(Change.X, Change.Y);
            EXPECT_EQ(Change.Left + Change.Right, 2);
        }
    }
}

TEST_F(Pointers, AMouseThatIsPulledOutHasNoButtonDownAndIsNotAskedAgain)
{
    SIMPLE_MOUSE Pulled = {}, Other = {};
    EFI_HANDLE Handle = Plug(&Pulled);
    Plug(&Other);
    Pulled.States.push_back({.LeftButton = 1});
    EXPECT_EQ(Poll().Left, 1);
    Other.States.push_back({.RelativeMovementX = 2});
    EXPECT_EQ(Poll().Left, 1) << "another mouse reports meanwhile";
    Take(Handle, gEfiSimplePointerProtocolGuid, &Pulled);
    Pulled.States.push_back({.LeftButton = 1}); // where the driver's record was
    EXPECT_EQ(Poll().Left, 0);
    EXPECT_EQ(PollASecondLater().Left, 0);
    EXPECT_EQ(Pulled.States.size(), 1u);
    // It comes back on its handle, as another record.
    SIMPLE_MOUSE Back = {};
    Back.Protocol = {.Reset = nullptr, .GetState = GetSimpleState, .WaitForInput = nullptr, .Mode = &Back.Mode};
    Put(&Handle, gEfiSimplePointerProtocolGuid, &Back);
    Back.States.push_back({.LeftButton = 1});
    EXPECT_EQ(PollASecondLater().Left, 1);
}

TEST_F(Pointers, AMouseThatComesLateIsFoundWithinASecondAndTakesTurnsWithTheOthers)
{
    Poll();
    SIMPLE_MOUSE One = {}, Two = {};
    Plug(&One);
    Plug(&Two);
    for (int Time = 0; Time < 3; Time++) {
        One.States.push_back({.RelativeMovementX = 1});
    }
    Two.States.push_back({.RelativeMovementX = 100});
    PollASecondLater();
    EXPECT_TRUE(Reported);
    Poll();
    EXPECT_TRUE(Two.States.empty()) << "one that moves all the time doesn't silence the other";
}

TEST_F(Pointers, WhatStandsForAllDevicesIsAskedOnlyWhereNoDeviceIsKnown)
{
    SIMPLE_MOUSE All = {}, Mouse = {};
    Plug(&All, nullptr);
    All.States.push_back({.RelativeMovementX = 1});
    Poll();
    EXPECT_TRUE(All.States.empty());
    Plug(&Mouse);
    All.States.push_back({.RelativeMovementX = 1});
    PollASecondLater();
    EXPECT_FALSE(Reported);
    EXPECT_EQ(All.States.size(), 1u);
}

TEST_F(Pointers, AMouseOfTheFirmwareAtTheKeyboardControllerIsKnownByItsPath)
{
    for (auto [Name, Length, IsMouse] :
         {std::tuple{0x0F13, 12, true}, {0x0F03, 12, true}, {0x0303, 12, false}, {0x0F13, 2, false}}) {
        Begin();
        ACPI_PATH Path = PathOfPnp(static_cast<UINT16>(Name), static_cast<UINT8>(Length));
        SIMPLE_MOUSE Mouse = {};
        Plug(&Mouse, &Path);
        Poll();
        EXPECT_EQ(FirmwareDrivesPs2Mouse(), IsMouse) << Name;
    }
}

// The machine's pointer, with USB devices as the firmware's stack hands them over.
struct MachinePointer : Pointers {
    MachinePointer()
    {
        const EFI_HANDLE Image = Plug(gEfiDevicePathProtocolGuid, &gSomePath, nullptr);
        EXPECT_EQ(OpenMachinePointer(&Boot->FirmwareTable, Image, &Source), EFI_SUCCESS);
    }
    ~MachinePointer() override { CloseMachinePointer(); }

    EFI_DRIVER_BINDING_PROTOCOL* Driver()
    {
        VOID* Interface = nullptr;
        EXPECT_EQ(Boot->Handles.Locate(&gEfiDriverBindingProtocolGuid, &Interface), EFI_SUCCESS);
        return static_cast<EFI_DRIVER_BINDING_PROTOCOL*>(Interface);
    }
    bool IsDriven(EFI_HANDLE Handle) { return !Boot->Handles.Uses(Handle, &gEfiUsbIoProtocolGuid)->empty(); }
    // What the driver makes of an interface of that class, sub-class and protocol.
    EFI_HANDLE PlugUsb(USB_MOUSE* Device, UINT8 Class = 3, UINT8 SubClass = 1, UINT8 Protocol = 2)
    {
        Device->Protocol.UsbControlTransfer = Control;
        Device->Protocol.UsbAsyncInterruptTransfer = Transfer;
        Device->Protocol.UsbGetInterfaceDescriptor = GetInterface;
        Device->Protocol.UsbGetEndpointDescriptor = GetEndpoint;
        Device->Interface = {
            .NumEndpoints = 1, .InterfaceClass = Class, .InterfaceSubClass = SubClass, .InterfaceProtocol = Protocol};
        const EFI_HANDLE Handle = Plug(gEfiUsbIoProtocolGuid, &Device->Protocol, nullptr);
        if (!EfiError(Driver()->Supported(Driver(), Handle, nullptr))) {
            (void)Driver()->Start(Driver(), Handle, nullptr);
        }
        return Handle;
    }
    // Reads as a turn of the console does, 5 ms after the one before.
    UINT8 Read()
    {
        gMicroseconds += 5000;
        Source->Read(Source, &X, &Y, &Left, &Right);
        return Left;
    }

    USB_MOUSE Mouse = {}, One = {}, Two = {};
    POINTER_SOURCE* Source = nullptr;
    INT64 X = 0, Y = 0;
    UINT8 Left = 0, Right = 0;
};

TEST_F(MachinePointer, APressAndItsReleaseAreSeenHoweverFastAndTheReleaseForTwoReads)
{
    PlugUsb(&Mouse);
    Read();
    Mouse.Send({1, 0, 0});
    Mouse.Send({0, 7, 0});
    Mouse.Send({1, 0, 0});
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(Read(), 1);
    EXPECT_EQ(X, 512 + 7);
    EXPECT_NE(gReported.find("ventara: left button up after 5 ms\n"), std::string::npos) << gReported;
}

TEST_F(MachinePointer, AButtonIsDownWhileAnyDeviceHoldsItAndUpWhenThatOneIsGone)
{
    EFI_HANDLE Handle = PlugUsb(&One);
    PlugUsb(&Two);
    SIMPLE_MOUSE Third = {};
    Plug(&Third);
    Read();
    Two.Send({1, 0, 0});
    EXPECT_EQ(Read(), 1);
    One.Send({1, 0, 0});
    EXPECT_EQ(Read(), 1);
    Two.Send({0, 0, 0});
    Third.States.push_back({.RelativeMovementX = 3});
    for (int Time = 0; Time < 4; Time++) {
        EXPECT_EQ(Read(), 1) << "the first holds it";
    }
    One.Send({1, 100, 0}); // not read any more
    EXPECT_EQ(Driver()->Stop(Driver(), Handle, 0, nullptr), EFI_SUCCESS);
    EXPECT_EQ(Read(), 0);
    EXPECT_EQ(X, 512 + 3);
    EXPECT_FALSE(IsDriven(Handle)) << "given back to the firmware";
    EXPECT_EQ(One.Notify, nullptr);
}

TEST_F(MachinePointer, ATransferThatFailedHoldsNoButtonAndIsSetUpAgain)
{
    PlugUsb(&Mouse);
    Read();
    Mouse.Send({1, 0, 0});
    EXPECT_EQ(Read(), 1);
    (void)Mouse.Notify(nullptr, 0, Mouse.Context, EFI_USB_ERR_STALL);
    EXPECT_EQ(Read(), 0);
    for (int Time = 0; Time < 25; Time++) {
        Read();
    }
    EXPECT_EQ(Mouse.Transfers, 2);
    Mouse.Send({1, 0, 0});
    EXPECT_EQ(Read(), 1);
}

TEST_F(MachinePointer, ReportsThatNobodyTakesLeaveTheNewestButtons)
{
    PlugUsb(&Mouse);
    Read();
    for (int Time = 0; Time < 200; Time++) {
        Mouse.Send({1, 1, 0});
    }
    Mouse.Send({0, 0, 0});
    for (int Time = 0; Time < 20; Time++) {
        Read();
    }
    EXPECT_EQ(Left, 0);
    EXPECT_GT(X, 512 + 50);
}

TEST_F(MachinePointer, WhatIsNoMouseIsLeftAlone)
{
    struct {
        UINT8 Class, SubClass, Protocol;
    } const Others[] = {
        {3, 1, 1}, {8, 6, 0x50}, {3, 0, 0}}; // a keyboard, a stick, a device that says nothing of itself
    for (const auto& Other : Others) {
        USB_MOUSE Device = {};
        EFI_HANDLE Handle = PlugUsb(&Device, Other.Class, Other.SubClass, Other.Protocol);
        EXPECT_EQ(Device.Notify, nullptr) << int{Other.Class} << int{Other.Protocol};
        EXPECT_FALSE(IsDriven(Handle));
    }
    PlugUsb(&Mouse);
    EXPECT_NE(Mouse.Notify, nullptr);
}

TEST_F(MachinePointer, WaysEndAtTheEdgesAndPlacesReachThem)
{
    TOUCH_SCREEN Screen = {};
    Screen.Mode = {.AbsoluteMaxX = 1000, .AbsoluteMaxY = 1000};
    Screen.State = {.CurrentX = 1000, .CurrentY = 1000};
    EFI_HANDLE Handle = Plug(&Screen);
    Read();
    EXPECT_EQ((std::pair{X, Y}), (std::pair<INT64, INT64>{1023, 767}));
    Take(Handle, gEfiAbsolutePointerProtocolGuid, &Screen);
    SIMPLE_MOUSE Ways = {};
    Plug(&Ways);
    gMicroseconds += 2000000;
    Ways.States.push_back({.RelativeMovementX = -5000, .RelativeMovementY = 10});
    Read();
    EXPECT_EQ((std::pair{X, Y}), (std::pair<INT64, INT64>{0, 767}));
    Source->SetLimits(Source, 640, 480);
    Read();
    EXPECT_EQ((std::pair{X, Y}), (std::pair<INT64, INT64>{0, 479}));
}

TEST_F(MachinePointer, OfTwoTabletsTheOneThatMovedLastHasThePointerAndItsWaysCountOnce)
{
    TOUCH_SCREEN Moved = {}, Resting = {};
    Moved.Mode = Resting.Mode = {.AbsoluteMaxX = 1023, .AbsoluteMaxY = 767};
    Resting.State = {.CurrentX = 900, .CurrentY = 700};
    EFI_HANDLE Handle = Plug(&Moved);
    Plug(&Resting);
    SIMPLE_MOUSE Ways = {};
    Ways.Protocol = {.Reset = nullptr, .GetState = GetSimpleState, .WaitForInput = nullptr, .Mode = &Ways.Mode};
    Put(&Handle, gEfiSimplePointerProtocolGuid, &Ways);
    Ways.States.push_back({.RelativeMovementX = 50});
    Read();
    Moved.State = {.CurrentX = 200, .CurrentY = 100};
    for (int Time = 0; Time < 4; Time++) {
        Read();
        EXPECT_EQ((std::pair{X, Y}), (std::pair<INT64, INT64>{200, 100}));
    }
    EXPECT_EQ(Ways.States.size(), 1u) << "the same device by its other protocol";
}

TEST_F(MachinePointer, EachUsbTabletHasARestOfItsOwnThatEndsWithItAndWithTheConsole)
{
    const std::vector<UINT8> Quarter = {0, 0, 0x20, 0, 0x20}, ThreeQuarters = {0, 0, 0x60, 0, 0x60};
    One.Descriptor = Two.Descriptor = gTablet;
    EFI_HANDLE Handle = PlugUsb(&One);
    PlugUsb(&Two);
    PlugUsb(&Mouse);
    Read();
    One.Send(Quarter);
    Two.Send(ThreeQuarters);
    Read();
    EXPECT_EQ(X, 767);
    Mouse.Send({0, 10, 0});
    One.Send(Quarter);
    Two.Send(ThreeQuarters);
    Read();
    EXPECT_EQ(X, 777) << "both rest";
    Mouse.Send({1, 0, 0});
    Read();
    One.Send(Quarter);
    Read();
    EXPECT_EQ(X, 777) << "also while another device is pressed";
    Two.Send({1, 0, 0x60, 0, 0x60});
    Read();
    EXPECT_EQ(X, 767) << "a tap at the same place";
    EXPECT_EQ(Driver()->Stop(Driver(), Handle, 0, nullptr), EFI_SUCCESS);
    PlugUsb(&One);
    One.Send(Quarter);
    Read();
    EXPECT_EQ(X, 256) << "the first report, where the one that is gone was";
    Source->Close(Source);
    One.Send(Quarter);
    Read();
    EXPECT_EQ(X, 256);
}

TEST_F(MachinePointer, AFingerPointsAtWhatIsUnderItAtAnyScaleAndAMouseGoesAsFast)
{
    struct {
        CONSOLE_DISPLAY Panel; // its size, and where the picture is on it
        UINT64 FingerX, FingerY;
        INT64 X, Y;
    } const Cases[] = {
        // Doubled: pixel 100, 200 is the square from 1096, 712 on.
        {{nullptr, nullptr, 3840, 2160, 896, 312, 2048, 1536}, 1097, 713, 100, 200},
        {{nullptr, nullptr, 3840, 2160, 896, 312, 2048, 1536}, 2943, 1847, 1023, 767},
        {{nullptr, nullptr, 3840, 2160, 896, 312, 2048, 1536}, 100, 2100, 0, 767}, // beside the picture: its nearest
        {{nullptr, nullptr, 1280, 1024, 128, 128, 1024, 768}, 128 + 640, 128 + 480, 640, 480},
        {{nullptr, nullptr, 800, 600, 0, 0, 800, 600}, 400, 300, 512, 384}, // fitted down, 1.28 to 1
        {{nullptr, nullptr, 640, 480, 0, 0, 640, 480}, 5, 475, 8, 760},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.Panel.PanelWidth);
        CONSOLE_DISPLAY Panel = Case.Panel;
        EFI_HANDLE Layer = nullptr;
        Put(&Layer, gConsoleDisplayGuid, &Panel);
        TOUCH_SCREEN Screen = {};
        Screen.Mode = {.AbsoluteMaxX = Panel.PanelWidth - 1, .AbsoluteMaxY = Panel.PanelHeight - 1};
        Screen.State = {.CurrentX = Case.FingerX, .CurrentY = Case.FingerY};
        const EFI_HANDLE Handle = Plug(&Screen);
        gMicroseconds += 2000000;
        Read();
        EXPECT_EQ((std::pair{X, Y}), (std::pair{Case.X, Case.Y}));
        // The finger rests, and is reported again and again.
        Source->Place(Source, 300, 300);
        Read();
        EXPECT_EQ((std::pair{X, Y}), (std::pair<INT64, INT64>{300, 300}));
        Screen.State.ActiveButtons = EFI_ABSP_TouchActive;
        Read();
        EXPECT_EQ((std::pair{X, Y}), (std::pair{Case.X, Case.Y})) << "a tap at the same place";
        Take(Handle, gEfiAbsolutePointerProtocolGuid, &Screen);

        SIMPLE_MOUSE Ways = {};
        const EFI_HANDLE OfMouse = Plug(&Ways);
        gMicroseconds += 2000000;
        Source->Place(Source, 300, 300);
        Ways.States.push_back({.RelativeMovementX = 30, .RelativeMovementY = -20});
        Read();
        EXPECT_EQ((std::pair{X, Y}), (std::pair<INT64, INT64>{330, 280})) << "the console's pixels, whatever the scale";
        Take(OfMouse, gEfiSimplePointerProtocolGuid, &Ways);
        Source->Close(Source);
        Take(Layer, gConsoleDisplayGuid, &Panel);
        gMicroseconds += 2000000;
    }
}

TEST_F(MachinePointer, EachStartBeginsInTheMiddleWithNothingThatCameBefore)
{
    PlugUsb(&Mouse);
    for (int Start = 0; Start < 2; Start++) {
        Mouse.Send({0, 100, 100});
        Read();
        EXPECT_EQ((std::pair{X, Y}), (std::pair<INT64, INT64>{512, 384}));
        Mouse.Send({1, 10, 0});
        EXPECT_EQ(Read(), 1);
        EXPECT_EQ(X, 522);
        Source->Close(Source);
    }
}

}
