#include "platform/host/Window.h"

#include <chrono>
#include <cstdlib>

#include <SDL.h>
#include <gtest/gtest.h>

namespace {

// A window on SDL's dummy screen, into which a test puts the events that a desktop would send.
class OpenedWindow : public testing::Test {
protected:
    OpenedWindow()
    {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        const char* Error = nullptr;
        Window = OpenWindow("Test", {1024, 768}, &Error);
        EXPECT_NE(Window, nullptr) << Error;
        PumpWindow(Window, &Input); // what the opening brought
    }

    ~OpenedWindow() override { CloseWindow(Window); }

    static VOID PutMotion(int X, int Y)
    {
        SDL_Event Event{};
        Event.motion = {.type = SDL_MOUSEMOTION,
                        .timestamp = 0,
                        .windowID = 0,
                        .which = 0,
                        .state = 0,
                        .x = X,
                        .y = Y,
                        .xrel = 0,
                        .yrel = 0};
        SDL_PushEvent(&Event);
    }

    static VOID PutButton(bool Down, UINT8 Button, int X, int Y)
    {
        SDL_Event Event{};
        Event.type = Down ? SDL_MOUSEBUTTONDOWN : SDL_MOUSEBUTTONUP;
        Event.button.button = Button;
        Event.button.state = Down ? SDL_PRESSED : SDL_RELEASED;
        Event.button.x = X;
        Event.button.y = Y;
        SDL_PushEvent(&Event);
    }

    static VOID PutKey(SDL_Keycode Symbol, UINT8 Repeat = 0)
    {
        SDL_Event Event{};
        Event.type = SDL_KEYDOWN;
        Event.key.repeat = Repeat;
        Event.key.keysym.sym = Symbol;
        SDL_PushEvent(&Event);
    }

    static VOID PutText(const char* Text)
    {
        SDL_Event Event{};
        Event.type = SDL_TEXTINPUT;
        SDL_strlcpy(Event.text.text, Text, sizeof Event.text.text);
        SDL_PushEvent(&Event);
    }

    VOID ExpectTurn(INT32 X, INT32 Y, bool Left, bool Right, bool Moved)
    {
        EXPECT_TRUE(PumpWindow(Window, &Input));
        EXPECT_EQ(Input.PointerX, X);
        EXPECT_EQ(Input.PointerY, Y);
        EXPECT_EQ(Input.Left, Left);
        EXPECT_EQ(Input.Right, Right);
        EXPECT_EQ(Input.Moved, Moved);
    }

    WINDOW* Window = nullptr;
    WINDOW_INPUT Input{};
};

UINT64 MeasureTurns(WINDOW* Window, int Turns)
{
    const auto Begin = std::chrono::steady_clock::now();
    for (int Turn = 0; Turn < Turns; Turn++) {
        PaceWindow(Window);
    }
    const auto Taken = std::chrono::steady_clock::now() - Begin;
    return static_cast<UINT64>(std::chrono::duration_cast<std::chrono::microseconds>(Taken).count());
}

} // namespace

TEST_F(OpenedWindow, TakesAllMovementOfATurnTogether)
{
    PutMotion(5, 6);
    PutMotion(7, 8);
    ExpectTurn(7, 8, false, false, true);
    ExpectTurn(7, 8, false, false, false);
}

TEST_F(OpenedWindow, ShowsAClickThatBeganAndEndedBetweenTwoTurnsWhereThePointerWas)
{
    PutMotion(100, 100);
    PutButton(true, SDL_BUTTON_LEFT, 100, 100);
    PutMotion(101, 100);
    PutButton(false, SDL_BUTTON_LEFT, 101, 100);
    PutMotion(300, 300);
    ExpectTurn(100, 100, true, false, true);
    ExpectTurn(101, 100, false, false, true);
    ExpectTurn(300, 300, false, false, true);
    PutButton(true, SDL_BUTTON_RIGHT, 300, 300);
    ExpectTurn(300, 300, false, true, true);
    ExpectTurn(300, 300, false, true, false);
}

TEST_F(OpenedWindow, ShowsAReleaseForTwoTurnsHoweverSoonTheNextPressCame)
{
    PutButton(true, SDL_BUTTON_LEFT, 50, 50);
    PutButton(false, SDL_BUTTON_LEFT, 50, 50);
    PutButton(true, SDL_BUTTON_LEFT, 50, 50);
    ExpectTurn(50, 50, true, false, true);
    ExpectTurn(50, 50, false, false, true);
    ExpectTurn(50, 50, false, false, false);
    ExpectTurn(50, 50, true, false, true);
}

