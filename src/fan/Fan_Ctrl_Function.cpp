#include "fan/Fan_Ctrl_Function.h"

#include "controls/Labels.h"
#include "fan/FanJoins.h"
#include "graphics/Artwork.h"
#include "gui/core/GUICore.h"
#include "shell/contract/Board.h"

namespace {

// 40, 45, 50 and 55 degrees at the four lowest duties.
constexpr FAN_CURVE gDefaultCurve = {{1, 2, 3, 4}, {1, 2, 3, 4}};

// FixedLevel of a record from a dropped node on a page without a slider; what the page's box writes carries 0.
constexpr UINT16 gDropFixedLevel = 1;

VOID PutCurve(const FAN_CURVE& Curve, FAN_SETTING* Record)
{
    Record->Column0 = Curve.Column[0];
    Record->Column1 = Curve.Column[1];
    Record->Column2 = Curve.Column[2];
    Record->Column3 = Curve.Column[3];
    Record->Level0 = Curve.Level[0];
    Record->Level1 = Curve.Level[1];
    Record->Level2 = Curve.Level[2];
    Record->Level3 = Curve.Level[3];
}

FAN_CURVE CurveOfFrame(const DRAGDROP_COMPONENT& Frame)
{
    FAN_CURVE Curve = {};
    for (UINTN Node = 0; Node < gNodeCount; Node++) {
        Curve.Column[Node] = static_cast<UINT8>(Frame.Nodes[Node].Column + 1);
        Curve.Level[Node] = static_cast<UINT8>(Frame.Rows - Frame.Nodes[Node].Row);
    }
    return Curve;
}

// --- The occasions on which a page writes ---

// The box's functions also run when the page's tab is selected. On a page without a slider the pointer tells the two
// apart, and only a click on the box writes; the other pages write their setting once more.
EFI_STATUS WriteFromBox(const FAN_PAGE* Page, UINT8 CurveOn)
{
    if (Page->Layout == FAN_LAYOUT_CURVE8 &&
        (Page->CheckBox == nullptr || !PointInRect(Page->CheckBox->Rect, gGuiCore->PointerX, gGuiCore->PointerY))) {
        return EFI_NOT_FOUND;
    }
    FAN_SETTING Record;
    const EFI_STATUS Status = BuildFanSetting(Page, CurveOn, &Record);
    if (!EfiError(Status)) {
        (void)WriteFanSetting(Page, &Record);
    }
    return Status;
}

// What was dropped decides whether the curve is on. A command may have written the box while the node or the thumb was in
// hand; it then follows what is written here.
VOID LetBoxFollow(FAN_PAGE* Page, UINT8 CurveOn)
{
    if (Page->CheckBox != nullptr && Page->CheckBox->State != CurveOn) {
        Page->CheckBox->State = CurveOn;
        ApplyFanBox(Page, false);
    }
}

VOID WriteFromFrameDrop(FAN_PAGE* Page)
{
    FAN_SETTING Record;
    if (gGlobalVariable.SelectedFanItem != Page->ItemId || EfiError(BuildFanSetting(Page, 1, &Record))) {
        return;
    }
    if (Page->Layout == FAN_LAYOUT_CURVE8) {
        Record.FixedLevel = gDropFixedLevel;
    }
    (void)WriteFanSetting(Page, &Record);
    LetBoxFollow(Page, 1);
}

VOID WriteFromSliderDrop(FAN_PAGE* Page)
{
    FAN_SETTING Record;
    if (gGlobalVariable.SelectedFanItem != Page->ItemId || EfiError(BuildFanSetting(Page, 0, &Record))) {
        return;
    }
    (void)WriteFanSetting(Page, &Record);
    LetBoxFollow(Page, 0);
}

// Listeners bring no page with them, so each page has its own.
template <UINTN Index> VOID OnFrameDrop() { WriteFromFrameDrop(&gFanPage[Index]); }
template <UINTN Index> VOID OnSliderDrop() { WriteFromSliderDrop(&gFanPage[Index]); }

template <UINTN Index> constexpr FAN_PAGE_LISTENERS ListenersOf() { return {OnFrameDrop<Index>, OnSliderDrop<Index>}; }

} // namespace

constinit const FAN_PAGE_LISTENERS gFanPageListeners[gFanItemCount] = {
    ListenersOf<0>(), ListenersOf<1>(), ListenersOf<2>(), ListenersOf<3>(),
    ListenersOf<4>(), ListenersOf<5>(), ListenersOf<6>(),
};

