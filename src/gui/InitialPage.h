// Which page and which temperature source come up first.
#pragma once

#include "gui/PageBar.h"

// Which control stands for a fan or for a temperature source; null when there is none.
struct PAGE_BAR_MEMBERS {
    BTN_COMPONENT* (*TabOfFan)(UINT8 ItemId);
    CHECK_BOX_COMPONENT* (*RadioOfSource)(UINT8 ItemId);
};

// Brings both bars into the state of the settings, as if the tab of the stored fan had been clicked. Called once, after
// all pages are made.
VOID SelectInitialPage(const PAGE_BAR_MEMBERS& Members);
