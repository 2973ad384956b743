// The same work by other libraries, as far as they have it: none of them mixes by colour, grays around a key colour or
// composes charts.
#include "bench/Work.h"

#if defined(BENCH_PIXMAN)
#include <pixman.h>
#endif
#if defined(BENCH_SDL2)
#include <SDL.h>
#endif
#if defined(BENCH_CAIRO)
#include <cairo.h>
#endif

namespace {

constexpr int gWidth = static_cast<int>(gFrameWidth);
constexpr int gHeight = static_cast<int>(gFrameHeight);
constexpr int gX = static_cast<int>(gGridX);
constexpr int gY = static_cast<int>(gGridY);
constexpr int gPixelSize = static_cast<int>(sizeof(PIXEL));

const char gTint[] = "20% tint, by overlay";

#if defined(BENCH_PIXMAN)
pixman_image_t* PixmanImage(PICTURE& Picture, int Width, int Height)
{
    return pixman_image_create_bits(PIXMAN_x8r8g8b8, Width, Height, reinterpret_cast<uint32_t*>(Picture.data()),
                                    Width * gPixelSize);
}

// Images live as long as the program: a benchmark has no use for their end.
void AddPixman(std::vector<BENCH_WORK>& Work, BENCH_PICTURES& Pictures)
{
    pixman_image_t* Screen =
        PixmanImage(Pictures.Screen, static_cast<int>(gScreenWidth), static_cast<int>(gScreenHeight));
    pixman_image_t* Art = PixmanImage(Pictures.Art, gWidth, gHeight);
    pixman_image_t* Canvas = PixmanImage(Pictures.Canvas, gWidth, gHeight);
    // A fifth of the colour, in the form that pixman wants: the colour already multiplied by its share.
    const auto Fifth = [](UINT8 Byte) { return static_cast<uint16_t>(Byte * 0x101 / 5); };
    const pixman_color_t Color = {Fifth(gBenchBlend.Red), Fifth(gBenchBlend.Green), Fifth(gBenchBlend.Blue),
                                  0xFFFF / 5};
    pixman_image_t* Solid = pixman_image_create_solid_fill(&Color);
    Work.push_back(
        {"pixman", BENCH_UNIT_R, 0, 1,
         [=] { pixman_image_composite32(PIXMAN_OP_SRC, Art, nullptr, Screen, 0, 0, 0, 0, gX, gY, gWidth, gHeight); },
         "paste"});
    Work.push_back(
        {"pixman", BENCH_UNIT_R, 0, 1,
         [=] { pixman_image_composite32(PIXMAN_OP_SRC, Screen, nullptr, Canvas, gX, gY, 0, 0, 0, 0, gWidth, gHeight); },
         "extract"});
    Work.push_back(
        {"pixman", BENCH_UNIT_T, 0, 1,
         [=] { pixman_image_composite32(PIXMAN_OP_OVER, Solid, nullptr, Canvas, 0, 0, 0, 0, 0, 0, gWidth, gHeight); },
         gTint});
}
#endif

#if defined(BENCH_SDL2)
SDL_Surface* SdlSurface(PICTURE& Picture, int Width, int Height)
{
    SDL_Surface* Surface = SDL_CreateRGBSurfaceFrom(Picture.data(), Width, Height, 32, Width * gPixelSize, 0xFF0000,
                                                    0x00FF00, 0x0000FF, 0);
    SDL_SetSurfaceBlendMode(Surface, SDL_BLENDMODE_NONE);
    return Surface;
}

void AddSdl(std::vector<BENCH_WORK>& Work, BENCH_PICTURES& Pictures)
{
    SDL_Surface* Screen = SdlSurface(Pictures.Screen, static_cast<int>(gScreenWidth), static_cast<int>(gScreenHeight));
    SDL_Surface* Canvas = SdlSurface(Pictures.Canvas, gWidth, gHeight);
    const auto ToScreen = [=](SDL_Surface* Src) {
        return [=] {
            SDL_Rect At = {gX, gY, gWidth, gHeight};
            SDL_BlitSurface(Src, nullptr, Screen, &At);
        };
    };
    Work.push_back({"SDL2", BENCH_UNIT_R, 0, 1, ToScreen(SdlSurface(Pictures.Art, gWidth, gHeight)), "paste"});
    Work.push_back({"SDL2", BENCH_UNIT_R, 0, 1,
                    [=] {
                        const SDL_Rect From = {gX, gY, gWidth, gHeight};
                        SDL_BlitSurface(Screen, &From, Canvas, nullptr);
                    },
                    "extract"});
    for (size_t I = 0; I < std::size(Pictures.Keyed); I++) {
        SDL_Surface* Keyed = SdlSurface(Pictures.Keyed[I], gWidth, gHeight);
        SDL_SetColorKey(Keyed, SDL_TRUE, PixelWord(gKeyColor));
        Work.push_back({"SDL2", BENCH_UNIT_R, 0, 1, ToScreen(Keyed),
                        "keyed, " + std::to_string(BENCH_PICTURES::KeyPercents[I]) + "% key pixels"});
    }
    struct SMALL {
        const char* Name;
        int Width, Height;
        BENCH_UNIT Unit;
    };
    constexpr SMALL Smalls[] = {{"keyed, 30 x 30", 30, 30, BENCH_UNIT_PIXEL},
                                {"keyed, 40 x 19", 40, 19, BENCH_UNIT_PIXEL},
                                {"keyed, a letter of 8 x 19", 8, 19, BENCH_UNIT_CALL}};
    for (const SMALL& Small : Smalls) {
        SDL_Surface* Src = SdlSurface(Pictures.Keyed[2], Small.Width, Small.Height);
        SDL_SetColorKey(Src, SDL_TRUE, PixelWord(gKeyColor));
        constexpr int Calls = 64;
        const double Quantity = Small.Unit == BENCH_UNIT_PIXEL ? Calls * Small.Width * Small.Height : Calls;
        Work.push_back({"SDL2", Small.Unit, 0, Quantity,
                        [=] {
                            for (int Call = 0; Call < Calls; Call++) {
                                SDL_Rect At = {100 + Call % 8 * 47, 100 + Call / 8 * 41, 0, 0};
                                SDL_BlitSurface(Src, nullptr, Screen, &At);
                            }
                        },
                        Small.Name});
    }
}
#endif

#if defined(BENCH_CAIRO)
cairo_surface_t* CairoSurface(PICTURE& Picture, int Width, int Height)
{
    return cairo_image_surface_create_for_data(reinterpret_cast<unsigned char*>(Picture.data()), CAIRO_FORMAT_RGB24,
                                               Width, Height, Width * gPixelSize);
}

void AddCairo(std::vector<BENCH_WORK>& Work, BENCH_PICTURES& Pictures)
{
    cairo_t* Screen =
        cairo_create(CairoSurface(Pictures.Screen, static_cast<int>(gScreenWidth), static_cast<int>(gScreenHeight)));
    cairo_t* Canvas = cairo_create(CairoSurface(Pictures.Canvas, gWidth, gHeight));
    cairo_surface_t* Art = CairoSurface(Pictures.Art, gWidth, gHeight);
    Work.push_back({"Cairo", BENCH_UNIT_R, 0, 1,
                    [=] {
                        cairo_set_operator(Screen, CAIRO_OPERATOR_SOURCE);
                        cairo_set_source_surface(Screen, Art, gX, gY);
                        cairo_rectangle(Screen, gX, gY, gWidth, gHeight);
                        cairo_fill(Screen);
                    },
                    "paste"});
    Work.push_back({"Cairo", BENCH_UNIT_T, 0, 1,
                    [=] {
                        cairo_set_source_rgba(Canvas, gBenchBlend.Red / 255.0, gBenchBlend.Green / 255.0,
                                              gBenchBlend.Blue / 255.0, 0.2);
                        cairo_paint(Canvas);
                    },
                    gTint});
}
#endif

} // namespace

void AddPeerWork(std::vector<BENCH_WORK>& Work, BENCH_PICTURES& Pictures)
{
#if defined(BENCH_PIXMAN)
    AddPixman(Work, Pictures);
#endif
#if defined(BENCH_SDL2)
    AddSdl(Work, Pictures);
#endif
#if defined(BENCH_CAIRO)
    AddCairo(Work, Pictures);
#endif
    (void)Work;
    (void)Pictures;
}

std::vector<std::string> MissingPeers()
{
    std::vector<std::string> Missing;
#if !defined(BENCH_PIXMAN)
    Missing.push_back("pixman (libpixman-1-dev)");
#endif
#if !defined(BENCH_SDL2)
    Missing.push_back("SDL2 (libsdl2-dev)");
#endif
#if !defined(BENCH_CAIRO)
    Missing.push_back("Cairo (libcairo2-dev)");
#endif
    return Missing;
}
