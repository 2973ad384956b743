#include <gtest/gtest.h>

#include <openssl/md5.h>

#include <algorithm>
#include <array>
#include <deque>

#include "FakeFirmware.h"
#include "support/Identifiers.h"
#include "uefi/Devices.h"

namespace {

using BYTES = std::vector<UINT8>;

const BYTES gEnd = {0x7F, 0xFF, 4, 0};
const BYTES gInstanceEnd = {0x7F, 0x01, 4, 0};
const BYTES gPciNode = {1, 1, 6, 0, 0, 0x1F};
const BYTES gPartitionNode = {4, 1, 4, 0};

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
    BYTES Node(37, 0);
    Node[0] = 3;
    Node[1] = 11;
    Node[2] = 37;
    for (UINT8 Index = 0; Index < 6; ++Index) {
        Node[4 + Index] = static_cast<UINT8>(FirstByte + Index);
    }
    Node[36] = IfType;
    return Node;
}

using NODE = std::array<UINT8, 6>;

NODE NodeOf(const EFI_GUID& Guid)
{
    NODE Node;
    std::copy(Guid.Data4 + 2, Guid.Data4 + 8, Node.begin());
    return Node;
}

class Identifiers : public testing::Test {
protected:
    Identifiers() { gGuidClock = {}; }
    ~Identifiers() override { EXPECT_TRUE(Firmware.Blocks.empty()); }

    EFI_GUID Generate()
    {
        EFI_GUID Guid = {};
        GenerateGuid(&Guid);
        return Guid;
    }

    VOID AddPath(UINTN Handle, BYTES Path)
    {
        mPaths.push_back(std::move(Path));
        Firmware.Install(HandleOf(Handle), gEfiDevicePathProtocolGuid, mPaths.back().data());
    }

    VOID AddDisk(UINTN Handle, bool Removable = false, bool Present = true, bool ReadOnly = false)
    {
        EFI_BLOCK_IO_MEDIA& Media = mMedia.emplace_back();
        Media.RemovableMedia = Removable;
        Media.MediaPresent = Present;
        Media.ReadOnly = ReadOnly;
        EFI_BLOCK_IO_PROTOCOL& BlockIo = mBlockIos.emplace_back();
        BlockIo.Media = &Media;
        Firmware.Install(HandleOf(Handle), gEfiBlockIoProtocolGuid, &BlockIo);
    }

    // The node that a digest of the memory map, these handles and the time gives.
    NODE DigestNode(const std::vector<UINTN>& HandlesLastFirst, bool WithTime = true)
    {
        BYTES Traits = Firmware.MemoryMap;
        const auto Append = [&Traits](const VOID* Data, std::size_t Size) {
            const UINT8* Bytes = static_cast<const UINT8*>(Data);
            Traits.insert(Traits.end(), Bytes, Bytes + Size);
        };
        for (UINTN Handle : HandlesLastFirst) {
            Append(&Handle, 8);
        }
        if (WithTime) {
            Append(&Firmware.Time, 16);
        }
        UINT8 D[16];
        MD5(Traits.data(), Traits.size(), D);
        return {static_cast<UINT8>((D[0] ^ D[6] ^ D[12]) | 0x80), static_cast<UINT8>(D[1] ^ D[7] ^ D[13]),
                static_cast<UINT8>(D[2] ^ D[8] ^ D[14]),          static_cast<UINT8>(D[3] ^ D[9] ^ D[15]),
                static_cast<UINT8>(D[4] ^ D[10]),                 static_cast<UINT8>(D[5] ^ D[11])};
    }

    static EFI_HANDLE HandleOf(UINTN Value) { return reinterpret_cast<EFI_HANDLE>(Value); }

    FakeFirmware Firmware;

private:
    std::deque<BYTES> mPaths;
    std::deque<EFI_BLOCK_IO_MEDIA> mMedia;
    std::deque<EFI_BLOCK_IO_PROTOCOL> mBlockIos;
};

