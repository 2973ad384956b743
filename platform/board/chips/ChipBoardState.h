// What the rooms of the board behind ChipBoard.h share: finding sensors and reading them (ChipSensors.cpp), giving them places
// on the console (ChipPlaces.cpp), telling what was found (ChipFindings.cpp), and being a board (ChipBoard.cpp).
#pragma once

#include "platform/board/chips/ChipBoard.h"
#include "platform/board/chips/ChipFan.h"
#include "platform/board/chips/ChipWords.h"
#include "platform/board/chips/ProcessorTemperature.h"

constexpr UINTN gMostChips = 2;

constexpr UINT32 gFactorUnit = 10000;

// What is known of a sensor's value, in the unit of ReadNumber.
struct SENSOR_READING {
    INT32 Last; // plausible
    UINT64 At;
    UINT8 Bad; // in a row
    UINT8 Good;
    bool Absent;
};

struct PLACED_FAN {
    CHIP_FAN Chip;
    FAN_CONTROL Control;
    SHOWN_PAGE Page;
};

struct CHIP_BOARD : BOARD_SOURCE {
    PORTS* Ports;
    const BOARD_WISHES* Wishes; // while the board is being opened
    PROCESSOR Processor;
    CHIP Chips[gMostChips];
    UINT8 ChipCount;
    SENSOR_LIST Sensors;
    SENSOR_READING Readings[gMostSensors]; // by sensor
    UINT32 Factors[gMostSensors];
    CHIP_FAN Fans[gMostSensors]; // of the sensors that are one
    UINT8 SensorOf[gItemCount];  // by item
    PLACED_FAN Pages[gFanItemCount];
    UINT64 Now;
    bool SetFans;
    bool TakenBack; // Default or Cancel since the console started
};

extern CHIP_BOARD gChipBoard;

// --- Sensors ---

// The chips that can be read; what is passed over goes into the report.
VOID FindChips(CHIP_REPORT* Report);
// Their sensors and the processor's, each read once.
VOID ListSensors();
// Reads a sensor anew, unless it was just read.
VOID RefreshSensor(UINT8 Index);
// What the console shows of a value: whole degrees, revolutions a minute, or millivolts in front of the divider.
INT64 ShownValue(UINT8 Index);
WORDS NameChip(const SUPER_IO& Io);

// --- Places ---

// Names, factors and fans to be left alone, as it is wished; wishes that fit no sensor go into the report.
VOID FulfilWishes(CHIP_REPORT* Report);
VOID PlaceSensors();
bool IsPlaced(UINTN At);

// --- What was found ---

VOID ReportFindings(CHIP_REPORT* Report);
