// Times the console's turns and its start on the hosted firmware, and tells where the time goes.
//
//     turn_bench                      the table, warm and cold
//     turn_bench --svg FILE           and a picture of where the time of a turn goes
//     turn_bench --displays           what other displays cost
//     turn_bench --pool               what the console holds of the pool at rest, by who asked for it
//     turn_bench --scene NAME TURNS   plays a scene for callgrind, which then counts those turns alone
//
// The console is the loaded image, as in the command `ventara`, and its main loop runs by itself: a turn is the time from
// one wait to the next, with the firmware calls in it. The turns of a scene repeat themselves after some number, since
// the readouts and gauges go round; of each turn of that round the least time counts, and their mean is the figure. Where
// the time goes is measured in plays of their own: looking at the clock around each call takes 50 ns, and there are calls
// enough to make a tick or a drag look a third slower than it is.
#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "bench/TurnClock.h"
#include "platform/board/ArtworkPack.h"
#include "platform/host/Boot.h"
#include "platform/host/ImageLoader.h"
#include "shell/Main.h"
#include "support/Identifiers.h"
#include "support/Pool.h"

#if __has_include(<valgrind/callgrind.h>)
#include <valgrind/callgrind.h>
#define TOGGLE_COUNTING() CALLGRIND_TOGGLE_COLLECT
#else
#define TOGGLE_COUNTING() (VOID)0
#endif

namespace {

constexpr UINT64 gLeadTurns = 60; // before the first that counts
constexpr int gStarts = 20;
constexpr double gStartGoal = 12; // milliseconds
constexpr size_t gSweepBytes = 4 * 1024 * 1024;
constexpr std::chrono::seconds gFreeTime{1};
constexpr UINT64 gTick = 200000;
constexpr UINT64 gOtherTimer = 5000000; // its turn is no tick

constexpr size_t gFramePixels = 391 * 241;
constexpr size_t gFrameRow = 391 * 4;
constexpr size_t gScreenRow = 1024 * 4;
constexpr size_t gFrameRows = 241;

double Nanoseconds(std::chrono::steady_clock::duration Time)
{
    return std::chrono::duration<double, std::nano>(Time).count();
}

// Nanoseconds in each place.
using SHARES = std::array<double, PLACE_COUNT>;

SHARES ReadShares()
{
    const SPLIT& Split = ReadSplit();
    SHARES Shares = {};
    for (size_t Place = 0; Place < PLACE_COUNT; Place++) {
        Shares[Place] = static_cast<double>(Split.Time[Place]);
    }
    return Shares;
}

TIMED_TABLES TablesOf(BOOT& Boot)
{
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Adapter = &Boot.Protocols.GraphicsOutput;
    return {.Console = &Boot.ConsoleTable,
            .Finder = Boot.FirmwareTable.BootServices,
            .Shown = Boot.Protocols.Shown,
            .Adapter = Boot.Protocols.Shown == Adapter ? nullptr : Adapter,
            .Font = &Boot.Protocols.Font};
}

// What this process was given of the processor: for what takes so long that others may come in between.
double ProcessorNanoseconds()
{
    timespec Now = {};
    (void)clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &Now);
    return static_cast<double>(Now.tv_sec) * 1e9 + static_cast<double>(Now.tv_nsec);
}

struct SCENE_FACTS {
    const char* Name;
    const char* Unit; // T or F
    double Goal;      // of the mean
    double WorstGoal;
    UINT64 Turns;
    // What happens before a turn, and its place in the round; -1 for a turn that is none of the scene's.
    INT64 (*Prepare)(BOOT& Boot, UINT64 Turn);
};

INT64 PrepareRest(BOOT&, UINT64 Turn) { return static_cast<INT64>(Turn % 14); }

INT64 PrepareTick(BOOT& Boot, UINT64 Turn)
{
    Boot.Clock.Advance(gTick);
    const UINT64 Moment = Boot.Clock.Microseconds();
    if (Moment % gOtherTimer < gTick) {
        return -1;
    }
    const UINT64 Ticks = Moment / gTick - Moment / gOtherTimer;
    return static_cast<INT64>(Turn % 14 * 56 + Ticks % 56);
}

