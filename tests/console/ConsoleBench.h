// A bench for the whole console: a story of what a person does goes in, and what crossed the firmware's tables and reached
// the display comes out.
//
//     SCENE Scene;                                         // one boot, board "full"
//     const TURN Drop = Scene.Tab(7).Node(1, {2, -1}).Mark();
//     const RUN Run = Scene.Away().Screenshot("after").Play();
//     EXPECT_EQ(Run.Writes().back(), SettingOf(7).Node(1, {2, -1}));
//     EXPECT_EQ(Run.Painted(Drop, gLegend), 1u);
//
// Everything runs on the virtual clock, so a scene gives the same calls each time. Places have their names in Places.h.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "platform/host/Session.h"
#include "shell/contract/Services.h"
#include "tests/console/Places.h"
#include "tests/host/TraceLines.h"

inline std::ostream& operator<<(std::ostream& Out, const AREA& Area)
{
    return Out << Area.Width << " by " << Area.Height << " at (" << Area.X << ", " << Area.Y << ")";
}

// A turn of a start, the first if nothing is said; turn 0 is the start itself.
struct TURN {
    UINT64 Number;
    UINT64 Start = 1;

    TURN(UINT64 TurnNumber, UINT64 StartNumber = 1) : Number(TurnNumber), Start(StartNumber) {}
    TURN operator+(UINT64 Turns) const { return {Number + Turns, Start}; }
    TURN operator-(UINT64 Turns) const { return {Number - Turns, Start}; }
};

// What a fan is set to: built from what the board comes up with, in the steps in which a person changes it.
struct WRITE {
    int Fan;
    FAN_SETTING Setting;

    WRITE On() const;
    WRITE Off() const;
    WRITE Node(int Index, CELL By) const; // so many columns to the right and rows down
    WRITE Level(int Level) const;
    bool operator==(const WRITE& Other) const;
};
using WRITES = std::vector<WRITE>;
std::ostream& operator<<(std::ostream& Out, const WRITE& Write);

// What the board "full" comes up with for a fan; only Level is 0 where the fan has no thumb.
WRITE SettingOf(int Fan);
// The same curve and level 3 for fan 5 of the board "kind0".
WRITE SettingOf(int Fan, GRID Grid);
// From the first bytes of the record, in hex; the rest is zero.
WRITE SettingFromBytes(int Fan, const std::string& Hex);

// What calls say: a block that went to the display, and settings that fans got.
AREA AreaOf(const CALL_LINE& Blt);
WRITES WritesOf(const std::vector<CALL_LINE>& Calls);

// Fails the test where two pictures differ: tells the first such pixel, and leaves both as PNG.
void ExpectSamePicture(const PICTURE& A, const PICTURE& B, const AREA& Area = gScreen,
                       const char* File = __builtin_FILE(), int Line = __builtin_LINE());
bool Differ(const PICTURE& A, const PICTURE& B, const AREA& Area = gScreen);

struct RUN {
    SESSION_RESULT Session;
    bool HasBlts = true; // else it fails the test to ask for them
    std::vector<CALL_LINE> Calls;

    // The calls of that name, in their order; of a turn: all, or those of that name.
    std::vector<CALL_LINE> Named(const std::string& Call) const;
    std::vector<CALL_LINE> InTurn(TURN Turn) const;
    std::vector<CALL_LINE> NamedInTurn(const std::string& Call, TURN Turn) const;
    UINTN Count(const std::string& Call) const { return Named(Call).size(); }
    // Names of those calls of a turn that are in the list, in their order.
    std::vector<std::string> OrderInTurn(TURN Turn, const std::vector<std::string>& Of) const;

    // What a turn asked the board to read, the texts that it rendered, and the blocks that it sent to the display.
    std::vector<int> Items(TURN Turn) const;
    std::vector<std::string> Texts(TURN Turn) const;
    std::vector<AREA> Blocks(TURN Turn) const;
    // How often a turn sent exactly this rectangle.
    UINTN Painted(TURN Turn, const AREA& Area) const;
    // All settings that fans got, in their order; of one start; of one turn.
    WRITES Writes() const { return WritesOf(Calls); }
    WRITES Writes(UINT64 Start) const;
    WRITES WritesInTurn(TURN Turn) const { return WritesOf(InTurn(Turn)); }

