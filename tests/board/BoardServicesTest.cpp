// The services as the console finds them: installed in a firmware, driven through the protocols and a clock.
#include "platform/board/ArtworkPack.h"
#include "platform/board/BoardServices.h"
#include "platform/board/Thermal.h"
#include "tests/board/BoardBench.h"

#include <gtest/gtest.h>
#include <set>

namespace {

UINT64 gNow;
UINT64 Clock() { return gNow; }

constexpr UINT64 gSecond = 1000000;

// A pack of one section, number 5 of the artwork file.
struct TEST_PACK {
    ARTWORK_PACK_HEADER Header = {.Signature = {'V', 'T', 'R', 'P', 'A', 'C', 'K', '1'}, .Count = 1, .Reserved = 0};
    ARTWORK_PACK_ENTRY Entry = {.File = ARTWORK_FILE_MAIN,
                                .SectionType = EFI_SECTION_RAW,
                                .Reserved = 0,
                                .Instance = 5,
                                .Offset = sizeof(ARTWORK_PACK_HEADER) + sizeof(ARTWORK_PACK_ENTRY),
                                .Size = 4};
    UINT8 Bytes[4] = {1, 2, 3, 4};
};

struct TEST_POINTER : POINTER_SOURCE {
    INT64 X = 0;
    INT64 Y = 0;
    UINT8 LeftDown = 0;
    UINT8 RightDown = 0;
    bool Closed = false;
};

class Board : public testing::Test {
protected:
    BOARD_BENCH Bench;
    TEST_POINTER Pointer = {};
    TEST_PACK Pack;
    EFI_HANDLE Handle = nullptr;
    HW_SERVICE_PROTOCOL* Hardware = nullptr;

    Board() {
        Pointer.Read = [](POINTER_SOURCE* This, INT64* X, INT64* Y, UINT8* Left, UINT8* Right) {
            auto* Source = static_cast<TEST_POINTER*>(This);
            *X = Source->X;
            *Y = Source->Y;
            *Left = Source->LeftDown;
            *Right = Source->RightDown;
        };
        Pointer.Close = [](POINTER_SOURCE* This) { static_cast<TEST_POINTER*>(This)->Closed = true; };
    }
    ~Board() override {
        if (Handle != nullptr) {
            EXPECT_EQ(UninstallBoardServices(Handle), EFI_SUCCESS);
            EXPECT_TRUE(Bench.Installed.empty());
        }
        EXPECT_EQ(Bench.PoolBlocks, 0);
    }

    EFI_STATUS TryInstall(const char* Name, UINT64 Seed = 1) {
        const BOARD_OPTIONS Options = {.Name = Name,
                                       .Seed = Seed,
                                       .Generation = 7,
                                       .Microseconds = Clock,
                                       .Pointer = &Pointer,
                                       .ArtworkPack = reinterpret_cast<const UINT8*>(&Pack),
                                       .ArtworkPackSize = sizeof(Pack),
                                       .Refused = nullptr};
        return InstallBoardServices(&Bench.SystemTable, &Options, &Handle);
    }

    void Install(const char* Name, UINT64 Seed = 1) {
        if (Handle != nullptr) {
            ASSERT_EQ(UninstallBoardServices(Handle), EFI_SUCCESS);
        }
        gNow = 5 * gSecond;
        ASSERT_EQ(TryInstall(Name, Seed), EFI_SUCCESS);
        Hardware = Bench.Find<HW_SERVICE_PROTOCOL>(gHwServiceProtocolGuid);
        ASSERT_NE(Hardware, nullptr);
        (void)Hardware->Initialize(Hardware);
    }

    INT64 Read(UINT8 Item) {
        UINT64 Value = ~UINT64{0};
        UINT8 Present = 0xFF;
        EXPECT_EQ(Hardware->GetItemValue(Hardware, Item, &Value, &Present), EFI_SUCCESS);
        return Present == 1 ? static_cast<INT64>(Value) : -1;
    }

    void Set(UINT8 Fan, UINT16 FixedLevel) {
        FAN_SETTING Setting = {};
        auto& Access = Hardware->Fan[Fan - gFirstFanItem];
        ASSERT_EQ(Access.Get(Hardware, &Setting), EFI_SUCCESS);
        Setting.CurveEnabled = 0;
        Setting.FixedLevel = FixedLevel;
        ASSERT_EQ(Access.Set(Hardware, &Setting), EFI_SUCCESS);
    }

