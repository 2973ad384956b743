#include "tests/console/ConsoleBench.h"

namespace {

// Readings come in a round of 8 ticks and paintings in one of 14, which meet in 56 ways. All voltages step at once, each
// time 29 ticks after the last, so that the 56 steps fall into all of these ways; after 22 ticks each has been read, and
// then painted.
TEST(GaugeSampling, FollowsAStepAtWhicheverTickItComes)
{
    constexpr int Steps = 56;
    constexpr UINT64 TicksOfAStep = 29;
    SCENE Scene;
    for (int Step = 0; Step < Steps; Step++) {
        for (int Number = 0; Number < 7; Number++) {
            // 3.101 volts on the first gauge after the first step, 3.102 on the second, 3.111 on the first after the second.
            Scene.Reading(11 + Number, static_cast<UINT64>(3101 + 10 * Step + Number));
        }
        Scene.Ticks(TicksOfAStep);
    }
    const RUN Run = Scene.Play();

    std::string Late; // which gauges show another number when their time is over
    std::string Shown[7];
    std::string Rendered;
    int Step = 0;
    for (const CALL_LINE& Line : Run.Calls) {
        if (Line.Turn > TicksOfAStep * static_cast<UINT64>(Step + 1)) {
            for (int Number = 0; Number < 7; Number++) {
                if (Shown[Number] != "3." + std::to_string(101 + 10 * Step + Number)) {
                    Late += " " + std::to_string(Number) + " at " + std::to_string(Step) + ",";
                }
            }
            if (++Step == Steps) {
                break;
            }
        }
        if (Line.Call == "StringToImage") {
            Rendered = Line.Text("text");
        } else if (Line.Call == "Blt" && AreaOf(Line).Y == Gauge(0).Y) {
            const int Number = (AreaOf(Line).X - Gauge(0).X) / Gauge(0).Width;
            ASSERT_EQ(AreaOf(Line), Gauge(Number));
            if (Rendered.starts_with("3.")) { // no readout's number has a point
                Shown[Number] = Rendered;
            }
            Rendered.clear();
        }
    }
    EXPECT_EQ(Step, Steps);
    EXPECT_EQ(Late, "");
}

} // namespace
