// The fixed colours of the system. Each is one pixel with its reserved byte 0, in the order blue, green, red.
#pragma once

#include "shell/contract/Screen.h"
#include "shell/contract/Services.h"

constexpr UINTN gNodeCount = 4;

// Transparent colour of all artwork with cut-outs; GrayBlt leaves it alone.
constexpr PIXEL gKeyColor = {0xFF, 0x00, 0xFF, 0};
constexpr PIXEL gBlackPixel = {0x00, 0x00, 0x00, 0};
// Colour of curve node 0 to 3: its drag limits, its guide lines and its row in the legend.
constexpr PIXEL gNodeColor[gNodeCount] = {
    {0x1F, 0x96, 0x04, 0},
    {0xF7, 0x6D, 0x00, 0},
    {0x00, 0xB0, 0xFA, 0},
    {0x00, 0x00, 0xCA, 0},
};
constexpr PIXEL gInactiveColor = {0x60, 0x60, 0x60, 0};    // legend text while a fan's curve is off
constexpr PIXEL gPageOutlineColor = {0xFF, 0xFF, 0x00, 0}; // selected fan tab and its panel
constexpr PIXEL gPanelColor = {0x24, 0x24, 0x24, 0};
constexpr PIXEL gCellColor = {0x2C, 0x2C, 0x2C, 0}; // inside of grid cells; what erases a tab outline
constexpr PIXEL gHeadingColor = {0xDA, 0x7A, 0x00, 0};
constexpr PIXEL gHeadingBackColor = {0x16, 0x16, 0x16, 0};
constexpr PIXEL gLabelColor = {0x7B, 0x7B, 0x7B, 0}; // units, and fan speeds of pages not on top
constexpr PIXEL gLabelBackColor = {0x12, 0x12, 0x12, 0};
constexpr PIXEL gReadoutColor = {0x00, 0xB5, 0xF7, 0}; // live temperatures
constexpr PIXEL gReadoutBackColor = {0x0C, 0x0C, 0x0C, 0};
constexpr PIXEL gReadoutSelectedColor = {0xF5, 0xF8, 0x19, 0}; // speed of the selected fan
constexpr PIXEL gButtonCaptionColor = {0x76, 0x76, 0x76, 0};
constexpr PIXEL gWhiteColor = {0xFF, 0xFF, 0xFF, 0}; // caption under the pointer; key of the caption at rest
constexpr PIXEL gCheckBoxTextColor = {0xF5, 0xF5, 0xF5, 0};
constexpr PIXEL gChartGridColor = {0x47, 0x47, 0x47, 0};
constexpr PIXEL gChartRpmColor = {0xFD, 0xFF, 0x02, 0};
constexpr PIXEL gChartTemperatureColor = {0x00, 0xB5, 0xF7, 0};
constexpr PIXEL gChartMarkColor = {0x00, 0xFF, 0xFF, 0};
constexpr PIXEL gGaugeFrameColor = {0x60, 0x60, 0x60, 0};
constexpr PIXEL gGaugeTitleColor = {0x64, 0x64, 0x64, 0};
constexpr PIXEL gGaugeLeftColor = {0x00, 0xFF, 0xC8, 0};
constexpr PIXEL gGaugeRightColor = {0x00, 0xFF, 0x64, 0};
constexpr PIXEL gSliderMarkColor = {0x24, 0x43, 0xFF, 0};
constexpr PIXEL gScaleHotColorX = {0xFF, 0xFF, 0xFF, 0};
constexpr PIXEL gScaleHotColorY = {0xFF, 0xFF, 0xFF, 0};

// Colour comparison looks at blue, green and red; the reserved byte never counts.
constexpr bool SameColor(PIXEL A, PIXEL B) { return A.Blue == B.Blue && A.Green == B.Green && A.Red == B.Red; }

// Part of one colour and the rest to 1 of another, each byte in whole numbers. The reserved byte is 0.
PIXEL MixColor(FLOAT_WORD Part, PIXEL Color, PIXEL Other);

// A pixel as the word that travels by value.
constexpr UINT32 PixelWord(PIXEL Pixel) { return __builtin_bit_cast(UINT32, Pixel); }
