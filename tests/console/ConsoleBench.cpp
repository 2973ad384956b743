#include "tests/console/ConsoleBench.h"

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "gui/core/GUICore.h"
#include "platform/board/BoardServices.h"
#include "platform/host/HostText.h"
#include "platform/host/Png.h"

namespace {

constexpr UINT64 gShortPress = 50000;
constexpr UINT64 gLongPress = 300000;

std::string HexOf(const WRITE& Write) { return FormatHex(&Write.Setting, sizeof(Write.Setting)); }

// The first pixel in which two pictures differ; false: there is none.
bool FindDifference(const PICTURE& A, const PICTURE& B, const AREA& Area, PLACE* First)
{
    for (int Y = Area.Y; Y < Area.Y + Area.Height; Y++) {
        for (int X = Area.X; X < Area.X + Area.Width; X++) {
            if (PixelAt(A, {X, Y}) != PixelAt(B, {X, Y})) {
                *First = {X, Y};
                return true;
            }
        }
    }
    return false;
}

// Both pictures in the build tree, named for the test; says where.
std::string KeepBoth(const PICTURE& A, const PICTURE& B)
{
    const testing::TestInfo& Test = *testing::UnitTest::GetInstance()->current_test_info();
    std::string Name = std::string(Test.test_suite_name()) + "." + Test.name();
    std::replace(Name.begin(), Name.end(), '/', '-');
    std::error_code Ignored;
    std::filesystem::create_directories(VENTARA_PICTURE_FOLDER, Ignored);
    const std::string Path = VENTARA_PICTURE_FOLDER "/" + Name;
    const bool Written = WritePng((Path + "-1.png").c_str(), A.data(), gScreen.Width, gScreen.Height) &&
                         WritePng((Path + "-2.png").c_str(), B.data(), gScreen.Width, gScreen.Height);
    return (Written ? "see " : "can't write ") + Path + "-1.png and -2.png";
}

} // namespace

WRITE WRITE::On() const
{
    WRITE Changed = *this;
    Changed.Setting.CurveEnabled = 1;
    return Changed;
}

WRITE WRITE::Off() const
{
    WRITE Changed = *this;
    Changed.Setting.CurveEnabled = 0;
    return Changed;
}

WRITE WRITE::Node(int Index, CELL By) const
{
    WRITE Changed = *this;
    UINT8* const Bytes = reinterpret_cast<UINT8*>(&Changed.Setting);
    UINT8& Column = Bytes[offsetof(FAN_SETTING, Column0) - static_cast<UINTN>(Index)];
    UINT8& Level = Bytes[offsetof(FAN_SETTING, Level0) + static_cast<UINTN>(Index)];
    Column = static_cast<UINT8>(Column + By.Column);
    Level = static_cast<UINT8>(Level - By.Row);
    return Changed;
}

WRITE WRITE::Level(int Level) const
{
    WRITE Changed = *this;
    Changed.Setting.FixedLevel = static_cast<UINT16>(Level);
    return Changed;
}

bool WRITE::operator==(const WRITE& Other) const
{
    return Fan == Other.Fan && std::memcmp(&Setting, &Other.Setting, sizeof(Setting)) == 0;
}

std::ostream& operator<<(std::ostream& Out, const WRITE& Write)
{
    return Out << "fan " << Write.Fan << ": " << HexOf(Write).substr(0, 24) << "...";
}

WRITE SettingOf(int Fan)
{
    if (Fan >= 9) {
        return WRITE{Fan, {}}.Level(Fan == 9 ? 3 : 5);
    }
    const WRITE Curve = SettingOf(Fan, Fan <= 5 ? EIGHT_ROWS : SIX_ROWS);
    return Fan == 8 ? Curve.Off() : Curve;
}

WRITE SettingOf(int Fan, GRID Grid)
{
    return SettingFromBytes(Fan, Grid == EIGHT_ROWS ? "010a07040102040608" : "0107050301010204060003");
}

WRITE SettingFromBytes(int Fan, const std::string& Hex)
{
    WRITE Write = {Fan, {}};
    std::vector<UINT8> Bytes;
    EXPECT_TRUE(ParseHexBytes(Hex, &Bytes)) << Hex;
    std::memcpy(&Write.Setting, Bytes.data(), std::min(Bytes.size(), sizeof(Write.Setting)));
    return Write;
}

std::vector<CALL_LINE> RUN::Named(const std::string& Call) const
{
    EXPECT_TRUE(HasBlts || Call != "Blt") << "this run didn't keep them";
    return CallsNamed(Calls, Call);
}

std::vector<CALL_LINE> RUN::InTurn(TURN Turn) const
{
    std::vector<CALL_LINE> Found;
    for (const CALL_LINE& Line : Calls) {
        if (Line.Turn == Turn.Number && Line.Start == Turn.Start) {
            Found.push_back(Line);
        }
    }
    return Found;
}

std::vector<CALL_LINE> RUN::NamedInTurn(const std::string& Call, TURN Turn) const
{
    return CallsNamed(InTurn(Turn), Call);
}

