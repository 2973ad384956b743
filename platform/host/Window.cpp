#include "platform/host/Window.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <thread>

#include <SDL.h>

#include "platform/host/Consoles.h"

struct WINDOW {
    SDL_Window* Frame;
    SDL_Renderer* Renderer;
    DISPLAY_SIZE Display;
    SDL_Texture* Picture;  // the display as it was last shown
    SDL_Texture* Enlarged; // Picture enlarged by whole numbers; null where Picture goes to the screen as it is
    DISPLAY_PLACE Place;
    int OutputWidth; // pixels; on a dense screen more than the window has points
    int OutputHeight;
    int FrameWidth; // points, in which the mouse is counted
    int FrameHeight;
    std::vector<UINT32> Shown;
    bool Stale;         // the window's own picture was lost or its size changed: show again, whatever the display holds
    bool TexturesStale; // as well, and from new textures
    INT32 PointerX;
    INT32 PointerY;
    bool Left;
    bool Right;
    bool Repeating; // the key that went down last is held
    bool Released;  // the last turn was the first that saw the left button up again
    bool Closed;
    UINT64 LastTurn; // microseconds of HostMicroseconds, as all times here
    UINT64 LastChange;
    UINT64 LastLook; // at the display, by ShowDisplay
};

namespace {

constexpr UINT64 gTurnWhileMoving = 4'000;
constexpr UINT64 gTurnAtRest = 16'000;
// Longer than the pauses of a hand on a mouse, shorter than the console's sampling period: at rest the sensors' tick
// alone must not keep the window at full pace.
constexpr UINT64 gMovingFor = 100'000;
// A little less than a turn at rest, so that at rest every turn may show.
constexpr UINT64 gLookInterval = 15'900;

struct KEY_NAME {
    SDL_Keycode Symbol;
    EFI_INPUT_KEY Key;
};

// Keys that type no text. F11 is the window's own.
constexpr KEY_NAME gKeys[] = {
    {SDLK_ESCAPE, {SCAN_ESC, 0}},
    {SDLK_RETURN, {SCAN_NULL, CHAR_CARRIAGE_RETURN}},
    {SDLK_KP_ENTER, {SCAN_NULL, CHAR_CARRIAGE_RETURN}},
    {SDLK_BACKSPACE, {SCAN_NULL, 0x08}},
    {SDLK_TAB, {SCAN_NULL, CHAR_TAB}},
    {SDLK_UP, {SCAN_UP, 0}},
    {SDLK_DOWN, {SCAN_DOWN, 0}},
    {SDLK_RIGHT, {SCAN_RIGHT, 0}},
    {SDLK_LEFT, {SCAN_LEFT, 0}},
    {SDLK_HOME, {0x05, 0}},
    {SDLK_END, {0x06, 0}},
    {SDLK_INSERT, {0x07, 0}},
    {SDLK_DELETE, {0x08, 0}},
    {SDLK_PAGEUP, {0x09, 0}},
    {SDLK_PAGEDOWN, {0x0A, 0}},
    {SDLK_F1, {0x0B, 0}},
    {SDLK_F2, {0x0C, 0}},
    {SDLK_F3, {0x0D, 0}},
    {SDLK_F4, {0x0E, 0}},
    {SDLK_F5, {0x0F, 0}},
    {SDLK_F6, {0x10, 0}},
    {SDLK_F7, {0x11, 0}},
    {SDLK_F8, {0x12, 0}},
    {SDLK_F9, {0x13, 0}},
    {SDLK_F10, {0x14, 0}},
    {SDLK_F12, {SCAN_F12, 0}},
};

char gError[256];

// Where it finds no screen, SDL falls back on drivers that show nothing. They are welcome only when asked for.
bool ShowsNothing()
{
    const char* Driver = SDL_GetCurrentVideoDriver();
    return SDL_getenv("SDL_VIDEODRIVER") == nullptr &&
           (Driver == nullptr || SDL_strcmp(Driver, "offscreen") == 0 || SDL_strcmp(Driver, "dummy") == 0 ||
            SDL_strcmp(Driver, "evdev") == 0);
}

// SDL's own text is gone with the next call that fails.
const char* KeepError()
{
    std::snprintf(gError, sizeof gError, "%s", SDL_GetError());
    return gError;
}

UINT64 HostMicroseconds()
{
    const auto Now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<UINT64>(std::chrono::duration_cast<std::chrono::microseconds>(Now).count());
}

// Text as the host types it, in UTF-8, to key strokes. What a firmware's key stroke can't carry, beyond U+FFFF, is
// dropped.
VOID AppendText(std::vector<EFI_KEY_DATA>* Keys, const char* Text)
{
    while (*Text != 0) {
        const UINT32 First = static_cast<UINT8>(*Text++);
        const unsigned Following = First < 0xC0 ? 0 : First < 0xE0 ? 1 : First < 0xF0 ? 2 : 3;
        UINT32 Code = Following == 0 ? First : First & (0x3Fu >> Following);
        for (unsigned Index = 0; Index < Following && *Text != 0; Index++) {
            Code = Code << 6 | (static_cast<UINT8>(*Text++) & 0x3Fu);
        }
        if (Code <= 0xFFFF) {
            Keys->push_back({.Key = {SCAN_NULL, static_cast<CHAR16>(Code)}, .KeyState = {}});
        }
    }
}

// The first size of the window: the display's own, twice that on a screen with room for it, and less on a small one.
DISPLAY_SIZE ChooseSize(const DISPLAY_SIZE& Display)
{
    SDL_Rect Screen;
    if (SDL_GetDisplayUsableBounds(0, &Screen) != 0) {
        return Display;
    }
    // The usable area still has to hold the window's own title and border.
    constexpr int Border = 40;
    if (Screen.w >= 2 * Display.Width && Screen.h >= 2 * Display.Height + Border) {
        return {2 * Display.Width, 2 * Display.Height};
    }
    if (Screen.w < Display.Width || Screen.h < Display.Height) {
        const DISPLAY_PLACE Place = PlaceDisplay(Display, Screen.w, Screen.h - Border);
        return {Place.Width, Place.Height};
    }
    return Display;
}

VOID TakeSizes(WINDOW* Window)
{
    SDL_GetWindowSize(Window->Frame, &Window->FrameWidth, &Window->FrameHeight);
    if (SDL_GetRendererOutputSize(Window->Renderer, &Window->OutputWidth, &Window->OutputHeight) != 0) {
        Window->OutputWidth = Window->FrameWidth;
        Window->OutputHeight = Window->FrameHeight;
    }
    Window->Place = PlaceDisplay(Window->Display, Window->OutputWidth, Window->OutputHeight);
}

VOID DestroyTextures(WINDOW* Window)
{
    if (Window->Picture != nullptr) {
        SDL_DestroyTexture(Window->Picture);
        Window->Picture = nullptr;
    }
    if (Window->Enlarged != nullptr) {
        SDL_DestroyTexture(Window->Enlarged);
        Window->Enlarged = nullptr;
    }
}

// At a whole multiple of its size the display is copied pixel by pixel. Otherwise it is first enlarged by the next
// whole number and then smoothed down to its place: pixels keep hard edges and equal sizes but for a blend of under one
// screen pixel between them. Smaller than it is, it is smoothed down at once.
bool CreateTextures(WINDOW* Window)
{
    const DISPLAY_PLACE& Place = Window->Place;
    const DISPLAY_SIZE& Display = Window->Display;
    const bool Whole = Place.Width % Display.Width == 0 && Place.Height % Display.Height == 0;
    const bool Larger = Place.Width > Display.Width;

    Window->Picture = SDL_CreateTexture(Window->Renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_STREAMING,
                                        Display.Width, Display.Height);
    if (Window->Picture == nullptr) {
        return false;
    }
    SDL_SetTextureScaleMode(Window->Picture, Whole || Larger ? SDL_ScaleModeNearest : SDL_ScaleModeLinear);
    if (Whole || !Larger) {
        return true;
    }
    const int Scale = (Place.Width + Display.Width - 1) / Display.Width;
    Window->Enlarged = SDL_CreateTexture(Window->Renderer, SDL_PIXELFORMAT_RGB888, SDL_TEXTUREACCESS_TARGET,
                                         Scale * Display.Width, Scale * Display.Height);
    if (Window->Enlarged != nullptr) {
        SDL_SetTextureScaleMode(Window->Enlarged, SDL_ScaleModeLinear);
    } else {
        // A renderer that can't draw into a texture, or not into so large a one: smooth rather than unequal pixels.
        SDL_SetTextureScaleMode(Window->Picture, SDL_ScaleModeLinear);
    }
    return true;
}

VOID Present(WINDOW* Window)
{
    SDL_UpdateTexture(Window->Picture, nullptr, Window->Shown.data(),
                      Window->Display.Width * static_cast<int>(sizeof(UINT32)));
    SDL_Texture* Source = Window->Picture;
    if (Window->Enlarged != nullptr && SDL_SetRenderTarget(Window->Renderer, Window->Enlarged) == 0) {
        SDL_RenderCopy(Window->Renderer, Window->Picture, nullptr, nullptr);
        SDL_SetRenderTarget(Window->Renderer, nullptr);
        Source = Window->Enlarged;
    }
    const SDL_Rect Place = {Window->Place.X, Window->Place.Y, Window->Place.Width, Window->Place.Height};
    SDL_SetRenderDrawColor(Window->Renderer, 0, 0, 0, SDL_ALPHA_OPAQUE);
    SDL_RenderClear(Window->Renderer);
    SDL_RenderCopy(Window->Renderer, Source, nullptr, &Place);
    SDL_RenderPresent(Window->Renderer);
}

VOID ToggleFullScreen(WINDOW* Window)
{
    const bool Full = (SDL_GetWindowFlags(Window->Frame) & SDL_WINDOW_FULLSCREEN_DESKTOP) != 0;
    SDL_SetWindowFullscreen(Window->Frame, Full ? 0 : SDL_WINDOW_FULLSCREEN_DESKTOP);
}

VOID TakePointer(WINDOW* Window, int X, int Y)
{
    if (Window->FrameWidth > 0 && Window->FrameHeight > 0) {
        X = X * Window->OutputWidth / Window->FrameWidth;
        Y = Y * Window->OutputHeight / Window->FrameHeight;
    }
    MapToDisplay(Window->Display, Window->Place, X, Y, &Window->PointerX, &Window->PointerY);
    SDL_ShowCursor(IsOnDisplay(Window->Place, X, Y) ? SDL_DISABLE : SDL_ENABLE);
}

VOID TakeButton(WINDOW* Window, const SDL_MouseButtonEvent& Button)
{
    TakePointer(Window, Button.x, Button.y);
    if (Button.button == SDL_BUTTON_LEFT) {
        Window->Left = Button.state == SDL_PRESSED;
    } else if (Button.button == SDL_BUTTON_RIGHT) {
        Window->Right = Button.state == SDL_PRESSED;
    }
}

VOID TakeKey(WINDOW* Window, const SDL_KeyboardEvent& Event, std::vector<EFI_KEY_DATA>* Keys)
{
    Window->Repeating = Event.repeat != 0;
    if (Event.keysym.sym == SDLK_F11) {
        if (Event.repeat == 0) {
            ToggleFullScreen(Window);
        }
        return;
    }
    if (Event.keysym.sym == SDLK_F12 && Event.repeat != 0) {
        return; // a picture each time
    }
    const auto* Found = std::find_if(std::begin(gKeys), std::end(gKeys),
                                     [&](const KEY_NAME& Name) { return Name.Symbol == Event.keysym.sym; });
    if (Found != std::end(gKeys)) {
        const bool Shift = (Event.keysym.mod & KMOD_SHIFT) != 0;
        Keys->push_back({.Key = Found->Key, .KeyState = {Shift ? gShiftPressed : 0, 0}});
    }
}

VOID TakeWindowEvent(WINDOW* Window, const SDL_WindowEvent& Event)
{
    switch (Event.event) {
    case SDL_WINDOWEVENT_SIZE_CHANGED:
        TakeSizes(Window);
        Window->TexturesStale = true;
        break;
    case SDL_WINDOWEVENT_SHOWN:
    case SDL_WINDOWEVENT_EXPOSED:
    case SDL_WINDOWEVENT_RESTORED:
        Window->Stale = true;
        break;
    default:
        break;
    }
}

VOID TakeEvent(WINDOW* Window, const SDL_Event& Event, std::vector<EFI_KEY_DATA>* Keys)
{
    switch (Event.type) {
    case SDL_QUIT:
        Window->Closed = true;
        break;
    case SDL_WINDOWEVENT:
        TakeWindowEvent(Window, Event.window);
        break;
    case SDL_RENDER_TARGETS_RESET:
    case SDL_RENDER_DEVICE_RESET:
        Window->TexturesStale = true;
        break;
    case SDL_MOUSEMOTION:
        TakePointer(Window, Event.motion.x, Event.motion.y);
        break;
    case SDL_MOUSEBUTTONDOWN:
    case SDL_MOUSEBUTTONUP:
        TakeButton(Window, Event.button);
        break;
    case SDL_KEYDOWN:
        TakeKey(Window, Event.key, Keys);
        break;
    case SDL_TEXTINPUT:
        // A held Space or G takes the mouse's place once; the console has no use for them.
        if (!Window->Repeating || std::strpbrk(Event.text.text, " gG") == nullptr) {
            AppendText(Keys, Event.text.text);
        }
        break;
    default:
        break;
    }
}

} // namespace

