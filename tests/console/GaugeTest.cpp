#include "tests/console/ConsoleBench.h"

namespace {

// One gauge is painted in two ticks, so 28 ticks read and then paint each of them at least once. Ticks fall into even
// turns, in which no readout draws a text.
SCENE& RunAllGauges(SCENE& Scene)
{
    for (int Tick = 0; Tick < 14; Tick++) {
        Scene.Turns().Ticks();
    }
    return Scene;
}

// The text of a gauge's last painting that rendered one, in some turns; "(none)" when no painting did.
std::string LastText(const RUN& Run, int Number, UINT64 FromTurn, UINT64 ToTurn)
{
    std::string Text = "(none)";
    for (UINT64 Turn = FromTurn; Turn <= ToTurn; Turn++) {
        const std::vector<std::string> Texts = Run.Texts(Turn);
        Text = Run.Painted(Turn, Gauge(Number)) != 0 && !Texts.empty() ? Texts.back() : Text;
    }
    return Text;
}

TEST(Gauge, ShowsItsReadingInVolts)
{
    // Values of two rounds, and what each gauge then says.
    const struct {
        UINT64 Millivolts[7];
        const char* Texts[7];
    } Rounds[] = {
        {{850, 90, 95, 12000, 12200, 12250, 12251}, {"0.850", "(none)", "0.095", "12.000", "12.2", "12.250", "12.251"}},
        {{1000, 3300, 5, 100, 10, 13000, 6500}, {"1.000", "3.3", "0.005", "0.10", "(none)", "13.000", "6.5"}},
    };
    for (const auto& Round : Rounds) {
        SCENE Scene;
        for (int Number = 0; Number < 7; Number++) {
            Scene.Reading(11 + Number, Round.Millivolts[Number]);
        }
        const RUN Run = RunAllGauges(Scene).Play();
        for (int Number = 0; Number < 7; Number++) {
            EXPECT_EQ(LastText(Run, Number, 1, 28), Round.Texts[Number]) << Round.Millivolts[Number];
        }
    }
}

TEST(Gauge, KeepsItsValueForAReadingThatItCannotShow)
{
    const char* Bad[7] = {"13001", "18446744073709551615", "9223372036854775808", "4294967296", "100000", "error",
                          "absent"};
    SCENE Scene;
    for (int Number = 0; Number < 7; Number++) {
        Scene.Reading(11 + Number, static_cast<UINT64>(3011 + Number));
    }
    RunAllGauges(Scene.Move(gAway)).Screenshot("good");
    for (int Number = 0; Number < 7; Number++) {
        Scene.Reading(11 + Number, Bad[Number]);
    }
    const RUN Run = RunAllGauges(RunAllGauges(Scene)).Screenshot("bad").Play();
    for (int Number = 0; Number < 7; Number++) {
        Run.ExpectSame("good", "bad", Gauge(Number));
        EXPECT_EQ(LastText(Run, Number, 1, 29), "3.01" + std::to_string(1 + Number));
    }
}

TEST(Gauge, RendersItsTextOnlyForANewValue)
{
    SCENE Scene;
    Scene.Reading(11, 5001);
    const RUN Run = RunAllGauges(Scene).Turns().Ticks().Play(); // gauge 0 is painted in turns 2 and 30
    EXPECT_EQ(LastText(Run, 0, 1, 28), "5.001");
    EXPECT_EQ(LastText(Run, 0, 29, 30), "(none)") << "the value is the same";
    EXPECT_EQ(Run.Painted(30, Gauge(0)), 1u) << "and painted it is all the same";
}

// Whether a dot of a gauge's bar shines: the bar is 124 by 36 pixels at (2, 19) of the gauge.
bool IsLit(const PICTURE& Picture, int Number, int Column, int Row)
{
    return PixelAt(Picture, {Gauge(Number).X + 2 + Column, Gauge(Number).Y + 19 + Row}) != 0x121212;
}

TEST(Gauge, DrawsABarOfDotsClosedAtItsTip)
{
    SCENE Scene;
    Scene.Reading(11, 13000).Reading(12, UINT64{0}).Reading(13, 6500).Move(gAway);
    const RUN Run = RunAllGauges(RunAllGauges(Scene)).Screenshot("bars").Play();
    const PICTURE& Bars = Run.Picture("bars");
    const int Lengths[] = {124, 0, 62}; // of 124 columns
    for (int Number = 0; Number < 3; Number++) {
        SCOPED_TRACE(Number);
        for (int Row = 0; Row < 36; Row++) {
            for (int Column = 0; Column < 124; Column++) {
                const bool Dot = Row >= 22 && Row % 2 == 0 && Column % 2 == 0 && Column <= Lengths[Number];
                const bool Tip = Lengths[Number] > 0 && Column == Lengths[Number] - 1 && Row > 22;
                ASSERT_EQ(IsLit(Bars, Number, Column, Row), Dot || Tip) << "column " << Column << " row " << Row;
            }
        }
    }
    // From #C8FF00 to #64FF00.
    EXPECT_EQ(PixelAt(Bars, {71, 665}), 0xC8FF00u);
    EXPECT_EQ(PixelAt(Bars, {71 + 62, 667}) >> 16, 150u) << "half way";
}

TEST(Gauge, StandsEmptyAtTheStart)
{
    const RUN Run = SCENE().Point(gAway).Turns(2).Screenshot("start").Play();
    const std::vector<std::string> Texts = Run.Texts(0);
    EXPECT_EQ(std::count(Texts.begin(), Texts.end(), "0.000"), 7);
    for (int Number = 0; Number < 7; Number++) {
        EXPECT_TRUE(IsLit(Run.Picture("start"), Number, 0, 22));
        EXPECT_FALSE(IsLit(Run.Picture("start"), Number, 2, 22));
        // Five characters at |0 - 40 + 5| = 35: no letter further left, some of the first within the next eight.
        EXPECT_EQ(CountColor(Run.Picture("start"), 0x606060, Gauge(Number).Part(0, 0, 35, 19)), 0u);
        EXPECT_GT(CountColor(Run.Picture("start"), 0x606060, Gauge(Number).Part(35, 0, 8, 19)), 5u);
    }
}

TEST(Readouts, ShowHostileReadingsAsTheyCome)
{
    const std::pair<const char*, const char*> Cases[] = {{"0", "0"},
                                                         {"9223372036854775808", "-9223372036854775808"},
                                                         {"18446744073709551615", "-1"},
                                                         {"9223372036854775807", "9223372036854775807"},
                                                         {"100000", "100000"}};
    for (const auto& [Value, Shown] : Cases) {
        SCOPED_TRACE(Value);
        SCENE Scene;
        Scene.Turns(14); // presence has been asked, and one round of readouts has gone by
        for (int Item = 0; Item <= 17; Item++) {
            Scene.Reading(Item, Value);
        }
        Scene.Turns(14);
        for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
            Scene.Tab(Fan).Ticks(2); // its chart gets some samples
        }
        const RUN Run = Scene.Play();
        EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
        std::vector<std::string> Texts;
        for (UINT64 Turn = 15; Turn <= 28; Turn++) {
            const std::vector<std::string> OfTurn = Run.Texts(Turn);
            Texts.insert(Texts.end(), OfTurn.begin(), OfTurn.end());
        }
        EXPECT_EQ(Texts, std::vector<std::string>(10, Shown)) << "three temperatures and seven fans";
    }
}

