#include "platform/firmware/pointer/HidReport.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/firmware/MachineStandIns.h"

namespace {

using BYTES = std::vector<UINT8>;

// A mouse: three buttons, five bits of padding, two ways of 8 bits.
const BYTES gMouse = {0x05, 0x01, 0x09, 0x02, 0xA1, 0x01, 0x09, 0x01, 0xA1, 0x00, 0x05, 0x09, 0x19,
                      0x01, 0x29, 0x03, 0x15, 0x00, 0x25, 0x01, 0x95, 0x03, 0x75, 0x01, 0x81, 0x02,
                      0x95, 0x01, 0x75, 0x05, 0x81, 0x01, 0x05, 0x01, 0x09, 0x30, 0x09, 0x31, 0x15,
                      0x81, 0x25, 0x7F, 0x75, 0x08, 0x95, 0x02, 0x81, 0x06, 0xC0, 0xC0};

// A receiver: a keyboard under id 1, then a mouse under id 2 with two ways of 12 bits, then volume keys under id 3.
const BYTES gReceiver = {0x05, 0x01, 0x09, 0x06, 0xA1, 0x01, 0x85, 0x01, 0x05, 0x07, 0x19, 0xE0, 0x29, 0xE7,
                         0x15, 0x00, 0x25, 0x01, 0x75, 0x01, 0x95, 0x08, 0x81, 0x02, 0xC0, 0x05, 0x01, 0x09,
                         0x02, 0xA1, 0x01, 0x85, 0x02, 0x09, 0x01, 0xA1, 0x00, 0x05, 0x09, 0x19, 0x01, 0x29,
                         0x10, 0x15, 0x00, 0x25, 0x01, 0x95, 0x10, 0x75, 0x01, 0x81, 0x02, 0x05, 0x01, 0x16,
                         0x01, 0xF8, 0x26, 0xFF, 0x07, 0x75, 0x0C, 0x95, 0x02, 0x09, 0x30, 0x09, 0x31, 0x81,
                         0x06, 0xC0, 0xC0, 0x05, 0x0C, 0x09, 0x01, 0xA1, 0x01, 0x85, 0x03, 0x19, 0x00, 0x29,
                         0xFF, 0x15, 0x00, 0x26, 0xFF, 0x00, 0x75, 0x08, 0x95, 0x01, 0x81, 0x00, 0xC0};

const BYTES gKeyboard = {0x05, 0x01, 0x09, 0x06, 0xA1, 0x01, 0x05, 0x07, 0x19, 0xE0, 0x29, 0xE7,
                         0x15, 0x00, 0x25, 0x01, 0x75, 0x01, 0x95, 0x08, 0x81, 0x02, 0xC0};

// A touch screen under id 7: a finger's tip, padding, its number, and two places of 16 bits from 0 to 4095; and another's.
const BYTES gFinger = {0x05, 0x0D, 0x09, 0x22, 0xA1, 0x02, 0x09, 0x42, 0x15, 0x00, 0x25, 0x01, 0x75, 0x01, 0x95, 0x01,
                       0x81, 0x02, 0x95, 0x07, 0x81, 0x03, 0x09, 0x51, 0x75, 0x08, 0x95, 0x01, 0x81, 0x02, 0x05, 0x01,
                       0x09, 0x30, 0x26, 0xFF, 0x0F, 0x75, 0x10, 0x81, 0x02, 0x09, 0x31, 0x81, 0x02, 0xC0};
BYTES TouchScreen()
{
    BYTES Screen = {0x05, 0x0D, 0x09, 0x04, 0xA1, 0x01, 0x85, 0x07};
    for (int Finger = 0; Finger < 2; Finger++) {
        Screen.insert(Screen.end(), gFinger.begin(), gFinger.end());
    }
    Screen.push_back(0xC0);
    return Screen;
}

bool Decode(const BYTES& Descriptor, const BYTES& Report, POINTER_CHANGE* Change)
{
    HID_LAYOUT Layout = {};
    return ParseHidDescriptor(Descriptor.data(), Descriptor.size(), &Layout) &&
           DecodeHidReport(&Layout, Report.data(), Report.size(), Change);
}

TEST(HidReport, AMouseReportsWaysWithTheirSigns)
{
    POINTER_CHANGE Change = {};
    ASSERT_TRUE(Decode(gMouse, {0x02, 0xFB, 0x7F}, &Change));
    EXPECT_FALSE(Change.Absolute);
    EXPECT_EQ(Change.X, -5);
    EXPECT_EQ(Change.Y, 127);
    EXPECT_EQ(Change.Left, 0);
    EXPECT_EQ(Change.Right, 1);
}

TEST(HidReport, ATabletReportsItsPlaceAsAShareOfTheScreen)
{
    POINTER_CHANGE Change = {};
    ASSERT_TRUE(Decode(gTablet, {0x01, 0x00, 0x00, 0xFF, 0x7F}, &Change));
    EXPECT_TRUE(Change.Absolute);
    EXPECT_EQ(Change.X, 0);
    EXPECT_EQ(Change.Y, gFullScale);
    EXPECT_EQ(Change.Left, 1);
    ASSERT_TRUE(Decode(gTablet, {0x00, 0x00, 0x40, 0xFF, 0xFF}, &Change));
    EXPECT_NEAR(static_cast<double>(Change.X), static_cast<double>(gFullScale) / 2, 2);
    EXPECT_EQ(Change.Y, gFullScale) << "a place outside the range is at its edge";
    EXPECT_EQ(Change.Left, 0);
}

TEST(HidReport, ATouchScreenReportsItsFirstFingerUnlessItIsAMouseAsWell)
{
    POINTER_CHANGE Change = {};
    BYTES Screen = TouchScreen();
    ASSERT_TRUE(
        Decode(Screen, {0x07, 0x01, 0x05, 0xFF, 0x0F, 0x00, 0x00, 0x00, 0x06, 0x99, 0x09, 0x99, 0x09}, &Change));
    EXPECT_TRUE(Change.Absolute);
    EXPECT_EQ((std::pair{Change.X, Change.Y}), (std::pair{gFullScale, INT64{0}}));
    EXPECT_EQ(Change.Left, 1);
    Screen.insert(Screen.end(), gReceiver.begin(), gReceiver.end());
    EXPECT_TRUE(Decode(Screen, {0x02, 0x01, 0x00, 0xFF, 0x0F, 0x10}, &Change));
    EXPECT_EQ(Change.X, -1);
}

TEST(HidReport, AReceiverOfSeveralDevicesGivesItsMouseReportsAlone)
{
    POINTER_CHANGE Change = {};
    // 16 buttons, then X = -1 and Y = 256 in 12 bits each.
    ASSERT_TRUE(Decode(gReceiver, {0x02, 0x01, 0x00, 0xFF, 0x0F, 0x10}, &Change));
    EXPECT_EQ(Change.X, -1);
    EXPECT_EQ(Change.Y, 256);
    EXPECT_EQ(Change.Left, 1);
    EXPECT_FALSE(Decode(gReceiver, {0x01, 0x01, 0x00, 0xFF, 0x0F, 0x10}, &Change)) << "keyboard";
    EXPECT_FALSE(Decode(gReceiver, {0x02, 0x01, 0x00}, &Change)) << "cut off";
    EXPECT_FALSE(Decode(gReceiver, {}, &Change)) << "empty";
}

TEST(HidReport, ButtonsOfAnotherReportArentReadFromTheOneWithTheAxes)
{
    const BYTES Descriptor = {0x05, 0x01, 0x09, 0x02, 0xA1, 0x01, 0x85, 0x02, 0x09, 0x30, 0x09, 0x31, 0x15, 0x81,
                              0x25, 0x7F, 0x75, 0x08, 0x95, 0x02, 0x81, 0x06, 0x85, 0x03, 0x05, 0x09, 0x19, 0x01,
                              0x29, 0x02, 0x15, 0x00, 0x25, 0x01, 0x75, 0x01, 0x95, 0x02, 0x81, 0x02, 0xC0};
    POINTER_CHANGE Change = {};
    ASSERT_TRUE(Decode(Descriptor, {0x02, 0x03, 0x03}, &Change));
    EXPECT_EQ(Change.X, 3);
    EXPECT_EQ(Change.Left + Change.Right, 0);
}

TEST(HidReport, AKeyboardIsNoPointer)
{
    HID_LAYOUT Layout = {};
    EXPECT_FALSE(ParseHidDescriptor(gKeyboard.data(), gKeyboard.size(), &Layout));
    EXPECT_FALSE(ParseHidDescriptor(nullptr, 0, &Layout));
}

TEST(HidReport, TheBootReportIsThatOfAThreeByteMouse)
{
    const BYTES Report = {0x01, 0x0A, 0xF6};
    POINTER_CHANGE Change = {};
    ASSERT_TRUE(DecodeHidReport(&gBootMouseLayout, Report.data(), Report.size(), &Change));
    EXPECT_EQ(Change.X, 10);
    EXPECT_EQ(Change.Y, -10);
    EXPECT_EQ(Change.Left, 1);
}

// A device may send anything. Whatever it describes, reading a report stays inside the report (the sanitizer sees it).
TEST(HidReport, ADamagedDescriptorLeadsToNoReadOutsideTheReport)
{
    std::mt19937 Random(1);
    UINTN Parsed = 0;
    for (int Round = 0; Round < 20000; Round++) {
        BYTES Descriptor = Round % 2 == 0 ? gTablet : gReceiver;
        for (int Changes = 0; Changes < 1 + Round % 4; Changes++) {
            Descriptor[Random() % Descriptor.size()] = static_cast<UINT8>(Random());
        }
        HID_LAYOUT Layout = {};
        if (!ParseHidDescriptor(Descriptor.data(), Descriptor.size(), &Layout)) {
            continue;
        }
        Parsed++;
        for (UINTN Size = 0; Size <= 8; Size++) {
            BYTES Report(Size, 0xA5);
            POINTER_CHANGE Change = {};
            if (DecodeHidReport(&Layout, Report.data(), Report.size(), &Change) && Change.Absolute) {
                EXPECT_GE(Change.X, 0);
                EXPECT_LE(Change.X, gFullScale);
            }
        }
    }
    EXPECT_GT(Parsed, 1000u);
}

}