TEST_F(Identifiers, TheFieldsTellStampSequenceAndNode)
{
    AddPath(1, Join({gPciNode, MacNode(0x02, 1), gEnd}));
    Firmware.Time.Second = 59;
    Firmware.Time.Nanosecond = 999999999;
    const EFI_GUID Guid = Generate();
    // One more than the clock says, since the clock stood still between the two readings of an identifier.
    const UINT64 Stamp = 5900 + 9999999990 + 0x01B21DD213814000 + 1;
    EXPECT_EQ(Guid.Data1, static_cast<UINT32>(Stamp));
    EXPECT_EQ(Guid.Data2, static_cast<UINT16>(Stamp >> 32));
    EXPECT_EQ(Guid.Data3, 0x1000);
    EXPECT_EQ(NodeOf(Guid), (NODE{2, 3, 4, 5, 6, 7}));
}

TEST_F(Identifiers, TheFirstDrawFromZeroTimeCountAndHandleIs0FAA)
{
    // 4181 * 978 + 178261 + 13020 = 4280299 = 0x414FEB, and 0x41 xor 0x0FEB = 0x0FAA.
    AddPath(1, Join({MacNode(2, 1), gEnd}));
    EXPECT_EQ(Generate().Data4[1], 0xAA);
    EXPECT_EQ(gGuidClock.ClockSequence, 0x0FAA);
}

TEST_F(Identifiers, TheImageHandleAndTheCountEnterTheSequenceWithTheirLow32Bits)
{
    AddPath(1, Join({MacNode(2, 1), gEnd}));
    Firmware.MonotonicCount = 77;
    (void)Generate();
    const UINT16 Sequence = gGuidClock.ClockSequence;
    EXPECT_NE(Sequence, 0x0FAA);
    Firmware.MonotonicCount = 0xAAAA00000000 + 70;
    gImageHandle = HandleOf(0xBBBB00000007);
    (void)Generate();
    EXPECT_EQ(gGuidClock.ClockSequence, Sequence);
}

TEST_F(Identifiers, IdentifiersWithinOneTickDifferByTheirPlaceInIt)
{
    const EFI_GUID First = Generate();
    const EFI_GUID Second = Generate();
    const EFI_GUID Third = Generate();
    EXPECT_EQ(Second.Data1, First.Data1 + 1);
    EXPECT_EQ(Third.Data1, First.Data1 + 2);
    EXPECT_EQ(First.Data2, Second.Data2);
}

TEST_F(Identifiers, AClockThatMovesStartsTheCountAnew)
{
    (void)Generate();
    ASSERT_EQ(gGuidClock.SameStampCount, 1);
    Firmware.AfterTimeReading = [this](UINTN) { Firmware.Time.Nanosecond += 100; };
    (void)Generate();
    EXPECT_EQ(gGuidClock.SameStampCount, 0);
}

TEST_F(Identifiers, AFullStampIsLeftOnlyWhenTheClockMoves)
{
    AddPath(1, Join({MacNode(2, 1), gEnd}));
    gGuidClock.SameStampCount = 0x7FFF;
    Firmware.AfterTimeReading = [this](UINTN Readings) { Firmware.Time.Second = Readings < 10 ? 5 : 6; };
    Firmware.Time.Second = 5;
    const EFI_GUID Guid = Generate();
    EXPECT_EQ(gGuidClock.SameStampCount, 0);
    EXPECT_EQ(Guid.Data1, 0x13814000u + 600);
    EXPECT_EQ(Firmware.TimeReadings, 11u);
}

TEST_F(Identifiers, AClockThatRunsBackwardsRaisesTheSequenceButNeverToZero)
{
    AddPath(1, Join({MacNode(2, 1), gEnd}));
    const auto RunBackwards = [this] {
        // Seed, Last, Now: the third reading is the earlier one.
        const UINTN Start = Firmware.TimeReadings;
        Firmware.Time.Second = 30;
        Firmware.AfterTimeReading = [this, Start](UINTN Readings) {
            Firmware.Time.Second = Readings - Start == 2 ? 20 : 30;
        };
        (void)Generate();
        Firmware.AfterTimeReading = nullptr;
        return gGuidClock.ClockSequence;
    };
    Firmware.Time.Second = 30;
    bool SeenTop = false;
    for (Firmware.MonotonicCount = 0; Firmware.MonotonicCount < 400000 && !SeenTop; ++Firmware.MonotonicCount) {
        (void)Generate();
        const UINT16 Drawn = gGuidClock.ClockSequence;
        SeenTop = (Drawn & 0x3FFF) == 0x3FFF;
        if (SeenTop) {
            EXPECT_EQ(RunBackwards(), 1);
        } else if (Firmware.MonotonicCount < 5) {
            EXPECT_EQ(RunBackwards(), (Drawn & 0x3FFF) + 1);
            EXPECT_EQ(gGuidClock.SameStampCount, 0);
        }
        if (gGuidClock.SameStampCount > 1000) {
            gGuidClock.SameStampCount = 0;
        }
    }
    EXPECT_TRUE(SeenTop);
}

