#include "tests/gui/ToolkitBench.h"

namespace {

constexpr PIXEL gSolid = {10, 20, 30, 0};
constexpr PIXEL gHalfBlack = {0, 200, 100, 0}; // one of the three bytes is 0
constexpr PIXEL gBlack = {0, 0, 0, 0};
constexpr PIXEL gBlock = {70, 80, 90, 0};

// A pointer of 4 by 3: the first column solid, the second with one zero byte, the rest black.
struct COMPOSE : TOOLKIT {
    GUI_CORE* Core = gGuiCore;

    COMPOSE()
    {
        Core->CursorWidth = 4;
        Core->CursorHeight = 3;
        for (UINTN I = 0; I < 12; I++) {
            Core->CursorImage[I] = I % 4 == 0 ? gSolid : I % 4 == 1 ? gHalfBlack : gBlack;
        }
    }
    VOID Point(INT64 X, INT64 Y)
    {
        Core->PointerX = X;
        Core->PointerY = Y;
    }
    std::vector<BLT_CALL> Compose(PIXEL* Buffer = nullptr, UINTN X = 0, UINTN Y = 0, UINTN Width = 0, UINTN Height = 0)
    {
        (void)Blts();
        EXPECT_EQ(ComposeScreen(Core, Buffer, X, Y, Width, Height), EFI_SUCCESS);
        return Blts();
    }
};

using CALLS = std::vector<BLT_CALL>;

TEST_F(COMPOSE, TheFirstDrawingRestoresNothing)
{
    // The pointer starts at (174, 196).
    EXPECT_EQ(Compose(), (CALLS{{174, 196, 4, 3, 0}}));
    EXPECT_EQ(Core->CursorSettled, 0);
    EXPECT_EQ(Core->CursorX, 174u);
    EXPECT_EQ(Core->CursorY, 196u);
    // An unmoved pointer is only drawn again.
    EXPECT_EQ(Compose(), (CALLS{{174, 196, 4, 3, 0}}));
    EXPECT_EQ(Core->CursorSettled, 1);
    for (UINTN Row = 196; Row < 199; Row++) {
        EXPECT_EQ(ColorAt(Display(), 174, Row), ColorOf(gSolid));
        EXPECT_EQ(ColorAt(Display(), 175, Row), ColorOf(gScreenFill)) << "a zero byte is transparent";
        EXPECT_EQ(ColorAt(Display(), 176, Row), ColorOf(gScreenFill));
        EXPECT_EQ(ColorAt(Core->Screen, 174, Row), ColorOf(gScreenFill)) << "Screen never holds the pointer";
    }
}

TEST_F(COMPOSE, AMovedPointerIsTakenAwayThenTheBlockComesThenThePointer)
{
    Compose();
    // What lies under the pointer changes before it moves: the restored block shows what Screen holds now.
    (void)PasteBlt(&gBlock, 1, 1, 174, 196, Core->Screen);
    std::vector<PIXEL> Buffer(5 * 2, gBlock);
    Point(300, 400);
    EXPECT_EQ(Compose(Buffer.data(), 600, 100, 5, 2),
              (CALLS{{174, 196, 4, 3, 0}, {600, 100, 5, 2, 20}, {300, 400, 4, 3, 0}}));
    EXPECT_EQ(Core->CursorSettled, 0);
    EXPECT_EQ(ColorAt(Display(), 174, 196), ColorOf(gBlock));
    EXPECT_EQ(ColorAt(Display(), 174, 197), ColorOf(gScreenFill));
    EXPECT_EQ(ColorAt(Display(), 604, 101), ColorOf(gBlock));
    EXPECT_EQ(ColorAt(Display(), 300, 400), ColorOf(gSolid));
    EXPECT_EQ(ColorAt(Core->Screen, 604, 101), ColorOf(gScreenFill)) << "pasting is the caller's";
}

TEST_F(COMPOSE, AtTheEdgeOnlyPureBlackIsTransparent)
{
    const struct {
        INT64 X, Y;
        bool AtEdge;
        UINTN Width, Height;
    } Cases[] = {
        {1019, 700, false, 4, 3}, {1020, 700, true, 4, 3}, // touching counts, though nothing is cut
        {500, 764, false, 4, 3},  {500, 765, true, 4, 3},  {1022, 700, true, 2, 3},
        {500, 767, true, 4, 1},   {1023, 767, true, 1, 1},
    };
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.X * 1000 + Case.Y);
        Point(Case.X, Case.Y);
        const CALLS Calls = Compose();
        ASSERT_FALSE(Calls.empty());
        EXPECT_EQ(Calls.back(),
                  (BLT_CALL{static_cast<UINT64>(Case.X), static_cast<UINT64>(Case.Y), Case.Width, Case.Height, 0}));
        const UINTN X = static_cast<UINTN>(Case.X);
        const UINTN Y = static_cast<UINTN>(Case.Y);
        EXPECT_EQ(ColorAt(Display(), X, Y), ColorOf(gSolid));
        if (Case.Width > 1) {
            EXPECT_EQ(ColorAt(Display(), X + 1, Y), ColorOf(Case.AtEdge ? gHalfBlack : gScreenFill));
        }
        if (Case.Width > 2) {
            EXPECT_EQ(ColorAt(Display(), X + 2, Y), ColorOf(gScreenFill));
        }
    }
}

