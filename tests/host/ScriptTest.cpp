#include <gtest/gtest.h>

#include "platform/host/CommandLine.h"
#include "platform/host/HostText.h"
#include "platform/host/Script.h"

namespace {

std::string FirstError(const std::string& Text)
{
    SCRIPT Script;
    std::string Error;
    return ParseScript("s", Text, &Script, &Error) ? "" : Error;
}

SCRIPT_COMMAND Only(const std::string& Line)
{
    SCRIPT Script;
    std::string Error;
    EXPECT_TRUE(ParseScript("s", Line, &Script, &Error)) << Error;
    EXPECT_EQ(Script.Commands.size(), 1u) << Line;
    return Script.Commands.empty() ? SCRIPT_COMMAND{} : Script.Commands[0];
}

TEST(ScriptTest, AMistakeIsToldWithItsPlaceAndWhatWasExpected)
{
    EXPECT_EQ(FirstError("# one\n\nturn\nleft sideways\nfoo\n"), "s:4: expected 'down' or 'up'");
    EXPECT_EQ(FirstError("turn 0\n"), "s:1: expected a count of at least 1");
    EXPECT_EQ(FirstError("turn 2 3\r\n"), "s:1: expected the end of the line");
    EXPECT_EQ(FirstError("turn\nwithout HW_SERVICE_PROTOCOL"), "s:2: expected this command before the first 'turn'");
}

TEST(ScriptTest, WhatIsNoneOfAVerbsArgumentsIsRefused)
{
    // clang-format off
    for (const char* Line :
         {"frob", "pointer 1", "pointer 1 x", "pointer 1 2 3", "left", "key", "key esc esc", "key zz 1", "key ab",
          "key 17 10000", "advance", "advance -1", "tick 0", "tick x", "reading 18 1", "reading 4", "reading 4 -1",
          "reading 4 on", "string 4", "string 256 x", "string x y", "setting 3 00", "setting 11 00", "setting 4",
          "setting 4 0", "setting 4 0g", "fail Blt", "fail blt NOT_FOUND", "fail GetItemString NOT_FOUND",
          "fail Start NOT_FOUND", "fail Blt NOT_FOUND 0", "fail Blt NOWHERE", "slow", "slow Blt", "slow blt 5", "slow Blt -1", "slow Blt 5 5", "without", "without NOTHING",
          "artwork", "artwork 5", "artwork 5 /no/such/file", "artwork type 17", "screenshot", "start now",
          "reset\nturn", "reset", "reset\nreset\nstart"}) {
        // clang-format on
        EXPECT_NE(FirstError(Line), "") << Line;
    }
    // 65 bytes are one too many for a record.
    EXPECT_NE(FirstError("setting 4 " + std::string(130, '0')), "");
    EXPECT_EQ(FirstError("setting 4 " + std::string(128, '0')), "");
}

TEST(ScriptTest, ArgumentsArriveAsTheyAreMeant)
{
    EXPECT_EQ(Only("  pointer\t-5 700 # comment").X, -5);
    EXPECT_EQ(Only("key f").Key.UnicodeChar, u'f');
    EXPECT_EQ(Only("key 7").Key.UnicodeChar, u'7');
    EXPECT_EQ(Only("key esc").Key.ScanCode, 0x17);
    EXPECT_EQ(Only("key enter").Key.UnicodeChar, 0x0D);
    EXPECT_EQ(Only("key 1a 23").Key.ScanCode, 0x1A);
    EXPECT_EQ(Only("key 0 23").Key.UnicodeChar, u'#');
    EXPECT_EQ(Only("tick").Count, 1u);
    EXPECT_EQ(Only("advance 184999").Count, 184999u);
    EXPECT_EQ(Only("reading 17 0xFFFFFFFFFFFFFFFF").Reading.Value, ~UINT64{0});
    EXPECT_EQ(Only("reading 17 absent").Reading.Kind, READING_OVERRIDE::ABSENT);
    EXPECT_TRUE(Only("reading 17 live").Live);
    EXPECT_FALSE(Only("string 31 null").String.has_value());
    EXPECT_TRUE(*Only("string 31  a#1 \xC3\xB8  # no part of it").String == u"a#1 \u00F8")
        << "only a '#' behind a blank comments";
    EXPECT_EQ(Only("fail LocateProtocol EFI_NOT_FOUND 3").Status, EFI_NOT_FOUND);
    EXPECT_EQ(Only("fail GetFan10Setting DEVICE_ERROR").Call, CALL_GET_FAN_10_SETTING);
    EXPECT_EQ(Only("slow GetItemString 20000").Count, 20000u);
    const SCRIPT_COMMAND Setting = Only("setting 10 01 04030201 0102");
    EXPECT_EQ(Setting.Item, 10);
    EXPECT_EQ(Setting.Setting.Column0, 1);
    EXPECT_EQ(Setting.Setting.Level1, 2);
    EXPECT_EQ(Setting.Setting.Level2, 0);
}

bool Parse(const std::vector<std::string>& Words, COMMAND* Command)
{
    std::string Error;
    return ParseCommandLine(Words, Command, &Error);
}

TEST(CommandLineTest, OptionsReachTheSession)
{
    COMMAND Command;
    ASSERT_TRUE(Parse({"--board", "small", "--seed=7", "--generation", "4", "--pool-fail", "3", "--trace-pool",
                       "--script", "s", "--", "-v", "--board"},
                      &Command));
    EXPECT_EQ(Command.Session.Board, "small");
    EXPECT_EQ(Command.Session.Seed, 7u);
    EXPECT_EQ(Command.Session.Generation, 4);
    EXPECT_EQ(Command.Session.PoolFail, 3u);
    EXPECT_TRUE(Command.Session.TracePool);
    EXPECT_FALSE(Command.Session.Window) << "a script needs no window";
    EXPECT_EQ(*Command.Session.ShellArguments, (std::vector<std::string>{"-v", "--board"}));
    ASSERT_TRUE(Parse({}, &Command));
    EXPECT_TRUE(Command.Session.Window);
    EXPECT_FALSE(Command.Session.ShellArguments.has_value());
    ASSERT_TRUE(Parse({"--set-fans", "--temperature", "a", "--board", "linux", "--temperature=b"}, &Command));
    EXPECT_TRUE(Command.Linux.SetFans);
    EXPECT_EQ(Command.Linux.Temperatures, (std::vector<std::string>{"a", "b"}));
    ASSERT_TRUE(Parse({"--list-sensors", "--hwmon", "d"}, &Command)) << "it asks for no board";
    ASSERT_TRUE(Parse({"--"}, &Command));
    EXPECT_TRUE(Command.Session.ShellArguments.has_value()) << "a shell without arguments is a shell";
}

TEST(CommandLineTest, ABadOptionIsRefused)
{
    // clang-format off
    for (const std::vector<std::string>& Words : std::vector<std::vector<std::string>>{
             {"--bored"}, {"small"}, {"--board"}, {"--board", "large"}, {"--seed", "x"}, {"--seed", "-1"},
             {"--generation", "256"}, {"--pool-limit", "0"}, {"--pool-fail", ""}, {"--headless=yes"}, {"--trace", ""},
             {"--headless", "--record", "r"}, {"--record", "r", "--script", "s"}, {"--set-fans"},
             {"--board", "full", "--hwmon", "d"}, {"--board", "linux", "--keep"}, {"--board", "linux", "--temperature", ""},
             {"--list-sensors", "--temperature=a", "--temperature=b", "--temperature=c", "--temperature=d"}}) {
        // clang-format on
        COMMAND Command;
        std::string Error;
        EXPECT_FALSE(ParseCommandLine(Words, &Command, &Error)) << Words[0];
        EXPECT_NE(Error, "");
        EXPECT_EQ(Error.find('\n'), std::string::npos) << "one line";
    }
}

TEST(HostTextTest, TextSurvivesTheWayThereAndBackAndBadBytesAreMarked)
{
    const std::string Text = "aø€😀";
    EXPECT_EQ(ToUtf8(ToUtf16(Text).c_str()), Text);
    EXPECT_TRUE(ToUtf16("\xC3") == u"\uFFFD");
    EXPECT_TRUE(ToUtf16("\xFFz") == u"\uFFFDz");
    EXPECT_TRUE(ToUtf16("\xC0\x80").find(u'\0') == std::u16string::npos) << "no overlong forms";
    const CHAR16 Half[] = {0xD800, u'x', 0};
    EXPECT_EQ(ToUtf8(Half), "\xEF\xBF\xBDx");
}

} // namespace
