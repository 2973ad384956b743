#include "platform/board/chips/ChipBoard.h"

#include "platform/board/chips/ChipBoardState.h"

constinit CHIP_BOARD gChipBoard = {};

namespace {

PLACED_FAN& PageOf(UINT8 Item) { return gChipBoard.Pages[Item - gFirstFanItem]; }

EFI_STATUS ReadItem(BOARD_SOURCE*, UINT8 Item, UINT64* Value)
{
    if (!HasItem(gChipBoard, Item)) {
        return EFI_NOT_FOUND;
    }
    const UINT8 At = gChipBoard.SensorOf[Item];
    RefreshSensor(At);
    if (gChipBoard.Readings[At].Absent) {
        return EFI_DEVICE_ERROR;
    }
    *Value = static_cast<UINT64>(ShownValue(At));
    return EFI_SUCCESS;
}

EFI_STATUS GetFan(BOARD_SOURCE*, UINT8 Item, FAN_SETTING* Setting)
{
    *Setting = {};
    if (!IsFanItem(Item) || !HasItem(gChipBoard, Item)) {
        return EFI_NOT_FOUND;
    }
    PLACED_FAN& Fan = PageOf(Item);
    *Setting = GetChipFan(Fan.Chip, Fan.Control);
    Fan.Page.WasRead(Fan.Control, *Setting, gChipBoard.TakenBack);
    return EFI_SUCCESS;
}

EFI_STATUS SetFan(BOARD_SOURCE*, UINT8 Item, const FAN_SETTING* Setting)
{
    if (!IsFanItem(Item) || !HasItem(gChipBoard, Item)) {
        return EFI_NOT_FOUND;
    }
    PLACED_FAN& Fan = PageOf(Item);
    if (Fan.Page.Shows(Fan.Control, *Setting)) {
        return EFI_SUCCESS;
    }
    if (!gChipBoard.SetFans) {
        return EFI_WRITE_PROTECTED;
    }
    if (Fan.Chip.Means.WhyNot != nullptr || !SetChipFan(&Fan.Chip, Fan.Control, *Setting)) {
        return EFI_DEVICE_ERROR;
    }
    Fan.Page.WasSent(Fan.Control, *Setting);
    return EFI_SUCCESS;
}

template <bool (*Command)(CHIP_FAN*)> EFI_STATUS CommandAll()
{
    if (!gChipBoard.SetFans) {
        return EFI_WRITE_PROTECTED;
    }
    bool Good = true;
    for (UINT8 Item = gFirstFanItem; IsFanItem(Item); Item++) {
        if (HasItem(gChipBoard, Item) && PageOf(Item).Chip.Means.WhyNot == nullptr) {
            Good = Command(&PageOf(Item).Chip) && Good;
        }
    }
    return Good ? EFI_SUCCESS : EFI_DEVICE_ERROR;
}

EFI_STATUS SetFullSpeed(BOARD_SOURCE*)
{
    const EFI_STATUS Status = CommandAll<SetChipFanToFullSpeed>();
    for (PLACED_FAN& Fan : gChipBoard.Pages) {
        if (Status != EFI_WRITE_PROTECTED) {
            Fan.Page.ShowFullSpeed(Fan.Control);
        }
    }
    return Status;
}

EFI_STATUS GiveBack(BOARD_SOURCE*)
{
    gChipBoard.TakenBack = true;
    return CommandAll<GiveChipFanBack>();
}

} // namespace

BOARD_SOURCE* OpenChipBoard(PORTS* Ports, const CHIP_BOARD_OPTIONS* Options, CHIP_REPORT* Report)
{
    UINT8* Bytes = reinterpret_cast<UINT8*>(&gChipBoard);
    for (UINTN Index = 0; Index < sizeof(gChipBoard); Index++) {
        Bytes[Index] = 0;
    }
    gChipBoard.FanKind = 1;
    gChipBoard.Ports = Ports;
    gChipBoard.SetFans = Options->SetFans;
    gChipBoard.Wishes = Options->Wishes;
    Report->Count = 0;
    Report->SettableFans = 0;

    FindChips(Report);
    ListSensors();
    FulfilWishes(Report);
    PlaceSensors();
    gChipBoard.Wishes = nullptr;
    ReportFindings(Report);
    for (UINT8 Item = gFirstFanItem; IsFanItem(Item); Item++) {
        Report->SettableFans += HasItem(gChipBoard, Item) && PageOf(Item).Chip.Means.WhyNot == nullptr ? 1 : 0;
    }

    gChipBoard.NameOf = [](BOARD_SOURCE*, UINT8 Item) -> const CHAR16* {
        return HasItem(gChipBoard, Item) ? gChipBoard.Sensors.Rows[gChipBoard.SensorOf[Item]].Label : nullptr;
    };
    gChipBoard.Read = ReadItem;
    gChipBoard.GetFan = GetFan;
    gChipBoard.SetFan = SetFan;
    gChipBoard.LoadDefaults = gChipBoard.Restore = GiveBack; // a board's defaults aren't in the chip
    gChipBoard.SetFullSpeed = SetFullSpeed;
    gChipBoard.Begin = [](BOARD_SOURCE*) { gChipBoard.TakenBack = false; };
    gChipBoard.Advance = [](BOARD_SOURCE*, UINT64 Microseconds) {
        gChipBoard.Now = Microseconds > gChipBoard.Now ? Microseconds : gChipBoard.Now;
    };
    if (gChipBoard.Present == 0) {
        CloseChipBoard();
        return nullptr;
    }
    return &gChipBoard;
}

VOID AllowChipFans(bool SetFans)
{
    for (UINT8 Item = gFirstFanItem; IsFanItem(Item); Item++) {
        if (SetFans && !gChipBoard.SetFans && HasItem(gChipBoard, Item)) {
            KeepChipFan(&PageOf(Item).Chip);
        }
    }
    gChipBoard.SetFans = SetFans;
}

VOID CloseChipBoard()
{
    for (UINT8 Index = 0; Index < gChipBoard.ChipCount; Index++) {
        gChipBoard.Chips[Index].Driver->Close(gChipBoard.Chips[Index]);
    }
    gChipBoard.ChipCount = 0;
    gChipBoard.Present = 0;
    gChipBoard.SetFans = false;
}
