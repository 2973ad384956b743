// What the driver recognises, touches and shows, held against a model made from the data sheets alone.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <set>

#include "tests/chips/ChipBench.h"

namespace {

// Where a fan of the only chip is shown.
UINT8 ItemOfFan(const CHIP_MODEL& Chip, UINT8 Fan)
{
    static constexpr UINT8 Ite[] = {0, 9, 10, 8, 7, 6, 5, 4};
    static constexpr UINT8 Counts[] = {0, 4, 5, 6, 9, 10}; // the last two have no output
    return Chip.Is(TRAIT_ITE) ? Ite[Fan] : Chip.Is(TRAIT_COUNTS) ? Counts[Fan] : static_cast<UINT8>(3 + Fan);
}

constexpr UINT16 gOfEachKind[] = {0xC330, 0xC560, 0xD428, 0x8728, 0x8688, 0x8733};

class EveryChip : public testing::TestWithParam<CHIP_FACTS> {};
INSTANTIATE_TEST_SUITE_P(Chips, EveryChip, testing::ValuesIn(gChipFacts),
                         [](const auto& Row) { return std::string(Row.param.Name); });

// At 2E its configuration is closed and its monitor locked, if it can be; at 4E it is open already.
TEST_P(EveryChip, IsRecognisedShowsItsNumbersAndIsLeftAsItWas)
{
    for (UINT8 Place = 0; Place < 2; Place++) {
        CHIP_BENCH Bench;
        CHIP_MODEL& Chip = Bench.Machine.Fit(Place, GetParam().Traits & TRAIT_ITE ? GetParam().Id : GetParam().Id | 3);
        Chip.Configuration[0x28] = Chip.Is(TRAIT_LOCK) && Place == 0 ? 0x10 : 0;
        MACHINE_MODEL::SLOT& Slot = Bench.Machine.Slots[Place];
        Slot.Device = 5;
        Slot.Open = Slot.WasOpen = Place == 1 || Slot.Open;
        Bench.Machine.Intruder = true;
        const std::string Before = Bench.Held(Place);
        ASSERT_TRUE(Bench.Open());
        EXPECT_TRUE(Bench.Reports(GetParam().Name));
        UINT32 Fans = 0;
        for (UINT8 Fan = 1; Fan <= GetParam().Fans; Fan++) {
            const UINT32 Speed = Chip.SetFan(Fan, static_cast<UINT16>(560 + 31 * Fan));
            EXPECT_EQ(Bench.Read(ItemOfFan(Chip, Fan)), Speed) << int{Fan};
            Fans |= 1u << ItemOfFan(Chip, Fan);
        }
        EXPECT_EQ(Bench.Board->Present & 0x7F0, Fans);
        (void)Chip.SetFan(1, Chip.Is(TRAIT_ITE) || Chip.Is(TRAIT_COUNTS) ? 0xFFFF : 0); // stands still
        EXPECT_EQ(Bench.Read(ItemOfFan(Chip, 1)), 0);
        // Each voltage shown is another one of the chip's.
        std::set<INT64> Voltages;
        for (UINT8 Input = 0; Input < GetParam().Voltages; Input++) {
            Voltages.insert(Chip.SetVoltage(Input, static_cast<UINT8>(120 + 3 * Input)));
        }
        for (UINT8 Item = gFirstVoltageItem; Item < gItemCount; Item++) {
            EXPECT_EQ(Voltages.erase(Bench.Read(Item).value_or(-1)), GetParam().Voltages != 0) << int{Item};
        }
        if (!Chip.Is(TRAIT_ITE)) {
            EXPECT_EQ(Bench.Read(11), Chip.SetVoltage(0, 120));
            EXPECT_EQ(Bench.Read(13), Chip.SetVoltage(3, 129));
        }
        const INT32 Processor = Chip.Is(TRAIT_ITE) ? 35 : Chip.Is(TRAIT_COUNTS) ? 31 + 2 * 12 : 31 + 2 * 16;
        EXPECT_TRUE(Bench.Read(0) == Processor || (!Chip.Is(TRAIT_ITE) && Bench.Read(0) == 35));
        EXPECT_EQ(Bench.Read(1), Chip.Is(TRAIT_ITE) ? 31 : 33);
        EXPECT_TRUE(Bench.Machine.IsClosed());
        EXPECT_EQ(Slot.Device, 5);
        EXPECT_EQ(Bench.Machine.KeysAt(Place).empty(), Slot.WasOpen);
        CloseChipBoard();
        EXPECT_EQ(Bench.Machine.Faults, "");
        EXPECT_TRUE(Bench.Held(Place).starts_with(Before.substr(0, sizeof(Chip.Configuration))));
    }
}

TEST(Chips, OnesThatAreNotKnownAreToldToCloseAndNothingElse)
{
    static constexpr struct {
        const char* What;
        UINT16 Id;
        bool Open;
        const char* Keys;
    } Rows[] = {
        {"nothing", 0xFFFF, false, " 87 87 AA 87 01 55 55"},
        {"another one behind Nuvoton's key", 0x1234, false, " 87 87 AA"},
        {"another one that is open", 0x1234, true, ""},
        {"an old one of Nuvoton", 0xB470, false, " 87 87 AA"},
        {"one of ITE with another register map", 0x8718, false, " 87 87 AA 87 01 55 55"},
        {"a bridge", 0x8883, true, ""},
    };
    for (const auto& Row : Rows) {
        CHIP_BENCH Bench;
        if (Row.Id != 0xFFFF) {
            Bench.Machine.Fit(0, Row.Id);
            Bench.Machine.Slots[0].Open = Bench.Machine.Slots[0].WasOpen = Row.Open;
        }
        EXPECT_FALSE(Bench.Open()) << Row.What;
        EXPECT_TRUE(Bench.Machine.IsClosed()) << Row.What;
        EXPECT_EQ(Bench.Machine.KeysAt(0), Row.Keys) << Row.What;
        EXPECT_EQ(Bench.Machine.Faults, "") << Row.What;
    }
}

TEST(Chips, OneThatCannotBeReadForCertainIsLeftAlone)
{
    static constexpr struct {
        UINT16 NextId;
        UINT8 Enabled, BaseHigh, BaseLow, Identity; // the last of ITE alone
    } Flaws[] = {{0x1234, 1, 0x0A, 0x60, 0x90},
                 {0, 0, 0x0A, 0x60, 0x90},
                 {0, 1, 0, 0, 0x90},
                 {0, 1, 0xFF, 0xFF, 0x90},
                 {0, 1, 0x0A, 0x60, 0xFF}};
    for (const UINT16 Id : gOfEachKind) {
        for (const auto& Flaw : Flaws) {
            CHIP_BENCH Bench;
            CHIP_MODEL& Chip = Bench.Machine.Fit(1, Id);
            UINT8* const Device = &Chip.Configuration[Chip.MonitorDevice()];
            Chip.NextId = Flaw.NextId;
            Device[0x30] = Flaw.Enabled;
            Device[0x60] = Flaw.BaseHigh;
            Device[0x61] = Flaw.BaseLow;
            Chip.Monitor[0x58] = Flaw.Identity;
            EXPECT_EQ(Bench.Open(), !Chip.Is(TRAIT_ITE) && Flaw.Identity != 0x90)
                << std::hex << Id << ", flaw " << &Flaw - Flaws;
            EXPECT_TRUE(Bench.Machine.IsClosed());
            EXPECT_EQ(Bench.Machine.Faults, "") << std::hex << Id << ", flaw " << &Flaw - Flaws;
        }
    }
}

TEST(Chips, OneThatMustNotLeaveItsModeIsNotMadeToHoweverLateItAnswers)
{
    for (UINT64 Silent = 0; Silent < 20; Silent++) {
        CHIP_BENCH Bench;
        (void)Bench.Machine.Fit(0, 0x8733);
        Bench.Machine.OnesFrom = 1;
        Bench.Machine.OnesTo = 1 + Silent;
        (void)Bench.Open();
        CloseChipBoard();
        EXPECT_TRUE(Bench.Machine.IsClosed()) << Silent;
        EXPECT_EQ(Bench.Machine.Faults, "") << Silent;
    }
}

TEST(Chips, APinThatIsNoFansMakesNoneOfIt)
{
    static constexpr struct {
        UINT16 Id, Register;
        UINT8 Value, Fans, Settable;
    } Rows[] = {{0xC560, 0x1C, 0x20, 4, 4},  {0xC560, 0x1C, 0x02, 5, 4},  {0xC330, 0x24, 0x40, 4, 2},
                {0xC330, 0x1C, 0x02, 4, 3},  {0xC800, 0x2D, 0x01, 5, 5},  {0xC910, 0x2F, 0x08, 5, 5},
                {0x8620, 0x725, 0x40, 6, 5}, {0x8620, 0x726, 0x10, 5, 5}, {0x8620, 0x727, 0x80, 5, 5},
                {0x8620, 0x727, 0x40, 6, 5}, {0x8620, 0x728, 0x04, 6, 5}, {0x8620, 0x729, 0x82, 6, 5},
                {0x8620, 0x729, 0x00, 5, 5}, {0x8728, 0x726, 0x20, 4, 3}};
    for (const auto& Row : Rows) {
        CHIP_BENCH Bench;
        Bench.Machine.Fit(0, Row.Id).Configuration[Row.Register] = Row.Value;
        ASSERT_TRUE(Bench.Open());
        EXPECT_EQ(std::popcount(Bench.Board->Present & 0x7F0), Row.Fans) << std::hex << Row.Id << " " << Row.Register;
        EXPECT_EQ(Bench.Report.SettableFans, Row.Settable) << std::hex << Row.Id << " " << Row.Register;
    }
}

TEST(Chips, ATemperatureIsThatOfItsName)
{
    static constexpr struct {
        UINT16 Id;
        const CHAR8* Name;
        UINT8 Source;
    } Rows[] = {{0xC330, "AUXTIN", 3},  {0xC330, "PECI", 12},   {0xC330, "PCH", 15},  {0xC560, "CPUTIN", 2},
                {0xC560, "AUXTIN0", 3}, {0xC560, "AUXTIN3", 6}, {0xC560, "PCH", 19},  {0xD428, "AUXTIN2", 5},
                {0xD428, "PECI", 16},   {0xD428, "SYSTIN", 1},  {0x8728, "temp2", 1}, {0x8620, "temp4", 3},
                {0x8620, "temp6", 5}};
    for (const auto& Row : Rows) {
        CHIP_BENCH Bench;
        BOARD_WISHES Wishes = {};
        Wishes.Count = 1;
        Wishes.Rows[0].Kind = WISH_TEMPERATURE;
        std::strcpy(Wishes.Rows[0].Sensor, Row.Name);
        Bench.Machine.Fit(0, Row.Id);
        ASSERT_TRUE(Bench.Open(false, &Wishes));
        EXPECT_EQ(Bench.Read(0), 31 + 2 * Row.Source) << std::hex << Row.Id << " " << Row.Name;
    }
}

TEST(Chips, TwoOnABoardShareThePlacesAndOneAtBothPortsIsOne)
{
    CHIP_BENCH Bench;
    CHIP_MODEL& First = Bench.Machine.Fit(0, 0x8772);
    CHIP_MODEL& Second = Bench.Machine.Fit(1, 0x8733);
    ASSERT_TRUE(Bench.Open());
    const UINT32 Speeds[] = {First.SetFan(1, 500),  First.SetFan(2, 510),  First.SetFan(3, 520),
                             Second.SetFan(1, 530), Second.SetFan(2, 540), Second.SetFan(3, 550)};
    static constexpr UINT8 Items[] = {9, 10, 8, 7, 6, 5};
    for (UINT8 Fan = 0; Fan < 6; Fan++) {
        EXPECT_EQ(Bench.Read(Items[Fan]), Speeds[Fan]);
    }
    EXPECT_TRUE(Bench.Reports("4E/fan1"));
    EXPECT_EQ(Bench.Machine.Faults, "");

    CHIP_BENCH Twice;
    Twice.Machine.Fit(0, 0xC560);
    Twice.Machine.Slots[1].Chip = 0;
    ASSERT_TRUE(Twice.Open());
    EXPECT_EQ(Twice.Board->Present & 0x7F0, 0x1F0u);
    EXPECT_TRUE(Twice.Machine.IsClosed());
    EXPECT_EQ(Twice.Machine.Faults, "");
}

TEST(Chips, ACounterThatChangesBetweenItsBytesIsNeverShownTorn)
{
    for (const UINT16 Id : gOfEachKind) {
        CHIP_BENCH Bench;
        CHIP_MODEL& Chip = Bench.Machine.Fit(0, Id);
        ASSERT_TRUE(Bench.Open());
        const UINT8 Item = ItemOfFan(Chip, 1);
        bool Done = false;
        for (UINT64 Step = 1; !Done; Step++) {
            const INT64 Before = Chip.SetFan(1, 0x02FF);
            (void)Bench.Read(Item);
            INT64 After = Before;
            const UINT64 At = Bench.Machine.ReadCount + Step;
            Bench.Machine.BeforeRead = [&] { After = Bench.Machine.ReadCount == At ? Chip.SetFan(1, 0x0300) : After; };
            const INT64 Shown = Bench.Read(Item).value_or(-1);
            EXPECT_TRUE(Shown == Before || Shown == After) << Shown << " of " << std::hex << Id << ", step " << Step;
            Done = Bench.Machine.ReadCount < At;
            Bench.Machine.BeforeRead = nullptr;
        }
    }
}

TEST(Chips, AnImplausibleValueIsHiddenAndHasToProveItselfToComeBack)
{
    CHIP_BENCH Bench;
    CHIP_MODEL& Chip = Bench.Machine.Fit(0, 0xC560);
    for (UINT8 Source = 18; Source < 26; Source++) {
        Chip.SetTemperature(Source, -128); // there is no chipset that would tell
    }
    ASSERT_TRUE(Bench.Open());
    EXPECT_FALSE(HasItem(*Bench.Board, 2));
    struct {
        UINT8 Item;
        std::function<INT64(bool)> Put; // a good or a bad value; what is shown of it
    } Sensors[] = {
        {1, [&](bool Good) { return Chip.SetTemperature(1, Good ? 33 : 127), 33; }},
        {4, [&](bool Good) { return Chip.SetFan(1, Good ? 1200 : 0xFFFF), 1200; }},
        {11, [&](bool Good) { return Chip.SetVoltage(0, Good ? 150 : 0), 1200; }},
    };
    for (const auto& Sensor : Sensors) {
        const INT64 Value = Sensor.Put(true);
        static constexpr char Steps[] = "++--+---+++-++++-";
        static constexpr char Shown[] = "vvvvvvv        vv";
        for (UINTN Step = 0; Steps[Step] != 0; Step++) {
            (void)Sensor.Put(Steps[Step] == '+');
            EXPECT_EQ(Bench.Read(Sensor.Item), Shown[Step] == 'v' ? std::optional(Value) : std::nullopt)
                << int{Sensor.Item} << ", step " << Step;
        }
    }
    Chip.SetFan(2, 0);
    EXPECT_EQ(Bench.Read(5), 0); // stands still
    const UINT64 Reads = Bench.Machine.ReadCount;
    UINT64 Value;
    Chip.SetFan(2, 900);
    EXPECT_EQ(Bench.Board->Read(Bench.Board, 5, &Value), EFI_SUCCESS);
    EXPECT_EQ(Value, 0u);
    EXPECT_EQ(Bench.Machine.ReadCount, Reads); // not asked again so soon
}

TEST(Chips, TheProcessorIsReadWhereItSaysThatItCanBe)
{
    static const struct {
        const char* What;
        UINT32 Leaves, Features, Sensors;
        std::map<UINT32, UINT64> Msrs; // any other stops the machine
        std::optional<INT64> Degrees;
    } Intel[] = {
        {"all there", 6, 0, 0x41, {{0x1A2, 96 << 16}, {0x1B1, 38 << 16}}, 58},
        {"no limit", 6, 0, 0x41, {{0x1A2, 0}, {0x1B1, 38 << 16}}, 62},
        {"a core's sensor alone", 6, 0, 0x01, {{0x19C, 0x80000000 | 38 << 16}}, 62},
        {"which isn't valid", 6, 0, 0x01, {{0x19C, 38 << 16}}, {}},
        {"no sensor", 6, 0, 0, {}, {}},
        {"few leaves", 5, 0, 0x41, {}, {}},
        {"a virtual machine", 6, 1u << 31, 0x41, {}, {}},
    };
    for (const auto& Row : Intel) {
        CHIP_BENCH Bench;
        Bench.Machine.BecomeIntel(Row.Leaves, Row.Features, Row.Sensors, Row.Msrs);
        EXPECT_EQ(Bench.Open(), Row.Degrees.has_value()) << Row.What;
        EXPECT_EQ(Bench.Read(0), Row.Degrees) << Row.What;
        EXPECT_EQ(Bench.Machine.Faults, "") << Row.What;
    }
    static const struct {
        UINT8 Family, Model;
        UINT32 Register;
        std::optional<INT64> Degrees;
    } Amd[] = {{0x19, 0x21, 45 * 8 << 21, 45},
               {0x17, 0x71, 94u * 8 << 21 | 1 << 19, 45},
               {0x1A, 0x44, 94u * 8 << 21 | 3 << 16, 45},
               {0x15, 0x02, 45 * 8 << 21, {}},
               {0x19, 0x21, 0xFFFFFFFF, {}}};
    for (const auto& Row : Amd) {
        CHIP_BENCH Bench;
        Bench.Machine.BecomeAmd(Row.Family, Row.Model, Row.Register);
        EXPECT_EQ(Bench.Open(), Row.Degrees.has_value()) << Row.Register;
        EXPECT_EQ(Bench.Read(0), Row.Degrees) << Row.Register;
        EXPECT_EQ(Bench.Machine.Bridge[0x60 / 4], 0x12345678u); // as somebody left it
        // Some tell more than they have, by their name.
        Bench.Machine.Leaves[0x80000000].Eax = 0x80000004;
        Bench.Machine.Leaves[0x80000002] = {0x20444D41, 0x657A7952, 0x2037206E, 0x30303831}; // AMD Ryzen 7 1800
        Bench.Machine.Leaves[0x80000003].Eax = 0x58;
        EXPECT_EQ(Bench.Open() ? Bench.Read(0) : std::nullopt,
                  Row.Degrees && Row.Family == 0x17 ? std::optional(*Row.Degrees - 20) : Row.Degrees)
            << Row.Register;
        EXPECT_EQ(Bench.Machine.Faults, "") << Row.Register;
    }
}

} // namespace
