#include "tests/console/ConsoleBench.h"

namespace {

TEST(MissingServices, EachOneEndsTheStartBeforeAnythingIsDrawn)
{
    struct CASE {
        const char* Lines;
        const char* LastGuid; // of the search, which goes no further
    };
    const CASE Cases[] = {
        {"without EFI_GRAPHICS_OUTPUT_PROTOCOL", "9042A9DE-23DC-4A38-96FB-7ADED080516A"},
        {"without EFI_CPU_ARCH_PROTOCOL", "26BACCB1-6F42-11D4-BCE7-0080C73C8881"},
        {"without IMAGE_DECODER_PROTOCOL", "B24C3803-2E14-40BA-A8FA-DDF5FE276433"},
        {"without CURSOR_SERVICE_PROTOCOL", "398460CA-006F-4A3D-BC25-2FCFF7C91EE5"},
        {"without REQUIRED_SERVICE_PROTOCOL", "02B1EB99-4BA4-4D21-93AE-6F831682A82E"},
        {"without FLOAT_MATH_PROTOCOL", "CC2AC9E3-14A9-11D3-8E77-00A0C969723B"},
        {"without IMAGE_LOOKUP_PROTOCOL", "B9450090-3EF5-420E-9AAD-948C2D0F2455"},
        {"without HW_SERVICE_PROTOCOL", "1552C0BE-D5FA-4BCE-90C1-78A91B7DBE17"},
        {"without DRAW_PRIMITIVES_PROTOCOL", "DC113A49-A77E-49F9-8D09-9DBF776C6711"},
        {"without IMAGE_SECTION_PROTOCOL", "A7307E70-27FE-46BD-8B4B-8E7F1AE938B8"},
        {"fail Configure UNSUPPORTED", "A7307E70-27FE-46BD-8B4B-8E7F1AE938B8"},
    };
    for (const CASE& Case : Cases) {
        SCOPED_TRACE(Case.Lines);
        const RUN Run = SCENE().Line(Case.Lines).Turns(3).Play();
        EXPECT_EQ(Run.Session.Status, EFI_PROTOCOL_ERROR);
        EXPECT_TRUE(Run.Named("Blt").empty());
        EXPECT_TRUE(Run.Named("CreateEvent").empty());
        EXPECT_EQ(Run.Session.OutputText, ""); // no message is shown
        ASSERT_FALSE(Run.Named("LocateProtocol").empty());
        EXPECT_EQ(Run.Named("LocateProtocol").back().Text("guid"), Case.LastGuid);
    }
}

TEST(MissingServices, ARefusalToInitializeIsPassedOver)
{
    const RUN Run = SCENE().Line("fail Initialize DEVICE_ERROR").Turns(2).Play();
    EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
    EXPECT_EQ(Run.Count("Initialize"), 1u);
}

TEST(MissingServices, WithoutFontsTheConsoleRunsWithoutTexts)
{
    const RUN Run = SCENE().Line("without EFI_HII_FONT_PROTOCOL").Turns(15).Button(FULL_SPEED).Play();
    EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
    EXPECT_NE(Run.Session.ErrorText.find("gEfiHiiFontProtocolGuid was not loaded"), std::string::npos);
    EXPECT_TRUE(Run.Named("StringToImage").empty());
    EXPECT_EQ(Run.Count("SetAllFansFullSpeed"), 1u);
}

TEST(MissingServices, WithoutThePointersPictureTheStartEndsWithAReport)
{
    const RUN Run = SCENE().Line("fail GetFileSection NOT_FOUND 2").Turns(2).Play();
    EXPECT_EQ(Run.Session.Status, EFI_PROTOCOL_ERROR);
    EXPECT_NE(Run.Session.ErrorText.find("can't find the image (InitCursorBlt)"), std::string::npos);
    EXPECT_TRUE(Run.Named("Blt").empty());
    const std::vector<CALL_LINE> Lookups = Run.Named("GetFileSection");
    ASSERT_EQ(Lookups.size(), 2u);
    EXPECT_EQ(Lookups[0].Text("guid"), "511799D5-4E57-40CF-8360-C7520EED1CCC");
    EXPECT_EQ(Lookups[0].Number("type"), 25u);
    EXPECT_EQ(Lookups[1].Number("type"), 16u);
}

} // namespace
