// A hosted boot on which functions of the console and of the board are called directly.
//
//     TEST_F(TOOLKIT, ...) { (void)DrawString(300, 300, u"12", DRAW_STRING_BOX, ...); EXPECT_EQ(Blts().size(), 1u); }
//
// HOSTED has the board's services installed and the library's tables set, as at the console's entry. With TOOLKIT the
// services are located too, gGuiCore stands, and nothing is drawn yet: Screen and Background are filled with one colour
// each. Pool that is still held when the test ends, and complaints of the firmware, fail it.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "graphics/GraphicProtocol.h"
#include "graphics/Palette.h"
#include "gui/core/GUICore.h"
#include "platform/host/Boot.h"

struct BLT_CALL {
    UINT64 X, Y, Width, Height, Delta;
    bool operator==(const BLT_CALL&) const = default;
};
std::ostream& operator<<(std::ostream& Out, const BLT_CALL& Call);

constexpr PIXEL gScreenFill = {0x11, 0x22, 0x33, 0};     // #332211
constexpr PIXEL gBackgroundFill = {0x44, 0x55, 0x66, 0}; // #665544

struct HOSTED : testing::Test {
    std::unique_ptr<BOOT> Boot;

    explicit HOSTED(const BOOT_OPTIONS& Options = {}) { SwitchOn(Options); }
    ~HOSTED() override { SwitchOff(); }

    // Another boot in place of this one.
    VOID Reboot(const BOOT_OPTIONS& Options)
    {
        SwitchOff();
        SwitchOn(Options);
    }

    // Blocks sent to the display since the last call of this, in their order.
    std::vector<BLT_CALL> Blts();
    // Trace lines of a call since the last call of this or of Blts, one field each.
    std::vector<std::string> Fields(const std::string& Call, const std::string& Field);

    // The next allocation fails, and it alone: what reports it still has pool.
    VOID FailNextAllocation()
    {
        Boot->Pool.BeginStart(1);
        Boot->Pool.FailOnly = 1;
    }

    PIXEL* Display() { return Boot->Display.Pixels; }

private:
    VOID SwitchOn(BOOT_OPTIONS Options);
    VOID SwitchOff();
};

struct TOOLKIT : HOSTED {
    TOOLKIT() { MakeCore(); }
    ~TOOLKIT() override { DestroyCore(); }

    // Another boot, of another firmware generation.
    VOID Again(UINT8 Generation)
    {
        DestroyCore();
        Reboot({.Generation = Generation});
        MakeCore();
    }

private:
    VOID MakeCore();
    VOID DestroyCore();
};

// A pixel of a 1024-wide surface as 0xRRGGBB.
UINT32 ColorAt(const PIXEL* Surface, UINTN X, UINTN Y);
UINT32 ColorOf(PIXEL Pixel);
