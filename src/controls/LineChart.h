// A line chart: the recent history of a fan's speed and of the temperature as two filled curves that scroll from right
// to left, laid on the rectangle of a page's frame or slider.
//
// It isn't in the registry and takes no pointer events. On each sampling tick its page fills Pixels with the picture
// that lies under the chart, then calls PushLineChartSample, DrawLineChart and, when the chart is to be seen,
// ShowLineChart. Drawing adds to what Pixels holds and moves the history one column on. The history outlives the
// console within a boot in firmware variables.
#pragma once

#include "controls/Grid.h"
#include "graphics/Kernels.h"
#include "shell/contract/Services.h"

struct LINE_CHART_SERIES {
    EFI_GUID VariableGuid; // vendor of the firmware variable that keeps the samples
    PIXEL* Layer;          // what a plot decides for each pixel, a LINE_CHART_CLASS and a colour. Shared by all charts
    UINT32* Samples;       // one for each pixel column, oldest first; 0 means no data yet. Owned
    INT32 Maximum;
    INT32 Minimum;
    PIXEL* Gradient;      // Height + 1 entries: the colour at each height. Owned
    PIXEL* BlendGradient; // the same at half strength, ready to be added. Owned
};

struct LINE_CHART {
    PIXEL* Pixels;          // shared by all charts
    UINT32 BlendFactor;     // float word of 128 / 255
    UINT32 BlendComplement; // float word of 1 - BlendFactor
    GUI_RECT Rect;
    LINE_CHART_SERIES Temperature; // 0 to 100 degrees
    LINE_CHART_SERIES Rpm;         // 0 to 7000 revolutions a minute
};

// Makes a chart on the rectangle of a control and takes up the histories that a former start left. Without pool, or for
// a rectangle that is empty or not on the screen, Chart becomes null and the status is an error: the page then has no
// chart, and the stored histories stay as they are.
EFI_STATUS CreateLineChart(LINE_CHART** Chart, const GUI_RECT* Rect, const EFI_GUID* RpmGuid,
                           const EFI_GUID* TemperatureGuid);

// Stores both histories and frees everything, the record included. EFI_NOT_FOUND for a null chart.
EFI_STATUS DestroyLineChart(LINE_CHART* Chart);

// Enters the newest samples, the low 32 bits of each. A 0 is stored as 1, so that a reading of zero differs from an
// empty history. EFI_NOT_FOUND for a null chart.
EFI_STATUS PushLineChartSample(LINE_CHART* Chart, UINT64 Rpm, UINT64 Temperature);

// Draws grid, curves and mark into Pixels and moves the history one column on. EFI_NOT_FOUND for a null chart.
EFI_STATUS DrawLineChart(LINE_CHART* Chart);

// Brings Pixels to the screen. The status of PasteBlt; EFI_NOT_FOUND for a null chart.
EFI_STATUS ShowLineChart(LINE_CHART* Chart);

// Decides for each of the Width x Height pixels of Layer what it is, and moves Samples one column to the left. Gradient
// has Height + 1 entries; Color is a pixel word. Known is what the layer holds from a plot with these Gradient and sizes;
// rows that stay as they are aren't written again. The result is what it holds now.
LINE_CHART_EXTENT PlotLineChartSeries(PIXEL* Layer, const PIXEL* Gradient, UINT32* Samples, UINT32 Width, UINT32 Height,
                                      INT32 Maximum, INT32 Minimum, UINT32 Color, LINE_CHART_EXTENT Known);
