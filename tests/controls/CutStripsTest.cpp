#include <string>

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "shell/contract/Services.h"
#include "tests/gui/ToolkitBench.h"

namespace {

using CUT_STRIPS = TOOLKIT;

// The upper left part of each frame of a whole control, and the component's rectangle with it.
VOID ExpectCut(const BTN_COMPONENT* Cut, const BTN_COMPONENT* Whole, UINT32 Width, UINT32 Height)
{
    ASSERT_NE(Cut, nullptr);
    EXPECT_EQ(Cut->Rect.Width, Width);
    EXPECT_EQ(Cut->Rect.Height, Height);
    EXPECT_EQ(Cut->Rect.BufferSize, Width * Height * sizeof(PIXEL));
    ASSERT_NE(ComponentOf(Cut->Id), nullptr);
    EXPECT_EQ(ComponentOf(Cut->Id)->Rect.Width, Width);
    EXPECT_EQ(ComponentOf(Cut->Id)->Rect.Height, Height);
    for (UINT32 Frame = 0; Frame < 4; Frame++) {
        for (UINT32 Row = 0; Row < Height; Row++) {
            for (UINT32 Column = 0; Column < Width; Column++) {
                ASSERT_EQ(ColorOf(Cut->Frames[Frame][Row * Width + Column]),
                          ColorOf(Whole->Frames[Frame][Row * Whole->Rect.Width + Column]))
                    << "frame " << Frame << " (" << Column << ", " << Row << ")";
            }
        }
    }
}

// A place of a control, and the size of what shows there.
struct PLACE {
    UINT32 X, Y, Width, Height;
};

TEST_F(CUT_STRIPS, AButtonIsTheVisiblePartOfItsPicture)
{
    BTN_COMPONENT* Whole = nullptr;
    ASSERT_EQ(CreateButton(&Whole, &gArtworkFileGuid, 17, nullptr, 100, 100, 0, 0), EFI_SUCCESS);
    const UINT32 Width = Whole->Rect.Width;
    const UINT32 Height = Whole->Rect.Height;
    const PLACE Places[] = {
        {1024 - Width, 768 - Height, Width, Height},
        {1024 - Width + 1, 100, Width - 1, Height},
        {100, 768 - 5, Width, 5},
        {1023, 767, 1, 1},
    };
    for (const PLACE& Place : Places) {
        SCOPED_TRACE(std::to_string(Place.X) + ", " + std::to_string(Place.Y));
        BTN_COMPONENT* Cut = nullptr;
        EXPECT_EQ(CreateButton(&Cut, &gArtworkFileGuid, 17, nullptr, Place.X, Place.Y, 0, 0), EFI_SUCCESS);
        ExpectCut(Cut, Whole, Place.Width, Place.Height);
        DestroyButton(Cut);
    }
    BTN_COMPONENT* Off = nullptr;
    EXPECT_EQ(CreateButton(&Off, &gArtworkFileGuid, 17, nullptr, 1024, 100, 0, 0), EFI_NOT_FOUND);
    EXPECT_EQ(Off, nullptr);
    DestroyButton(Whole);
}

TEST_F(CUT_STRIPS, APlainBoxEndsAtTheScreensEdgeHoweverLongItsCaption)
{
    // It is drawn in place of a picture that is missing.
    CHECK_BOX_COMPONENT* Plain = nullptr;
    const std::u16string Caption(2000, u'x');
    EXPECT_EQ(CreateCheckBox(&Plain, Caption.c_str(), 55, 296, 99, &gArtworkFileGuid, CHECK_BOX_JPEG, 56, 7),
              EFI_SUCCESS);
    EXPECT_NE(Plain->Images, nullptr);
    EXPECT_EQ(Plain->Rect.Width, 1024u - 55);
    (void)DestroyCheckBox(Plain);
}

} // namespace