TEST_F(Identifiers, TheByteThatNothingReadsVaries)
{
    std::set<UINT8> Seen;
    for (Firmware.MonotonicCount = 0; Firmware.MonotonicCount < 32; ++Firmware.MonotonicCount) {
        Seen.insert(Generate().Data4[0]);
    }
    EXPECT_GT(Seen.size(), 8u);
}

TEST_F(Identifiers, AOneSecondClockIsReadUntilItTicksAndNotForever)
{
    AddPath(1, Join({MacNode(2, 1), gEnd}));
    Firmware.ClockResolution = 1;
    // One for the seed, then twice a first reading and 257 more.
    (void)Generate();
    EXPECT_EQ(Firmware.TimeReadings, 1 + 2 * (1 + 257u));

    // A tick after the fifth and the eighth reading: each wait ends with the first reading behind its tick.
    Firmware.TimeReadings = 0;
    Firmware.Time.Second = 10;
    Firmware.AfterTimeReading = [this](UINTN Readings) {
        Firmware.Time.Second = static_cast<UINT8>(10 + (Readings >= 5) + (Readings >= 8));
    };
    const EFI_GUID Guid = Generate();
    EXPECT_EQ(Firmware.TimeReadings, 9u);
    EXPECT_EQ(Guid.Data1, 0x13814000u + 1200);
}

TEST_F(Identifiers, TheFirmwareIsAskedInOrder)
{
    (void)Generate();
    EXPECT_EQ(Firmware.Calls,
              (std::vector<std::string>{"LocateHandle", "GetTime", "GetNextMonotonicCount", "GetTime", "LocateHandle",
                                        "GetMemoryMap", "GetTime", "GetTime"}));
    EXPECT_EQ(Firmware.AllocatedSizes, (std::vector<UINTN>{400, 400, 40, 40 + 16}));
}

TEST_F(Identifiers, TheFirstMacAddressOfAKnownKindIsTheNode)
{
    AddPath(1, Join({gPciNode, gEnd, MacNode(0x50, 1)})); // behind the end: not part of the path
    AddPath(2, Join({gPciNode, MacNode(0x10, 2), gInstanceEnd, MacNode(0x20, 0), gEnd}));
    AddPath(3, Join({MacNode(0x30, 1), gEnd}));
    const NODE Expected = {0x20, 0x21, 0x22, 0x23, 0x24, 0x25};
    EXPECT_EQ(NodeOf(Generate()), Expected);
    EXPECT_EQ(NodeOf(Generate()), Expected);
    EXPECT_EQ(std::count(Firmware.Calls.begin(), Firmware.Calls.end(), "GetMemoryMap"), 0);
}

TEST_F(Identifiers, BrokenPathsEndTheWalkInsteadOfHoldingIt)
{
    AddPath(1, Join({gPciNode, {1, 1, 0, 0}, MacNode(0x40, 1), gEnd}));
    // A walk that went on by 2 bytes would take the rest for a node of 8 bytes and then meet the card.
    AddPath(2, Join({gPciNode, {1, 1, 2, 0, 8, 0, 0, 0, 0, 0}, MacNode(0x40, 1), gEnd}));
    AddPath(3, {3, 11, 10, 0, 9, 9, 9, 9, 9, 9, 0x7F, 0xFF, 4, 0}); // too short to hold an IfType
    AddDisk(1);
    EXPECT_EQ(NodeOf(Generate()), DigestNode({1}));
}

