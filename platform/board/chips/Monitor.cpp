#include "platform/board/chips/Monitor.h"

namespace {

constexpr UINT16 gIndexPort = 5; // from the base on
constexpr UINT16 gDataPort = 6;
constexpr UINT8 gNuvotonBank = 0x4E;
constexpr UINT8 gIteBank = 0x06; // bits 7:5; the others are something else
constexpr UINT8 gIteBankBits = 0xE0;
constexpr UINT8 gEngineRegister = 0xF3; // of ITE's monitor among the logical devices

constexpr INT32 gCountsPerMinute = 1350000;
constexpr INT32 gHighestSpeed = 30000;

UINT16 PortOf(const MONITOR& Monitor, UINT16 Offset) { return static_cast<UINT16>(Monitor.Io.Base + Offset); }

UINT8 ReadIndexed(const MONITOR& Monitor, UINT8 Index)
{
    PORTS* Ports = Monitor.Io.Ports;
    Ports->Write8(Ports, PortOf(Monitor, gIndexPort), Index);
    return Ports->Read8(Ports, PortOf(Monitor, gDataPort));
}

VOID WriteIndexed(const MONITOR& Monitor, UINT8 Index, UINT8 Value)
{
    PORTS* Ports = Monitor.Io.Ports;
    Ports->Write8(Ports, PortOf(Monitor, gIndexPort), Index);
    Ports->Write8(Ports, PortOf(Monitor, gDataPort), Value);
}

UINT8 BankIndex(const MONITOR& Monitor) { return Monitor.Io.Maker == MAKER_NUVOTON ? gNuvotonBank : gIteBank; }

// ITE's bank stands beside bits of another use, so that it is written only where it isn't the right one.
VOID SelectBank(const MONITOR& Monitor, UINT16 Register, UINT8 Before)
{
    const UINT8 Bank = static_cast<UINT8>(Register >> 8);
    if (Monitor.Io.Maker == MAKER_NUVOTON) {
        WriteIndexed(Monitor, gNuvotonBank, Bank);
    } else if (Monitor.Banked && (Before & gIteBankBits) != Bank << 5) {
        WriteIndexed(Monitor, gIteBank, static_cast<UINT8>((Before & ~gIteBankBits) | Bank << 5));
    }
}

// A word whose first half hasn't moved while the second was read.
bool ReadWhole(const MONITOR_VISIT& Visit, const REGISTER_NUMBER& Number, UINT16* Word)
{
    for (UINTN Attempt = 0; Attempt < 3; Attempt++) {
        const UINT8 High = Visit.Read(Number.Register);
        const UINT8 Low = Visit.Read(Number.Low);
        if (Visit.Read(Number.Register) == High) {
            *Word = static_cast<UINT16>(High << 8 | Low);
            return true;
        }
    }
    return false;
}

INT32 SpeedOfCount(INT32 Count) { return Count == 0 ? 0 : gCountsPerMinute / Count; }

} // namespace

MONITOR_VISIT::MONITOR_VISIT(const MONITOR& Monitor) : mHeld(Monitor.Io.Ports), mMonitor(Monitor)
{
    PORTS* Ports = Monitor.Io.Ports;
    if (Monitor.EngineBits != 0) {
        mConfig = OpenConfig(Monitor.Io, gIteMonitor);
        Good = mConfig.Good;
        Good = Good && ReadConfigTwice(Monitor.Io, gEngineRegister, &mEngine);
        mIsHeldOff = Good;
        if (mIsHeldOff) {
            WriteConfig(Monitor.Io, gEngineRegister, static_cast<UINT8>(mEngine & ~Monitor.EngineBits));
        }
    }
    if (Good) {
        mIndex = Ports->Read8(Ports, PortOf(Monitor, gIndexPort));
    }
    if (Good && Monitor.Banked) {
        mBank = ReadIndexed(Monitor, BankIndex(Monitor));
        Good = ReadIndexed(Monitor, BankIndex(Monitor)) == mBank && mBank != 0xFF; // all ones: the chip has gone
    }
}

MONITOR_VISIT::~MONITOR_VISIT()
{
    PORTS* Ports = mMonitor.Io.Ports;
    if (Good) {
        if (mMonitor.Io.Maker == MAKER_NUVOTON || (mBank & gIteBankBits) != 0) {
            WriteIndexed(mMonitor, BankIndex(mMonitor), mBank);
        }
        Ports->Write8(Ports, PortOf(mMonitor, gIndexPort), mIndex);
    }
    if (mMonitor.EngineBits != 0) {
        if (mIsHeldOff) {
            WriteConfig(mMonitor.Io, gEngineRegister, mEngine);
        }
        CloseConfig(mMonitor.Io, mConfig);
    }
}

UINT8 MONITOR_VISIT::Read(UINT16 Register) const
{
    if (!Good) {
        return 0xFF;
    }
    SelectBank(mMonitor, Register, mBank);
    return ReadIndexed(mMonitor, static_cast<UINT8>(Register & 0xFF));
}

VOID MONITOR_VISIT::Write(UINT16 Register, UINT8 Value) const
{
    if (Good) {
        SelectBank(mMonitor, Register, mBank);
        WriteIndexed(mMonitor, static_cast<UINT8>(Register & 0xFF), Value);
    }
}

bool ReadNumber(const MONITOR_VISIT& Visit, const REGISTER_NUMBER& Number, INT32* Value)
{
    UINT16 Word = 0;
    UINT8 Byte = 0;
    if (Number.Form == FORM_DEGREES || Number.Form == FORM_VOLTAGE) {
        Byte = Visit.Read(Number.Register);
    } else if (!ReadWhole(Visit, Number, &Word)) {
        return false;
    }
    if (!Visit.Good) {
        return false;
    }
    switch (Number.Form) {
    case FORM_DEGREES:
        *Value = static_cast<INT8>(Byte) * 1000;
        return Byte != 0xFF && IsPlausibleTemperature(*Value);
    case FORM_HALF_DEGREES:
        *Value = static_cast<INT16>(Word & 0xFF80) / 128 * 500;
        return Word != 0xFFFF && IsPlausibleTemperature(*Value);
    case FORM_EIGHTHS:
        *Value = (Word >> 5) * 125;
        return *Value != 0 && IsPlausibleTemperature(*Value); // 0: nobody feeds it
    case FORM_SPEED:
        *Value = Word;
        break;
    case FORM_COUNT13: // a fan that is too slow to be counted has all ones
        *Value = SpeedOfCount((Word & 0xFF1F) == 0xFF1F ? 0 : (Word & 0x1F) | (Word & 0xFF00) >> 3);
        break;
    case FORM_COUNT16: // here 0 is no count
        *Value = SpeedOfCount(Word == 0xFFFF ? 0 : Word * 2);
        return Word != 0 && *Value <= gHighestSpeed;
    case FORM_VOLTAGE:
        *Value = static_cast<INT32>(Byte * Number.Scale);
        return Byte != 0 && Byte != 0xFF;
    }
    return *Value <= gHighestSpeed;
}
