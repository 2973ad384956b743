#include "support/Identifiers.h"

#include "support/Pool.h"
#include "support/Md5.h"
#include "support/Print.h"
#include "uefi/Devices.h"

constinit GUID_CLOCK gGuidClock = {};

namespace {

// Where the buffers of the firmware's lists begin; a longer list takes a second try.
constexpr UINTN gFirstHandleBufferSize = 400;
constexpr UINTN gFirstMemoryMapSize = 40;

// The version nibble 1 and no bits of the stamp.
constexpr UINT16 gTimeHiAndVersion = 0x1000;
// Units of 100 ns from the start of the UUID calendar to 1970.
constexpr UINT64 gCalendarOffset = 0x01B21DD213814000;
// A clock of this resolution, in ticks a second, is waited for until it ticks, but not for more readings than these.
constexpr UINT32 gSlowClock = 1;
constexpr UINTN gSlowClockReadings = 257;

constexpr UINT16 gLargestSameStampCount = 0x7FFF;
constexpr UINT16 gClockSequenceCount = 0x4000;

constexpr UINTN gNodeSize = 6;
constexpr UINTN gDigestSize = 16;
// The mark of a node that is no real MAC address.
constexpr UINT8 gNoMacAddress = 0x80;

// Places in a MAC address node.
constexpr UINTN gMacAddressOffset = 4;
constexpr UINTN gMacIfTypeOffset = 36;
constexpr UINTN gMacNodeSize = 37;

EFI_HANDLE* gFixedDisks = nullptr;
UINTN gFixedDiskCount = 0;

// The condition of a loop around a firmware call that fills a buffer of unknown size: makes the buffer, first of Size
// bytes and then of what the call asked for, and says whether the call is to be made again. On any other failure the
// buffer is given back. *Had is the size of the present buffer: a firmware that finds it too small and doesn't ask for
// more would be asked without end.
bool RetryWithLargerBuffer(EFI_STATUS* Status, VOID** Buffer, UINTN Size, UINTN* Had)
{
    if (*Buffer == nullptr && Size != 0) {
        *Status = EFI_BUFFER_TOO_SMALL;
    }
    if (*Status == EFI_BUFFER_TOO_SMALL && Size > *Had) {
        *Had = Size;
        ReleasePool(*Buffer);
        *Buffer = AllocatePool(Size);
        if (*Buffer != nullptr) {
            return true;
        }
        *Status = EFI_OUT_OF_RESOURCES;
    }
    if (EfiError(*Status)) {
        ReleasePool(*Buffer);
    }
    return false;
}

// The handles that have the protocol, in a pool array that the caller frees; none and null on failure.
EFI_STATUS LocateHandlesByProtocol(const EFI_GUID* Protocol, UINTN* Count, EFI_HANDLE** Handles)
{
    EFI_STATUS Status = EFI_SUCCESS;
    VOID* Buffer = nullptr;
    UINTN Size = gFirstHandleBufferSize;
    UINTN Had = 0;
    while (RetryWithLargerBuffer(&Status, &Buffer, Size, &Had)) {
        Status = gBS->LocateHandle(ByProtocol, Protocol, nullptr, &Size, static_cast<EFI_HANDLE*>(Buffer));
    }
    *Count = EfiError(Status) ? 0 : Size / sizeof(EFI_HANDLE);
    *Handles = static_cast<EFI_HANDLE*>(Buffer);
    return Status;
}

const EFI_DEVICE_PATH_PROTOCOL* GetDevicePath(EFI_HANDLE Handle)
{
    VOID* Path = nullptr;
    const EFI_STATUS Status = gBS->HandleProtocol(Handle, &gEfiDevicePathProtocolGuid, &Path);
    return EfiError(Status) ? nullptr : static_cast<const EFI_DEVICE_PATH_PROTOCOL*>(Path);
}

// The node behind this one, over the ends of instances too; null behind the last. A node shorter than its own head
// would never be left, so a path ends there as well.
const EFI_DEVICE_PATH_PROTOCOL* NextNode(const EFI_DEVICE_PATH_PROTOCOL* Node)
{
    if (Node->Type == END_DEVICE_PATH_TYPE && Node->SubType == END_ENTIRE_DEVICE_PATH_SUBTYPE) {
        return nullptr;
    }
    const UINTN Length = NodeLength(Node);
    if (Length < sizeof(EFI_DEVICE_PATH_PROTOCOL)) {
        return nullptr;
    }
    return reinterpret_cast<const EFI_DEVICE_PATH_PROTOCOL*>(reinterpret_cast<const UINT8*>(Node) + Length);
}

bool HasMediaNode(const EFI_DEVICE_PATH_PROTOCOL* Path)
{
    for (const EFI_DEVICE_PATH_PROTOCOL* Node = Path; Node != nullptr; Node = NextNode(Node)) {
        if (Node->Type == MEDIA_DEVICE_PATH) {
            return true;
        }
    }
    return false;
}

// A whole disk that stays in the machine and can be written. A partition's path has a media node; a disk without a path
// is taken for whole.
bool IsFixedDisk(EFI_HANDLE Handle)
{
    VOID* Interface = nullptr;
    if (EfiError(gBS->HandleProtocol(Handle, &gEfiBlockIoProtocolGuid, &Interface)) || Interface == nullptr) {
        return false;
    }
    const EFI_BLOCK_IO_MEDIA* Media = static_cast<const EFI_BLOCK_IO_PROTOCOL*>(Interface)->Media;
    if (Media == nullptr || Media->RemovableMedia != 0 || Media->MediaPresent == 0 || Media->ReadOnly != 0) {
        return false;
    }
    return !HasMediaNode(GetDevicePath(Handle));
}

VOID ReleaseFixedDisks()
{
    ReleasePool(gFixedDisks);
    gFixedDiskCount = 0;
}

VOID CollectFixedDisks()
{
    ReleaseFixedDisks();
    UINTN Count = 0;
    TEMPORARY<EFI_HANDLE> Handles;
    if (EfiError(LocateHandlesByProtocol(&gEfiBlockIoProtocolGuid, &Count, &Handles.Data))) {
        return;
    }
    gFixedDisks = AllocateArray<EFI_HANDLE>(Count);
    if (gFixedDisks == nullptr) {
        return;
    }
    for (UINTN Index = 0; Index < Count; ++Index) {
        if (IsFixedDisk(Handles.Data[Index])) {
            gFixedDisks[gFixedDiskCount++] = Handles.Data[Index];
        }
    }
}

UINT16 DrawRandom()
{
    gGuidClock.MixMultiplier += 7;
    if (gGuidClock.MixMultiplier >= 9973) {
        gGuidClock.MixMultiplier -= 9871;
    }
    gGuidClock.MixStepA += 1907;
    if (gGuidClock.MixStepA >= 99991) {
        gGuidClock.MixStepA -= 89989;
    }
    gGuidClock.MixStepB += 73939;
    if (gGuidClock.MixStepB >= 224729) {
        gGuidClock.MixStepB -= 96233;
    }
    gGuidClock.MixValue = gGuidClock.MixValue * gGuidClock.MixMultiplier + gGuidClock.MixStepB + gGuidClock.MixStepA;
    return static_cast<UINT16>((gGuidClock.MixValue >> 16) ^ (gGuidClock.MixValue & 0x3FFF));
}

// The generator starts from the same numbers each time; what sets one identifier apart is the clock and the firmware's
// count.
VOID SeedRandom()
{
    gGuidClock.MixMultiplier = 971;
    gGuidClock.MixStepA = 11113;
    gGuidClock.MixStepB = 104322;
    gGuidClock.MixValue = 4181;

    EFI_TIME Time = {};
    (void)gRT->GetTime(&Time, nullptr);
    UINT64 Count = 0;
    (void)gBS->GetNextMonotonicCount(&Count);
    gGuidClock.MixValue += (Time.Hour ^ (Time.Nanosecond >> 16) ^ Time.Second ^ (Time.Nanosecond & 0xFFFF)) +
                           static_cast<UINT32>(reinterpret_cast<UINTN>(gImageHandle)) + static_cast<UINT32>(Count);
}

VOID GetGuidTime(UINT64* Stamp)
{
    EFI_TIME Time = {};
    EFI_TIME_CAPABILITIES Capabilities = {};
    (void)gRT->GetTime(&Time, &Capabilities);
    if (Capabilities.Resolution == gSlowClock) {
        for (UINTN Reading = 0; Reading < gSlowClockReadings; ++Reading) {
            const UINT8 Before = Time.Second;
            (void)gRT->GetTime(&Time, &Capabilities);
            if (Time.Second != Before) {
                break;
            }
        }
    }
    *Stamp = static_cast<UINT64>(Time.Second) * 100 + static_cast<UINT64>(Time.Nanosecond) * 10 + gCalendarOffset;
}

// The address of the first network card that a device path shows. IfType 0 and 1 are the kinds with an address of six
// bytes.
bool FindMacAddress(UINT8* Node)
{
    UINTN Count = 0;
    TEMPORARY<EFI_HANDLE> Handles;
    (void)LocateHandlesByProtocol(&gEfiDevicePathProtocolGuid, &Count, &Handles.Data);
    for (UINTN Index = 0; Index < Count; ++Index) {
        const EFI_DEVICE_PATH_PROTOCOL* PathNode = GetDevicePath(Handles.Data[Index]);
        for (; PathNode != nullptr; PathNode = NextNode(PathNode)) {
            if (PathNode->Type != MESSAGING_DEVICE_PATH || PathNode->SubType != MSG_MAC_ADDR_DP ||
                NodeLength(PathNode) < gMacNodeSize) {
                continue;
            }
            const UINT8* Bytes = reinterpret_cast<const UINT8*>(PathNode);
            if (Bytes[gMacIfTypeOffset] <= 1) {
                CopyMem(Node, Bytes + gMacAddressOffset, gNodeSize);
                return true;
            }
        }
    }
    return false;
}

// Gathers what tells one machine from another and gives the length: the memory map, the fixed disks' handles from the
// last to the first, and the time if the clock gives it. Buffer has the room.
UINTN GatherTraits(UINT8* Buffer, const VOID* Map, UINTN MapSize)
{
    CopyMem(Buffer, Map, MapSize);
    UINTN Length = MapSize;
    for (UINTN Index = gFixedDiskCount; Index != 0; --Index) {
        CopyMem(Buffer + Length, &gFixedDisks[Index - 1], sizeof(EFI_HANDLE));
        Length += sizeof(EFI_HANDLE);
    }
    EFI_TIME Time = {};
    if (!EfiError(gRT->GetTime(&Time, nullptr))) {
        CopyMem(Buffer + Length, &Time, sizeof(Time));
        Length += sizeof(Time);
    }
    return Length;
}

VOID GetNodeIdentifier(UINT8* Node)
{
    if (FindMacAddress(Node)) {
        return;
    }
    for (UINTN Index = 0; Index < gNodeSize; ++Index) {
        Node[Index] = 0;
    }

    EFI_STATUS Status = EFI_SUCCESS;
    TEMPORARY<VOID> Map;
    UINTN MapSize = gFirstMemoryMapSize;
    UINTN DescriptorSize = 0;
    UINTN Had = 0;
    while (RetryWithLargerBuffer(&Status, &Map.Data, MapSize, &Had)) {
        UINTN MapKey = 0;
        UINT32 DescriptorVersion = 0;
        Status = gBS->GetMemoryMap(&MapSize, static_cast<EFI_MEMORY_DESCRIPTOR*>(Map.Data), &MapKey, &DescriptorSize,
                                   &DescriptorVersion);
    }
    if (!Map) {
        PrintToConsole(u"Memory map was not returned\n");
        return;
    }
    // Whole descriptors, in the size that the firmware gives them, which can be larger than the record that we know.
    if (DescriptorSize != 0) {
        MapSize -= MapSize % DescriptorSize;
    }

    TEMPORARY<UINT8> Traits(AllocateArray<UINT8>(MapSize + gFixedDiskCount * sizeof(EFI_HANDLE) + sizeof(EFI_TIME)));
    if (!Traits) {
        return;
    }
    const UINTN Length = GatherTraits(Traits.Data, Map.Data, MapSize);

    MD5_CONTEXT Context;
    UINT8 Digest[gDigestSize];
    Md5Start(&Context);
    Md5Update(&Context, Traits.Data, Length);
    Md5Finish(&Context, Digest);
    for (UINTN Index = 0; Index < gDigestSize; ++Index) {
        Node[Index % gNodeSize] ^= Digest[Index];
    }
    Node[0] |= gNoMacAddress;
}

// Reads the stamp until it is one that can be given out, and counts what has been given out under the same stamp.
VOID ReadStamp()
{
    for (;;) {
        GetGuidTime(&gGuidClock.Now);
        if (gGuidClock.Now < gGuidClock.Last) {
            const UINT16 Next = static_cast<UINT16>((gGuidClock.ClockSequence + 1) % gClockSequenceCount);
            gGuidClock.ClockSequence = Next != 0 ? Next : 1;
            gGuidClock.SameStampCount = 0;
            return;
        }
        if (gGuidClock.Now > gGuidClock.Last) {
            gGuidClock.SameStampCount = 0;
            return;
        }
        if (gGuidClock.SameStampCount != gLargestSameStampCount) {
            ++gGuidClock.SameStampCount;
            return;
        }
    }
}

VOID MakeGuidFromTime(EFI_GUID* Guid)
{
    UINT8 Node[gNodeSize];
    GetNodeIdentifier(Node);
    ReadStamp();
    gGuidClock.Last = gGuidClock.Now;
    gGuidClock.Now += gGuidClock.SameStampCount;

    Guid->Data1 = static_cast<UINT32>(gGuidClock.Now);
    Guid->Data2 = static_cast<UINT16>(gGuidClock.Now >> 32);
    Guid->Data3 = gTimeHiAndVersion;
    // ClockSeqHiAndReserved. It only has to vary, as nothing reads it. A read of memory at an address made from the
    // stamp would vary too, but that memory isn't ours.
    Guid->Data4[0] = static_cast<UINT8>(DrawRandom());
    Guid->Data4[1] = static_cast<UINT8>(gGuidClock.ClockSequence);
    for (UINTN Index = 0; Index < gNodeSize; ++Index) {
        Guid->Data4[2 + Index] = Node[Index];
    }
}

} // namespace

VOID GenerateGuid(EFI_GUID* Guid)
{
    CollectFixedDisks();
    SeedRandom();
    GetGuidTime(&gGuidClock.Last);
    gGuidClock.ClockSequence = DrawRandom();
    MakeGuidFromTime(Guid);
    ReleaseFixedDisks();
}