// The second node of the curve on top is taken at its middle and led to and fro.
INT64 PrepareDrag(BOOT& Boot, UINT64 Turn)
{
    const INT64 Round = static_cast<INT64>(Turn % 28);
    Boot.Pointer.State.X = 487 + (Turn < 10 ? 0 : Round < 14 ? Round : 28 - Round);
    Boot.Pointer.State.Y = 397 + (Turn < 10 ? 0 : 2);
    Boot.Pointer.State.Left = Turn >= 4 ? 1 : 0;
    return Round;
}

constexpr SCENE_FACTS gScenes[] = {
    {"rest", "T", 1.5, 6, 14 * 200, PrepareRest},
    {"tick", "T", 9, 14, 20000, PrepareTick},
    {"drag", "F", 3, 4.5, 28 * 200, PrepareDrag},
};

struct TURN_FIGURES {
    double Least = std::numeric_limits<double>::infinity();
    SHARES Split = {};
};

struct SCENE_RESULT {
    double Least = std::numeric_limits<double>::infinity(); // of the round's turns: one without a text
    double Mean = 0;
    double Worst = 0;
    SHARES Split = {}; // of the mean
};

struct SCENE_RUN {
    const SCENE_FACTS* Facts = nullptr;
    BOOT* Boot = nullptr;
    bool Cold = false;
    bool Count = false; // for callgrind
    UINT64 TurnsToGo = 0;

    UINT64 Turn = 0;
    INT64 Place = -1;
    std::map<INT64, TURN_FIGURES> Figures;
    std::vector<UINT8> Other = std::vector<UINT8>(gSweepBytes);
    std::chrono::steady_clock::time_point Since;

    VOID NextTurn();
};

VOID SCENE_RUN::NextTurn()
{
    if (!Count) {
        const double Time = Nanoseconds(std::chrono::steady_clock::now() - Since);
        const SHARES Split = ReadShares();
        if (Turn > gLeadTurns && Place >= 0) {
            TURN_FIGURES& Figure = Figures[Place];
            if (Time < Figure.Least) {
                Figure = {Time, Split};
            }
        }
    }
    Turn++;
    if (Turn == gLeadTurns && Count) {
        TOGGLE_COUNTING();
    }
    if (Turn == gLeadTurns + TurnsToGo) {
        if (Count) {
            TOGGLE_COUNTING();
        }
        Boot->Pointer.State.Left = 0;
        Boot->Consoles.Press(SCAN_ESC, 0);
        Place = -1;
    } else {
        Place = Facts->Prepare(*Boot, Turn);
    }
    if (Cold) {
        for (size_t I = 0; I < Other.size(); I += 64) {
            Other[I]++;
        }
    }
    if (!Count) {
        Since = std::chrono::steady_clock::now();
        RestartSplit();
    }
}

[[noreturn]] VOID Fail(const std::string& Text)
{
    std::fprintf(stderr, "turn_bench: %s\n", Text.c_str());
    std::exit(1);
}

// A boot with its board and the console's image loaded.
struct LOADED {
    BOOT Boot;
    VOID* Image = nullptr;
    IMAGE_ENTRY_POINT Entry = nullptr;

    explicit LOADED(const PANEL& Panel = {}, bool VirtualClock = true)
        : Boot({.VirtualClock = VirtualClock,
                .ArtworkPack = gArtworkPack,
                .ArtworkPackSize = gArtworkPackSize,
                .Panel = Panel})
    {
        std::string Error;
        if (EfiError(Boot.InstallBoard())) {
            Fail("the board's services can't be installed");
        }
        Image = LoadImage(VENTARA_CONSOLE_IMAGE, &Entry, &Error);
        if (Image == nullptr) {
            Fail(Error);
        }
    }
    VOID Start(TURN_LISTENER Listener)
    {
        Boot.Crossing.Listener = Listener;
        if (EfiError(Entry(Boot.BeginStart(), &Boot.ConsoleTable))) {
            Fail("the console failed");
        }
    }
    ~LOADED() { UnloadImage(Image); }
};

