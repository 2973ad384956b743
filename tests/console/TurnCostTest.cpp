// What a turn costs: which blocks go to the display, and what is asked of the pool. And what a start costs of both.
#include <set>

#include "tests/console/ConsoleBench.h"

namespace {

constexpr UINT64 gMebibyte = 1024 * 1024;

using BLOCKS = std::vector<AREA>;

AREA PointerAt(PLACE Place) { return {Place.X, Place.Y, 16, 24}; }

SCENE SceneWithPool()
{
    SCENE Scene;
    Scene.Options.TracePool = true;
    return Scene;
}

std::multiset<UINT64> AllocationsInTurn(const RUN& Run, TURN Turn)
{
    std::multiset<UINT64> Sizes;
    for (const CALL_LINE& Line : Run.NamedInTurn("AllocatePool", Turn)) {
        Sizes.insert(Line.Number("bytes"));
    }
    return Sizes;
}

// The pictures of a turn's texts, 8 by 19 pixels a character.
std::multiset<UINT64> TextPictures(const RUN& Run, TURN Turn)
{
    std::multiset<UINT64> Sizes;
    for (const std::string& Text : Run.Texts(Turn)) {
        Sizes.insert(Text.size() * 8 * 19 * 4);
    }
    return Sizes;
}

void ExpectNothingTwice(const RUN& Run, UINT64 First, UINT64 Last)
{
    for (UINT64 Turn = First; Turn <= Last; Turn++) {
        std::set<AREA> Seen;
        for (const AREA& Block : Run.Blocks(Turn)) {
            const bool IsPointer = Block.Width == 16 && Block.Height == 24; // it goes with every block
            EXPECT_TRUE(IsPointer || Seen.insert(Block).second)
                << Block.X << ", " << Block.Y << " twice in turn " << Turn;
        }
    }
}

TEST(TurnCost, AtRestATurnSendsTheNumbersThatAreDueAndNothingElse)
{
    // In the first round the pointer still moves away from where the start has drawn it.
    const RUN Run = SceneWithPool().Turns(28).Play();
    const AREA Pointer = PointerAt({0, 0});
    const BLOCKS Due[14] = {{SourceNumber(0), FanNumber(4)},
                            {},
                            {SourceNumber(1), FanNumber(5)},
                            {},
                            {SourceNumber(2), FanNumber(6)},
                            {},
                            {FanNumber(7)},
                            {},
                            {FanNumber(8)},
                            {},
                            {FanNumber(9)},
                            {},
                            {FanNumber(10)},
                            {}};
    for (UINT64 Turn = 15; Turn <= 28; Turn++) {
        SCOPED_TRACE(Turn);
        // Each number takes its text's picture and the box that it is laid in; a turn without a number takes nothing.
        BLOCKS Blocks;
        std::multiset<UINT64> Allocations = TextPictures(Run, Turn);
        for (const AREA& Number : Due[Turn - 15]) {
            Blocks.insert(Blocks.end(), {Number, Pointer});
            Allocations.insert(40 * 19 * 4);
        }
        EXPECT_EQ(Run.Blocks(Turn), Blocks);
        EXPECT_EQ(AllocationsInTurn(Run, Turn), Allocations);
    }
    ExpectNothingTwice(Run, 1, 28);
}

TEST(TurnCost, ATickSendsTheChartOnceAndEverySecondOneAGaugeToo)
{
    SCENE Scene = SceneWithPool();
    for (int Tick = 0; Tick < 24; Tick++) {
        Scene.Turns().Ticks(); // in even turns, which have no readout
    }
    const RUN Run = Scene.Play();
    const AREA Pointer = PointerAt({0, 0});
    for (int Tick = 0; Tick < 24; Tick++) {
        SCOPED_TRACE(Tick);
        const TURN Turn = 2 * static_cast<UINT64>(Tick + 1);
        BLOCKS Due = {gFrame, Pointer};
        if (Tick % 2 == 0) {
            Due.insert(Due.end(), {Gauge(Tick % 14 / 2), Pointer});
        }
        EXPECT_EQ(Run.Blocks(Turn), Due);
        // The chart needs no pool; a gauge takes the picture of its value.
        EXPECT_EQ(AllocationsInTurn(Run, Turn), TextPictures(Run, Turn));
        EXPECT_LE(AllocationsInTurn(Run, Turn).size(), Tick % 2 == 0 ? 1u : 0u);
    }
    ExpectNothingTwice(Run, 1, 48);
}

TEST(TurnCost, ATurnOfADragSendsTheFrameOnceAndTakesNoPool)
{
    // The drag begins in turn 3 and draws from turn 4 on; turns of odd numbers have readouts.
    const PLACE Node1 = NodePlace(EIGHT_ROWS, 1);
    const PLACE Next = Node1.By(5, 4);
    const PLACE Last = Node1.By(10, 8);
    SCENE Scene = SceneWithPool();
    const RUN Run =
        Scene.Move(Node1).Press().Turns(3).Hover(Next).Turns().Hover(Last).Turns().Release(300000).Turns(2).Play();
    EXPECT_EQ(Run.Blocks(6), (BLOCKS{PointerAt(Node1), gFrame, PointerAt(Next)})); // off, frame, on
    EXPECT_EQ(Run.Blocks(8), (BLOCKS{gFrame, PointerAt(Next)}));
    EXPECT_EQ(Run.Blocks(10), (BLOCKS{gFrame, PointerAt(Last)})); // the readout of turn 9 moved it
    for (const UINT64 Turn : {6, 8, 10}) {
        EXPECT_EQ(AllocationsInTurn(Run, Turn).size(), 0u) << "turn " << Turn;
    }
    ExpectNothingTwice(Run, 4, 10);
}

TEST(TurnCost, AStartSendsEachBlockAsOftenAsItsOrderAsks)
{
    const RUN Run = SCENE().Turns().Play();
    std::map<std::pair<int, int>, UINT64> Count;
    for (const AREA& Block : Run.Blocks(0)) {
        Count[{Block.Width, Block.Height}]++;
    }
    // The outline of the page on top, twice, as its selection is signalled twice: the panel's top row; the 7 tabs' edges
    // (99 + 103 + 103) and bars (48); then the panel's edges (2 x 328, 688 below, 688 - 98 above) and the tab's own.
    constexpr UINT64 TabPixels = 99 + 103 + 103 + 48;
    constexpr UINT64 OutlinePixels = 690 + 7 * TabPixels + 2 * 328 + 688 + 688 - 98 + TabPixels;
    EXPECT_EQ((Count[{1, 1}]), 2 * OutlinePixels);
    EXPECT_EQ((Count[{1024, 768}]), 1u);
    EXPECT_EQ((Count[{127, 81}]), 7u); // gauges
    // Glyphs of the scales: "100", nine of two, "0"; nine of four, "700", "0".
    EXPECT_EQ((Count[{6, 10}]), 3u + 9 * 2 + 1 + 9 * 4 + 3 + 1);
    EXPECT_EQ((Count[{97, 63}]), 7u);  // tabs
    EXPECT_EQ((Count[{106, 32}]), 3u); // radios
    EXPECT_EQ((Count[{138, 26}]), 3u); // the fans' commands
    // A timer each, and for the rest what the controls make: none is made and thrown away.
    EXPECT_EQ(Run.NamedInTurn("SetTimer", 0).size(), 3u);
    EXPECT_EQ(Run.NamedInTurn("CloseEvent", 0).size(), 0u);
    EXPECT_EQ(Run.NamedInTurn("Stall", 0).size(), 0u);
}

// What the console holds before each of its pool calls, from the trace of a whole start. The firmware's blocks that the
// console gives back count too: a block's number tells between which of the console's own it was given. Those that the
// firmware gave since the last of the console's own are counted from there on, so the figure can only be too large.
struct HOLDINGS {
    std::vector<CALL_LINE> Lines;                      // pool calls and waits
    std::map<UINT64, std::pair<size_t, UINT64>> Freed; // block: line, bytes

