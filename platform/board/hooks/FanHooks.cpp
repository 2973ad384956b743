#include "platform/board/hooks/FanHooks.h"

#include "platform/board/FanStore.h"

EFI_STATUS PutBoardSetting(UINT8 FanItem, const FAN_SETTING* Setting)
{
    if (!IsFanItem(FanItem) || Setting == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    StoreFanSetting(FanItem, Setting);
    gFanStore.Mark[FanItem - gFirstFanItem] = *Setting;
    return EFI_SUCCESS;
}

EFI_STATUS PutBoardDefault(UINT8 FanItem, const FAN_SETTING* Setting)
{
    if (!IsFanItem(FanItem) || Setting == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    gFanStore.Default[FanItem - gFirstFanItem] = *Setting;
    return EFI_SUCCESS;
}

EFI_STATUS ReadBoardSetting(UINT8 FanItem, FAN_SETTING* Setting)
{
    if (!IsFanItem(FanItem) || Setting == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    *Setting = gFanStore.Held[FanItem - gFirstFanItem];
    return EFI_SUCCESS;
}
