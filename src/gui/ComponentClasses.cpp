#include "gui/ComponentClasses.h"

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "controls/DragDropFrame.h"
#include "controls/Slider.h"
#include "gui/PageBar.h"

namespace {

HOVER_HANDLER HoverOfBar(const VOID* Owner) { return static_cast<const PAGE_BAR*>(Owner)->HoverHandler; }

// A passive area under the pointer: no step of a control is pending any more.
EFI_STATUS ForgetTarget(EFI_EVENT, VOID*)
{
    ClearTarget();
    return EFI_SUCCESS;
}

HOVER_HANDLER HoverOfArea(const VOID*) { return ForgetTarget; }

constexpr COMPONENT_CLASS gTabClass = {.Kind = _RADIO_BTN_COMPONENT, .Scan = ScanButton, .HoverOf = HoverOfBar};
constexpr COMPONENT_CLASS gRadioClass = {.Kind = _RADIO_CBOX_COMPONENT, .Scan = ScanRadio, .HoverOf = HoverOfBar};
constexpr COMPONENT_CLASS gPassiveClasses[] = {
    {.Kind = FOCUS_BUTTON, .Scan = nullptr, .HoverOf = HoverOfArea},
    {.Kind = GROUP_BUTTONS, .Scan = nullptr, .HoverOf = HoverOfArea},
    {.Kind = SUB_BTN_IN_SLIDER, .Scan = nullptr, .HoverOf = HoverOfArea},
    {.Kind = _BLT_BUF, .Scan = nullptr, .HoverOf = HoverOfArea},
    {.Kind = TEMPERATURE_SLIDER, .Scan = nullptr, .HoverOf = HoverOfArea},
    {.Kind = FocusEventDestroy, .Scan = nullptr, .HoverOf = HoverOfArea},
};

constexpr const COMPONENT_CLASS* gReactingClasses[] = {
    &gButtonClass, &gTabClass, &gRadioClass, &gCheckBoxClass, &gNodeClass, &gThumbClass,
};

} // namespace

const COMPONENT_CLASS* FindComponentClass(UINT32 Kind)
{
    for (const COMPONENT_CLASS* Class : gReactingClasses) {
        if (Class->Kind == Kind) {
            return Class;
        }
    }
    for (const COMPONENT_CLASS& Class : gPassiveClasses) {
        if (Class.Kind == Kind) {
            return &Class;
        }
    }
    return nullptr;
}
