// What ties a fan page together: the links of its box, the targets of its tab and its drag listeners. Which call follows
// which, and in which order, is a table for each layout.
#pragma once

#include "fan/FanPage.h"

// Makes the joins of a page whose controls are there. A join that needs a missing one is left out.
VOID JoinFanPage(FAN_PAGE* Page);

// Carries the State of the page's box, which somebody has written, to its links, its components, its picture and that of
// a frame that is now live. A drag under way goes on. Clicked runs the functions of the box's links too, as after a click
// on it, and so writes the page's setting; they have run when this returns: it is called inside a button's action, at a
// task priority at which the firmware would hold their events back until the action has ended. A missing box does
// nothing.
VOID ApplyFanBox(FAN_PAGE* Page, bool Clicked);
