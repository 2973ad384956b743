#include "tests/console/ConsoleBench.h"

namespace {

// Names of the calls during start-up of one kind, in order, with one field.
std::vector<std::string> StartUp(const RUN& Run, const std::string& Call, const std::string& Field)
{
    std::vector<std::string> Found;
    for (const CALL_LINE& Line : Run.NamedInTurn(Call, 0)) {
        Found.push_back(Line.Text(Field));
    }
    return Found;
}

TEST(Start, LooksUpTheServicesInTheirOrder)
{
    const RUN Run = SCENE().Play();
    std::vector<std::string> Guids = StartUp(Run, "LocateProtocol", "guid");
    // Five HII protocols, a shell that isn't there, then the services; the font protocol for texts follows.
    const std::vector<std::string> Expected = {
        "0FD96974-23AA-4CDC-B9CB-98D17750322A", "EF9FC172-A1B2-4693-B327-6D32FC416042",
        "587E72D7-CC50-4F79-8209-CA291FC1A10F", "E9CA4775-8657-47FC-97E7-7ED65A084324",
        "31A6406A-6BDF-4E46-B2A2-EBAA89C40920", "6302D008-7F9B-4F30-87AC-60C9FEF5DA4E",
        "9042A9DE-23DC-4A38-96FB-7ADED080516A", "26BACCB1-6F42-11D4-BCE7-0080C73C8881",
        "B24C3803-2E14-40BA-A8FA-DDF5FE276433", "47BAA4D2-D2B1-4029-B485-CAAF388D9EAA",
        "02B1EB99-4BA4-4D21-93AE-6F831682A82E", "CC2AC9E3-14A9-11D3-8E77-00A0C969723B",
        "B9450090-3EF5-420E-9AAD-948C2D0F2455", "B24C3803-2E14-40BA-A8FA-DDF5FE276433",
        "1552C0BE-D5FA-4BCE-90C1-78A91B7DBE17", "DC113A49-A77E-49F9-8D09-9DBF776C6711",
        "A7307E70-27FE-46BD-8B4B-8E7F1AE938B8",
    };
    ASSERT_GE(Guids.size(), Expected.size());
    Guids.resize(Expected.size());
    EXPECT_EQ(Guids, Expected);
}

TEST(Start, AsksForThePresenceOfEachItemOnceInItsOrder)
{
    const RUN Run = SCENE("small").Play();
    EXPECT_EQ(StartUp(Run, "GetItemValue", "item"),
              (std::vector<std::string>{"4", "5", "6", "7", "8", "9", "10", "0", "1", "2", "11", "12", "13", "14", "15",
                                        "16", "17"}));
}

TEST(Start, RunsAMinuteOnEveryBoardAndGivesEverythingBack)
{
    for (const char* Board : {"full", "kind0", "kind2", "small", "second-source", "bare"}) {
        SCOPED_TRACE(Board);
        const RUN Run = SCENE(Board).Ticks(300).Line("start").Turns(5).Play();
        EXPECT_EQ(Run.Session.Status, EFI_SUCCESS);
        const std::vector<CALL_LINE> Return = Run.Named("Return");
        ASSERT_EQ(Return.size(), 2u);
        EXPECT_EQ(Return[0].Number("blocks"), 0u);
        EXPECT_EQ(Return[1].Number("blocks"), 0u);
        EXPECT_EQ(Run.Session.OpenEvents, 0u);
    }
}

} // namespace