std::vector<std::string> RUN::OrderInTurn(TURN Turn, const std::vector<std::string>& Of) const
{
    std::vector<std::string> Order;
    for (const CALL_LINE& Line : InTurn(Turn)) {
        if (std::find(Of.begin(), Of.end(), Line.Call) != Of.end()) {
            Order.push_back(Line.Call);
        }
    }
    return Order;
}

std::vector<int> RUN::Items(TURN Turn) const
{
    std::vector<int> Items;
    for (const CALL_LINE& Line : NamedInTurn("GetItemValue", Turn)) {
        Items.push_back(static_cast<int>(Line.Number("item")));
    }
    return Items;
}

std::vector<std::string> RUN::Texts(TURN Turn) const
{
    std::vector<std::string> Texts;
    for (const CALL_LINE& Line : NamedInTurn("StringToImage", Turn)) {
        Texts.push_back(Line.Text("text"));
    }
    return Texts;
}

AREA AreaOf(const CALL_LINE& Blt)
{
    const auto Number = [&Blt](const char* Field) { return static_cast<int>(Blt.Number(Field)); };
    return {Number("x"), Number("y"), Number("width"), Number("height")};
}

std::vector<AREA> RUN::Blocks(TURN Turn) const
{
    EXPECT_TRUE(HasBlts) << "this run didn't keep them";
    std::vector<AREA> Blocks;
    for (const CALL_LINE& Line : NamedInTurn("Blt", Turn)) {
        Blocks.push_back(AreaOf(Line));
    }
    return Blocks;
}

UINTN RUN::Painted(TURN Turn, const AREA& Area) const
{
    const std::vector<AREA> All = Blocks(Turn);
    return static_cast<UINTN>(std::count(All.begin(), All.end(), Area));
}

WRITES WritesOf(const std::vector<CALL_LINE>& Calls)
{
    WRITES Found;
    for (const CALL_LINE& Line : Calls) {
        if (Line.Call.starts_with("SetFan") && Line.Call.ends_with("Setting")) {
            Found.push_back(SettingFromBytes(std::atoi(Line.Call.c_str() + 6), Line.Text("record")));
        }
    }
    return Found;
}

WRITES RUN::Writes(UINT64 Start) const
{
    std::vector<CALL_LINE> OfStart = Calls;
    std::erase_if(OfStart, [Start](const CALL_LINE& Line) { return Line.Start != Start; });
    return WritesOf(OfStart);
}

const PICTURE& RUN::Picture(const std::string& Name) const
{
    static const PICTURE None(gScreenWidth * gScreenHeight);
    const auto Found = Session.Pictures.find(Name);
    if (Found == Session.Pictures.end()) {
        ADD_FAILURE() << "no picture " << Name;
        return None;
    }
    return Found->second;
}

void RUN::ExpectSame(const std::string& A, const std::string& B, const AREA& Area, const char* File, int Line) const
{
    const testing::ScopedTrace Names(File, Line, "\"" + A + "\", \"" + B + "\"");
    ExpectSamePicture(Picture(A), Picture(B), Area, File, Line);
}

bool Differ(const PICTURE& A, const PICTURE& B, const AREA& Area)
{
    PLACE First;
    return FindDifference(A, B, Area, &First);
}

void ExpectSamePicture(const PICTURE& A, const PICTURE& B, const AREA& Area, const char* File, int Line)
{
    PLACE First;
    if (FindDifference(A, B, Area, &First)) {
        ADD_FAILURE_AT(File, Line) << "the pictures differ, first at (" << First.X << ", " << First.Y
                                   << "): " << std::hex << PixelAt(A, First) << " and " << PixelAt(B, First) << "; "
                                   << KeepBoth(A, B);
    }
}

UINT32 PixelAt(const PICTURE& Picture, PLACE Place)
{
    return Picture[static_cast<UINTN>(Place.Y) * gScreenWidth + static_cast<UINTN>(Place.X)] & 0xFFFFFF;
}

UINTN CountColor(const PICTURE& Picture, UINT32 Color, const AREA& Area)
{
    UINTN Count = 0;
    for (int Y = Area.Y; Y < Area.Y + Area.Height; Y++) {
        for (int X = Area.X; X < Area.X + Area.Width; X++) {
            Count += PixelAt(Picture, {X, Y}) == Color ? 1 : 0;
        }
    }
    return Count;
}

SCENE::SCENE(const std::string& Board)
{
    Options.Board = Board;
    Options.KeepTrace = true;
    Options.ImagePath = VENTARA_CONSOLE_IMAGE;
}

SCENE& SCENE::Line(const std::string& Text)
{
    Script += Text + "\n";
    return *this;
}

SCENE& SCENE::Turns(UINT64 Count)
{
    TurnsSoFar += Count;
    Taken = TurnsSoFar;
    return Line("turn " + std::to_string(Count));
}

SCENE& SCENE::Ticks(UINT64 Count)
{
    TurnsSoFar += Count;
    Taken = TurnsSoFar;
    return Line("tick " + std::to_string(Count));
}

