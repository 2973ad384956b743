#include "platform/board/HardwareService.h"

#include "platform/board/FanStore.h"
#include "platform/board/Thermal.h"

namespace {

const SIMULATED_BOARD* gBoard;
UINT64 (*gMicroseconds)();
EFI_BOOT_SERVICES* gServices;

// Before a setting changes, the model catches up under the old one: time that has passed keeps its setting.
VOID CatchUp() { AdvanceThermal(gMicroseconds()); }

EFI_STATUS Initialize(HW_SERVICE_PROTOCOL*)
{
    MarkFanStore();
    return EFI_SUCCESS;
}

UINT8 GetFanKind(HW_SERVICE_PROTOCOL*, UINT8) { return gBoard->FanKind; }

CHAR16* GetItemString(HW_SERVICE_PROTOCOL*, UINT8 ItemId)
{
    const CHAR16* Text = TextOfItem(gBoard, ItemId);
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
    if (!HasItem(gBoard, ItemId)) {
        *Value = 0;
        *Present = 0;
        return EFI_SUCCESS;
    }
    CatchUp();
    *Value = ReadModel(ItemId);
    *Present = 1;
    return EFI_SUCCESS;
}

template <UINT8 FanItem> EFI_STATUS GetSetting(HW_SERVICE_PROTOCOL*, FAN_SETTING* Setting)
{
    if (Setting == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    *Setting = *HeldFanSetting(FanItem);
    return EFI_SUCCESS;
}

template <UINT8 FanItem> EFI_STATUS SetSetting(HW_SERVICE_PROTOCOL*, const FAN_SETTING* Setting)
{
    CatchUp();
    return StoreFanSetting(FanItem, Setting);
}

template <UINT8 FanItem> constexpr FAN_SETTING_ACCESS gAccess = {GetSetting<FanItem>, SetSetting<FanItem>};

EFI_STATUS LoadDefaultFanSettings(HW_SERVICE_PROTOCOL*)
{
    CatchUp();
    LoadFanDefaults();
    return EFI_SUCCESS;
}

EFI_STATUS SetAllFansFullSpeed(HW_SERVICE_PROTOCOL*)
{
    CatchUp();
    HoldFullSpeed();
    return EFI_SUCCESS;
}

EFI_STATUS RestoreFanSettings(HW_SERVICE_PROTOCOL*)
{
    CatchUp();
    RestoreFanStore();
    return EFI_SUCCESS;
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
    .LoadDefaultFanSettings = LoadDefaultFanSettings,
    .SetAllFansFullSpeed = SetAllFansFullSpeed,
    .RestoreFanSettings = RestoreFanSettings,
};

VOID UseHardware(const SIMULATED_BOARD* Board, UINT64 (*Microseconds)(), EFI_BOOT_SERVICES* BootServices)
{
    gBoard = Board;
    gMicroseconds = Microseconds;
    gServices = BootServices;
}
