// HII protocols: the font protocol that renders a string into a picture, and the GUIDs of its siblings.
#pragma once

#include "uefi/GraphicsOutput.h"

constexpr EFI_GUID gEfiHiiStringProtocolGuid = {
    0x0FD96974, 0x23AA, 0x4CDC, {0xB9, 0xCB, 0x98, 0xD1, 0x77, 0x50, 0x32, 0x2A}};
constexpr EFI_GUID gEfiHiiDatabaseProtocolGuid = {
    0xEF9FC172, 0xA1B2, 0x4693, {0xB3, 0x27, 0x6D, 0x32, 0xFC, 0x41, 0x60, 0x42}};
constexpr EFI_GUID gEfiHiiConfigRoutingProtocolGuid = {
    0x587E72D7, 0xCC50, 0x4F79, {0x82, 0x09, 0xCA, 0x29, 0x1F, 0xC1, 0xA1, 0x0F}};
constexpr EFI_GUID gEfiHiiFontProtocolGuid = {
    0xE9CA4775, 0x8657, 0x47FC, {0x97, 0xE7, 0x7E, 0xD6, 0x5A, 0x08, 0x43, 0x24}};
constexpr EFI_GUID gEfiHiiImageProtocolGuid = {
    0x31A6406A, 0x6BDF, 0x4E46, {0xB2, 0xA2, 0xEB, 0xAA, 0x89, 0xC4, 0x09, 0x20}};

using EFI_HII_OUT_FLAGS = UINT32;
constexpr EFI_HII_OUT_FLAGS EFI_HII_OUT_FLAG_CLIP = 0x01;
constexpr EFI_HII_OUT_FLAGS EFI_HII_OUT_FLAG_WRAP = 0x02;
constexpr EFI_HII_OUT_FLAGS EFI_HII_OUT_FLAG_CLIP_CLEAN_Y = 0x04;
constexpr EFI_HII_OUT_FLAGS EFI_HII_OUT_FLAG_CLIP_CLEAN_X = 0x08;
constexpr EFI_HII_OUT_FLAGS EFI_HII_OUT_FLAG_TRANSPARENT = 0x10;
constexpr EFI_HII_OUT_FLAGS EFI_HII_IGNORE_IF_NO_GLYPH = 0x20;
constexpr EFI_HII_OUT_FLAGS EFI_HII_IGNORE_LINE_BREAK = 0x40;
constexpr EFI_HII_OUT_FLAGS EFI_HII_DIRECT_TO_SCREEN = 0x80;

constexpr UINT32 EFI_FONT_INFO_SYS_FONT = 0x01;
constexpr UINT32 EFI_FONT_INFO_SYS_SIZE = 0x02;
constexpr UINT32 EFI_FONT_INFO_SYS_STYLE = 0x04;
constexpr UINT32 EFI_FONT_INFO_SYS_FORE_COLOR = 0x08;
constexpr UINT32 EFI_FONT_INFO_SYS_BACK_COLOR = 0x10;

struct EFI_FONT_INFO {
    UINT32 FontStyle;
    UINT16 FontSize;
    CHAR16 FontName[1];
};

struct EFI_FONT_DISPLAY_INFO {
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL ForegroundColor;
    EFI_GRAPHICS_OUTPUT_BLT_PIXEL BackgroundColor;
    UINT32 FontInfoMask;
    EFI_FONT_INFO FontInfo;
};
static_assert(sizeof(EFI_FONT_DISPLAY_INFO) == 20);

struct EFI_IMAGE_OUTPUT {
    UINT16 Width;
    UINT16 Height;
    union {
        EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Bitmap;
        EFI_GRAPHICS_OUTPUT_PROTOCOL* Screen;
    } Image;
};
static_assert(sizeof(EFI_IMAGE_OUTPUT) == 16);

struct EFI_HII_ROW_INFO {
    UINTN StartIndex;
    UINTN EndIndex;
    UINTN LineHeight;
    UINTN LineWidth;
    UINTN BaselineOffset;
};

struct EFI_HII_FONT_PROTOCOL {
    EFI_STATUS (*StringToImage)(const EFI_HII_FONT_PROTOCOL* This, EFI_HII_OUT_FLAGS Flags, const CHAR16* String,
                                const EFI_FONT_DISPLAY_INFO* StringInfo, EFI_IMAGE_OUTPUT** Blt, UINTN BltX,
                                UINTN BltY, EFI_HII_ROW_INFO** RowInfoArray, UINTN* RowInfoArraySize,
                                UINTN* ColumnInfoArray);
    VOID* StringIdToImage;
    VOID* GetGlyph;
    VOID* GetFontInfo;
};
