#include "controls/VoltageGauge.h"

#include "graphics/GraphicProtocol.h"
#include "graphics/Text.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "support/Report.h"
#include "support/Strings.h"

namespace {

constexpr INT32 gGaugeMaximum = 13000; // millivolts
constexpr INT32 gFirstValue = 6500;    // millivolts; the first painting makes it 0

// Places on the canvas.
constexpr INT32 gBarX = 2;
constexpr INT32 gBarY = 19;
constexpr INT32 gBarWidth = gGaugeWidth - 3;
constexpr INT32 gBarHeight = 36;
constexpr INT32 gFirstDotRow = 22; // of the bar
constexpr INT32 gTopLineRow = 39;
constexpr INT32 gBottomLineRow = 57;
constexpr INT32 gTitleY = 62;
constexpr INT32 gTextGap = 5; // from the bar's tip to the right end of the value

constexpr UINTN gNumberLength = 127;                  // characters that FloatToString is given
constexpr UINTN gValueTextLength = gNumberLength + 5; // with the zeros behind it and the end mark

constexpr CHAR8 gSourcePath[] = "src\\controls\\VoltageGauge.cpp";

VOID FillGradient(VOLTAGE_GAUGE* Gauge)
{
    const FLOAT_WORD Count = gFloatMath->IntToFloat(gBarWidth);
    for (INT32 Column = 0; Column < gBarWidth; Column++) {
        const FLOAT_WORD Part = gFloatMath->FloatDivide(gFloatMath->IntToFloat(Column), Count);
        Gauge->Gradient[Column] = MixColor(Part, Gauge->RightColor, Gauge->LeftColor);
    }
}

UINT32 CountDigits(INT32 Value)
{
    UINT32 Digits = 1;
    for (INT32 Rest = Value / 10; Rest != 0; Rest /= 10) {
        Digits++;
    }
    return Digits;
}

// The value in volts. FloatToString drops trailing zeros, and this puts back what is missing of the places behind the
// point. Digits is the number of digits of the millivolts. An empty text for a value that gets none.
VOID FormatVolts(CHAR16 (&Text)[gValueTextLength], INT32 Value, UINT32 Digits)
{
    SetMem(Text, sizeof(Text), 0);
    const CHAR16* Zeros = nullptr;
    if (Value % 10 != 0) {
        Zeros = u"";
    } else if (Digits == 4 || Digits == 5) {
        Zeros = Value % 100 != 0 ? u"0" : Value % 1000 == 0 ? u".000" : u"";
    } else if (Digits == 3) {
        Zeros = u"0";
    } else if (Value == 0) {
        AppendString(Text, u"0.000");
        return;
    }
    if (Zeros == nullptr) {
        return;
    }
    const FLOAT_WORD Volts = gFloatMath->FloatDivide(gFloatMath->IntToFloat(Value), gFloatMath->IntToFloat(1000));
    (void)gFloatMath->FloatToString(Volts, Text, gNumberLength);
    Text[gNumberLength] = 0;
    AppendString(Text, Zeros);
}

VOID DrawGaugeFrame(VOLTAGE_GAUGE* Gauge, bool Last)
{
    FillPixels(Gauge->Canvas, gGaugeWidth * gGaugeHeight, gLabelBackColor);
    FillPixels(Gauge->Canvas + gTopLineRow * gGaugeWidth, gGaugeWidth, gGaugeFrameColor);
    FillPixels(Gauge->Canvas + gBottomLineRow * gGaugeWidth, gGaugeWidth, gGaugeFrameColor);
    for (INT32 Row = gTopLineRow + 1; Row < gBottomLineRow; Row++) {
        PIXEL* Line = Gauge->Canvas + Row * gGaugeWidth;
        Line[0] = gGaugeFrameColor;
        if (Last) {
            Line[gGaugeWidth - 1] = gGaugeFrameColor;
        }
    }
}

// Columns of the bar that the value takes.
INT64 BarLength(const VOLTAGE_GAUGE* Gauge)
{
    const FLOAT_WORD Part =
        gFloatMath->FloatDivide(gFloatMath->IntToFloat(Gauge->Value), gFloatMath->IntToFloat(Gauge->Maximum));
    return gFloatMath->FloatToInt(gFloatMath->FloatMultiply(Part, gFloatMath->IntToFloat(gBarWidth)));
}

// A field of dots on every second row and column of the lower part, closed by a solid line at its tip.
VOID DrawBar(VOLTAGE_GAUGE* Gauge, INT64 Length)
{
    FillPixels(Gauge->Bar, gBarWidth * gBarHeight, gLabelBackColor);
    const bool HasTip = Length > 0 && Length <= gBarWidth;
    for (INT32 Row = gFirstDotRow; Row < gBarHeight; Row++) {
        PIXEL* Line = Gauge->Bar + Row * gBarWidth;
        for (INT32 Column = 0; Row % 2 == 0 && Column < gBarWidth && Column <= Length; Column += 2) {
            Line[Column] = Gauge->Gradient[Column];
        }
        if (HasTip && Row > gFirstDotRow) {
            Line[Length - 1] = Gauge->Gradient[Length - 1];
        }
    }
}

VOID OverlayCanvas(VOLTAGE_GAUGE* Gauge, const PIXEL* Picture, INT32 Width, INT32 Height, INT32 X, INT32 Y)
{
    if (Picture != nullptr) {
        (void)OverlayBlt(Picture, Width, Height, Gauge->Canvas, gGaugeWidth, gGaugeHeight, X, Y, nullptr, nullptr, 0);
    }
}

// The picture of a new value, but for the title.
VOID PaintGauge(VOLTAGE_GAUGE* Gauge, UINT32 Digits, bool Last)
{
    CHAR16 Text[gValueTextLength];
    FormatVolts(Text, Gauge->Value, Digits);
    PIXEL* TextImage = nullptr;
    UINT16 TextWidth = 0;
    UINT16 TextHeight = 0;
    if (Text[0] != 0) {
        (void)StringToBlt(&gGaugeFrameColor, &gLabelBackColor, &TextImage, &TextWidth, &TextHeight, Text);
    }
    DrawGaugeFrame(Gauge, Last);
    const INT64 Length = BarLength(Gauge);
    DrawBar(Gauge, Length);
    OverlayCanvas(Gauge, Gauge->Bar, gBarWidth, gBarHeight, gBarX, gBarY);
    const INT64 TextX = Length - TextWidth + gTextGap;
    OverlayCanvas(Gauge, TextImage, TextWidth, TextHeight, static_cast<INT32>(TextX < 0 ? -TextX : TextX), 0);
    FreePool(TextImage);
}

} // namespace

