#include "bench/TurnClock.h"

#include <chrono>
#include <vector>

#include "platform/host/CurrentBoot.h"

namespace {

using MOMENT = std::chrono::steady_clock::time_point;

SPLIT gSplit = {};
PLACE gPlace = PLACE_CONSOLE;
MOMENT gSince;

VOID Enter(PLACE Place)
{
    const MOMENT Now = std::chrono::steady_clock::now();
    gSplit[gPlace] += std::chrono::duration<double, std::nano>(Now - gSince).count();
    gPlace = Place;
    gSince = Now;
}

std::vector<VOID (*)()> gRemovals;

// A slot of a table, timed. What a call calls in turn, such as a notify function of the console, is counted where it
// belongs: each call puts the place back that it came from.
template <PLACE Place, auto Slot> struct TIMED;

template <PLACE Place, typename TABLE, typename RESULT, typename... ARGUMENTS, RESULT (*TABLE::*Slot)(ARGUMENTS...)>
struct TIMED<Place, Slot> {
    static inline RESULT (*True)(ARGUMENTS...) = nullptr;
    static inline TABLE* Table = nullptr;

    static RESULT Call(ARGUMENTS... Arguments)
    {
        const PLACE From = gPlace;
        Enter(Place);
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
        gRemovals.push_back([] { Table->*Slot = True; });
    }
};

template <typename TABLE> TABLE* Service(const EFI_GUID& Guid)
{
    VOID* Found = nullptr;
    (void)gCurrentBoot->FirmwareTable.BootServices->LocateProtocol(&Guid, nullptr, &Found);
    return static_cast<TABLE*>(Found);
}

} // namespace

VOID PutTimers(BOOT& Boot)
{
    EFI_BOOT_SERVICES* Services = Boot.ConsoleTable.BootServices;
    TIMED<PLACE_POOL, &EFI_BOOT_SERVICES::AllocatePool>::Put(Services);
    TIMED<PLACE_POOL, &EFI_BOOT_SERVICES::FreePool>::Put(Services);
    TIMED<PLACE_COPY, &EFI_BOOT_SERVICES::CopyMem>::Put(Services);
    TIMED<PLACE_COPY, &EFI_BOOT_SERVICES::SetMem>::Put(Services);
    TIMED<PLACE_LOOP, &EFI_BOOT_SERVICES::WaitForEvent>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::LocateProtocol>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::HandleProtocol>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::LocateHandle>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::GetMemoryMap>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::GetNextMonotonicCount>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::CreateEvent>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_BOOT_SERVICES::CreateEventEx>::Put(Services);
    TIMED<PLACE_OTHER, &EFI_RUNTIME_SERVICES::GetTime>::Put(Boot.ConsoleTable.RuntimeServices);
    TIMED<PLACE_OTHER, &EFI_RUNTIME_SERVICES::GetVariable>::Put(Boot.ConsoleTable.RuntimeServices);
    TIMED<PLACE_OTHER, &EFI_RUNTIME_SERVICES::SetVariable>::Put(Boot.ConsoleTable.RuntimeServices);
    TIMED<PLACE_LOOP, &EFI_SIMPLE_TEXT_INPUT_PROTOCOL::ReadKeyStroke>::Put(Boot.ConsoleTable.ConIn);
    TIMED<PLACE_BLT, &EFI_GRAPHICS_OUTPUT_PROTOCOL::Blt>::Put(Boot.Protocols.Shown);
    TIMED<PLACE_TEXT, &EFI_HII_FONT_PROTOCOL::StringToImage>::Put(&Boot.Protocols.Font);

    auto* Hardware = Service<HW_SERVICE_PROTOCOL>(gHwServiceProtocolGuid);
    TIMED<PLACE_BOARD, &HW_SERVICE_PROTOCOL::Initialize>::Put(Hardware);
    TIMED<PLACE_BOARD, &HW_SERVICE_PROTOCOL::GetItemValue>::Put(Hardware);
    TIMED<PLACE_BOARD, &HW_SERVICE_PROTOCOL::GetItemString>::Put(Hardware);
    TIMED<PLACE_BOARD, &HW_SERVICE_PROTOCOL::GetFanKind>::Put(Hardware);
    TIMED<PLACE_LOOP, &CURSOR_SERVICE_PROTOCOL::GetCursorState>::Put(
        Service<CURSOR_SERVICE_PROTOCOL>(gCursorServiceProtocolGuid));
    TIMED<PLACE_DECODE, &IMAGE_LOOKUP_PROTOCOL::GetFileSection>::Put(
        Service<IMAGE_LOOKUP_PROTOCOL>(gImageLookupProtocolGuid));
    TIMED<PLACE_DECODE, &IMAGE_SECTION_PROTOCOL::GetArtworkSection>::Put(
        Service<IMAGE_SECTION_PROTOCOL>(gImageSectionProtocolGuid));
    auto* Decoder = Service<IMAGE_DECODER_PROTOCOL>(gImageDecoderProtocolGuid);
    TIMED<PLACE_DECODE, &IMAGE_DECODER_PROTOCOL::ConvertJPEGToUgaBltA>::Put(Decoder);
    TIMED<PLACE_DECODE, &IMAGE_DECODER_PROTOCOL::ConvertBmpToGopBltA>::Put(Decoder);
}

VOID RemoveTimers()
{
    for (VOID (*Remove)() : gRemovals) {
        Remove();
    }
    gRemovals.clear();
    gPlace = PLACE_CONSOLE;
}

VOID RestartSplit()
{
    gSplit = {};
    gSince = std::chrono::steady_clock::now();
}

const SPLIT& ReadSplit()
{
    Enter(gPlace);
    return gSplit;
}
