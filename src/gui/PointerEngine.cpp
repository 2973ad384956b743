#include "gui/PointerEngine.h"

#include "gui/ComponentClasses.h"
#include "gui/core/Drag.h"
#include "shell/contract/Board.h"
#include "support/Lists.h"
#include "support/Pool.h"

namespace {

constexpr UINT64 gLongPress = 185000; // microseconds; a press of exactly this length is long
constexpr UINT64 gFemtosecondsPerMicrosecond = 1000000000;

UINT8 gPressTimed = 0;  // 1 from the moment the left button goes down until it comes up
UINT8 gHoverActive = 0; // 1 while LastHitId was told of the entry and not yet of the leave
UINT64 gPressStartTicks = 0;
UINT64 gPressEndTicks = 0;

VOID DispatchHover(const GUI_COMPONENT* Component)
{
    const COMPONENT_CLASS* Class = Component == nullptr ? nullptr : FindComponentClass(Component->Kind);
    if (Class != nullptr && Class->HoverOf != nullptr) {
        (void)Class->HoverOf(Component->Owner)(nullptr, Component->Owner);
    }
}

VOID StepHover()
{
    GUI_CORE* Core = gGuiCore;
    if ((Core->MouseState != NOEVENT && Core->MouseState != L_HOLD_TO_RELEASE) || Core->HitId == Core->LastHitId) {
        return;
    }
    if (Core->HitId == 0 && gHoverActive == 1) {
        Core->HoverPhase = HOVER_LEFT;
        gHoverActive = 0;
        DispatchHover(ComponentOf(Core->LastHitId));
        Core->HoverPhase = HOVER_NONE;
        Core->LastHitId = Core->HitId;
    } else if (Core->HitId > 0 && gHoverActive == 0) {
        Core->HoverPhase = HOVER_ENTERED;
        gHoverActive = 1;
        Core->LastHitId = Core->HitId;
        DispatchHover(ComponentOf(Core->HitId));
        Core->HoverPhase = HOVER_NONE;
    } else if (Core->HitId > 0 && gHoverActive == 1) {
        Core->HoverPhase = HOVER_LEFT;
        DispatchHover(ComponentOf(Core->LastHitId));
        const GUI_COMPONENT* Entered = ComponentOf(Core->HitId);
        // The position is the one just read: the pointer may have gone on since the scan.
        if (Entered != nullptr && PointerInRect(Entered->Rect, Core->PointerX, Core->PointerY)) {
            Core->HoverPhase = HOVER_ENTERED;
            Core->LastHitId = 0;
            DispatchHover(Entered);
        }
        Core->HoverPhase = HOVER_NONE;
        gHoverActive = 0; // with LastHitId 0 the entry is announced once more in the next turn
    }
}

VOID ReadTimer(UINT64* Ticks) { (void)gCpuArch->GetTimerValue(gCpuArch, 0, Ticks, &gGuiCore->TimerPeriod); }

VOID StepPress()
{
    GUI_CORE* Core = gGuiCore;
    const bool Timed = gPressTimed != 0; // as it was before this step

    if (Core->LeftButton == 0 && !Timed &&
        (Core->MouseState == L_CLICK || Core->MouseState == L_HOLD || Core->MouseState == L_HOLD_TO_RELEASE)) {
        Core->MouseState = NOEVENT;
        Core->TargetId = 0; // kind and reset stay
        Core->Target = nullptr;
    }
    if (Core->LeftButton == 1 && !Timed && Core->MouseState == NOEVENT) {
        ReadTimer(&gPressStartTicks);
        Core->MouseState = L_HOLD;
        gHoverActive = 0;
        Core->LastHitId = 0;
        gPressTimed = 1;
    }
    if (Core->LeftButton == 0 && Timed) {
        ReadTimer(&gPressEndTicks);
        gPressTimed = 0;
        Core->PressDuration = (gPressEndTicks - gPressStartTicks) * Core->TimerPeriod / gFemtosecondsPerMicrosecond;
        Core->MouseState = Core->PressDuration >= gLongPress ? L_HOLD_TO_RELEASE : L_CLICK;
    }
}

} // namespace

EFI_STATUS ScanPointerTargets()
{
    // Registration may go on inside a reaction, so the count is read again at every step.
    for (UINT32 Id = 0; Id < gGuiCore->Components->Count; Id++) {
        const GUI_COMPONENT* Component = ComponentOf(Id);
        if (Component == nullptr || !PointerInRect(Component->Rect, gGuiCore->PointerX, gGuiCore->PointerY)) {
            gGuiCore->HitId = 0;
            continue;
        }
        gGuiCore->HitId = Id;
        const COMPONENT_CLASS* Class = FindComponentClass(Component->Kind);
        if (Class != nullptr && Class->Scan != nullptr && Class->Scan(Component) == SCAN_STOP) {
            break;
        }
    }
    return EFI_SUCCESS;
}

VOID UpdatePointer()
{
    GUI_CORE* Core = gGuiCore;
    (void)gCursorService->SetCursorLimits(gScreenWidth, gScreenHeight);
    (void)gCursorService->GetCursorState(&Core->PointerX, &Core->PointerY, &Core->PointerZ, &Core->LeftButton,
                                         &Core->RightButton);
    StepHover();
    StepPress();
}
