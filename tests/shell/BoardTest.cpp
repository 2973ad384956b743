#include "shell/contract/Board.h"

#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

namespace {

constexpr EFI_GUID gSettingsGuid = {0x1D1140CD, 0x3B1C, 0x4B04, {0xA3, 0xBE, 0xD8, 0xA9, 0x23, 0xE5, 0x73, 0xB8}};

using BOARD = TOOLKIT;

TEST_F(BOARD, SettingsOfAnotherSizeAreNotFollowed)
{
    const UINT8 Bytes[32] = {9, 0, 0, 0, 0, 0, 0, 0, 50, 0, 0, 0, 0, 0, 0, 0, 1};
    for (const UINTN Size : {UINTN{8}, UINTN{23}, UINTN{24}, UINTN{32}}) {
        SCOPED_TRACE(Size);
        Again(0);
        gGlobalVariable = {};
        ASSERT_EQ(Boot->Variables.Set(u"GlobalVariable", &gSettingsGuid, 2, Size, Bytes), EFI_SUCCESS);
        LoadSettingsAndCapabilities();
        EXPECT_EQ(gGlobalVariable.SelectedFanItem, Size == 24 ? 9 : 0);
        EXPECT_EQ(gGlobalVariable.TemperatureSource, Size == 24 ? 1u : 0u);
        EXPECT_EQ(Boot->Variables.Find(u"GlobalVariable", gSettingsGuid)->Data.size(), Size) << "nothing was written";
    }
    gGlobalVariable = {};
}

TEST_F(BOARD, APointerServiceServesUnderItsSecondName)
{
    static CURSOR_SERVICE_PROTOCOL Second;
    Second = *Boot->Console.Of<CURSOR_SERVICE_PROTOCOL>().True; // the board's own, behind what the console was given
    EFI_HANDLE Handle = nullptr;
    ASSERT_EQ(Boot->Handles.Install(&Handle, &gCursorServiceProtocol2Guid, &Second), EFI_SUCCESS);
    ReleasePool(gSavedScreen);
    ASSERT_EQ(LocateProtocols(), EFI_SUCCESS);
    EXPECT_EQ(Fields("LocateProtocol", "guid").size(), 11u) << "while the first is there the second isn't looked for";
    Boot->Handles.Hide(gCursorServiceProtocolGuid);
    ReleasePool(gSavedScreen);
    ASSERT_EQ(LocateProtocols(), EFI_SUCCESS);
    EXPECT_EQ(Fields("LocateProtocol", "guid").size(), 12u);
}

} // namespace
