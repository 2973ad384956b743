#include "tests/console/ConsoleBench.h"

#include "gui/GUICore.h"
#include "platform/board/BoardServices.h"

namespace {

// A tab, a radio or a button takes the press in the turn after it, and gets the click in the turn after the release.
constexpr UINT64 gShortPress = 50000;
constexpr UINT64 gLongPress = 300000;

} // namespace

std::vector<CALL_LINE> RUN::Named(const std::string& Call) const
{
    return CallsNamed(Calls, Call);
}

std::vector<CALL_LINE> RUN::InTurn(UINT64 Turn, UINT64 Start) const
{
    std::vector<CALL_LINE> Found;
    for (const CALL_LINE& Line : Calls) {
        if (Line.Turn == Turn && Line.Start == Start) {
            Found.push_back(Line);
        }
    }
    return Found;
}

std::vector<CALL_LINE> RUN::NamedInTurn(const std::string& Call, UINT64 Turn, UINT64 Start) const
{
    std::vector<CALL_LINE> Found;
    for (const CALL_LINE& Line : InTurn(Turn, Start)) {
        if (Line.Call == Call) {
            Found.push_back(Line);
        }
    }
    return Found;
}

std::vector<std::string> RUN::OrderInTurn(UINT64 Turn, const std::vector<std::string>& Of, UINT64 Start) const
{
    std::vector<std::string> Order;
    for (const CALL_LINE& Line : InTurn(Turn, Start)) {
        if (std::find(Of.begin(), Of.end(), Line.Call) != Of.end()) {
            Order.push_back(Line.Call);
        }
    }
    return Order;
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

std::vector<std::string> RUN::Settings(int Fan) const
{
    std::vector<std::string> Records;
    for (const CALL_LINE& Line : Named("SetFan" + std::to_string(Fan) + "Setting")) {
        Records.push_back(Line.Text("record"));
    }
    return Records;
}

std::string RUN::LastSetting(int Fan) const
{
    const std::vector<std::string> Records = Settings(Fan);
    return Records.empty() ? "" : Records.back();
}

std::vector<std::string> RUN::AllSettings() const
{
    std::vector<std::string> Found;
    for (const CALL_LINE& Line : Calls) {
        if (Line.Call.starts_with("SetFan") && Line.Call.ends_with("Setting")) {
            Found.push_back(Line.Call.substr(6, Line.Call.size() - 13) + ":" + Line.Text("record"));
        }
    }
    return Found;
}

std::string Record(const std::string& FirstBytesInHex)
{
    std::string Hex;
    for (const char Digit : FirstBytesInHex) {
        if (Digit != ' ') {
            Hex += Digit;
        }
    }
    Hex.resize(128, '0');
    return Hex;
}

UINT32 PixelAt(const PICTURE& Picture, UINTN X, UINTN Y)
{
    return Picture[Y * gScreenWidth + X] & 0xFFFFFF;
}

bool SameRectangle(const PICTURE& A, const PICTURE& B, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    for (UINTN Row = Y; Row < Y + Height; Row++) {
        for (UINTN Column = X; Column < X + Width; Column++) {
            if (PixelAt(A, Column, Row) != PixelAt(B, Column, Row)) {
                return false;
            }
        }
    }
    return true;
}

UINTN CountColor(const PICTURE& Picture, UINT32 Color, UINTN X, UINTN Y, UINTN Width, UINTN Height)
{
    UINTN Count = 0;
    for (UINTN Row = Y; Row < Y + Height; Row++) {
        for (UINTN Column = X; Column < X + Width; Column++) {
            Count += PixelAt(Picture, Column, Row) == Color ? 1 : 0;
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
    return Line("turn " + std::to_string(Count));
}

SCENE& SCENE::Ticks(UINT64 Count)
{
    TurnsSoFar += Count;
    return Line("tick " + std::to_string(Count));
}

SCENE& SCENE::Advance(UINT64 Microseconds)
{
    return Line("advance " + std::to_string(Microseconds));
}

SCENE& SCENE::Move(int X, int Y)
{
    return Line("pointer " + std::to_string(X) + " " + std::to_string(Y)).Turns();
}

SCENE& SCENE::Press()
{
    return Line("left down").Turns();
}

SCENE& SCENE::Release(UINT64 HeldMicroseconds)
{
    if (HeldMicroseconds != 0) {
        (void)Advance(HeldMicroseconds);
    }
    return Line("left up").Turns();
}

SCENE& SCENE::Click(int X, int Y)
{
    return Move(X, Y).Press().Turns().Release(gShortPress).Turns(2);
}

SCENE& SCENE::Drag(int X, int Y, const std::vector<std::pair<int, int>>& Through)
{
    (void)Move(X, Y).Press().Turns(2);
    for (const auto& [AtX, AtY] : Through) {
        (void)Move(AtX, AtY).Turns();
    }
    return Release(gLongPress).Turns(2);
}

SCENE& SCENE::Key(const std::string& Name)
{
    return Line("key " + Name).Turns();
}

SCENE& SCENE::Screenshot(const std::string& Name)
{
    return Line("screenshot " + Name);
}

SCENE& SCENE::Restart()
{
    TurnsSoFar = 0;
    return Line("key esc").Line("turn").Line("start");
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
    return Run;
}

SCENE SceneWithOnly(const std::vector<int>& Items)
{
    SCENE Scene;
    for (int Item = 0; Item <= 17; Item++) {
        if (std::find(Items.begin(), Items.end(), Item) == Items.end()) {
            Scene.Line("reading " + std::to_string(Item) + " absent");
        }
    }
    return Scene;
}

std::vector<RUN> PlayWithoutOneComponent(SCENE Scene)
{
    Scene.Options.TracePool = true;
    const std::vector<CALL_LINE> Allocations = Scene.Play().Named("AllocatePool");
    Scene.Options.TracePool = false;
    Scene.Options.LowTextPictures = true; // dozens of runs, which sanitizers make slow
    std::vector<RUN> Runs;
    for (const CALL_LINE& Call : Allocations) {
        if (Call.Number("bytes") == sizeof(GUI_COMPONENT)) {
            Scene.Options.PoolFail = Call.Number("block");
            Runs.push_back(Scene.Play());
        }
    }
    return Runs;
}
