// A page bar: a group of controls of which exactly one is selected, in the manner of tabs or radio buttons.
//
// The system has two: the fan tabs, which are buttons, and the temperature sources, which are check boxes. A control that
// joins hands its component to the bar: PrimaryEvent and Owner become the bar's, SecondaryEvent the entry's group event,
// and the bar repaints the members from then on. A tab also decides which other components count as present: the controls
// of a fan page are the tab's targets, and a page is nothing but the set of targets of one entry.
#pragma once

#include "controls/Button.h"
#include "controls/CheckBox.h"
#include "gui/core/GUICore.h"

struct PAGE_BAR_LIST {
    LIST_ENTRY Head;
    UINT16 Count;
};

struct PAGE_BAR {
    PAGE_BAR_LIST* Entries; // owned
    UINT32 SelectedIndex;
    UINT32 SelectedId; // component id of the selected member
    EFI_EVENT Event;   // every member's PrimaryEvent
    HOVER_HANDLER HoverHandler;
};

// One member. Index is its position in the bar.
struct PAGE_BAR_ENTRY {
    LIST_ENTRY Link;
    UINT32 Index;
    LIST_ENTRY Targets;
    UINT16 TargetCount;
    EFI_GUID GroupGuid;    // names the entry's event group
    VOID* Control;         // BTN_COMPONENT or CHECK_BOX_COMPONENT, by Kind; not owned
    UINT8 Kind;            // _RADIO_BTN_COMPONENT or _RADIO_CBOX_COMPONENT
    EFI_EVENT SelectEvent; // signalled when the entry becomes selected; its context is the entry
    EFI_EVENT GroupEvent;  // member of the group: the component's SecondaryEvent
};

// A component that belongs to a tab. It is switched on with the page only if Flag is null or its byte equals FlagValue.
struct PAGE_BAR_TARGET {
    LIST_ENTRY Link;
    UINT32 Index;
    EFI_EVENT Event; // member of the entry's group; null for a target that only switches its component
    UINT16 ComponentId;
    const UINT8* Flag;
    UINT8 FlagValue;
};

extern PAGE_BAR* gFanPageBar;
extern PAGE_BAR* gTemperaturePageBar;

// A bar without members. Without pool: a line on the console, the allocation's status, BarOut as it was.
EFI_STATUS CreatePageBar(PAGE_BAR** BarOut);

// Makes a control a member; the first member starts as the selected one. SelectNotify runs at TPL_NOTIFY with the entry
// as context. A control that is a member already gets a new select event and nothing else. EFI_LOAD_ERROR for a null bar
// or a control without a component; EFI_OUT_OF_RESOURCES without pool; else the status of creating the group event.
EFI_STATUS AddPageBarButton(PAGE_BAR* Bar, BTN_COMPONENT* Button, EFI_EVENT_NOTIFY SelectNotify);
EFI_STATUS AddPageBarCheckBox(PAGE_BAR* Bar, CHECK_BOX_COMPONENT* CheckBox, EFI_EVENT_NOTIFY SelectNotify);

// Adds a component to the page of Button in gFanPageBar. Notify runs with Context at each selection of the tab, also when
// it was the selected one; it may be null, and so may Flag. EFI_NO_RESPONSE for a button that isn't in the bar;
// EFI_OUT_OF_RESOURCES without pool.
EFI_STATUS AddPageBarTarget(BTN_COMPONENT* Button, VOID* Context, EFI_EVENT_NOTIFY Notify, UINT16 ComponentId,
                            const UINT8* Flag, UINT8 FlagValue);

// The entry at a position. EFI_NOT_FOUND for an empty list; otherwise EFI_SUCCESS, and the null alone tells that there is
// no such entry.
EFI_STATUS FindPageBarEntry(PAGE_BAR_LIST* List, UINT16 Index, PAGE_BAR_ENTRY** EntryOut);

// Notify function of the bar's event and hover handler of its members; Context is the bar. Always EFI_NOT_FOUND.
EFI_STATUS OnPageBarEvent(EFI_EVENT Event, VOID* Context);

// Closes the events of all entries and targets, and frees them. EFI_NOT_FOUND for an empty list.
EFI_STATUS DestroyPageBarEntries(PAGE_BAR_LIST* List);
// Frees the bar with its entries; the controls belong to their owners. EFI_SUCCESS for a null bar.
EFI_STATUS DestroyPageBar(PAGE_BAR* Bar);
