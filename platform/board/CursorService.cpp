#include "platform/board/CursorService.h"

#include "platform/board/Hand.h"
#include "platform/board/TabStops.h"
#include "platform/board/TakeHome.h"

namespace {

constexpr UINTN gScreenWidth = 1024;
constexpr UINTN gScreenHeight = 768;

POINTER_SOURCE* gSource;
UINT64 (*gMicroseconds)();
UINTN gLimitWidth = gScreenWidth;
UINTN gLimitHeight = gScreenHeight;

EFI_STATUS GetCursorState(INT64* X, INT64* Y, INT64* Z, UINT8* Left, UINT8* Right)
{
    if (X == nullptr || Y == nullptr || Z == nullptr || Left == nullptr || Right == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    HAND_POINTER Pointer = {};
    UINT8 NowRight = 0;
    if (gSource != nullptr) {
        gSource->Read(gSource, &Pointer.X, &Pointer.Y, &Pointer.Left, &NowRight);
        const UINT64 Now = gMicroseconds();
        const bool Picture = MoveHand(&Pointer, gSource, gLimitWidth, gLimitHeight, Now);
        NotePointer(Pointer.X, Pointer.Y, Pointer.Left, Now);
        if (Picture) {
            TakeHome();
        }
    }
    *X = HoldInside(Pointer.X, gLimitWidth);
    *Y = HoldInside(Pointer.Y, gLimitHeight);
    *Z = 0;
    *Left = Pointer.Left != 0 ? 1 : 0;
    *Right = NowRight != 0 ? 1 : 0;
    return EFI_SUCCESS;
}

EFI_STATUS SetCursorLimits(UINTN Width, UINTN Height)
{
    gLimitWidth = Width;
    gLimitHeight = Height;
    if (gSource != nullptr && gSource->SetLimits != nullptr) {
        gSource->SetLimits(gSource, Width, Height);
    }
    return EFI_SUCCESS;
}

EFI_STATUS CloseCursor()
{
    if (gSource != nullptr && gSource->Close != nullptr) {
        gSource->Close(gSource);
    }
    ResetHand();
    return EFI_SUCCESS;
}

} // namespace

CURSOR_SERVICE_PROTOCOL gBoardCursor = {
    .GetCursorState = GetCursorState,
    .SetCursorLimits = SetCursorLimits,
    .CloseCursor = CloseCursor,
};

VOID UsePointerSource(POINTER_SOURCE* Source, UINT64 (*Microseconds)())
{
    gSource = Source;
    gMicroseconds = Microseconds;
    ResetHand();
    gLimitWidth = gScreenWidth;
    gLimitHeight = gScreenHeight;
}
