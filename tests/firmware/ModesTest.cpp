// Which mode of a display the starter shows the console in.
#include <gtest/gtest.h>

#include <vector>

#include "platform/firmware/starter/Modes.h"

namespace {

struct CASE {
    const char* Story;
    std::vector<MODE_OFFER> Offers; // Number is the order of the firmware
    PANEL_SIZE Native;
    UINT32 Wanted;
};

TEST(Modes, TheOneThatSuitsTheConsoleBestIsChosen)
{
    const CASE Cases[] = {
        {"the console's own size", {{0, 1280, 800, true}, {1, 1024, 768, true}}, {1280, 800}, 1},
        {"blue first before red first", {{0, 1024, 768, false}, {1, 1024, 768, true}}, {1024, 768}, 1},
        {"red first is better than another size", {{0, 1280, 1024, true}, {1, 1024, 768, false}}, {1280, 1024}, 1},
        {"a dense panel at its own size", {{0, 1024, 768, true}, {1, 3840, 2160, true}}, {3840, 2160}, 1},
        {"one row short of twice the size", {{0, 1024, 768, true}, {1, 2560, 1535, true}}, {2560, 1535}, 0},
        {"a dense panel that doesn't offer its own size",
         {{0, 1024, 768, true}, {1, 2048, 1536, true}},
         {3840, 2160},
         0},
        {"the only mode", {{0, 1366, 768, true}}, {1366, 768}, 0},
        {"a panel's own size before another", {{0, 1280, 1024, true}, {1, 1920, 1080, true}}, {1920, 1080}, 1},
        {"the smallest with room", {{0, 1920, 1080, true}, {1, 1280, 800, true}, {2, 800, 600, true}}, {0, 0}, 1},
        {"the largest of those that are too small", {{0, 640, 480, true}, {1, 1280, 720, true}}, {0, 0}, 1},
    };
    for (const CASE& Case : Cases) {
        EXPECT_EQ(ChooseMode(Case.Offers.data(), Case.Offers.size(), Case.Native, true), Case.Wanted) << Case.Story;
    }
    const CASE& Dense = Cases[3];
    EXPECT_EQ(ChooseMode(Dense.Offers.data(), Dense.Offers.size(), Dense.Native, false), 0u)
        << "nothing enlarges boxes";
    EXPECT_EQ(ChooseMode(nullptr, 0, {1024, 768}, true), 0u);
}

TEST(Modes, FromSixHundredAndFortyByFourHundredAndEightyOnAreOffered)
{
    struct {
        EFI_GRAPHICS_OUTPUT_MODE_INFORMATION Mode;
        bool Offered;
        bool AsIs;
    } const Cases[] = {
        {{0, 640, 480, PixelBlueGreenRedReserved8BitPerColor, {}, 640}, true, true},
        {{0, 640, 479, PixelBlueGreenRedReserved8BitPerColor, {}, 640}, false, true},
        {{0, 639, 480, PixelBlueGreenRedReserved8BitPerColor, {}, 639}, false, true},
        {{0, 1024, 768, PixelBlueGreenRedReserved8BitPerColor, {}, 1056}, true, false},
        {{0, 1024, 768, PixelRedGreenBlueReserved8BitPerColor, {}, 1024}, true, false},
        {{0, 1024, 768, PixelBitMask, {0xFF0000, 0xFF00, 0xFF, 0}, 1024}, true, false},
        {{0, 1024, 768, PixelBltOnly, {}, 1024}, true, false},
    };
    for (const auto& Case : Cases) {
        MODE_OFFER Offer = {};
        EXPECT_EQ(OfferMode(7, &Case.Mode, &Offer), Case.Offered);
        EXPECT_EQ(Offer.AsIs, Case.AsIs);
        EXPECT_EQ(Offer.Number, 7u);
    }
}

TEST(Modes, ThePanelsOwnSizeComesFromItsFirstDetailedTiming)
{
    std::vector<UINT8> Edid(128);
    // 3840 by 2160: the low bytes of the active columns and rows, and their upper four bits in the high half of a byte.
    Edid[54] = 0x04;
    Edid[55] = 0x74;
    Edid[56] = 0x00;
    Edid[58] = 0xF0 | 0x3;
    Edid[59] = 0x70;
    Edid[61] = 0x80 | 0x5;
    const PANEL_SIZE Size = ReadNativeSize(Edid.data(), Edid.size());
    EXPECT_EQ(Size.Width, 3840u);
    EXPECT_EQ(Size.Height, 2160u);
    EXPECT_EQ(ReadNativeSize(Edid.data(), 71).Width, 0u); // cut short
    Edid[54] = Edid[55] = 0;                              // no timing but a text
    EXPECT_EQ(ReadNativeSize(Edid.data(), Edid.size()).Width, 0u);
    EXPECT_EQ(ReadNativeSize(nullptr, 0).Width, 0u);
}

} // namespace
