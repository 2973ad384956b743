// Times everything that is done pixel by pixel and prints it as multiples of plain copies of the same pixels, made by
// the same process in the same minute: figures of that kind hold from one machine to another.
//
// Each piece of work is timed in two states of the processor's caches. Warm: over and over, so that its pictures lie as
// near as they fit. Cold: after other memory has gone through the caches, as in the running console, where the pictures
// of one frame are more than the second-level cache holds. All work is interleaved, and the least time of the
// repetitions counts, since whatever else the machine does can only add to it.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <map>
#include <string>

#include "bench/PixelFirmware.h"
#include "bench/Work.h"
#include "graphics/Kernels.h"

namespace {

constexpr int gRepetitions = 40;
constexpr int gWarmRuns = 12;
constexpr size_t gSweepBytes = 4 * 1024 * 1024;

enum CACHE_STATE { CACHE_WARM, CACHE_COLD, CACHE_STATE_COUNT };
constexpr const char* gStateNames[CACHE_STATE_COUNT] = {"warm", "cold"};

struct RESULT {
    double Nanoseconds[CACHE_STATE_COUNT] = {std::numeric_limits<double>::infinity(),
                                             std::numeric_limits<double>::infinity()};
};

std::string KeyOf(const BENCH_WORK& Work) { return Work.PeerOf.empty() ? Work.Name : Work.PeerOf + "/" + Work.Name; }

// Collects the least time of each benchmark over its repetitions.
class LEAST_TIMES : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& Runs) override
    {
        for (const Run& Each : Runs) {
            if (Each.run_type == Run::RT_Iteration) {
                double& Least = Times[Each.run_name.function_name];
                const double Time = Each.GetAdjustedRealTime();
                Least = Least == 0 ? Time : std::min(Least, Time);
            }
        }
    }
    std::map<std::string, double> Times; // nanoseconds
};

void Sweep(std::vector<UINT8>& Other)
{
    for (size_t I = 0; I < Other.size(); I += 64) {
        Other[I]++;
    }
    benchmark::ClobberMemory();
}

void Time(benchmark::State& State, const BENCH_WORK& Work, CACHE_STATE Cache, std::vector<UINT8>& Other)
{
    Work.Run();
    for (auto _ : State) {
        if (Cache == CACHE_COLD) {
            Sweep(Other);
        }
        const auto Start = std::chrono::steady_clock::now();
        Work.Run();
        benchmark::ClobberMemory();
        State.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - Start).count());
    }
}

// A time in the unit of a piece of work.
double InUnit(const BENCH_WORK& Work, const std::map<std::string, RESULT>& Results, CACHE_STATE Cache)
{
    const double Time = Results.at(KeyOf(Work)).Nanoseconds[Cache];
    switch (Work.Unit) {
    case BENCH_UNIT_T:
        return Time / Results.at("T").Nanoseconds[Cache];
    case BENCH_UNIT_R:
        return Time / Results.at("R").Nanoseconds[Cache];
    case BENCH_UNIT_F:
        return Time / Results.at("F").Nanoseconds[Cache];
    case BENCH_UNIT_PIXEL:
    case BENCH_UNIT_CALL:
        return Time / Work.Quantity;
    case BENCH_UNIT_NONE:
        break;
    }
    return Time;
}

const char* UnitName(BENCH_UNIT Unit)
{
    constexpr const char* Names[] = {"ns", "T", "R", "F", "ns/px", "ns"};
    return Names[Unit];
}

void PrintTable(const std::vector<BENCH_WORK>& Work, const std::map<std::string, RESULT>& Results)
{
    std::printf("T: one copy of 391 x 241 pixels. R: its rows into a surface 1024 pixels wide.\n"
                "F: two copies, grid to canvas to screen. Least of %d repetitions; %s\n\n",
                gRepetitions, "warm: again and again; cold: after 4 MB of other memory.");
    std::printf("%-38s %-6s %7s %9s %9s  %-12s %s\n", "work", "unit", "goal", "warm", "cold", "goal kept",
                "others: warm / cold");
    for (const BENCH_WORK& Own : Work) {
        if (!Own.PeerOf.empty()) {
            continue;
        }
        const double Warm = InUnit(Own, Results, CACHE_WARM);
        const double Cold = InUnit(Own, Results, CACHE_COLD);
        char Goal[16] = "-";
        const char* Kept = "";
        if (Own.Goal != 0) {
            std::snprintf(Goal, sizeof(Goal), "%.2f", Own.Goal);
            const bool WarmKept = Warm <= Own.Goal;
            const bool ColdKept = Cold <= Own.Goal;
            Kept = WarmKept && ColdKept ? "yes" : WarmKept ? "warm only" : ColdKept ? "cold only" : "no";
        }
        std::printf("%-38s %-6s %7s %9.2f %9.2f  %-12s", Own.Name.c_str(), UnitName(Own.Unit), Goal, Warm, Cold, Kept);
        const char* Between = " ";
        for (const BENCH_WORK& Peer : Work) {
            if (Peer.PeerOf == Own.Name) {
                std::printf("%s%s %.2f / %.2f", Between, Peer.Name.c_str(), InUnit(Peer, Results, CACHE_WARM),
                            InUnit(Peer, Results, CACHE_COLD));
                Between = ", ";
            }
        }
        std::printf("\n");
    }
    for (const std::string& Peer : MissingPeers()) {
        std::printf("not measured, as it wasn't there at the build: %s\n", Peer.c_str());
    }
}

