#include "tests/console/ConsoleBench.h"

namespace {

// The calls for the settings variable of a start, as "call size status" with the record of a writing behind it.
std::vector<std::string> SettingsCalls(const RUN& Run, UINT64 Start)
{
    std::vector<std::string> Found;
    for (const CALL_LINE& Line : Run.Calls) {
        if (Line.Start != Start || Line.Text("name") != "GlobalVariable") {
            continue;
        }
        EXPECT_EQ(Line.Text("guid"), "1D1140CD-3B1C-4B04-A3BE-D8A923E573B8");
        std::string Call = Line.Call + " " + Line.Text("size") + " " + Line.Text("status");
        if (Line.Call == "SetVariable") {
            EXPECT_EQ(Line.Number("attributes"), 2u);
            Call += " " + Line.Text("data");
        }
        Found.push_back(Call);
    }
    return Found;
}

// Byte 0 the fan on top, bytes 8 to 15 the temperature, bytes 16 to 19 its source.
constexpr char gDefaults[] = "040000000000000000000000000000000000000000000000";
constexpr char gNotFound[] = "0x800000000000000e";
constexpr char gTooSmall[] = "0x8000000000000005";
constexpr char gSuccess[] = "0x0000000000000000";

std::string Call(const std::string& Name, int Size, const std::string& Status, const std::string& Data = "")
{
    return Name + " " + std::to_string(Size) + " " + Status + (Data.empty() ? "" : " " + Data);
}

// Fan 9's tab, source 1's radio, a tick that takes the temperature over, and the pointer out of the way.
SCENE& ChooseFan9AndSource1(SCENE& Scene)
{
    return Scene.Turns().Line("reading 1 71").Click(810, 140).Click(75, 345).Ticks(2).Move(600, 20).Turns(2);
}

TEST(Settings, TheViewOutlivesAStartButNotAReset)
{
    SCENE Scene;
    ChooseFan9AndSource1(Scene).Screenshot("first").Turns();
    Scene.Restart().Line("pointer 600 20").Turns(3).Screenshot("second").Turns();
    Scene.Line("key esc").Line("turn").Line("reset").Line("start").Turns(3).Screenshot("third").Turns();
    const RUN Run = Scene.Play();

    const std::string Chosen = "090000000000000047000000000000000100000000000000"; // 71 degrees is 0x47
    EXPECT_EQ(SettingsCalls(Run, 1),
              (std::vector<std::string>{
                  Call("GetVariable", 0, gNotFound), Call("SetVariable", 24, gSuccess, gDefaults),
                  Call("GetVariable", 0, gTooSmall), Call("GetVariable", 24, gSuccess),
                  Call("SetVariable", 24, gSuccess, Chosen)}));
    const std::vector<std::string> Second = SettingsCalls(Run, 2);
    ASSERT_EQ(Second.size(), 3u);
    EXPECT_EQ(Second[0], Call("GetVariable", 0, gTooSmall));
    EXPECT_EQ(Second[1], Call("GetVariable", 24, gSuccess));
    const std::vector<std::string> Third = SettingsCalls(Run, 3);
    ASSERT_GE(Third.size(), 2u);
    EXPECT_EQ(Third[0], Call("GetVariable", 0, gNotFound));
    EXPECT_EQ(Third[1], Call("SetVariable", 24, gSuccess, gDefaults));

    // What the user had on screen: tabs of fans 4 and 9, radios of sources 0 and 1.
    const struct {
        UINTN X, Y, Width, Height;
    } Places[] = {{277, 120, 93, 58}, {772, 120, 93, 58}, {55, 296, 106, 32}, {55, 333, 106, 32}};
    for (const auto& Place : Places) {
        SCOPED_TRACE(Place.X * 1000 + Place.Y);
        EXPECT_TRUE(SameRectangle(Run.Picture("first"), Run.Picture("second"), Place.X, Place.Y, Place.Width,
                                  Place.Height));
        EXPECT_FALSE(SameRectangle(Run.Picture("first"), Run.Picture("third"), Place.X, Place.Y, Place.Width,
                                   Place.Height));
    }
}

TEST(Settings, AVariableThatCannotBeReadIsNotFollowedAndNotWrittenOver)
{
    // The probe finds a variable; its reading fails as that of a larger one does.
    SCENE Larger;
    ChooseFan9AndSource1(Larger).Line("key esc").Line("turn").Line("fail GetVariable BUFFER_TOO_SMALL 2").Line("start");
    const RUN Run = Larger.Turns(2).Screenshot("second").Turns().Play();
    EXPECT_EQ(SettingsCalls(Run, 2)[0], Call("GetVariable", 0, gTooSmall));
    EXPECT_EQ(SettingsCalls(Run, 2)[1], Call("GetVariable", 24, gTooSmall));
    ASSERT_EQ(SettingsCalls(Run, 2).size(), 3u) << "only the end of the start writes";

    // The first tab is on top, then.
    const RUN Fresh = SCENE().Turns(3).Screenshot("fresh").Turns().Play();
    EXPECT_TRUE(SameRectangle(Run.Picture("second"), Fresh.Picture("fresh"), 277, 120, 93, 58));

    // Any other answer to the probe: nothing is read and nothing written.
    const RUN Broken = SCENE().Line("fail GetVariable DEVICE_ERROR").Turns(2).Play();
    ASSERT_EQ(SettingsCalls(Broken, 1).size(), 2u);
    EXPECT_EQ(SettingsCalls(Broken, 1)[0], Call("GetVariable", 0, "0x8000000000000007"));
    EXPECT_EQ(SettingsCalls(Broken, 1)[1].substr(0, 14), "SetVariable 24");
}

} // namespace
