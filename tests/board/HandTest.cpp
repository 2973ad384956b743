// The keys that take the mouse's place, stroke by stroke: where the pointer goes and what the button does in each read.
#include "platform/board/Hand.h"

#include <gtest/gtest.h>

namespace {

struct Hand : testing::Test {
    POINTER_SOURCE Source = {nullptr, nullptr, nullptr, [](POINTER_SOURCE*, INT64 X, INT64 Y) { gMouse = {X, Y, 0}; }};
    UINT64 Now = 1000000;
    static inline HAND_POINTER gMouse;

    Hand()
    {
        gMouse = {500, 400, 0};
        ResetHand();
        (void)Read();
    }

    HAND_POINTER Read()
    {
        HAND_POINTER Pointer = gMouse;
        MoveHand(&Pointer, &Source, 1024, 768, Now);
        return Pointer;
    }
    // The button in each of so many reads.
    std::string Buttons(int Reads)
    {
        std::string Buttons;
        for (int At = 0; At < Reads; At++) {
            Buttons += Read().Left != 0 ? '1' : '0';
        }
        return Buttons;
    }
};

TEST_F(Hand, ArrowsGoFasterInARowAndFinerWithShift)
{
    INT64 X = 500;
    for (const INT64 Step : {10, 10, 10, 10, 30, 30}) {
        PressHand(HAND_RIGHT);
        Now += 100000;
        EXPECT_EQ(Read().X, X += Step);
    }
    PressHand(HAND_RIGHT_FINE);
    EXPECT_EQ(Read().X, X += 1);
    PressHand(HAND_RIGHT);
    EXPECT_EQ(Read().X, X += 10) << "another key ends the row";
    Now += 150000;
    for (int Stroke = 0; Stroke < 5; Stroke++) {
        PressHand(HAND_UP);
    }
    EXPECT_EQ(Read().Y, 400 - 4 * 10 - 30);
    for (int Stroke = 0; Stroke < 100; Stroke++) {
        PressHand(HAND_LEFT);
    }
    EXPECT_EQ(Read().X, 0);
    EXPECT_EQ(gMouse.X, 0) << "a mouse goes on from there";
}

TEST_F(Hand, ASpaceIsAPressOfOneReadAndAReleaseOfTwo)
{
    PressHand(HAND_CLICK);
    PressHand(HAND_CLICK);
    PressHand(HAND_RIGHT);
    EXPECT_EQ(Buttons(6), "100100");
    EXPECT_EQ(gMouse.X, 500) << "the console has yet to look at what was clicked";
    EXPECT_EQ(Read().X, 510);
}

TEST_F(Hand, AHoldIsLongerThanAClickAndEndsWhereItWasSeen)
{
    PressHand(HAND_GRAB);
    PressHand(HAND_DOWN);
    PressHand(HAND_GRAB);
    EXPECT_EQ(Buttons(2), "11");
    EXPECT_EQ(gMouse.Y, 400) << "what is taken in hand is taken where the pointer was";
    Now += 199999;
    EXPECT_EQ(Buttons(3), "111");
    EXPECT_EQ(gMouse.Y, 410);
    Now += 1;
    PressHand(HAND_CLICK);
    EXPECT_EQ(Buttons(5), "00100");
}

TEST_F(Hand, AHeldKeyTakesHoldOnceAndFastStrokesBetweenOthersAllCount)
{
    const auto Strike = [&](HAND_KEY Key, UINT64 Pause) {
        StrikeHand(Key, Now += Pause);
        return Buttons(3);
    };
    EXPECT_EQ(Strike(HAND_GRAB, 0), "111");
    EXPECT_EQ(Strike(HAND_GRAB, 500000), "111");
    for (int Repeat = 0; Repeat < 60; Repeat++) {
        EXPECT_EQ(Strike(HAND_GRAB, 33000), "111");
    }
    (void)Strike(HAND_UP, 100000);
    EXPECT_EQ(Strike(HAND_GRAB, 100000), "000");
    EXPECT_EQ(Strike(HAND_GRAB, 600000), "111") << "a press of its own";
}

TEST_F(Hand, TheMouseTakesThePointerAndItsButtonEndsTheHold)
{
    PressHand(HAND_GRAB);
    (void)Read();
    gMouse = {700, 300, 0};
    EXPECT_EQ(Read().X, 700);
    EXPECT_EQ(Read().Left, 1);
    gMouse.Left = 1;
    EXPECT_EQ(Read().Left, 1);
    gMouse.Left = 0;
    EXPECT_EQ(Read().Left, 0);
    PressHand(HAND_LEFT);
    EXPECT_EQ(Read().X, 690);
}

TEST_F(Hand, WhatWasTypedBeforeTheConsoleCameIsDropped)
{
    ResetHand();
    PressHand(HAND_CLICK);
    EXPECT_EQ(Buttons(3), "000");
}

} // namespace
