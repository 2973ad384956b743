#include "platform/display/Placement.h"

namespace {

// Where pixel At of Extent stands on a range of Length pixels: the first one that shows any of it, and the first behind
// the last one that does.
constexpr UINT32 FirstShowing(UINT32 At, UINT32 Extent, UINT32 Length)
{
    return static_cast<UINT32>(static_cast<UINT64>(At) * Length / Extent);
}

constexpr UINT32 BehindShowing(UINT32 At, UINT32 Extent, UINT32 Length)
{
    return static_cast<UINT32>((static_cast<UINT64>(At) * Length + Extent - 1) / Extent);
}

constexpr INT64 NearestWithin(INT64 At, UINT32 Extent)
{
    return At < 0 ? 0 : At >= static_cast<INT64>(Extent) ? static_cast<INT64>(Extent) - 1 : At;
}

} // namespace

PLACEMENT PlacePicture(UINT32 PanelWidth, UINT32 PanelHeight)
{
    PLACEMENT Place = {};
    Place.PanelWidth = PanelWidth;
    Place.PanelHeight = PanelHeight;
    const UINT32 AcrossMultiple = PanelWidth / gPictureWidth;
    const UINT32 DownMultiple = PanelHeight / gPictureHeight;
    Place.Multiple = AcrossMultiple < DownMultiple ? AcrossMultiple : DownMultiple;
    if (Place.Multiple != 0) {
        Place.Width = gPictureWidth * Place.Multiple;
        Place.Height = gPictureHeight * Place.Multiple;
    } else if (static_cast<UINT64>(PanelWidth) * gPictureHeight <= static_cast<UINT64>(PanelHeight) * gPictureWidth) {
        Place.Width = PanelWidth; // the width decides
        Place.Height = FirstShowing(PanelWidth, gPictureWidth, gPictureHeight);
    } else {
        Place.Width = FirstShowing(PanelHeight, gPictureHeight, gPictureWidth);
        Place.Height = PanelHeight;
    }
    if (Place.Width == 0 || Place.Height == 0) {
        Place.Width = 0;
        Place.Height = 0;
    }
    Place.X = (PanelWidth - Place.Width) / 2;
    Place.Y = (PanelHeight - Place.Height) / 2;
    return Place;
}

PANEL_AREA AreaOnPanel(const PLACEMENT& Place, const PANEL_AREA& InPicture)
{
    return {.Left = Place.X + FirstShowing(InPicture.Left, gPictureWidth, Place.Width),
            .Top = Place.Y + FirstShowing(InPicture.Top, gPictureHeight, Place.Height),
            .Right = Place.X + BehindShowing(InPicture.Right, gPictureWidth, Place.Width),
            .Bottom = Place.Y + BehindShowing(InPicture.Bottom, gPictureHeight, Place.Height)};
}

VOID PictureAt(const PLACEMENT& Place, INT64 PanelX, INT64 PanelY, INT64* X, INT64* Y)
{
    const INT64 Across = Place.Width == 0 ? 0 : (PanelX - Place.X) * static_cast<INT64>(gPictureWidth);
    const INT64 Down = Place.Height == 0 ? 0 : (PanelY - Place.Y) * static_cast<INT64>(gPictureHeight);
    *X = NearestWithin(Across < 0 ? -1 : Place.Width == 0 ? 0 : Across / Place.Width, gPictureWidth);
    *Y = NearestWithin(Down < 0 ? -1 : Place.Height == 0 ? 0 : Down / Place.Height, gPictureHeight);
}
