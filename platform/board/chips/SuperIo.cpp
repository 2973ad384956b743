#include "platform/board/chips/SuperIo.h"

namespace {

constexpr UINT8 gSelectRegister = 0x07;
constexpr UINT8 gIdRegister = 0x20;
constexpr UINT8 gEnableRegister = 0x30;
constexpr UINT8 gBaseRegister = 0x60;

// A bus bridge that hides another chip once it has been sent a key.
constexpr UINT16 gBridgeId = 0x8883;

// Those are in their configuration mode from the start. Leaving it can hang the machine, or lose the chip behind them.
constexpr UINT16 gStayOpen[] = {0x8790, 0x8733, 0x8695};

constexpr struct {
    UINT16 Id;
    UINT16 Mask;
    CHIP_MAKER Maker;
    const CHAR8* Name;
} gChips[] = {
    // clang-format off
    {0xC330, 0xFFF8, MAKER_NUVOTON, "NCT6776"}, {0xC560, 0xFFF8, MAKER_NUVOTON, "NCT6779D"},
    {0xC800, 0xFFF8, MAKER_NUVOTON, "NCT6791D"}, {0xC910, 0xFFF8, MAKER_NUVOTON, "NCT6792D"},
    {0xD120, 0xFFF8, MAKER_NUVOTON, "NCT6793D"}, {0xD350, 0xFFF8, MAKER_NUVOTON, "NCT6795D"},
    {0xD420, 0xFFF8, MAKER_NUVOTON, "NCT6796D"}, {0xD450, 0xFFF8, MAKER_NUVOTON, "NCT6797D"},
    {0xD428, 0xFFF8, MAKER_NUVOTON, "NCT6798D"}, {0xD800, 0xFFF8, MAKER_NUVOTON, "NCT6799D"},
    {0x8603, 0xFFFF, MAKER_ITE, "IT8603E"}, {0x8606, 0xFFFF, MAKER_ITE, "IT8606E"},
    {0x8607, 0xFFFF, MAKER_ITE, "IT8607E"}, {0x8613, 0xFFFF, MAKER_ITE, "IT8613E"},
    {0x8620, 0xFFFF, MAKER_ITE, "IT8620E"}, {0x8622, 0xFFFF, MAKER_ITE, "IT8622E"},
    {0x8623, 0xFFFF, MAKER_ITE, "IT8623E"}, {0x8625, 0xFFFF, MAKER_ITE, "IT8625E"},
    {0x8628, 0xFFFF, MAKER_ITE, "IT8628E"}, {0x8655, 0xFFFF, MAKER_ITE, "IT8655E"},
    {0x8665, 0xFFFF, MAKER_ITE, "IT8665E"}, {0x8686, 0xFFFF, MAKER_ITE, "IT8686E"},
    {0x8688, 0xFFFF, MAKER_ITE, "IT8688E"}, {0x8689, 0xFFFF, MAKER_ITE, "IT8689E"},
    {0x8696, 0xFFFF, MAKER_ITE, "IT8696E"}, {0x8698, 0xFFFF, MAKER_ITE, "IT8698E"},
    {0x8721, 0xFFFF, MAKER_ITE, "IT8721F"}, {0x8728, 0xFFFF, MAKER_ITE, "IT8728F"},
    {0x8732, 0xFFFF, MAKER_ITE, "IT8732F"}, {0x8771, 0xFFFF, MAKER_ITE, "IT8771E"},
    {0x8772, 0xFFFF, MAKER_ITE, "IT8772E"}, {0x8785, 0xFFFF, MAKER_ITE, "IT8785E"},
    {0x8786, 0xFFFF, MAKER_ITE, "IT8786E"}, {0x8790, 0xFFFF, MAKER_ITE, "IT8790E"},
    {0x8733, 0xFFFF, MAKER_ITE, "IT8792E"}, {0x8695, 0xFFFF, MAKER_ITE, "IT87952E"},
    // clang-format on
};

constexpr CHIP_MAKER gKeys[] = {MAKER_NUVOTON, MAKER_ITE}; // in the order in which they are sent

constexpr UINT16 gAllOnes = 0xFFFF;

bool IsNothing(UINT16 Id) { return Id == gAllOnes || Id == 0; }

bool StaysOpen(UINT16 Id)
{
    for (const UINT16 Open : gStayOpen) {
        if (Id == Open) {
            return true;
        }
    }
    return false;
}

// The calls below are made while the machine is held.

UINT16 ReadWord(const SUPER_IO& Io, UINT8 Register)
{
    const UINT8 High = ReadConfig(Io, Register);
    return static_cast<UINT16>(High << 8 | ReadConfig(Io, static_cast<UINT8>(Register + 1)));
}

VOID SendKey(const SUPER_IO& Io, CHIP_MAKER Maker)
{
    constexpr UINT8 Nuvoton[] = {0x87, 0x87};
    const UINT8 Ite[] = {0x87, 0x01, 0x55, static_cast<UINT8>(Io.Port == 0x2E ? 0x55 : 0xAA)};
    const bool IsIte = Maker == MAKER_ITE;
    for (UINTN Index = 0; Index < (IsIte ? sizeof(Ite) : sizeof(Nuvoton)); Index++) {
        Io.Ports->Write8(Io.Ports, Io.Port, IsIte ? Ite[Index] : Nuvoton[Index]);
    }
}

VOID SendExit(const SUPER_IO& Io, CHIP_MAKER Maker)
{
    if (Maker == MAKER_NUVOTON) {
        Io.Ports->Write8(Io.Ports, Io.Port, 0xAA);
    } else {
        WriteConfig(Io, 0x02, 0x02);
    }
}

// Reads the id twice, and looks it up where both are the same.
SUPER_IO_STATE Identify(SUPER_IO* Io)
{
    Io->Id = ReadWord(*Io, gIdRegister);
    const bool Twice = ReadWord(*Io, gIdRegister) == Io->Id;
    if (Twice && IsNothing(Io->Id)) {
        return SUPER_IO_NONE;
    }
    for (const auto& Chip : gChips) {
        if (Twice && (Io->Id & Chip.Mask) == Chip.Id) {
            Io->Id = Chip.Id;
            Io->Maker = Chip.Maker;
            Io->Name = Chip.Name;
            return SUPER_IO_FOUND;
        }
    }
    return SUPER_IO_UNKNOWN;
}

SUPER_IO_STATE ReadAddress(SUPER_IO* Io)
{
    UINT8 Selected = 0;
    if (!ReadConfigTwice(*Io, gSelectRegister, &Selected)) {
        return SUPER_IO_OFF;
    }
    WriteConfig(*Io, gSelectRegister, Io->Maker == MAKER_ITE ? gIteMonitor : gNuvotonMonitor);
    const bool Enabled = (ReadConfig(*Io, gEnableRegister) & 1) != 0;
    const UINT16 Base = ReadWord(*Io, gBaseRegister);
    const bool Twice = ReadWord(*Io, gBaseRegister) == Base;
    WriteConfig(*Io, gSelectRegister, Selected);
    Io->Base = Base & 0xFFF8;
    return Enabled && Twice && Io->Base != 0 && Io->Base != 0xFFF8 ? SUPER_IO_FOUND : SUPER_IO_OFF;
}

SUPER_IO_STATE Find(SUPER_IO* Io)
{
    // A chip that mustn't leave its configuration mode is in it, and answers.
    SUPER_IO_STATE State = Identify(Io);
    if (State != SUPER_IO_NONE) {
        return State == SUPER_IO_FOUND ? ReadAddress(Io) : State;
    }
    Io->ByKey = true;
    for (const CHIP_MAKER Key : gKeys) {
        SendKey(*Io, Key);
        State = Identify(Io);
        if (State == SUPER_IO_FOUND && StaysOpen(Io->Id)) {
            Io->ByKey = false; // it was silent for a while, and is open without the key
            return ReadAddress(Io);
        }
        if (State == SUPER_IO_FOUND && Io->Maker != Key) {
            State = SUPER_IO_UNKNOWN;
        }
        if (State == SUPER_IO_UNKNOWN && Io->Id == gBridgeId) {
            return State;
        }
        if (State == SUPER_IO_FOUND) {
            State = ReadAddress(Io);
        }
        // Chips of another maker are opened by a part of ITE's key, and close at AA; an ITE chip takes that for an index.
        if (State == SUPER_IO_UNKNOWN && Key == MAKER_ITE) {
            SendExit(*Io, MAKER_NUVOTON);
            const UINT16 Id = ReadWord(*Io, gIdRegister);
            if (IsNothing(Id) || StaysOpen(Id)) {
                return State;
            }
        }
        // Where nothing has answered, ITE's way out isn't taken: it would be the end of a chip that mustn't leave its mode and
        // failed to answer without a key.
        if (Key != MAKER_ITE || Io->Id != gAllOnes) {
            SendExit(*Io, Key);
        }
        if (State != SUPER_IO_NONE) {
            return State;
        }
    }
    return SUPER_IO_NONE;
}

} // namespace

