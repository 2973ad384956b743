#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

#include "tests/console/ConsoleBench.h"
#include "tests/host/TestFolder.h"

namespace {

// A picture strip whose frames are dark in their left half and bright in the right one.
VOID WriteStrip(const std::string& Path, int Width, int FrameHeight)
{
    std::vector<UINT8> Pixels;
    for (int At = 0; At < Width * 4 * FrameHeight; At++) {
        Pixels.insert(Pixels.end(), 3, At % Width < 48 ? 0x30 : 0xC0);
    }
    ASSERT_NE(stbi_write_jpg(Path.c_str(), Width, 4 * FrameHeight, 3, Pixels.data(), 95), 0);
}

TEST(HangingPicture, AnExitButtonWiderThanItsRoomIsCutAtTheScreensEdge)
{
    const TestFolder Folder;
    for (const int Width : {92, 93, 400}) {
        SCOPED_TRACE(Width);
        const std::string Strip = Folder.File("exit.jpg");
        WriteStrip(Strip, Width, 24);
        SCENE Scene;
        Scene.Line("artwork 17 " + Strip).Point(gAway).Turns(2).Screenshot("start");
        const RUN Run = Scene.Click({1023, 104}).Turns(20).Play();
        // The button stands at (932, 81), 24 pixels high; its caption begins at column 10.
        const PICTURE& Picture = Run.Picture("start");
        for (int Row = 81; Row < 81 + 24; Row++) {
            ASSERT_NEAR(PixelAt(Picture, {932 + 4, Row}) & 0xFF, 0x30, 8) << Row;
            ASSERT_NEAR(PixelAt(Picture, {1023, Row}) & 0xFF, 0xC0, 8) << Row;
        }
        EXPECT_LT(Run.Named("Return").at(0).Turn, Scene.TurnsSoFar) << "the last pixel of the last row is Exit, too";
    }
}

} // namespace
