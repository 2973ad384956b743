// The console in a window, on the machine's own clock: with SDL's dummy driver, whose screen is memory.
#include <cstdlib>

#include <SDL.h>
#include <unistd.h>

#include "tests/console/ConsoleBench.h"
#include "tests/host/TestFolder.h"

namespace {

constexpr UINT64 gFullScreenTurn = 20;
constexpr UINT64 gRound = 40;       // turns of one try to click
constexpr UINT64 gMostTurns = 4000; // then the person gives up

// A person at the window, who clicks a tab and a box until the board hears of it: on a busy machine a turn, and so a
// press, may last longer than a click. Sensors can't be read, so that the picture depends on nothing but what was clicked.
struct PERSON {
    bool AtWindow = true;
    UINT64 Turn = 0;
    UINT64 Left = 0; // the turn in which to leave
    bool SawSamePixels = false;

    static bool AtCall(VOID* Context, CALL Call, EFI_STATUS* Status, bool*)
    {
        PERSON& Person = *static_cast<PERSON*>(Context);
        if (Call == CALL_WAIT_FOR_EVENT) {
            Person.Turn++;
            if (Person.AtWindow) {
                Person.Act();
            }
        } else if (Call == CALL_SET_FAN_5_SETTING) {
            Person.Left = Person.Turn + gRound;
        }
        *Status = EFI_DEVICE_ERROR;
        return Call == CALL_GET_ITEM_VALUE && Person.Turn != 0;
    }
    VOID Act()
    {
        if (Turn == gFullScreenTurn || Turn == Left || Turn == gMostTurns) {
            SDL_Event Key{};
            Key.type = SDL_KEYDOWN;
            Key.key.keysym.sym = Turn == gFullScreenTurn ? SDLK_F11 : SDLK_ESCAPE;
            SDL_PushEvent(&Key);
        } else if (Turn > gFullScreenTurn) {
            SawSamePixels = SawSamePixels || ShowsTheDisplay();
        }
        if (Turn >= gRound && Left == 0) {
            Click(0, 424, 150);
            Click(gRound / 2, 296, 242);
        }
    }
    VOID Click(UINT64 First, int X, int Y) const
    {
        SDL_Event Mouse{};
        if (Turn % gRound == First) {
            Mouse.motion = {.type = SDL_MOUSEMOTION,
                            .timestamp = 0,
                            .windowID = 0,
                            .which = 0,
                            .state = 0,
                            .x = X,
                            .y = Y,
                            .xrel = 0,
                            .yrel = 0};
            SDL_PushEvent(&Mouse);
        } else if (Turn % gRound == First + 4) {
            Mouse.button.button = SDL_BUTTON_LEFT;
            Mouse.button.x = X;
            Mouse.button.y = Y;
            for (const UINT32 Type : {SDL_MOUSEBUTTONDOWN, SDL_MOUSEBUTTONUP}) {
                Mouse.type = Type;
                Mouse.button.state = Type == SDL_MOUSEBUTTONDOWN ? SDL_PRESSED : SDL_RELEASED;
                SDL_PushEvent(&Mouse);
            }
        }
    }
    // The dummy screen in full is as large as the display.
    static bool ShowsTheDisplay()
    {
        SDL_Window* Window = SDL_GetWindowFromID(1);
        SDL_Renderer* Renderer = SDL_GetRenderer(Window);
        int Width = 0;
        int Height = 0;
        PICTURE Shown(UINTN{gDisplayWidth} * gDisplayHeight);
        if ((SDL_GetWindowFlags(Window) & SDL_WINDOW_FULLSCREEN_DESKTOP) == 0 ||
            SDL_GetRendererOutputSize(Renderer, &Width, &Height) != 0 || Width != static_cast<int>(gDisplayWidth) ||
            Height != static_cast<int>(gDisplayHeight) ||
            SDL_RenderReadPixels(Renderer, nullptr, SDL_PIXELFORMAT_RGB888, Shown.data(), gDisplayWidth * 4) != 0) {
            return false;
        }
        const PICTURE Display(gBoot->Display.Words(), gBoot->Display.Words() + Shown.size());
        return !Differ(Shown, Display);
    }
};

SESSION_OPTIONS OptionsOf(PERSON* Person)
{
    SESSION_OPTIONS Options = SCENE().Options;
    Options.Failures = {.Call = PERSON::AtCall, .Allocation = nullptr, .Context = Person};
    return Options;
}

} // namespace

TEST(WindowSession, ShowsTheDisplaysPixelsTakesMouseAndKeysAndPlaysBackAsItWasRecorded)
{
    const TestFolder Folder;
    setenv("SDL_VIDEODRIVER", "dummy", 1);
    PERSON Person;
    SESSION_OPTIONS Options = OptionsOf(&Person);
    Options.Window = true;
    Options.RecordPath = Folder.File("recorded");
    const SESSION_RESULT Live = RunSession(Options);
    unsetenv("SDL_VIDEODRIVER");
    ASSERT_EQ(Live.Error, "");
    EXPECT_EQ(Live.Status, EFI_SUCCESS);
    EXPECT_TRUE(Person.SawSamePixels) << "in full screen, every pixel in its colour";

    // On the machine's clock: turns of 4 ms at least, and the tick of 200 ms in nearly that time.
    const std::vector<CALL_LINE> Calls = ParseTrace(Live.Trace);
    const UINT64 Microseconds = Calls.back().Microseconds;
    EXPECT_GE(Microseconds, Live.Turns * 4000);
    UINTN Ticks = 0;
    for (const CALL_LINE& Wait : CallsNamed(Calls, "WaitForEvent")) {
        Ticks += Wait.Number("index") == 1 ? 1 : 0;
    }
    EXPECT_GE(Ticks, 2u);
    EXPECT_LE(Ticks, Microseconds / 200000);
    ASSERT_EQ(CallsNamed(Calls, "SetFan5Setting").size(), 1u) << "the box of the page that the click brought up";

    std::string Recorded;
    ASSERT_TRUE(ReadWholeFile(Options.RecordPath, &Recorded));
    PERSON Nobody{.AtWindow = false};
    SESSION_OPTIONS Again = OptionsOf(&Nobody);
    Again.Script = Recorded;
    const SESSION_RESULT Played = RunSession(Again);
    ASSERT_EQ(Played.Error, "");
    ExpectSamePicture(Live.Display, Played.Display);
}

TEST(WindowSession, SaysThatThereIsNoScreenAndStartsNothing)
{
    for (const char* Name : {"SDL_VIDEODRIVER", "DISPLAY", "WAYLAND_DISPLAY"}) {
        unsetenv(Name);
    }
    if (access("/dev/dri", F_OK) == 0) {
        GTEST_SKIP() << "this machine has a screen of its own";
    }
    SESSION_OPTIONS Options = SCENE().Options;
    Options.Window = true;
    const SESSION_RESULT Result = RunSession(Options);
    EXPECT_FALSE(Result.Ran);
    EXPECT_EQ(Result.Error.substr(0, 11), "no window: ");
}
