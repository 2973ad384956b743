// The machine's own sensors, on folders made to look like Linux's.
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <functional>
#include <thread>

#include "platform/host/HostText.h"
#include "platform/host/linux/LinuxBoard.h"
#include "tests/host/HwmonTree.h"

namespace {

// A machine under load may let a thread wait for long: only the test of old values lets them grow old.
constexpr std::chrono::minutes gNeverStale{10};

struct LinuxBoardTest : testing::Test {
    HWMON_TREE Tree;
    LINUX_BOARD_OPTIONS Options;
    std::vector<std::string> Said;
    std::string Error;
    std::unique_ptr<LINUX_BOARD> Board;

    LinuxBoardTest()
    {
        Options.Root = Tree.Root;
        Options.StaleAfter = gNeverStale;
        Options.Say = [this](const std::string& Sentence) { Said.push_back(Sentence); };
    }
    bool Find()
    {
        Board = std::make_unique<LINUX_BOARD>();
        return Board->Find(Options, &Error);
    }
    void Open(bool SetFans = false)
    {
        Options.SetFans = SetFans;
        ASSERT_TRUE(Find()) << Error;
        Board->Open();
        Board->Begin(Board.get());
    }
    // A reading as the console gets it, or -1000 for a failed one.
    INT64 Read(UINT8 Item)
    {
        UINT64 Value = 4711;
        const EFI_STATUS Status = Board->Read(Board.get(), Item, &Value);
        EXPECT_TRUE(Status == EFI_SUCCESS || Value == 4711);
        return Status == EFI_SUCCESS ? static_cast<INT64>(Value) : -1000;
    }
    bool ComesTo(UINT8 Item, INT64 Value)
    {
        for (int Try = 0; Try < 1500; Try++) {
            if (Read(Item) == Value) {
                return true;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return false;
    }
    std::string Name(UINT8 Item) { return ToUtf8(Board->NameOf(Board.get(), Item)); }
    FAN_SETTING Get(UINT8 Item)
    {
        FAN_SETTING Setting;
        EXPECT_EQ(Board->GetFan(Board.get(), Item, &Setting), EFI_SUCCESS);
        EXPECT_EQ(CheckFanSetting(ControlOfFan(Board->FanKind, Item), &Setting), nullptr);
        return Setting;
    }
    EFI_STATUS Set(UINT8 Item, const FAN_SETTING& Setting) { return Board->SetFan(Board.get(), Item, &Setting); }
    FAN_SETTING WithNode(UINT8 Item, int Node, UINT8 Column, UINT8 Level)
    {
        FAN_SETTING Setting = Get(Item);
        CURVE Curve = CurveOf(Setting);
        Curve.Nodes[Node] = {Column, Level};
        PutCurve(&Setting, Curve);
        return Setting;
    }
    EFI_STATUS SetLevel(UINT8 Item, UINT16 Level)
    {
        FAN_SETTING Setting = Get(Item);
        Setting.CurveEnabled = 0;
        Setting.FixedLevel = Level;
        return Set(Item, Setting);
    }
    // The points of a fan's curve as "temp/pwm", then its mode.
    std::string Curve(const std::string& Pwm, int Points = 5)
    {
        std::string Text;
        for (int Point = 1; Point <= Points; Point++) {
            const std::string Stem = Pwm + "_auto_point" + std::to_string(Point);
            Text += Tree.Text(Stem + "_temp") + '/' + Tree.Text(Stem + "_pwm") + ' ';
        }
        return Text + Tree.Text(Pwm + "_enable");
    }
    bool HasSaid(const std::string& Part)
    {
        for (const std::string& Sentence : Said) {
            if (Sentence.find(Part) != std::string::npos) {
                return true;
            }
        }
        return false;
    }
};

TEST_F(LinuxBoardTest, SensorsTakeTheirPlacesByDriverAndLabel)
{
    Tree.MakeDesktop();
    const std::string Long(80, 'x');
    Tree.Write("hwmon10/in0_label", Long);
    Open();
    EXPECT_EQ(Name(0) + ", " + Name(1), "Package id 0, SYSTIN");
    EXPECT_TRUE(ComesTo(0, 56));
    EXPECT_TRUE(ComesTo(1, 34));
    EXPECT_FALSE(HasItem(*Board, 2)) << "0 degrees of a chipset is no reading";
    // Curves on the pages with a curve, in their order, and the duty alone on a page with a slider.
    EXPECT_TRUE(ComesTo(4, 1001));
    EXPECT_TRUE(ComesTo(6, 1003));
    EXPECT_TRUE(ComesTo(9, 800));
    EXPECT_FALSE(HasItem(*Board, 7) || HasItem(*Board, 8) || HasItem(*Board, 10));
    // 3VCC has a place of its own; the others fill the free ones, with a label first.
    EXPECT_EQ(Name(13), "3VCC");
    EXPECT_TRUE(ComesTo(13, 3328));
    EXPECT_EQ(Name(11), "3VSB");
    EXPECT_EQ(Name(12), Long.substr(0, 63));
    EXPECT_EQ(Board->NameOf(Board.get(), STRING_ABOUT), nullptr);
    EXPECT_TRUE(Said.empty());
}

TEST_F(LinuxBoardTest, TemperaturesAreShownInTheOrderOfTheUsersLabels)
{
    Tree.MakeDesktop();
    Options.Temperatures = {"core 0", "acpitz/temp1"};
    Open();
    EXPECT_EQ(Name(0) + ", " + Name(1) + ", " + Name(2), "Core 0, temp1, Package id 0");
    Options.Temperatures = {"SYSTIN", "SYSTIN"};
    EXPECT_FALSE(Find()) << "there is one of them";
    Options.Temperatures = {"nct6798/fan1"};
    EXPECT_FALSE(Find());
    EXPECT_NE(Error.find("nct6798/fan1"), std::string::npos);
    Options.Root = Tree.Path("none");
    EXPECT_FALSE(Find());
    EXPECT_NE(Error.find(Options.Root + ": No such file"), std::string::npos) << Error;
}

TEST_F(LinuxBoardTest, TheListNamesEachSensorOnceAndWhatBecomesOfIt)
{
    Tree.MakeDesktop();
    Tree.Chip("hwmon11", {{"name", "amdgpu"}, {"fan1_input", "900"}, {"pwm1", "60"}, {"pwm1_enable", "2"}});
    ASSERT_TRUE(Find());
    const std::string List = Board->List();
    for (const char* Line : {"56.4 °C   temperature 1\n", "55.0 °C   not shown\n", "nothing likely   not shown\n",
                             "1001 rpm   fan 1, a page with a curve of 8 levels; can be set with --set-fans\n",
                             "800 rpm   fan 6, a page with a slider; can be set with --set-fans\n",
                             "never set: it is the graphics card's\n", "3.328 V   voltage 3\n"}) {
        EXPECT_NE(List.find(Line), std::string::npos) << Line << "in\n" << List;
    }
    EXPECT_EQ(std::count(List.begin(), List.end(), '\n'), 15);
    EXPECT_TRUE(Said.empty());
}

TEST_F(LinuxBoardTest, WhatCannotBeReadIsAFailedReadingAndComesBackByItself)
{
    Tree.MakeDesktop();
    Open();
    const auto Spoil = [&](const std::function<void()>& Break) {
        Break();
        EXPECT_TRUE(ComesTo(0, -1000));
        EXPECT_TRUE(ComesTo(1, 34)) << "another chip goes on";
        std::filesystem::remove_all(Tree.Path("hwmon1/temp1_input"));
        std::filesystem::remove_all(Tree.Path("hwmon1/temp1_fault"));
        Tree.Write("hwmon1/temp1_input", "61500");
        EXPECT_TRUE(ComesTo(0, 62));
    };
    Spoil([&] { std::filesystem::remove(Tree.Path("hwmon1/temp1_input")); }); // the module is gone
    std::filesystem::rename(Tree.Path("hwmon1"), Tree.Path("hwmon11"));       // and loaded again
    Tree.Write("hwmon11/temp1_input", "70000");
    EXPECT_TRUE(ComesTo(0, 70));
    std::filesystem::rename(Tree.Path("hwmon11"), Tree.Path("hwmon1"));
    Spoil([&] { Tree.Write("hwmon1/temp1_input", ""); }); // no value yet
    Spoil([&] { Tree.Write("hwmon1/temp1_input", "12x"); });
    Spoil([&] { Tree.Write("hwmon1/temp1_input", "127000"); }); // nothing is wired there
    Spoil([&] { Tree.Write("hwmon1/temp1_fault", "1"); });
    Spoil([&] {
        std::filesystem::remove(Tree.Path("hwmon1/temp1_input"));
        std::filesystem::create_directory(Tree.Path("hwmon1/temp1_input"));
    });
}

// Drivers that are loaded again deal their chips' numbers anew.
TEST_F(LinuxBoardTest, WhereANumberHasBecomeAnotherChipsNothingOfThatIsReadOrWritten)
{
    Tree.MakeDesktop();
    std::filesystem::create_directories(Tree.Path("two"));
    std::filesystem::create_directory_symlink(Tree.Root, Tree.Path("hwmon10/device"));
    const HWMON_TREE::FILES Before = Tree.Bytes();
    Open(true);
    std::filesystem::rename(Tree.Path("hwmon10"), Tree.Path("unloaded"));
    EXPECT_EQ(Set(5, WithNode(5, 1, 4, 4)), EFI_DEVICE_ERROR);
    EXPECT_TRUE(HasSaid("isn't loaded"));
    std::filesystem::rename(Tree.Path("unloaded"), Tree.Path("hwmon11"));
    Tree.Chip("hwmon10",
              HWMON_TREE::WithCurve({{"name", "nct6798"}, {"temp1_input", "90000"}, {"fan1_input", "1"}}, 1));
    std::filesystem::create_directory_symlink(Tree.Path("two"), Tree.Path("hwmon10/device"));
    const std::string Others = Curve("hwmon10/pwm1");
    Tree.Write("hwmon11/temp1_input", "35000");
    EXPECT_TRUE(ComesTo(1, 35));
    EXPECT_EQ(Set(4, WithNode(4, 1, 4, 4)), EFI_SUCCESS);
    EXPECT_EQ(Curve("hwmon11/pwm1"), "40000/64 55000/128 60000/159 70000/223 100000/255 5");
    EXPECT_EQ(Board->Restore(Board.get()), EFI_SUCCESS);
    EXPECT_EQ(Curve("hwmon10/pwm1"), Others);
    std::filesystem::remove_all(Tree.Path("hwmon10"));
    std::filesystem::rename(Tree.Path("hwmon11"), Tree.Path("hwmon10"));
    Tree.Write("hwmon10/temp1_input", "34000");
    EXPECT_EQ(Tree.Bytes(), Before);
}

TEST_F(LinuxBoardTest, AChipThatHangsHoldsUpNobodyAndItsValuesGrowOld)
{
    Tree.MakeDesktop();
    Options.StaleAfter = std::chrono::milliseconds(700);
    Open();
    ASSERT_TRUE(ComesTo(0, 56));
    const std::string Slow = Tree.Path("hwmon1/temp1_input");
    // A reader waits at a pipe until somebody writes. A value of before counts until it is too old.
    ASSERT_EQ(mkfifo((Slow + "x").c_str(), 0600), 0);
    std::filesystem::rename(Slow + "x", Slow);
    EXPECT_TRUE(ComesTo(0, -1000));
    Tree.Write("hwmon10/temp1_input", "35000");
    EXPECT_TRUE(ComesTo(1, 35));
    std::ofstream(Slow) << "44000\n"; // and now it answers
    EXPECT_TRUE(ComesTo(0, 44));
    const int Other = open(Slow.c_str(), O_RDWR | O_CLOEXEC); // a reader that waits again is let go by its closing
    std::filesystem::remove(Slow);
    Tree.Write("hwmon1/temp1_input", "50000");
    (void)close(Other);
    EXPECT_TRUE(ComesTo(0, 50));
}

TEST_F(LinuxBoardTest, WithoutLeaveNothingIsWritten)
{
    Tree.MakeDesktop();
    const HWMON_TREE::FILES Before = Tree.Bytes();
    Open();
    EXPECT_EQ(Set(4, WithNode(4, 3, 13, 8)), EFI_WRITE_PROTECTED);
    EXPECT_EQ(SetLevel(9, 6), EFI_WRITE_PROTECTED);
    (void)Board->SetFullSpeed(Board.get());
    (void)Board->Restore(Board.get());
    (void)Board->LoadDefaults(Board.get());
    Board->Leave(true);
    EXPECT_EQ(Tree.Bytes(), Before);
    EXPECT_EQ(Said.size(), 1u) << "told once";
    EXPECT_TRUE(HasSaid("--set-fans"));
}

TEST_F(LinuxBoardTest, ACurveIsTranslatedExactlyAndCancelGivesEveryByteBack)
{
    Tree.MakeDesktop();
    ASSERT_EQ(chmod(Tree.Path("hwmon10/pwm1_auto_point5_pwm").c_str(), 0444), 0); // some chips fix full speed there
    const HWMON_TREE::FILES Before = Tree.Bytes();
    Open(true);
    // Shown: the nearest of the grid, moved apart where two points share a column.
    const CURVE Shown = CurveOf(Get(4));
    const UINT8 Columns[] = {1, 2, 5, 7}, Levels[] = {2, 3, 5, 7};
    for (int Node = 0; Node < 4; Node++) {
        EXPECT_EQ(Shown.Nodes[Node].Column, Columns[Node]);
        EXPECT_EQ(Shown.Nodes[Node].Level, Levels[Node]);
    }
    ASSERT_EQ(Set(4, WithNode(4, 1, 4, 4)), EFI_SUCCESS); // 55 degrees, 50 %
    EXPECT_EQ(Curve("hwmon10/pwm1"), "40000/64 55000/128 60000/159 70000/223 100000/255 5");
    EXPECT_EQ(Get(4).Column1, 4);
    EXPECT_EQ(Get(4).Level1, 4);
    // The end of the curve: kept while it is higher, and never below the last node.
    Tree.Write("hwmon10/pwm1_auto_point5_temp", "100000");
    ASSERT_EQ(Set(4, WithNode(4, 3, 13, 8)), EFI_SUCCESS);
    EXPECT_EQ(Curve("hwmon10/pwm1"), "40000/64 55000/128 60000/159 100000/255 100000/255 5");
    // Six levels begin at 50 %.
    ASSERT_EQ(Set(6, WithNode(6, 0, 1, 1)), EFI_SUCCESS);
    EXPECT_EQ(Curve("hwmon10/pwm3"), Curve("hwmon10/pwm2")) << "it shows that already";
    ASSERT_EQ(Set(6, WithNode(6, 3, 8, 6)), EFI_SUCCESS);
    EXPECT_EQ(Curve("hwmon10/pwm3"), "40000/128 45000/128 60000/153 75000/255 100000/255 5");

    ASSERT_EQ(Board->Restore(Board.get()), EFI_SUCCESS);
    EXPECT_EQ(Tree.Bytes(), Before);
    EXPECT_EQ(Get(4).Column1, 2);
    EXPECT_TRUE(Said.empty());
}

TEST_F(LinuxBoardTest, WithFourPointsTheBoardsLastOneStaysWhereItsDutyIsHigher)
{
    HWMON_TREE::FILES Files = HWMON_TREE::WithCurve({{"name", "some4"}}, 1);
    Files.erase("pwm1_auto_point5_temp");
    Files.erase("pwm1_auto_point5_pwm");
    Files["pwm1_enable"] = "1"; // and it comes up at a fixed duty
    Tree.Chip("hwmon0", Files);
    Open(true);
    EXPECT_EQ(Get(4).CurveEnabled, 0);
    FAN_SETTING Setting = WithNode(4, 3, 7, 6);
    Setting.CurveEnabled = 1;
    ASSERT_EQ(Set(4, Setting), EFI_SUCCESS);
    EXPECT_EQ(Curve("hwmon0/pwm1", 4), "40000/64 45000/96 60000/159 72000/220 2");
    ASSERT_EQ(Set(4, WithNode(4, 3, 6, 8)), EFI_SUCCESS);
    EXPECT_EQ(Curve("hwmon0/pwm1", 4), "40000/64 45000/96 60000/159 65000/255 2");
}

TEST_F(LinuxBoardTest, WhatAPageSendsOfItselfIsNoWish)
{
    Tree.MakeDesktop();
    const HWMON_TREE::FILES Before = Tree.Bytes();
    Open(true);
    for (const UINT8 Item : {UINT8{4}, UINT8{5}, UINT8{6}, UINT8{9}}) {
        EXPECT_EQ(Set(Item, Get(Item)), EFI_SUCCESS);
    }
    EXPECT_EQ(Tree.Bytes(), Before) << "the chip's curve is finer than the grid";
    // A page of six levels keeps its nodes over Cancel and sends them with its next coming up.
    const FAN_SETTING Mine = WithNode(6, 3, 9, 6);
    ASSERT_EQ(Set(6, Mine), EFI_SUCCESS);
    EXPECT_NE(Tree.Bytes(), Before);
    ASSERT_EQ(Board->Restore(Board.get()), EFI_SUCCESS);
    (void)Get(6);
    EXPECT_EQ(Set(6, Mine), EFI_SUCCESS);
    EXPECT_EQ(Tree.Bytes(), Before);
    FAN_SETTING Other = Mine;
    Other.Column3 = 10;
    EXPECT_EQ(Set(6, Other), EFI_SUCCESS);
    EXPECT_EQ(Tree.Text("hwmon10/pwm3_auto_point4_temp"), "85000");
}

TEST_F(LinuxBoardTest, ADutyGoesToTheFixedModeAndIsToldWhenItStays)
{
    Tree.MakeDesktop();
    Tree.Chip("hwmon12", {{"name", "plain"}, {"fan1_input", "700"}, {"pwm1", "200"}}); // no mode at all
    const HWMON_TREE::FILES Before = Tree.Bytes();
    Open(true);
    EXPECT_EQ(Get(9).FixedLevel, 1) << "40 % is below the slider";
    EXPECT_EQ(Get(10).FixedLevel, 4);
    ASSERT_EQ(SetLevel(9, 3), EFI_SUCCESS);
    ASSERT_EQ(SetLevel(10, 1), EFI_SUCCESS);
    EXPECT_EQ(Tree.Text("hwmon2/pwm1_enable") + ' ' + Tree.Text("hwmon2/pwm1"), "1 179");
    EXPECT_EQ(Tree.Text("hwmon12/pwm1"), "128");
    ASSERT_EQ(Board->SetFullSpeed(Board.get()), EFI_SUCCESS);
    EXPECT_EQ(Tree.Text("hwmon10/pwm2_enable") + ' ' + Tree.Text("hwmon10/pwm2"), "1 255");
    ASSERT_EQ(Board->Restore(Board.get()), EFI_SUCCESS);
    EXPECT_EQ(Tree.Bytes(), Before);
    Board->Leave(false);
    EXPECT_TRUE(Said.empty()) << "nothing has stayed";

    Open(true);
    ASSERT_EQ(SetLevel(9, 2), EFI_SUCCESS);
    Board->Leave(false);
    EXPECT_TRUE(HasSaid("fan1 stays at 60 %, however hot it gets")) << Said.size();
    EXPECT_TRUE(HasSaid("echo 2 | sudo tee " + Tree.Path("hwmon2/pwm1_enable")));
    EXPECT_EQ(Tree.Text("hwmon2/pwm1"), "153");
}

TEST_F(LinuxBoardTest, NoDutyGoesBelowTheChipsFloor)
{
    HWMON_TREE::FILES Files = HWMON_TREE::WithCurve({{"name", "nct6779"}, {"pwm1_floor", "140"}}, 1);
    Tree.Chip("hwmon0", Files);
    Open(true);
    ASSERT_EQ(Set(4, WithNode(4, 0, 1, 1)), EFI_SUCCESS);
    EXPECT_EQ(Curve("hwmon0/pwm1"), "40000/140 45000/140 60000/159 70000/223 100000/255 5");
    EXPECT_EQ(Get(4).Level0, 4) << "the page shows what the chip holds";
}

TEST_F(LinuxBoardTest, SomeFansAreNeverSetAndItIsSaidWhy)
{
    // clang-format off
    Tree.Chip("hwmon0", {{"name", "nct6798"},
                         {"fan1_input", "2800"}, {"fan1_label", "AIO Pump"}, {"pwm1", "255"}, {"pwm1_enable", "1"},
                         {"fan2_input", "0"}, {"pwm2", "100"}, {"pwm2_enable", "5"},
                         {"fan3_input", "900"}, {"pwm3", "100"}, {"pwm3_enable", "5"},
                         {"fan4_input", "900"}, {"pwm4", "100"}, {"pwm4_enable", ""},
                         {"fan5_input", "900"}});
    // clang-format on
    ASSERT_EQ(chmod(Tree.Path("hwmon0/pwm3").c_str(), 0444), 0);
    const HWMON_TREE::FILES Before = Tree.Bytes();
    Open(true);
    for (UINT8 Item = gFirstFanItem; Item < gFirstFanItem + gFanItemCount; Item++) {
        if (HasItem(*Board, Item)) {
            FAN_SETTING Setting = Get(Item);
            Setting.FixedLevel = Setting.FixedLevel == 2 ? 3 : 2;
            EXPECT_EQ(Set(Item, Setting), EFI_DEVICE_ERROR);
        }
    }
    (void)Board->SetFullSpeed(Board.get());
    EXPECT_EQ(Tree.Bytes(), Before);
    for (const char* Reason :
         {"pump", "stands still", "doesn't let it be written", "couldn't be given back", "the speed alone"}) {
        EXPECT_TRUE(HasSaid(Reason)) << Reason;
    }
}

TEST_F(LinuxBoardTest, WithoutRightsTheFileAndTheWayToThemAreNamed)
{
    Tree.MakeDesktop();
    ASSERT_EQ(chmod(Tree.Path("hwmon2/pwm1").c_str(), 0664), 0);
    ASSERT_EQ(chmod(Tree.Folder.File("").c_str(), 0755), 0);
    const bool Root = geteuid() == 0;
    if (Root) {
        ASSERT_EQ(chown(Tree.Path("hwmon2/pwm1").c_str(), 0, 4), 0); // the group adm's
        ASSERT_EQ(seteuid(65534), 0);
    } else {
        for (const auto& [Path, Bytes] : Tree.Bytes()) {
            ASSERT_EQ(chmod(Path.c_str(), 0444 | (Path == Tree.Path("hwmon2/pwm1") ? 0020 : 0)), 0);
        }
    }
    Open(true);
    if (Root) {
        ASSERT_EQ(seteuid(0), 0);
        EXPECT_TRUE(HasSaid(Tree.Path("hwmon10/pwm1") + ": Permission denied; start with sudo, or: sudo chgrp"));
        EXPECT_TRUE(HasSaid("the group adm may write it"));
    }
    EXPECT_EQ(Set(4, WithNode(4, 3, 13, 8)), EFI_DEVICE_ERROR);
}

TEST_F(LinuxBoardTest, AWriteThatFailsLeavesTheFanAsItWasOrAtFullSpeed)
{
    Tree.MakeDesktop();
    Open(true);
    const std::string Point = Tree.Path("hwmon10/pwm1_auto_point3_pwm");
    std::filesystem::remove(Point);
    std::filesystem::create_directory(Point);
    EXPECT_EQ(Set(4, WithNode(4, 3, 13, 8)), EFI_DEVICE_ERROR);
    EXPECT_TRUE(HasSaid(Point + ": Is a directory"));
    EXPECT_TRUE(HasSaid("it runs at full speed now"));
    EXPECT_EQ(Tree.Text("hwmon10/pwm1_enable") + ' ' + Tree.Text("hwmon10/pwm1"), "1 255");
    Board->Leave(false);
    EXPECT_TRUE(HasSaid("fan1 stays at 100 %, however hot it gets; what it had: echo 5 | sudo tee"));
}

// A process of its own, in which a fan is set and which then ends in that way.
void EndAfterSetting(const LINUX_BOARD_OPTIONS& Options, const std::function<void(LINUX_BOARD&)>& End)
{
    const pid_t Child = fork();
    if (Child == 0) {
        LINUX_BOARD Board;
        std::string Error;
        if (Board.Find(Options, &Error)) {
            Board.Open();
            FAN_SETTING Setting;
            (void)Board.GetFan(&Board, 9, &Setting);
            Setting.FixedLevel = 5;
            (void)Board.SetFan(&Board, 9, &Setting);
            End(Board);
        }
        _exit(0);
    }
    ASSERT_GT(Child, 0);
    int Status;
    ASSERT_EQ(waitpid(Child, &Status, 0), Child);
}

TEST_F(LinuxBoardTest, TheEndOfTheProcessGivesTheFansBackUnlessTheyAreToStay)
{
    Tree.MakeDesktop();
    const HWMON_TREE::FILES Before = Tree.Bytes();
    const auto Duty = [&] { return Tree.Text("hwmon2/pwm1_enable") + ' ' + Tree.Text("hwmon2/pwm1"); };
    const auto Await = [&](const std::string& Text) {
        for (int Try = 0; Try < 1500 && Duty() != Text; Try++) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return Duty();
    };
    Options.SetFans = true;
    Options.Say = [](const std::string&) {};
    for (const int Signal : {SIGKILL, SIGHUP, SIGABRT}) {
        EndAfterSetting(Options, [&](LINUX_BOARD&) {
            if (Duty() != "1 230") {
                _exit(0); // and what is asked below fails
            }
            (void)std::signal(Signal, SIG_DFL);
            (void)kill(getpid(), Signal);
        });
        EXPECT_EQ(Await("2 102"), "2 102") << Signal;
        EXPECT_EQ(Tree.Bytes(), Before);
    }
    EndAfterSetting(Options, [](LINUX_BOARD& Board) { Board.Leave(true); });
    EXPECT_EQ(Duty(), "2 102") << "told to leave by a signal";
    EndAfterSetting(Options, [](LINUX_BOARD& Board) { Board.Leave(false); });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(Duty(), "1 230") << "left by the user: it stays";
    Tree.MakeDesktop();
    Options.Keep = true;
    EndAfterSetting(Options, [](LINUX_BOARD&) { (void)kill(getpid(), SIGKILL); });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_EQ(Duty(), "1 230") << "told to keep it";
}

} // namespace
