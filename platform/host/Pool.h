// The pool of the hosted firmware.
//
// Every block is a block of the C library's own, so that a sanitizer sees an overrun and a use after free. It remembers who
// asked for it, holds a pattern when it is given and another when it is taken back, and what a start of the console leaves
// behind can be listed. An allocation of a start can be made to fail.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "platform/host/Complaints.h"
#include "uefi/Base.h"

constexpr UINT8 gGivenPattern = 0xAF;
constexpr UINT8 gTakenPattern = 0xDF;
constexpr UINTN gOwnerFrames = 6;

struct POOL_BLOCK {
    UINTN Size;
    UINT64 Number;             // 1, 2, ... in the order of allocation
    UINT32 Start;              // the console's start that it was given in; 0 before the first
    VOID* Owner[gOwnerFrames]; // who called, then who called that one and so on, as far as TraceOwners says
};

struct POOL {
    UINT64 FailFrom = 0; // this allocation of a start, counted from 1, and every later one fails; 0: none
    UINT64 FailOnly = 0; // this one alone fails; 0: none
    bool (*Refuses)(VOID* Context) = nullptr; // asked at each allocation; true: it fails
    VOID* RefusesContext = nullptr;
    UINTN FillLimit =
        ~0ull; // a block's bytes beyond this many get no pattern: for tests whose time is spent in filling
    bool TraceOwners = false; // keep the callers' callers too, which costs time
    COMPLAINTS* Complaints = nullptr;

    explicit POOL(COMPLAINTS* Where);
    POOL(const POOL&) = delete;
    POOL& operator=(const POOL&) = delete;
    ~POOL();

    // Beginning of a start: allocations are counted from 1 again.
    void BeginStart(UINT32 Start);
    EFI_STATUS Allocate(UINTN Size, VOID* Caller, VOID** Buffer);
    // The same with zeros in place of the pattern: for the firmware's own large blocks, which would be filled twice.
    EFI_STATUS AllocateZeroed(UINTN Size, VOID* Caller, VOID** Buffer);
    // A pointer that isn't the begin of a block in use is refused with EFI_INVALID_PARAMETER and a complaint.
    EFI_STATUS Free(VOID* Buffer, VOID* Caller);
    // The block that begins at Buffer; null if none does.
    const POOL_BLOCK* Find(const VOID* Buffer) const;
    // What was given in that start and is still held, oldest first.
    std::vector<POOL_BLOCK> Held(UINT32 Start) const;
    UINTN Count() const { return mBlocks.size(); }

private:
    EFI_STATUS Give(UINTN Size, UINT8 Content, VOID* Caller, VOID** Buffer);

    std::map<const VOID*, POOL_BLOCK> mBlocks;
    UINT64 mNextNumber = 1;
    UINT64 mAllocationsOfStart = 0;
    UINT32 mStart = 0;
};

// A line about a block for people: size, number and owners as places in their images.
std::string DescribeBlock(const POOL_BLOCK& Block);
// "image+0x1234" for an address in a loaded image.
std::string DescribePlace(const VOID* Address);