WINDOW* OpenWindow(const char* Title, const DISPLAY_SIZE& Display, const char** Error)
{
    // A click that brings the window to the front is meant for the console as well.
    SDL_SetHint(SDL_HINT_MOUSE_FOCUS_CLICKTHROUGH, "1");
    // An ordinary window: a desktop's effects and its screen saver stay as they are.
    SDL_SetHint(SDL_HINT_VIDEO_X11_NET_WM_BYPASS_COMPOSITOR, "0");
    SDL_SetHint(SDL_HINT_VIDEO_ALLOW_SCREENSAVER, "1");
    if (SDL_InitSubSystem(SDL_INIT_VIDEO) != 0) {
        *Error = KeepError();
        return nullptr;
    }
    if (ShowsNothing()) {
        *Error = "no desktop to open a window on (is DISPLAY or WAYLAND_DISPLAY set?)";
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        return nullptr;
    }
    const DISPLAY_SIZE Size = ChooseSize(Display);
    SDL_Window* Frame = SDL_CreateWindow(Title, SDL_WINDOWPOS_CENTERED, SDL_WINDOWPOS_CENTERED, Size.Width, Size.Height,
                                         SDL_WINDOW_RESIZABLE | SDL_WINDOW_ALLOW_HIGHDPI);
    // Without vertical sync: a present that waits for the screen would hold the console's turn back.
    SDL_Renderer* Renderer = Frame == nullptr ? nullptr : SDL_CreateRenderer(Frame, -1, SDL_RENDERER_ACCELERATED);
    if (Frame != nullptr && Renderer == nullptr) {
        Renderer = SDL_CreateRenderer(Frame, -1, SDL_RENDERER_SOFTWARE);
    }
    if (Renderer == nullptr) {
        *Error = KeepError();
        if (Frame != nullptr) {
            SDL_DestroyWindow(Frame);
        }
        SDL_QuitSubSystem(SDL_INIT_VIDEO);
        return nullptr;
    }
    SDL_StartTextInput();

    WINDOW* Window = new WINDOW{};
    Window->Frame = Frame;
    Window->Renderer = Renderer;
    Window->Display = Display;
    Window->PointerX = Display.Width / 2;
    Window->PointerY = Display.Height / 2;
    Window->Shown.resize(static_cast<size_t>(Display.Width) * static_cast<size_t>(Display.Height));
    Window->Stale = true;
    Window->TexturesStale = true;
    Window->LastTurn = HostMicroseconds();
    Window->LastChange = Window->LastTurn;
    TakeSizes(Window);
    return Window;
}

