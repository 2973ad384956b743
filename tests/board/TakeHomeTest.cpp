// What F12 leaves on a volume: a picture that is the screen's pixel by pixel, a report, and nothing else touched.
#include "platform/board/TakeHome.h"

#include <filesystem>
#include <fstream>
#include <iterator>

// The reading of pictures is another library's than the writing, which is our own.
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wsign-compare"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

#include "platform/board/ConsoleDisplay.h"
#include "platform/board/FanContract.h"
#include "platform/board/MachineReport.h"
#include "platform/host/Session.h"
#include "tests/gui/ToolkitBench.h"
#include "tests/host/TestFolder.h"
#include "uefi/Devices.h"
#include "uefi/FileSystem.h"

namespace {

std::string ReadFile(const std::string& Path)
{
    std::ifstream File(Path, std::ios::binary);
    return {std::istreambuf_iterator<char>(File), std::istreambuf_iterator<char>()};
}

TEST(TakeHome, APictureAndAReportGoIntoTheFolderAndNoFileThereIsTouched)
{
    TestFolder Folder;
    std::ofstream(Folder.File("ventara-001.txt")) << "mine";
    std::ofstream(Folder.File("ventara-002.png")) << "mine, too";
    std::filesystem::create_symlink("nowhere", Folder.File("ventara-003.txt"));
    SESSION_OPTIONS Options;
    Options.Script =
        "turn\ntick 20\npointer 640 300\nturn 3\nhand picture\nscreenshot shown\nturn\nhand picture 2\nturn 2\n";
    Options.Folder = Folder.File("");
    Options.ImagePath = VENTARA_CONSOLE_IMAGE;
    const SESSION_RESULT Result = RunSession(Options);
    EXPECT_EQ(Result.TakenHome, "ventara-004.png and ventara-004.txt were written.\n"
                                "ventara-005.png and ventara-005.txt were written.\n"
                                "ventara-006.png and ventara-006.txt were written.\n");
    EXPECT_TRUE(Result.Complaints.empty());
    EXPECT_EQ(ReadFile(Folder.File("ventara-001.txt")) + ReadFile(Folder.File("ventara-002.png")), "minemine, too");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(Folder.File("")), {}), 9);

    int Width = 0;
    int Height = 0;
    UINT8* Pixels = stbi_load(Folder.File("ventara-004.png").c_str(), &Width, &Height, nullptr, 3);
    ASSERT_NE(Pixels, nullptr) << stbi_failure_reason();
    ASSERT_EQ(std::pair(Width, Height), std::pair(1024, 768));
    const PICTURE& Shown = Result.Pictures.at("shown");
    UINTN Different = 0;
    for (UINTN At = 0; At < Shown.size(); At++) {
        const UINT8* Pixel = Pixels + 3 * At;
        const UINT32 Word = UINT32{Pixel[0]} << 16 | UINT32{Pixel[1]} << 8 | Pixel[2];
        Different += (Shown[At] & 0xFFFFFF) != Word ? 1 : 0;
    }
    EXPECT_EQ(Different, 0u);
    std::free(Pixels);

    const std::string Report = ReadFile(Folder.File("ventara-004.txt"));
    for (const char* Said :
         {"Ventara 0.9.0", "Ventara hosted firmware, revision 1, UEFI 2.7", "1024 by 768, blue first",
          "4 CPU 1: ", " rpm, curve on, 40 C 25 %, 55 C 50 %, 70 C 75 %, 85 C 100 %, record 010a0704",
          "10  Pump: ", "17 DRAM: ", "yes  font\n", "no   simple pointer\n"}) {
        EXPECT_NE(Report.find(Said), Report.npos) << Said << " isn't in\n" << Report;
    }
}

// A volume that refuses, of which only what is asked for is counted.
struct REFUSING {
    EFI_SIMPLE_FILE_SYSTEM_PROTOCOL FileSystem;
    EFI_FILE_PROTOCOL File; // every file, and the root
    UINTN Room;             // bytes that can still be written
    EFI_STATUS OnCreate, OnOpen, OnDelete;
    int Taken; // looks at a file that are answered with OnOpen
    int Created, Deleted, Opened;
    EFI_HANDLE Plugged; // what is found where the volume was
    bool AtEnd;         // of the path, and not on the way
};
REFUSING gVolume;
std::string gTold;
constexpr const char* gBoth = "ventara-001.png and ventara-001.txt were written.";
constexpr const char* gFailing = "Nothing was written: the volume can't be written. It may be failing.";
constexpr const char* gGone = "Nothing was written: the volume that Ventara was started from is gone.";