SCENE_RESULT PlayScene(const SCENE_FACTS& Facts, bool Cold, bool Timers, const PANEL& Panel = {})
{
    LOADED Loaded(Panel);
    if (Timers) {
        PutTimers(TablesOf(Loaded.Boot));
    }
    SCENE_RUN Run;
    Run.Facts = &Facts;
    Run.Boot = &Loaded.Boot;
    Run.Cold = Cold;
    Run.TurnsToGo = Facts.Turns;
    Loaded.Start({.BeginTurn = [](VOID* Context) { static_cast<SCENE_RUN*>(Context)->NextTurn(); }, .Context = &Run});
    if (Timers) {
        RemoveTimers();
    }
    SCENE_RESULT Result;
    for (const auto& [Place, Figure] : Run.Figures) {
        Result.Mean += Figure.Least / static_cast<double>(Run.Figures.size());
        Result.Least = std::min(Result.Least, Figure.Least);
        Result.Worst = std::max(Result.Worst, Figure.Least);
        for (size_t I = 0; I < PLACE_COUNT; I++) {
            Result.Split[I] += Figure.Split[I] / static_cast<double>(Run.Figures.size());
        }
    }
    return Result;
}

VOID PlayForCounting(const char* Name, UINT64 Turns)
{
    for (const SCENE_FACTS& Facts : gScenes) {
        if (std::strcmp(Facts.Name, Name) == 0) {
            LOADED Loaded;
            SCENE_RUN Run;
            Run.Facts = &Facts;
            Run.Boot = &Loaded.Boot;
            Run.Count = true;
            Run.TurnsToGo = Turns;
            Loaded.Start(
                {.BeginTurn = [](VOID* Context) { static_cast<SCENE_RUN*>(Context)->NextTurn(); }, .Context = &Run});
            return;
        }
    }
    Fail(std::string("no scene ") + Name);
}

// The loop by itself in real time, its five ticks a second included: turns in a second of the processor's time.
double PlayFreely(const PANEL& Panel = {})
{
    struct CONTEXT {
        BOOT* Boot;
        UINT64 Turns = 0;
        std::chrono::steady_clock::time_point Since = {};
        double ProcessorSince = 0;
        double Rate = 0;
    };
    LOADED Loaded(Panel, false);
    CONTEXT Context = {.Boot = &Loaded.Boot};
    Loaded.Start({.BeginTurn =
                      [](VOID* Given) {
                          CONTEXT* This = static_cast<CONTEXT*>(Given);
                          const auto Now = std::chrono::steady_clock::now();
                          if (++This->Turns == gLeadTurns) {
                              This->Since = Now;
                              This->ProcessorSince = ProcessorNanoseconds();
                          } else if (This->Turns > gLeadTurns && This->Rate == 0 && Now - This->Since > gFreeTime) {
                              This->Rate = static_cast<double>(This->Turns - gLeadTurns) * 1e9 /
                                           (ProcessorNanoseconds() - This->ProcessorSince);
                              This->Boot->Consoles.Press(SCAN_ESC, 0);
                          }
                      },
                  .Context = &Context});
    return Context.Rate;
}

struct START_RUN {
    BOOT* Boot;
    double Since;
    double Time = 0;
    SHARES Split = {};
    bool Told = false;
};

