// The smallest hardware service that the console runs on: one temperature, one fan, one voltage.
//
// A boot-service driver whose entry point is InstallMinimalService. A board's own service differs in CONTROLLER and the
// functions around it: there it talks to a chip, here it keeps a record and works out a speed.
#include "shell/Services.h"
#include "uefi/SystemTable.h"

namespace {

constexpr UINT8 gTemperature = 0; // items that this board has
constexpr UINT8 gFan = 4;
constexpr UINT8 gVoltage = 11;

// 40, 55, 70 and 85 degrees at levels 2, 4, 6 and 8 of 8.
constexpr FAN_SETTING gDefault = {
    .CurveEnabled = 1, .Column3 = 10, .Column2 = 7, .Column1 = 4, .Column0 = 1,
    .Level0 = 2, .Level1 = 4, .Level2 = 6, .Level3 = 8, .Reserved9 = 0, .FixedLevel = 0, .Reserved12 = {},
};

// Stands for the chip that runs the fan. It goes on by its last setting when the console has left.
struct CONTROLLER {
    FAN_SETTING Setting;
    FAN_SETTING AtStart; // what Cancel goes back to
    bool FullSpeed;
};
CONTROLLER gController = {gDefault, gDefault, false};
EFI_BOOT_SERVICES* gServices;

UINT64 ReadSpeed() { return gController.FullSpeed ? 2400 : 300 * UINT64{gController.Setting.Level1}; }

EFI_STATUS Hold(const FAN_SETTING& Setting)
{
    gController.Setting = Setting;
    gController.FullSpeed = false;
    return EFI_SUCCESS;
}

EFI_STATUS Initialize(HW_SERVICE_PROTOCOL*)
{
    gController.AtStart = gController.Setting;
    return EFI_SUCCESS;
}

UINT8 GetFanKind(HW_SERVICE_PROTOCOL*, UINT8) { return 1; }

// The console gives the text back with FreePool, so every answer is a block of its own.
CHAR16* GetItemString(HW_SERVICE_PROTOCOL*, UINT8 ItemId)
{
    constexpr UINTN Size = 16; // characters, the end mark included
    struct ITEM_TEXT {
        UINT8 Item;
        CHAR16 Text[Size];
    };
    static constexpr ITEM_TEXT Texts[] = {
        {gTemperature, u"CPU"},          {gFan, u"CPU Fan"},          {gVoltage, u"CPU Core"},
        {STRING_GAUGE_CAPTION, u"Volts"}, {STRING_PANEL_TITLE, u"Fan"}, {STRING_FULL_SPEED, u"Full speed"},
        {STRING_DEFAULT, u"Default"},    {STRING_CANCEL, u"Cancel"},  {STRING_ABOUT, u"About"},
        {STRING_HELP, u"Help"},          {STRING_EXIT, u"Exit"},
    };
    for (const ITEM_TEXT& Entry : Texts) {
        VOID* Copy = nullptr;
        if (Entry.Item == ItemId &&
            !EfiError(gServices->AllocatePool(EfiBootServicesData, sizeof(Entry.Text), &Copy))) {
            gServices->CopyMem(Copy, const_cast<CHAR16*>(Entry.Text), sizeof(Entry.Text));
            return static_cast<CHAR16*>(Copy);
        }
    }
    return nullptr;
}

EFI_STATUS GetItemValue(HW_SERVICE_PROTOCOL*, UINT8 ItemId, UINT64* Value, UINT8* Present)
{
    *Present = ItemId == gTemperature || ItemId == gFan || ItemId == gVoltage;
    *Value = ItemId == gTemperature ? 48 : ItemId == gFan ? ReadSpeed() : ItemId == gVoltage ? 1200 : 0;
    return EFI_SUCCESS;
}

EFI_STATUS GetSetting(HW_SERVICE_PROTOCOL*, FAN_SETTING* Setting)
{
    *Setting = gController.Setting;
    return EFI_SUCCESS;
}

EFI_STATUS SetSetting(HW_SERVICE_PROTOCOL*, const FAN_SETTING* Setting) { return Hold(*Setting); }

// Fans 5 to 8 are read by Default and Cancel even where they don't exist, so that no slot may be null.
EFI_STATUS GetNoSetting(HW_SERVICE_PROTOCOL*, FAN_SETTING* Setting)
{
    *Setting = {};
    return EFI_NOT_FOUND;
}
EFI_STATUS SetNoSetting(HW_SERVICE_PROTOCOL*, const FAN_SETTING*) { return EFI_NOT_FOUND; }
constexpr FAN_SETTING_ACCESS gNoFan = {GetNoSetting, SetNoSetting};

EFI_STATUS LoadDefaultFanSettings(HW_SERVICE_PROTOCOL*) { return Hold(gDefault); }
EFI_STATUS RestoreFanSettings(HW_SERVICE_PROTOCOL*) { return Hold(gController.AtStart); }
EFI_STATUS SetAllFansFullSpeed(HW_SERVICE_PROTOCOL*)
{
    gController.FullSpeed = true;
    return EFI_SUCCESS;
}

HW_SERVICE_PROTOCOL gService = {
    .Initialize = Initialize, .GetFanKind = GetFanKind, .GetItemString = GetItemString, .GetItemValue = GetItemValue,
    .Unused4 = nullptr, .Fan = {{GetSetting, SetSetting}, gNoFan, gNoFan, gNoFan, gNoFan, gNoFan, gNoFan},
    .Unused19 = nullptr, .LoadDefaultFanSettings = LoadDefaultFanSettings,
    .SetAllFansFullSpeed = SetAllFansFullSpeed, .RestoreFanSettings = RestoreFanSettings,
};

} // namespace

extern "C" EFI_STATUS InstallMinimalService(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable)
{
    gServices = SystemTable->BootServices;
    return gServices->InstallProtocolInterface(&ImageHandle, &gHwServiceProtocolGuid, EFI_NATIVE_INTERFACE, &gService);
}