VOID CloseWindow(WINDOW* Window)
{
    DestroyTextures(Window);
    SDL_DestroyRenderer(Window->Renderer);
    SDL_DestroyWindow(Window->Frame);
    delete Window;
    SDL_ShowCursor(SDL_ENABLE);
    SDL_QuitSubSystem(SDL_INIT_VIDEO);
}

bool PumpWindow(WINDOW* Window, WINDOW_INPUT* Input)
{
    const INT32 OldX = Window->PointerX;
    const INT32 OldY = Window->PointerY;
    const bool WasLeft = Window->Left;
    Input->Keys.clear();
    Input->Moved = false;

    SDL_PumpEvents();
    SDL_Event Event;
    while (SDL_PeepEvents(&Event, 1, SDL_PEEKEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT) == 1) {
        const bool Button = Event.type == SDL_MOUSEBUTTONDOWN || Event.type == SDL_MOUSEBUTTONUP;
        const bool Press = Event.type == SDL_MOUSEBUTTONDOWN && Event.button.button == SDL_BUTTON_LEFT;
        if ((Input->Moved && (Button || Event.type == SDL_MOUSEMOTION)) || (Window->Released && Press)) {
            break; // for the next turn
        }
        SDL_PeepEvents(&Event, 1, SDL_GETEVENT, SDL_FIRSTEVENT, SDL_LASTEVENT);
        const bool OldLeft = Window->Left;
        const bool OldRight = Window->Right;
        TakeEvent(Window, Event, &Input->Keys);
        if (Window->Left != OldLeft || Window->Right != OldRight) {
            Input->Moved = true;
        }
    }

    if (Window->PointerX != OldX || Window->PointerY != OldY) {
        Input->Moved = true;
    }
    Input->PointerX = Window->PointerX;
    Input->PointerY = Window->PointerY;
    Input->Left = Window->Left;
    Input->Right = Window->Right;
    Input->Closed = Window->Closed;
    Window->Released = WasLeft && !Window->Left;
    if (Input->Moved || !Input->Keys.empty()) {
        Window->LastChange = HostMicroseconds();
    }
    return !Window->Closed;
}

