// The pictures that the benchmark works on, of the sizes that the console has.
#pragma once

#include <random>
#include <vector>

#include "controls/Grid.h"
#include "graphics/GraphicProtocol.h"

constexpr UINTN gFrameWidth = 391; // the largest block that moves regularly
constexpr UINTN gFrameHeight = 241;
constexpr UINTN gFramePixels = gFrameWidth * gFrameHeight;
constexpr PIXEL gBenchBlend = gNodeColor[3];

using PICTURE = std::vector<PIXEL>;

struct BENCH_PICTURES {
    std::mt19937 Generator{1};

    PICTURE Screen = Noise(gScreenWidth * gScreenHeight);
    PICTURE Art = Noise(gFramePixels);    // no pixel of a special colour
    PICTURE Canvas = Noise(gFramePixels); // what is painted on
    PICTURE Grid = PICTURE(gFramePixels); // the picture of a frame's grid
    PICTURE Keyed[5];                     // single key pixels in 0, 10, 50, 90 and 100 of 100
    PICTURE Thirds;                       // a third key, a third blend, a third art, in stretches of 1 to 40 pixels
    PICTURE MixedThirds;                  // the same pixel by pixel
    PICTURE AllBlend = PICTURE(gFramePixels, gBenchBlend);
    PICTURE Gray; // art with key pixels in stretches; grayed in place, as every caller does

    static constexpr UINT32 KeyPercents[5] = {0, 10, 50, 90, 100};

    BENCH_PICTURES()
    {
        PaintGridImage(Grid.data(), gFrameWidth, gFrameHeight, 30, 30);
        for (size_t I = 0; I < std::size(Keyed); I++) {
            Keyed[I] = Art;
            for (PIXEL& Pixel : Keyed[I]) {
                Pixel = Generator() % 100 < KeyPercents[I] ? gKeyColor : Pixel;
            }
        }
        Thirds = InThirds(40);
        MixedThirds = InThirds(1);
        Gray = InThirds(40);
    }

    PIXEL* ScreenAt(UINTN X, UINTN Y) { return Screen.data() + Y * gScreenWidth + X; }

private:
    PICTURE Noise(size_t Count)
    {
        PICTURE Picture(Count);
        for (PIXEL& Pixel : Picture) {
            Pixel = __builtin_bit_cast(PIXEL, static_cast<UINT32>(Generator()));
        }
        return Picture;
    }

    PICTURE InThirds(UINT32 LongestStretch)
    {
        PICTURE Picture = Art;
        for (size_t I = 0; I < Picture.size();) {
            const UINT32 Kind = Generator() % 3;
            for (UINT32 Stretch = 1 + Generator() % LongestStretch; Stretch > 0 && I < Picture.size(); Stretch--, I++) {
                Picture[I] = Kind == 0 ? gKeyColor : Kind == 1 ? gBenchBlend : Picture[I];
            }
        }
        return Picture;
    }
};
