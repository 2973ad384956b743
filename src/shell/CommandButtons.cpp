#include "shell/CommandButtons.h"

#include "controls/Button.h"
#include "fan/FanLegend.h"
#include "gui/core/GUICore.h"
#include "monitor/AllFans.h"
#include "monitor/InformationPages.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"

namespace {

EFI_STATUS ExitButtonAction(EFI_EVENT, VOID*)
{
    gGuiCore->ExitRequested = 1;
    return EFI_SUCCESS;
}

struct COMMAND_BUTTON {
    UINT8 Title;
    UINT32 Image; // artwork section
    UINT32 X;
    UINT32 Y;
    UINT16 TextX;
    UINT16 TextY;
    EFI_EVENT_NOTIFY Action;
    bool RefreshesLegend; // the legend follows the action
};

enum COMMAND : UINTN { ABOUT, HELP, EXIT, FULL_SPEED, DEFAULT, CANCEL, COMMAND_COUNT };

// In the order of creation.
constexpr COMMAND_BUTTON gCommandButtons[COMMAND_COUNT] = {
    // title, section of the picture, place, place of the text in it, action, whether the legend follows
    {STRING_ABOUT, 15, 770, 81, 16, 4, ShowAboutPage, false},
    {STRING_HELP, 16, 851, 81, 16, 4, ShowHelpPage, false},
    {STRING_EXIT, 17, 932, 81, 10, 6, ExitButtonAction, false},
    {STRING_FULL_SPEED, 6, 531, 558, 4, 3, AllFansFullSpeed, true},
    {STRING_DEFAULT, 7, 678, 558, 4, 3, AllFansDefault, true},
    {STRING_CANCEL, 8, 825, 558, 4, 3, AllFansCancel, true},
};

// Painting and teardown go this way, not the way of creation.
constexpr COMMAND gPaintOrder[COMMAND_COUNT] = {ABOUT, HELP, EXIT, CANCEL, DEFAULT, FULL_SPEED};

BTN_COMPONENT* gCommandButton[COMMAND_COUNT] = {};

} // namespace

VOID CreateCommandButtons()
{
    for (UINTN Index = 0; Index < COMMAND_COUNT; Index++) {
        const COMMAND_BUTTON& Fact = gCommandButtons[Index];
        CHAR16* Title = gHwService->GetItemString(gHwService, Fact.Title);
        (void)CreateButton(&gCommandButton[Index], &gArtworkFileGuid, Fact.Image, Title, Fact.X, Fact.Y, Fact.TextX,
                           Fact.TextY);
        FreePool(Title);
        (void)SetButtonCallback(gCommandButton[Index], Fact.Action, BUTTON_SLOT_CLICKED);
        if (Fact.RefreshesLegend) {
            (void)AddButtonListener(gCommandButton[Index], BUTTON_LISTENER_CLICK, RefreshFanLegend);
        }
    }
}

VOID PaintCommandButtons()
{
    for (const COMMAND Which : gPaintOrder) {
        PaintButton(BUTTON_FRAME_REST, gCommandButton[Which]);
    }
}

VOID DestroyCommandButtons()
{
    for (const COMMAND Which : gPaintOrder) {
        DestroyButton(gCommandButton[Which]);
        gCommandButton[Which] = nullptr;
    }
}
