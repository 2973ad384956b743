#include "platform/board/TakeHome.h"

#include "platform/board/ConsoleDisplay.h"
#include "platform/board/MachineReport.h"
#include "platform/board/StoredPng.h"
#include "shell/contract/Screen.h"
#include "uefi/Devices.h"
#include "uefi/FileSystem.h"

namespace {

constexpr UINTN gMostNumber = 999;
constexpr UINTN gReportSize = 65536; // some twelve hundred modes of a display
constexpr UINTN gNumberAt = 8;       // of a name
constexpr UINTN gEndingAt = 12;

// What no volume answers, and has a sentence of its own; error codes that the UEFI specification leaves to a maker.
constexpr EFI_STATUS gVolumeGone = gEfiErrorBit | 0x4000000000000001;
constexpr EFI_STATUS gNoPicture = gEfiErrorBit | 0x4000000000000002;
constexpr EFI_STATUS gNoNumber = gEfiErrorBit | 0x4000000000000003;

// Pool that is given back at the end.
template <typename T> struct POOL_ROOM {
    T* Data = nullptr;
    explicit POOL_ROOM(UINTN Count);
    POOL_ROOM(const POOL_ROOM&) = delete;
    POOL_ROOM& operator=(const POOL_ROOM&) = delete;
    ~POOL_ROOM();
};

EFI_SYSTEM_TABLE* gTable;
BOARD_SOURCE* gBoard;
UINT64 (*gMicroseconds)();
TAKE_HOME gHome;
EFI_DEVICE_PATH_PROTOCOL* gVolumePath; // our copy, in pool; null: the volume has none
CHAR16 gWords[160];                    // of what became of it

template <typename T> POOL_ROOM<T>::POOL_ROOM(UINTN Count)
{
    VOID* Block = nullptr;
    if (!EfiError(gTable->BootServices->AllocatePool(EfiBootServicesData, Count * sizeof(T), &Block))) {
        Data = static_cast<T*>(Block);
    }
}

template <typename T> POOL_ROOM<T>::~POOL_ROOM()
{
    if (Data != nullptr) {
        (void)gTable->BootServices->FreePool(Data);
    }
}

struct FILE_NAME {
    CHAR16 Text[16] = u"ventara-000.png";
    bool Stayed = false; // a part of it, that couldn't be taken away

