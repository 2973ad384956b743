// Long use: what a turn takes from the pool it gives back, and it takes no longer than the first ones, at any time of the
// clocks, whatever is done.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <ctime>
#include <random>
#include <vector>

#include "platform/host/CurrentBoot.h"
#include "platform/host/Session.h"
#include "tests/console/Places.h"

namespace {

constexpr UINT64 gFirstLook = 1000; // by then everything that is made at first use has been used
constexpr UINTN gParts = 30;        // of the turns, each timed for itself
constexpr UINTN gFewParts = gParts / 3;
constexpr double gSlower = 2; // more than a busy machine makes of it, less than growth does

UINT64 TurnsWanted()
{
    static const char* const Wanted = std::getenv("VENTARA_SOAK_TURNS");
    static const UINT64 Turns = Wanted != nullptr   ? std::strtoull(Wanted, nullptr, 10)
                                : VENTARA_SANITIZED ? 8000
                                                    : 200000;
    return Turns;
}

double ProcessorSeconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

struct POOL_LOOK {
    UINT64 Blocks = 0;
    UINT64 Bytes = 0;
    UINT64 Turn = 0;
};

struct SOAK {
    std::mt19937_64 Random{20260101};
    POOL_LOOK First;
    POOL_LOOK Last;
    UINT64 Turns = 0;            // of the main loop
    std::vector<double> Seconds; // when each part was over

    UINT64 Draw(UINT64 Below) { return Random() % Below; }
    VOID Act();
    VOID Look();
};

POOL_LOOK LookAtPool()
{
    POOL_LOOK Look = {.Turn = gCurrentBoot->Trace.Turn};
    for (const POOL_BLOCK& Block : gCurrentBoot->Pool.Held(gCurrentBoot->Trace.Start)) {
        Look.Blocks++;
        Look.Bytes += Block.Size;
    }
    return Look;
}

// A person who is everywhere, never rests and never leaves.
VOID SOAK::Act()
{
    POINTER_STATE& Pointer = gCurrentBoot->Pointer.State;
    switch (Draw(16)) {
    case 0:
    case 1:
    case 2: {
        const PLACE& Place = gPlacesOfUse[Draw(std::size(gPlacesOfUse))];
        Pointer.X = Place.X;
        Pointer.Y = Place.Y;
        break;
    }
    case 3: // anywhere but on Exit
        Pointer.X = static_cast<INT64>(Draw(static_cast<UINT64>(Button(EXIT).X)));
        Pointer.Y = static_cast<INT64>(Draw(768));
        break;
    case 4:
    case 5:
    case 6:
        Pointer.Left ^= 1;
        break;
    case 7:
        gCurrentBoot->Consoles.Press(0, u"fFdDcC\r"[Draw(7)]);
        break;
    case 8:
    case 9:
    case 10:
        gCurrentBoot->Clock.Advance(200000);
        break;
    case 11:
        gCurrentBoot->Clock.Advance(Draw(5000000));
        break;
    default:
        gCurrentBoot->Clock.Advance(Draw(60000));
        break;
    }
}

VOID SOAK::Look()
{
    Turns++;
    if (gCurrentBoot->Trace.Turn >= (Seconds.size() + 1) * (TurnsWanted() / (gParts + 1))) {
        Seconds.push_back(ProcessorSeconds());
    }
    if (Turns == gFirstLook) {
        First = LookAtPool();
    } else if (Turns % gFirstLook == 0) {
        Last = LookAtPool();
    }
}

bool AtCall(VOID* Context, CALL Call, EFI_STATUS*, bool*)
{
    SOAK& Soak = *static_cast<SOAK*>(Context);
    if (Call == CALL_WAIT_FOR_EVENT) {
        Soak.Look();
        Soak.Act();
    } else if (Call == CALL_UPDATE_MESSAGE_BOX) {
        Soak.Act(); // a page is open, and its turns are no turns of the main loop
    }
    return false;
}

// The middle one of some parts' lengths, the first part behind At.
double MiddlePart(const std::vector<double>& Seconds, UINTN At)
{
    std::vector<double> Lengths;
    for (UINTN Part = At + 1; Part <= At + gFewParts; Part++) {
        Lengths.push_back(Seconds[Part] - Seconds[Part - 1]);
    }
    std::sort(Lengths.begin(), Lengths.end());
    return Lengths[Lengths.size() / 2];
}

VOID Endure(SESSION_OPTIONS Options)
{
    SOAK Soak;
    Options.Script = "turn " + std::to_string(TurnsWanted()) + "\n";
    Options.ImagePath = VENTARA_CONSOLE_IMAGE;
    Options.Failures = {.Call = AtCall, .Allocation = nullptr, .Context = &Soak};
    const SESSION_RESULT Result = RunSession(Options);
    EXPECT_EQ(Result.Error, "");
    EXPECT_EQ(Result.Status, EFI_SUCCESS);
    EXPECT_GE(Soak.Turns, TurnsWanted() / 4); // the rest were turns of open pages
    EXPECT_NE(Soak.First.Blocks, 0u);
    EXPECT_GT(Soak.Last.Turn, Soak.First.Turn);
    EXPECT_EQ(Soak.Last.Blocks, Soak.First.Blocks);
    EXPECT_EQ(Soak.Last.Bytes, Soak.First.Bytes);
    EXPECT_TRUE(Result.Leaks.empty()) << Result.Leaks[0].Description;
    EXPECT_TRUE(Result.Complaints.empty()) << Result.Complaints[0];
    ASSERT_GE(Soak.Seconds.size(), gParts);
    const double Early = MiddlePart(Soak.Seconds, 0);
    const double Late = MiddlePart(Soak.Seconds, gParts - 1 - gFewParts);
    EXPECT_LT(Late, Early * gSlower) << "the turns become slower";
    std::printf("%llu turns of the main loop, %llu blocks, %llu bytes, a part in %.3f s early and %.3f s late\n",
                Soak.Turns, Soak.Last.Blocks, Soak.Last.Bytes, Early, Late);
}

TEST(Soak, PoolAndSpeedStayTheSameOverALongUse) { Endure({}); }

// The CPU's timer counts nanoseconds and goes over its end a minute after the start; the monotonic count goes over its own
// while the start makes its identifiers. The rotations begin anew every few turns by themselves.
TEST(Soak, PoolAndSpeedStayTheSameWhileTimerAndCountGoOverTheirEnds)
{
    SESSION_OPTIONS Options;
    Options.Board = "kind0";
    Options.TimerAtStart = 0 - 60000000000ull;
    Options.CountAtStart = 0 - 50ull;
    Endure(Options);
}

} // namespace
