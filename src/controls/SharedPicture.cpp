#include "controls/SharedPicture.h"

#include "controls/GridImage.h"
#include "graphics/GraphicProtocol.h"
#include "support/Pool.h"

namespace {

// The pixels follow the record in the same block.
struct SHARED_PICTURE {
    SHARED_PICTURE* Next;
    UINTN Users;
    UINT32 Width;
    UINT32 Height;
    UINT32 CellWidth;
    UINT32 CellHeight;
    SHARED_PICTURE_KIND Kind;
};

SHARED_PICTURE* gSharedPictures = nullptr;

PIXEL* PixelsOf(SHARED_PICTURE* Shared) { return reinterpret_cast<PIXEL*>(Shared + 1); }

} // namespace

PIXEL* TakeSharedPicture(SHARED_PICTURE_KIND Kind, UINT32 Width, UINT32 Height, UINT32 CellWidth, UINT32 CellHeight)
{
    for (SHARED_PICTURE* Shared = gSharedPictures; Shared != nullptr; Shared = Shared->Next) {
        if (Shared->Kind == Kind && Shared->Width == Width && Shared->Height == Height &&
            Shared->CellWidth == CellWidth && Shared->CellHeight == CellHeight) {
            Shared->Users++;
            return PixelsOf(Shared);
        }
    }
    const UINTN Count = static_cast<UINTN>(Width) * Height;
    SHARED_PICTURE* New = static_cast<SHARED_PICTURE*>(AllocatePool(sizeof(SHARED_PICTURE) + Count * sizeof(PIXEL)));
    if (New == nullptr) {
        return nullptr;
    }
    *New = {gSharedPictures, 1, Width, Height, CellWidth, CellHeight, Kind};
    gSharedPictures = New;
    if (Kind == SHARED_GRID) {
        SetMem(PixelsOf(New), Count * sizeof(PIXEL), 0);
        PaintGridImage(PixelsOf(New), Width, Height, CellWidth, CellHeight);
    } else if (Kind == SHARED_PANEL) {
        FillPixels(PixelsOf(New), Count, gPanelColor);
    }
    return PixelsOf(New);
}

VOID ReleaseSharedPicture(PIXEL*& Picture)
{
    for (SHARED_PICTURE** Link = &gSharedPictures; *Link != nullptr; Link = &(*Link)->Next) {
        SHARED_PICTURE* Shared = *Link;
        if (PixelsOf(Shared) == Picture) {
            Shared->Users--;
            if (Shared->Users == 0) {
                *Link = Shared->Next;
                FreePool(Shared);
            }
            break;
        }
    }
    Picture = nullptr;
}
