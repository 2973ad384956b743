#include "monitor/Captions.h"

#include "graphics/GraphicProtocol.h"
#include "graphics/KeptPicture.h"

namespace {

constexpr UINT32 gCaptionY = 520;
constexpr UINT32 gIdleLeftX = 347;   // under the scale of degrees
constexpr UINT32 gActiveLeftX = 328; // under the scale of duty
constexpr UINT32 gRightX = 800;

} // namespace

PIXEL* gTempCaptionImage;
UINT32 gTempCaptionWidth;
UINT32 gTempCaptionHeight;
PIXEL* gRpmCaptionImage;
UINT32 gRpmCaptionWidth;
UINT32 gRpmCaptionHeight;
PIXEL* gDutyCaptionImage;
UINT32 gDutyCaptionWidth;
UINT32 gDutyCaptionHeight;

VOID PaintCaptionsIdle()
{
    RestoreBackground(gActiveLeftX, gCaptionY, gDutyCaptionWidth, gDutyCaptionHeight);
    RestoreBackground(gRightX, gCaptionY, gTempCaptionWidth, gTempCaptionHeight);
    RestoreBackground(gIdleLeftX, gCaptionY, gTempCaptionWidth, gTempCaptionHeight);
    ShowPicture(gTempCaptionImage, gTempCaptionWidth, gTempCaptionHeight, gIdleLeftX, gCaptionY);
    ShowPicture(gRpmCaptionImage, gRpmCaptionWidth, gRpmCaptionHeight, gRightX, gCaptionY);
}

VOID PaintCaptionsActive()
{
    RestoreBackground(gIdleLeftX, gCaptionY, gTempCaptionWidth, gTempCaptionHeight);
    RestoreBackground(gRightX, gCaptionY, gRpmCaptionWidth, gRpmCaptionHeight);
    ShowPicture(gDutyCaptionImage, gDutyCaptionWidth, gDutyCaptionHeight, gActiveLeftX, gCaptionY);
    ShowPicture(gTempCaptionImage, gTempCaptionWidth, gTempCaptionHeight, gRightX, gCaptionY);
}
