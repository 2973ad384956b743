#include "platform/firmware/starter/Modes.h"

#include "platform/display/Placement.h"

namespace {

constexpr UINT32 gLeastWidth = 640;
constexpr UINT32 gLeastHeight = 480;

// Where a display's identification data have their first detailed timing, and what of it counts here.
constexpr UINTN gTiming = 54;
constexpr UINTN gTimingLength = 18;
constexpr UINTN gActiveColumns = 2; // low byte; the high four bits are the upper ones of the byte two behind
constexpr UINTN gActiveRows = 5;

bool HasRoom(const MODE_OFFER& Offer) { return Offer.Width >= gPictureWidth && Offer.Height >= gPictureHeight; }

UINT64 PixelsOf(const MODE_OFFER& Offer) { return static_cast<UINT64>(Offer.Width) * Offer.Height; }

UINTN FindSize(const MODE_OFFER* Offers, UINTN Count, UINT32 Width, UINT32 Height)
{
    UINTN Found = Count;
    for (UINTN Index = 0; Index < Count; Index++) {
        if (Offers[Index].Width == Width && Offers[Index].Height == Height &&
            (Found == Count || (Offers[Index].AsIs && !Offers[Found].AsIs))) {
            Found = Index;
        }
    }
    return Found;
}

} // namespace

bool OfferMode(UINT32 Number, const EFI_GRAPHICS_OUTPUT_MODE_INFORMATION* Mode, MODE_OFFER* Offer)
{
    *Offer = {.Number = Number,
              .Width = Mode->HorizontalResolution,
              .Height = Mode->VerticalResolution,
              .AsIs = Mode->PixelFormat == PixelBlueGreenRedReserved8BitPerColor &&
                      Mode->PixelsPerScanLine == Mode->HorizontalResolution};
    return Offer->Width >= gLeastWidth && Offer->Height >= gLeastHeight;
}

UINTN ChooseMode(const MODE_OFFER* Offers, UINTN Count, PANEL_SIZE Native, bool Enlarged)
{
    const UINTN NativeOffer = FindSize(Offers, Count, Native.Width, Native.Height);
    if (Enlarged && NativeOffer != Count && PlacePicture(Native.Width, Native.Height).Multiple >= 2) {
        return NativeOffer;
    }
    const UINTN Ordinary = FindSize(Offers, Count, gPictureWidth, gPictureHeight);
    if (Ordinary != Count) {
        return Ordinary;
    }
    if (NativeOffer != Count) {
        return NativeOffer;
    }
    UINTN Best = Count;
    for (UINTN Index = 0; Index < Count; Index++) {
        if (Best == Count) {
            Best = Index;
        } else if (HasRoom(Offers[Index]) != HasRoom(Offers[Best])) {
            Best = HasRoom(Offers[Index]) ? Index : Best;
        } else if (HasRoom(Offers[Index]) ? PixelsOf(Offers[Index]) < PixelsOf(Offers[Best])
                                          : PixelsOf(Offers[Index]) > PixelsOf(Offers[Best])) {
            Best = Index;
        }
    }
    return Best;
}

PANEL_SIZE ReadNativeSize(const UINT8* Edid, UINTN Size)
{
    if (Edid == nullptr || Size < gTiming + gTimingLength) {
        return {};
    }
    const UINT8* Timing = Edid + gTiming;
    if (Timing[0] == 0 && Timing[1] == 0) {
        return {}; // without a pixel clock it is another kind of entry
    }
    return {.Width = Timing[gActiveColumns] | (Timing[gActiveColumns + 2] & 0xF0u) << 4,
            .Height = Timing[gActiveRows] | (Timing[gActiveRows + 2] & 0xF0u) << 4};
}
