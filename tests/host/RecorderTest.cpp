#include "platform/host/Recorder.h"

#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "platform/host/Script.h"

#include "TestFolder.h"

namespace {

class Recorder : public testing::Test {
protected:
    Recorder() : Path(Folder.File("record.script")), Open(OpenRecorder(Path.c_str()))
    {
        Input.PointerX = 10;
        Input.PointerY = 20;
    }

    std::string Close()
    {
        EXPECT_TRUE(CloseRecorder(Open));
        std::ifstream File(Path);
        return {std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>()};
    }

    TestFolder Folder;
    std::string Path;
    RECORDER* Open;
    WINDOW_INPUT Input{};
};

} // namespace

TEST_F(Recorder, WritesWhatChangedAndHowLongAfterTheTurnBefore)
{
    RecordTurn(Open, 5'000'000, Input);
    RecordTurn(Open, 5'016'000, Input);
    Input.PointerX = 11;
    Input.Left = true;
    RecordTurn(Open, 5'020'000, Input);
    Input.Left = false;
    Input.Right = true;
    RecordTurn(Open, 5'024'500, Input);
    Input.Right = false;
    RecordTurn(Open, 5'024'500, Input);
    EXPECT_EQ(Close(), "pointer 10 20\nturn\n"
                       "advance 16000\nturn\n"
                       "advance 4000\npointer 11 20\nleft down\nturn\n"
                       "advance 4500\npointer 11 20\nleft up\nright down\nturn\n"
                       "right up\nturn\n");
}

TEST_F(Recorder, WritesKeysInTheFormThatReadsBackAsTheSameKey)
{
    struct {
        UINT16 Scan;
        CHAR16 Char;
        UINT32 Shift;
    } const Strokes[] = {{SCAN_ESC, 0, 0},
                         {0, CHAR_CARRIAGE_RETURN, 0},
                         {0, u's', 0},
                         {0, u'#', 0},
                         {0, u' ', 0},
                         {0, 0x00E9, 0},
                         {0x0B, 0, 0},
                         {SCAN_LEFT, 0, 0},
                         {SCAN_LEFT, 0, gShiftPressed},
                         {0, CHAR_TAB, 0},
                         {0, CHAR_TAB, gShiftPressed}};
    for (const auto& Stroke : Strokes) {
        Input.Keys.push_back({{Stroke.Scan, Stroke.Char}, {Stroke.Shift, 0}});
    }
    RecordTurn(Open, 0, Input);
    EXPECT_EQ(Close(), "pointer 10 20\nkey esc\nkey enter\nkey s\nkey 0 23\nhand space\nkey 0 e9\nkey b 0\nhand "
                       "left\nhand shift left\nhand tab\nhand back\nturn\n");
}

TEST_F(Recorder, LeavesOutTheTimeThatAStallMovesByItself)
{
    RecordTurn(Open, 0, Input);
    RecordStall(Open, 3'000);
    RecordTurn(Open, 10'000, Input);
    // A stall that the machine's clock seems to have cut short: the clock of the script has run 500 us ahead.
    RecordStall(Open, 4'000);
    RecordTurn(Open, 13'500, Input);
    RecordTurn(Open, 16'000, Input);
    EXPECT_EQ(Close(), "pointer 10 20\nturn\nadvance 7000\nturn\nturn\nadvance 2000\nturn\n");
}

TEST_F(Recorder, IsOnDiskAfterEachTurn)
{
    RecordTurn(Open, 0, Input);
    std::ifstream File(Path);
    const std::string Text{std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>()};
    EXPECT_EQ(Text, "pointer 10 20\nturn\n");
    EXPECT_TRUE(CloseRecorder(Open));
}

TEST(RecorderFile, SaysWhenItCannotBeCreatedOrWritten)
{
    EXPECT_EQ(OpenRecorder(TestFolder().File("no/such/folder/x").c_str()), nullptr);
    RECORDER* Full = OpenRecorder("/dev/full");
    ASSERT_NE(Full, nullptr);
    RecordTurn(Full, 0, WINDOW_INPUT{});
    EXPECT_FALSE(CloseRecorder(Full));
}
