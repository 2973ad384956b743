#include "gui/PageBar.h"
#include "gui/PointerEngine.h"
#include "shell/Board.h"
#include "support/Library.h"
#include "tests/gui/ToolkitBench.h"

namespace {

struct CORE : TOOLKIT {
    UINT32 Register(UINT32 Kind, GUI_RECT Rect, EFI_EVENT Primary = nullptr)
    {
        UINT32 Id = 0xFFFF;
        EXPECT_EQ(RegisterComponent(gGuiCore->Components, nullptr, &Rect, Kind, &Id, Primary, nullptr, u"x"),
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

TEST_F(CORE, GivesIdsInTheOrderOfRegistration)
{
    GUI_COMPONENT* Base = Component(0);
    ASSERT_NE(Base, nullptr);
    EXPECT_EQ(Base->Kind, FocusEventDestroy);
    EXPECT_EQ(Base->Owner, gGuiCore);
    EXPECT_EQ(Register(_BTN_COMPONENT, {10, 10, 5, 5, 100}), 1u);
    EXPECT_EQ(Register(_BLT_BUF, {10, 10, 5, 5, 100}), 2u);
    EXPECT_EQ(Component(2)->Kind, _BLT_BUF);
    EXPECT_EQ(Component(2)->Enabled, 1);
    EXPECT_EQ(Component(2)->Active, 0);

    GUI_COMPONENT* Found = Base;
    EXPECT_EQ(FindComponent(gGuiCore->Components, 3, &Found), EFI_NOT_FOUND);
    EXPECT_EQ(Found, nullptr);

    // Without pool the caller gets an id all the same, and the next one gets it again.
    Boot->Pool.FailFrom = 1;
    EXPECT_EQ(Register(_BTN_COMPONENT, {50, 50, 5, 5, 100}), 3u);
    Boot->Pool.FailFrom = 0;
    EXPECT_EQ(Component(3), nullptr);
    EXPECT_EQ(Register(_BTN_COMPONENT, {60, 60, 5, 5, 100}), 3u);
    EXPECT_EQ(Component(3)->Rect.X, 60u);
}

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

TEST_F(CORE, ClicksABoxOnlyWhileItIsActive)
{
    static int Clicks;
    Clicks = 0;
    EFI_EVENT Event = nullptr;
    ASSERT_EQ(gBS->CreateEvent(EVT_NOTIFY_SIGNAL, TPL_CALLBACK,
                               [](EFI_EVENT, VOID*) {
                                   Clicks++;
                                   return EFI_SUCCESS;
                               },
                               nullptr, &Event),
              EFI_SUCCESS);
    const UINT32 Box = Register(_CHECK_BOX_COMPONENT, {10, 10, 50, 50, 0}, Event);
    gGuiCore->MouseState = L_CLICK;
    (void)HitAt(20, 20);
    EXPECT_EQ(Clicks, 0);
    Component(Box)->Active = 1;
    (void)HitAt(20, 20);
    EXPECT_EQ(Clicks, 1);
    gGuiCore->MouseState = L_HOLD_TO_RELEASE;
    (void)HitAt(20, 20);
    EXPECT_EQ(Clicks, 1) << "a long press clicks nothing";
    (void)gBS->CloseEvent(Event);
}

TEST_F(CORE, FiresListenersOfAStateInTheirOrder)
{
    static std::string Fired;
    Fired.clear();
    AddSliderListener([] { Fired += 'a'; }, L_HOLD);
    AddListenerByKind([] { Fired += 'b'; }, _SLIDER_COMPONENT, L_HOLD_TO_RELEASE);
    AddListenerByKind([] { Fired += 'c'; }, _DRAGDROP_COMPONENT, L_HOLD);
    AddListenerByKind([] { Fired += 'd'; }, _BTN_COMPONENT, L_HOLD);
    AddListenerByKind(nullptr, _SLIDER_COMPONENT, L_HOLD);
    AddSliderListener([] { Fired += 'e'; }, L_HOLD);
    EXPECT_EQ(FireSliderListeners(L_HOLD), EFI_SUCCESS);
    EXPECT_EQ(Fired, "ae");
    EXPECT_EQ(FireSliderListeners(L_HOLD_TO_RELEASE), EFI_SUCCESS);
    EXPECT_EQ(Fired, "aeb");
    EXPECT_EQ(FireDragDropListeners(L_HOLD), EFI_SUCCESS);
    EXPECT_EQ(Fired, "aebc");
    EXPECT_EQ(FireDragDropListeners(L_HOLD_TO_RELEASE), EFI_SUCCESS);
    EXPECT_EQ(Fired, "aebc");
}

TEST_F(CORE, ABarWithoutMembersDoesNothing)
{
    PAGE_BAR* Bar = nullptr;
    ASSERT_EQ(CreatePageBar(&Bar), EFI_SUCCESS);
    EXPECT_EQ(OnPageBarEvent(nullptr, Bar), EFI_NOT_FOUND);
    PAGE_BAR_ENTRY* Entry = nullptr;
    EXPECT_EQ(FindPageBarEntry(Bar->Entries, 0, &Entry), EFI_NOT_FOUND);
    EXPECT_EQ(DestroyPageBarEntries(Bar->Entries), EFI_NOT_FOUND);
    (void)DestroyPageBar(Bar);
    EXPECT_EQ(DestroyPageBar(nullptr), EFI_SUCCESS);

    PAGE_BAR* Unchanged = nullptr;
    FailNextAllocation();
    EXPECT_EQ(CreatePageBar(&Unchanged), EFI_OUT_OF_RESOURCES);
    EXPECT_EQ(Unchanged, nullptr);
    EXPECT_EQ(Boot->Consoles.OutputText, "AllocatePool Fail (PageBar Control) ,Status=Out of Resources\n");
}

} // namespace
