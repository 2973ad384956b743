// A bench for the whole console: a script of what a person does goes in, and what crossed the firmware's tables and
// reached the display comes out.
//
//     SCENE Scene;                        // one boot, board "full"
//     Scene.Click(420, 150).Ticks(2);     // a person's moves, as script lines
//     const RUN Run = Scene.Play();
//     EXPECT_EQ(Run.Named("SetFan4Setting").size(), 1u);
//
// Everything runs on the virtual clock, so a scene gives the same calls each time.
#pragma once

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "platform/host/Session.h"
#include "tests/host/TraceLines.h"

struct RUN {
    SESSION_RESULT Session;
    std::vector<CALL_LINE> Calls;

    // The calls of that name, in their order; of one start or of one turn where those are given.
    std::vector<CALL_LINE> Named(const std::string& Call) const;
    std::vector<CALL_LINE> NamedInTurn(const std::string& Call, UINT64 Turn, UINT64 Start = 1) const;
    // All calls of a turn.
    std::vector<CALL_LINE> InTurn(UINT64 Turn, UINT64 Start = 1) const;
    // Names of those calls of a turn that are in the list, in their order.
    std::vector<std::string> OrderInTurn(UINT64 Turn, const std::vector<std::string>& Of, UINT64 Start = 1) const;
    const PICTURE& Picture(const std::string& Name) const;
    // Bytes of the last record that a fan was set to, in hex; empty when it was never set.
    std::string LastSetting(int Fan) const;
    // All records that reached a fan, in hex.
    std::vector<std::string> Settings(int Fan) const;
    // All calls that set any fan, as "fan:record".
    std::vector<std::string> AllSettings() const;
};

// 64 bytes in hex from the first few, the rest zero.
std::string Record(const std::string& FirstBytesInHex);

// A pixel of a picture as 0xRRGGBB.
UINT32 PixelAt(const PICTURE& Picture, UINTN X, UINTN Y);
// Whether a rectangle is the same in two pictures.
bool SameRectangle(const PICTURE& A, const PICTURE& B, UINTN X, UINTN Y, UINTN Width, UINTN Height);
// Number of pixels of a colour 0xRRGGBB in a rectangle.
UINTN CountColor(const PICTURE& Picture, UINT32 Color, UINTN X, UINTN Y, UINTN Width, UINTN Height);

struct SCENE {
    SESSION_OPTIONS Options;
    std::string Script;
    UINT64 TurnsSoFar = 0; // turns that the lines so far let go by: the next `turn` is number TurnsSoFar + 1

    explicit SCENE(const std::string& Board = "full");

    SCENE& Line(const std::string& Text); // any script line but turn and tick
    SCENE& Turns(UINT64 Count = 1);
    SCENE& Ticks(UINT64 Count = 1);
    SCENE& Advance(UINT64 Microseconds);
    SCENE& Move(int X, int Y); // the pointer, and one turn
    SCENE& Press();            // the left button, and one turn
    SCENE& Release(UINT64 HeldMicroseconds = 0); // after that time, and one turn
    // A short press at a place, with the turns in which it arrives and its reaction ends.
    SCENE& Click(int X, int Y);
    // Press at one place, move to each of the others with a turn at each, and let go after a long press.
    SCENE& Drag(int X, int Y, const std::vector<std::pair<int, int>>& Through);
    SCENE& Key(const std::string& Name); // "f", "esc", "enter", and one turn
    SCENE& Screenshot(const std::string& Name);
    SCENE& Restart(); // leaves, and starts the console again in the same boot

    // Plays the scene to its end. Fails the test when the session couldn't run, when the firmware had something to
    // complain of, when pool is still held, or when a service got a record that no fan should get.
    RUN Play() const;
};

// A board with these items alone.
SCENE SceneWithOnly(const std::vector<int>& Items);

// Plays the scene once for each component that a start registers, each time without pool for that one.
std::vector<RUN> PlayWithoutOneComponent(SCENE Scene);
