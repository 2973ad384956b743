// A machine's own sensor chips as a board, for firmware without a board's services: the processor's own sensor, and the
// Super I/O chips at 2E and 4E by Nuvoton (NCT6776 to NCT6799) and ITE (those with 16-bit counters and 8-bit duties).
//
// *Looking.* Whatever isn't known for certain is left alone: an id that isn't in the tables, a base of 0, a monitor that is
// switched off. At each port first the id is read without a key; what answers then is used without a key and without
// leaving a mode that it was in. Where nothing answers, Nuvoton's key and ITE's follow, each with its way out of the
// configuration mode, but for ITE's where nothing answers to it either. Something that answers and isn't known gets that
// way out, if a key came before, and nothing more; the id 8883 not even that. IT8790, 8792 and 87952, which must stay in
// the mode, are never made to leave it, however late they answer. The logical device that was selected is selected again.
//
// Reads alone, until SetFans, but for two things without which a recognised chip can't be read: the lock on the monitor's
// ports of NCT6791 and later is lifted when the board is opened and put back when it is closed, and the SMBus engine of
// the ITE chips that share their registers with one is held off during each access.
//
// *Readings.* The board reads a sensor when it is asked for it, and not more often than every 250 ms by the clock that
// Advance was told; in between, and without Advance, the answer is the last one. A sensor's value counts when it is
// plausible: -40 to 125 degrees, up to 30000 revolutions a minute, a voltage's byte that is neither 0 nor FF. A fan that
// stands still, as its chip tells it, reads 0. After gBadReadings implausible ones in a row the sensor is absent
// (EFI_DEVICE_ERROR) until gGoodReadings plausible ones in a row have come; before, it answers with its last plausible
// value. A temperature or a voltage that isn't plausible when the board is opened gets no place on the console.
//
// *Places.* Temperatures: 0 the processor, 1 the board, 2 the chipset; a role without a sensor stays empty. Fans with a
// curve of their own (Nuvoton) go onto items 4 to 10 in the chips' order, those with a duty alone (ITE) onto 9, 10, 8, 7,
// 6, 5, 4; FanKind is 1. Where there are more fans than places, those that stand still stay away. Voltages: those that are
// known by name in their places, the others where there is room.
//
// There is one such board at a time; it asks for no memory.
#pragma once

#include "platform/board/BoardSource.h"
#include "platform/board/BoardWishes.h"
#include "platform/board/chips/Ports.h"

constexpr UINT64 gReadingPeriod = 250000; // microseconds
constexpr UINT8 gBadReadings = 3;
constexpr UINT8 gGoodReadings = 4;

struct CHIP_BOARD_OPTIONS {
    bool SetFans;
    const BOARD_WISHES* Wishes; // null: none; read while the board is being opened
};

// What was found, in sentences for a person: each chip's name, port and base, what is read of it, which fans can be set
// and why the others can't; wishes that fit no sensor. Zero-ended lines, without an end of line. The fans of the chip at
// 4E, and its other sensors, are called 4E/fan1 and so on where there is one at 2E too.
constexpr UINTN gChipLineLength = 84;
constexpr UINTN gChipLines = 24;

struct CHIP_REPORT {
    CHAR16 Lines[gChipLines][gChipLineLength + 1];
    UINTN Count;
    UINTN SettableFans; // fans that SetFans lets the console set
};

// Looks for sensors. The board, or null when there is none to be read; the report is filled in either case. Ports has to
// last until CloseChipBoard. In a virtual machine, by the processor's own word, the processor's sensor isn't looked for.
BOARD_SOURCE* OpenChipBoard(PORTS* Ports, const CHIP_BOARD_OPTIONS* Options, CHIP_REPORT* Report);

// Adds a line on a mistake in the file of the wishes; Sensor is what stood there, or null.
VOID ReportWishFault(CHIP_REPORT* Report, UINT32 Line, const CHAR8* What, const CHAR8* Sensor = nullptr);

// From now on the console may set the fans that can be set, or may not any more. What was set stays.
//
// SetFan, SetFullSpeed, LoadDefaults and Restore answer EFI_WRITE_PROTECTED while it may not, and then write nothing. A
// record that the page shows already, as the last GetFan gave it, is no wish: it writes nothing and succeeds.
//
// LoadDefaults and Restore give back, byte for byte, what the fan's registers held when the board was opened, or, where
// none of them had been written yet, when AllowChipFans said true last.
//
// A fan's record goes into the chip like this: columns and levels as in FanContract.h, a duty as the nearest of 0 to 255,
// half a step up, and never below the chip's own floor.
//   box on                 Nuvoton: points 1 to 4, then Smart Fan IV. The critical temperature and what the fan does there
//                          stay the board's: points stay at least 1 to 4 degrees below it, and a last duty above the
//                          critical one is refused. ITE: refused, since its one slope is no curve of four nodes
//   box off, with slider   the duty, then the manual mode
//   box off, without one   what the fan had at the start
//   full speed             duty 255, manual
// Everything is read back. After a difference the fan gets back what it had before that call, and if that isn't taken
// either, full speed; the call fails with EFI_DEVICE_ERROR.
//
// Never set: pumps (a name with "pump" in it), a fan that stood still when the board was opened, those that Wishes leave
// alone, one in a mode that isn't known, those of ITE chips whose control isn't certain (IT8606, 8607, 8613, 8622, 8625,
// 8655, 8665, 8686, 8688, 8689, 8696, 8698, 8790, 8792, 87952) or that count a duty backwards. Setting one fails with
// EFI_DEVICE_ERROR and writes nothing; the commands on all fans pass them over.
VOID AllowChipFans(bool SetFans);

// Forgets the board. Fans stay as they were set.
VOID CloseChipBoard();
