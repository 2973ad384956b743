// A machine with sensor chips of any content, that change, fail and refuse, and everything that the console does about them.
// Nothing may make the driver write to anything but the registers of fans that it sets, and to nothing when it only reads.
#include <cstdlib>

#include "fuzz/Input.h"
#include "tests/chips/ChipBench.h"

namespace {

constexpr size_t gMostSteps = 200;

// A chip of the tables, or one with any id; some registers as the input says; open already, locked, at any base.
VOID FitChip(INPUT& Input, MACHINE_MODEL& Machine, UINT8 Place)
{
    const uint8_t What = Input.Byte();
    const UINT16 Id = What % 64 < gChipFacts.size() ? gChipFacts[What % 64].Id : Input.Word();
    CHIP_MODEL& Chip = Machine.Fit(Place, Id);
    const uint8_t How = Input.Byte();
    MACHINE_MODEL::SLOT& Slot = Machine.Slots[Place];
    Slot.Chip = How & 1 ? Place : How & 2 ? 0 : -1;
    Slot.Open = Slot.WasOpen = Slot.Chip >= 0 && ((How & 4) != 0 || Machine.Chips[Slot.Chip].Is(TRAIT_STAYS_OPEN));
    Slot.Device = How & 8 ? Input.Byte() : 0;
    Chip.TakesDutyAlways = (How & 0x10) != 0;
    Chip.Configuration[0x28] = How & 0x20 ? 0x10 : 0;
    Chip.NextId = How & 0x40 ? Input.Word() : 0;
    for (int Count = Input.Byte() % 32; Count > 0; Count--) {
        const UINT16 At = Input.Word();
        (At & 0x8000 ? Chip.Configuration[At & 0x1FFF] : Chip.Monitor[At & 0xFFF]) = Input.Byte();
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    INPUT Input = {Data, Size};
    CHIP_BENCH Bench;
    MACHINE_MODEL& Machine = Bench.Machine;
    const uint8_t How = Input.Byte();
    const bool SetFans = (How & 1) != 0;
    FitChip(Input, Machine, 0);
    FitChip(Input, Machine, 1);
    if (How & 2) {
        const UINT64 Limit = Input.Long();
        Machine.BecomeIntel(Input.Byte(), 0, Input.Byte(), {{0x1A2, Limit}, {0x1B1, Limit >> 8}, {0x19C, Limit >> 16}});
    } else {
        Machine.BecomeAmd(Input.Byte(), Input.Byte(), static_cast<UINT32>(Input.Long()));
    }
    Machine.Intruder = (How & 4) != 0;
    const uint8_t Refuses = How & 8 ? Input.Byte() | 1 : 0;
    Machine.LosesWrite = [&, Seed = UINT32{Refuses}](const CHIP_WRITE& Write) mutable {
        Seed = Seed * 1103515245 + 12345;
        const CHIP_MODEL& Chip = Machine.Chips[Write.Chip];
        return Refuses != 0 && Write.Kind == WRITE_MONITOR && Chip.Selected() != 0x06 && Chip.Selected() != 0x4E &&
               (Seed >> 16) % 256 < Refuses;
    };
    Machine.OnesFrom = How & 0x10 ? Input.Word() : ~0ull;
    Machine.OnesTo = Machine.OnesFrom + 1 + (How & 0x20 ? Input.Word() : 0);
    const uint8_t Changes = How & 0x40 ? Input.Byte() | 1 : 0;
    Machine.BeforeRead = [&] {
        CHIP_MODEL& Chip = Machine.Chips[Machine.ReadCount & 1];
        if (Changes != 0 && Machine.ReadCount % Changes == 0 && Chip.Facts != nullptr && Chip.AnswersAtBase()) {
            const UINT16 At = Input.Word() & 0xFFF; // but a bank's number, which would send a write to another
            UINT8& Register = Chip.Monitor[At];
            Register = At == 0x06 || At == 0x4E ? Register : Input.Byte();
        }
    };
    for (CHIP_MODEL& Chip : Machine.Chips) {
        Chip.AllowUpTo(SetFans ? Chip.Facts->Outputs : 0);
        for (auto& [At, Bits] : Chip.MayChange) {
            Bits = At == Chip.BankAt() ? Bits : 0xFF; // what changes by itself is given back as it was
        }
    }
    if (Bench.Open((How & 0x81) == 0x81)) {
        for (size_t Step = 0; Step < gMostSteps && !Input.IsEmpty(); Step++) {
            const uint8_t What = Input.Byte();
            const UINT8 Fan = gFirstFanItem + Input.Byte() % gFanItemCount;
            FAN_SETTING Setting = {};
            switch (What % 8) {
            case 0:
                AllowChipFans(SetFans && (What & 8) != 0);
                break;
            case 1:
                (void)Bench.Board->SetFullSpeed(Bench.Board);
                break;
            case 2:
                (void)(What & 8 ? Bench.Board->Restore : Bench.Board->LoadDefaults)(Bench.Board);
                break;
            case 3:
            case 4: {
                const UINT8 Low = 1 + Input.Byte() % 3;
                CURVE Nodes;
                for (UINT8 Node = 0; Node < gCurveNodes; Node++) {
                    Nodes.Nodes[Node] = {UINT8(1 + What / 8 % 10 + Node), UINT8(Low + Node)};
                }
                Setting = Curve(What >> 7, Nodes, Fan < 6 ? 0 : 3);
                (void)Bench.Set(Fan, Fan < 9 ? Setting : Level(1 + What / 8 % 6));
                break;
            }
            case 5:
                Setting = Bench.Get(Fan);
                if (HasItem(*Bench.Board, Fan) && CheckFanSetting(ControlOfFan(1, Fan), &Setting) != nullptr) {
                    Machine.Faults += "a record that isn't one\n";
                }
                break;
            default: {
                const UINT8 Item = What / 8 % gItemCount;
                const std::optional<INT64> Value = Bench.Read(Item);
                if (Value && (*Value > 30000 || *Value < (Item < 4 ? -40 : 0))) {
                    Machine.Faults += "a value that cannot be\n";
                }
            }
            }
        }
    }
    CloseChipBoard();
    if (!Machine.Faults.empty()) {
        std::fputs(Machine.Faults.c_str(), stderr);
        std::abort();
    }
    return 0;
}
