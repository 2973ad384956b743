#include "platform/board/BootScreen.h"

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

TEST(BootScreen, FillsTheDisplayAndNothingBeyondIt)
{
    constexpr size_t Count = size_t{BOOT_SCREEN_WIDTH} * BOOT_SCREEN_HEIGHT;
    constexpr size_t Guard = 4096;
    std::vector<PIXEL> First(Count + 2 * Guard, PIXEL{1, 2, 3, 4});
    std::vector<PIXEL> Second(Count + 2 * Guard, PIXEL{9, 9, 9, 9});
    PaintBootScreen(First.data() + Guard);
    PaintBootScreen(Second.data() + Guard);
    // What was there before shows nowhere.
    EXPECT_EQ(std::memcmp(First.data() + Guard, Second.data() + Guard, Count * sizeof(PIXEL)), 0);
    for (size_t Index = 0; Index < Guard; Index++) {
        ASSERT_EQ(First[Index].Reserved, 4);
        ASSERT_EQ(First[Guard + Count + Index].Reserved, 4);
    }
    for (size_t Index = 0; Index < Count; Index++) {
        ASSERT_EQ(First[Guard + Index].Reserved, 0);
    }
}

TEST(BootScreen, HasNoBlackWhereTheConsolesRoundedCornersShowIt)
{
    std::vector<PIXEL> Display(size_t{BOOT_SCREEN_WIDTH} * BOOT_SCREEN_HEIGHT);
    PaintBootScreen(Display.data());
    for (const size_t Y : {36u, 730u}) {
        for (const size_t X : {43u, 980u}) {
            const PIXEL& Pixel = Display[Y * BOOT_SCREEN_WIDTH + X];
            EXPECT_GT(Pixel.Blue + Pixel.Green + Pixel.Red, 150) << X << ", " << Y;
        }
    }
}
