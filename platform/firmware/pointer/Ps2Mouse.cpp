#include "platform/firmware/pointer/Ps2Mouse.h"

namespace {

constexpr UINT16 gDataPort = 0x60;
constexpr UINT16 gCommandPort = 0x64; // status when read

constexpr UINT8 gOutputFull = 0x01; // a byte waits for us
constexpr UINT8 gInputFull = 0x02;  // the controller hasn't taken our last byte yet
constexpr UINT8 gFromAuxiliary = 0x20;

constexpr UINT8 gEnableAuxiliary = 0xA8;
constexpr UINT8 gWriteAuxiliary = 0xD4; // the next data byte goes to the mouse

constexpr UINT8 gReadData = 0xEB; // asks for one packet
constexpr UINT8 gDisableReporting = 0xF5;
constexpr UINT8 gAcknowledge = 0xFA;
constexpr UINT8 gSelfTestPassed = 0xAA; // followed by 0: a mouse that was plugged in just now

// What makes a mouse report: defaults, 8 counts a millimetre, reporting on. Each byte is acknowledged.
constexpr UINT8 gSetUp[] = {0xF6, 0xE8, 0x03, 0xF4};

// First byte of a packet.
constexpr UINT8 gHeadLeft = 0x01;
constexpr UINT8 gHeadRight = 0x02;
constexpr UINT8 gHeadAlwaysSet = 0x08;
constexpr UINT8 gHeadSignX = 0x10;
constexpr UINT8 gHeadSignY = 0x20;
constexpr UINT8 gHeadOverflow = 0xC0;

// Microseconds.
constexpr UINT64 gRetryTime = 1000000;  // between two tries to find a mouse
constexpr UINT64 gAnswerTime = 200000;  // for an acknowledgement, or for the packet behind it
constexpr UINT64 gPacketTime = 50000;   // between two bytes of a packet
constexpr UINT64 gQuietTime = 20000;    // without a byte, and a mouse that was silenced is silent
constexpr UINT64 gHeldTime = 300000;    // a button down without news
constexpr UINT8 gMaximumUnanswered = 3; // questions without an answer before the mouse counts as gone

// Reads of the status before a controller that doesn't take its input counts as stuck: about a millisecond.
constexpr UINTN gMaximumStatusReads = 1000;
// Bytes taken in one poll; a controller that gives more is no controller.
constexpr UINTN gMaximumBytes = 96;

bool WaitForInputRoom(const PS2_MOUSE* Mouse)
{
    for (UINTN Count = 0; Count < gMaximumStatusReads; Count++) {
        if ((Mouse->Ports.Read(gCommandPort) & gInputFull) == 0) {
            return true;
        }
    }
    return false;
}

bool SendToMouse(const PS2_MOUSE* Mouse, UINT8 Command)
{
    if (!WaitForInputRoom(Mouse)) {
        return false;
    }
    Mouse->Ports.Write(gCommandPort, gWriteAuxiliary);
    if (!WaitForInputRoom(Mouse)) {
        return false;
    }
    Mouse->Ports.Write(gDataPort, Command);
    return true;
}

// One byte of the mouse; false while there is none. A byte of the keyboard is left where it is, for its driver.
bool TakeByte(const PS2_MOUSE* Mouse, UINT8* Byte)
{
    constexpr UINT8 Waiting = gOutputFull | gFromAuxiliary;
    UINT8 Status = Mouse->Ports.Read(gCommandPort);
    // All ones is a bus without a controller.
    if (Status == 0xFF || (Status & Waiting) != Waiting) {
        return false;
    }
    *Byte = Mouse->Ports.Read(gDataPort);
    return true;
}

VOID LoseMouse(PS2_MOUSE* Mouse, UINT64 RetryAt)
{
    Mouse->State = PS2_ABSENT;
    Mouse->PacketLength = 0;
    Mouse->UnansweredCount = 0;
    Mouse->Doubtful = false;
    Mouse->Left = 0;
    Mouse->Right = 0;
    Mouse->Deadline = RetryAt;
}

VOID SendSetUpStep(PS2_MOUSE* Mouse, UINT64 Now)
{
    if (!SendToMouse(Mouse, gSetUp[Mouse->SetUpStep])) {
        LoseMouse(Mouse, Now + gRetryTime);
        return;
    }
    Mouse->State = PS2_SETTING_UP;
    Mouse->Deadline = Now + gAnswerTime;
}

VOID TakeSetUpByte(PS2_MOUSE* Mouse, UINT8 Byte, UINT64 Now)
{
    // Packets of a mouse that was on already may stand before the acknowledgement.
    if (Byte != gAcknowledge) {
        return;
    }
    Mouse->SetUpStep++;
    if (Mouse->SetUpStep < sizeof(gSetUp)) {
        SendSetUpStep(Mouse, Now);
        return;
    }
    Mouse->State = PS2_STREAMING;
    Mouse->PacketLength = 0;
    Mouse->LastPacket = Now;
}

// Adds a byte to the packet; true when the packet is whole.
bool TakePacketByte(PS2_MOUSE* Mouse, UINT8 Byte, UINT64 Now)
{
    if (Mouse->PacketLength == 0 && (Byte & gHeadAlwaysSet) == 0) {
        Mouse->Doubtful = true;
        return false;
    }
    Mouse->Packet[Mouse->PacketLength++] = Byte;
    if (Mouse->PacketLength == 2 && Mouse->Packet[0] == gSelfTestPassed && Byte == 0) {
        LoseMouse(Mouse, Now);
        return false;
    }
    return Mouse->PacketLength == sizeof(Mouse->Packet);
}

// Adds the packet to the change; true when it changes a button.
bool ApplyPacket(PS2_MOUSE* Mouse, UINT64 Now, POINTER_CHANGE* Change)
{
    UINT8 Head = Mouse->Packet[0];
    // A way that didn't fit is no way: where it led isn't known.
    if ((Head & gHeadOverflow) == 0) {
        Change->X += Mouse->Packet[1] - ((Head & gHeadSignX) != 0 ? 256 : 0);
        Change->Y -= Mouse->Packet[2] - ((Head & gHeadSignY) != 0 ? 256 : 0);
    }
    UINT8 Left = (Head & gHeadLeft) != 0 ? 1 : 0;
    UINT8 Right = (Head & gHeadRight) != 0 ? 1 : 0;
    bool ButtonsChange = Left != Mouse->Left || Right != Mouse->Right;
    Mouse->Left = Left;
    Mouse->Right = Right;
    if (Mouse->State == PS2_ANSWERING) {
        Mouse->State = PS2_STREAMING;
        Mouse->UnansweredCount = 0;
        Mouse->Doubtful = false;
    }
    Mouse->PacketLength = 0;
    Mouse->LastPacket = Now;
    return ButtonsChange;
}

// One byte in the state that the mouse is in; true when it completed a packet.
bool TakeStreamByte(PS2_MOUSE* Mouse, UINT8 Byte, UINT64 Now)
{
    switch (Mouse->State) {
    case PS2_SETTING_UP:
        TakeSetUpByte(Mouse, Byte, Now);
        return false;
    case PS2_ASKED:
        // A packet that was under way is given up for the question, so what comes before the acknowledgement is scrap.
        if (Byte == gAcknowledge) {
            Mouse->State = PS2_ANSWERING;
            Mouse->PacketLength = 0;
        }
        return false;
    case PS2_STREAMING:
    case PS2_ANSWERING:
        return TakePacketByte(Mouse, Byte, Now);
    case PS2_STOPPING:
        Mouse->Silent = Mouse->Silent || Byte == gAcknowledge;
        return false;
    case PS2_STOPPED:
    case PS2_ABSENT:
        break;
    }
    return false;
}

VOID AskForState(PS2_MOUSE* Mouse, UINT64 Now)
{
    Mouse->PacketLength = 0;
    if (!SendToMouse(Mouse, gReadData)) {
        LoseMouse(Mouse, Now + gRetryTime);
        return;
    }
    Mouse->State = PS2_ASKED;
    Mouse->Deadline = Now + gAnswerTime;
}

// What is due by the clock, once the controller has no more bytes.
VOID WatchTime(PS2_MOUSE* Mouse, UINT64 Now)
{
    switch (Mouse->State) {
    case PS2_STOPPED:
        break;
    case PS2_STOPPING:
        // One acknowledgement isn't the last byte: that of an earlier command may have stood before it.
        if (Now > Mouse->Deadline || (Mouse->Silent && Now - Mouse->LastByte > gQuietTime)) {
            Mouse->State = PS2_STOPPED;
        }
        break;
    case PS2_ABSENT:
        if (Now >= Mouse->Deadline && Mouse->Ports.Read(gCommandPort) != 0xFF) {
            Mouse->SetUpStep = 0;
            SendSetUpStep(Mouse, Now);
        }
        break;
    case PS2_SETTING_UP:
        if (Now > Mouse->Deadline) {
            LoseMouse(Mouse, Now + gRetryTime);
        }
        break;
    case PS2_STREAMING: {
        if (Mouse->PacketLength != 0 && Now - Mouse->LastByte > gPacketTime) {
            Mouse->Doubtful = true;
            Mouse->PacketLength = 0;
        }
        bool Held = (Mouse->Left != 0 || Mouse->Right != 0) && Now - Mouse->LastPacket > gHeldTime;
        if (Mouse->PacketLength == 0 && (Mouse->Doubtful || Held)) {
            AskForState(Mouse, Now);
        }
        break;
    }
    case PS2_ASKED:
    case PS2_ANSWERING:
        if (Now > Mouse->Deadline) {
            Mouse->UnansweredCount++;
            if (Mouse->UnansweredCount >= gMaximumUnanswered) {
                LoseMouse(Mouse, Now + gRetryTime);
            } else {
                AskForState(Mouse, Now);
            }
        }
        break;
    }
}

}

