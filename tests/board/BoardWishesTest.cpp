#include "platform/board/BoardWishes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct READ_WISHES {
    BOARD_WISHES Wishes;
    std::vector<std::string> Faults; // "line: what"

    explicit READ_WISHES(const std::string& Text)
    {
        ReadBoardWishes(
            Text.data(), Text.size(), &Wishes,
            [](VOID* Faults, UINT32 Line, const CHAR8* What) {
                static_cast<std::vector<std::string>*>(Faults)->push_back(std::to_string(Line) + ": " + What);
            },
            &Faults);
    }
    std::string Sensors(WISH_KIND Kind) const
    {
        std::string Names;
        for (UINTN Row = 0; Row < Wishes.Count; Row++) {
            Names += Wishes.Rows[Row].Kind == Kind ? std::string(Wishes.Rows[Row].Sensor) + ';' : "";
        }
        return Names;
    }
};

TEST(BoardWishes, TakesEachSectionAndPassesOverRemarksAndBlanks)
{
    const READ_WISHES Read("\xEF\xBB\xBF# by hand\r\n"
                           "[Names]\r\n"
                           "  fan4 =  W Pump ; at the radiator\r\n"
                           "[order]\n"
                           "Temperatures = PECI , 4E/temp1,CPU\n"
                           "[factors]\n"
                           "in5=5.0455\n"
                           "in4 = 12\n"
                           "[leave]\n"
                           "fans = fan2"); // the file's end is the line's
    EXPECT_TRUE(Read.Faults.empty());
    ASSERT_EQ(Read.Wishes.Count, 7u);
    EXPECT_EQ(Read.Sensors(WISH_NAME), "fan4;");
    EXPECT_EQ(std::u16string(Read.Wishes.Rows[0].Name), u"W Pump");
    EXPECT_EQ(Read.Sensors(WISH_TEMPERATURE), "PECI;4E/temp1;CPU;");
    EXPECT_EQ(Read.Sensors(WISH_FACTOR), "in5;in4;");
    EXPECT_EQ(Read.Wishes.Rows[4].Factor, 50455u);
    EXPECT_EQ(Read.Wishes.Rows[5].Factor, 120000u);
    EXPECT_EQ(Read.Sensors(WISH_LEAVE), "fan2;");
    EXPECT_EQ(Read.Wishes.Rows[6].Line, 10u);
}

TEST(BoardWishes, TellsTheLineOfEachMistakeAndUsesTheRest)
{
    const READ_WISHES Read("fan1 = x\n"                         // 1
                           "[colours]\n"                        // 2
                           "fan1 = red\n"                       //
                           "[names]\n"                          //
                           "fan1\n"                             // 5
                           "fan1 =\n"                           // 6
                           "fan1 = sixteen letters.\n"          // 7
                           "fan1 = fifteen letters\n"           //
                           "[factors]\n"                        //
                           "in1 = 0\nin1 = -2\nin1 = 1.2.3\n"   // 10, 11, 12
                           "in1 = 100.1\nin1 = 99999999999\n"   // 13, 14
                           "in1 = 0.00019\n"                    //
                           "[leave]\n"                          //
                           "pumps = fan1\nfans = fan1,, fan2\n" // 17, 18
                           "[order]\nmice = 1\n"                // 20
                           "fans = " +
                           std::string(32, 'f') + "\n"); // 21
    std::string Lines;
    for (const std::string& Fault : Read.Faults) {
        Lines += Fault.substr(0, Fault.find(':') + 1);
    }
    EXPECT_EQ(Lines, "1:2:5:6:7:10:11:12:13:14:17:18:20:21:");
    EXPECT_EQ(Read.Sensors(WISH_NAME), "fan1;");
    EXPECT_EQ(Read.Sensors(WISH_LEAVE), "fan1;fan2;");
    ASSERT_EQ(Read.Sensors(WISH_FACTOR), "in1;");
    EXPECT_EQ(Read.Wishes.Rows[1].Factor, 1u); // the fifth decimal is dropped

    std::string Many = "[leave]\nfans=f";
    for (UINTN Fan = 0; Fan < gMostWishes; Fan++) {
        Many += ",f";
    }
    EXPECT_EQ(READ_WISHES(Many).Faults.size(), 1u);
    EXPECT_EQ(READ_WISHES(Many).Wishes.Count, gMostWishes);
}

} // namespace
