#include "gui/PointerEngine.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

namespace {

struct CORE : TOOLKIT {
    UINT32 Register(UINT32 Kind, GUI_RECT Rect)
    {
        UINT32 Id = 0xFFFF;
        EXPECT_EQ(RegisterComponent(gGuiCore->Components, nullptr, &Rect, Kind, &Id, nullptr, nullptr, u"x"),
                  EFI_SUCCESS);
        return Id;
    }
    GUI_COMPONENT* Component(UINT32 Id)
    {
        GUI_COMPONENT* Found = nullptr;
        (void)FindComponent(gGuiCore->Components, static_cast<UINT16>(Id), &Found);
        return Found;
    }
    // What a scan at that place hits.
    UINT32 HitAt(INT64 X, INT64 Y)
    {
        gGuiCore->PointerX = X;
        gGuiCore->PointerY = Y;
        EXPECT_EQ(ScanPointerTargets(), EFI_SUCCESS);
        return gGuiCore->HitId;
    }
};

TEST_F(CORE, HitsWhatContainsThePointerWithoutItsRightAndLowerEdge)
{
    EXPECT_EQ(HitAt(100, 100), 0u);
    const UINT32 Button = Register(_BTN_COMPONENT, {10, 20, 30, 40, 0});
    (void)Register(_BLT_BUF, {900, 700, 5, 5, 0});
    EXPECT_EQ(HitAt(10, 20), Button);
    EXPECT_EQ(HitAt(39, 59), Button);
    EXPECT_EQ(HitAt(40, 30), 0u);
    EXPECT_EQ(HitAt(9, 30), 0u);
    EXPECT_EQ(HitAt(20, 60), 0u);
    EXPECT_EQ(HitAt(20, 19), 0u);

    // A pointer at x 0 or y 0 is in nothing, whatever the rectangles say.
    const UINT32 Corner = Register(_BTN_COMPONENT, {0, 0, 5, 5, 0});
    EXPECT_EQ(HitAt(1, 1), Corner);
    EXPECT_EQ(HitAt(0, 1), 0u);
    EXPECT_EQ(HitAt(1, 0), 0u);
    EXPECT_EQ(HitAt(-1, 1), 0u);
}

TEST_F(CORE, HitsTheFirstRegisteredThatReacts)
{
    const GUI_RECT Place = {10, 10, 50, 50, 0};
    const UINT32 Passive = Register(_BLT_BUF, Place);
    const UINT32 First = Register(_CHECK_BOX_COMPONENT, Place);
    const UINT32 Second = Register(_BTN_COMPONENT, Place);
    EXPECT_EQ(HitAt(20, 20), First);
    Component(First)->Enabled = 0;
    EXPECT_EQ(HitAt(20, 20), Second) << "what isn't enabled shadows nothing";
    Component(Second)->Enabled = 0;
    // A component that doesn't stop the scan is the hit only when nothing is registered behind it.
    EXPECT_EQ(HitAt(20, 20), Second);
    (void)Register(_BLT_BUF, {900, 700, 5, 5, 0});
    EXPECT_EQ(HitAt(20, 20), 0u);
    EXPECT_NE(Component(Passive), nullptr);
}

} // namespace
