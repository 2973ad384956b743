#include "platform/board/Lines.h"

namespace {

constexpr INT64 gFarthest = INT64{1} << 30; // products of two such numbers still fit

bool IsFar(INT64 Coordinate) { return Coordinate < -gFarthest || Coordinate > gFarthest; }

// Quotient towards negative infinity; the divisor is positive.
INT64 FloorDivide(INT64 Dividend, INT64 Divisor)
{
    const INT64 Quotient = Dividend / Divisor;
    return Quotient * Divisor > Dividend ? Quotient - 1 : Quotient;
}

} // namespace

EFI_STATUS DrawLine(EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer, UINTN BufferWidth, UINTN BufferHeight, UINTN X0, UINTN Y0,
                    UINTN X1, UINTN Y1, UINTN Thickness, UINT32 Color)
{
    INT64 StartX = static_cast<INT64>(X0);
    INT64 StartY = static_cast<INT64>(Y0);
    INT64 EndX = static_cast<INT64>(X1);
    INT64 EndY = static_cast<INT64>(Y1);
    const INT64 Width = static_cast<INT64>(BufferWidth);
    const INT64 Height = static_cast<INT64>(BufferHeight);
    const INT64 Thick = static_cast<INT64>(Thickness);
    if (Buffer == nullptr || IsFar(StartX) || IsFar(StartY) || IsFar(EndX) || IsFar(EndY) || IsFar(Width) ||
        IsFar(Height) || IsFar(Thick)) {
        return EFI_INVALID_PARAMETER;
    }
    const INT64 SpanX = EndX > StartX ? EndX - StartX : StartX - EndX;
    const INT64 SpanY = EndY > StartY ? EndY - StartY : StartY - EndY;
    // From here on the line runs along its longer direction, "along", and drifts "across" it.
    const bool Steep = SpanY > SpanX;
    INT64 Along0 = Steep ? StartY : StartX;
    INT64 Along1 = Steep ? EndY : EndX;
    INT64 Across0 = Steep ? StartX : StartY;
    INT64 Across1 = Steep ? EndX : EndY;
    if (Along0 > Along1) {
        const INT64 Along = Along0;
        Along0 = Along1;
        Along1 = Along;
        const INT64 Across = Across0;
        Across0 = Across1;
        Across1 = Across;
    }
    const INT64 AlongLimit = Steep ? Height : Width;
    const INT64 AcrossLimit = Steep ? Width : Height;
    const INT64 AlongStride = Steep ? Width : 1;
    const INT64 AcrossStride = Steep ? 1 : Width;
    const INT64 Run = Along1 - Along0;
    const INT64 Drift = Across1 - Across0;
    const EFI_GRAPHICS_OUTPUT_BLT_PIXEL Pixel = __builtin_bit_cast(EFI_GRAPHICS_OUTPUT_BLT_PIXEL, Color);

    const INT64 Last = Smaller(Along1, AlongLimit - 1);
    for (INT64 Along = Larger<INT64>(Along0, 0); Along <= Last; Along++) {
        // The nearest pixel to the true line, half way rounded up.
        const INT64 Middle = Run == 0 ? Across0 : Across0 + FloorDivide(2 * Drift * (Along - Along0) + Run, 2 * Run);
        const INT64 First = Middle - (Thick - 1) / 2;
        const INT64 End = Smaller(First + Thick, AcrossLimit);
        for (INT64 Across = Larger<INT64>(First, 0); Across < End; Across++) {
            Buffer[Along * AlongStride + Across * AcrossStride] = Pixel;
        }
    }
    return EFI_SUCCESS;
}