EFI_STATUS CreateVoltageGauge(VOLTAGE_GAUGE** Gauge, const CHAR16* Title, INT32 X)
{
    if (*Gauge != nullptr) {
        return EFI_UNSUPPORTED;
    }
    VOLTAGE_GAUGE* New = AllocateZeroRecord<VOLTAGE_GAUGE>();
    if (New == nullptr) {
        REPORT("AllocatePool Fail (CreateVoltageGauge)");
        return EFI_OUT_OF_RESOURCES;
    }
    New->X = static_cast<UINT64>(X);
    New->Y = gGaugeY;
    New->Width = gGaugeWidth;
    New->Height = gGaugeHeight;
    New->LeftColor = gGaugeLeftColor;
    New->RightColor = gGaugeRightColor;
    New->Maximum = gGaugeMaximum;
    New->Minimum = 0;
    New->Value = gFirstValue;
    New->Canvas = AllocateZeroArray<PIXEL>(gGaugeWidth * gGaugeHeight);
    New->Bar = AllocateZeroArray<PIXEL>(gBarWidth * gBarHeight);
    New->Gradient = AllocateArray<PIXEL>(gBarWidth);
    if (New->Canvas == nullptr || New->Bar == nullptr || New->Gradient == nullptr) {
        REPORT("AllocatePool Fail (CreateVoltageGauge)");
        (void)DestroyVoltageGauge(New);
        return EFI_OUT_OF_RESOURCES;
    }
    FillGradient(New);
    if (Title != nullptr) {
        (void)StringToBlt(&gGaugeTitleColor, &gLabelBackColor, &New->TitleImage, &New->TitleWidth, &New->TitleHeight,
                          Title);
    }
    *Gauge = New;
    return EFI_SUCCESS;
}

EFI_STATUS DestroyVoltageGauge(VOLTAGE_GAUGE* Gauge)
{
    if (Gauge == nullptr) {
        return EFI_NOT_FOUND;
    }
    FreePool(Gauge->TitleImage);
    FreePool(Gauge->Canvas);
    FreePool(Gauge->Bar);
    FreePool(Gauge->Gradient);
    FreePool(Gauge);
    return EFI_SUCCESS;
}

EFI_STATUS SetVoltageGaugeValue(VOLTAGE_GAUGE* Gauge, INT64 Value)
{
    if (Gauge == nullptr || Value < Gauge->Minimum || Value > Gauge->Maximum) {
        return EFI_NOT_FOUND;
    }
    Gauge->Unchanged = Value == Gauge->Value ? 1 : 0;
    Gauge->Value = static_cast<INT32>(Value);
    return EFI_SUCCESS;
}

EFI_STATUS DrawVoltageGauge(VOLTAGE_GAUGE* Gauge, UINT8 FirstPaint, UINT8 Last)
{
    if (Gauge == nullptr) {
        return EFI_SUCCESS;
    }
    // The digits stay those of the value before the first painting empties the gauge.
    const UINT32 Digits = CountDigits(Gauge->Value);
    if (FirstPaint == 1) {
        Gauge->Value = 0;
    }
    if (Gauge->Unchanged != 1) {
        PaintGauge(Gauge, Digits, Last == 1);
    }
    if (Gauge->TitleWidth > gScreenWidth) {
        Gauge->TitleWidth = 0;
    }
    if (Gauge->TitleHeight > gScreenHeight) {
        Gauge->TitleHeight = 0;
    }
    OverlayCanvas(Gauge, Gauge->TitleImage, Gauge->TitleWidth, Gauge->TitleHeight, 0, gTitleY);
    const GUI_RECT Rect =
        PictureRect(static_cast<UINT32>(Gauge->X), static_cast<UINT32>(Gauge->Y), gGaugeWidth, gGaugeHeight);
    (void)RepaintBlt(Gauge->Canvas, Rect);
    return EFI_SUCCESS;
}
