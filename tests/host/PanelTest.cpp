// The console on displays that aren't 1024 by 768, or don't show their picture in memory as the console reads it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <vector>

#include "platform/display/DisplayLayer.h"
#include "platform/display/Scale.h"
#include "platform/host/CurrentBoot.h"
#include "platform/host/Session.h"

namespace {

using PIXEL = EFI_GRAPHICS_OUTPUT_BLT_PIXEL;

constexpr UINTN gPicturePixels = UINTN{gPictureWidth} * gPictureHeight;

// A picture in which every pixel differs from its neighbours.
std::vector<UINT32> MakePattern()
{
    std::vector<UINT32> Pattern(gPicturePixels);
    for (UINT32 At = 0; At < gPicturePixels; At++) {
        Pattern[At] = (At * 2654435761u >> 8) & 0xFFFFFF;
    }
    return Pattern;
}

// The layer of a boot, as the board and the console find it, and the panel behind it.
struct LAYERED {
    BOOT Boot;
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Graphics = nullptr;

    explicit LAYERED(const PANEL& Panel) : Boot(BOOT_OPTIONS{.Panel = Panel})
    {
        VOID* Interface = nullptr;
        (void)Boot.FirmwareTable.BootServices->LocateProtocol(&gEfiGraphicsOutputProtocolGuid, nullptr, &Interface);
        Graphics = static_cast<EFI_GRAPHICS_OUTPUT_PROTOCOL*>(Interface);
    }
    EFI_STATUS Paint(std::vector<UINT32> Block, UINTN X, UINTN Y, UINTN Width, UINTN Height) const
    {
        return Graphics->Blt(Graphics, reinterpret_cast<PIXEL*>(Block.data()), EfiBltBufferToVideo, 0, 0, X, Y, Width,
                             Height, 0);
    }
    UINT32 At(UINTN X, UINTN Y)
    {
        Boot.SettleDisplay();
        return Boot.Display.Words()[Y * Boot.Display.Width() + X];
    }
};

struct SHOWN {
    PANEL Panel;
    UINT32 X; // of the picture on the panel
    UINT32 Y;
    UINT32 Multiple;
};

TEST(Panel, WithRoomForTheConsoleShowsItsPixelsAsSquaresInTheMiddle)
{
    constexpr SHOWN Cases[] = {
        // panel                            picture at   times
        {{1024, 768, PANEL_BLT_ONLY}, 0, 0, 1},         {{1024, 768, PANEL_RED_FIRST}, 0, 0, 1},
        {{1366, 768, PANEL_THREE_BYTES}, 171, 0, 1},    {{1280, 1024, PANEL_RED_FIRST}, 128, 128, 1},
        {{1025, 769, PANEL_BLUE_FIRST}, 0, 0, 1},       {{2048, 1536, PANEL_BLT_ONLY}, 0, 0, 2},
        {{3840, 2160, PANEL_THREE_BYTES}, 896, 312, 2}, {{3200, 2400, PANEL_BLUE_FIRST}, 64, 48, 3},
    };
    const std::vector<UINT32> Pattern = MakePattern();
    for (const SHOWN& Case : Cases) {
        SCOPED_TRACE(testing::Message() << Case.Panel.Width << "x" << Case.Panel.Height);
        LAYERED Layered(Case.Panel);
        ASSERT_EQ(Layered.Paint(Pattern, 0, 0, gPictureWidth, gPictureHeight), EFI_SUCCESS);
        // A part that begins and ends in the middle of squares of the panel's own raster.
        ASSERT_EQ(Layered.Paint(std::vector<UINT32>(7 * 5, 0xABCDEF), 333, 222, 7, 5), EFI_SUCCESS);
        const UINT32 Surround = Layered.At(Case.Panel.Width - 1, Case.Panel.Height - 1);
        UINTN Wrong = 0;
        for (UINT32 Y = 0; Y < Case.Panel.Height; Y++) {
            for (UINT32 X = 0; X < Case.Panel.Width; X++) {
                const UINT32 Column = (X - Case.X) / Case.Multiple; // beyond the picture on its left and above too
                const UINT32 Row = (Y - Case.Y) / Case.Multiple;
                const bool Block = Column >= 333 && Column < 340 && Row >= 222 && Row < 227;
                const UINT32 Wanted = X < Case.X || Y < Case.Y || Column >= gPictureWidth || Row >= gPictureHeight
                                          ? Surround
                                      : Block ? 0xABCDEF
                                              : Pattern[Row * gPictureWidth + Column];
                Wrong += Layered.Boot.Display.Words()[UINTN{Y} * Case.Panel.Width + X] != Wanted ? 1 : 0;
            }
        }
        EXPECT_EQ(Wrong, 0u);
    }
}

TEST(Panel, TooSmallForTheConsoleShowsTheMeanOfWhatEachPixelCovers)
{
    std::vector<UINT32> Picture(gPicturePixels, 0);
    Picture[0] = 0x0000FF;
    Picture[1] = 0x00FF00;
    Picture[gPictureWidth] = 0xFF0000;
    const auto* Pixels = reinterpret_cast<const PIXEL*>(Picture.data());
    PIXEL Shown[2] = {};

    const PLACEMENT Half = PlacePicture(512, 400); // 512 by 384, eight rows down
    ASSERT_EQ(Half.Y, 8u);
    ScaleRows(Pixels, Half, {0, 8, 2, 9}, Shown);
    EXPECT_EQ(Shown[0].Blue, 64); // a quarter of 255, rounded
    EXPECT_EQ(Shown[0].Green, 64);
    EXPECT_EQ(Shown[0].Red, 64);
    EXPECT_EQ(Shown[1].Green, 0);

    // At three quarters a pixel covers 4/3 by 4/3 of the picture: of 16 ninths its first pixel is 9, the one beside it 3.
    ScaleRows(Pixels, PlacePicture(768, 576), {0, 0, 2, 1}, Shown);
    EXPECT_EQ(Shown[0].Blue, 143);
    EXPECT_EQ(Shown[0].Green, 48);
    EXPECT_EQ(Shown[0].Red, 48);
    EXPECT_EQ(Shown[1].Green, 96); // two thirds of the column, of which a full row: 6 of 16
    EXPECT_EQ(Shown[1].Blue, 0);

    // What changed alone is sent, and shows the same as when all is.
    const std::vector<UINT32> Pattern = MakePattern();
    std::vector<UINT32> Screens[2];
    for (const bool InParts : {false, true}) {
        LAYERED Layered({800, 600, PANEL_BLUE_FIRST});
        for (UINTN Row = 0; Row < gPictureHeight && InParts; Row++) {
            const auto From = Pattern.begin() + static_cast<std::ptrdiff_t>(Row * gPictureWidth);
            ASSERT_EQ(Layered.Paint({From, From + 501}, 0, Row, 501, 1), EFI_SUCCESS);
            ASSERT_EQ(Layered.Paint({From + 501, From + gPictureWidth}, 501, Row, 523, 1), EFI_SUCCESS);
        }
        ASSERT_EQ(Layered.Paint(Pattern, 0, 0, gPictureWidth, gPictureHeight), EFI_SUCCESS);
        const UINT32* Words = Layered.Boot.Display.Words();
        Screens[InParts ? 1 : 0].assign(Words, Words + 800 * 600);
    }
    EXPECT_EQ(Screens[0], Screens[1]);
}

TEST(Panel, GivesBackWhatWasPaintedAndMovesIt)
{
    LAYERED Layered({2048, 1536, PANEL_BLT_ONLY});
    std::vector<UINT32> Block(200 * 2);
    std::iota(Block.begin(), Block.end(), 1);
    ASSERT_EQ(Layered.Paint(Block, 10, 20, 200, 2), EFI_SUCCESS);
    std::vector<UINT32> Back(Block.size());
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Graphics = Layered.Graphics;
    // One down and to the right, over itself.
    ASSERT_EQ(Graphics->Blt(Graphics, nullptr, EfiBltVideoToVideo, 10, 20, 11, 21, 200, 2, 0), EFI_SUCCESS);
    ASSERT_EQ(
        Graphics->Blt(Graphics, reinterpret_cast<PIXEL*>(Back.data()), EfiBltVideoToBltBuffer, 11, 21, 0, 0, 200, 2, 0),
        EFI_SUCCESS);
    EXPECT_EQ(Back, Block);
    EXPECT_EQ(Layered.At(2 * 10, 2 * 20), 1u);
    EXPECT_EQ(Layered.At(2 * 210 + 1, 2 * 22 + 1), 400u);
    // The frame buffer holds the same; the console keeps it at its start.
    const auto* Words = reinterpret_cast<const UINT32*>(Graphics->Mode->FrameBufferBase);
    EXPECT_EQ(Words[22 * gPictureWidth + 210], 400u);
    EXPECT_EQ(Layered.Paint({5}, 1024, 0, 1, 1), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Layered.Paint({5}, 1023, 767, 1, 2), EFI_INVALID_PARAMETER);
}

// A firmware's display that counts.
struct COUNTING_DISPLAY {
    EFI_GRAPHICS_OUTPUT_PROTOCOL Graphics = {.QueryMode = nullptr, .SetMode = nullptr, .Blt = Count, .Mode = &Mode};
    EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE Mode = {1, 0, &Information, sizeof(Information), 0, 0};
    EFI_GRAPHICS_OUTPUT_MODE_INFORMATION Information = {0, 1024, 768, PixelBltOnly, {}, 1024};
    UINTN Calls = 0;
    UINTN Pixels = 0;
    EFI_STATUS Status = EFI_SUCCESS;

