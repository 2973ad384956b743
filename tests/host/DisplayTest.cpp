#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "platform/host/Display.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

struct DisplayTest : testing::Test {
    DISPLAY Display;

    UINT32 At(UINTN X, UINTN Y) const { return Display.Words()[Y * gDisplayWidth + X]; }
    VOID Fill(UINTN X, UINTN Y, UINTN Width, UINTN Height, UINT32 Word)
    {
        PIXEL Color = {static_cast<UINT8>(Word), static_cast<UINT8>(Word >> 8), static_cast<UINT8>(Word >> 16), 0};
        ASSERT_EQ(Display.Blt(&Color, EfiBltVideoFill, 0, 0, X, Y, Width, Height, 0), EFI_SUCCESS);
    }
};

TEST_F(DisplayTest, ARectangleOfALargerBufferGoesToTheDisplayAndBackByItsDelta)
{
    // A buffer of 5 by 3 whose pixels tell their place.
    std::vector<UINT32> Buffer(15);
    for (UINT32 Word = 0; Word < 15; Word++) {
        Buffer[Word] = Word;
    }
    PIXEL* Pixels = reinterpret_cast<PIXEL*>(Buffer.data());
    Fill(0, 0, 20, 20, 0xFF);
    ASSERT_EQ(Display.Blt(Pixels, EfiBltBufferToVideo, 2, 1, 10, 10, 3, 2, 5 * 4), EFI_SUCCESS);
    EXPECT_EQ(At(10, 10), 7u);
    EXPECT_EQ(At(12, 11), 14u);
    EXPECT_EQ(At(13, 10), 0xFFu);
    EXPECT_EQ(At(10, 12), 0xFFu);

    std::vector<UINT32> Back(15, 99);
    ASSERT_EQ(Display.Blt(reinterpret_cast<PIXEL*>(Back.data()), EfiBltVideoToBltBuffer, 11, 10, 1, 1, 2, 2, 5 * 4),
              EFI_SUCCESS);
    const std::vector<UINT32> Expected = {99, 99, 99, 99, 99, 99, 8, 9, 99, 99, 99, 13, 14, 99, 99};
    EXPECT_EQ(Back, Expected);
}

TEST_F(DisplayTest, WhatDoesntLieOnTheDisplayIsRefusedAsAWhole)
{
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
