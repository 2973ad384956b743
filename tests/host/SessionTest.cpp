// Whole sessions with small consoles written for them.
#include <gtest/gtest.h>

#include <functional>

#include "platform/host/HostText.h"
#include "platform/host/Session.h"

namespace {

EFI_SYSTEM_TABLE* gTable;
CURSOR_SERVICE_PROTOCOL* gCursor;
std::function<bool()> gTurn;    // one turn of the console behind its pointer read; false ends it
std::function<VOID()> gAtStart; // before the first turn
EFI_STATUS gReturned;
INT64 gX, gY;
UINT8 gLeft, gRight;

template <typename T> T* Locate(const EFI_GUID& Guid)
{
    VOID* Interface = nullptr;
    (void)gTable->BootServices->LocateProtocol(&Guid, nullptr, &Interface);
    return static_cast<T*>(Interface);
}

// A console in miniature: a timer of 200 ms, a wait, the pointer, a key.
UINTN gIndex;
EFI_INPUT_KEY gKey;
EFI_STATUS RunConsole(EFI_HANDLE, EFI_SYSTEM_TABLE* Table)
{
    gTable = Table;
    gCursor = Locate<CURSOR_SERVICE_PROTOCOL>(gCursorServiceProtocolGuid);
    EFI_EVENT Events[2] = {};
    EFI_BOOT_SERVICES* Services = Table->BootServices;
    (void)Services->CreateEvent(EVT_TIMER, TPL_CALLBACK, nullptr, nullptr, &Events[0]);
    (void)Services->SetTimer(Events[0], TimerPeriodic, 2000000);
    if (gAtStart) {
        gAtStart();
    }
    bool Going = gCursor != nullptr;
    while (Going) {
        (void)Services->WaitForEvent(2, Events, &gIndex);
        INT64 Z;
        (void)gCursor->SetCursorLimits(1024, 768);
        (void)gCursor->GetCursorState(&gX, &gY, &Z, &gLeft, &gRight);
        gKey = {};
        (void)Table->ConIn->ReadKeyStroke(Table->ConIn, &gKey);
        Going = (!gTurn || gTurn()) && gKey.ScanCode != SCAN_ESC;
    }
    (void)Services->CloseEvent(Events[0]);
    return gReturned;
}

struct SessionTest : testing::Test {
    SESSION_OPTIONS Options;
    std::string Seen; // what a console saw, turn by turn

    SessionTest()
    {
        Options.Entry = RunConsole;
        Options.KeepTrace = true;
        gTurn = nullptr;
        gAtStart = nullptr;
        gReturned = EFI_SUCCESS;
    }

