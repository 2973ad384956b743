// The console in a window, on the machine's own clock: with SDL's dummy driver, whose screen is memory.
#include <cstdlib>

#include <SDL.h>
#include <unistd.h>

#include "platform/host/CurrentBoot.h"
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
    SDL_Point Tab = {424, 150}; // in full screen
    SDL_Point Box = {296, 242};
    UINT64 Turn = 0;
    UINT64 Left = 0; // the turn in which to leave
    bool SawSamePixels = false;
    bool ByKeys = false; // instead of clicks

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
        if (Turn >= gRound && Left == 0 && ByKeys) {
            ActByKeys();
        } else if (Turn >= gRound && Left == 0) {
            Click(0, Tab);
            Click(gRound / 2, Box);
        }
    }
    // To the next tab, from where a click brings the pointer back to the mouse; there again and a click; to the sixth place
    // behind it, the box, and there another.
    VOID ActByKeys() const
    {
        const UINT64 At = Turn % gRound;
        Click(0, {323, 150});
        if (At == 2 || At == 10 || At == gRound / 2) {
            SDL_Event Event{};
            Event.type = SDL_KEYDOWN;
            Event.key.keysym.sym = SDLK_TAB;
            for (int Times = At == gRound / 2 ? 6 : 1; Times > 0; Times--) {
                SDL_PushEvent(&Event);
            }
            Event.type = SDL_TEXTINPUT;
            Event.text.text[0] = At == 2 ? 0 : ' ';
            Event.text.text[1] = 0;
            SDL_PushEvent(&Event);
        }
    }
    VOID Click(UINT64 First, SDL_Point Place) const
    {
        SDL_Event Mouse{};
        if (Turn % gRound == First) {
            Mouse.motion = {.type = SDL_MOUSEMOTION,
                            .timestamp = 0,
                            .windowID = 0,
                            .which = 0,
                            .state = 0,
                            .x = Place.x,
                            .y = Place.y,
                            .xrel = 0,
                            .yrel = 0};
            SDL_PushEvent(&Mouse);
        } else if (Turn % gRound == First + 4) {
            Mouse.button.button = SDL_BUTTON_LEFT;
            Mouse.button.x = Place.x;
            Mouse.button.y = Place.y;
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
        const PICTURE Display(gCurrentBoot->Display.Words(), gCurrentBoot->Display.Words() + Shown.size());
        return !Differ(Shown, Display);
    }
};

SESSION_OPTIONS OptionsOf(PERSON* Person)
{
    SESSION_OPTIONS Options = SCENE().Options;
    Options.Failures = {.Call = PERSON::AtCall, .Allocation = nullptr, .Context = Person};
    return Options;
}

// A session at the window, recorded and played back on an ordinary display.
struct RECORDED {
    const TestFolder Folder;
    SESSION_RESULT Live;
    SESSION_RESULT Played;

    RECORDED(PERSON* Person, const PANEL& Panel)
    {
        setenv("SDL_VIDEODRIVER", "dummy", 1);
        SESSION_OPTIONS Options = OptionsOf(Person);
        Options.Window = true;
        Options.Panel = Panel;
        Options.RecordPath = Folder.File("recorded");
        Live = RunSession(Options);
        unsetenv("SDL_VIDEODRIVER");
        EXPECT_EQ(Live.Error, "");
        EXPECT_EQ(Live.Status, EFI_SUCCESS);
        EXPECT_EQ(CallsNamed(ParseTrace(Live.Trace), "SetFan5Setting").size(), 1u)
            << "the box of the page that the click brought up";

        std::string Recorded;
        EXPECT_TRUE(ReadWholeFile(Options.RecordPath, &Recorded));
        PERSON Nobody{.AtWindow = false};
        SESSION_OPTIONS Again = OptionsOf(&Nobody);
        Again.Script = Recorded;
        Played = RunSession(Again);
        EXPECT_EQ(Played.Error, "");
    }
};

} // namespace

TEST(WindowSession, ShowsTheDisplaysPixelsTakesMouseAndKeysAndPlaysBackAsItWasRecorded)
{
    PERSON Person;
    const RECORDED Recorded(&Person, {});
    const SESSION_RESULT& Live = Recorded.Live;
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
    ExpectSamePicture(Live.Display, Recorded.Played.Display);
}

// 1280 by 1024 pixels, 128 of them on each side of the console's picture, at three quarters in the middle of the dummy screen.
TEST(WindowSession, ShowsAWholePanelAndPointsAtTheConsolesPixelsOnIt)
{
    PERSON Person{.Tab = {32 + (128 + 424) * 3 / 4, (128 + 150) * 3 / 4},
                  .Box = {32 + (128 + 296) * 3 / 4, (128 + 242) * 3 / 4}};
    const RECORDED Recorded(&Person, {1280, 1024, PANEL_BLT_ONLY});
    ASSERT_EQ(Recorded.Live.Display.size(), UINTN{1280} * 1024);
    PICTURE Middle;
    for (UINTN Row = 0; Row < gDisplayHeight; Row++) {
        const UINT32* From = Recorded.Live.Display.data() + (128 + Row) * 1280 + 128;
        Middle.insert(Middle.end(), From, From + gDisplayWidth);
    }
    ExpectSamePicture(Middle, Recorded.Played.Display);
}

TEST(WindowSession, TakesTheKeysThatTakeTheMousesPlace)
{
    PERSON Person{.ByKeys = true};
    const RECORDED Recorded(&Person, {});
    ExpectSamePicture(Recorded.Live.Display, Recorded.Played.Display);
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
