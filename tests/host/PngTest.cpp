#include "platform/host/Png.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "TestFolder.h"

TEST(Png, GivesBackWhatWasWrittenWithoutTheReservedBytes)
{
    const TestFolder Folder;
    const std::string Path = Folder.File("round.png");
    const UINT32 Written[] = {0x00FF0000, 0xFF00FF00, 0x800000FF, 0x12345678, 0x00000000, 0xFFFFFFFF};
    ASSERT_TRUE(WritePng(Path.c_str(), Written, 3, 2));

    std::vector<UINT32> Pixels;
    unsigned Width = 0;
    unsigned Height = 0;
    ASSERT_TRUE(ReadPng(Path.c_str(), &Pixels, &Width, &Height));
    EXPECT_EQ(Width, 3u);
    EXPECT_EQ(Height, 2u);
    EXPECT_EQ(Pixels,
              (std::vector<UINT32>{0x00FF0000, 0x0000FF00, 0x000000FF, 0x00345678, 0x00000000, 0x00FFFFFF}));
}

TEST(Png, SaysWhenAFileCannotBeWrittenOrReadAndLeavesTheResultAlone)
{
    const TestFolder Folder;
    const UINT32 Pixel = 0;
    EXPECT_FALSE(WritePng(Folder.File("no/such/folder/x.png").c_str(), &Pixel, 1, 1));
    EXPECT_FALSE(WritePng(Folder.File("empty.png").c_str(), &Pixel, 0, 1));
    EXPECT_FALSE(WritePng("/dev/full", &Pixel, 1, 1)); // opens, and takes nothing

    const std::string Path = Folder.File("text.png");
    std::ofstream(Path) << "no picture";
    std::vector<UINT32> Pixels = {7};
    unsigned Width = 8;
    unsigned Height = 9;
    EXPECT_FALSE(ReadPng(Path.c_str(), &Pixels, &Width, &Height));
    EXPECT_FALSE(ReadPng(Folder.File("missing.png").c_str(), &Pixels, &Width, &Height));
    EXPECT_EQ(Pixels, std::vector<UINT32>{7});
    EXPECT_EQ(Width, 8u);
    EXPECT_EQ(Height, 9u);
}