    // Mean of an item over a span of simulated seconds, read every 200 milliseconds as the console does.
    INT64 Mean(UINT8 Item, UINT64 Seconds) {
        INT64 Sum = 0;
        INT64 Count = 0;
        for (const UINT64 End = gNow + Seconds * gSecond; gNow < End; gNow += 200000) {
            Sum += Read(Item);
            Count++;
        }
        return Sum / Count;
    }

    std::u16string Name(UINT8 Item) {
        CHAR16* Text = Hardware->GetItemString(Hardware, Item);
        if (Text == nullptr) {
            return u"(null)";
        }
        const std::u16string Copy = Text;
        (void)Bench.BootServices.FreePool(Text);
        return Copy;
    }
};

TEST_F(Board, EveryServiceOfTheConsoleIsInstalledOnce)
{
    Install("full");
    const EFI_GUID Guids[] = {gImageDecoderProtocolGuid, gCursorServiceProtocolGuid, gRequiredServiceProtocolGuid,
                              gFloatMathProtocolGuid,    gImageLookupProtocolGuid,   gHwServiceProtocolGuid,
                              gDrawPrimitivesProtocolGuid, gImageSectionProtocolGuid};
    EXPECT_EQ(Bench.Installed.size(), std::size(Guids));
    for (const EFI_GUID& Guid : Guids) {
        EXPECT_NE(Bench.Find<VOID>(Guid), nullptr);
    }
    auto* Decoder = Bench.Find<IMAGE_DECODER_PROTOCOL>(gImageDecoderProtocolGuid);
    EXPECT_EQ(Decoder->GetFirmwareGeneration(Decoder), 7);
}

TEST_F(Board, AnUnknownNameOrADamagedPackIsRefused)
{
    EXPECT_EQ(TryInstall("fullest"), EFI_INVALID_PARAMETER);
    EXPECT_EQ(TryInstall(""), EFI_INVALID_PARAMETER);
    Pack.Entry.Offset++; // the section now ends beyond the pack
    EXPECT_EQ(TryInstall("full"), EFI_INVALID_PARAMETER);
    EXPECT_TRUE(Bench.Installed.empty());
}

TEST_F(Board, EachBoardHasItsItemsAndNoOthers)
{
    struct CASE {
        const char* Name;
        std::set<int> Items;
        int Kind;
    };
    const std::set<int> All = {0, 1, 2, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16, 17};
    const CASE Cases[] = {
        {nullptr, All, 1},           {"full", All, 1},      {"kind0", All, 0}, {"kind2", All, 2},
        {"small", {0, 1, 4, 6, 9, 11, 15}, 1}, {"second-source", {1, 4}, 1}, {"bare", {}, 1},
    };
    for (const CASE& Case : Cases) {
        Install(Case.Name);
        EXPECT_EQ(Hardware->GetFanKind(Hardware, 5), Case.Kind);
        for (int Item = 0; Item < 256; Item++) {
            UINT64 Value = 99;
            UINT8 Present = 99;
            ASSERT_EQ(Hardware->GetItemValue(Hardware, static_cast<UINT8>(Item), &Value, &Present), EFI_SUCCESS);
            const bool Exists = Case.Items.contains(Item);
            EXPECT_EQ(Present, Exists ? 1 : 0) << Item;
            if (!Exists) {
                EXPECT_EQ(Value, 0u) << Item;
            }
            if (Item < 22) {
                EXPECT_EQ(Name(static_cast<UINT8>(Item)) == u"(null)", !Exists) << Item;
            }
        }
    }
}

TEST_F(Board, NamesFitTheirPlacesOnTheScreen)
{
    Install("full");
    for (UINT8 Item = 0; Item < 3; Item++) {
        EXPECT_LE(Name(Item).size(), 6u);
    }
    EXPECT_LE(Name(4).size(), 8u); // with four blanks in front: twelve cells of a tab 97 pixels wide
    EXPECT_LE(Name(5).size(), 8u);
    for (UINT8 Item = 6; Item < 11; Item++) {
        EXPECT_LE(Name(Item).size(), 9u);
    }
    for (UINT8 Item = 11; Item < 18; Item++) {
        EXPECT_LE(Name(Item).size(), 15u);
    }
    std::set<std::u16string> Names;
    for (UINT8 Item = 0; Item < 40; Item++) {
        const std::u16string Text = Name(Item);
        if (Text != u"(null)") {
            EXPECT_TRUE(Names.insert(Text).second) << int{Item};
        }
    }
    EXPECT_EQ(Names.size(), 17u + 17u);
}

TEST_F(Board, AStringWithoutPoolIsNull)
{
    Install("full");
    Bench.FailPool = true;
    EXPECT_EQ(Hardware->GetItemString(Hardware, 4), nullptr);
    Bench.FailPool = false;
}

TEST_F(Board, ReadingsStayPlausibleForAQuarterOfAnHourAndMove)
{
    for (UINT64 Seed = 0; Seed < 4; Seed++) {
        Install("full", Seed);
        if (Seed == 3) {
            (void)Hardware->SetAllFansFullSpeed(Hardware);
        }
        std::set<INT64> Seen[18];
        for (const UINT64 End = gNow + 900 * gSecond; gNow < End; gNow += 200000) {
            for (UINT8 Item = 0; Item < 18; Item++) {
                if (Item != 3) {
                    Seen[Item].insert(Read(Item));
                }
            }
        }
        for (UINT8 Item = 0; Item < 3; Item++) {
            EXPECT_GE(*Seen[Item].begin(), 30) << "seed " << Seed;
            EXPECT_LE(*Seen[Item].rbegin(), 80) << "seed " << Seed;
            EXPECT_GE(Seen[Item].size(), 3u) << "seed " << Seed << " source " << int{Item};
        }
        for (UINT8 Item = 4; Item < 11; Item++) {
            EXPECT_GE(*Seen[Item].begin(), 250) << "fan " << int{Item};
            EXPECT_LE(*Seen[Item].rbegin(), 5000) << "fan " << int{Item};
        }
        const INT64 Nominal[] = {1200, 1050, 3300, 5000, 12000, 950, 1350};
        for (UINT8 Item = 11; Item < 18; Item++) {
            const INT64 Volts = Nominal[Item - 11];
            EXPECT_GE(*Seen[Item].begin(), Volts * 95 / 100) << "voltage " << int{Item};
            EXPECT_LE(*Seen[Item].rbegin(), Volts * 105 / 100) << "voltage " << int{Item};
            EXPECT_GE(Seen[Item].size(), 3u) << "voltage " << int{Item};
        }
    }
}

TEST_F(Board, OneSeedGivesOneHistoryHoweverOftenItIsRead)
{
    const auto Readings = [&](UINT64 Seed, UINT64 Pace) {
        Install("full", Seed);
        for (const UINT64 End = gNow + 9 * gSecond; gNow < End; gNow += Pace) {
            (void)Read(4);
        }
        gNow = 5 * gSecond + 9 * gSecond;
        std::vector<INT64> Values;
        for (UINT8 Item = 0; Item < 18; Item++) {
            Values.push_back(Read(Item));
        }
        return Values;
    };
    const std::vector<INT64> Slow = Readings(1, 3 * gSecond);
    EXPECT_EQ(Slow, Readings(1, 777));
    EXPECT_NE(Slow, Readings(2, 3 * gSecond));
}

TEST_F(Board, AFanFollowsTheSettingItHoldsWithinTwoSeconds)
{
    Install("full");
    const UINT8 Slider[] = {6, 7, 8, 9, 10};
    const INT64 Top[] = {1500, 1400, 1200, 1800, 5000};
    for (UINTN Index = 0; Index < std::size(Slider); Index++) {
        for (const UINT16 Level : {UINT16{1}, UINT16{6}, UINT16{3}}) {
            Set(Slider[Index], Level);
            gNow += 3 * gSecond;
            const INT64 Goal = Top[Index] * (40 + 10 * Level) / 100;
            EXPECT_NEAR(static_cast<double>(Read(Slider[Index])), static_cast<double>(Goal), 30.0)
                << "fan " << int{Slider[Index]} << " level " << Level;
        }
    }
    // Inertia: a tenth of a second after a change it is still on its way.
    Set(10, 6);
    gNow += gSecond / 10;
    EXPECT_LT(Read(10), 4500);
    EXPECT_EQ(BoardContractFaults(), 0u);
}

TEST_F(Board, FullSpeedReachesEveryFanAndDefaultTakesItBack)
{
    Install("full");
    const INT64 Top[] = {2200, 2000, 1500, 1400, 1200, 1800, 5000};
    (void)Hardware->SetAllFansFullSpeed(Hardware);
    gNow += 4 * gSecond;
    for (UINT8 Fan = 4; Fan < 11; Fan++) {
        EXPECT_GT(Read(Fan), Top[Fan - 4] * 97 / 100);
    }
    Set(9, 1);
    gNow += 4 * gSecond;
    EXPECT_LT(Read(9), 1000);
    EXPECT_GT(Read(10), 4850);
    (void)Hardware->LoadDefaultFanSettings(Hardware);
    gNow += 4 * gSecond;
    for (const UINT8 Fan : {UINT8{4}, UINT8{6}, UINT8{9}, UINT8{10}}) {
        EXPECT_LT(Read(Fan), Top[Fan - 4] * 95 / 100);
    }
}

TEST_F(Board, ATemperatureFallsWhenItsFansTurnFaster)
{
    // A flat curve at the lowest duty against full speed, under the same load.
    Install("full");
    for (const UINT8 Fan : {UINT8{4}, UINT8{5}}) {
        FAN_SETTING Quiet = {};
        Quiet.CurveEnabled = 1;
        Quiet.Column3 = 13;
        Quiet.Column2 = 12;
        Quiet.Column1 = 11;
        Quiet.Column0 = 10;
        Quiet.Level0 = Quiet.Level1 = Quiet.Level2 = Quiet.Level3 = 1;
        ASSERT_EQ(Hardware->Fan[Fan - 4].Set(Hardware, &Quiet), EFI_SUCCESS);
    }
    gNow += 9 * gSecond;
    const INT64 Warm = Mean(0, 120);
    Install("full");
    (void)Hardware->SetAllFansFullSpeed(Hardware);
    gNow += 9 * gSecond;
    const INT64 Cool = Mean(0, 120);
    EXPECT_GE(Warm - Cool, 5);
}

TEST_F(Board, ACurveTakesItsFanUpWithTheTemperature)
{
    Install("second-source");
    FAN_SETTING Steep = {};
    Steep.CurveEnabled = 1;
    Steep.Column0 = 1;
    Steep.Column1 = 2;
    Steep.Column2 = 3;
    Steep.Column3 = 4;
    Steep.Level0 = 1;
    Steep.Level1 = 8;
    Steep.Level2 = 8;
    Steep.Level3 = 8;
    ASSERT_EQ(Hardware->Fan[0].Set(Hardware, &Steep), EFI_SUCCESS);
    bool SeenCool = false;
    for (const UINT64 End = gNow + 300 * gSecond; gNow < End; gNow += 200000) {
        const INT64 Degrees = Read(1);
        const INT64 Speed = Read(4);
        SeenCool = SeenCool || Degrees < 40;
        if (Degrees < 39) {
            EXPECT_LT(Speed, 1400); // some of the rise above 40 degrees may still be in its inertia
        }
    }
    EXPECT_TRUE(SeenCool);
}

TEST_F(Board, ACurveIsStraightBetweenItsNodesAndLevelBeyondThem)
{
    FAN_SETTING Setting = {};
    Setting.CurveEnabled = 1;
    Setting.Column0 = 1; // 40 degrees
    Setting.Column1 = 3; // 50
    Setting.Column2 = 4; // 55
    Setting.Column3 = 8; // 75
    Setting.Level0 = 1;
    Setting.Level1 = 3;
    Setting.Level2 = 3;
    Setting.Level3 = 6;
    struct CASE {
        INT32 MilliDegrees;
        INT32 OfEight; // thousandths
        INT32 OfSix;
    };
    const CASE Cases[] = {{20000, 125, 500}, {40000, 125, 500}, {45000, 250, 600}, {50000, 375, 700},
                          {54000, 375, 700}, {65000, 562, 850}, {75000, 750, 1000}, {90000, 750, 1000}};
    for (const CASE& Case : Cases) {
        EXPECT_EQ(DutyOfCurve(&Setting, CONTROL_CURVE8, Case.MilliDegrees), Case.OfEight) << Case.MilliDegrees;
        EXPECT_EQ(DutyOfCurve(&Setting, CONTROL_CURVE6, Case.MilliDegrees), Case.OfSix) << Case.MilliDegrees;
    }
}

TEST_F(Board, ArtworkThatAScriptHasReplacedIsForgottenWithTheServices)
{
    const UINT8 Type = EFI_SECTION_RAW;
    const auto Get = [&] {
        auto* Sections = Bench.Find<IMAGE_SECTION_PROTOCOL>(gImageSectionProtocolGuid);
        VOID* Data = nullptr;
        UINTN Size = 0;
        const EFI_STATUS Status = Sections->GetArtworkSection(5, &Data, &Size, &gArtworkFileGuid, &Type);
        if (!EfiError(Status)) {
            (void)Bench.BootServices.FreePool(Data);
        }
        return Status;
    };
    Install("full");
    EXPECT_EQ(Get(), EFI_SUCCESS);
    OverrideArtwork(5, nullptr, 0);
    EXPECT_TRUE(EfiError(Get()));
    Install("full");
    EXPECT_EQ(Get(), EFI_SUCCESS);
}

TEST_F(Board, CancelGoesBackToWhatWasHeldAtTheConsolesStart)
{
    Install("full");
    Set(9, 1);
    (void)Hardware->Initialize(Hardware);
    Set(9, 6);
    (void)Hardware->RestoreFanSettings(Hardware);
    FAN_SETTING Setting = {};
    ASSERT_EQ(Hardware->Fan[5].Get(Hardware, &Setting), EFI_SUCCESS);
    EXPECT_EQ(Setting.FixedLevel, 1);
}

TEST_F(Board, EveryPairOfOperationsBelongsToItsFan)
{
    Install("full");
    for (UINT8 Fan = 4; Fan < 11; Fan++) {
        FAN_SETTING Mark = {};
        Mark.FixedLevel = static_cast<UINT16>(Fan * 100);
        ASSERT_EQ(PutBoardSetting(Fan, &Mark), EFI_SUCCESS);
    }
    for (UINT8 Fan = 4; Fan < 11; Fan++) {
        FAN_SETTING Setting = {};
        ASSERT_EQ(Hardware->Fan[Fan - 4].Get(Hardware, &Setting), EFI_SUCCESS);
        EXPECT_EQ(Setting.FixedLevel, Fan * 100);
        // Records against the contract, held by a script, run the model all the same.
        gNow += gSecond;
        EXPECT_GE(Read(Fan), 0);
    }
}

TEST_F(Board, TheModelCatchesUpAfterADayWithoutARead)
{
    Install("full");
    gNow += 86400 * gSecond;
    EXPECT_GE(Read(0), 30);
    const INT64 Speed = Read(4);
    gNow -= gSecond; // a clock that goes back changes nothing
    EXPECT_EQ(Read(4), Speed);
}

TEST_F(Board, ThePointerStaysWithinItsLimitsAndItsButtonsAreZeroOrOne)
{
    Install("full");
    auto* Cursor = Bench.Find<CURSOR_SERVICE_PROTOCOL>(gCursorServiceProtocolGuid);
    ASSERT_EQ(Cursor->SetCursorLimits(1024, 768), EFI_SUCCESS);
    struct CASE {
        INT64 X, Y, SeenX, SeenY;
    };
    for (const CASE& Case : {CASE{5, 6, 5, 6}, CASE{-4, 2000, 0, 767}, CASE{1024, -1, 1023, 0}}) {
        Pointer.X = Case.X;
        Pointer.Y = Case.Y;
        Pointer.LeftDown = 0x80;
        INT64 X = -1, Y = -1, Z = -1;
        UINT8 Left = 9, Right = 9;
        ASSERT_EQ(Cursor->GetCursorState(&X, &Y, &Z, &Left, &Right), EFI_SUCCESS);
        EXPECT_EQ(X, Case.SeenX);
        EXPECT_EQ(Y, Case.SeenY);
        EXPECT_EQ(Z, 0);
        EXPECT_EQ(Left, 1);
        EXPECT_EQ(Right, 0);
    }
    EXPECT_FALSE(Pointer.Closed);
    (void)Cursor->CloseCursor();
    EXPECT_TRUE(Pointer.Closed);
}

} // namespace
