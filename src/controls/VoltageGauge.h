// A voltage gauge: a display tile of 127 by 81 pixels with a dotted bar that grows with the voltage, the value as a
// number that rides on the bar's tip, and the voltage's title below. It takes no pointer events; its registry entry is
// made by its owner, into Id.
#pragma once

#include "graphics/Palette.h"
#include "gui/core/GUICore.h"

// The place and the size of all of them.
constexpr UINT32 gGaugeY = 624;
constexpr INT32 gGaugeWidth = 127;
constexpr INT32 gGaugeHeight = 81;

struct VOLTAGE_GAUGE {
    UINT64 X;
    UINT64 Y;
    INT32 Width;
    INT32 Height;
    UINT16 TitleWidth;
    UINT16 TitleHeight;
    PIXEL* Canvas;     // the whole picture. Owned
    PIXEL* Bar;        // (Width - 3) x 36 pixels. Owned
    PIXEL* Gradient;   // colour of each bar column. Owned
    INT32 Maximum;     // millivolts
    INT32 Minimum;     // millivolts
    INT32 Value;       // millivolts
    PIXEL* TitleImage; // null without a title. Owned
    PIXEL LeftColor;
    PIXEL RightColor;
    UINT8 Unchanged; // 1 if the last SetVoltageGaugeValue brought the value that was there
    UINT32 Id;
};

// Makes a gauge with its left edge at X. Title is rendered once and stays the caller's; it may be null. EFI_UNSUPPORTED
// if the pointer in Gauge isn't null; EFI_OUT_OF_RESOURCES without pool, and the pointer stays null.
EFI_STATUS CreateVoltageGauge(VOLTAGE_GAUGE** Gauge, const CHAR16* Title, INT32 X);

// Frees everything, the record included. EFI_NOT_FOUND for a null gauge.
EFI_STATUS DestroyVoltageGauge(VOLTAGE_GAUGE* Gauge);

// Stores a reading in millivolts, without painting. EFI_NOT_FOUND, with nothing changed, for a value outside the
// gauge's range or a null gauge.
EFI_STATUS SetVoltageGaugeValue(VOLTAGE_GAUGE* Gauge, INT64 Value);

// Paints the gauge. FirstPaint 1 shows it empty and sets the value to 0; Last 1 draws the closing line at the right,
// for the gauge at the row's end. An unchanged value keeps the picture and sends it again. EFI_SUCCESS, for a null
// gauge too.
EFI_STATUS DrawVoltageGauge(VOLTAGE_GAUGE* Gauge, UINT8 FirstPaint, UINT8 Last);
