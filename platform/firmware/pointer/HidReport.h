// The report of a USB pointing device, as its own report descriptor lays it out: mice and tablets of any make.
#pragma once

#include "platform/firmware/pointer/PointerChange.h"

struct HID_FIELD {
    UINT16 BitOffset; // in the report, behind the report's id if it has one
    UINT8 BitCount;   // 0: the report has no such field
    INT32 Minimum;
    INT32 Maximum;
};

struct HID_LAYOUT {
    UINT8 ReportId; // first byte of the report that the layout is for; 0: reports have no id
    bool Absolute;
    HID_FIELD X;
    HID_FIELD Y;
    HID_FIELD Left;
    HID_FIELD Right;
};

// The fixed report that every mouse of the boot protocol can give.
extern const HID_LAYOUT gBootMouseLayout;

// Finds the first report that belongs to a mouse or a pointer and has both axes. False if there is none, or if the
// descriptor is damaged.
bool ParseHidDescriptor(const UINT8* Descriptor, UINTN Size, HID_LAYOUT* Layout);

// False if the report is another one, or too short for its axes.
bool DecodeHidReport(const HID_LAYOUT* Layout, const UINT8* Report, UINTN Size, POINTER_CHANGE* Change);
