// Whatever a person and a board do: pointer, buttons, keys, time, readings, in any order and of any value. What must hold
// in each turn is looked at in each turn.
#include <cstdio>
#include <cstdlib>

#include "fuzz/ConsoleGlobals.h"
#include "fuzz/Input.h"
#include "platform/host/CurrentBoot.h"
#include "platform/host/Session.h"
#include "tests/console/Places.h"
#include "tests/faults/Invariants.h"

extern "C" EFI_STATUS _ModuleEntryPoint(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable);

namespace {

constexpr size_t gMostSteps = 1500;
constexpr unsigned gReadingCount = 18;                 // items that a script may set
constexpr uint64_t gLongestAdvance = 1000000000000000; // microseconds: the longest that a script may ask for

TURN_WATCH gWatch;
unsigned long long gTurns; // looked at, in all runs

bool LookAtTurn(VOID*, CALL Call, EFI_STATUS*, bool*)
{
    if (Call == CALL_WAIT_FOR_EVENT) {
        gTurns++;
        const std::string Fault = CheckTurn(&gWatch);
        if (!Fault.empty()) {
            std::fprintf(stderr, "turn %llu: %s\n", gCurrentBoot->Trace.Turn, Fault.c_str());
            std::abort();
        }
    }
    return false;
}

// A script of what the bytes say. Places come often from where something is.
std::string WriteScript(INPUT& Input)
{
    static constexpr const char* Keys[] = {"f", "d", "c", "enter", "0017 0000", "0001 0041", "000b 0000", "0000 ffff"};
    std::string Script;
    for (size_t Step = 0; Step < gMostSteps && !Input.IsEmpty(); Step++) {
        const uint8_t What = Input.Byte();
        switch (What % 12) {
        case 0:
        case 1: {
            const PLACE& Place = gPlacesOfUse[Input.Byte() % std::size(gPlacesOfUse)];
            Script += "pointer " + std::to_string(Place.X) + " " + std::to_string(Place.Y) + "\nturn\n";
            break;
        }
        case 2: {
            const unsigned X = Input.Word() % 1025;
            Script += "pointer " + std::to_string(X) + " " + std::to_string(Input.Word() % 769) + "\nturn\n";
            break;
        }
        case 3:
        case 4:
            Script += What & 0x40 ? "left down\nturn 2\n" : "left up\nturn 2\n";
            break;
        case 5:
            Script += std::string("key ") + Keys[Input.Byte() % 4] + "\nturn\n";
            break;
        case 6:
            Script += "tick " + std::to_string(1 + Input.Byte() % 8) + "\n";
            break;
        case 7:
            Script += "advance " + std::to_string((Input.Long() >> (Input.Byte() % 64)) % gLongestAdvance) + "\nturn\n";
            break;
        case 8:
            Script += "reading " + std::to_string(Input.Byte() % gReadingCount) + " " +
                      std::to_string(Input.Long() >> (What & 0x30)) + "\nturn\n";
            break;
        case 9: {
            static constexpr const char* Ways[] = {"absent", "error", "live"};
            const unsigned Item = Input.Byte() % gReadingCount;
            Script += "reading " + std::to_string(Item) + " " + Ways[Input.Byte() % 3] + "\nturn\n";
            break;
        }
        case 10:
            Script += "advance 100000\nleft up\nturn 3\n";
            break;
        default:
            Script += "turn " + std::to_string(1 + What / 12) + "\n";
            break;
        }
    }
    return Script;
}

VOID TellTurns() { std::fprintf(stderr, "turns: %llu\n", gTurns); }

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) { return std::atexit(TellTurns); }

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    static constexpr const char* Boards[] = {"full", "kind0", "kind2", "small", "second-source", "bare"};
    INPUT Input = {Data, Size};
    SESSION_OPTIONS Options;
    Options.Board = Boards[Input.Byte() % 6];
    Options.Generation = Input.Byte() % 5;
    Options.Script = WriteScript(Input);
    Options.Entry = _ModuleEntryPoint;
    Options.KeepPictures = false;
    Options.Failures.Call = LookAtTurn;
    gWatch = {};
    RestoreConsoleGlobals();
    const SESSION_RESULT Result = RunSession(Options);
    if (!Result.Error.empty() || Result.Status != EFI_SUCCESS || !Result.Leaks.empty() || !Result.Complaints.empty() ||
        BoardContractFaults() != 0) {
        std::fprintf(stderr, "error \"%s\", status %llx, %zu blocks left, %zu complaints (%s), %llu illegal records\n",
                     Result.Error.c_str(), Result.Status, Result.Leaks.size(), Result.Complaints.size(),
                     Result.Complaints.empty() ? "" : Result.Complaints[0].c_str(), BoardContractFaults());
        std::abort();
    }
    return 0;
}