// One array of objects; the names hold nothing that JSON would want escaped.
bool WriteJson(const char* File, const std::vector<BENCH_WORK>& Work, const std::map<std::string, RESULT>& Results)
{
    std::ofstream Out(File);
    Out << "[\n";
    const char* Between = "";
    for (const BENCH_WORK& Each : Work) {
        const RESULT& Result = Results.at(KeyOf(Each));
        Out << Between << "  {\"work\": \"" << (Each.PeerOf.empty() ? Each.Name : Each.PeerOf) << "\", \"by\": \""
            << (Each.PeerOf.empty() ? "ventara" : Each.Name) << "\", \"unit\": \"" << UnitName(Each.Unit) << "\", ";
        if (Each.Goal != 0) {
            Out << "\"goal\": " << Each.Goal << ", ";
        }
        for (int Cache = 0; Cache < CACHE_STATE_COUNT; Cache++) {
            Out << "\"" << gStateNames[Cache] << "\": " << InUnit(Each, Results, static_cast<CACHE_STATE>(Cache))
                << ", \"" << gStateNames[Cache] << "_ns\": " << Result.Nanoseconds[Cache]
                << (Cache + 1 < CACHE_STATE_COUNT ? ", " : "}");
        }
        Between = ",\n";
    }
    Out << "\n]\n";
    Out.close();
    return !Out.fail();
}

} // namespace

int main(int Count, char** Arguments)
{
    const char* JsonFile = nullptr;
    for (int I = 1; I < Count; I++) {
        if (std::strcmp(Arguments[I], "--json") == 0 && I + 1 < Count) {
            JsonFile = Arguments[++I];
        } else if (std::strcmp(Arguments[I], "--sse2") == 0) {
            UseKernels(&gSse2Kernels);
        } else {
            std::fprintf(stderr, "usage: %s [--json FILE] [--sse2]\n", Arguments[0]);
            return 2;
        }
    }
    PIXEL_FIRMWARE Firmware;
    BENCH_PICTURES Pictures;
    std::vector<UINT8> Other(gSweepBytes);
    std::vector<BENCH_WORK> Work;
    AddOwnWork(Work, Pictures);
    AddPeerWork(Work, Pictures);

    char Interleaved[] = "--benchmark_enable_random_interleaving=true";
    char* Flags[] = {Arguments[0], Interleaved, nullptr};
    int FlagCount = 2;
    benchmark::Initialize(&FlagCount, Flags);
    for (const BENCH_WORK& Each : Work) {
        for (int Cache = 0; Cache < CACHE_STATE_COUNT; Cache++) {
            const CACHE_STATE State = static_cast<CACHE_STATE>(Cache);
            benchmark::RegisterBenchmark(
                (KeyOf(Each) + "/" + gStateNames[Cache]).c_str(),
                [&Each, State, &Other](benchmark::State& Run) { Time(Run, Each, State, Other); })
                ->UseManualTime()
                ->Iterations(State == CACHE_WARM ? gWarmRuns : 1)
                ->Repetitions(gRepetitions);
        }
    }
    LEAST_TIMES Least;
    benchmark::RunSpecifiedBenchmarks(&Least);

    std::map<std::string, RESULT> Results;
    for (const BENCH_WORK& Each : Work) {
        for (int Cache = 0; Cache < CACHE_STATE_COUNT; Cache++) {
            Results[KeyOf(Each)].Nanoseconds[Cache] = Least.Times[KeyOf(Each) + "/" + gStateNames[Cache]];
        }
    }
    PrintTable(Work, Results);
    if (JsonFile != nullptr && !WriteJson(JsonFile, Work, Results)) {
        std::fprintf(stderr, "can't write %s\n", JsonFile);
        return 1;
    }
    return 0;
}