// From the entry to the first turn, when all of the first picture is on the display; of each part the least of all starts.
TURN_FIGURES PlayStarts(bool Timers, const PANEL& Panel = {})
{
    TURN_FIGURES Best;
    for (int I = 0; I < gStarts; I++) {
        LOADED Loaded(Panel);
        if (Timers) {
            PutTimers(TablesOf(Loaded.Boot));
        }
        START_RUN Run = {.Boot = &Loaded.Boot, .Since = ProcessorNanoseconds()};
        RestartSplit();
        Loaded.Start({.BeginTurn =
                          [](VOID* Context) {
                              START_RUN* This = static_cast<START_RUN*>(Context);
                              if (!This->Told) {
                                  This->Time = ProcessorNanoseconds() - This->Since;
                                  This->Split = ReadShares();
                                  This->Told = true;
                                  This->Boot->Consoles.Press(SCAN_ESC, 0);
                              }
                          },
                      .Context = &Run});
        if (Timers) {
            RemoveTimers();
        }
        Best.Least = std::min(Best.Least, Run.Time);
        for (size_t Place = 0; Place < PLACE_COUNT; Place++) {
            Best.Split[Place] = I == 0 ? Run.Split[Place] : std::min(Best.Split[Place], Run.Split[Place]);
        }
    }
    return Best;
}

// Identifiers alone, by the console's own function. A start makes one for each component, a good hundred.
constexpr int gTimedIdentifiers = 100;

double TimeIdentifiers()
{
    BOOT Boot({.ArtworkPack = gArtworkPack, .ArtworkPackSize = gArtworkPackSize});
    if (EfiError(Boot.InstallBoard())) {
        Fail("the board's services can't be installed");
    }
    double Least = std::numeric_limits<double>::infinity();
    RunLibraryConstructors(Boot.BeginStart(), &Boot.ConsoleTable);
    for (int I = 0; I < gStarts; I++) {
        const auto Since = std::chrono::steady_clock::now();
        for (int Each = 0; Each < gTimedIdentifiers; Each++) {
            EFI_GUID Guid;
            GenerateGuid(&Guid);
        }
        Least = std::min(Least, Nanoseconds(std::chrono::steady_clock::now() - Since));
    }
    RunLibraryDestructors(gImageHandle);
    return Least;
}

struct REFERENCES {
    double T[2]; // warm, cold
    double F[2];
};

REFERENCES TimeReferences()
{
    std::vector<UINT8> From(gFramePixels * 4, 1);
    std::vector<UINT8> To(gFramePixels * 4);
    std::vector<UINT8> Screen(gScreenRow * 768);
    std::vector<UINT8> Other(gSweepBytes);
    REFERENCES Found;
    for (int Cold = 0; Cold < 2; Cold++) {
        Found.T[Cold] = Found.F[Cold] = std::numeric_limits<double>::infinity();
        for (int I = 0; I < 400; I++) {
            for (int Both = 0; Both < 2; Both++) {
                for (size_t At = 0; Cold == 1 && At < Other.size(); At += 64) {
                    Other[At]++;
                }
                const auto Since = std::chrono::steady_clock::now();
                std::memcpy(To.data(), From.data(), To.size());
                asm volatile("" ::: "memory");
                for (size_t Row = 0; Both == 1 && Row < gFrameRows; Row++) {
                    std::memcpy(Screen.data() + (262 + Row) * gScreenRow + 382 * 4, To.data() + Row * gFrameRow,
                                gFrameRow);
                }
                asm volatile("" ::: "memory");
                double& Least = Both == 0 ? Found.T[Cold] : Found.F[Cold];
                Least = std::min(Least, Nanoseconds(std::chrono::steady_clock::now() - Since));
            }
        }
    }
    return Found;
}

VOID PrintPlaces()
{
    for (const char* Name : gPlaceNames) {
        std::printf(" %9s", Name);
    }
    std::printf("\n");
}

VOID PrintSplit(const char* Name, const SHARES& Split, double Unit, const char* Format, int Width = 8)
{
    std::printf("%-*s", Width, Name);
    for (const double Part : Split) {
        std::printf(Format, Part / Unit);
    }
    std::printf("\n");
}

