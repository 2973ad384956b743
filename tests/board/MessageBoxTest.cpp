#include "platform/board/MessageBox.h"

#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

namespace {

constexpr UINT32 gLetter = 0xC8C8C8;

struct RECTANGLE {
    UINTN Left = ~UINTN{0};
    UINTN Top = ~UINTN{0};
    UINTN Right = 0; // outside
    UINTN Bottom = 0;
};

struct MessageBoxes : HOSTED {
    MESSAGE_BOX Box = {};
    std::vector<std::u16string> Lines;
    std::vector<CHAR16*> LineTable;
    std::u16string Ok = u"OK";
    CHAR16* Buttons[1] = {};

    MessageBoxes() { Renew(0); }

    // Another boot, and a display of one colour.
    VOID Renew(UINT8 Generation)
    {
        Reboot({.Generation = Generation});
        UseMessageBoxServices(gBS);
        Wipe();
    }
    VOID Wipe() { FillPixels(Display(), gScreenWidth * gScreenHeight, gScreenFill); }
    UINT32 At(UINTN X, UINTN Y) { return ColorAt(Display(), X, Y); }

    EFI_STATUS Create(UINTN X, UINTN Y, UINTN Width, UINTN Height, std::vector<std::u16string> Texts)
    {
        Lines = std::move(Texts);
        LineTable.clear();
        for (std::u16string& Line : Lines) {
            LineTable.push_back(Line.data());
        }
        Buttons[0] = Ok.data();
        return CreateMessageBox(&Box, X, Y, Width, Height, static_cast<UINT16>(LineTable.size()), LineTable.data(), 1,
                                Buttons);
    }

    // What of the display has changed: everything painted is inside.
    RECTANGLE Painted()
    {
        return Bounds([this](UINTN X, UINTN Y) { return At(X, Y) != ColorOf(gScreenFill); });
    }
    RECTANGLE Letters()
    {
        return Bounds([this](UINTN X, UINTN Y) { return At(X, Y) == gLetter; });
    }
    // The button as the pointer finds it: where ButtonFocus becomes 1.
    RECTANGLE Button()
    {
        MESSAGE_BOX Copy = Box;
        const RECTANGLE Found = Bounds([&Copy](UINTN X, UINTN Y) {
            (void)UpdateMessageBox(&Copy, X, Y);
            return Copy.ButtonFocus == 1;
        });
        (void)UpdateMessageBox(&Copy, 0, 0);
        return Found;
    }
    template <typename TEST> RECTANGLE Bounds(TEST Test)
    {
        RECTANGLE Found;
        for (UINTN Y = 0; Y < gScreenHeight; Y++) {
            for (UINTN X = 0; X < gScreenWidth; X++) {
                if (Test(X, Y)) {
                    Found.Left = std::min(Found.Left, X);
                    Found.Top = std::min(Found.Top, Y);
                    Found.Right = std::max(Found.Right, X + 1);
                    Found.Bottom = std::max(Found.Bottom, Y + 1);
                }
            }
        }
        return Found;
    }

