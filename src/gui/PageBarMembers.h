// What the units of the page bar share: ways from a list's links to its records, and from an entry to its control.
#pragma once

#include "gui/PageBar.h"
#include "support/Lists.h"

inline PAGE_BAR_ENTRY* EntryOf(LIST_ENTRY* Link)
{
    return RecordOf<PAGE_BAR_ENTRY>(Link, offsetof(PAGE_BAR_ENTRY, Link));
}

inline PAGE_BAR_TARGET* TargetOf(LIST_ENTRY* Link)
{
    return RecordOf<PAGE_BAR_TARGET>(Link, offsetof(PAGE_BAR_TARGET, Link));
}

inline BTN_COMPONENT* ButtonOf(const PAGE_BAR_ENTRY* Entry) { return static_cast<BTN_COMPONENT*>(Entry->Control); }

inline CHECK_BOX_COMPONENT* CheckBoxOf(const PAGE_BAR_ENTRY* Entry)
{
    return static_cast<CHECK_BOX_COMPONENT*>(Entry->Control);
}

inline UINT32 ControlId(const PAGE_BAR_ENTRY* Entry)
{
    return Entry->Kind == _RADIO_BTN_COMPONENT ? ButtonOf(Entry)->Id : CheckBoxOf(Entry)->Id;
}