VOID PrintPool()
{
    LOADED Loaded;
    Loaded.Boot.Pool.TraceOwners = true;
    struct CONTEXT {
        BOOT* Boot;
        int Turn = 0;
    } Context = {&Loaded.Boot};
    Loaded.Start({.BeginTurn =
                      [](VOID* Given) {
                          CONTEXT* This = static_cast<CONTEXT*>(Given);
                          if (++This->Turn == 60) {
                              UINT64 All = 0;
                              for (const POOL_BLOCK& Block : This->Boot->Pool.Held(1)) {
                                  std::printf("%llu", static_cast<unsigned long long>(Block.Size));
                                  for (const VOID* Owner : Block.Owner) {
                                      if (Owner != nullptr) {
                                          std::printf(" %s", DescribePlace(Owner).c_str());
                                      }
                                  }
                                  std::printf("\n");
                                  All += Block.Size;
                              }
                              std::printf("all %llu\n", static_cast<unsigned long long>(All));
                              This->Boot->Consoles.Press(SCAN_ESC, 0);
                          }
                      },
                  .Context = &Context});
}

// The console on displays that it can't work on itself. What reaches the display is counted in another run than the times.
struct DISPLAY_FACTS {
    const char* Name;
    PANEL Panel;
};

constexpr DISPLAY_FACTS gDisplays[] = {
    {"1024x768, as it is", {}},
    {"1024x768, Blt alone", {1024, 768, PANEL_BLT_ONLY}},
    {"1024x768, red first", {1024, 768, PANEL_RED_FIRST}},
    {"2048x1536", {2048, 1536, PANEL_BLUE_FIRST}},
    {"3840x2160", {3840, 2160, PANEL_BLUE_FIRST}},
    {"800x600", {800, 600, PANEL_BLUE_FIRST}},
};

struct BLOCKS {
    UINT64 Count;
    UINT64 Pixels;
};

BLOCKS gBlocks;
decltype(EFI_GRAPHICS_OUTPUT_PROTOCOL::Blt) gTrueBlt;

EFI_STATUS CountBlock(EFI_GRAPHICS_OUTPUT_PROTOCOL* This, EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer,
                      EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation, UINTN SourceX, UINTN SourceY, UINTN DestinationX,
                      UINTN DestinationY, UINTN Width, UINTN Height, UINTN Delta)
{
    gBlocks = {gBlocks.Count + 1, gBlocks.Pixels + Width * Height};
    return gTrueBlt(This, Buffer, Operation, SourceX, SourceY, DestinationX, DestinationY, Width, Height, Delta);
}

// What the display gets until the first turn, and then in a tick. Single pixels are sent in each turn, which lasts longer
// here than they may be held back.
struct DISPLAY_COUNT {
    BOOT* Boot;
    BLOCKS Start = {};
    BLOCKS Ticks = {};
    UINT64 Turn = 0;

    VOID NextTurn()
    {
        constexpr UINT64 gChartTurns = 448; // the chart is full
        constexpr UINT64 Ticks = 56;
        Boot->SettleDisplay();
        if (Turn == 0) {
            Start = gBlocks;
        } else if (Turn == gChartTurns) {
            gBlocks = {};
        } else if (Turn == gChartTurns + Ticks) {
            this->Ticks = {gBlocks.Count / Ticks, gBlocks.Pixels / Ticks};
            Boot->Consoles.Press(SCAN_ESC, 0);
        }
        Turn++;
        (void)PrepareTick(*Boot, Turn);
    }
};

DISPLAY_COUNT CountBlocks(const PANEL& Panel)
{
    LOADED Loaded(Panel);
    gBlocks = {};
    gTrueBlt = Loaded.Boot.Protocols.GraphicsOutput.Blt;
    Loaded.Boot.Protocols.GraphicsOutput.Blt = CountBlock;
    DISPLAY_COUNT Count = {&Loaded.Boot};
    Loaded.Start(
        {.BeginTurn = [](VOID* Context) { static_cast<DISPLAY_COUNT*>(Context)->NextTurn(); }, .Context = &Count});
    return Count;
}

