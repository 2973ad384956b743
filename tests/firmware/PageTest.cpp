#include "platform/firmware/starter/Page.h"

#include <gtest/gtest.h>

#include <string>

namespace {

TEST(Page, AParagraphIsWrappedBetweenWordsAndLosesNone)
{
    PAGE Page = {};
    AddParagraph(&Page, u"The file ", u"\\ventara-board.efi",
                 u" is missing on the volume that this starter was read "
                 u"from. Copy it there and start again. If the volume is a stick, write the image to it anew.");
    ASSERT_EQ(Page.RowCount, 3u);
    std::u16string Joined;
    for (UINTN Row = 0; Row < Page.RowCount; Row++) {
        std::u16string Text = Page.Rows[Row];
        EXPECT_LE(Text.size(), gPageColumns);
        if (Row + 1 < Page.RowCount) {
            EXPECT_EQ(Text.back(), u' ') << "a row ends between words";
        }
        Joined += Text;
    }
    EXPECT_EQ(Joined, u"The file \\ventara-board.efi is missing on the volume that this starter was read from. Copy it "
                      u"there and start again. If the volume is a stick, write the image to it anew.");
}

TEST(Page, AWordLongerThanARowAndMoreRowsThanAPageStayInside)
{
    std::u16string Word(gPageColumns * 3 + 5, u'x');
    PAGE Page = {};
    AddParagraph(&Page, Word.c_str());
    ASSERT_EQ(Page.RowCount, 4u);
    EXPECT_EQ(std::u16string(Page.Rows[3]).size(), 5u);

    std::u16string Long(gPageColumns * (gPageRows + 3), u'y');
    PAGE Full = {};
    AddParagraph(&Full, Long.c_str());
    AddGap(&Full);
    AddParagraph(&Full, u"more");
    EXPECT_EQ(Full.RowCount, gPageRows);
    EXPECT_EQ(std::u16string(Full.Rows[gPageRows - 1]).size(), gPageColumns);
}

}