SUPER_IO_STATE FindSuperIo(PORTS* Ports, UINT16 Port, SUPER_IO* Io)
{
    *Io = {};
    Io->Ports = Ports;
    Io->Port = Port;
    const HELD_MACHINE Held(Ports);
    return Find(Io);
}

CONFIG_VISIT OpenConfig(const SUPER_IO& Io, UINT8 LogicalDevice)
{
    if (Io.ByKey) {
        SendKey(Io, Io.Maker);
    }
    SUPER_IO Here = Io;
    CONFIG_VISIT Visit = {};
    Visit.Good =
        Identify(&Here) == SUPER_IO_FOUND && Here.Id == Io.Id && ReadConfigTwice(Io, gSelectRegister, &Visit.Selected);
    if (Visit.Good) {
        WriteConfig(Io, gSelectRegister, LogicalDevice);
    }
    return Visit;
}

VOID CloseConfig(const SUPER_IO& Io, const CONFIG_VISIT& Visit)
{
    if (Visit.Good) {
        WriteConfig(Io, gSelectRegister, Visit.Selected);
    }
    if (Io.ByKey) {
        SendExit(Io, Io.Maker);
    }
}

UINT8 ReadConfig(const SUPER_IO& Io, UINT8 Register)
{
    Io.Ports->Write8(Io.Ports, Io.Port, Register);
    return Io.Ports->Read8(Io.Ports, static_cast<UINT16>(Io.Port + 1));
}

bool ReadConfigTwice(const SUPER_IO& Io, UINT8 Register, UINT8* Value)
{
    *Value = ReadConfig(Io, Register);
    return ReadConfig(Io, Register) == *Value && *Value != 0xFF;
}

VOID WriteConfig(const SUPER_IO& Io, UINT8 Register, UINT8 Value)
{
    Io.Ports->Write8(Io.Ports, Io.Port, Register);
    Io.Ports->Write8(Io.Ports, static_cast<UINT16>(Io.Port + 1), Value);
}
