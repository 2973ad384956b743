// Fans set through the driver, and given back, on a model made from the data sheets alone.
#include <gtest/gtest.h>

#include "tests/chips/ChipBench.h"

namespace {

constexpr UINT16 gSettable[] = {0xC330, 0xC560, 0xD428, 0x8603, 0x8728};

// The board is open, and each output of its one chip may be written.
struct FAN_BENCH : CHIP_BENCH {
    CHIP_MODEL& Chip;
    std::string Before;
    explicit FAN_BENCH(UINT16 Id, bool Fixed = false) : Chip(Machine.Fit(0, Id))
    {
        if (Fixed) {
            Chip.Monitor[Chip.ControlAt(1)] &= Chip.Is(TRAIT_ITE) ? 0x7F : 0x0F;
        }
        Chip.AllowUpTo(Chip.Facts->Outputs);
        Before = Held();
        EXPECT_TRUE(Open(true));
    }
    // What suits output 1: a curve of 50 to 80 degrees over four of eight levels on Nuvoton's, else a level of 80 %.
    UINT8 Item() const { return Chip.Is(TRAIT_ITE) ? 9 : 4; }
    FAN_SETTING Setting() const
    {
        return Chip.Is(TRAIT_ITE) ? Level(4) : Curve(1, {{{3, 2}, {5, 4}, {7, 6}, {9, 8}}}, 0);
    }
    bool IsFull(UINT8 Output) const { return Chip.Monitor[Chip.DutyAt(Output)] == 0xFF && !Chip.IsAutomatic(Output); }
};

std::string Points(const CHIP_MODEL& Chip, UINT8 Output)
{
    std::string Text;
    for (UINT16 At = 0; At < 10; At++) {
        char Byte[8];
        std::snprintf(Byte, sizeof(Byte), " %02X", Chip.Monitor[Chip.PointsAt(Output) + At]);
        Text += Byte;
    }
    return Text;
}
constexpr const char* gPoints = " 32 3C 46 50 00 00 40 80 BF FF"; // of Setting()

TEST(ChipFans, ACurveGoesIntoThePointsAndTheModeComesLast)
{
    CHIP_BENCH Bench;
    CHIP_MODEL& Chip = Bench.Machine.Fit(0, 0xC560);
    Chip.AllowUpTo(4);
    Chip.Monitor[0x237] = 0xC0;
    Chip.Monitor[0x102] = 0x03; // manual, with a tolerance that stays
    const std::string Before = Bench.Held();
    ASSERT_TRUE(Bench.Open(true));
    // No end above what the critical temperature brings.
    const FAN_SETTING Setting = Curve(1, {{{3, 2}, {5, 4}, {7, 6}, {9, 8}}}, 0);
    EXPECT_TRUE(Bench.Set(5, Setting) & gEfiErrorBit);
    EXPECT_EQ(Bench.Differences(Before), "");
    EXPECT_EQ(Bench.Set(4, Setting), EFI_SUCCESS);
    EXPECT_EQ(Points(Chip, 1), gPoints);
    EXPECT_EQ(Chip.Monitor[0x102], 0x43);
    UINT16 Last = 0;
    for (const CHIP_WRITE& Write : Bench.Machine.Writes) {
        Last = Write.Kind == WRITE_MONITOR && Write.Register != 0x4E ? Write.Register : Last;
    }
    EXPECT_EQ(Last, 0x102);
    // Below the critical 90 degrees, and not under the floor of 33.
    EXPECT_EQ(Bench.Set(4, Curve(1, {{{1, 1}, {11, 3}, {12, 5}, {13, 7}}}, 0)), EFI_SUCCESS);
    EXPECT_EQ(Points(Chip, 1), " 28 57 58 59 00 00 33 60 9F DF");
    // Six levels begin at 50 %.
    EXPECT_EQ(Bench.Set(7, Curve(1, {{{2, 1}, {4, 2}, {6, 5}, {8, 6}}}, 3)), EFI_SUCCESS);
    EXPECT_EQ(Points(Chip, 4), " 2D 37 41 4B 00 00 80 99 E6 FF");
    const FAN_SETTING Got = Bench.Get(7);
    EXPECT_EQ(CheckFanSetting(CONTROL_CURVE6, &Got), nullptr);
    EXPECT_EQ(Got.Column0 * 1000 + Got.Column3 * 100 + Got.Level1 * 10 + Got.Level2, 2825);
    // Without a slider, off is what there was.
    EXPECT_EQ(Bench.Set(4, Curve(0, {{{1, 1}, {2, 2}, {3, 3}, {4, 4}}}, 0)), EFI_SUCCESS);
    EXPECT_EQ(Bench.Set(7, Curve(0, {{{1, 1}, {2, 2}, {3, 3}, {4, 4}}}, 4)), EFI_SUCCESS);
    EXPECT_EQ(Chip.Monitor[0x809], 0xCC);
    EXPECT_EQ(Chip.Monitor[0x802], 0x02);
    EXPECT_EQ(Bench.Board->Restore(Bench.Board), EFI_SUCCESS);
    EXPECT_EQ(Bench.Differences(Before), "");
    EXPECT_EQ(Bench.Machine.Faults, "");
}

TEST(ChipFans, FullSpeedAndTheWayBack)
{
    for (const UINT16 Id : gSettable) {
        for (const bool TakesDutyAlways : {false, true}) {
            FAN_BENCH Bench(Id);
            BOARD_SOURCE* const Board = Bench.Board;
            const CHIP_MODEL& Chip = Bench.Chip;
            Bench.Chip.TakesDutyAlways = TakesDutyAlways;
            for (const auto Command : {Board->Restore, Board->LoadDefaults}) {
                EXPECT_EQ(Bench.Set(Bench.Item(), Bench.Setting()), EFI_SUCCESS) << std::hex << Id;
                EXPECT_EQ(Chip.IsAutomatic(1), !Chip.Is(TRAIT_ITE));
                EXPECT_TRUE(!Chip.Is(TRAIT_ITE) || Chip.Monitor[Chip.DutyAt(1)] == 0xCC);
                const FAN_SETTING Shown = Bench.Get(Bench.Item());
                EXPECT_EQ(Board->SetFullSpeed(Board), EFI_SUCCESS);
                for (UINT8 Output = 1; Output <= Chip.Facts->Outputs; Output++) {
                    EXPECT_TRUE(Bench.IsFull(Output)) << int{Output};
                }
                // The next record ends it, one that the page shows already too.
                EXPECT_EQ(Bench.Set(Bench.Item(), Shown), EFI_SUCCESS);
                EXPECT_FALSE(Bench.IsFull(1)) << std::hex << Id;
                EXPECT_EQ(Board->SetFullSpeed(Board), EFI_SUCCESS);
                // The duty goes back while it is the host's, and the mode after it.
                UINTN Duty = 0;
                UINTN Mode = 0;
                Bench.Machine.Writes.clear();
                EXPECT_EQ(Command(Board), EFI_SUCCESS);
                EXPECT_EQ(Bench.Differences(Bench.Before), "") << std::hex << Id;
                for (UINTN At = 0; At < Bench.Machine.Writes.size(); At++) {
                    const CHIP_WRITE& Write = Bench.Machine.Writes[At];
                    Duty = Write.Kind == WRITE_MONITOR && Write.Register == Chip.DutyAt(1) && Duty == 0 ? At : Duty;
                    Mode = Write.Kind == WRITE_MONITOR && Write.Register == Chip.ControlAt(1) ? At : Mode;
                }
                EXPECT_TRUE(Duty != 0 && Duty < Mode) << std::hex << Id;
                // The console reads all fans after such a command; a click on a tab sends what it shows.
                for (UINT8 Item = gFirstFanItem; Item < gFirstFanItem + gFanItemCount; Item++) {
                    (void)(HasItem(*Board, Item) ? Bench.Set(Item, Bench.Get(Item)) : 0);
                }
                EXPECT_EQ(Bench.Differences(Bench.Before), "") << std::hex << Id;
            }
            EXPECT_EQ(Bench.Machine.Faults, "") << std::hex << Id;
        }
    }
}

TEST(ChipFans, NothingIsWrittenWhileItMayNotBeOrWithoutAWish)
{
    for (const UINT16 Id : gSettable) {
        FAN_BENCH Bench(Id);
        BOARD_SOURCE* const Board = Bench.Board;
        Bench.Chip.MayChange.clear(); // but for the bank
        Bench.Chip.MayChange[Bench.Chip.BankAt()] = 0x0F;
        AllowChipFans(false);
        EXPECT_EQ(Bench.Set(Bench.Item(), Bench.Setting()), EFI_WRITE_PROTECTED);
        for (const auto Command : {Board->SetFullSpeed, Board->LoadDefaults, Board->Restore}) {
            EXPECT_EQ(Command(Board), EFI_WRITE_PROTECTED);
        }
        AllowChipFans(true);
        for (UINT8 Item = gFirstFanItem; Item < gFirstFanItem + gFanItemCount; Item++) {
            const FAN_SETTING Same = HasItem(*Board, Item) ? Bench.Get(Item) : FAN_SETTING{};
            EXPECT_EQ(HasItem(*Board, Item) ? CheckFanSetting(ControlOfFan(1, Item), &Same) : nullptr, nullptr)
                << int{Item};
            (void)Bench.Set(Item, Same);
        }
        EXPECT_EQ(Bench.Machine.Faults, "") << std::hex << Id;
    }
}

TEST(ChipFans, SomeAreNeverSet)
{
    BOARD_WISHES Wishes = {};
    Wishes.Count = 2;
    Wishes.Rows[0] = {WISH_LEAVE, "fan2", {}, 0, 1};
    Wishes.Rows[1] = {WISH_NAME, "fan3", u"W_PUMP", 0, 2};
    for (const CHIP_FACTS& Facts : gChipFacts) {
        CHIP_BENCH Bench;
        CHIP_MODEL& Chip = Bench.Machine.Fit(0, Facts.Id);
        Chip.Monitor[0x14] = Chip.Is(TRAIT_ITE) && Facts.Id == 0x8728 ? 0 : 0x80; // counts duties backwards
        Chip.AllowUpTo(Facts.Id == 0x8728 ? 0 : 1);
        for (UINT8 Fan = 4; Fan <= Facts.Fans; Fan++) {
            (void)Chip.SetFan(Fan, Chip.Is(TRAIT_ITE) || Chip.Is(TRAIT_COUNTS) ? 0xFFFF : 0); // stands still
        }
        ASSERT_TRUE(Bench.Open(true, &Wishes));
        EXPECT_EQ(Bench.Report.SettableFans, Chip.Is(TRAIT_CERTAIN) && Facts.Id != 0x8728) << Facts.Name;
        (void)Bench.Board->SetFullSpeed(Bench.Board);
        EXPECT_EQ(Chip.Is(TRAIT_ITE) ? Bench.Set(10, Level(4))
                                     : Bench.Set(6, Curve(0, {{{1, 1}, {2, 2}, {3, 3}, {4, 4}}}, 4)),
                  EFI_DEVICE_ERROR)
            << Facts.Name;
        EXPECT_EQ(Bench.Machine.Faults, "") << Facts.Name;
    }
}

// One byte reads as all ones while the fans are allowed and one is set, or all do from one on.
TEST(ChipFans, AByteThatIsReadWronglyIsNeverGivenBack)
{
    for (const UINT16 Id : {0xC330, 0x8620}) {
        for (const bool Single : {true, false}) {
            bool Done = false;
            for (UINT64 Which = 1; !Done; Which++) {
                FAN_BENCH Bench(Id, true);
                AllowChipFans(false);
                const UINT64 First = Bench.Machine.ReadCount + Which;
                Bench.Machine.OnesFrom = First;
                Bench.Machine.OnesTo = Single ? First + 1 : ~0ull;
                AllowChipFans(true);
                (void)Bench.Set(Bench.Item(), Bench.Setting());
                Done = Bench.Machine.ReadCount < First;
                Bench.Machine.OnesFrom = ~0ull;
                (void)Bench.Board->Restore(Bench.Board);
                EXPECT_EQ(Bench.Differences(Bench.Before), "") << std::hex << Id << ", read " << Which;
            }
        }
    }
}

// One of the writes of a change is lost, or all from one on, or one is and each register keeps what it got first.
TEST(ChipFans, AWriteThatIsNotTakenGivesTheFanBackOrRunsItAtFullSpeed)
{
    for (const UINT16 Id : gSettable) {
        for (const char* const Way : {"one", "all", "sticking"}) {
            bool Lost = true;
            for (int Which = 0; Lost; Which++) {
                FAN_BENCH Bench(Id);
                const CHIP_MODEL& Chip = Bench.Chip;
                std::map<UINT16, int> Written;
                int Count = 0;
                Lost = false;
                Bench.Machine.LosesWrite = [&](const CHIP_WRITE& Write) {
                    if (Write.Kind != WRITE_MONITOR || Write.Register == Chip.BankAt()) {
                        return false;
                    }
                    const bool Again = Written[Write.Register]++ > 0 && Write.Register != Chip.ControlAt(1) &&
                                       Write.Register != Chip.DutyAt(1);
                    Lost |= Count == Which;
                    return Count++ == Which || (*Way == 'a' && Count > Which) || (*Way == 's' && Again);
                };
                const EFI_STATUS Status = Bench.Set(Bench.Item(), Bench.Setting());
                const std::string Left = Bench.Differences(Bench.Before);
                if (Status == EFI_SUCCESS) {
                    EXPECT_EQ(Chip.IsAutomatic(1), !Chip.Is(TRAIT_ITE));
                    EXPECT_TRUE(Chip.Is(TRAIT_ITE) ? Chip.Monitor[Chip.DutyAt(1)] == 0xCC : Points(Chip, 1) == gPoints);
                } else {
                    EXPECT_EQ(Status, EFI_DEVICE_ERROR);
                    EXPECT_TRUE(Left.empty() || *Way == 'a' || (*Way == 's' && Bench.IsFull(1)))
                        << std::hex << Id << ", " << Way << ", write " << Which << ":\n"
                        << Left;
                }
                EXPECT_EQ(Bench.Machine.Faults, "") << std::hex << Id;
            }
        }
    }
}

// Everything that the console does, with each read of a port all ones in turn, alone or with all after it.
TEST(ChipFans, NoReadThatFailsMakesTheDriverWriteElsewhereOrShowWhatCannotBe)
{
    for (const UINT16 Id : {0xC330, 0xC560, 0xD428, 0x8603, 0x8728, 0x8688, 0x8733}) {
        for (const bool Alone : {true, false}) {
            bool Reached = true;
            for (UINT64 Which = 1; Reached; Which++) {
                CHIP_BENCH Bench;
                CHIP_MODEL& Chip = Bench.Machine.Fit(0, Id);
                Chip.AllowUpTo(Chip.Facts->Outputs);
                Bench.Machine.OnesFrom = Which;
                Bench.Machine.OnesTo = Alone ? Which + 1 : ~0ull;
                const std::string Before = Bench.Held();
                BOARD_SOURCE* const Board = Bench.Open(true) ? Bench.Board : nullptr;
                for (UINT8 Item = 0; Item < gItemCount; Item++) {
                    const INT64 Shown = Bench.Read(Item).value_or(0);
                    EXPECT_TRUE(Shown >= (Item < 4 ? -40 : 0) && Shown <= (Item < 4 ? 125 : 30000)) << int{Item};
                }
                EFI_STATUS Status = EFI_SUCCESS;
                if (Board != nullptr) {
                    (void)Bench.Set(Chip.Is(TRAIT_ITE) ? 9 : 7,
                                    Chip.Is(TRAIT_ITE) ? Level(4) : Curve(1, {{{3, 2}, {5, 4}, {7, 5}, {9, 6}}}, 2));
                    (void)Board->SetFullSpeed(Board);
                    (void)Board->Restore(Board);
                    Status = Board->Restore(Board);
                }
                CloseChipBoard();
                const bool Back = !Alone || (Status & gEfiErrorBit) != 0 || Bench.Differences(Before).empty();
                EXPECT_TRUE(Back && (!Alone || Bench.Machine.IsClosed()) && Bench.Machine.Faults.empty())
                    << std::hex << Id << ", read " << std::dec << Which << (Alone ? ":\n" : " and all after:\n")
                    << Bench.Machine.Faults << (Back ? "" : Bench.Differences(Before));
                Reached = Bench.Machine.ReadCount >= Which;
            }
        }
    }
}

} // namespace
