#include "monitor/Captions.h"

#include "graphics/GraphicProtocol.h"
#include "graphics/KeptPicture.h"

namespace {

constexpr UINT32 gTempCaptionSection = 22;
constexpr UINT32 gDutyCaptionSection = 23;
constexpr UINT32 gRpmCaptionSection = 24;

constexpr UINT32 gCaptionY = 520;
constexpr UINT32 gIdleLeftX = 347;   // under the scale of degrees
constexpr UINT32 gActiveLeftX = 328; // under the scale of duty
constexpr UINT32 gRightX = 800;

KEPT_PICTURE gTempCaptionImage;
KEPT_PICTURE gRpmCaptionImage;
KEPT_PICTURE gDutyCaptionImage;

// Clears the place of a picture that stands there or has stood there.
VOID ErasePicture(const KEPT_PICTURE& Picture, UINT32 X)
{
    RestoreBackground(X, gCaptionY, Picture.Width, Picture.Height);
}

} // namespace

VOID LoadCaptions()
{
    LoadPicture(gTempCaptionSection, &gTempCaptionImage);
    LoadPicture(gRpmCaptionSection, &gRpmCaptionImage);
    LoadPicture(gDutyCaptionSection, &gDutyCaptionImage);
}

VOID FreeCaptions()
{
    FreePicture(&gTempCaptionImage);
    FreePicture(&gRpmCaptionImage);
    FreePicture(&gDutyCaptionImage);
}

VOID PaintCaptionsIdle()
{
    ErasePicture(gDutyCaptionImage, gActiveLeftX);
    ErasePicture(gTempCaptionImage, gRightX);
    ErasePicture(gTempCaptionImage, gIdleLeftX);
    ShowPicture(gTempCaptionImage, gIdleLeftX, gCaptionY);
    ShowPicture(gRpmCaptionImage, gRightX, gCaptionY);
}

VOID PaintCaptionsActive()
{
    ErasePicture(gTempCaptionImage, gIdleLeftX);
    ErasePicture(gRpmCaptionImage, gRightX);
    ShowPicture(gDutyCaptionImage, gActiveLeftX, gCaptionY);
    ShowPicture(gTempCaptionImage, gRightX, gCaptionY);
}
