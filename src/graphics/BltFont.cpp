#include "graphics/BltFont.h"

#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "support/Pool.h"
#include "support/Report.h"

const CHAR16* const gBltFontGlyphs[] = {u"0", u"1", u"2", u"3", u"4",      u"5", u"6",   u"7",
                                        u"8", u"9", u"-", u".", u"\u00F8", u"C", nullptr};

namespace {

constexpr CHAR8 gSourcePath[] = "graphics\\BltFont.cpp";

} // namespace

EFI_STATUS CreateBltFont(BLT_FONT** Font, UINT32 Instance, const EFI_GUID* FileGuid)
{
    if (*Font != nullptr) {
        return EFI_UNSUPPORTED;
    }
    BLT_FONT* New = AllocateZeroRecord<BLT_FONT>();
    if (New == nullptr) {
        REPORT("no memory for a digit font");
        return EFI_OUT_OF_RESOURCES;
    }
    New->GlyphCount = CountStringTable(gBltFontGlyphs);
    (void)LoadJpegBlt(Instance, FileGuid, &New->Pixels, &New->ImageWidth, &New->ImageHeight);
    const UINTN Size = static_cast<UINTN>(New->ImageWidth) * New->ImageHeight * sizeof(PIXEL);
    New->Master = New->Pixels == nullptr ? nullptr : static_cast<PIXEL*>(AllocatePool(Size));
    if (New->Master == nullptr) {
        REPORT("a digit font is missing");
        (void)DestroyBltFont(New);
        return EFI_OUT_OF_RESOURCES;
    }
    CopyMem(New->Master, New->Pixels, Size);
    New->GlyphWidth = New->ImageWidth;
    New->GlyphHeight = New->ImageHeight / New->GlyphCount;
    New->GlyphTable = gBltFontGlyphs;
    *Font = New;
    return EFI_SUCCESS;
}

EFI_STATUS DrawBltFontString(BLT_FONT* Font, UINT32 X, UINT32 Y, const CHAR16* String, PIXEL* Dst)
{
    if (Font == nullptr) {
        return EFI_UNSUPPORTED;
    }
    Font->X = X;
    Font->Y = Y;
    if (Dst == nullptr) {
        return EFI_UNSUPPORTED;
    }
    // The working copy may carry traces of the pointer from the last string.
    CopyMem(Font->Pixels, Font->Master, static_cast<UINTN>(Font->ImageWidth) * Font->ImageHeight * sizeof(PIXEL));

    const UINTN GlyphPixels = static_cast<UINTN>(Font->GlyphWidth) * Font->GlyphHeight;
    for (UINTN Place = 0; String[Place] != 0; Place++) {
        const UINTN GlyphX = X + Place * Font->GlyphWidth;
        for (UINTN Glyph = 0; Font->GlyphTable[Glyph] != nullptr; Glyph++) {
            if (Font->GlyphTable[Glyph][0] == String[Place]) {
                PIXEL* Block = Font->Pixels + Glyph * GlyphPixels;
                // A character that stood earlier in this string may have the pointer merged into its block by now.
                CopyMem(Block, Font->Master + Glyph * GlyphPixels, GlyphPixels * sizeof(PIXEL));
                (void)PasteBlt(Block, Font->GlyphWidth, Font->GlyphHeight, GlyphX, Y, Dst);
                (void)ComposeScreen(gGuiCore, Block, GlyphX, Y, Font->GlyphWidth, Font->GlyphHeight);
                break;
            }
        }
    }
    return EFI_SUCCESS;
}

EFI_STATUS DestroyBltFont(BLT_FONT* Font)
{
    if (Font != nullptr) {
        FreePool(Font->Pixels);
        FreePool(Font->Master);
        FreePool(Font);
    }
    return EFI_SUCCESS;
}
