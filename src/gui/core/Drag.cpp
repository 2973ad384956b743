#include "gui/core/Drag.h"

namespace {

VOID EndDrag(const DRAG_BEATS& Beats, VOID* Control, UINT8* Started)
{
    gDragLock = 0;
    Beats.Drop(Control);
    *Beats.StartX = 0;
    *Beats.StartY = 0;
    ClearTarget();
    Beats.Report->RelX = 0;
    Beats.Report->RelY = 0;
    Beats.Report->AbsX = 0;
    Beats.Report->AbsY = 0;
    (void)Beats.Fire(L_HOLD_TO_RELEASE);
    if (*Started == 1) {
        *Started = 0;
        *Beats.UnderWay = 0;
    }
}

} // namespace

UINT8 gDragLock = 0;

EFI_STATUS StepDrag(const DRAG_BEATS& Beats)
{
    VOID* Control = gGuiCore->TargetKind == Beats.Kind ? gGuiCore->Target : nullptr;
    UINT8* Started = Control == nullptr ? nullptr : Beats.Started(Control);
    if (Started == nullptr) {
        *Beats.UnderWay = 0;
        return EFI_NOT_FOUND;
    }
    switch (gGuiCore->MouseState) {
    case L_HOLD:
        if (Beats.Hold != nullptr) {
            Beats.Hold(Control);
        }
        // From the first turn on: a button that the pointer reaches in the next one would take the held press away, and the
        // thing would drop where the last drag ended.
        gDragLock = 1;
        if (*Started == 0) {
            *Started = 1;
            *Beats.UnderWay = 1;
            *Beats.StartX = gGuiCore->PointerX;
            *Beats.StartY = gGuiCore->PointerY;
            (void)Beats.Fire(L_HOLD);
        } else {
            Beats.Move(Control);
        }
        break;
    case NOEVENT:
    case L_HOLD_TO_RELEASE:
    case L_CLICK:
        EndDrag(Beats, Control, Started);
        break;
    default:
        break;
    }
    return EFI_NOT_FOUND;
}
