#include "platform/firmware/pointer/Ps2Mouse.h"

#include <gtest/gtest.h>

#include <deque>
#include <utility>

namespace {

// A keyboard controller with a mouse at its auxiliary port.
struct CONTROLLER {
    struct BYTE {
        UINT8 Value;
        bool FromMouse;
    };
    std::deque<BYTE> Output;
    bool Fitted = true;
    bool MouseHere = true;
    bool Reporting = false;
    bool NextIsForMouse = false;
    bool WantsArgument = false; // of the command before
    UINT8 Buttons = 0;
    UINTN Questions = 0;
    UINTN KeyboardBytesRead = 0;

    void Send(std::initializer_list<UINT8> Bytes)
    {
        for (UINT8 Byte : Bytes) {
            Output.push_back({Byte, true});
        }
    }
    // A packet as the mouse sends it by itself.
    void Move(int X, int Y)
    {
        if (Reporting) {
            SendPacket(X, Y);
        }
    }
    void SendPacket(int X, int Y)
    {
        auto Head = static_cast<UINT8>(0x08 | Buttons | (X < 0 ? 0x10 : 0) | (Y < 0 ? 0x20 : 0));
        Send({Head, static_cast<UINT8>(X & 0xFF), static_cast<UINT8>(Y & 0xFF)});
    }
    void Press(UINT8 NewButtons)
    {
        Buttons = NewButtons;
        Move(0, 0);
    }
    void Command(UINT8 Byte)
    {
        if (!MouseHere) {
            return;
        }
        Send({0xFA});
        if (std::exchange(WantsArgument, false)) {
            return;
        }
        switch (Byte) {
        case 0xE8:
            WantsArgument = true;
            break;
        case 0xEB:
            Questions++;
            SendPacket(0, 0);
            break;
        case 0xF4:
            Reporting = true;
            break;
        case 0xF5:
        case 0xF6:
            Reporting = false;
            break;
        default:
            ADD_FAILURE() << "unknown command " << int{Byte};
        }
    }
};

CONTROLLER* gController;

UINT8 ReadTestPort(UINT16 Port)
{
    if (!gController->Fitted) {
        return 0xFF;
    }
    if (Port == 0x64) {
        return gController->Output.empty() ? 0x14 : gController->Output.front().FromMouse ? 0x35 : 0x15;
    }
    if (gController->Output.empty()) {
        return 0;
    }
    CONTROLLER::BYTE Byte = gController->Output.front();
    gController->Output.pop_front();
    gController->KeyboardBytesRead += Byte.FromMouse ? 0 : 1;
    return Byte.Value;
}

VOID WriteTestPort(UINT16 Port, UINT8 Value)
{
    if (Port == 0x64) {
        gController->NextIsForMouse = Value == 0xD4;
    } else if (gController->NextIsForMouse) {
        gController->NextIsForMouse = false;
        gController->Command(Value);
    }
}

class Ps2Mouse : public testing::Test {
protected:
    void SetUp() override
    {
        gController = &Controller;
        const PS2_PORTS Ports = {.Read = ReadTestPort, .Write = WriteTestPort};
        InitializePs2Mouse(&Mouse, &Ports);
    }
    // Lets time go by with a poll every 5 milliseconds, and adds up what the polls report.
    void Run(UINT64 Milliseconds)
    {
        for (UINT64 Step = 0; Step < Milliseconds; Step += 5) {
            Poll();
            Now += 5000;
        }
    }
    bool Poll()
    {
        POINTER_CHANGE Change = {};
        bool Reported = PollPs2Mouse(&Mouse, Now, &Change);
        if (Reported) {
            X += Change.X;
            Y += Change.Y;
            Left = Change.Left;
            Right = Change.Right;
        }
        return Reported;
    }
    void StartAndSetUp()
    {
        StartPs2Mouse(&Mouse, Now);
        Run(100);
        ASSERT_TRUE(Controller.Reporting);
    }

