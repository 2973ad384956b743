#include "platform/board/FanPage.h"

namespace {

UINT8 LevelCount(FAN_CONTROL Control) { return Control == CONTROL_CURVE8 ? 8 : gFixedLevels; }

INT64 Distance(INT64 A, INT64 B) { return A > B ? A - B : B - A; }

bool SameSetting(const FAN_SETTING& A, const FAN_SETTING& B)
{
    const CURVE CurveA = CurveOf(A);
    const CURVE CurveB = CurveOf(B);
    bool Same = A.CurveEnabled == B.CurveEnabled && A.FixedLevel == B.FixedLevel;
    for (UINTN Node = 0; Node < gCurveNodes; Node++) {
        Same = Same && CurveA.Nodes[Node].Column == CurveB.Nodes[Node].Column &&
               CurveA.Nodes[Node].Level == CurveB.Nodes[Node].Level;
    }
    return Same;
}

// A page of 8 levels has no slider, and sends a level or none.
FAN_SETTING WithoutSlider(FAN_CONTROL Control, const FAN_SETTING& Setting)
{
    FAN_SETTING Same = Setting;
    if (Control == CONTROL_CURVE8) {
        Same.FixedLevel = 0;
    }
    return Same;
}

} // namespace

INT32 ChipTemperature(INT32 Column) { return DegreesOfColumn(Column) * 1000; }

INT32 ChipDuty(INT32 Level, FAN_CONTROL Control) { return (DutyOfLevel(Level, Control) * gFullDuty + 500) / 1000; }

UINT8 NearestColumn(INT64 Temperature)
{
    UINT8 Best = 1;
    for (UINT8 Column = 2; Column <= gCurveColumns; Column++) {
        if (Distance(ChipTemperature(Column), Temperature) < Distance(ChipTemperature(Best), Temperature)) {
            Best = Column;
        }
    }
    return Best;
}

UINT8 NearestLevel(INT64 Duty, FAN_CONTROL Control)
{
    UINT8 Best = 1;
    for (UINT8 Level = 2; Level <= LevelCount(Control); Level++) {
        if (Distance(ChipDuty(Level, Control), Duty) < Distance(ChipDuty(Best, Control), Duty)) {
            Best = Level;
        }
    }
    return Best;
}

CURVE NearestCurve(const CURVE_POINT (&Points)[gCurveNodes], FAN_CONTROL Control)
{
    CURVE Curve = {};
    UINT8 Column = 0;
    UINT8 Level = 1;
    for (UINT8 Node = 0; Node < gCurveNodes; Node++) {
        // As far as there is room for those behind.
        const UINT8 Last = static_cast<UINT8>(gCurveColumns - (gCurveNodes - 1 - Node));
        const UINT8 Near = NearestColumn(Points[Node].Temperature);
        Column = Near > Column ? Near : static_cast<UINT8>(Column + 1);
        Column = Column < Last ? Column : Last;
        const UINT8 Duty = NearestLevel(Points[Node].Duty, Control);
        Level = Duty > Level ? Duty : Level;
        Curve.Nodes[Node] = {Column, Level};
    }
    return Curve;
}

VOID SHOWN_PAGE::WasRead(FAN_CONTROL Control, const FAN_SETTING& Setting, bool TakenBack)
{
    const CURVE Nodes = CurveOf(mPage);
    mPage = mRead = Setting;
    mIsRead = true;
    if (TakenBack && Control == CONTROL_CURVE6) {
        PutCurve(&mPage, Nodes);
    }
}

VOID SHOWN_PAGE::WasSent(FAN_CONTROL Control, const FAN_SETTING& Setting)
{
    mPage = WithoutSlider(Control, Setting);
    mIsRead = false;
}

bool SHOWN_PAGE::Shows(FAN_CONTROL Control, const FAN_SETTING& Setting) const
{
    const FAN_SETTING Sent = WithoutSlider(Control, Setting);
    return SameSetting(Sent, mPage) || (mIsRead && SameSetting(Sent, mRead));
}

VOID SHOWN_PAGE::ShowFullSpeed(FAN_CONTROL Control)
{
    mIsRead = false;
    mPage.CurveEnabled = 0;
    mPage.FixedLevel = Control == CONTROL_CURVE8 ? UINT16{0} : gFixedLevels;
}
