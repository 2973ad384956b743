// Pictures out of the firmware's files: finding the stored bytes, decoding them, cutting them to size.
//
// A picture is named by the instance number of its section. Depending on the firmware's build the sections have the
// type RAW or PE32; every look-up finds that out by probing. Controls with several looks keep them in one picture,
// stacked from the top.
#pragma once

#include "graphics/Palette.h"
#include "shell/contract/Services.h"

// The stored bytes of section Instance of the file, in a pool buffer that the caller frees, and their number. Instance 0
// means the whole file; EFI_NO_MEDIA with a report line when it is there under neither section type.
EFI_STATUS FindImageFile(const EFI_GUID* FileGuid, UINT32 Instance, VOID** Data, UINTN* Size);

// A JPEG section as a tight buffer that the caller frees. When anything on the way fails, Out is null and both sizes are
// 0. Always EFI_SUCCESS: callers look at the buffer.
EFI_STATUS LoadJpegBlt(UINT32 Instance, const EFI_GUID* FileGuid, PIXEL** Out, UINT32* Width, UINT32* Height);

// The same for a BMP section. Gives the status of the step that failed.
EFI_STATUS LoadBmpBlt(UINT32 Instance, const EFI_GUID* FileGuid, PIXEL** Out, UINT32* Width, UINT32* Height);

// A new tight buffer of Width x Height pixels cut from the left of a picture whose rows are SrcStride pixels apart.
// Without pool: a report line, the allocation's status, Out unchanged.
EFI_STATUS CropBlt(PIXEL** Out, UINTN Width, UINTN Height, UINTN SrcStride, const PIXEL* Src);

// Cuts a strip of Count pictures, Width x Height pixels each, to the part of a picture that shows when it stands at (X, Y)
// of the screen, in place. Width and Height become those of that part. False, with nothing changed, when nothing shows.
bool CutStripToScreen(PIXEL* Strip, UINT32 Count, UINT32 X, UINT32 Y, UINT32* Width, UINT32* Height);

// A new buffer with the left-right mirror image of Src. Without pool Out is unchanged.
EFI_STATUS MirrorBlt(const PIXEL* Src, PIXEL** Out, INT32 Width, INT32 Height);

// Entries of a null-ended table of strings. Label tables have this form, and their lengths set the sizes of grids.
UINT8 CountStringTable(const CHAR16* const* Table);
