#include "platform/host/Png.h"

#include <gtest/gtest.h>

#include "TestFolder.h"

TEST(Png, SaysWhenAFileCannotBeWritten)
{
    const TestFolder Folder;
    const UINT32 Pixel = 0;
    EXPECT_FALSE(WritePng(Folder.File("no/such/folder/x.png").c_str(), &Pixel, 1, 1));
    EXPECT_FALSE(WritePng(Folder.File("empty.png").c_str(), &Pixel, 0, 1));
    EXPECT_FALSE(WritePng("/dev/full", &Pixel, 1, 1)); // opens, and takes nothing
}
