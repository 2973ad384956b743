#include "tests/console/ConsoleBench.h"

namespace {

constexpr UINT64 gLefts[7] = {69, 196, 323, 450, 577, 704, 831};

// One gauge is painted in two ticks, so 28 ticks read and then paint each of them at least once. Ticks fall into even
// turns, in which no readout draws a text.
SCENE& RunAllGauges(SCENE& Scene)
{
    for (int Tick = 0; Tick < 14; Tick++) {
        Scene.Turns().Ticks();
    }
    return Scene;
}

// The text of a gauge's last painting that rendered one, up to a turn; "(none)" when no painting did.
std::string LastText(const RUN& Run, UINTN Gauge, UINT64 FromTurn, UINT64 ToTurn)
{
    std::string Text = "(none)";
    for (UINT64 Turn = FromTurn; Turn <= ToTurn; Turn++) {
        std::string Rendered;
        for (const CALL_LINE& Line : Run.InTurn(Turn)) {
            if (Line.Call == "StringToImage") {
                Rendered = Line.Text("text");
            } else if (Line.Call == "Blt" && Line.Number("y") == 624 && Line.Number("width") == 127 &&
                       Line.Number("x") == gLefts[Gauge] && !Rendered.empty()) {
                Text = Rendered;
            }
        }
    }
    return Text;
}

TEST(Gauge, ShowsItsReadingInVolts)
{
    // Values of two rounds, and what each gauge then says.
    const struct {
        int Millivolts[7];
        const char* Texts[7];
    } Rounds[] = {
        {{850, 90, 95, 12000, 12200, 12250, 12251}, {"0.850", "(none)", "0.095", "12.000", "12.2", "12.250", "12.251"}},
        {{1000, 3300, 5, 100, 10, 13000, 6500}, {"1.000", "3.3", "0.005", "0.10", "(none)", "13.000", "6.5"}},
    };
    for (const auto& Round : Rounds) {
        SCENE Scene;
        for (int Gauge = 0; Gauge < 7; Gauge++) {
            Scene.Line("reading " + std::to_string(11 + Gauge) + " " + std::to_string(Round.Millivolts[Gauge]));
        }
        const RUN Run = RunAllGauges(Scene).Play();
        for (UINTN Gauge = 0; Gauge < 7; Gauge++) {
            EXPECT_EQ(LastText(Run, Gauge, 1, 28), Round.Texts[Gauge]) << Round.Millivolts[Gauge];
        }
    }
}

TEST(Gauge, KeepsItsValueForAReadingThatItCannotShow)
{
    const char* Bad[7] = {"13001", "18446744073709551615", "9223372036854775808", "4294967296", "100000", "error",
                          "absent"};
    SCENE Scene;
    for (int Gauge = 0; Gauge < 7; Gauge++) {
        Scene.Line("reading " + std::to_string(11 + Gauge) + " " + std::to_string(3011 + Gauge));
    }
    Scene.Move(600, 20);
    RunAllGauges(Scene).Screenshot("good");
    for (int Gauge = 0; Gauge < 7; Gauge++) {
        Scene.Line("reading " + std::to_string(11 + Gauge) + " " + Bad[Gauge]);
    }
    RunAllGauges(RunAllGauges(Scene)).Screenshot("bad").Turns();
    const RUN Run = Scene.Play();
    EXPECT_TRUE(SameRectangle(Run.Picture("good"), Run.Picture("bad"), 69, 624, 7 * 127, 81));
    for (UINTN Gauge = 0; Gauge < 7; Gauge++) {
        EXPECT_EQ(LastText(Run, Gauge, 1, 29), "3.01" + std::to_string(1 + Gauge));
    }
}

TEST(Gauge, RendersItsTextOnlyForANewValue)
{
    SCENE Scene;
    Scene.Line("reading 11 5001");
    RunAllGauges(Scene); // gauge 0 is painted in turns 2 and 30
    Scene.Turns().Ticks();
    const RUN Run = Scene.Play();
    EXPECT_EQ(LastText(Run, 0, 1, 28), "5.001");
    EXPECT_EQ(LastText(Run, 0, 29, 30), "(none)") << "the value is the same";
    UINTN Painted = 0;
    for (const CALL_LINE& Line : Run.NamedInTurn("Blt", 30)) {
        Painted += Line.Number("y") == 624 && Line.Number("x") == 69 ? 1 : 0;
    }
    EXPECT_EQ(Painted, 1u) << "and painted it is all the same";
}

// A gauge's bar: 124 by 36 pixels at (2, 19) of the gauge.
struct BAR {
    const PICTURE& Picture;
    UINTN Left;
    UINT32 At(UINTN Column, UINTN Row) const { return PixelAt(Picture, Left + 2 + Column, 624 + 19 + Row); }
    bool IsLit(UINTN Column, UINTN Row) const { return At(Column, Row) != 0x121212; }
};

TEST(Gauge, DrawsABarOfDotsClosedAtItsTip)
{
    SCENE Scene;
    Scene.Line("reading 11 13000").Line("reading 12 0").Line("reading 13 6500").Line("reading 17 13000");
    Scene.Move(600, 20);
    const RUN Run = RunAllGauges(RunAllGauges(Scene)).Screenshot("bars").Turns().Play();
    const struct {
        UINTN Left;
        UINTN Length; // of 124 columns
    } Bars[] = {{69, 124}, {196, 0}, {323, 62}, {831, 124}};
    for (const auto& Case : Bars) {
        SCOPED_TRACE(Case.Left);
        const BAR Bar = {Run.Picture("bars"), Case.Left};
        for (UINTN Row = 0; Row < 36; Row++) {
            for (UINTN Column = 0; Column < 124; Column++) {
                const bool Dot = Row >= 22 && Row % 2 == 0 && Column % 2 == 0 && Column <= Case.Length;
                const bool Tip = Case.Length > 0 && Column == Case.Length - 1 && Row > 22;
                ASSERT_EQ(Bar.IsLit(Column, Row), Dot || Tip) << "column " << Column << " row " << Row;
            }
        }
        EXPECT_EQ(Bar.At(0, 22), 0xC8FF00u);
        // The frame: a line at row 39 where the bar doesn't cover it, one at row 57, one at the left.
        EXPECT_EQ(PixelAt(Run.Picture("bars"), Case.Left, 624 + 39), 0x606060u);
        EXPECT_EQ(PixelAt(Run.Picture("bars"), Case.Left + 1, 624 + 39), 0x606060u);
        EXPECT_EQ(PixelAt(Run.Picture("bars"), Case.Left + 60, 624 + 39), 0x121212u);
        EXPECT_EQ(PixelAt(Run.Picture("bars"), Case.Left + 60, 624 + 57), 0x606060u);
        EXPECT_EQ(PixelAt(Run.Picture("bars"), Case.Left, 624 + 48), 0x606060u);
        // Only the last of the row is closed at its right.
        EXPECT_EQ(PixelAt(Run.Picture("bars"), Case.Left + 126, 624 + 48), Case.Left == 831 ? 0x606060u : 0x121212u);
    }
    // From #C8FF00 to #64FF00.
    EXPECT_EQ(BAR({Run.Picture("bars"), 69}).At(62, 24) >> 16, 150u) << "half way";
    EXPECT_EQ(BAR({Run.Picture("bars"), 69}).At(122, 24) & 0xFF, 0u);
}

TEST(Gauge, StandsEmptyAtTheStart)
{
    const RUN Run = SCENE().Line("pointer 600 20").Turns(2).Screenshot("start").Turns().Play();
    UINTN Zeros = 0;
    for (const CALL_LINE& Line : Run.NamedInTurn("StringToImage", 0)) {
        Zeros += Line.Text("text") == "0.000" ? 1 : 0;
    }
    EXPECT_EQ(Zeros, 7u);
    for (const UINT64 Left : gLefts) {
        const BAR Bar = {Run.Picture("start"), Left};
        EXPECT_TRUE(Bar.IsLit(0, 22));
        EXPECT_FALSE(Bar.IsLit(2, 22));
        // Five characters at |0 - 40 + 5| = 35: no letter further left, some of the first within the next eight.
        EXPECT_EQ(CountColor(Run.Picture("start"), 0x606060, Left, 624, 35, 19), 0u);
        EXPECT_GT(CountColor(Run.Picture("start"), 0x606060, Left + 35, 624, 8, 19), 5u);
    }
}

TEST(Readouts, ShowHostileReadingsAsTheyCome)
{
    const struct {
        const char* Value;
        const char* Text;
    } Cases[] = {{"0", "0"},
                 {"9223372036854775808", "-9223372036854775808"},
                 {"18446744073709551615", "-1"},
                 {"9223372036854775807", "9223372036854775807"},
                 {"100000", "100000"}};
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.Value);
        SCENE Scene;
        Scene.Turns(14); // presence has been asked, and one round of readouts has gone by
        for (int Item = 0; Item <= 17; Item++) {
            if (Item != 3) {
                Scene.Line("reading " + std::to_string(Item) + " " + Case.Value);
            }
        }
        Scene.Turns(14);
        // The chart of each page gets some samples.
        for (const int TabX : {300, 400, 500, 600, 700, 800, 900}) {
            Scene.Click(TabX, 140).Ticks(2);
        }
        const RUN Run = Scene.Play();
        EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
        UINTN Texts = 0;
        for (UINT64 Turn = 15; Turn <= 28; Turn++) {
            for (const CALL_LINE& Line : Run.NamedInTurn("StringToImage", Turn)) {
                EXPECT_EQ(Line.Text("text"), Case.Text);
                Texts++;
            }
        }
        EXPECT_EQ(Texts, 10u) << "three temperatures and seven fans";
    }
}