    const PICTURE& Picture(const std::string& Name) const;
    // See ExpectSamePicture.
    void ExpectSame(const std::string& A, const std::string& B, const AREA& Area = gScreen,
                    const char* File = __builtin_FILE(), int Line = __builtin_LINE()) const;
    bool Differ(const std::string& A, const std::string& B, const AREA& Area = gScreen) const
    {
        return ::Differ(Picture(A), Picture(B), Area);
    }
};

// Colours that the tests look for, as 0xRRGGBB.
constexpr UINT32 gPanelGray = 0x242424;
constexpr UINT32 gThumbBright = 0xE8EAEB; // the bright line in the middle of a thumb
constexpr UINT32 gOutlineCyan = 0x00FFFF; // of the tab on top

// A pixel of a picture as 0xRRGGBB, and how many pixels of an area have a colour.
UINT32 PixelAt(const PICTURE& Picture, PLACE Place);
UINTN CountColor(const PICTURE& Picture, UINT32 Color, const AREA& Area);

// A person's moves. Each leaves the time in which its effect comes to pass.
struct SCENE {
    SESSION_OPTIONS Options;
    std::string Script;
    UINT64 Start = 1;
    UINT64 TurnsSoFar = 0; // turns of this start that the lines so far let go by

    explicit SCENE(const std::string& Board = "full");

    SCENE& Line(const std::string& Text); // any script line but turn, tick and start
    SCENE& Turns(UINT64 Count = 1);
    SCENE& Ticks(UINT64 Count = 1);
    SCENE& Advance(UINT64 Microseconds);
    SCENE& Reading(int Item, const std::string& Value); // see `reading` of a script
    SCENE& Reading(int Item, UINT64 Value) { return Reading(Item, std::to_string(Value)); }
    SCENE& Setting(const WRITE& Write); // what the board holds, and what its defaults are
    SCENE& Default(const WRITE& Write);

    SCENE& Point(PLACE Place);                                // the pointer, from the next turn on
    SCENE& Move(PLACE Place) { return Point(Place).Turns(); } // and one turn
    SCENE& Hover(PLACE Place) { return Move(Place).Turns(); } // and what is there has seen it
    SCENE& Away() { return Hover(gAway); }                    // the pointer over nothing
    SCENE& Press();                                           // the left button, and one turn
    SCENE& Release(UINT64 HeldMicroseconds = 0);              // after that time, and one turn
    SCENE& Click(PLACE Place);
    // Press at one place, be for a while at each of the others, and let go after a long press.
    SCENE& Drag(PLACE Place, const std::vector<PLACE>& Through);
    SCENE& Key(const std::string& Name); // "f", "esc", "enter", and one turn

    SCENE& Tab(int Fan);
    SCENE& Source(int Number) { return Click(::Source(Number).Center()); }
    SCENE& Box() { return Click(gBox.Center()); }
    SCENE& Button(BUTTON Which) { return Click(::Button(Which).Center()); }
    // A drag of a node of the page on top by so many cells right and down, or of its thumb to a level from 1 on: from where
    // the board's settings put it.
    SCENE& Node(int Index, CELL By);
    SCENE& Thumb(int Level);

    SCENE& Screenshot(const std::string& Name);
    SCENE& Restart();    // leaves, and starts the console again in the same boot
    SCENE& Reset();      // leaves, resets the machine, which forgets its variables, and starts again
    SCENE& StartAgain(); // after it has left by other lines

    // The turn in which the last move was taken: a click's, a drop's, a key's; else the last so far.
    TURN Mark() const { return {Taken, Start}; }

    // Plays the scene to its end. Fails the test when the session couldn't run, when the firmware had something to
    // complain of, when pool is still held, or when a service got a record that no fan should get.
    RUN Play() const;

private:
    GRID Grid() const;

    UINT64 Taken = 0;
    int PageOnTop = gFirstFan;
};

// A board with these items alone.
SCENE SceneWithOnly(const std::vector<int>& Items);

// Plays the scene once for each component that a start registers, each time without pool for that one.
std::vector<RUN> PlayWithoutOneComponent(SCENE Scene);