    static EFI_STATUS Count(EFI_GRAPHICS_OUTPUT_PROTOCOL* This, PIXEL*, EFI_GRAPHICS_OUTPUT_BLT_OPERATION, UINTN, UINTN,
                            UINTN, UINTN, UINTN Width, UINTN Height, UINTN)
    {
        auto* Display = reinterpret_cast<COUNTING_DISPLAY*>(This);
        Display->Calls++;
        Display->Pixels += Width * Height;
        return Display->Status;
    }
};

struct CountedPanel : testing::Test {
    BOOT Boot{BOOT_OPTIONS{}};
    COUNTING_DISPLAY Display;
    DISPLAY_LAYER* Layer = nullptr;

    VOID SetUp() override
    {
        ASSERT_EQ(OpenDisplayLayer(Boot.FirmwareTable.BootServices, &Display.Graphics, &Layer), EFI_SUCCESS);
        Display.Calls = 0;
        Display.Pixels = 0;
    }
    VOID TearDown() override
    {
        CloseDisplayLayer(Layer);
        EXPECT_TRUE(Boot.Pool.Held(0).empty());
    }
    EFI_STATUS Fill(UINT8 Tone, UINTN X, UINTN Y, UINTN Width, UINTN Height)
    {
        PIXEL Color = {Tone, Tone, Tone, 0};
        return Layer->Graphics.Blt(&Layer->Graphics, &Color, EfiBltVideoFill, 0, 0, X, Y, Width, Height, 0);
    }
};

TEST_F(CountedPanel, IsSentOnlyWhatChanged)
{
    ASSERT_EQ(Fill(9, 100, 100, 50, 40), EFI_SUCCESS);
    EXPECT_EQ(Display.Calls, 1u);
    EXPECT_EQ(Display.Pixels, 2000u);
    ASSERT_EQ(Fill(9, 100, 100, 50, 40), EFI_SUCCESS);
    EXPECT_EQ(Display.Calls, 1u);
    ASSERT_EQ(Fill(9, 90, 100, 60, 41), EFI_SUCCESS); // ten columns on the left and one row below are new
    EXPECT_EQ(Display.Calls, 2u);
    EXPECT_EQ(Display.Pixels, 2000u + 60 * 41);
    // Of a picture, what changed on its left and on its right; their rectangle would be half of it.
    std::vector<UINT32> Picture(gPicturePixels, 0x070707);
    const auto Send = [&] {
        Display.Calls = Display.Pixels = 0;
        return Layer->Graphics.Blt(&Layer->Graphics, reinterpret_cast<PIXEL*>(Picture.data()), EfiBltBufferToVideo, 0,
                                   0, 0, 0, gPictureWidth, gPictureHeight, 0);
    };
    ASSERT_EQ(Send(), EFI_SUCCESS);
    std::fill_n(Picture.begin() + 30 * gPictureWidth + 20, 9, 1);
    std::fill_n(Picture.begin() + 700 * gPictureWidth + 1014, 10, 1);
    ASSERT_EQ(Send(), EFI_SUCCESS);
    EXPECT_EQ(Display.Calls, 2u);
    EXPECT_EQ(Display.Pixels, 19u);
}

TEST_F(CountedPanel, IsSentAgainWhatItFailedToTake)
{
    Display.Status = EFI_DEVICE_ERROR;
    EXPECT_EQ(Fill(8, 300, 300, 100, 100), EFI_DEVICE_ERROR);
    EXPECT_EQ(Fill(8, 300, 300, 100, 100), EFI_SUCCESS) << "nothing is new";
    FlushDisplayLayer(Layer);
    Display.Status = EFI_SUCCESS;
    Display.Pixels = 0;
    FlushDisplayLayer(Layer);
    EXPECT_EQ(Display.Pixels, 10000u);
}

TEST_F(CountedPanel, IsSentSinglePixelsTogetherBeforeAnythingElseOrWhenTheirTimeHasCome)
{
    for (UINTN At = 0; At < 60; At++) { // two sides of an outline
        ASSERT_EQ(Fill(7, 200 + At, 300, 1, 1), EFI_SUCCESS);
        ASSERT_EQ(Fill(7, 200, 300 + At, 1, 1), EFI_SUCCESS);
    }
    EXPECT_EQ(Display.Calls, 0u);
    Layer->Busy = true; // a timer that fires inside an operation
    FlushDisplayLayer(Layer);
    EXPECT_EQ(Display.Calls, 0u);
    Layer->Busy = false;
    FlushDisplayLayer(Layer);
    EXPECT_EQ(Display.Calls, 1u);
    EXPECT_EQ(Display.Pixels, 3600u);
    FlushDisplayLayer(Layer);
    EXPECT_EQ(Display.Calls, 1u);

    ASSERT_EQ(Fill(6, 10, 10, 1, 1), EFI_SUCCESS);
    ASSERT_EQ(Fill(6, 900, 700, 1, 1), EFI_SUCCESS); // one rectangle around both would be most of the screen
    EXPECT_EQ(Display.Calls, 2u);
    ASSERT_EQ(Fill(5, 20, 20, 8, 8), EFI_SUCCESS); // what is held goes first
    EXPECT_EQ(Display.Calls, 4u);
    EXPECT_EQ(Display.Pixels, 3600u + 1 + 1 + 64);
}

// A display that refuses every third block for a while, from the console's first call on.
struct REFUSING_DISPLAY {
    UINTN Blocks = 0;
    decltype(EFI_GRAPHICS_OUTPUT_PROTOCOL::Blt) True = nullptr;
} gRefusing;

bool BeginToRefuse(VOID*, CALL, EFI_STATUS*, bool*)
{
    if (gRefusing.True == nullptr) {
        gRefusing.True = gCurrentBoot->Protocols.GraphicsOutput.Blt;
        gCurrentBoot->Protocols.GraphicsOutput.Blt =
            [](EFI_GRAPHICS_OUTPUT_PROTOCOL* This, PIXEL* Buffer, EFI_GRAPHICS_OUTPUT_BLT_OPERATION Operation,
               UINTN SourceX, UINTN SourceY, UINTN X, UINTN Y, UINTN Width, UINTN Height, UINTN Delta) {
                const bool Refuses = gRefusing.Blocks++ < 400 && gRefusing.Blocks % 3 == 0;
                return Refuses ? EFI_DEVICE_ERROR
                               : gRefusing.True(This, Buffer, Operation, SourceX, SourceY, X, Y, Width, Height, Delta);
            };
    }
    return false;
}

TEST(PanelLayer, ShowsTheConsoleWholeAfterBlocksThatTheDisplayRefused)
{
    SESSION_OPTIONS Options;
    Options.ImagePath = VENTARA_CONSOLE_IMAGE;
    Options.Panel = {2048, 1536, PANEL_BLT_ONLY};
    Options.Script = "pointer 424 150\nturn 3\nleft down\nturn\nleft up\nturn 3\ntick 40\nscreenshot end\n";
    const SESSION_RESULT Whole = RunSession(Options);
    Options.Failures.Call = BeginToRefuse;
    const SESSION_RESULT Refused = RunSession(Options);
    EXPECT_GT(gRefusing.Blocks, 420u) << "the blocks that follow are taken";
    EXPECT_EQ(Refused.Status, EFI_SUCCESS);
    EXPECT_TRUE(Refused.Complaints.empty() && Refused.Leaks.empty());
    EXPECT_TRUE(Whole.Pictures.at("end") == Refused.Pictures.at("end"));
}

TEST(PanelLayer, LeavesNothingBehindWhereMemoryIsMissing)
{
    for (const UINT64 Failing : {1, 2, 3}) {
        BOOT Boot(BOOT_OPTIONS{});
        COUNTING_DISPLAY Display;
        Display.Information.HorizontalResolution = 800;
        DISPLAY_LAYER* Layer = nullptr;
        Boot.Pool.FailOnly = Failing;
        EXPECT_EQ(OpenDisplayLayer(Boot.FirmwareTable.BootServices, &Display.Graphics, &Layer), EFI_OUT_OF_RESOURCES);
        EXPECT_EQ(Layer, nullptr);
        EXPECT_EQ(Display.Calls, 0u);
        EXPECT_TRUE(Boot.Pool.Held(0).empty());
    }
}

TEST(PanelLayer, EndsWithSquaresOfMoreRowsThanAreSentAtOnce)
{
    BOOT Boot(BOOT_OPTIONS{});
    COUNTING_DISPLAY Display;
    Display.Information.HorizontalResolution = 65 * gPictureWidth;
    Display.Information.VerticalResolution = 65 * gPictureHeight;
    DISPLAY_LAYER* Layer = nullptr;
    ASSERT_EQ(OpenDisplayLayer(Boot.FirmwareTable.BootServices, &Display.Graphics, &Layer), EFI_SUCCESS);
    Display.Pixels = 0;
    PIXEL Color = {1, 1, 1, 0};
    EXPECT_EQ(Layer->Graphics.Blt(&Layer->Graphics, &Color, EfiBltVideoFill, 0, 0, 5, 5, 8, 8, 0), EFI_SUCCESS);
    EXPECT_EQ(Display.Pixels, UINTN{8 * 65} * (8 * 65));
    CloseDisplayLayer(Layer);
}

TEST(PanelPlace, IsWhereAFingerPoints)
{
    const PLACEMENT Places[] = {PlacePicture(3840, 2160), PlacePicture(800, 600), PlacePicture(1366, 768)};
    for (const PLACEMENT& Place : Places) {
        for (const UINT32 At : {0u, 1u, 333u, 511u, 766u, 767u}) {
            const PANEL_AREA Pixel = AreaOnPanel(Place, {At, At, At + 1, At + 1});
            INT64 X = -1;
            INT64 Y = -1;
            PictureAt(Place, (Pixel.Left + Pixel.Right) / 2, (Pixel.Top + Pixel.Bottom) / 2, &X, &Y);
            EXPECT_NEAR(static_cast<double>(X), At, Place.Multiple == 0 ? 1 : 0) << Place.PanelWidth;
            EXPECT_NEAR(static_cast<double>(Y), At, Place.Multiple == 0 ? 1 : 0) << Place.PanelWidth;
        }
        INT64 X = -1;
        INT64 Y = -1;
        PictureAt(Place, -5, Place.PanelHeight + 5, &X, &Y);
        EXPECT_EQ(X, 0);
        EXPECT_EQ(Y, 767);
    }
}

} // namespace
