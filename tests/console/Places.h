// Where things stand on the screen, for everybody who plays a person: scenes, scenarios of failures, long use, fuzzing.
// Measured on the screen and not taken from the console's sources, so that a thing that moves is missed at its place.
#pragma once

#include <compare>

struct PLACE {
    int X;
    int Y;

    constexpr PLACE By(int DeltaX, int DeltaY) const { return {X + DeltaX, Y + DeltaY}; }
};

struct AREA {
    int X;
    int Y;
    int Width;
    int Height;

    constexpr PLACE Center() const { return {X + Width / 2, Y + Height / 2}; }
    // Inside, at the lower right: the pointer's picture, which hangs right and down from there, leaves BesideCorner free.
    constexpr PLACE Corner() const { return {X + Width - 7, Y + Height - 4}; }
    constexpr AREA BesideCorner() const { return {X, Y, Width - 7, Height - 4}; }
    // A part of it, from a place counted from its upper left.
    constexpr AREA Part(int PartX, int PartY, int PartWidth, int PartHeight) const
    {
        return {X + PartX, Y + PartY, PartWidth, PartHeight};
    }
    auto operator<=>(const AREA&) const = default;
};

constexpr AREA gScreen = {0, 0, 1024, 768};
constexpr PLACE gAway = {600, 20}; // above the console's frame: nothing is there
constexpr AREA gConsole = {43, 36, 942, 694};
constexpr AREA gPanel = {274, 220, 690, 328};
constexpr AREA gBox = {286, 232, 20, 20};     // of the curve, on the pages that have one
constexpr AREA gFrame = {382, 262, 391, 241}; // of nodes, thumb and chart
constexpr AREA gLegend = {836, 250, 120, 130};

enum BUTTON { ABOUT, HELP, EXIT, FULL_SPEED, DEFAULT, CANCEL };
constexpr AREA Button(BUTTON Which)
{
    constexpr AREA Buttons[] = {{770, 81, 72, 26},   {851, 81, 72, 26},   {932, 81, 51, 30},
                                {531, 558, 138, 26}, {678, 558, 138, 26}, {825, 558, 138, 26}};
    return Buttons[Which];
}

constexpr int gFirstFan = 4;
constexpr int gLastFan = 10;
constexpr AREA Tab(int Fan)
{
    constexpr int Lefts[] = {275, 374, 473, 572, 672, 770, 869};
    return {Lefts[Fan - gFirstFan], 118, 97, 63};
}

constexpr AREA Source(int Number) { return {55, 296 + 37 * Number, 106, 32}; }
constexpr AREA SourceNumber(int Number) { return {181, 304 + 37 * Number, 40, 19}; }
constexpr AREA FanNumber(int Fan) { return {281 + 99 * (Fan - gFirstFan), 189, 40, 19}; }
constexpr AREA Gauge(int Number) { return {69 + 127 * Number, 624, 127, 81}; }

// Nodes and thumbs stand in cells of the frame: 13 columns, and rows from the top.
enum GRID { EIGHT_ROWS = 8, SIX_ROWS = 6 };
struct CELL {
    int Column;
    int Row;
};
constexpr AREA CellArea(GRID Grid, CELL Cell)
{
    const int Height = 240 / Grid;
    return {gFrame.X + 30 * Cell.Column, gFrame.Y + Height * Cell.Row, 30, Height};
}

// Where the settings that the simulated board comes up with put the nodes, and the thumb of a level from 1 to 6.
constexpr CELL NodeCell(GRID Grid, int Node)
{
    constexpr CELL Eight[] = {{0, 6}, {3, 4}, {6, 2}, {9, 0}};
    constexpr CELL Six[] = {{0, 5}, {2, 4}, {4, 2}, {6, 0}};
    return Grid == EIGHT_ROWS ? Eight[Node] : Six[Node];
}
constexpr PLACE NodePlace(GRID Grid, int Node) { return CellArea(Grid, NodeCell(Grid, Node)).Center(); }
constexpr PLACE ThumbPlace(int Level) { return CellArea(SIX_ROWS, {0, 6 - Level}).Center(); }

// Everything that answers a click or a drag, but for Exit.
constexpr PLACE gPlacesOfUse[] = {Button(ABOUT).Center(),
                                  Button(HELP).Center(),
                                  Button(FULL_SPEED).Center(),
                                  Button(DEFAULT).Center(),
                                  Button(CANCEL).Center(),
                                  Tab(4).Center(),
                                  Tab(5).Center(),
                                  Tab(6).Center(),
                                  Tab(7).Center(),
                                  Tab(8).Center(),
                                  Tab(9).Center(),
                                  Tab(10).Center(),
                                  Source(0).Center(),
                                  Source(1).Center(),
                                  Source(2).Center(),
                                  gBox.Center(),
                                  NodePlace(EIGHT_ROWS, 0),
                                  NodePlace(EIGHT_ROWS, 1),
                                  NodePlace(EIGHT_ROWS, 2),
                                  NodePlace(EIGHT_ROWS, 3),
                                  ThumbPlace(3),
                                  ThumbPlace(6)};
