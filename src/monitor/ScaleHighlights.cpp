#include "monitor/ScaleHighlights.h"

#include "controls/DragDropFrame.h"
#include "controls/Slider.h"
#include "graphics/Text.h"
#include "gui/core/GUICore.h"
#include "monitor/Scales.h"
#include "support/Strings.h"

namespace {

constexpr UINT8 gNone = 255;

// Which labels are shown in white: of the column and the row of a dragged node, and of the row of a dragged thumb. The
// flag falls when the label goes; the index says which it was.
UINT8 gColumnShown;
UINT8 gColumn = gNone;
UINT8 gRowShown;
UINT8 gRow = gNone;
UINT8 gSliderRowShown;
UINT8 gSliderRow = gNone;

constexpr UINT32 gColumnLabelLeft = 376;
constexpr UINT32 gColumnLabelY = 520;
constexpr UINT32 gRowLabelRight = 362;
constexpr UINT32 gRowLabelY8 = 270;
constexpr UINT32 gRowLabelY6 = 273;

// Four blanks wipe a row's label, at the height of the 8-row labels for either scale.
constexpr CHAR16 gRowBlanks[] = u"    ";
constexpr UINT32 gRowBlanksX = 330;

// The display at once, and Screen for later compositions.
VOID DrawHighlight(UINT32 X, UINT32 Y, const CHAR16* Text, const PIXEL* Color)
{
    (void)DrawString(X, Y, Text, DRAW_STRING_VIDEO, Color, &gPanelColor, gGuiCore);
    (void)DrawString(X, Y, Text, DRAW_STRING_OPAQUE, Color, &gPanelColor, gGuiCore);
}

// Nearest cell to a place inside the control; gNone for a report without cells.
UINT32 NearestCell(UINT32 Place, UINT32 CellSize) { return CellSize == 0 ? gNone : (Place + CellSize / 2) / CellSize; }

UINT32 ColumnLabelX(UINT32 Column, UINT32 CellWidth) { return (2 * Column + 1) * (CellWidth / 2) + gColumnLabelLeft; }

VOID DrawColumnLabel(UINT32 Column, UINT32 CellWidth)
{
    DrawHighlight(ColumnLabelX(Column, CellWidth), gColumnLabelY, gScaleTemperatures[Column], &gScaleHotColorX);
}

VOID DrawRowLabel(UINT32 Row, UINT32 CellHeight, ACTIVE_SCALE Scale)
{
    const bool Rows8 = Scale == ACTIVE_SCALE_8;
    const CHAR16* Label = Rows8 ? gScaleDuty8[Row] : gScaleDuty6[Row];
    DrawHighlight(gRowLabelRight - gCharacterWidth * static_cast<UINT32>(StringLength(Label)),
                  Row * CellHeight + (Rows8 ? gRowLabelY8 : gRowLabelY6), Label, &gScaleHotColorY);
}

VOID EraseRowLabel(UINT8 Row, UINT32 CellHeight)
{
    DrawHighlight(gRowBlanksX, Row * CellHeight + gRowLabelY8, gRowBlanks, &gPanelColor);
    DrawDutyScale(0, Row);
}

VOID UpdateColumn(const DRAG_REPORT& Report)
{
    const UINT32 Column = NearestCell(Report.RelX, Report.CellWidth);
    if (gColumn == Column) {
        return;
    }
    if (Column < gScaleColumns && gColumnShown == 0) {
        DrawColumnLabel(Column, Report.CellWidth);
        gColumnShown = 1;
        gColumn = static_cast<UINT8>(Column);
    } else if (gColumn < gScaleColumns) {
        DrawHighlight(ColumnLabelX(gColumn, Report.CellWidth), gColumnLabelY, gScaleBlanks[gColumn], &gPanelColor);
        DrawTemperatureScale(0, gColumn);
        gColumnShown = 0;
        gColumn = gNone;
    }
}

VOID UpdateRow(const DRAG_REPORT& Report)
{
    const UINT32 Row = NearestCell(Report.RelY, Report.CellHeight);
    if (gRow == Row) {
        return;
    }
    UINT32 Top = 0;
    const ACTIVE_SCALE Scale = GetActiveScale(&Top);
    const UINT32 Labels = Scale == ACTIVE_SCALE_8 ? gScaleRows8 : Scale == ACTIVE_SCALE_6 ? gScaleRows6 : 0;
    if (Row < Labels && gRowShown == 0) {
        DrawRowLabel(Row, Report.CellHeight, Scale);
        gRowShown = 1;
        gRow = static_cast<UINT8>(Row);
    } else if (gRow != gNone) {
        EraseRowLabel(gRow, Report.CellHeight);
        gRowShown = 0;
        gRow = gNone;
    }
}

// A slider's level holds for all temperatures, so all columns light up with the row.
VOID UpdateSliderRow(const DRAG_REPORT& Report)
{
    const UINT32 Row = NearestCell(Report.RelY, Report.CellHeight);
    if (gSliderRow == Row) {
        return;
    }
    if (Row < gScaleRows6 && gSliderRowShown == 0) {
        for (UINT32 Column = 0; Column < gScaleColumns; Column++) {
            DrawColumnLabel(Column, Report.CellWidth);
        }
        DrawRowLabel(Row, Report.CellHeight, ACTIVE_SCALE_6);
        gSliderRowShown = 1;
        gSliderRow = static_cast<UINT8>(Row);
    } else if (gSliderRowShown == 1) {
        EraseRowLabel(gSliderRow, Report.CellHeight);
        gSliderRowShown = 0;
        gSliderRow = gNone;
    }
}

} // namespace

VOID UpdateScaleHighlights()
{
    const bool Held = gGuiCore->MouseState == L_HOLD;
    if (Held && gGuiCore->TargetKind == _DRAGDROP_COMPONENT) {
        if (gFrameDragReport.AbsX != 0) {
            UpdateColumn(gFrameDragReport);
        }
        if (gFrameDragReport.AbsY != 0) {
            UpdateRow(gFrameDragReport);
        }
    }
    if (!Held) {
        gColumnShown = 0;
        gColumn = gNone;
        gRowShown = 0;
        gRow = gNone;
    }
    if (Held && gGuiCore->TargetKind == _SLIDER_COMPONENT && gSliderDragReport.AbsY != 0) {
        UpdateSliderRow(gSliderDragReport);
    }
    if (!Held) {
        gSliderRowShown = 0;
        gSliderRow = gNone;
    }
}