TEST(Readouts, FailedReadingsShowZeroAndAbsentTemperaturesNothing)
{
    SCENE Scene;
    Scene.Turns(14).Line("reading 0 error").Line("reading 1 absent").Line("reading 4 error").Line("reading 5 absent");
    const RUN Run = Scene.Turns(14).Play();
    const auto TextsIn = [&Run](UINT64 Turn) {
        std::vector<std::string> Texts;
        for (const CALL_LINE& Line : Run.NamedInTurn("StringToImage", Turn)) {
            Texts.push_back(Line.Text("text"));
        }
        return Texts;
    };
    // A failed temperature leaves its present byte 0; a fan is drawn for having been there at the start.
    EXPECT_EQ(TextsIn(15), (std::vector<std::string>{"0"}));
    EXPECT_EQ(TextsIn(17), (std::vector<std::string>{"0"}));
}

TEST(Readouts, BrightenTheFanOnTopAtItsNextReading)
{
    SCENE Scene;
    for (int Fan = 4; Fan <= 10; Fan++) {
        Scene.Line("reading " + std::to_string(Fan) + " 1888");
    }
    // Fan 4 is read in turns 15, 29, ..., fan 6 in turns 5, 19, 33, ...
    Scene.Line("pointer 600 20").Turns(14);
    Scene.Screenshot("before");
    Scene.Click(500, 140).Move(600, 20); // turns 15 to 21; selected in turn 19, after the readout of 15 and before that of 19
    Scene.Screenshot("between").Turns(14).Screenshot("after").Turns();
    const RUN Run = Scene.Play();
    constexpr UINT32 Bright = 0x19F8F5;
    constexpr UINT32 Dim = 0x7B7B7B;
    const auto Count = [&Run](const char* Picture, UINT32 Color, UINTN X) {
        return CountColor(Run.Picture(Picture), Color, X, 189, 40, 19);
    };
    EXPECT_GT(Count("before", Bright, 281), 20u);
    EXPECT_GT(Count("before", Dim, 479), 20u);
    EXPECT_GT(Count("between", Bright, 281), 20u) << "the old fan keeps its colour until it is read again";
    EXPECT_EQ(Count("after", Bright, 281), 0u);
    EXPECT_GT(Count("after", Dim, 281), 20u);
    EXPECT_GT(Count("after", Bright, 479), 20u);
    EXPECT_EQ(Count("after", Dim, 479), 0u);
}

} // namespace