TEST_F(HOSTED, AVolumeThatIsFullOrReadOnlyIsToldAndKeepsNoHalfFile)
{
    gVolume.FileSystem = {1, [](auto*, EFI_FILE_PROTOCOL** Root) {
                              gVolume.Opened++;
                              *Root = &gVolume.File;
                              return EFI_SUCCESS;
                          }};
    gVolume.File.Open = [](auto*, EFI_FILE_PROTOCOL** File, auto*, UINT64 Mode, UINT64) -> EFI_STATUS {
        const bool Creates = (Mode & EFI_FILE_MODE_CREATE) != 0;
        const EFI_STATUS Status = Creates ? gVolume.OnCreate : gVolume.Taken-- > 0 ? gVolume.OnOpen : EFI_NOT_FOUND;
        if (EfiError(Status)) {
            return Status;
        }
        gVolume.Created += Creates ? 1 : 0;
        gVolume.Opened++;
        *File = &gVolume.File;
        return EFI_SUCCESS;
    };
    gVolume.File.Close = [](auto*) { return gVolume.Opened--, EFI_SUCCESS; };
    gVolume.File.Delete = [](auto*) { return gVolume.Opened--, gVolume.Deleted++, gVolume.OnDelete; };
    gVolume.File.Flush = [](auto*) -> EFI_STATUS { return EFI_SUCCESS; };
    gVolume.File.Write = [](auto*, UINTN* Size, auto*) -> EFI_STATUS {
        if (*Size > gVolume.Room) {
            *Size = gVolume.Room;
            return EFI_VOLUME_FULL;
        }
        return EFI_SUCCESS;
    };
    EFI_HANDLE Handle = nullptr;
    ASSERT_EQ(Boot->Handles.Install(&Handle, &gEfiSimpleFileSystemProtocolGuid, &gVolume.FileSystem), EFI_SUCCESS);
    // The handle that the stick had when it was there first, and another stick has now.
    EFI_HANDLE Pulled = nullptr;
    EFI_SIMPLE_FILE_SYSTEM_PROTOCOL Other = {1, [](auto...) { return ADD_FAILURE() << "another's", EFI_ABORTED; }};
    EFI_DEVICE_PATH_PROTOCOL Path[] = {{HARDWARE_DEVICE_PATH, 1, {4, 0}}, {END_DEVICE_PATH_TYPE, 255, {4, 0}}};
    (void)Boot->Handles.Install(&Pulled, &gEfiSimpleFileSystemProtocolGuid, &Other);
    (void)Boot->Handles.Install(&Pulled, &gEfiDevicePathProtocolGuid, Path);
    Boot->FirmwareTable.BootServices->LocateDevicePath = [](auto*, auto** Rest, EFI_HANDLE* Found) {
        *Found = gVolume.Plugged;
        *Rest += gVolume.AtEnd && (*Rest)->Type == HARDWARE_DEVICE_PATH ? 1 : 0;
        return *Found == nullptr ? EFI_NOT_FOUND : EFI_SUCCESS;
    };
    struct {
        const char* Told;
        EFI_HANDLE Volume;
        UINTN Room = 0;
        int Created = 0, Deleted = 0;
        EFI_STATUS OnCreate = EFI_SUCCESS, OnOpen = EFI_SUCCESS;
        int Taken = 0;
        EFI_HANDLE Plugged = nullptr;
        bool AtEnd = false;
        EFI_STATUS OnDelete = EFI_SUCCESS;
    } const Cases[] = {
        {gBoth, Handle, 5000000, 2, 0},
        {"Only ventara-001.txt was written, no picture: the volume is full.", Handle, 5000, 2, 1},
        {"Nothing was written: the volume is full.", Handle, 0, 2, 2},
        {"Nothing was written: the volume is read-only.", Handle, 0, 0, 0, EFI_WRITE_PROTECTED},
        {gFailing, Handle, 0, 0, 0, EFI_DEVICE_ERROR},
        {gFailing, Handle, 0, 0, 0, EFI_UNSUPPORTED},
        {gGone, Handle, 0, 0, 0, EFI_NO_MEDIA},
        {gGone, Boot->FirmwareTable.ConsoleInHandle},
        {gGone, nullptr},
        {"ventara-002.png and ventara-002.txt were written.", Handle, 5000000, 2, 0, 0, EFI_ACCESS_DENIED, 1},
        {"Nothing was written: the volume is read-only.", Handle, 0, 0, 0, 0, EFI_ACCESS_DENIED, 2000},
        {"Nothing was written: all numbers up to 999 are used. Move Ventara's files elsewhere.", Handle, 0, 0, 0, 0,
         EFI_SUCCESS, 2000},
        {gBoth, Pulled, 5000000, 2, 0, 0, 0, 0, Handle, true},
        {gGone, Pulled, 0, 0, 0, 0, 0, 0, Pulled, false},
        {gGone, Pulled},
        {"Only ventara-001.txt was written, no picture: the volume is full. A part of ventara-001.png stayed.", Handle,
         5000, 2, 1, 0, 0, 0, nullptr, false, 2}, // EFI_WARN_DELETE_FAILURE
    };
    BOARD_SOURCE Board = {};
    for (const auto& Case : Cases) {
        gVolume.Room = Case.Room;
        gVolume.OnCreate = Case.OnCreate;
        gVolume.OnOpen = Case.OnOpen;
        gVolume.OnDelete = Case.OnDelete;
        gVolume.Taken = Case.Taken;
        gVolume.Created = gVolume.Deleted = gVolume.Opened = 0;
        gVolume.Plugged = Case.Plugged;
        gVolume.AtEnd = Case.AtEnd;
        Path->Type = HARDWARE_DEVICE_PATH;
        const TAKE_HOME Home = {Case.Volume, nullptr, [](const CHAR16* Words) {
                                    gTold.assign(Words, Words + std::char_traits<CHAR16>::length(Words));
                                }};
        UseTakeHome(&Boot->FirmwareTable, &Board, nullptr, &Home);
        Path->Type = 0; // it went with the stick
        TakeHome();
        EXPECT_EQ(gTold, Case.Told);
        EXPECT_EQ(gVolume.Created, Case.Created) << Case.Told;
        EXPECT_EQ(gVolume.Deleted, Case.Deleted) << Case.Told;
        EXPECT_EQ(gVolume.Opened, 0) << Case.Told << " and a file is left open";
    }
    UseTakeHome(nullptr, nullptr, nullptr, nullptr);
}

