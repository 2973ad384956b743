// A mouse at the auxiliary port of the keyboard controller, polled: no interrupt, no waiting.
//
// The keyboard's driver of the firmware goes on working beside it: only bytes that the controller marks as the
// auxiliary device's are taken, and the mouse reports only between StartPs2Mouse and StopPs2Mouse, because its bytes
// stand in the keyboard's way as long as nobody takes them. The caller keeps the keyboard driver's timer out during a
// call (TPL_NOTIFY).
//
// Bytes can get lost: the keyboard's driver takes one, the line fails, the mouse is pulled out. A packet that doesn't
// begin as packets do, or doesn't end in time, is dropped, and the mouse is asked for its state. It is also asked while
// a button has been down without news, and a mouse that doesn't answer has no button down. So no loss leaves a button
// pressed.
#pragma once

#include "platform/firmware/pointer/PointerChange.h"

// How the controller is reached; the processor's ports, or a test's own.
struct PS2_PORTS {
    UINT8 (*Read)(UINT16 Port);
    VOID (*Write)(UINT16 Port, UINT8 Value);
};

enum PS2_STATE : UINT8 {
    PS2_STOPPED,
    PS2_STOPPING,   // waits for the acknowledgement of its silence
    PS2_ABSENT,     // waits until it tries again
    PS2_SETTING_UP, // the commands of the set-up are on their way
    PS2_STREAMING,  // packets come as the mouse moves
    PS2_ASKED,      // waits for the acknowledgement of a question
    PS2_ANSWERING,  // the answer is the packet that comes next
};

struct PS2_MOUSE {
    PS2_PORTS Ports;
    PS2_STATE State;
    UINT8 SetUpStep;
    UINT8 Packet[3];
    UINT8 PacketLength;
    UINT8 UnansweredCount;
    bool Silent;   // the silence was acknowledged
    bool Doubtful; // something was lost since the last good packet
    UINT8 Left;
    UINT8 Right;
    UINT64 Deadline;   // microseconds; of the set-up, of an answer, or when to try again
    UINT64 LastByte;   // when the last byte came
    UINT64 LastPacket; // when the buttons were last known
};

VOID InitializePs2Mouse(PS2_MOUSE* Mouse, const PS2_PORTS* Ports);
// From now on the mouse is looked for and polled.
VOID StartPs2Mouse(PS2_MOUSE* Mouse, UINT64 Now);
// Takes what the mouse has sent. True with the sum of its ways and the buttons if there was a packet; it stops behind a
// packet that changes a button, so that a short press is seen by one read at least. Call again with the same or a later
// Now, in microseconds.
bool PollPs2Mouse(PS2_MOUSE* Mouse, UINT64 Now, POINTER_CHANGE* Change);
// Silences the mouse, so that its bytes don't block the keyboard's. That is done once PollPs2Mouse has taken the mouse's
// last byte, and the state is PS2_STOPPED. A byte of the keyboard may stand before it, so between two polls the
// keyboard's driver has to have its turn.
VOID StopPs2Mouse(PS2_MOUSE* Mouse, UINT64 Now);
