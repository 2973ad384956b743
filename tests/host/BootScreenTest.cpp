#include "platform/board/BootScreen.h"

#include <cstring>
#include <vector>

#include <gtest/gtest.h>

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

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
