#include "graphics/KeptPicture.h"

#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "support/Pool.h"

VOID LoadPicture(UINT32 Instance, KEPT_PICTURE* Picture)
{
    (void)LoadJpegBlt(Instance, &gArtworkFileGuid, &Picture->Pixels, &Picture->Width, &Picture->Height);
}

VOID FreePicture(KEPT_PICTURE* Picture) { ReleasePool(Picture->Pixels); }

VOID ShowPicture(const PIXEL* Picture, UINTN Width, UINTN Height, UINTN X, UINTN Y)
{
    if (Picture == nullptr || Width == 0 || Height == 0 || X >= gScreenWidth || Y >= gScreenHeight) {
        return;
    }
    (void)PasteBlt(Picture, Width, Height, X, Y, gGuiCore->Screen);

    const UINTN Columns = VisibleExtent(Width, X, gScreenWidth);
    const UINTN Rows = VisibleExtent(Height, Y, gScreenHeight);
    const TEMPORARY<PIXEL> Block(AllocateArray<PIXEL>(Columns * Rows));
    if (!Block) {
        return;
    }
    (void)ExtractBlt(Block.Data, Columns, Rows, Picture, Width, Height, 0, 0);
    (void)ComposeScreen(gGuiCore, Block.Data, X, Y, Columns, Rows);
}

VOID ShowPicture(const KEPT_PICTURE& Picture, UINTN X, UINTN Y)
{
    ShowPicture(Picture.Pixels, Picture.Width, Picture.Height, X, Y);
}
