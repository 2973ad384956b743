#include "platform/host/WindowDriver.h"

#include "platform/host/Boot.h"

WINDOW_DRIVER::~WINDOW_DRIVER() { (void)Close(); }

bool WINDOW_DRIVER::Open(const PANEL& Panel, const std::string& RecordPath, std::string* Error)
{
    const char* Reason = nullptr;
    mPlace = PlacePicture(Panel.Width, Panel.Height);
    mWindow = OpenWindow("Ventara", {static_cast<int>(Panel.Width), static_cast<int>(Panel.Height)}, &Reason);
    if (mWindow == nullptr) {
        *Error = std::string("no window: ") + (Reason == nullptr ? "unknown reason" : Reason);
        return false;
    }
    if (!RecordPath.empty()) {
        mRecorder = OpenRecorder(RecordPath.c_str());
        if (mRecorder == nullptr) {
            *Error = RecordPath + " can't be written";
            return false;
        }
    }
    return true;
}

VOID WINDOW_DRIVER::BeginTurn(BOOT& Boot)
{
    // The input is taken after the pause, so that the turn sees it fresh.
    Boot.SettleDisplay();
    ShowDisplay(mWindow, Boot.Display.Words());
    PaceWindow(mWindow);
    const INT32 WasX = mInput.PointerX;
    const INT32 WasY = mInput.PointerY;
    (void)PumpWindow(mWindow, &mInput);
    INT64 X = 0;
    INT64 Y = 0;
    PictureAt(mPlace, mInput.PointerX, mInput.PointerY, &X, &Y);
    mInput.PointerX = static_cast<INT32>(X); // for the record, which has the console's pixels
    mInput.PointerY = static_cast<INT32>(Y);
    POINTER_STATE& Pointer = Boot.Pointer.State;
    // A mouse at rest leaves the pointer to the keys; a press is where the mouse is.
    const bool Pressed = (mInput.Left && Pointer.Left == 0) || (mInput.Right && Pointer.Right == 0);
    if (!mBegun || Pressed || mInput.PointerX != WasX || mInput.PointerY != WasY) {
        Pointer.X = X;
        Pointer.Y = Y;
    }
    Pointer.Left = mInput.Left ? 1 : 0;
    Pointer.Right = mInput.Right ? 1 : 0;
    for (const EFI_KEY_DATA& Stroke : mInput.Keys) {
        Boot.Consoles.Press(Stroke.Key.ScanCode, Stroke.Key.UnicodeChar, Stroke.KeyState.KeyShiftState);
    }
    // The first turn is still at the time of the timers, as when the record is played: a start-up takes no time then.
    if (mBegun) {
        Boot.Events.TurnBegan = Boot.Clock.Microseconds();
    }
    mBegun = true;
    if (mRecorder != nullptr && !mInput.Closed) {
        RecordTurn(mRecorder, Boot.Events.TurnBegan, mInput);
    }
}

VOID WINDOW_DRIVER::NoteStall(UINT64 Microseconds)
{
    if (mRecorder != nullptr) {
        RecordStall(mRecorder, Microseconds);
    }
}

bool WINDOW_DRIVER::Close()
{
    const bool Written = mRecorder == nullptr || CloseRecorder(mRecorder);
    mRecorder = nullptr;
    if (mWindow != nullptr) {
        CloseWindow(mWindow);
        mWindow = nullptr;
    }
    return Written;
}
