#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "platform/host/Display.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

TEST(DisplayTest, WhatDoesntLieOnTheDisplayIsRefusedAsAWhole)
{
    DISPLAY Display;
    std::vector<UINT32> Buffer(1024 * 4, 0x123456);
    PIXEL* Pixels = reinterpret_cast<PIXEL*>(Buffer.data());
    struct CASE {
        EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation;
        bool HasBuffer;
        UINTN SourceX, SourceY, X, Y, Width, Height;
    };
    const CASE Cases[] = {
        {EfiBltBufferToVideo, true, 0, 0, 1023, 0, 2, 1},
        {EfiBltBufferToVideo, true, 0, 0, 0, 768, 1, 1},
        {EfiBltBufferToVideo, true, 0, 0, 0, 767, 1, 2},
        {EfiBltBufferToVideo, true, 0, 0, ~UINTN{0}, 0, 2, 1}, // as a sum it would be on the display
        {EfiBltBufferToVideo, true, 0, 0, 0, 0, 0, 1},
        {EfiBltBufferToVideo, true, 0, 0, 0, 0, 1, 0},
        {EfiBltBufferToVideo, false, 0, 0, 0, 0, 1, 1},
        {EfiBltVideoFill, false, 0, 0, 0, 0, 1, 1},
        {EfiBltVideoToBltBuffer, true, 1024, 0, 0, 0, 1, 1},
        {EfiBltVideoToVideo, true, 0, 0, 0, 0, 1, 1},
    };
    const std::vector<UINT32> Before(Display.Words(), Display.Words() + 1024 * 768);
    for (const CASE& Case : Cases) {
        EXPECT_EQ(Display.Blt(Case.HasBuffer ? Pixels : nullptr, Case.Operation, Case.SourceX, Case.SourceY, Case.X,
                              Case.Y, Case.Width, Case.Height, 0),
                  EFI_INVALID_PARAMETER)
            << "case " << &Case - Cases;
    }
    EXPECT_TRUE(std::equal(Before.begin(), Before.end(), Display.Words()));
    EXPECT_EQ(Display.Blt(Pixels, EfiBltBufferToVideo, 0, 0, 0, 764, 1024, 4, 0), EFI_SUCCESS) << "the very edge";
}

} // namespace