SCENE& SCENE::Advance(UINT64 Microseconds) { return Line("advance " + std::to_string(Microseconds)); }

SCENE& SCENE::Reading(int Item, const std::string& Value)
{
    return Line("reading " + std::to_string(Item) + " " + Value);
}

SCENE& SCENE::Setting(const WRITE& Write) { return Line("setting " + std::to_string(Write.Fan) + " " + HexOf(Write)); }

SCENE& SCENE::Default(const WRITE& Write) { return Line("default " + std::to_string(Write.Fan) + " " + HexOf(Write)); }

SCENE& SCENE::Point(PLACE Place) { return Line("pointer " + std::to_string(Place.X) + " " + std::to_string(Place.Y)); }

SCENE& SCENE::Press() { return Line("left down").Turns(); }

SCENE& SCENE::Release(UINT64 HeldMicroseconds)
{
    if (HeldMicroseconds != 0) {
        (void)Advance(HeldMicroseconds);
    }
    return Line("left up").Turns();
}

// The press is seen in a turn and taken in the next; the click is taken in the turn after the release.
SCENE& SCENE::Click(PLACE Place)
{
    (void)Move(Place).Press().Turns().Release(gShortPress).Turns(2);
    Taken = TurnsSoFar - 1;
    return *this;
}

// A drop is taken in the turn of the release.
SCENE& SCENE::Drag(PLACE Place, const std::vector<PLACE>& Through)
{
    (void)Move(Place).Press().Turns(2);
    for (const PLACE Next : Through) {
        (void)Move(Next).Turns();
    }
    (void)Release(gLongPress).Turns(2);
    Taken = TurnsSoFar - 2;
    return *this;
}

SCENE& SCENE::Key(const std::string& Name) { return Line("key " + Name).Turns(); }

SCENE& SCENE::Tab(int Fan)
{
    PageOnTop = Fan;
    return Click(::Tab(Fan).Center());
}

SCENE& SCENE::Node(int Index, CELL By)
{
    const CELL From = NodeCell(Grid(), Index);
    const CELL To = {From.Column + By.Column, From.Row + By.Row};
    return Drag(NodePlace(Grid(), Index), {CellArea(Grid(), To).Center()});
}

SCENE& SCENE::Thumb(int Level) { return Drag(ThumbPlace(PageOnTop == 10 ? 5 : 3), {ThumbPlace(Level)}); }

SCENE& SCENE::Screenshot(const std::string& Name) { return Line("screenshot " + Name); }

SCENE& SCENE::StartAgain()
{
    Start++;
    TurnsSoFar = 0;
    Taken = 0;
    return Line("start");
}

SCENE& SCENE::Restart() { return Key("esc").StartAgain(); }

SCENE& SCENE::Reset()
{
    PageOnTop = gFirstFan;
    return Key("esc").Line("reset").StartAgain();
}

RUN SCENE::Play() const
{
    RUN Run;
    SESSION_OPTIONS Played = Options;
    Played.Script = Script;
    const UINT64 FaultsBefore = BoardContractFaults();
    Run.Session = RunSession(Played);
    EXPECT_TRUE(Run.Session.Ran) << Run.Session.Error;
    EXPECT_EQ(Run.Session.Error, "");
    for (const std::string& Complaint : Run.Session.Complaints) {
        ADD_FAILURE() << "the firmware complains: " << Complaint;
    }
    for (const SESSION_LEAK& Leak : Run.Session.Leaks) {
        ADD_FAILURE() << "pool still held: " << Leak.Description;
    }
    EXPECT_EQ(BoardContractFaults(), FaultsBefore) << LastBoardContractFault();
    Run.Calls = ParseTrace(Run.Session.Trace);
    Run.HasBlts = Options.KeepTrace && Options.TraceBlts;
    return Run;
}

GRID SCENE::Grid() const
{
    return PageOnTop == 4 || (PageOnTop == 5 && Options.Board != "kind0") ? EIGHT_ROWS : SIX_ROWS;
}

SCENE SceneWithOnly(const std::vector<int>& Items)
{
    SCENE Scene;
    for (int Item = 0; Item <= 17; Item++) {
        if (std::find(Items.begin(), Items.end(), Item) == Items.end()) {
            Scene.Reading(Item, "absent");
        }
    }
    return Scene;
}

std::vector<RUN> PlayWithoutOneComponent(SCENE Scene)
{
    Scene.Options.TracePool = true;
    const std::vector<CALL_LINE> Allocations = Scene.Play().Named("AllocatePool");
    Scene.Options.TracePool = false;
    Scene.Options.TraceBlts = false; // dozens of runs, which sanitizers make slow
    std::vector<RUN> Runs;
    for (const CALL_LINE& Call : Allocations) {
        if (Call.Number("bytes") == sizeof(GUI_COMPONENT)) {
            Scene.Options.PoolFail = Call.Number("block");
            Runs.push_back(Scene.Play());
        }
    }
    return Runs;
}
