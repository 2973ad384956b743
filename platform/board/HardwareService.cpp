#include "platform/board/HardwareService.h"

#include "platform/board/BoardServices.h"
#include "platform/board/FanContract.h"
#include "platform/board/TabStops.h"

namespace {

BOARD_SOURCE* gBoard;
UINT64 (*gMicroseconds)();
VOID (*gRefused)(UINT8 FanItem, const CHAR8* Fault);
EFI_BOOT_SERVICES* gServices;
UINT64 gFaults;
const CHAR8* gLastFault;

// Texts of the console where the board has none of its own. The blanks in front centre a title in its button.
constexpr struct {
    ITEM_STRING Item;
    const CHAR16* Text;
} gTexts[] = {
    {STRING_GAUGE_CAPTION, u"Voltages"},
    {STRING_FULL_SPEED, u"   Full Speed"},
    {STRING_DEFAULT, u"     Default"},
    {STRING_CANCEL, u"     Cancel"},
    {STRING_ABOUT, u"About"},
    {STRING_HELP, u"Help"},
    {STRING_EXIT, u"Exit"},
    {STRING_PANEL_TITLE, u"Fan Control"},
    {STRING_HELP_TEXT, u"You can set CPU or System target temperature \nand set Fan duty cycle."},
    {STRING_HELP_ESCAPE, u"ESC    : Exit"},
    {STRING_HELP_FULL_SPEED, u"(F)key : All full speed."},
    {STRING_HELP_DEFAULT, u"(D)key : All set default."},
    {STRING_HELP_CANCEL, u"(C)key : All set cancel."},
    {STRING_OK, u"OK"},
    {STRING_ABOUT_MAKER, u"Ventara Fan Console by Kestrin"},
    {STRING_ABOUT_RIGHTS, u"            All rights reserved"},
    {STRING_ABOUT_ADDRESS, u"            www.kestrin.example"},
};

const CHAR16* TextOfItem(UINT8 Item)
{
    if (Item < STRING_GAUGE_CAPTION) {
        return HasItem(*gBoard, Item) ? gBoard->NameOf(gBoard, Item) : nullptr;
    }
    if (const CHAR16* Text = gBoard->NameOf(gBoard, Item)) {
        return Text;
    }
    for (const auto& Entry : gTexts) {
        if (Entry.Item == Item) {
            return Entry.Text;
        }
    }
    return nullptr;
}

VOID CatchUp()
{
    if (gBoard->Advance != nullptr) {
        gBoard->Advance(gBoard, gMicroseconds());
    }
}

EFI_STATUS Initialize(HW_SERVICE_PROTOCOL*)
{
    if (gBoard->Begin != nullptr) {
        gBoard->Begin(gBoard);
    }
    NoteConsoleStart();
    return EFI_SUCCESS;
}

UINT8 GetFanKind(HW_SERVICE_PROTOCOL*, UINT8) { return gBoard->FanKind; }

CHAR16* GetItemString(HW_SERVICE_PROTOCOL*, UINT8 ItemId)
{
    const CHAR16* Text = TextOfItem(ItemId);
    if (Text == nullptr) {
        return nullptr;
    }
    UINTN Count = 1;
    while (Text[Count - 1] != 0) {
        Count++;
    }
    VOID* Buffer = nullptr;
    if (EfiError(gServices->AllocatePool(EfiBootServicesData, Count * sizeof(CHAR16), &Buffer))) {
        return nullptr;
    }
    CHAR16* Copy = static_cast<CHAR16*>(Buffer);
    for (UINTN Index = 0; Index < Count; Index++) {
        Copy[Index] = Text[Index];
    }
    return Copy;
}

EFI_STATUS GetItemValue(HW_SERVICE_PROTOCOL*, UINT8 ItemId, UINT64* Value, UINT8* Present)
{
    if (Value == nullptr || Present == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    if (!HasItem(*gBoard, ItemId)) {
        *Value = 0;
        *Present = 0;
        return EFI_SUCCESS;
    }
    CatchUp();
    *Present = 1;
    return gBoard->Read(gBoard, ItemId, Value);
}

template <UINT8 FanItem> EFI_STATUS GetSetting(HW_SERVICE_PROTOCOL*, FAN_SETTING* Setting)
{
    if (Setting == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    const EFI_STATUS Status = gBoard->GetFan(gBoard, FanItem, Setting);
    if (!EfiError(Status)) {
        NoteFanRead(FanItem, ControlOfFan(gBoard->FanKind, FanItem), *Setting);
    }
    return Status;
}

template <UINT8 FanItem> EFI_STATUS SetSetting(HW_SERVICE_PROTOCOL*, const FAN_SETTING* Setting)
{
    CatchUp();
    if (const CHAR8* Fault = FaultOfFanSetting(FanItem, Setting)) {
        gFaults++;
        gLastFault = Fault;
        if (gRefused != nullptr) {
            gRefused(FanItem, Fault);
        }
        return EFI_INVALID_PARAMETER;
    }
    NoteFanSent(FanItem, *Setting);
    return gBoard->SetFan(gBoard, FanItem, Setting);
}

template <UINT8 FanItem> constexpr FAN_SETTING_ACCESS gAccess = {GetSetting<FanItem>, SetSetting<FanItem>};

template <auto Command> EFI_STATUS CommandAllFans(HW_SERVICE_PROTOCOL*)
{
    CatchUp();
    return (gBoard->*Command)(gBoard);
}

} // namespace

HW_SERVICE_PROTOCOL gBoardHardware = {
    .Initialize = Initialize,
    .GetFanKind = GetFanKind,
    .GetItemString = GetItemString,
    .GetItemValue = GetItemValue,
    .Unused4 = nullptr,
    .Fan = {gAccess<4>, gAccess<5>, gAccess<6>, gAccess<7>, gAccess<8>, gAccess<9>, gAccess<10>},
    .Unused19 = nullptr,
    .LoadDefaultFanSettings = CommandAllFans<&BOARD_SOURCE::LoadDefaults>,
    .SetAllFansFullSpeed =
        [](HW_SERVICE_PROTOCOL* This) {
            NoteFullSpeed();
            return CommandAllFans<&BOARD_SOURCE::SetFullSpeed>(This);
        },
    .RestoreFanSettings = CommandAllFans<&BOARD_SOURCE::Restore>,
};

VOID UseHardware(BOARD_SOURCE* Board, UINT64 (*Microseconds)(), VOID (*Refused)(UINT8 FanItem, const CHAR8* Fault),
                 EFI_BOOT_SERVICES* BootServices)
{
    gBoard = Board;
    gMicroseconds = Microseconds;
    gRefused = Refused;
    gServices = BootServices;
    gFaults = 0;
    gLastFault = nullptr;
}

const CHAR8* FaultOfFanSetting(UINT8 FanItem, const FAN_SETTING* Setting)
{
    if (Setting == nullptr) {
        return "no record";
    }
    if (!IsFanItem(FanItem) || !HasItem(*gBoard, FanItem)) {
        return "a fan that isn't on this board";
    }
    return CheckFanSetting(ControlOfFan(gBoard->FanKind, FanItem), Setting);
}

UINT64 BoardContractFaults() { return gFaults; }

const CHAR8* LastBoardContractFault() { return gLastFault; }
