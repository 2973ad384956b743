#include "tests/console/ConsoleBench.h"

namespace {

constexpr UINT64 gLefts[7] = {69, 196, 323, 450, 577, 704, 831};

// Readings come in a round of 8 ticks and paintings in one of 14, which meet in 56 ways. All voltages step at once, each
// time 29 ticks after the last, so that the 56 steps fall into all of these ways; after 22 ticks each has been read, and
// then painted.
TEST(GaugeSampling, FollowsAStepAtWhicheverTickItComes)
{
    constexpr int Steps = 56;
    constexpr UINT64 TicksOfAStep = 29;
    SCENE Scene;
    Scene.Options.LowTextPictures = true;
    for (int Step = 0; Step < Steps; Step++) {
        for (int Gauge = 0; Gauge < 7; Gauge++) {
            // 3.101 volts on the first gauge after the first step, 3.102 on the second, 3.111 on the first after the second.
            Scene.Line("reading " + std::to_string(11 + Gauge) + " " + std::to_string(3101 + 10 * Step + Gauge));
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
            for (int Gauge = 0; Gauge < 7; Gauge++) {
                if (Shown[Gauge] != "3." + std::to_string(101 + 10 * Step + Gauge)) {
                    Late += " " + std::to_string(Gauge) + " at " + std::to_string(Step) + ",";
                }
            }
            if (++Step == Steps) {
                break;
            }
        }
        if (Line.Call == "StringToImage") {
            Rendered = Line.Text("text");
        } else if (Line.Call == "Blt" && Line.Number("y") == 624 && Line.Number("width") == 127) {
            const auto Gauge = std::find(std::begin(gLefts), std::end(gLefts), Line.Number("x")) - std::begin(gLefts);
            ASSERT_LT(Gauge, 7);
            if (Rendered.starts_with("3.")) { // no readout's number has a point
                Shown[Gauge] = Rendered;
            }
            Rendered.clear();
        }
    }
    EXPECT_EQ(Step, Steps);
    EXPECT_EQ(Late, "");
}

} // namespace
