// What the user wants of a board's sensors, out of a small text file beside the images: other names, another order, the
// divider in front of a voltage, fans to leave alone.
//
//     # a sensor is called as the report of the found chips calls it
//     [names]
//     SYSTIN = Board
//     fan4 = Pump
//     [order]
//     temperatures = PECI Agent 0, SYSTIN
//     fans = fan2, fan1
//     voltages = in0, in5
//     [factors]
//     in4 = 12
//     in5 = 5.0455
//     [leave]
//     fans = fan4, fan5
//
// Letters' case and blanks around words don't matter; what follows # or ; is left out.
#pragma once

#include "uefi/Base.h"

enum WISH_KIND : UINT8 {
    WISH_NAME,
    WISH_TEMPERATURE, // these three: shown, in the order of the rows, in front of the others of the kind
    WISH_FAN,
    WISH_VOLTAGE,
    WISH_FACTOR,
    WISH_LEAVE, // a fan that is never set
};

struct WISH {
    WISH_KIND Kind;
    CHAR8 Sensor[32];
    CHAR16 Name[16]; // of WISH_NAME
    UINT32 Factor;   // of WISH_FACTOR: ten-thousandths
    UINT32 Line;     // of the file, from 1
};

constexpr UINTN gMostWishes = 64;

struct BOARD_WISHES {
    WISH Rows[gMostWishes];
    UINTN Count;
};

// Reads a file's text, as ASCII with either end of line, into Wishes. A mistake is told with its line, and the rest is
// used. Text isn't needed any more afterwards; Fault may be null.
VOID ReadBoardWishes(const CHAR8* Text, UINTN Size, BOARD_WISHES* Wishes,
                     VOID (*Fault)(VOID* Context, UINT32 Line, const CHAR8* What), VOID* Context);
