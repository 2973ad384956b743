// The hardware monitor of a chip: its registers, a byte each, and the numbers in them.
#pragma once

#include "platform/board/chips/SuperIo.h"

struct MONITOR {
    SUPER_IO Io;
    UINT8 EngineBits; // ITE: of the register that lets an SMBus engine use the monitor's registers; 0: there is none
    bool Banked;
};

// A visit to a monitor's registers: holds the machine, keeps an SMBus engine off, and leaves bank and index as they were.
// As short as can be. Good is false where the engine can't be kept off, or the bank can't be told; then reads give all
// ones and writes are lost.
struct MONITOR_VISIT {
    explicit MONITOR_VISIT(const MONITOR& Monitor);
    ~MONITOR_VISIT();
    MONITOR_VISIT(const MONITOR_VISIT&) = delete;
    MONITOR_VISIT& operator=(const MONITOR_VISIT&) = delete;

    // A register is 0xBNN: bank and offset. The bank is selected for each, since a firmware's own code below the system
    // may come in between.
    UINT8 Read(UINT16 Register) const;
    VOID Write(UINT16 Register, UINT8 Value) const;

    bool Good = true;

private:
    HELD_MACHINE mHeld;
    const MONITOR& mMonitor;
    CONFIG_VISIT mConfig = {};
    bool mIsHeldOff = false; // the engine
    UINT8 mEngine = 0;
    UINT8 mIndex = 0;
    UINT8 mBank = 0;
};

// How a number stands in one register or two, and what becomes of it.
enum REGISTER_FORM : UINT8 {
    FORM_DEGREES,      // a signed byte, whole degrees
    FORM_HALF_DEGREES, // the same, and in the highest bit of the second register half a degree
    FORM_EIGHTHS,      // a word of eighths of a degree from bit 5 on
    FORM_SPEED,        // a word: revolutions a minute
    FORM_COUNT13,      // a count of 13 bits, the five low ones in the second register
    FORM_COUNT16,      // a count of 16 bits
    FORM_VOLTAGE,      // a byte; steps of Scale microvolts
};

struct REGISTER_NUMBER {
    REGISTER_FORM Form;
    UINT16 Register; // the high part of two
    UINT16 Low;
    UINT32 Scale;
};

// Thousandths of a degree, revolutions a minute, or microvolts. False for a value that no such sensor has, and for two
// registers that changed between their readings again and again.
bool ReadNumber(const MONITOR_VISIT& Visit, const REGISTER_NUMBER& Number, INT32* Value);

constexpr bool IsPlausibleTemperature(INT32 MilliDegrees) { return MilliDegrees >= -40000 && MilliDegrees <= 125000; }
