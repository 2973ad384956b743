#include "monitor/Readouts.h"

#include "fan/FanPage.h"
#include "graphics/Text.h"
#include "gui/core/GUICore.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"

namespace {

struct GAUGE_FACTS {
    UINT32 X;
    const CHAR16* Name; // in the registry; what the user reads is the string of the item
};

constexpr GAUGE_FACTS gGaugeFacts[gVoltageItemCount] = {
    // left edge, name
    {69, u"CPU Core"},    {196, u"CPU I/O"}, {323, u"System/3.3V"}, {450, u"System/5V"},
    {577, u"System/12V"}, {704, u"GPU"},     {831, u"DRAM"},
};

// The rotations. The readouts read at every second step and rest at the others, and so do the gauges' paintings.
constexpr UINT64 gReadoutSteps = 14;
constexpr UINT64 gVoltageSteps = 8;
constexpr UINT64 gGaugePaintSteps = 14;

UINT64 gReadoutStep;
UINT64 gVoltageStep;
UINT64 gGaugePaintStep;

bool gAwaitsPainting[gVoltageItemCount]; // gauges that got a reading after they were painted last

struct READING {
    EFI_STATUS Status;
    UINT64 Value;
    UINT8 Present;
};

READING ReadItem(UINTN Item)
{
    READING Reading = {};
    Reading.Status = gHwService->GetItemValue(gHwService, static_cast<UINT8>(Item), &Reading.Value, &Reading.Present);
    return Reading;
}

VOID DrawReadout(const READOUT& Readout, UINT64 Value, const PIXEL* Color)
{
    CHAR16 Text[gValueTextLength] = {u'0'};
    if (Value != 0) {
        ValueToString(Text, static_cast<INT64>(Value));
    }
    (void)DrawString(Readout.NumberX, Readout.Y + gReadoutTextY, Text, DRAW_STRING_BOX, Color, &gReadoutBackColor,
                     gGuiCore);
}

// Drawn when this very reading says that the source is there.
VOID UpdateTemperature(const READOUT& Readout)
{
    const READING Reading = ReadItem(Readout.Item);
    if (Reading.Present == 1) {
        DrawReadout(Readout, Reading.Value, &gReadoutColor);
    }
}

// Drawn when the fan was there at the start. The number of the fan whose page is on top is the bright one.
VOID UpdateFan(const READOUT& Readout)
{
    const READING Reading = ReadItem(Readout.Item);
    if (gItemPresent[Readout.Item] == 1) {
        const bool OnTop = gGlobalVariable.SelectedFanItem == Readout.Item;
        DrawReadout(Readout, Reading.Value, OnTop ? &gReadoutSelectedColor : &gLabelColor);
    }
}

// A gauge that gets the reading it holds takes it that its picture shows it. Readings come faster than paintings, so an
// equal one waits until the gauge has been painted: else a step of the voltage could be missing from the picture for good.
VOID HandOver(UINTN Gauge, INT64 Millivolts)
{
    VOLTAGE_GAUGE* To = gVoltageGauge[Gauge];
    if (To == nullptr || (gAwaitsPainting[Gauge] && To->Value == Millivolts)) {
        return;
    }
    if (!EfiError(SetVoltageGaugeValue(To, Millivolts))) {
        gAwaitsPainting[Gauge] = true;
    }
}

} // namespace

VOLTAGE_GAUGE* gVoltageGauge[gVoltageItemCount];

VOID CreateVoltageGauges()
{
    for (UINTN Gauge = 0; Gauge < gVoltageItemCount; Gauge++) {
        const UINTN Item = gFirstVoltageItem + Gauge;
        if (gItemPresent[Item] != 1) {
            continue;
        }
        const GAUGE_FACTS& Facts = gGaugeFacts[Gauge];
        {
            const TEMPORARY<CHAR16> Title(gHwService->GetItemString(gHwService, static_cast<UINT8>(Item)));
            (void)CreateVoltageGauge(&gVoltageGauge[Gauge], Title.Data, static_cast<INT32>(Facts.X));
        }
        if (gVoltageGauge[Gauge] != nullptr) {
            const GUI_RECT Rect = PictureRect(Facts.X, gGaugeY, gGaugeWidth, gGaugeHeight);
            RegisterControl(gVoltageGauge[Gauge], &Rect, _BLT_BUF, &gVoltageGauge[Gauge]->Id, nullptr, nullptr,
                            Facts.Name);
        }
    }
}

VOID DestroyVoltageGauges()
{
    for (VOLTAGE_GAUGE*& Gauge : gVoltageGauge) {
        (void)DestroyVoltageGauge(Gauge);
        Gauge = nullptr;
    }
}

VOID UpdateReadouts()
{
    gReadoutStep++;
    if (gReadoutStep >= gReadoutSteps) {
        gReadoutStep = 0;
        return;
    }
    if (gReadoutStep % 2 == 0) {
        return;
    }
    const UINTN Place = gReadoutStep / 2;
    if (Place < gTemperatureItemCount) {
        UpdateTemperature(gReadout[Place]);
    }
    UpdateFan(gFanReadout[Place]);
}

VOID SampleVoltage()
{
    gVoltageStep++;
    if (gVoltageStep >= gVoltageSteps) {
        gVoltageStep = 0;
        return;
    }
    const UINTN Gauge = gVoltageStep - 1;
    const READING Reading = ReadItem(gFirstVoltageItem + Gauge);
    if (Reading.Status == EFI_SUCCESS && Reading.Present == 1) {
        HandOver(Gauge, static_cast<INT64>(Reading.Value));
    }
}

VOID PaintNextGauge()
{
    gGaugePaintStep++;
    if (gGaugePaintStep >= gGaugePaintSteps) {
        gGaugePaintStep = 0;
        return;
    }
    if (gGaugePaintStep % 2 == 1) {
        const UINTN Gauge = gGaugePaintStep / 2;
        (void)DrawVoltageGauge(gVoltageGauge[Gauge], 0, Gauge == gVoltageItemCount - 1 ? 1 : 0);
        gAwaitsPainting[Gauge] = false;
    }
}

VOID ValueToString(CHAR16* Buffer, INT64 Value)
{
    // The magnitude as unsigned: that of the lowest value has no place among the signed ones.
    UINT64 Rest = static_cast<UINT64>(Value);
    if (Value < 0) {
        *Buffer++ = u'-';
        Rest = 0 - Rest;
    }
    UINTN Length = 0;
    for (UINT64 Digits = Rest; Digits != 0; Digits /= 10) {
        Length++;
    }
    Buffer[Length] = 0;
    for (; Rest != 0; Rest /= 10) {
        Buffer[--Length] = static_cast<CHAR16>(u'0' + Rest % 10);
    }
}
