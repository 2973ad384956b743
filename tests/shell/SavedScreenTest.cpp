#include <algorithm>

#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

namespace {

using SAVED_SCREEN = TOOLKIT;

TEST_F(SAVED_SCREEN, HoldsAsMuchAsTheFrameBufferIsToldToHave)
{
    constexpr UINTN Pixels = gScreenWidth * gScreenHeight;
    const struct {
        UINTN Told;  // bytes
        UINTN Saved; // pixels
    } Cases[] = {
        {gScreenBytes, Pixels}, {2 * gScreenBytes, Pixels}, {4096, 1024}, {0, Pixels}, // 0: its size isn't told
    };
    EFI_GRAPHICS_OUTPUT_PROTOCOL_MODE* Mode = gGraphicsOutput->Mode;
    const UINTN Size = Mode->FrameBufferSize;
    FillPixels(Display(), Pixels, gScreenFill);
    for (const auto& Case : Cases) {
        SCOPED_TRACE(Case.Told);
        ReleasePool(gSavedScreen);
        Mode->FrameBufferSize = Case.Told;
        ASSERT_EQ(LocateProtocols(), EFI_SUCCESS);
        Mode->FrameBufferSize = Size;
        const auto Kept = std::count_if(gSavedScreen, gSavedScreen + Pixels,
                                        [](PIXEL Pixel) { return ColorOf(Pixel) == ColorOf(gScreenFill); });
        EXPECT_EQ(static_cast<UINTN>(Kept), Case.Saved);
    }
}

} // namespace
