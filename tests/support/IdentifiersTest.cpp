// Identifiers have to differ and to come out, whatever the machine is like: what they are made of nobody reads.
#include "support/Identifiers.h"

#include <cstring>
#include <set>

#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"
#include "uefi/Devices.h"

namespace {

using BYTES = std::vector<UINT8>;

const BYTES gEnd = {0x7F, 0xFF, 4, 0};
const BYTES gInstanceEnd = {0x7F, 0x01, 4, 0};
const BYTES gPciNode = {1, 1, 6, 0, 0, 0x1F};

BYTES Join(std::initializer_list<BYTES> Parts)
{
    BYTES Whole;
    for (const BYTES& Part : Parts) {
        Whole.insert(Whole.end(), Part.begin(), Part.end());
    }
    return Whole;
}

BYTES MacNode(UINT8 FirstByte, UINT8 IfType)
{
    BYTES Node(37, FirstByte);
    std::copy_n(BYTES{3, 11, 37, 0}.begin(), 4, Node.begin());
    Node[36] = IfType;
    return Node;
}

UINT64 NodeOf(const EFI_GUID& Guid)
{
    UINT64 Node = 0;
    std::memcpy(&Node, Guid.Data4 + 2, 6);
    return Node;
}

// What stands in for the firmware's own services where a test says so.
EFI_TIME gTime;
UINTN gTimeReadings;
UINTN gTickAt; // the second goes on with this reading
UINTN gMapSize;
EFI_STATUS gMapStatus;

EFI_STATUS ReadSlowClock(EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities)
{
    gTime.Second = ++gTimeReadings >= gTickAt ? 6 : 5;
    *Time = gTime;
    if (Capabilities != nullptr) {
        *Capabilities = {.Resolution = 1, .Accuracy = 0, .SetsToZero = 0};
    }
    return EFI_SUCCESS;
}

EFI_STATUS ReadFastClock(EFI_TIME* Time, EFI_TIME_CAPABILITIES* Capabilities)
{
    const EFI_STATUS Status = ReadSlowClock(Time, Capabilities);
    if (Capabilities != nullptr) {
        Capabilities->Resolution = 1000;
    }
    return Status;
}

// Each allocation makes the map longer, up to a limit.
EFI_STATUS GetGrowingMap(UINTN* Size, EFI_MEMORY_DESCRIPTOR* Map, UINTN*, UINTN* DescriptorSize, UINT32*)
{
    if (EfiError(gMapStatus)) {
        return gMapStatus;
    }
    *DescriptorSize = 40;
    const bool Fits = *Size >= gMapSize;
    *Size = gMapSize;
    if (!Fits) {
        gMapSize += gMapSize < 400 ? 40 : 0;
        return EFI_BUFFER_TOO_SMALL;
    }
    std::memset(Map, 0x21, gMapSize);
    return EFI_SUCCESS;
}

struct IDENTIFIERS : HOSTED {
    IDENTIFIERS()
    {
        gGuidClock = {};
        gTime = {};
        gTimeReadings = 0;
        gTickAt = ~UINTN{0};
        gMapSize = 160;
        gMapStatus = EFI_SUCCESS;
    }
    EFI_GUID Generate()
    {
        EFI_GUID Guid = {};
        GenerateGuid(&Guid);
        EXPECT_EQ(Guid.Data3, 0x1000);
        return Guid;
    }
};

TEST_F(IDENTIFIERS, OfOneTickAllDifferWithAndWithoutANetworkCard)
{
    for (const bool WithNetwork : {false, true}) {
        Reboot({.WithNetwork = WithNetwork});
        std::set<std::pair<UINT32, UINT16>> Seen;
        for (int Nth = 0; Nth < 1000; Nth++) {
            const EFI_GUID Guid = Generate();
            Seen.insert({Guid.Data1, Guid.Data2});
            const UINT8 Card[] = {0x02, 0x56, 0x54, 0x52, 0x00, 0x01};
            EXPECT_EQ(std::memcmp(Guid.Data4 + 2, Card, 6) == 0, WithNetwork);
            EXPECT_EQ(Guid.Data4[2] >> 7, WithNetwork ? 0 : 1) << "the mark of what is no card's address";
        }
        EXPECT_EQ(Seen.size(), 1000u);
    }
}

TEST_F(IDENTIFIERS, OfAFullTickWaitForTheNext)
{
    gRT->GetTime = ReadFastClock;
    gGuidClock.SameStampCount = 0x7FFF;
    gTickAt = 11;
    (void)Generate();
    EXPECT_EQ(gGuidClock.SameStampCount, 0);
    EXPECT_EQ(gTimeReadings, 11u);
}

TEST_F(IDENTIFIERS, OfAOneSecondClockWaitForItsTickAndNotForever)
{
    gRT->GetTime = ReadSlowClock;
    (void)Generate();
    EXPECT_LT(gTimeReadings, 600u);
    gTimeReadings = 0;
    gTickAt = 5;
    (void)Generate();
    EXPECT_GE(gTimeReadings, 5u);
}

TEST_F(IDENTIFIERS, ComeOutOfBrokenDevicePaths)
{
    const UINT64 Digest = NodeOf(Generate());
    const BYTES Paths[] = {
        Join({gPciNode, {1, 1, 0, 0}, MacNode(0x40, 1), gEnd}), // a node of no length
        // A walk that went on by 2 bytes would take the rest for a node of 8 bytes and then meet the card.
        Join({gPciNode, {1, 1, 2, 0, 8, 0, 0, 0, 0, 0}, MacNode(0x40, 1), gEnd}),
        {3, 11, 10, 0, 9, 9, 9, 9, 9, 9, 0x7F, 0xFF, 4, 0},     // too short to hold its kind of network
        Join({gPciNode, gEnd, MacNode(0x50, 1)}),               // behind the end: not part of the path
        Join({gPciNode, MacNode(0x10, 2), gEnd}),               // of another kind of network
        Join({gPciNode, gInstanceEnd, MacNode(0x20, 0), gEnd}), // and the one that counts
    };
    const auto Install = [&](const BYTES& Path) {
        EFI_HANDLE Handle = nullptr;
        (void)Boot->Handles.Install(&Handle, &gEfiDevicePathProtocolGuid, const_cast<UINT8*>(Path.data()));
    };
    for (UINTN At = 0; At < 5; At++) {
        Install(Paths[At]);
        EXPECT_EQ(NodeOf(Generate()), Digest) << At;
    }
    Install(Paths[5]);
    EXPECT_EQ(NodeOf(Generate()), 0x202020202020u);
}

TEST_F(IDENTIFIERS, ComeOutWhateverBecomesOfTheMemoryMapAndOfThePool)
{
    gBS->GetMemoryMap = GetGrowingMap;
    EXPECT_NE(NodeOf(Generate()), 0u);
    EXPECT_EQ(gMapSize, 400u) << "asked for until it fits";
    gMapStatus = EFI_BUFFER_TOO_SMALL; // whatever it gets, and without asking for more
    EXPECT_EQ(NodeOf(Generate()), 0u);
    gMapStatus = EFI_DEVICE_ERROR;
    Boot->Consoles.OutputText.clear();
    const EFI_GUID First = Generate();
    EXPECT_EQ(Boot->Consoles.OutputText, "Memory map was not returned\n");
    EXPECT_EQ(NodeOf(First), 0u);
    EXPECT_NE(Generate().Data1, First.Data1);
    Boot->Pool.FailFrom = 1;
    EXPECT_EQ(NodeOf(Generate()), 0u);
}

} // namespace