VOID PrintDisplays(const REFERENCES& References)
{
    std::printf(
        "\ndisplays: the start, and a tick, warm, with its microseconds in Blt; goals: with Blt alone a start of at "
        "most 1.5 "
        "times,\nand at 2048x1536 a tick of at most 4 T more; turns in a second of the processor; and what reaches the "
        "display\n%-20s %8s %6s %8s %7s %7s %8s %9s | %7s %9s %6s %9s\n",
        "", "start ms", "times", "tick us", "in Blt", "T", "T more", "turns", "blocks", "pixels", "a tick", "pixels");
    double Start = 0;
    double Tick = 0;
    std::vector<SHARES> Accounts;
    for (const DISPLAY_FACTS& Display : gDisplays) {
        const double ItsStart = PlayStarts(false, Display.Panel).Least / 1e6;
        const double ItsTick = PlayScene(gScenes[1], false, false, Display.Panel).Mean;
        const SHARES Split = PlayScene(gScenes[1], false, true, Display.Panel).Split;
        Start = Start == 0 ? ItsStart : Start;
        Tick = Tick == 0 ? ItsTick : Tick;
        const DISPLAY_COUNT Count = CountBlocks(Display.Panel);
        Accounts.push_back(PlayScene(gScenes[0], false, true, Display.Panel).Split);
        Accounts.push_back(Split);
        std::printf("%-20s %8.1f %6.2f %8.1f %7.1f %7.2f %8.2f %9.0f | %7llu %9llu %6llu %9llu\n", Display.Name,
                    ItsStart, ItsStart / Start, ItsTick / 1000, (Split[PLACE_BLT] + Split[PLACE_ADAPTER]) / 1000,
                    ItsTick / References.T[0], (ItsTick - Tick) / References.T[0], PlayFreely(Display.Panel),
                    Count.Start.Count, Count.Start.Pixels, Count.Ticks.Count, Count.Ticks.Pixels);
    }
    std::printf("\nwhere the microseconds of a turn at rest and of a tick go\n%-20s", "");
    PrintPlaces();
    for (size_t I = 0; I < Accounts.size(); I++) {
        PrintSplit(I % 2 == 0 ? gDisplays[I / 2].Name : "", Accounts[I], 1000, " %9.2f", 20);
    }
}

// A bar a scene, cut into the places where its time goes.
VOID WriteSvg(const char* File, const std::vector<SCENE_RESULT>& Results)
{
    FILE* Out = std::fopen(File, "w");
    if (Out == nullptr) {
        Fail(std::string("can't write ") + File);
    }
    constexpr const char* Colors[PLACE_COUNT] = {"#3a7ca5", "#81c3d7", "#d9dcd6", "#f2a65a", "#b56576",
                                                 "#6d597a", "#588157", "#3a5a40", "#e9c46a", "#a3b18a",
                                                 "#bc6c25", "#8d99ae", "#264653"};
    double Most = 0;
    for (const SCENE_RESULT& Each : Results) {
        Most = std::max(Most, Each.Mean);
    }
    std::fprintf(Out, "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"760\" height=\"240\" "
                      "font-family=\"sans-serif\" font-size=\"13\">\n"
                      "<rect width=\"760\" height=\"240\" fill=\"white\"/>\n");
    for (size_t I = 0; I < Results.size(); I++) {
        double X = 60;
        const int Y = 20 + static_cast<int>(I) * 44;
        std::fprintf(Out, "<text x=\"12\" y=\"%d\">%s</text>\n", Y + 19, gScenes[I].Name);
        double All = 0;
        for (const double Part : Results[I].Split) {
            All += Part;
        }
        for (size_t Place = 0; Place < PLACE_COUNT; Place++) {
            const double Width = Results[I].Split[Place] / Most * 580;
            std::fprintf(Out, "<rect x=\"%.1f\" y=\"%d\" width=\"%.1f\" height=\"28\" fill=\"%s\"/>\n", X, Y, Width,
                         Colors[Place]);
            X += Width;
        }
        std::fprintf(Out, "<text x=\"%.1f\" y=\"%d\">%.1f us</text>\n", X + 6, Y + 19, All / 1000);
    }
    for (size_t Place = 0; Place < PLACE_COUNT; Place++) {
        const int X = 60 + static_cast<int>(Place % 5) * 130;
        const int Y = 160 + static_cast<int>(Place / 5) * 26;
        std::fprintf(Out,
                     "<rect x=\"%d\" y=\"%d\" width=\"14\" height=\"14\" fill=\"%s\"/><text x=\"%d\" "
                     "y=\"%d\">%s</text>\n",
                     X, Y, Colors[Place], X + 20, Y + 12, gPlaceNames[Place]);
    }
    std::fprintf(Out, "</svg>\n");
    std::fclose(Out);
}