    explicit HOLDINGS(const RUN& Run)
    {
        for (const CALL_LINE& Line : Run.Calls) {
            if (Line.Call == "FreePool") {
                Freed[Line.Number("block")] = {Lines.size(), Line.Number("bytes")};
            }
            if (Line.Call == "FreePool" || Line.Call == "AllocatePool" || Line.Call == "WaitForEvent") {
                Lines.push_back(Line);
            }
        }
    }
    UINT64 At(size_t Place) const
    {
        UINT64 Next = ~0ull; // of the console's own, this one included
        UINT64 Own = 0;
        for (size_t I = Place; I < Lines.size() && Next == ~0ull; I++) {
            if (Lines[I].Call == "AllocatePool") {
                Next = Lines[I].Number("block");
                Own = I == Place ? Next : 0;
            }
        }
        UINT64 Bytes = 0;
        for (const auto& [Block, Given] : Freed) {
            Bytes += Given.first >= Place && (Block < Next || Block == Own) ? Given.second : 0;
        }
        return Bytes;
    }
};

TEST(TurnCost, TheConsoleHoldsAtMost18MebibytesAtRestAndNeverMoreThan24)
{
    const RUN Run = SceneWithPool().Turns(13).Key("esc").Play(); // turn 14 has no text, and is the last
    const HOLDINGS Holdings(Run);
    UINT64 Peak = 0;
    UINT64 Rest = 0;
    for (size_t I = 0; I < Holdings.Lines.size(); I++) {
        if (Holdings.Lines[I].Turn == 0) {
            Peak = std::max(Peak, Holdings.At(I));
        } else if (Holdings.Lines[I].Turn == 14 && Holdings.Lines[I].Call == "WaitForEvent") {
            Rest = Holdings.At(I);
        }
    }
    EXPECT_GT(Rest, 12 * gMebibyte); // the old screen and the three surfaces alone
    EXPECT_LE(Rest, 18 * gMebibyte);
    EXPECT_LE(Peak, 24 * gMebibyte);
    RecordProperty("Rest", static_cast<int>(Rest));
    RecordProperty("Peak", static_cast<int>(Peak));
}

} // namespace
