#include "platform/host/Pool.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <execinfo.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

// g++ says by a macro whether the address sanitizer is on, clang by a feature.
#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define __SANITIZE_ADDRESS__ 1
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/asan_interface.h>
#endif

namespace {

// Memory that the C library gives back to the system with every large block costs a page fault a page when the next block
// is filled, and each text of the console is such a block. So what the pool once had stays with the process.
constexpr int gKeptBytes = 256 * 1024 * 1024;
constexpr int gLargestKept = 32 * 1024 * 1024; // the most that the C library takes for this

// Of a block given back this much is marked: every picture of a control whole, but not the screens and the frame's picture,
// nor the 1.9 MB of a text's where the font service gives roomy ones.
constexpr UINTN gMarkedBytes = 512 * 1024;

// UEFI promises blocks at multiples of eight bytes and no more, so all of these lie eight bytes behind a multiple of
// sixteen: sanitizers tell of code that counts on more.
constexpr UINTN gOffset = 8;

VOID* TakeFromLibrary(UINTN Size, bool Zeroed)
{
    VOID* Begin = Zeroed ? std::calloc(1, Size + gOffset) : std::malloc(Size + gOffset);
    if (Begin == nullptr) {
        return nullptr;
    }
#if defined(__SANITIZE_ADDRESS__)
    __asan_poison_memory_region(Begin, gOffset);
#endif
    return static_cast<UINT8*>(Begin) + gOffset;
}

// A start fills some 30 MB, and in pages of 4 KB their faults would take longer than all else that it does. So the heap
// grows by much at once, and asks for large pages there. The sanitizer's own heap is none of this.
VOID AskForLargePages()
{
#if !defined(__SANITIZE_ADDRESS__)
    constexpr int Growth = 64 * 1024 * 1024;
    constexpr UINT64 LargePage = 2 * 1024 * 1024;
    (void)mallopt(M_TOP_PAD, Growth);
    const auto Begin = reinterpret_cast<UINT64>(sbrk(0));
    VOID* volatile Grown = std::malloc(LargePage); // volatile, or the compiler leaves both out
    std::free(Grown);
    const auto End = reinterpret_cast<UINT64>(sbrk(0));
    const UINT64 First = (Begin + LargePage - 1) / LargePage * LargePage;
    if (First < End) {
        (void)madvise(reinterpret_cast<VOID*>(First), End - First, MADV_HUGEPAGE);
    }
#endif
}

VOID GiveToLibrary(const VOID* Block) { std::free(static_cast<UINT8*>(const_cast<VOID*>(Block)) - gOffset); }

} // namespace

POOL::POOL(COMPLAINTS* Where) : Complaints(Where)
{
    (void)mallopt(M_MMAP_THRESHOLD, gLargestKept);
    (void)mallopt(M_TRIM_THRESHOLD, gKeptBytes);
    AskForLargePages();
}

POOL::~POOL()
{
    for (const auto& [Buffer, Block] : mBlocks) {
        GiveToLibrary(Buffer);
    }
}

void POOL::BeginStart(UINT32 Start)
{
    mStart = Start;
    mAllocationsOfStart = 0;
}

EFI_STATUS POOL::Allocate(UINTN Size, VOID* Caller, VOID** Buffer) { return Give(Size, gGivenPattern, Caller, Buffer); }

EFI_STATUS POOL::AllocateZeroed(UINTN Size, VOID* Caller, VOID** Buffer) { return Give(Size, 0, Caller, Buffer); }

EFI_STATUS POOL::Give(UINTN Size, UINT8 Content, VOID* Caller, VOID** Buffer)
{
    if (Buffer == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    mAllocationsOfStart++;
    if ((FailFrom != 0 && mAllocationsOfStart >= FailFrom) || (FailOnly != 0 && mAllocationsOfStart == FailOnly) ||
        (Refuses != nullptr && Refuses(RefusesContext))) {
        return EFI_OUT_OF_RESOURCES;
    }
    VOID* Data = TakeFromLibrary(Size, Content == 0);
    if (Data == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    if (Content != 0) {
        std::memset(Data, Content, std::min(Size, FillLimit));
    }
    POOL_BLOCK Block = {.Size = Size, .Number = mNextNumber++, .Start = mStart, .Owner = {Caller}};
    if (TraceOwners) {
        // The stack as seen from here; it is told from the caller on.
        VOID* Frames[gOwnerFrames + 4];
        const int Count = backtrace(Frames, static_cast<int>(std::size(Frames)));
        const auto First = std::find(Frames, Frames + Count, Caller);
        std::copy(First, std::min(First + gOwnerFrames, Frames + Count), Block.Owner);
        Block.Owner[0] = Caller;
    }
    mBlocks.emplace(Data, Block);
    *Buffer = Data;
    return EFI_SUCCESS;
}

EFI_STATUS POOL::Free(VOID* Buffer, VOID* Caller)
{
    const auto Found = mBlocks.find(Buffer);
    if (Found == mBlocks.end()) {
        Complaints->Add("FreePool of %p, which is no block in use, by %s", Buffer, DescribePlace(Caller).c_str());
        return EFI_INVALID_PARAMETER;
    }
    std::memset(Buffer, gTakenPattern, std::min({Found->second.Size, FillLimit, gMarkedBytes}));
    mBlocks.erase(Found);
    GiveToLibrary(Buffer);
    return EFI_SUCCESS;
}

const POOL_BLOCK* POOL::Find(const VOID* Buffer) const
{
    const auto Found = mBlocks.find(Buffer);
    return Found == mBlocks.end() ? nullptr : &Found->second;
}

std::vector<POOL_BLOCK> POOL::Held(UINT32 Start) const
{
    std::vector<POOL_BLOCK> Blocks;
    for (const auto& [Buffer, Block] : mBlocks) {
        if (Block.Start == Start) {
            Blocks.push_back(Block);
        }
    }
    std::sort(Blocks.begin(), Blocks.end(),
              [](const POOL_BLOCK& A, const POOL_BLOCK& B) { return A.Number < B.Number; });
    return Blocks;
}

std::string DescribeBlock(const POOL_BLOCK& Block)
{
    std::string Text = "block " + std::to_string(Block.Number) + ", " + std::to_string(Block.Size) + " bytes, from";
    for (const VOID* Owner : Block.Owner) {
        if (Owner != nullptr) {
            Text += " " + DescribePlace(Owner);
        }
    }
    return Text;
}

std::string DescribePlace(const VOID* Address)
{
    char Text[32];
    Dl_info Info;
    if (dladdr(Address, &Info) == 0 || Info.dli_fname == nullptr) {
        std::snprintf(Text, sizeof(Text), "%p", Address);
        return Text;
    }
    const char* Slash = std::strrchr(Info.dli_fname, '/');
    std::snprintf(Text, sizeof(Text), "+0x%llx",
                  static_cast<UINT64>(static_cast<const UINT8*>(Address) - static_cast<const UINT8*>(Info.dli_fbase)));
    return std::string(Slash == nullptr ? Info.dli_fname : Slash + 1) + Text;
}