VOID PrintTable(const char* SvgFile)
{
    const REFERENCES References = TimeReferences();
    std::printf(
        "T: one copy of 391 x 241 pixels, %.1f us warm and %.1f us cold. F: that and its rows into the screen,\n"
        "%.1f us and %.1f us. A turn with all its firmware calls, of the round's turns the least (which has no "
        "text),\nthe mean and the worst.\n\n",
        References.T[0] / 1000, References.T[1] / 1000, References.F[0] / 1000, References.F[1] / 1000);
    std::printf("%-6s %-4s %9s | %8s %7s %7s %7s | %8s %7s %7s %7s\n", "turn", "unit", "goal", "warm us", "least",
                "mean", "worst", "cold us", "least", "mean", "worst");
    std::vector<SCENE_RESULT> Split;
    for (const SCENE_FACTS& Facts : gScenes) {
        const bool InF = Facts.Unit[0] == 'F';
        std::printf("%-6s %-4s %4.1f %4.1f", Facts.Name, Facts.Unit, Facts.Goal, Facts.WorstGoal);
        for (int Cold = 0; Cold < 2; Cold++) {
            const SCENE_RESULT Result = PlayScene(Facts, Cold == 1, false);
            const double Unit = InF ? References.F[Cold] : References.T[Cold];
            std::printf(" | %8.1f %7.2f %7.2f %7.2f", Result.Mean / 1000, Result.Least / Unit, Result.Mean / Unit,
                        Result.Worst / Unit);
        }
        std::printf("\n");
        Split.push_back(PlayScene(Facts, false, true));
    }
    std::printf("\nby itself, ticks included: %.0f turns in a second of the processor\n", PlayFreely());
    std::printf("\nwhere the microseconds of a warm turn go\n%-8s", "");
    PrintPlaces();
    for (size_t I = 0; I < Split.size(); I++) {
        PrintSplit(gScenes[I].Name, Split[I].Split, 1000, " %9.2f");
    }
    const TURN_FIGURES Start = PlayStarts(false);
    const double IdentifierTime = TimeIdentifiers();
    std::printf(
        "\nstart, from the entry to the whole first picture: %.1f ms of the processor, the least of %d; goal %.0f ms\n"
        "where the milliseconds go (%d identifiers, which are in identity and the console's, take %.2f)\n",
        Start.Least / 1e6, gStarts, gStartGoal, gTimedIdentifiers, IdentifierTime / 1e6);
    PrintSplit("start", PlayStarts(true).Split, 1e6, " %9.2f");
    PrintDisplays(References);
    if (SvgFile != nullptr) {
        WriteSvg(SvgFile, Split);
    }
}

} // namespace

UINT64 ReadBenchTime() { return static_cast<UINT64>(Nanoseconds(std::chrono::steady_clock::now().time_since_epoch())); }

int main(int Count, char** Arguments)
{
    const std::string First = Count > 1 ? Arguments[1] : "";
    if (Count == 1) {
        PrintTable(nullptr);
    } else if (First == "--displays" && Count == 2) {
        PrintDisplays(TimeReferences());
    } else if (First == "--svg" && Count == 3) {
        PrintTable(Arguments[2]);
    } else if (First == "--pool" && Count == 2) {
        PrintPool();
    } else if (First == "--scene" && Count == 4) {
        PlayForCounting(Arguments[2], std::strtoull(Arguments[3], nullptr, 10));
    } else {
        std::fprintf(stderr, "usage: %s [--svg FILE | --displays | --pool | --scene NAME TURNS]\n", Arguments[0]);
        return 2;
    }
    return 0;
}
