#include "bench/TurnClock.h"

#include "shell/contract/Services.h"

namespace {

SPLIT gSplit;
PLACE gPlace = PLACE_CONSOLE;
UINT64 gSince;

VOID Enter(PLACE Place)
{
    const UINT64 Now = ReadBenchTime();
    gSplit.Time[gPlace] += Now - gSince;
    gPlace = Place;
    gSince = Now;
}

// How to take a timing function out again.
struct REMOVAL {
    VOID (*Remove)();
    REMOVAL* Next;
};
REMOVAL* gRemovals;

// A slot of a table, timed. What a call calls in turn, such as a notify function of the console, is counted where it
// belongs: each call puts the place back that it came from. The slot's type is named, or else the firmware target's
// compiler gives the slots of two tables at one offset one name, and the linker takes them for the same.
template <PLACE Place, typename SLOT, SLOT Slot> struct TIMED_SLOT;
template <PLACE Place, auto Slot> using TIMED = TIMED_SLOT<Place, decltype(Slot), Slot>;

template <PLACE Place, typename TABLE, typename RESULT, typename... ARGUMENTS, RESULT (*TABLE::*Slot)(ARGUMENTS...)>
struct TIMED_SLOT<Place, RESULT (*TABLE::*)(ARGUMENTS...), Slot> {
    static inline RESULT (*True)(ARGUMENTS...) = nullptr;
    static inline TABLE* Table = nullptr;
    static inline REMOVAL Removal = {};

    static RESULT Call(ARGUMENTS... Arguments)
    {
        const PLACE From = gPlace;
        Enter(Place);
        gSplit.Calls[Place]++;
        if constexpr (__is_same(RESULT, VOID)) {
            True(Arguments...);
            Enter(From);
        } else {
            const RESULT Result = True(Arguments...);
            Enter(From);
            return Result;
        }
    }
    static VOID Put(TABLE* Where)
    {
        if (Where == nullptr) {
            return;
        }
        Table = Where;
        True = Table->*Slot;
        Table->*Slot = Call;
        Removal = {[] { Table->*Slot = True; }, gRemovals};
        gRemovals = &Removal;
    }
};

template <typename TABLE> TABLE* Service(EFI_BOOT_SERVICES* Finder, const EFI_GUID& Guid)
{
    VOID* Found = nullptr;
    (void)Finder->LocateProtocol(&Guid, nullptr, &Found);
    return static_cast<TABLE*>(Found);
}

} // namespace

VOID PutTimers(const TIMED_TABLES& Tables)
{
    EFI_BOOT_SERVICES* Services = Tables.Console->BootServices;
    EFI_RUNTIME_SERVICES* Runtime = Tables.Console->RuntimeServices;
    TIMED<PLACE_POOL, &EFI_BOOT_SERVICES::AllocatePool>::Put(Services);
    TIMED<PLACE_POOL, &EFI_BOOT_SERVICES::FreePool>::Put(Services);
    TIMED<PLACE_COPY, &EFI_BOOT_SERVICES::CopyMem>::Put(Services);
    TIMED<PLACE_COPY, &EFI_BOOT_SERVICES::SetMem>::Put(Services);
    TIMED<PLACE_WAIT, &EFI_BOOT_SERVICES::WaitForEvent>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::LocateProtocol>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::HandleProtocol>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::LocateHandle>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::CreateEvent>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::CreateEventEx>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_RUNTIME_SERVICES::GetVariable>::Put(Runtime);
    TIMED<PLACE_OTHER, &EFI_RUNTIME_SERVICES::SetVariable>::Put(Runtime);
    TIMED<PLACE_IDENTIFIER, &EFI_BOOT_SERVICES::GetMemoryMap>::Put(Services);
    TIMED<PLACE_IDENTIFIER, &EFI_BOOT_SERVICES::GetNextMonotonicCount>::Put(Services);
    TIMED<PLACE_IDENTIFIER, &EFI_RUNTIME_SERVICES::GetTime>::Put(Runtime);
    TIMED<PLACE_KEY, &EFI_SIMPLE_TEXT_INPUT_PROTOCOL::ReadKeyStroke>::Put(Tables.Console->ConIn);
    TIMED<PLACE_BLT, &EFI_GRAPHICS_OUTPUT_PROTOCOL::Blt>::Put(Tables.Shown);
    TIMED<PLACE_ADAPTER, &EFI_GRAPHICS_OUTPUT_PROTOCOL::Blt>::Put(Tables.Adapter);
    TIMED<PLACE_TEXT, &EFI_HII_FONT_PROTOCOL::StringToImage>::Put(Tables.Font);

    auto* Hardware = Service<HW_SERVICE_PROTOCOL>(Tables.Finder, gHwServiceProtocolGuid);
    TIMED<PLACE_BOARD, &HW_SERVICE_PROTOCOL::Initialize>::Put(Hardware);
    TIMED<PLACE_BOARD, &HW_SERVICE_PROTOCOL::GetItemValue>::Put(Hardware);
    TIMED<PLACE_BOARD, &HW_SERVICE_PROTOCOL::GetItemString>::Put(Hardware);
    TIMED<PLACE_BOARD, &HW_SERVICE_PROTOCOL::GetFanKind>::Put(Hardware);
    TIMED<PLACE_POINTER, &CURSOR_SERVICE_PROTOCOL::GetCursorState>::Put(
        Service<CURSOR_SERVICE_PROTOCOL>(Tables.Finder, gCursorServiceProtocolGuid));
    TIMED<PLACE_DECODE, &IMAGE_LOOKUP_PROTOCOL::GetFileSection>::Put(
        Service<IMAGE_LOOKUP_PROTOCOL>(Tables.Finder, gImageLookupProtocolGuid));
    TIMED<PLACE_DECODE, &IMAGE_SECTION_PROTOCOL::GetArtworkSection>::Put(
        Service<IMAGE_SECTION_PROTOCOL>(Tables.Finder, gImageSectionProtocolGuid));
    auto* Decoder = Service<IMAGE_DECODER_PROTOCOL>(Tables.Finder, gImageDecoderProtocolGuid);
    TIMED<PLACE_DECODE, &IMAGE_DECODER_PROTOCOL::ConvertJPEGToUgaBltA>::Put(Decoder);
    TIMED<PLACE_DECODE, &IMAGE_DECODER_PROTOCOL::ConvertBmpToGopBltA>::Put(Decoder);
}

VOID RemoveTimers()
{
    for (; gRemovals != nullptr; gRemovals = gRemovals->Next) {
        gRemovals->Remove();
    }
    gPlace = PLACE_CONSOLE;
}

VOID RestartSplit()
{
    gSplit = {};
    gSince = ReadBenchTime();
}

const SPLIT& ReadSplit()
{
    Enter(gPlace);
    return gSplit;
}