    void Draw()
    {
        Box.ButtonFocus = 1;
        Box.ButtonMode = 2;
        ASSERT_EQ(DrawMessageBox(&Box), EFI_SUCCESS);
    }
};

const std::vector<std::u16string> gHelp = {
    u"You can set CPU or System target temperature \nand set Fan duty cycle.",
    u"        \n          ",
    u"ESC    : Exit",
    u"(F)key : All full speed.",
    u"(D)key : All set default.",
    u"(C)key : All set cancel.",
    u"        \n          ",
};

TEST_F(MessageBoxes, ABoxIsAtLeastAsLargeAsAskedAndGrowsWithItsText)
{
    ASSERT_EQ(Create(300, 240, 295, 137, {u"A", u"B"}), EFI_SUCCESS);
    EXPECT_EQ(Box.BoxWidth, 295u);
    EXPECT_EQ(Box.BoxHeight, 137u);

    ASSERT_EQ(Create(300, 159, 295, 137, gHelp), EFI_SUCCESS);
    // The longest row has 45 cells, and there are ten rows, above a button.
    EXPECT_GT(Box.BoxWidth, 45u * 8);
    EXPECT_GT(Box.BoxHeight, 10u * 19 + 19);
}

TEST_F(MessageBoxes, TextAndButtonLieInsideTheBoxAndNothingIsPaintedOutside)
{
    for (const UINT8 Generation : {0, 4}) { // pictures wider than their text, and tight ones
        Renew(Generation);
        ASSERT_EQ(Create(300, 159, 295, 137, gHelp), EFI_SUCCESS);
        Draw();
        const RECTANGLE All = Painted();
        EXPECT_EQ(All.Left, 300u);
        EXPECT_EQ(All.Top, 159u);
        EXPECT_EQ(All.Right, 300u + Box.BoxWidth);
        EXPECT_EQ(All.Bottom, 159u + Box.BoxHeight);
        const RECTANGLE Text = Letters();
        EXPECT_GT(Text.Left, All.Left);
        EXPECT_GT(Text.Top, All.Top);
        EXPECT_LT(Text.Right, All.Right);
        EXPECT_LT(Text.Bottom, All.Bottom);
        const RECTANGLE Press = Button();
        EXPECT_GT(Press.Left, All.Left);
        EXPECT_LT(Press.Right, All.Right);
        EXPECT_LT(Press.Bottom, All.Bottom);
        EXPECT_EQ(Press.Left - All.Left, All.Right - Press.Right);
        EXPECT_FALSE(Blts().empty()); // none of them beyond the display
    }
}

TEST_F(MessageBoxes, ALineFeedStartsANewRowAndBlankRowsTakeTheirPlace)
{
    ASSERT_EQ(Create(100, 100, 0, 0, {u"ab\ncd", u"   \n  ", u"e"}), EFI_SUCCESS);
    const UINT32 FiveRows = Box.BoxHeight;
    Draw();
    EXPECT_EQ(Fields("StringToImage", "text"), (std::vector<std::string>{"ab", "cd", "e", "OK"}));
    ASSERT_EQ(Create(100, 100, 0, 0, {u"ab"}), EFI_SUCCESS);
    EXPECT_EQ(FiveRows - Box.BoxHeight, 4u * 19);
}

TEST_F(MessageBoxes, ABoxNeverReachesBeyondTheScreen)
{
    struct CASE {
        UINTN X, Y, Width, Height;
    };
    const std::u16string Long(500, u'w');
    const CASE Cases[] = {
        {300, 159, 295, 137}, {1000, 700, 295, 137}, {1023, 767, 295, 137}, {0, 0, 5000, 5000}, {900, 0, 0, 0}};
    for (const CASE& Case : Cases) {
        ASSERT_EQ(Create(Case.X, Case.Y, Case.Width, Case.Height, std::vector<std::u16string>(60, Long)), EFI_SUCCESS);
        EXPECT_LE(Case.X + Box.BoxWidth, 1024u);
        EXPECT_LE(Case.Y + Box.BoxHeight, 768u);
        Draw();
        const RECTANGLE All = Painted();
        EXPECT_EQ(All.Right, Case.X + Box.BoxWidth);
        EXPECT_EQ(All.Bottom, Case.Y + Box.BoxHeight);
        EXPECT_FALSE(Blts().empty()); // none of them beyond the display
        Wipe();
    }
    EXPECT_EQ(Create(1024, 0, 10, 10, {}), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Create(0, 768, 10, 10, {}), EFI_INVALID_PARAMETER);
}

TEST_F(MessageBoxes, TheButtonShowsThatThePointerIsOnItAndIsRepaintedOnlyThen)
{
    ASSERT_EQ(Create(300, 240, 295, 137, {u"Text"}), EFI_SUCCESS);
    Draw();
    const RECTANGLE Press = Button();
    const UINT32 Rest = At(Press.Left, Press.Top);
    MESSAGE_BOX Copy = Box;
    EXPECT_EQ(Copy.ButtonFocus, 1); // as the application set it

    (void)Blts();
    EXPECT_EQ(UpdateMessageBox(&Copy, Press.Left - 1, Press.Top), EFI_SUCCESS);
    EXPECT_EQ(Copy.ButtonFocus, 0);
    EXPECT_EQ(UpdateMessageBox(&Copy, Press.Left, Press.Bottom), EFI_SUCCESS);
    EXPECT_EQ(Copy.ButtonFocus, 0);
    EXPECT_TRUE(Blts().empty());

    EXPECT_EQ(UpdateMessageBox(&Copy, Press.Left, Press.Top), EFI_SUCCESS);
    EXPECT_EQ(Copy.ButtonFocus, 1);
    EXPECT_NE(At(Press.Left, Press.Top), Rest);
    EXPECT_NE(At(Press.Right - 1, Press.Bottom - 1), Rest);
    // A pointer that stays costs nothing, after the one turn in which its old place is put back.
    (void)UpdateMessageBox(&Copy, Press.Left, Press.Top);
    (void)Blts();
    (void)UpdateMessageBox(&Copy, Press.Left, Press.Top);
    EXPECT_TRUE(Blts().empty());

    EXPECT_EQ(UpdateMessageBox(&Copy, Press.Right, Press.Top), EFI_SUCCESS);
    EXPECT_EQ(Copy.ButtonFocus, 0);
    EXPECT_EQ(At(Press.Left, Press.Top), Rest);
}

TEST_F(MessageBoxes, AFragmentOfTheRestingButtonIsMendedInTheTurnAfterAMoveOnTheButton)
{
    ASSERT_EQ(Create(300, 240, 295, 137, {u"Text"}), EFI_SUCCESS);
    Draw();
    const RECTANGLE Press = Button();
    (void)UpdateMessageBox(&Box, Press.Left + 5, Press.Top + 5);
    const UINT32 Hover = At(Press.Left, Press.Top);
    (void)UpdateMessageBox(&Box, Press.Left + 9, Press.Top + 9);
    // The console puts back what was under the pointer.
    Display()[Press.Top * gScreenWidth + Press.Left] = PIXEL{};
    (void)UpdateMessageBox(&Box, Press.Left + 9, Press.Top + 9);
    EXPECT_EQ(At(Press.Left, Press.Top), Hover);
    // Drawn once more, the whole box shows its button at rest.
    Draw();
    EXPECT_NE(At(Press.Left, Press.Top), Hover);
}

} // namespace