TEST_F(HOSTED, AReportTellsReadingsOfNowFiguresWholeAndNoLayerThatIsntThere)
{
    static UINT64 Time;
    BOARD_SOURCE Board = {};
    Board.Present = 1 << gFirstFanItem;
    Board.NameOf = [](auto...) { return u"Fan"; };
    Board.Advance = [](auto*, UINT64 Now) { Time = Now; };
    Board.Read = [](auto*, UINT8, UINT64* Value) { return *Value = Time, EFI_SUCCESS; };
    Board.GetFan = [](auto*, UINT8, FAN_SETTING* Setting) {
        return PutCurve(Setting, {{{1, 1}, {2, 3}, {3, 5}, {4, 7}}}), EFI_SUCCESS;
    };
    Boot->FirmwareTable.Hdr.Revision = 0x0002001F; // 2.31
    CONSOLE_DISPLAY Record = {};                   // as it is where the starter brings its font alone
    Record.Graphics = &Boot->Protocols.GraphicsOutput;
    EFI_HANDLE Handle = nullptr;
    (void)Boot->Handles.Install(&Handle, &gConsoleDisplayGuid, &Record);
    CHAR8 Text[4096];
    REPORT_TEXT Report = {.Text = Text, .Size = sizeof(Text), .Length = 0};
    WriteMachineReport(
        &Report, &Boot->FirmwareTable, &Board, [] { return UINT64{1234}; }, nullptr);
    const std::string Told(Text, Report.Length);
    EXPECT_EQ(Told.find("by a layer"), Told.npos) << Told;
    for (const char* Said : {"UEFI 2.3.1\n", "no   layer over the display\n", "4 Fan: 1234 rpm",
                             "40 C 12.5 %, 45 C 37.5 %, 50 C 62.5 %, 55 C 87.5 %"}) {
        EXPECT_NE(Told.find(Said), Told.npos) << Said << " isn't in\n" << Told;
    }
}

} // namespace
