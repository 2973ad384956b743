#include "graphics/Palette.h"

#include "shell/contract/Board.h"

PIXEL MixColor(FLOAT_WORD Part, PIXEL Color, PIXEL Other)
{
    const FLOAT_WORD Rest = gFloatMath->FloatSubtract(gFloatMath->IntToFloat(1), Part);
    const auto Mix = [&](UINT8 Of, UINT8 With) {
        const FLOAT_WORD Sum = gFloatMath->FloatAdd(gFloatMath->FloatMultiply(Part, gFloatMath->IntToFloat(Of)),
                                                    gFloatMath->FloatMultiply(Rest, gFloatMath->IntToFloat(With)));
        return static_cast<UINT8>(gFloatMath->FloatToInt(Sum));
    };
    return {Mix(Color.Blue, Other.Blue), Mix(Color.Green, Other.Green), Mix(Color.Red, Other.Red), 0};
}