VOID ShowDisplay(WINDOW* Window, const UINT32* Pixels)
{
    const UINT64 Now = HostMicroseconds();
    if (Window->LastLook != 0 && Now - Window->LastLook < gLookInterval) {
        return;
    }
    Window->LastLook = Now;
    const bool Changed = !std::equal(Window->Shown.begin(), Window->Shown.end(), Pixels);
    if (Changed) {
        std::copy_n(Pixels, Window->Shown.size(), Window->Shown.begin());
        Window->LastChange = Now;
    }
    if (Window->TexturesStale) {
        DestroyTextures(Window);
        if (!CreateTextures(Window)) {
            return; // tried again in the next turn
        }
        Window->TexturesStale = false;
        Window->Stale = true;
    }
    if (Changed || Window->Stale) {
        Present(Window);
        Window->Stale = false;
    }
}

VOID PaceWindow(WINDOW* Window)
{
    const UINT64 Now = HostMicroseconds();
    const UINT64 Elapsed = Now - Window->LastTurn;
    if (Elapsed < gTurnWhileMoving) {
        std::this_thread::sleep_for(std::chrono::microseconds(gTurnWhileMoving - Elapsed));
    }
    const UINT64 Due = Window->LastTurn + TurnInterval(Now - Window->LastChange);
    const UINT64 Awake = HostMicroseconds();
    if (Due > Awake) {
        // Wakes when input comes, which it leaves for the next turn; whole milliseconds, rounded down so as not to be
        // late.
        SDL_WaitEventTimeout(nullptr, static_cast<int>((Due - Awake) / 1'000));
    }
    Window->LastTurn = HostMicroseconds();
}

UINT64 TurnInterval(UINT64 SinceChange) { return SinceChange < gMovingFor ? gTurnWhileMoving : gTurnAtRest; }

DISPLAY_PLACE PlaceDisplay(const DISPLAY_SIZE& Display, int Width, int Height)
{
    Width = std::max(Width, 1);
    Height = std::max(Height, 1);
    INT64 PlaceWidth = Width;
    INT64 PlaceHeight = INT64{Width} * Display.Height / Display.Width;
    if (PlaceHeight > Height) {
        PlaceHeight = Height;
        PlaceWidth = INT64{Height} * Display.Width / Display.Height;
    }
    // Hard pixels are worth a border of up to a sixteenth of the picture.
    const INT64 Scale = PlaceWidth / Display.Width;
    if (Scale >= 1 && PlaceWidth - Scale * Display.Width <= PlaceWidth / 16) {
        PlaceWidth = Scale * Display.Width;
        PlaceHeight = Scale * Display.Height;
    }
    PlaceWidth = std::max<INT64>(PlaceWidth, 1);
    PlaceHeight = std::max<INT64>(PlaceHeight, 1);
    return {.X = static_cast<int>((Width - PlaceWidth) / 2),
            .Y = static_cast<int>((Height - PlaceHeight) / 2),
            .Width = static_cast<int>(PlaceWidth),
            .Height = static_cast<int>(PlaceHeight)};
}

VOID MapToDisplay(const DISPLAY_SIZE& Display, const DISPLAY_PLACE& Place, int X, int Y, INT32* DisplayX,
                  INT32* DisplayY)
{
    const INT64 FromLeft = INT64{X} - Place.X;
    const INT64 FromTop = INT64{Y} - Place.Y;
    // Clamped before the division: it rounds towards zero, and a point just outside must not land inside.
    const INT64 Column = std::clamp<INT64>(FromLeft, 0, Place.Width - 1);
    const INT64 Row = std::clamp<INT64>(FromTop, 0, Place.Height - 1);
    *DisplayX = static_cast<INT32>(Column * Display.Width / Place.Width);
    *DisplayY = static_cast<INT32>(Row * Display.Height / Place.Height);
}

bool IsOnDisplay(const DISPLAY_PLACE& Place, int X, int Y)
{
    return X >= Place.X && X < Place.X + Place.Width && Y >= Place.Y && Y < Place.Y + Place.Height;
}
