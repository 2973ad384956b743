#include "platform/board/Lines.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace {

// A small picture, drawn as text: '#' where the line is.
struct CANVAS {
    UINTN Width;
    UINTN Height;
    std::vector<EFI_GRAPHICS_OUTPUT_BLT_PIXEL> Pixels;

    CANVAS(UINTN Width1, UINTN Height1) : Width(Width1), Height(Height1), Pixels(Width1 * Height1) {}

    std::string Draw(INT64 X0, INT64 Y0, INT64 X1, INT64 Y1, UINTN Thickness = 1)
    {
        std::fill(Pixels.begin(), Pixels.end(), EFI_GRAPHICS_OUTPUT_BLT_PIXEL{});
        EXPECT_EQ(DrawLine(Pixels.data(), Width, Height, static_cast<UINTN>(X0), static_cast<UINTN>(Y0),
                           static_cast<UINTN>(X1), static_cast<UINTN>(Y1), Thickness, 0x00FF8040),
                  EFI_SUCCESS);
        std::string Picture;
        for (UINTN Y = 0; Y < Height; Y++) {
            for (UINTN X = 0; X < Width; X++) {
                Picture += Pixels[Y * Width + X].Blue == 0x40 ? '#' : '.';
            }
            Picture += '\n';
        }
        return Picture;
    }
};

TEST(Lines, ReachBothEndsInAnyDirection)
{
    CANVAS Canvas(5, 4);
    EXPECT_EQ(Canvas.Draw(1, 2, 3, 2), ".....\n.....\n.###.\n.....\n");
    EXPECT_EQ(Canvas.Draw(1, 0, 1, 3), ".#...\n.#...\n.#...\n.#...\n");
    EXPECT_EQ(Canvas.Draw(0, 0, 3, 3), "#....\n.#...\n..#..\n...#.\n");
    EXPECT_EQ(Canvas.Draw(0, 3, 3, 0), "...#.\n..#..\n.#...\n#....\n");
    EXPECT_EQ(Canvas.Draw(0, 0, 4, 1), "##...\n..###\n.....\n.....\n");
    EXPECT_EQ(Canvas.Draw(2, 1, 2, 1), ".....\n..#..\n.....\n.....\n");
}

TEST(Lines, TheTwoEndsMayBeSwapped)
{
    CANVAS Canvas(9, 7);
    for (INT64 X = -3; X < 12; X++) {
        for (INT64 Y = -3; Y < 10; Y++) {
            EXPECT_EQ(Canvas.Draw(4, 3, X, Y), Canvas.Draw(X, Y, 4, 3));
        }
    }
}

TEST(Lines, WhatLiesOutsideIsLeftOutAndTheRestStaysWhereItWas)
{
    CANVAS Small(4, 4);
    CANVAS Large(12, 12);
    // The same line, seen through a window at (4, 4) of the large canvas.
    for (INT64 X = 0; X < 12; X++) {
        for (INT64 Y = 0; Y < 12; Y++) {
            for (UINTN Thickness = 1; Thickness < 4; Thickness++) {
                const std::string All = Large.Draw(X, Y, 11 - Y, X, Thickness);
                std::string Window;
                for (UINTN Row = 4; Row < 8; Row++) {
                    Window += All.substr(Row * 13 + 4, 4) + "\n";
                }
                EXPECT_EQ(Small.Draw(X - 4, Y - 4, 7 - Y, X - 4, Thickness), Window);
            }
        }
    }
    EXPECT_EQ(Small.Draw(-1000000, 1, 1000000, 1), "....\n####\n....\n....\n");
}

TEST(Lines, AThickLineGrowsToBothSides)
{
    CANVAS Canvas(5, 5);
    EXPECT_EQ(Canvas.Draw(1, 2, 3, 2, 3), ".....\n.###.\n.###.\n.###.\n.....\n");
    EXPECT_EQ(Canvas.Draw(2, 0, 2, 4, 2), "..##.\n..##.\n..##.\n..##.\n..##.\n");
    EXPECT_EQ(Canvas.Draw(0, 0, 4, 4, 0), ".....\n.....\n.....\n.....\n.....\n");
}

} // namespace