EFI_STATUS OnCurveChecked(EFI_EVENT, VOID* Context) { return WriteFromBox(static_cast<FAN_PAGE*>(Context), 1); }
EFI_STATUS OnCurveUnchecked(EFI_EVENT, VOID* Context) { return WriteFromBox(static_cast<FAN_PAGE*>(Context), 0); }

FAN_CURVE CurveOfSetting(const FAN_SETTING& Setting)
{
    return {{Setting.Column0, Setting.Column1, Setting.Column2, Setting.Column3},
            {Setting.Level0, Setting.Level1, Setting.Level2, Setting.Level3}};
}

FAN_CURVE LegalizeCurve(const FAN_CURVE& Curve, UINT8 Columns, UINT8 Rows)
{
    FAN_CURVE Legal = {};
    UINT8 LowestColumn = 1;
    UINT8 LowestLevel = 1;
    for (UINTN Node = 0; Node < gNodeCount; Node++) {
        const UINT8 LastColumn = static_cast<UINT8>(Columns - (gNodeCount - 1 - Node));
        Legal.Column[Node] = Limit(Curve.Column[Node], LowestColumn, LastColumn);
        Legal.Level[Node] = Limit(Curve.Level[Node], LowestLevel, Rows);
        LowestColumn = static_cast<UINT8>(Legal.Column[Node] + 1);
        LowestLevel = Legal.Level[Node];
    }
    return Legal;
}

UINT8 LegalFixedLevel(UINT16 FixedLevel, UINT8 Rows) { return Limit<UINT8>(static_cast<UINT8>(FixedLevel), 1, Rows); }

VOID LoadNodeCells(const FAN_PAGE* Page, const CHAR16* const* DutyTable, UINT32* Cells)
{
    FAN_SETTING Setting = {};
    const EFI_STATUS Status = ReadFanSetting(Page, &Setting);
    const UINT8 Columns = CountStringTable(gTemperatureLabels);
    const UINT8 Rows = CountStringTable(DutyTable);
    const FAN_CURVE Curve =
        Status == EFI_OUT_OF_RESOURCES ? gDefaultCurve : LegalizeCurve(CurveOfSetting(Setting), Columns, Rows);
    for (UINTN Node = 0; Node < gNodeCount; Node++) {
        Cells[Node] = static_cast<UINT32>((Rows - Curve.Level[Node]) * Columns + Curve.Column[Node] - 1);
    }
}

EFI_STATUS BuildFanSetting(const FAN_PAGE* Page, UINT8 CurveOn, FAN_SETTING* Record)
{
    *Record = {};
    const bool HasFrame = LayoutHasFrame(Page->Layout);
    const bool HasSlider = LayoutHasSlider(Page->Layout);
    if ((HasFrame && !PageHasFrame(Page)) || (HasSlider && !PageHasSlider(Page))) {
        return EFI_NOT_READY;
    }

    Record->CurveEnabled = CurveOn;
    if (HasFrame) {
        PutCurve(LegalizeCurve(CurveOfFrame(Page->Frame), Page->Frame.Columns, Page->Frame.Rows), Record);
    }
    if (HasSlider) {
        const SLIDER_COMPONENT& Slider = Page->Slider;
        Record->FixedLevel = static_cast<UINT16>(Smaller<UINT32>(Slider.Level + 1u, Slider.Rows));
    }
    return EFI_SUCCESS;
}

VOID RestoreFanNodes(FAN_PAGE* Page)
{
    const FAN_PAGE_LAYOUT Layout = LayoutNow(Page);
    if (Layout == FAN_LAYOUT_CURVE8 && PageHasFrame(Page)) {
        const FAN_CURVE Curve = LegalizeCurve(CurveOfSetting(Page->Setting), Page->Frame.Columns, Page->Frame.Rows);
        const UINT8 Places[] = {Curve.Column[3], Curve.Column[2], Curve.Column[1], Curve.Column[0],
                                Curve.Level[0],  Curve.Level[1],  Curve.Level[2],  Curve.Level[3]};
        (void)SetDragDropNodes(&Page->Frame, Places);
    } else if (LayoutHasSlider(Layout) && PageHasSlider(Page)) {
        (void)SetSliderLevel(&Page->Slider, LegalFixedLevel(Page->Setting.FixedLevel, Page->Slider.Rows));
    }
}
