#include "platform/host/Machine.h"

#include <cstring>
#include <iterator>

#include "platform/host/Handles.h"

namespace {

constexpr UINTN gDescriptorSize = 48;
static_assert(gDescriptorSize >= sizeof(EFI_MEMORY_DESCRIPTOR));
constexpr UINT32 gDescriptorVersion = 1;
constexpr UINTN gMapKey = 1;
constexpr UINT64 gWriteBack = 8;
constexpr UINT64 gBlockIoRevision = 0x00010000;

constexpr EFI_MEMORY_DESCRIPTOR gMemoryMap[] = {
    // type, physical and virtual start, pages, attribute
    {EfiBootServicesData, 0x00000000, 0, 0x1, gWriteBack},
    {EfiConventionalMemory, 0x00001000, 0, 0x9F, gWriteBack},
    {EfiReservedMemoryType, 0x000A0000, 0, 0x60, 0},
    {EfiConventionalMemory, 0x00100000, 0, 0x7DF00, gWriteBack},
    {EfiLoaderCode, 0x7E000000, 0, 0x80, gWriteBack},
    {EfiBootServicesCode, 0x7E080000, 0, 0x780, gWriteBack},
    {EfiBootServicesData, 0x7E800000, 0, 0x1400, gWriteBack},
    {EfiRuntimeServicesData, 0x7FC00000, 0, 0x100, gWriteBack},
    {EfiReservedMemoryType, 0x7FD00000, 0, 0x300, 0},
    {EfiConventionalMemory, 0x100000000, 0, 0x380000, gWriteBack},
};

// Nodes of the device paths: type, subtype, length, then what the node says.
constexpr UINT8 gPciRoot[] = {ACPI_DEVICE_PATH, 1, 12, 0, 0xD0, 0x41, 0x03, 0x0A, 0, 0, 0, 0};
constexpr UINT8 gDiskController[] = {HARDWARE_DEVICE_PATH, 1, 6, 0, 0x00, 0x17};
constexpr UINT8 gUsbController[] = {HARDWARE_DEVICE_PATH, 1, 6, 0, 0x00, 0x14};
constexpr UINT8 gNetworkController[] = {HARDWARE_DEVICE_PATH, 1, 6, 0, 0x06, 0x1F};
constexpr UINT8 gSataPort0[] = {MESSAGING_DEVICE_PATH, 18, 10, 0, 0, 0, 0xFF, 0xFF, 0, 0};
constexpr UINT8 gUsbPort2[] = {MESSAGING_DEVICE_PATH, 5, 6, 0, 2, 0};
constexpr UINT8 gEndNode[] = {END_DEVICE_PATH_TYPE, END_ENTIRE_DEVICE_PATH_SUBTYPE, 4, 0};
// A partition with a GUID: number, begin, size, signature, format, kind of signature.
// clang-format off
constexpr UINT8 gPartition1[] = {MEDIA_DEVICE_PATH, 1, 42, 0, 1, 0, 0, 0, 0x00, 0x08, 0, 0, 0, 0, 0, 0, 0x00, 0x00, 0x20,
                                 0, 0, 0, 0, 0, 0x3A, 0x5C, 0x90, 0x11, 0x6B, 0x7D, 0x42, 0x4E, 0x9F, 0x21, 0x0C, 0x66,
                                 0x58, 0x73, 0x91, 0xA4, 2, 2};
// clang-format on
static_assert(sizeof(gPartition1) == 42);
// A hardware address is kept in 32 bytes, of which a network card uses 6; the last byte is the kind of network.
constexpr UINT8 gNetworkAddress[37] = {
    MESSAGING_DEVICE_PATH, MSG_MAC_ADDR_DP, 37, 0, 0x02, 0x56, 0x54, 0x52, 0x00, 0x01};
constexpr UINTN gNetworkKindOffset = 36;
constexpr UINT8 gEthernet = 1;

template <UINTN Length> VOID AppendNode(std::vector<UINT8>& Path, const UINT8 (&Node)[Length])
{
    Path.insert(Path.end(), Node, Node + Length);
}

} // namespace

VOID MACHINE::InstallDevices(HANDLES& Handles, bool WithNetwork)
{
    enum : UINTN { DISK, PARTITION, STICK };
    mMedia[DISK] = {.MediaId = 1,
                    .RemovableMedia = 0,
                    .MediaPresent = 1,
                    .LogicalPartition = 0,
                    .ReadOnly = 0,
                    .WriteCaching = 1,
                    .BlockSize = 512,
                    .IoAlign = 2,
                    .LastBlock = 0x1DCF32AF};
    mMedia[PARTITION] = mMedia[DISK];
    mMedia[PARTITION].LogicalPartition = 1;
    mMedia[PARTITION].LastBlock = 0x1FFFFF;
    mMedia[STICK] = mMedia[DISK];
    mMedia[STICK].RemovableMedia = 1;
    mMedia[STICK].LastBlock = 0xEE7FFF;

    AppendNode(mPaths[DISK], gPciRoot);
    AppendNode(mPaths[DISK], gDiskController);
    AppendNode(mPaths[DISK], gSataPort0);
    mPaths[PARTITION] = mPaths[DISK];
    AppendNode(mPaths[PARTITION], gPartition1);
    AppendNode(mPaths[STICK], gPciRoot);
    AppendNode(mPaths[STICK], gUsbController);
    AppendNode(mPaths[STICK], gUsbPort2);
    AppendNode(mPaths[3], gPciRoot);
    if (WithNetwork) {
        AppendNode(mPaths[4], gPciRoot);
        AppendNode(mPaths[4], gNetworkController);
        const UINTN Address = mPaths[4].size();
        AppendNode(mPaths[4], gNetworkAddress);
        mPaths[4][Address + gNetworkKindOffset] = gEthernet;
    }
    for (UINTN Index = 0; Index < std::size(mPaths); Index++) {
        if (mPaths[Index].empty()) {
            continue;
        }
        AppendNode(mPaths[Index], gEndNode);
        EFI_HANDLE Handle = nullptr;
        (void)Handles.Install(&Handle, &gEfiDevicePathProtocolGuid, mPaths[Index].data());
        if (Index < std::size(mBlockIo)) {
            mBlockIo[Index] = {};
            mBlockIo[Index].Revision = gBlockIoRevision;
            mBlockIo[Index].Media = &mMedia[Index];
            (void)Handles.Install(&Handle, &gEfiBlockIoProtocolGuid, &mBlockIo[Index]);
        }
    }
}

EFI_STATUS MACHINE::GetMemoryMap(UINTN* Size, EFI_MEMORY_DESCRIPTOR* Map, UINTN* Key, UINTN* DescriptorSize,
                                 UINT32* DescriptorVersion) const
{
    if (Size == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    const UINTN Room = *Size;
    *Size = std::size(gMemoryMap) * gDescriptorSize;
    if (DescriptorSize != nullptr) {
        *DescriptorSize = gDescriptorSize;
    }
    if (DescriptorVersion != nullptr) {
        *DescriptorVersion = gDescriptorVersion;
    }
    if (Room < *Size) {
        return EFI_BUFFER_TOO_SMALL;
    }
    if (Map == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    if (Key != nullptr) {
        *Key = gMapKey;
    }
    UINT8* Place = reinterpret_cast<UINT8*>(Map);
    std::memset(Place, 0, *Size);
    for (const EFI_MEMORY_DESCRIPTOR& Descriptor : gMemoryMap) {
        std::memcpy(Place, &Descriptor, sizeof(Descriptor));
        Place += gDescriptorSize;
    }
    return EFI_SUCCESS;
}