TEST_F(OpenedWindow, TurnsKeysAndTextIntoTheFirmwaresKeyStrokesInTheirOrder)
{
    PutKey(SDLK_s); // its text follows; the key itself is none of the firmware's
    PutText("s");
    for (const auto& [Symbol, Text] : {std::pair{SDLK_g, "g"}, {SDLK_SPACE, " "}, {SDLK_F12, ""}}) {
        PutKey(Symbol, 1); // held: they take the mouse's place once
        PutText(Text);
    }
    PutKey(SDLK_ESCAPE);
    PutKey(SDLK_RETURN);
    PutKey(SDLK_F5);
    PutText("\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
    EXPECT_TRUE(PumpWindow(Window, &Input));
    const EFI_INPUT_KEY Expected[] = {{0, u's'}, {0x17, 0}, {0, 0x0D}, {0x0F, 0}, {0, 0x00E9}, {0, 0x20AC}};
    ASSERT_EQ(Input.Keys.size(), std::size(Expected));
    for (size_t Index = 0; Index < std::size(Expected); Index++) {
        EXPECT_EQ(Input.Keys[Index].Key.ScanCode, Expected[Index].ScanCode) << Index;
        EXPECT_EQ(Input.Keys[Index].Key.UnicodeChar, Expected[Index].UnicodeChar) << Index;
    }
    EXPECT_TRUE(PumpWindow(Window, &Input));
    EXPECT_TRUE(Input.Keys.empty());
}

TEST_F(OpenedWindow, StaysClosedOnceTheUserClosedIt)
{
    SDL_Event Event{};
    Event.type = SDL_QUIT;
    SDL_PushEvent(&Event);
    EXPECT_FALSE(PumpWindow(Window, &Input));
    EXPECT_TRUE(Input.Closed);
    EXPECT_FALSE(PumpWindow(Window, &Input));
    EXPECT_TRUE(Input.Closed);
}

TEST_F(OpenedWindow, WakesFromItsRestWhenInputComes)
{
    while (MeasureTurns(Window, 1) < 8'000) {
        // still at the pace of its opening
    }
    PutMotion(60, 60);
    // Ten rests would take 160 ms; input waiting in each of them makes it far less.
    EXPECT_LT(MeasureTurns(Window, 10), 120'000u);
}

TEST(Pace, Is250TurnsASecondWhileSomethingMovesAndNeverUnder60)
{
    EXPECT_EQ(TurnInterval(0), 4'000u);
    EXPECT_EQ(TurnInterval(50'000), 4'000u);
    // The sensors' tick every 200 ms must not keep up the pace of a moving mouse.
    EXPECT_LE(TurnInterval(199'000), 16'666u);
    EXPECT_GT(TurnInterval(199'000), 8'000u);
    EXPECT_LE(TurnInterval(3'600'000'000), 16'666u);
}

TEST(PlaceDisplay, KeepsTheShapeInTheMiddleOfAnyArea)
{
    struct CASE {
        int AreaWidth, AreaHeight;
        DISPLAY_PLACE Place;
        DISPLAY_SIZE Display = {1024, 768};
    };
    constexpr CASE Cases[] = {
        {1024, 768, {0, 0, 1024, 768}},
        {2048, 1536, {0, 0, 2048, 1536}},
        {1920, 1080, {240, 0, 1440, 1080}}, // bars left and right
        {768, 1024, {0, 224, 768, 576}},    // above and below, smaller than the display
        {1080, 1920, {28, 576, 1024, 768}}, // a whole multiple is worth a narrow border
        {3840, 2160, {480, 0, 2880, 2160}}, // 2.8 times: too much to give up for 2
        {100, 0, {49, 0, 1, 1}},            // minimised
        {1024, 768, {0, 96, 1024, 576}, {3840, 2160}},
        {1300, 1000, {10, 20, 1280, 960}, {640, 480}},
    };
    for (const CASE& Case : Cases) {
        const DISPLAY_PLACE Place = PlaceDisplay(Case.Display, Case.AreaWidth, Case.AreaHeight);
        EXPECT_EQ(Place.X, Case.Place.X) << Case.AreaWidth << " by " << Case.AreaHeight;
        EXPECT_EQ(Place.Y, Case.Place.Y) << Case.AreaWidth << " by " << Case.AreaHeight;
        EXPECT_EQ(Place.Width, Case.Place.Width) << Case.AreaWidth << " by " << Case.AreaHeight;
        EXPECT_EQ(Place.Height, Case.Place.Height) << Case.AreaWidth << " by " << Case.AreaHeight;
    }
}

TEST(MapToDisplay, GivesThePixelUnderThePointAndTheNearestForAPointBeside)
{
    struct CASE {
        int X, Y;
        INT32 DisplayX, DisplayY;
        bool On;
    };
    constexpr DISPLAY_PLACE Doubled = {100, 50, 2048, 1536};
    constexpr CASE Cases[] = {
        {100, 50, 0, 0, true},         {101, 51, 0, 0, true},          {102, 52, 1, 1, true},
        {2147, 1585, 1023, 767, true}, {2148, 1586, 1023, 767, false}, {99, 49, 0, 0, false},
        {-5000, 800, 0, 375, false},   {1124, 99999, 512, 767, false},
    };
    for (const CASE& Case : Cases) {
        INT32 DisplayX = -1;
        INT32 DisplayY = -1;
        MapToDisplay({1024, 768}, Doubled, Case.X, Case.Y, &DisplayX, &DisplayY);
        EXPECT_EQ(DisplayX, Case.DisplayX) << Case.X << ", " << Case.Y;
        EXPECT_EQ(DisplayY, Case.DisplayY) << Case.X << ", " << Case.Y;
        EXPECT_EQ(IsOnDisplay(Doubled, Case.X, Case.Y), Case.On) << Case.X << ", " << Case.Y;
    }
}