    SESSION_RESULT Play(const std::string& Script)
    {
        Options.Script = Script;
        return RunSession(Options);
    }
    VOID NoteTurns()
    {
        gTurn = [this] {
            Seen += std::to_string(gX) + (gLeft != 0 ? "L" : "") + (gRight != 0 ? "R" : "") + (gIndex == 0 ? "T" : "");
            if (gKey.UnicodeChar != 0) {
                Seen += static_cast<char>(gKey.UnicodeChar);
            }
            if (gKey.ScanCode != 0) {
                Seen += "!";
            }
            Seen += " ";
            return true;
        };
    }
};

TEST_F(SessionTest, EachTurnShowsWhatItsCommandsSetAndTheEndFeedsEscape)
{
    NoteTurns();
    const SESSION_RESULT Result = Play("pointer 10 5\n"
                                       "turn 2\n"
                                       "left down\n"
                                       "key f\n"
                                       "turn\n"
                                       "left up\n"
                                       "pointer 20 5\n"
                                       "right down\n"
                                       "turn\n"
                                       "right up\n"
                                       "tick 2\n"
                                       "advance 199999\n"
                                       "turn\n");
    EXPECT_EQ(Seen, "10 10 10Lf 20R 20T 20T 20 20! ");
    EXPECT_EQ(Result.Status, EFI_SUCCESS);
    EXPECT_EQ(Result.Turns, 8u);
    EXPECT_EQ(Result.Error, "");
}

TEST_F(SessionTest, ATurnBeginsWithTheFirstWaitOrPointerReadSinceTheLastPointerRead)
{
    // In the second turn a page opens that reads the pointer alone, three times; each read is a turn.
    int Turn = 0;
    gTurn = [&] {
        Seen += std::to_string(gX) + " ";
        if (++Turn == 2) {
            for (int Read = 0; Read < 3; Read++) {
                INT64 Y, Z;
                UINT8 Left, Right;
                (void)gCursor->GetCursorState(&gX, &Y, &Z, &Left, &Right);
                Seen += "(" + std::to_string(gX) + ") ";
            }
        }
        return true;
    };
    const SESSION_RESULT Result = Play("pointer 1 1\nturn\npointer 2 1\nturn\npointer 3 1\nturn\npointer 4 1\nturn\n"
                                       "pointer 5 1\nturn\npointer 6 1\nturn\n");
    EXPECT_EQ(Seen, "1 2 (3) (4) (5) 6 6 ");
    EXPECT_EQ(Result.Turns, 7u);
}

TEST_F(SessionTest, ABoardKeepsItsSettingsAndAScriptsWordsOverAReset)
{
    gAtStart = [&] {
        HW_SERVICE_PROTOCOL* Service = Locate<HW_SERVICE_PROTOCOL>(gHwServiceProtocolGuid);
        FAN_SETTING Setting;
        EXPECT_EQ(Service->Fan[0].Get(Service, &Setting), EFI_SUCCESS);
        Seen += std::to_string(Setting.Level3);
        UINT64 Value = 0;
        UINT8 Present = 0;
        (void)Service->GetItemValue(Service, 4, &Value, &Present);
        Seen += ":" + std::to_string(Value) + " ";
        Setting.Level3 = 7;
        EXPECT_EQ(Service->Fan[0].Set(Service, &Setting), EFI_SUCCESS);
    };
    (void)Play("setting 4 01 04030201 01020306\nreading 4 4321\nturn\nkey esc\nturn\nreset\nstart\n");
    EXPECT_EQ(Seen, "6:4321 7:4321 ");
}

TEST_F(SessionTest, ASettingThatNoFanMayGetIsComplainedOfEvenWhereTheCallFails)
{
    gAtStart = [&] {
        HW_SERVICE_PROTOCOL* Service = Locate<HW_SERVICE_PROTOCOL>(gHwServiceProtocolGuid);
        FAN_SETTING Setting;
        EXPECT_EQ(Service->Fan[0].Get(Service, &Setting), EFI_SUCCESS);
        for (const UINT8 Level : {Setting.Level3, UINT8{1}, UINT8{1}}) {
            Setting.Level3 = Level; // 1 lies below the level in front of it
            Seen += std::to_string(Service->Fan[0].Set(Service, &Setting) & 0xFF) + " ";
        }
    };
    const SESSION_RESULT Result = Play("turn\nfail SetFan4Setting DEVICE_ERROR 2\nkey esc\nturn\nstart\n");
    EXPECT_EQ(Seen, "0 2 2 7 7 2 ");
    EXPECT_EQ(Result.Complaints.size(), 4u);
}

TEST_F(SessionTest, TheTraceSaysWhatCrossedTheTablesInItsOrder)
{
    static EFI_EVENT Events[2];
    gAtStart = [] {
        EFI_BOOT_SERVICES* Services = gTable->BootServices;
        constexpr EFI_GUID Group = {0x1D1140CD, 0x3B1C, 0x4B04, {0xA3, 0xBE, 0xD8, 0xA9, 0x23, 0xE5, 0x73, 0xB8}};
        const EFI_EVENT_NOTIFY Say = [](EFI_EVENT, VOID*) -> EFI_STATUS {
            return gTable->StdErr->OutputString(gTable->StdErr, u"a \"b\"\r\n");
        };
        (void)Services->CreateEventEx(EVT_NOTIFY_SIGNAL, TPL_NOTIFY, Say, nullptr, &Group, &Events[1]);
        (void)Services->SignalEvent(Events[1]);
        (void)Services->CloseEvent(Events[1]);
        (void)Services->Stall(300000);
        UINT8 Data[3] = {0xDE, 0xAD, 1};
        UINTN Size = 3;
        (void)gTable->RuntimeServices->SetVariable(u"V", &Group, 2, 3, Data);
        (void)gTable->RuntimeServices->GetVariable(u"V", &Group, nullptr, &Size, nullptr);
        EFI_GRAPHICS_OUTPUT_PROTOCOL* Display = Locate<EFI_GRAPHICS_OUTPUT_PROTOCOL>(gEfiGraphicsOutputProtocolGuid);
        EFI_GRAPHICS_OUTPUT_BLT_PIXEL Pixels[12] = {};
        (void)Display->Blt(Display, Pixels, EfiBltVideoToBltBuffer, 5, 6, 1, 0, 3, 2, 24);
    };
    const SESSION_RESULT Result = Play("turn\nkey 0 66\nturn\n");
    const std::vector<std::string> Expected = {
        R"({"us":0,"start":1,"turn":0,"call":"Start","board":"full","seed":1})",
        R"({"us":0,"start":1,"turn":0,"call":"LocateProtocol","status":"0x0000000000000000",)"
        R"("guid":"47BAA4D2-D2B1-4029-B485-CAAF388D9EAA"})",
        R"({"us":0,"start":1,"turn":0,"call":"CreateEvent","status":"0x0000000000000000","event":1,)"
        R"("type":2147483648,"tpl":8})",
        R"({"us":0,"start":1,"turn":0,"call":"SetTimer","status":"0x0000000000000000","event":1,)"
        R"("timer":"periodic","period":2000000})",
        R"({"us":0,"start":1,"turn":0,"call":"CreateEventEx","status":"0x0000000000000000","event":2,"type":512,)"
        R"("tpl":16,"group":"1D1140CD-3B1C-4B04-A3BE-D8A923E573B8"})",
        R"({"us":0,"start":1,"turn":0,"call":"SignalEvent","status":"0x0000000000000000","event":2})",
        R"({"us":0,"start":1,"turn":0,"call":"OutputString","status":"0x0000000000000000","console":"StdErr",)"
        R"("text":"a \"b\"\r\n"})",
        R"({"us":0,"start":1,"turn":0,"call":"CloseEvent","status":"0x0000000000000000","event":2})",
        R"({"us":300000,"start":1,"turn":0,"call":"Stall","status":"0x0000000000000000","asked":300000})",
        R"({"us":300000,"start":1,"turn":0,"call":"SetVariable","status":"0x0000000000000000","name":"V",)"
        R"("guid":"1D1140CD-3B1C-4B04-A3BE-D8A923E573B8","attributes":2,"size":3,"data":"dead01"})",
        R"({"us":300000,"start":1,"turn":0,"call":"GetVariable","status":"0x8000000000000002","name":"V",)"
        R"("guid":"1D1140CD-3B1C-4B04-A3BE-D8A923E573B8","attributes":0,"size":3,"data":null})",
        R"({"us":300000,"start":1,"turn":0,"call":"LocateProtocol","status":"0x0000000000000000",)"
        R"("guid":"9042A9DE-23DC-4A38-96FB-7ADED080516A"})",
        R"({"us":300000,"start":1,"turn":0,"call":"Blt","status":"0x0000000000000000","operation":"to-buffer",)"
        R"("x":5,"y":6,"width":3,"height":2,"delta":24})",
        R"({"us":300000,"start":1,"turn":1,"call":"WaitForEvent","status":"0x0000000000000000","count":2,"index":0})",
        R"({"us":300000,"start":1,"turn":1,"call":"SetCursorLimits","status":"0x0000000000000000","width":1024,)"
        R"("height":768})",
        R"({"us":300000,"start":1,"turn":2,"call":"WaitForEvent","status":"0x8000000000000002","count":2,"index":1})",
        R"({"us":300000,"start":1,"turn":2,"call":"ReadKeyStroke","status":"0x0000000000000000","scan":0,)"
        R"("char":102})",
        R"({"us":300000,"start":1,"turn":3,"call":"WaitForEvent","status":"0x8000000000000002","count":2,"index":1})",
        R"({"us":300000,"start":1,"turn":3,"call":"ReadKeyStroke","status":"0x0000000000000000","scan":23,"char":0})",
        R"({"us":300000,"start":1,"turn":3,"call":"CloseEvent","status":"0x0000000000000000","event":1})",
        R"({"us":300000,"start":1,"turn":3,"call":"Return","status":"0x0000000000000000","blocks":0,"bytes":0})",
    };
    for (size_t At = 0; At < std::max(Expected.size(), Result.Trace.size()); At++) {
        EXPECT_EQ(At < Result.Trace.size() ? Result.Trace[At] : "nothing",
                  At < Expected.size() ? Expected[At] : "nothing");
    }
    EXPECT_EQ(Result.ErrorText, "a \"b\"\n");
}

TEST_F(SessionTest, AnImageIsLoadedFreshForEachStart)
{
    Options.Entry = nullptr;
    Options.ImagePath = HOST_TEST_IMAGE;
    const SESSION_RESULT Result = Play("start\nstart\n");
    EXPECT_EQ(Result.Error, "");
    EXPECT_EQ(Result.Statuses, (std::vector<EFI_STATUS>{EFI_SUCCESS, EFI_SUCCESS, EFI_SUCCESS}));
    ASSERT_EQ(Result.Leaks.size(), 3u);
    EXPECT_NE(Result.Leaks[2].Description.find("5 bytes, from libhost_test_image.so+0x"), std::string::npos)
        << Result.Leaks[2].Description;

    Options.ImagePath = "/no/such/image.so";
    EXPECT_FALSE(Play("").Ran);
}

} // namespace
