// A chip as a list of sensors, and a fan of it as a handful of registers that can be read, written and given back.
//
// What each maker's chips have is in Nuvoton.cpp and Ite.cpp; who may set a fan, to what, and what happens when a chip
// doesn't take it, is in ChipFan.h.
#pragma once

#include "platform/board/FanContract.h"
#include "platform/board/chips/Monitor.h"

enum READING_KIND : UINT8 { READING_TEMPERATURE, READING_FAN, READING_VOLTAGE };

constexpr UINTN gSensorNameRoom = 16;
constexpr UINT8 gNoPlace = 0xFF;

struct CHIP_SENSOR {
    READING_KIND Kind;
    UINT8 Chip;            // index of its chip; gProcessor for the processor's own
    UINT8 Fan;             // of a fan: from 1
    UINT8 Place;           // among those of its kind on the console, where it is known what it is; else gNoPlace
    REGISTER_NUMBER Value; // not for the processor's
    CHAR8 Name[gSensorNameRoom];
    CHAR16 Label[gSensorNameRoom]; // what the console shows
};
constexpr UINT8 gProcessor = 0xFF;

constexpr UINT8 gMostSensors = 96;
struct SENSOR_LIST {
    CHIP_SENSOR Rows[gMostSensors];
    UINT8 Count;
};
// Adds a sensor, the better of two with one place first. The name is Stem, and Number behind it unless it is negative;
// the label is Label, or the name where that is null.
VOID AddSensor(SENSOR_LIST* List, const CHIP_SENSOR& Like, const CHAR8* Stem, INT32 Number, const CHAR8* Label);

// The registers of one fan that are ever written.
struct FAN_STATE {
    UINT8 Mode;
    UINT8 Duty;
    UINT8 Switch; // 0: the chip doesn't look at the duty, nor at anything else
    UINT8 Degrees[gCurveNodes];
    UINT8 PointDuty[gCurveNodes];
};

// What can be done with a fan.
struct FAN_MEANS_OF_CHIP {
    const CHAR8* WhyNot; // null: it can be set
    UINT8 ModeBits;      // of FAN_STATE.Mode: what is 0 for a fixed duty
    UINT8 CurveMode;     // and what for a curve of the chip's own
    UINT8 ClearedBits;   // bits that go when the mode is set, and that aren't looked at when it is read back
    bool HasCurve;
    UINT8 Floor;           // the chip's least duty
    UINT8 CriticalDegrees; // from which on the fan has CriticalDuty, whatever the curve says
    UINT8 CriticalDuty;
};

struct CHIP {
    MONITOR Monitor;
    const struct CHIP_DRIVER* Driver;
    UINT8 Fans;     // bit n - 1: fan n exists
    UINT8 Outputs;  // bit n - 1: its output exists
    bool WasLocked; // Nuvoton: the monitor's ports are locked again at the end
    bool DoubleIn3; // ITE: input 3 is wired to a rail inside
};

struct CHIP_DRIVER {
    // Looks at a chip that has been found, with Monitor.Io filled. False when its monitor doesn't run.
    bool (*Open)(CHIP* Chip);
    VOID (*List)(const CHIP& Chip, UINT8 Index, SENSOR_LIST* List);
    // Fan is a number that the list has, from 1.
    FAN_MEANS_OF_CHIP (*DescribeFan)(const CHIP& Chip, UINT8 Fan);
    FAN_STATE (*ReadFan)(const CHIP& Chip, UINT8 Fan);
    // The duty that the fan has now, whoever sets it.
    UINT8 (*ReadDuty)(const CHIP& Chip, UINT8 Fan);
    // Points, then the duty, then the mode; where the chip takes a duty in the mode for it alone, once more behind it.
    VOID (*WriteFan)(const CHIP& Chip, UINT8 Fan, const FAN_STATE& Wanted);
    VOID (*Close)(const CHIP& Chip);
};
extern const CHIP_DRIVER gNuvotonDriver;
extern const CHIP_DRIVER gIteDriver;
