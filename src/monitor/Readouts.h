// The live numbers: the readouts of temperatures and fan speeds, and the voltage gauges.
//
// Three entry points with different rates spread reads and paintings over several calls, so that no turn of the loop pays
// for all sensors at once. Readings are taken as signed numbers.
#pragma once

#include "controls/VoltageGauge.h"
#include "shell/contract/Services.h"

// Items 11 to 17; null for a voltage that isn't present.
extern VOLTAGE_GAUGE* gVoltageGauge[gVoltageItemCount];

// Creates the gauges of the voltages that are present and registers their rectangles. Called once at start.
VOID CreateVoltageGauges();
VOID DestroyVoltageGauges();

// One step of a rotation of 14: every second call reads a temperature and a fan, at most, and redraws their numbers.
// Called in every turn of the main loop.
VOID UpdateReadouts();

// One step of a rotation of 8: reads a voltage and hands it to its gauge, but for a reading that the gauge already holds
// and hasn't painted yet. Draws nothing. Called on the 200 ms tick.
VOID SampleVoltage();

// One step of a rotation of 14: paints a gauge at every second call. Called on the 200 ms tick, after SampleVoltage.
VOID PaintNextGauge();

// Characters that the text of any value needs, end mark included.
constexpr UINTN gValueTextLength = 21;

// Decimal text of Value with "-" in front of a negative one. The value 0 gives the empty string: callers write "0".
VOID ValueToString(CHAR16* Buffer, INT64 Value);
