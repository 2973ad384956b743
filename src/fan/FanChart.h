// The running chart behind the nodes or the thumb of the page on top: the fan's speed and one temperature, a sample a
// tick. Only the chart of the page on top moves. Which temperature is charted is one choice for all fans, made with the
// radios left of the panel; it goes to no service.
#pragma once

#include "fan/FanPage.h"

// Every 200 ms, also while the left button is down: reads the selected temperature into CurrentTemperature, makes
// SelectedFanItem follow the selected tab, and gives that fan's chart its sample.
VOID FanChartTick();

// One sample and repaint of the page's chart, which starts over from the picture of the control beneath. While a node
// or the thumb is held the chart stays off the display, as the drag repaints the same rectangle. Nothing happens on a
// page that lacks the chart or the control.
VOID UpdateFanChart(FAN_PAGE* Page);

// Select action of the temperature radios; Context is the radio's PAGE_BAR_ENTRY. The entry's index becomes
// TemperatureSource, and the temperature series of the chart on show starts anew.
EFI_STATUS OnTemperatureSourceSelected(EFI_EVENT Event, VOID* Context);
