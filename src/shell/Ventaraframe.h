// The screen's frame: a picture from artwork laid over what the firmware had on the screen, which goes on showing around
// it and through its rounded corners.
#pragma once

#include "graphics/Palette.h"
#include "gui/core/GUICore.h"
#include "shell/contract/Services.h"

struct SCREEN_FRAME {
    UINT32 X; // 43
    UINT32 Y; // 36
    UINT64 Height;
    UINT64 Width;
    PIXEL* Picture;    // Width x Height, corners already merged with the old screen
    PIXEL* FullScreen; // 1024 x 768: the old screen
};

// Exists only while the console starts.
extern SCREEN_FRAME* gScreenFrame;

// Builds gScreenFrame from gSavedScreen and the artwork file. Without the frame's picture a plain panel takes its place, so
// that the console is still usable; without pool gScreenFrame stays null.
VOID CreateScreenFrame(const EFI_GUID* FileGuid);
// Lays the frame into Screen: the old screen first, then the picture.
VOID PasteScreenFrame();
// Frees the frame with its pictures.
VOID FreeScreenFrame();