TEST(Readouts, FailedReadingsShowZeroAndAbsentTemperaturesNothing)
{
    SCENE Scene;
    Scene.Turns(14).Reading(0, "error").Reading(1, "absent").Reading(4, "error").Reading(5, "absent");
    const RUN Run = Scene.Turns(14).Play();
    // A failed temperature leaves its present byte 0; a fan is drawn for having been there at the start.
    EXPECT_EQ(Run.Texts(15), std::vector<std::string>{"0"});
    EXPECT_EQ(Run.Texts(17), std::vector<std::string>{"0"});
}

TEST(Readouts, BrightenTheFanOnTopAtItsNextReading)
{
    SCENE Scene;
    for (int Fan = gFirstFan; Fan <= gLastFan; Fan++) {
        Scene.Reading(Fan, 1888);
    }
    // Fan 4 is read in turns 15, 29, ..., fan 6 in turns 5, 19, 33, ...
    Scene.Point(gAway).Turns(14).Screenshot("before");
    Scene.Tab(6).Move(gAway); // turns 15 to 21; selected in turn 19, after the readout of 15 and before that of 19
    const RUN Run = Scene.Screenshot("between").Turns(14).Screenshot("after").Play();
    constexpr UINT32 Bright = 0x19F8F5;
    constexpr UINT32 Dim = 0x7B7B7B;
    const auto Count = [&Run](const char* Picture, UINT32 Color, int Fan) {
        return CountColor(Run.Picture(Picture), Color, FanNumber(Fan));
    };
    EXPECT_GT(Count("before", Bright, 4), 20u);
    EXPECT_GT(Count("before", Dim, 6), 20u);
    EXPECT_GT(Count("between", Bright, 4), 20u) << "the old fan keeps its colour until it is read again";
    EXPECT_EQ(Count("after", Bright, 4), 0u);
    EXPECT_GT(Count("after", Dim, 4), 20u);
    EXPECT_GT(Count("after", Bright, 6), 20u);
    EXPECT_EQ(Count("after", Dim, 6), 0u);
}

} // namespace