    VOID SetNumber(UINTN Number)
    {
        for (UINTN Digit = 3; Digit-- != 0; Number /= 10) {
            Text[gNumberAt + Digit] = static_cast<CHAR16>(u'0' + Number % 10);
        }
    }
    VOID SetEnding(const CHAR16 (&Ending)[4])
    {
        for (UINTN Index = 0; Index < 4; Index++) {
            Text[gEndingAt + Index] = Ending[Index];
        }
    }
};

// EFI_NOT_FOUND for a file that isn't there.
EFI_STATUS LookFor(EFI_FILE_PROTOCOL* Root, const FILE_NAME& Name)
{
    EFI_FILE_PROTOCOL* File = nullptr;
    const EFI_STATUS Status = Root->Open(Root, &File, Name.Text, EFI_FILE_MODE_READ, 0);
    if (!EfiError(Status)) {
        (void)File->Close(File);
    }
    return Status;
}

// The next number that neither file has. A file that may not be opened is there.
EFI_STATUS FindName(EFI_FILE_PROTOCOL* Root, FILE_NAME* Name)
{
    EFI_STATUS Status = EFI_SUCCESS;
    for (UINTN Number = 1; Number <= gMostNumber; Number++) {
        Name->SetNumber(Number);
        Name->SetEnding(u"txt");
        Status = LookFor(Root, *Name);
        Name->SetEnding(u"png");
        if (Status == EFI_NOT_FOUND) {
            Status = LookFor(Root, *Name);
        }
        if (Status == EFI_NOT_FOUND) {
            return EFI_SUCCESS;
        }
        if (EfiError(Status) && Status != EFI_ACCESS_DENIED) {
            return Status;
        }
    }
    return EfiError(Status) ? Status : gNoNumber; // nothing may be opened at all
}

// All of it, or no file.
EFI_STATUS WriteFile(EFI_FILE_PROTOCOL* Root, FILE_NAME& Name, const VOID* Bytes, UINTN Size)
{
    EFI_FILE_PROTOCOL* File = nullptr;
    EFI_STATUS Status =
        Root->Open(Root, &File, Name.Text, EFI_FILE_MODE_READ | EFI_FILE_MODE_WRITE | EFI_FILE_MODE_CREATE, 0);
    if (EfiError(Status)) {
        return Status;
    }
    UINTN Written = Size;
    Status = File->Write(File, &Written, Bytes);
    if (!EfiError(Status) && Written == Size) {
        Status = File->Flush(File);
    } else if (!EfiError(Status)) {
        Status = EFI_VOLUME_FULL;
    }
    // Deleting closes it, too, and where it fails the answer is a warning.
    if (EfiError(Status)) {
        Name.Stayed = File->Delete(File) != EFI_SUCCESS;
    } else {
        Status = File->Close(File);
        Name.Stayed = EfiError(Status);
    }
    return Status;
}

EFI_STATUS WritePicture(EFI_FILE_PROTOCOL* Root, FILE_NAME& Name)
{
    EFI_BOOT_SERVICES* Boot = gTable->BootServices;
    VOID* Interface = nullptr;
    EFI_GRAPHICS_OUTPUT_PROTOCOL* Display = nullptr;
    if (!EfiError(Boot->LocateProtocol(&gConsoleDisplayGuid, nullptr, &Interface))) {
        Display = static_cast<CONSOLE_DISPLAY*>(Interface)->Graphics;
    } else if (!EfiError(Boot->LocateProtocol(&gEfiGraphicsOutputProtocolGuid, nullptr, &Interface))) {
        Display = static_cast<EFI_GRAPHICS_OUTPUT_PROTOCOL*>(Interface);
    } else {
        return gNoPicture;
    }
    const UINTN Size = StoredPngSize(gScreenWidth, gScreenHeight);
    const POOL_ROOM<EFI_GRAPHICS_OUTPUT_BLT_PIXEL> Pixels(UINTN{gScreenWidth} * gScreenHeight);
    const POOL_ROOM<UINT8> File(Size);
    if (Pixels.Data == nullptr || File.Data == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    const EFI_STATUS Status =
        Display->Blt(Display, Pixels.Data, EfiBltVideoToBltBuffer, 0, 0, 0, 0, gScreenWidth, gScreenHeight, 0);
    if (EfiError(Status)) {
        return gNoPicture;
    }
    BuildStoredPng(File.Data, Pixels.Data, gScreenWidth, gScreenHeight);
    return WriteFile(Root, Name, File.Data, Size);
}

EFI_STATUS WriteReport(EFI_FILE_PROTOCOL* Root, FILE_NAME& Name)
{
    const POOL_ROOM<CHAR8> Room(gReportSize);
    if (Room.Data == nullptr) {
        return EFI_OUT_OF_RESOURCES;
    }
    REPORT_TEXT Report = {.Text = Room.Data, .Size = gReportSize, .Length = 0};
    WriteMachineReport(&Report, gTable, gBoard, gMicroseconds, gHome.Describe);
    return WriteFile(Root, Name, Report.Text, Report.Length);
}

VOID CopyVolumePath()
{
    VOID* Path = nullptr;
    VOID* Copy = nullptr;
    EFI_BOOT_SERVICES* Boot = gTable->BootServices;
    if (EfiError(Boot->HandleProtocol(gHome.Volume, &gEfiDevicePathProtocolGuid, &Path))) {
        return;
    }
    constexpr EFI_DEVICE_PATH_PROTOCOL End = {
        END_DEVICE_PATH_TYPE, END_ENTIRE_DEVICE_PATH_SUBTYPE, {sizeof(EFI_DEVICE_PATH_PROTOCOL), 0}};
    const UINTN Nodes = NodesLength(static_cast<EFI_DEVICE_PATH_PROTOCOL*>(Path));
    if (EfiError(Boot->AllocatePool(EfiBootServicesData, Nodes + sizeof(End), &Copy))) {
        gHome.Volume = nullptr; // by its handle alone it wouldn't be known again
        return;
    }
    gVolumePath = static_cast<EFI_DEVICE_PATH_PROTOCOL*>(Copy);
    Boot->CopyMem(Copy, Path, Nodes);
    Boot->CopyMem(static_cast<UINT8*>(Copy) + Nodes, &End, sizeof(End));
}

// By its path: a stick that was pulled and plugged again has another handle, and its old one may be another stick's.
// A volume without a path isn't one that can be pulled. Null for none.
EFI_HANDLE FindVolume()
{
    if (gVolumePath == nullptr) {
        return gHome.Volume;
    }
    EFI_BOOT_SERVICES* Boot = gTable->BootServices;
    EFI_HANDLE Volume = nullptr;
    EFI_DEVICE_PATH_PROTOCOL* Rest = gVolumePath;
    // The firmware may know a stick that was plugged again and have no driver on it: then the partition is missing.
    if (!EfiError(Boot->LocateDevicePath(&gEfiDevicePathProtocolGuid, &Rest, &Volume)) &&
        Rest->Type == MEDIA_DEVICE_PATH) {
        (void)Boot->ConnectController(Volume, nullptr, nullptr, 1);
    }
    Rest = gVolumePath;
    const EFI_STATUS Status = Boot->LocateDevicePath(&gEfiSimpleFileSystemProtocolGuid, &Rest, &Volume);
    return !EfiError(Status) && Rest->Type == END_DEVICE_PATH_TYPE ? Volume : nullptr;
}

EFI_STATUS OpenRoot(EFI_FILE_PROTOCOL** Root)
{
    VOID* Interface = nullptr;
    EFI_HANDLE Volume = FindVolume();
    if (Volume == nullptr ||
        EfiError(gTable->BootServices->HandleProtocol(Volume, &gEfiSimpleFileSystemProtocolGuid, &Interface))) {
        return gVolumeGone;
    }
    auto* FileSystem = static_cast<EFI_SIMPLE_FILE_SYSTEM_PROTOCOL*>(Interface);
    return FileSystem->OpenVolume(FileSystem, Root);
}

const CHAR16* ReasonOf(EFI_STATUS Status)
{
    switch (Status) {
    case EFI_WRITE_PROTECTED:
    case EFI_ACCESS_DENIED:
        return u"the volume is read-only.";
    case EFI_VOLUME_FULL:
        return u"the volume is full.";
    case EFI_OUT_OF_RESOURCES:
        return u"there is not enough memory.";
    case gVolumeGone:
    case EFI_NO_MEDIA:
    case EFI_MEDIA_CHANGED:
        return u"the volume that Ventara was started from is gone.";
    case gNoPicture:
        return u"this display doesn't give its picture.";
    case gNoNumber:
        return u"all numbers up to 999 are used. Move Ventara's files elsewhere.";
    default:
        return u"the volume can't be written. It may be failing.";
    }
}

// Adds to gWords.
VOID Say(const CHAR16* A, const CHAR16* B, const CHAR16* C = u"", const CHAR16* D = u"")
{
    const CHAR16* const Pieces[] = {A, B, C, D};
    UINTN Length = 0;
    while (gWords[Length] != 0) {
        Length++;
    }
    for (const CHAR16* Piece : Pieces) {
        for (; *Piece != 0 && Length + 1 < sizeof(gWords) / sizeof(CHAR16); Piece++) {
            gWords[Length++] = *Piece;
        }
    }
    gWords[Length] = 0;
}

} // namespace

VOID UseTakeHome(EFI_SYSTEM_TABLE* SystemTable, BOARD_SOURCE* Board, UINT64 (*Microseconds)(), const TAKE_HOME* Home)
{
    if (gVolumePath != nullptr) {
        (void)gTable->BootServices->FreePool(gVolumePath);
        gVolumePath = nullptr;
    }
    gTable = SystemTable;
    gBoard = Board;
    gMicroseconds = Microseconds;
    gHome = Home != nullptr ? *Home : TAKE_HOME{};
    if (gHome.Volume != nullptr) {
        CopyVolumePath();
    }
}

VOID TakeHome()
{
    if (gHome.Told == nullptr) {
        return;
    }
    FILE_NAME Names[2];
    FILE_NAME& Picture = Names[0];
    FILE_NAME& Report = Names[1];
    EFI_FILE_PROTOCOL* Root = nullptr;
    EFI_STATUS Status = OpenRoot(&Root);
    EFI_STATUS OfPicture = Status;
    EFI_STATUS OfReport = Status;
    if (!EfiError(Status)) {
        OfPicture = FindName(Root, &Picture);
        OfReport = OfPicture;
        if (!EfiError(OfPicture)) {
            Report = Picture;
            Report.SetEnding(u"txt");
            OfPicture = WritePicture(Root, Picture);
            OfReport = WriteReport(Root, Report);
        }
        (void)Root->Close(Root);
    }
    gWords[0] = 0;
    if (!EfiError(OfPicture) && !EfiError(OfReport)) {
        Say(Picture.Text, u" and ", Report.Text, u" were written.");
    } else if (!EfiError(OfPicture)) {
        Say(u"Only ", Picture.Text, u" was written, no report: ", ReasonOf(OfReport));
    } else if (!EfiError(OfReport)) {
        Say(u"Only ", Report.Text, u" was written, no picture: ", ReasonOf(OfPicture));
    } else {
        Say(u"Nothing was written: ", ReasonOf(OfPicture));
    }
    for (const FILE_NAME& Name : Names) {
        if (Name.Stayed) {
            Say(u" A part of ", Name.Text, u" stayed.");
        }
    }
    gHome.Told(gWords);
}