TEST_F(Identifiers, WithoutANetworkCardTheNodeIsADigestOfMapDisksAndTime)
{
    // Descriptors larger than the record we know.
    Firmware.DescriptorSize = 48;
    Firmware.MemoryMap.assign(3 * 48, 0);
    for (UINTN Index = 0; Index < Firmware.MemoryMap.size(); ++Index) {
        Firmware.MemoryMap[Index] = static_cast<UINT8>(Index * 7);
    }
    Firmware.Time = {.Year = 2011, .Month = 12, .Day = 31, .Hour = 23, .Minute = 58, .Second = 57, .Pad1 = 0,
                     .Nanosecond = 123456789, .TimeZone = -60, .Daylight = 1, .Pad2 = 0};
    AddDisk(0x1111);
    AddDisk(0x2222);
    EXPECT_EQ(NodeOf(Generate()), DigestNode({0x2222, 0x1111}));
    Firmware.TimeStatus = EFI_DEVICE_ERROR;
    EXPECT_EQ(NodeOf(Generate()), DigestNode({0x2222, 0x1111}, false));
}

TEST_F(Identifiers, OnlyWholeFixedWritableDisksCount)
{
    const struct {
        const char* Story;
        bool Removable, Present, ReadOnly;
        BYTES Path; // empty: none
        bool Counts;
    } Cases[] = {
        {"no path", false, true, false, {}, true},
        {"whole disk", false, true, false, Join({gPciNode, gEnd}), true},
        {"removable", true, true, false, Join({gPciNode, gEnd}), false},
        {"empty", false, false, false, Join({gPciNode, gEnd}), false},
        {"read-only", false, true, true, Join({gPciNode, gEnd}), false},
        {"partition", false, true, false, Join({gPciNode, gPartitionNode, gEnd}), false},
        {"partition of a second instance", false, true, false,
         Join({gPciNode, gInstanceEnd, gPciNode, gPartitionNode, gEnd}), false},
        {"media node behind the end", false, true, false, Join({gPciNode, gEnd, gPartitionNode}), true},
    };
    std::vector<UINTN> Counting;
    UINTN Handle = 0x1000;
    for (const auto& Case : Cases) {
        Handle += 0x10;
        AddDisk(Handle, Case.Removable, Case.Present, Case.ReadOnly);
        if (!Case.Path.empty()) {
            AddPath(Handle, Case.Path);
        }
        if (Case.Counts) {
            Counting.insert(Counting.begin(), Handle);
        }
        ASSERT_EQ(NodeOf(Generate()), DigestNode(Counting)) << Case.Story;
    }
}

TEST_F(Identifiers, MoreHandlesThanTheFirstBufferHoldsTakeASecondTry)
{
    std::vector<UINTN> LastFirst;
    for (UINTN Handle = 1; Handle <= 51; ++Handle) {
        AddDisk(Handle);
        LastFirst.insert(LastFirst.begin(), Handle);
    }
    EXPECT_EQ(NodeOf(Generate()), DigestNode(LastFirst));
}

TEST_F(Identifiers, AMapThatGrowsWithEachAllocationIsAskedForAgain)
{
    Firmware.MemoryMap.assign(4 * 40, 0x21);
    UINTN Growths = 0;
    Firmware.OnAllocate = [this, &Growths](UINTN Size) {
        if (Size == Firmware.MemoryMap.size() && Growths < 3) {
            ++Growths;
            Firmware.MemoryMap.resize(Firmware.MemoryMap.size() + 40, static_cast<UINT8>(Growths));
        }
    };
    const EFI_GUID Guid = Generate();
    EXPECT_EQ(Growths, 3u);
    EXPECT_EQ(NodeOf(Guid), DigestNode({}));
}

TEST_F(Identifiers, WithoutAMemoryMapALineSaysSoAndTheNodeIsZero)
{
    Firmware.MemoryMapStatus = EFI_DEVICE_ERROR;
    const EFI_GUID First = Generate();
    EXPECT_EQ(Firmware.Printed, u"Memory map was not returned\r\n");
    EXPECT_EQ(NodeOf(First), (NODE{}));
    EXPECT_NE(Generate().Data1, First.Data1);
}

TEST_F(Identifiers, WithoutPoolAnIdentifierStillComesOut)
{
    Firmware.PoolIsEmpty = true;
    const EFI_GUID Guid = Generate();
    EXPECT_EQ(Guid.Data3, 0x1000);
    EXPECT_EQ(NodeOf(Guid), (NODE{}));
}

} // namespace