    CONTROLLER Controller;
    PS2_MOUSE Mouse = {};
    UINT64 Now = 1000000;
    INT64 X = 0;
    INT64 Y = 0;
    UINT8 Left = 0;
    UINT8 Right = 0;
};

TEST_F(Ps2Mouse, WaysGoRightAndDownAndButtonsFollowEvenWhereAWayOverflowed)
{
    StartAndSetUp();
    Controller.Move(20, -7); // the mouse counts upwards
    Controller.Move(-250, 255);
    Poll();
    EXPECT_EQ(X, -230);
    EXPECT_EQ(Y, -248);
    Controller.Press(2);
    Poll();
    EXPECT_EQ(Right, 1);
    EXPECT_EQ(Left, 0);
    Controller.Send({0x49, 0xFF, 0x00});
    Poll();
    EXPECT_EQ(X, -230);
    EXPECT_EQ(Left, 1);
}

TEST_F(Ps2Mouse, APressAndItsReleaseAreSeenByTwoPolls)
{
    StartAndSetUp();
    Controller.Press(1);
    Controller.Press(0);
    Controller.Move(3, 0);
    Poll();
    EXPECT_EQ(Left, 1);
    Poll();
    EXPECT_EQ(Left, 0);
    Poll();
    EXPECT_EQ(X, 3);
}

TEST_F(Ps2Mouse, BytesOfTheKeyboardAreLeftForItsDriver)
{
    StartAndSetUp();
    Controller.Output.push_back({0x1C, false});
    Controller.Move(5, 0);
    Run(500);
    EXPECT_EQ(Controller.KeyboardBytesRead, 0u);
    EXPECT_EQ(X, 0) << "the mouse's bytes stand behind the keyboard's";
    Controller.Output.pop_front(); // its driver comes
    Run(10);
    EXPECT_EQ(X, 5);
}

// Each row loses bytes of a press or of its release; no way may be left with the button down that isn't.
TEST_F(Ps2Mouse, NoLossOfBytesLeavesAButtonPressed)
{
    for (int Lost = 0; Lost < 6; Lost++) {
        SetUp();
        Controller = {};
        StartAndSetUp();
        Controller.Press(1);
        Run(50);
        ASSERT_EQ(Left, 1);
        Controller.Move(8, 0);
        Controller.Press(0);
        Controller.Output.erase(Controller.Output.begin() + Lost);
        Run(1000);
        EXPECT_EQ(Left, 0) << "byte " << Lost << " was lost";
        Controller.Move(4, 4);
        INT64 Before = X;
        Run(100);
        EXPECT_EQ(X - Before, 4) << "in step again after the loss of byte " << Lost;
    }
}

// A mouse that doesn't rest gives no pause from which the next packet's start could be told.
TEST_F(Ps2Mouse, AByteLostInAStreamWithoutPausesPressesNothing)
{
    for (int Lost = 0; Lost < 3; Lost++) {
        SetUp();
        Controller = {};
        StartAndSetUp();
        for (int Step = 0; Step < 60; Step++) {
            Controller.Move(3, 0);
            if (Step == 20) {
                Controller.Output.erase(Controller.Output.begin() + Lost);
            }
            Run(5);
            ASSERT_EQ(Left + Right, 0) << "step " << Step << ", byte " << Lost << " was lost";
        }
        INT64 Before = X;
        Controller.Move(3, 0);
        Run(100);
        EXPECT_EQ(X - Before, 3);
    }
}

TEST_F(Ps2Mouse, AReleaseThatIsLostAsAWholeIsAskedFor)
{
    StartAndSetUp();
    Controller.Press(1);
    Run(50);
    Controller.Buttons = 0; // and no packet of it arrives
    Run(600);
    EXPECT_EQ(Left, 0);
    EXPECT_GE(Controller.Questions, 1u);
}

TEST_F(Ps2Mouse, AButtonThatIsHeldStaysDownThroughTheQuestions)
{
    StartAndSetUp();
    Controller.Press(1);
    Poll();
    for (int Step = 0; Step < 400; Step++) {
        Run(5);
        ASSERT_EQ(Left, 1) << "after " << Step * 5 << " ms";
    }
    EXPECT_GE(Controller.Questions, 3u);
}

TEST_F(Ps2Mouse, AMouseThatComesLateIsFoundAndPulledOutHasNoButtonDownAndIsFoundAgain)
{
    Controller.MouseHere = false;
    StartPs2Mouse(&Mouse, Now);
    Run(3000);
    Controller.MouseHere = true;
    Run(2000);
    ASSERT_TRUE(Controller.Reporting);
    Controller.Press(1);
    Run(50);
    Controller.MouseHere = false;
    Controller.Reporting = false;
    Run(3000);
    EXPECT_EQ(Left, 0);
    Controller.MouseHere = true;
    Controller.Buttons = 0;
    Controller.Send({0xAA, 0x00}); // says that it is there
    Run(2000);
    EXPECT_TRUE(Controller.Reporting);
    Controller.Move(9, 0);
    Run(10);
    EXPECT_EQ(X, 9);
}

TEST_F(Ps2Mouse, AMouseThatWasPulledOutAndPutBackBetweenTwoPollsIsSetUpAgain)
{
    StartAndSetUp();
    Controller.Press(1);
    Run(20);
    Controller.Reporting = false;
    Controller.Buttons = 0;
    Controller.Send({0xAA, 0x00});
    Run(200);
    EXPECT_TRUE(Controller.Reporting);
    EXPECT_EQ(Left, 0);
}

TEST_F(Ps2Mouse, AMachineWithoutAControllerIsLeftAlone)
{
    Controller.Fitted = false;
    StartPs2Mouse(&Mouse, Now);
    Run(3000);
    EXPECT_EQ(X, 0);
    EXPECT_FALSE(Controller.Reporting);
    StopPs2Mouse(&Mouse, Now);
    Run(300);
    EXPECT_EQ(Mouse.State, PS2_STOPPED);
}

// The keyboard stands still while a byte of the mouse waits that nobody takes.
TEST_F(Ps2Mouse, AStopLeavesNothingOfTheMouseInTheControllerAndAnotherStartIsPossible)
{
    for (UINT64 After : {0u, 5u, 10u, 15u, 20u, 100u}) {
        SetUp();
        Controller = {};
        StartPs2Mouse(&Mouse, Now);
        Run(After);
        Poll();
        Controller.Move(1, 1);
        // A key is let go at the same time, and its byte stands before the mouse's until its driver comes.
        Controller.Output.push_back({0x9C, false});
        StopPs2Mouse(&Mouse, Now);
        for (int Step = 0; Step < 100 && Mouse.State != PS2_STOPPED; Step++) {
            Poll();
            Now += 5000;
            if (Step == 4) {
                ASSERT_FALSE(Controller.Output.empty());
                EXPECT_FALSE(Controller.Output.front().FromMouse);
                Controller.Output.pop_front();
            }
        }
        EXPECT_EQ(Mouse.State, PS2_STOPPED);
        EXPECT_FALSE(Controller.Reporting);
        EXPECT_TRUE(Controller.Output.empty()) << "stopped " << After << " ms after the start";
        Controller.Move(1, 1);
        EXPECT_TRUE(Controller.Output.empty());
        StartAndSetUp();
        X = 0;
        Controller.Move(7, 0);
        Run(10);
        EXPECT_EQ(X, 7);
    }
}

}