TEST_F(COMPOSE, AClippedPointerIsRestoredClippedAndDrawnWholeAgain)
{
    Point(1022, 766);
    Compose();
    Point(100, 100);
    EXPECT_EQ(Compose(), (CALLS{{1022, 766, 2, 2, 0}, {100, 100, 4, 3, 0}}));
    EXPECT_EQ(ColorAt(Display(), 1022, 766), ColorOf(gScreenFill));
    EXPECT_EQ(ColorAt(Display(), 1023, 767), ColorOf(gScreenFill));
}

TEST_F(COMPOSE, AHeldPointerGoesIntoTheBlock)
{
    const auto MergedAt = [this](INT64 X, INT64 Y, UINT32 State) {
        std::vector<PIXEL> Buffer(10 * 10, gBlock);
        Core->MouseState = State;
        Point(X, Y);
        // By the convention the block stands in Screen first.
        const UINTN Left = X >= 1020 ? 1014 : 50;
        (void)PasteBlt(Buffer.data(), 10, 10, Left, 50, Core->Screen);
        Compose(Buffer.data(), Left, 50, 10, 10);
        std::vector<UINTN> Changed;
        for (UINTN I = 0; I < Buffer.size(); I++) {
            if (ColorOf(Buffer[I]) != ColorOf(gBlock)) {
                EXPECT_EQ(ColorOf(Buffer[I]), ColorOf(gSolid));
                Changed.push_back(I);
            }
        }
        return Changed;
    };
    // The solid column of the pointer, at column 2, rows 3 to 5 of the block.
    EXPECT_EQ(MergedAt(52, 53, L_HOLD), (std::vector<UINTN>{32, 42, 52}));
    EXPECT_EQ(ColorAt(Display(), 52, 53), ColorOf(gSolid));
    EXPECT_EQ(MergedAt(52, 59, L_HOLD), (std::vector<UINTN>{92})); // over the block's lower edge
    EXPECT_TRUE(MergedAt(52, 53, NOEVENT).empty());
    EXPECT_TRUE(MergedAt(52, 53, L_CLICK).empty());
    EXPECT_TRUE(MergedAt(300, 300, L_HOLD).empty());
    EXPECT_TRUE(MergedAt(1020, 53, L_HOLD).empty()) << "at the screen's edge nothing is merged";
    EXPECT_EQ(ColorAt(Display(), 1020, 53), ColorOf(gSolid));
}

} // namespace