VOID InitializePs2Mouse(PS2_MOUSE* Mouse, const PS2_PORTS* Ports)
{
    *Mouse = {};
    Mouse->Ports = *Ports;
}

VOID StartPs2Mouse(PS2_MOUSE* Mouse, UINT64 Now)
{
    LoseMouse(Mouse, Now);
    if (Mouse->Ports.Read(gCommandPort) != 0xFF && WaitForInputRoom(Mouse)) {
        Mouse->Ports.Write(gCommandPort, gEnableAuxiliary);
    }
}

bool PollPs2Mouse(PS2_MOUSE* Mouse, UINT64 Now, POINTER_CHANGE* Change)
{
    if (Mouse->State == PS2_STOPPED) {
        return false;
    }
    UINT8 LeftBefore = Mouse->Left;
    UINT8 RightBefore = Mouse->Right;
    bool Reported = false;
    bool ButtonsChanged = false;
    *Change = {};
    UINT8 Byte = 0;
    for (UINTN Count = 0; Count < gMaximumBytes && !ButtonsChanged && TakeByte(Mouse, &Byte); Count++) {
        Mouse->LastByte = Now;
        if (TakeStreamByte(Mouse, Byte, Now)) {
            ButtonsChanged = ApplyPacket(Mouse, Now, Change);
            Reported = true;
        }
    }
    if (!ButtonsChanged) {
        WatchTime(Mouse, Now);
    }
    Change->Left = Mouse->Left;
    Change->Right = Mouse->Right;
    return Reported || Mouse->Left != LeftBefore || Mouse->Right != RightBefore;
}

VOID StopPs2Mouse(PS2_MOUSE* Mouse, UINT64 Now)
{
    bool MaySend = Mouse->State != PS2_STOPPED && Mouse->State != PS2_ABSENT;
    LoseMouse(Mouse, Now + gAnswerTime);
    Mouse->Silent = false;
    Mouse->State = MaySend && SendToMouse(Mouse, gDisableReporting) ? PS2_STOPPING : PS2_STOPPED;
}
