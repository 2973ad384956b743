// Memory between two pages that nobody may touch, so that a load or store beyond it stops the program, in any build.
#pragma once

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

#include "uefi/Base.h"

class GUARDED_ROOM {
public:
    explicit GUARDED_ROOM(UINTN MostBytes)
    {
        Page = static_cast<UINTN>(sysconf(_SC_PAGESIZE));
        Bytes = (MostBytes + Page - 1) / Page * Page;
        Map = static_cast<UINT8*>(
            mmap(nullptr, Bytes + 2 * Page, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        if (Map == MAP_FAILED) {
            std::abort();
        }
        mprotect(Map, Page, PROT_NONE);
        mprotect(Map + Page + Bytes, Page, PROT_NONE);
    }
    ~GUARDED_ROOM() { munmap(Map, Bytes + 2 * Page); }
    GUARDED_ROOM(const GUARDED_ROOM&) = delete;
    GUARDED_ROOM& operator=(const GUARDED_ROOM&) = delete;

    // A place for Count of TYPE that touches one of the two pages.
    template <typename TYPE> TYPE* Place(UINTN Count, bool AtEnd) const
    {
        return reinterpret_cast<TYPE*>(AtEnd ? Map + Page + Bytes - Count * sizeof(TYPE) : Map + Page);
    }

private:
    UINTN Page;
    UINTN Bytes;
    UINT8* Map;
};
