// The contract between the console and the board's firmware services: what the console locates, calls and exchanges.
//
// A board maker supplies these protocols; the console finds each with LocateProtocol and returns EFI_PROTOCOL_ERROR
// before it has drawn anything when one is missing. All calls come from the console's one thread, inside its loop, so
// a service answers promptly: nothing else moves on the screen while it works.
//
// This header is types and numbers only. It includes nothing but the firmware's own types, so that a board's driver
// can be compiled against it.
#pragma once

#include "uefi/GraphicsOutput.h"

// --- Items ---

// One numbering serves names and readings: temperature sources 0 to 2 (degrees Celsius), fans 4 to 10 (revolutions a
// minute), voltages 11 to 17 (millivolts), and from 22 on strings only.
constexpr UINT8 gFirstTemperatureItem = 0;
constexpr UINT8 gTemperatureItemCount = 3;
constexpr UINT8 gFirstFanItem = 4;
constexpr UINT8 gFanItemCount = 7;
constexpr UINT8 gFirstVoltageItem = 11;
constexpr UINT8 gVoltageItemCount = 7;
constexpr UINT8 gItemCount = 18; // one past the last item that has a reading

enum ITEM_STRING : UINT8 {
    STRING_GAUGE_CAPTION = 22,
    STRING_FULL_SPEED = 24,
    STRING_DEFAULT = 25,
    STRING_CANCEL = 26,
    STRING_ABOUT = 27,
    STRING_HELP = 28,
    STRING_EXIT = 29,
    STRING_PANEL_TITLE = 30,
    STRING_HELP_TEXT = 31,
    STRING_HELP_ESCAPE = 32,
    STRING_HELP_FULL_SPEED = 33,
    STRING_HELP_DEFAULT = 34,
    STRING_HELP_CANCEL = 35,
    STRING_OK = 36,
    STRING_ABOUT_MAKER = 37,
    STRING_ABOUT_RIGHTS = 38,
    STRING_ABOUT_ADDRESS = 39,
};

// --- Fan settings ---

// The record of one fan, little-endian, all zero but for what is filled in. Node 0 is the low end of the curve.
// Columns count from 1 (40 degrees) to 13 (100 degrees), levels from 1 (the bottom row) to the rows of the grid.
struct FAN_SETTING {
    UINT8 CurveEnabled; // 1: the fan follows its curve. Any value but 0 counts as 1 when read
    UINT8 Column3;
    UINT8 Column2;
    UINT8 Column1;
    UINT8 Column0;
    UINT8 Level0;
    UINT8 Level1;
    UINT8 Level2;
    UINT8 Level3;
    UINT8 Reserved9;
    UINT16 FixedLevel; // level of the fan's slider, from 1
    UINT8 Reserved12[52];
};
static_assert(sizeof(FAN_SETTING) == 64);
static_assert(offsetof(FAN_SETTING, Column0) == 4 && offsetof(FAN_SETTING, Level0) == 5);
static_assert(offsetof(FAN_SETTING, FixedLevel) == 10 && offsetof(FAN_SETTING, Reserved12) == 12);

// --- Readings, names and settings ---

constexpr EFI_GUID gHwServiceProtocolGuid = {
    0x1552C0BE, 0xD5FA, 0x4BCE, {0x90, 0xC1, 0x78, 0xA9, 0x1B, 0x7D, 0xBE, 0x17}};

struct HW_SERVICE_PROTOCOL;

// Fills the whole record. EFI_OUT_OF_RESOURCES makes the console start from its default curve.
using GET_FAN_SETTING = EFI_STATUS (*)(HW_SERVICE_PROTOCOL* This, FAN_SETTING* Setting);
// Takes effect at once. The console doesn't look at the status.
using SET_FAN_SETTING = EFI_STATUS (*)(HW_SERVICE_PROTOCOL* This, const FAN_SETTING* Setting);

// One pair a fan, in the order of the fans.
struct FAN_SETTING_ACCESS {
    GET_FAN_SETTING Get;
    SET_FAN_SETTING Set;
};

struct HW_SERVICE_PROTOCOL {
    // Called once, right after the service is found; the result isn't looked at.
    EFI_STATUS (*Initialize)(HW_SERVICE_PROTOCOL* This);
    // Asked for item 5 alone. 1: its page is built like fan 4's; 0: like fan 6's; any other value: it gets no page.
    UINT8 (*GetFanKind)(HW_SERVICE_PROTOCOL* This, UINT8 ItemId);
    // A zero-ended string from pool, which the console frees; null for a text that the board doesn't have.
    CHAR16* (*GetItemString)(HW_SERVICE_PROTOCOL* This, UINT8 ItemId);
    // The reading, and 1 in Present if the item exists on this board.
    EFI_STATUS (*GetItemValue)(HW_SERVICE_PROTOCOL* This, UINT8 ItemId, UINT64* Value, UINT8* Present);
    VOID* Unused4;
    FAN_SETTING_ACCESS Fan[gFanItemCount]; // slots 5 to 18: GetFan4Setting, SetFan4Setting ... SetFan10Setting
    VOID* Unused19;
    // All fans back to their defaults; the console then reads every fan again.
    EFI_STATUS (*LoadDefaultFanSettings)(HW_SERVICE_PROTOCOL* This);
    // All fans at full speed.
    EFI_STATUS (*SetAllFansFullSpeed)(HW_SERVICE_PROTOCOL* This);
    // The changes made so far are taken back; the console then reads every fan again.
    EFI_STATUS (*RestoreFanSettings)(HW_SERVICE_PROTOCOL* This);
};
static_assert(offsetof(HW_SERVICE_PROTOCOL, GetItemValue) == 3 * 8);
static_assert(offsetof(HW_SERVICE_PROTOCOL, Fan) == 5 * 8);
static_assert(offsetof(HW_SERVICE_PROTOCOL, LoadDefaultFanSettings) == 20 * 8);
static_assert(sizeof(HW_SERVICE_PROTOCOL) == 23 * 8);

// --- Pointer ---

constexpr EFI_GUID gCursorServiceProtocolGuid = {
    0x47BAA4D2, 0xD2B1, 0x4029, {0xB4, 0x85, 0xCA, 0xAF, 0x38, 0x8D, 0x9E, 0xAA}};
// Looked for when the first isn't there.
constexpr EFI_GUID gCursorServiceProtocol2Guid = {
    0x398460CA, 0x006F, 0x4A3D, {0xBC, 0x25, 0x2F, 0xCF, 0xF7, 0xC9, 0x1E, 0xE5}};

struct CURSOR_SERVICE_PROTOCOL {
    // Position on the screen in pixels and the two buttons, 1 while pressed. Z is filled and not used.
    EFI_STATUS (*GetCursorState)(INT64* X, INT64* Y, INT64* Z, UINT8* Left, UINT8* Right);
    // Limits of the pointer's travel; called before every read.
    EFI_STATUS (*SetCursorLimits)(UINTN Width, UINTN Height);
    // Called once, at the very end.
    EFI_STATUS (*CloseCursor)();
};
static_assert(sizeof(CURSOR_SERVICE_PROTOCOL) == 3 * 8);

// --- A service that has to be there and is never called ---

constexpr EFI_GUID gRequiredServiceProtocolGuid = {
    0x02B1EB99, 0x4BA4, 0x4D21, {0x93, 0xAE, 0x6F, 0x83, 0x16, 0x82, 0xA8, 0x2E}};

// --- Arithmetic ---

constexpr EFI_GUID gFloatMathProtocolGuid = {
    0xCC2AC9E3, 0x14A9, 0x11D3, {0x8E, 0x77, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};

// A single-precision number travels as its 32-bit word in the low half of a 64-bit argument.
using FLOAT_WORD = UINT64;

struct FLOAT_MATH_PROTOCOL {
    VOID* Unused0;
    // Decimal text of the value, without trailing zeros. Length is that of the buffer, in characters.
    EFI_STATUS (*FloatToString)(FLOAT_WORD Value, CHAR16* Buffer, UINTN Length);
    VOID* Unused2;
    FLOAT_WORD (*FloatAdd)(FLOAT_WORD A, FLOAT_WORD B);
    FLOAT_WORD (*FloatSubtract)(FLOAT_WORD A, FLOAT_WORD B);
    FLOAT_WORD (*FloatMultiply)(FLOAT_WORD A, FLOAT_WORD B);
    FLOAT_WORD (*FloatDivide)(FLOAT_WORD A, FLOAT_WORD B);
    VOID* Unused7[4];
    INT64 (*FloatToInt)(FLOAT_WORD A); // the fraction is dropped
    VOID* Unused12[2];
    FLOAT_WORD (*IntToFloat)(INT64 Whole);
};
static_assert(offsetof(FLOAT_MATH_PROTOCOL, FloatToString) == 1 * 8);
static_assert(offsetof(FLOAT_MATH_PROTOCOL, FloatAdd) == 3 * 8);
static_assert(offsetof(FLOAT_MATH_PROTOCOL, FloatToInt) == 11 * 8);
static_assert(offsetof(FLOAT_MATH_PROTOCOL, IntToFloat) == 14 * 8);

// --- Artwork ---

// The file of nearly all pictures, in numbered sections, and the file of the pointer picture.
constexpr EFI_GUID gArtworkFileGuid = {0xFCE4728C, 0x2599, 0x4B10, {0x98, 0xEA, 0x5F, 0x38, 0x72, 0x8A, 0xF5, 0xC4}};
constexpr EFI_GUID gCursorFileGuid = {0x511799D5, 0x4E57, 0x40CF, {0x83, 0x60, 0xC7, 0x52, 0x0E, 0xED, 0x1C, 0xCC}};

constexpr UINT8 EFI_SECTION_PE32 = 16;
constexpr UINT8 EFI_SECTION_RAW = 25;

constexpr EFI_GUID gImageLookupProtocolGuid = {
    0xB9450090, 0x3EF5, 0x420E, {0x9A, 0xAD, 0x94, 0x8C, 0x2D, 0x0F, 0x24, 0x55}};

struct IMAGE_LOOKUP_PROTOCOL {
    VOID* Unused0;
    // First section of that type in the file, in a pool buffer that the caller frees; an error if there is none.
    EFI_STATUS (*GetFileSection)(const EFI_GUID* FileGuid, UINT8 SectionType, VOID** Data, UINTN* Size);
};
static_assert(offsetof(IMAGE_LOOKUP_PROTOCOL, GetFileSection) == 8);

constexpr EFI_GUID gImageSectionProtocolGuid = {
    0xA7307E70, 0x27FE, 0x46BD, {0x8B, 0x4B, 0x8E, 0x7F, 0x1A, 0xE9, 0x38, 0xB8}};

struct IMAGE_SECTION_PROTOCOL {
    VOID* Unused0;
    // The section with that instance number, in a pool buffer that the caller frees.
    // clang-format off
    EFI_STATUS (*GetArtworkSection)(UINT32 Instance, VOID** Data, UINTN* Size, const EFI_GUID* FileGuid,
                                    const UINT8* SectionType);
    // clang-format on
    VOID* Unused2[2];
    // Called once with 10 and 0; a negative status ends the start.
    EFI_STATUS (*Configure)(UINTN A, UINTN B);
};
static_assert(offsetof(IMAGE_SECTION_PROTOCOL, Configure) == 4 * 8);

constexpr EFI_GUID gImageDecoderProtocolGuid = {
    0xB24C3803, 0x2E14, 0x40BA, {0xA8, 0xFA, 0xDD, 0xF5, 0xFE, 0x27, 0x64, 0x33}};

struct IMAGE_DECODER_PROTOCOL {
    VOID* Unused0[6];
    // JPEG to a pool buffer whose rows are PixelsPerRow pixels apart, which can be more than Width.
    // clang-format off
    EFI_STATUS (*ConvertJPEGToUgaBltA)(IMAGE_DECODER_PROTOCOL* This, const VOID* Image, UINT32 ImageSize,
                                       EFI_GRAPHICS_OUTPUT_BLT_PIXEL** Blt, UINTN* BltSize, UINT32* Height,
                                       UINT32* Width, UINT32* PixelsPerRow);
    // BMP to a tight pool buffer.
    EFI_STATUS (*ConvertBmpToGopBltA)(IMAGE_DECODER_PROTOCOL* This, const VOID* Image, UINT32 ImageSize,
                                      EFI_GRAPHICS_OUTPUT_BLT_PIXEL** Blt, UINTN* BltSize, UINT32* Height,
                                      UINT32* Width);
    // clang-format on
    VOID* Unused8[12];
    // 4: the font protocol is asked for pictures of the text's own size. Any other: for wide ones with row information.
    UINT8 (*GetFirmwareGeneration)(IMAGE_DECODER_PROTOCOL* This);
};
static_assert(offsetof(IMAGE_DECODER_PROTOCOL, ConvertJPEGToUgaBltA) == 6 * 8);
static_assert(offsetof(IMAGE_DECODER_PROTOCOL, ConvertBmpToGopBltA) == 7 * 8);
static_assert(offsetof(IMAGE_DECODER_PROTOCOL, GetFirmwareGeneration) == 20 * 8);

// --- Message boxes and lines ---

constexpr EFI_GUID gDrawPrimitivesProtocolGuid = {
    0xDC113A49, 0xA77E, 0x49F9, {0x8D, 0x09, 0x9D, 0xBF, 0x77, 0x6C, 0x67, 0x11}};

// Filled by CreateMessageBox. What isn't named belongs to the service and is carried along as it is.
struct MESSAGE_BOX {
    UINT8 Private0[8];
    UINT32 BoxWidth;  // pixels, as the service settled it
    UINT32 BoxHeight; // pixels, as the service settled it
    UINT8 Private16[50];
    UINT16 ButtonFocus; // 1 while the pointer is on the button
    UINT16 ButtonMode;
    UINT8 Private70[2];
};
static_assert(sizeof(MESSAGE_BOX) == 72);
static_assert(offsetof(MESSAGE_BOX, BoxWidth) == 8 && offsetof(MESSAGE_BOX, BoxHeight) == 12);
static_assert(offsetof(MESSAGE_BOX, ButtonFocus) == 66 && offsetof(MESSAGE_BOX, ButtonMode) == 68);

struct DRAW_PRIMITIVES_PROTOCOL {
    VOID* Unused0[8];
    // clang-format off
    EFI_STATUS (*CreateMessageBox)(MESSAGE_BOX* Box, UINTN X, UINTN Y, UINTN Width, UINTN Height, UINT16 LineCount,
                                   CHAR16** Lines, UINT16 ButtonCount, CHAR16** Buttons);
    // clang-format on
    // Told the pointer's position; keeps the button's look and ButtonFocus up to date.
    EFI_STATUS (*UpdateMessageBox)(MESSAGE_BOX* Box, UINTN X, UINTN Y);
    EFI_STATUS (*DrawMessageBox)(MESSAGE_BOX* Box);
    VOID* Unused11[26];
    // A straight line into a buffer. Color is a pixel word by value.
    // clang-format off
    EFI_STATUS (*DrawLine)(EFI_GRAPHICS_OUTPUT_BLT_PIXEL* Buffer, UINTN BufferWidth, UINTN BufferHeight, UINTN X0,
                           UINTN Y0, UINTN X1, UINTN Y1, UINTN Thickness, UINT32 Color);
    // clang-format on
};
static_assert(offsetof(DRAW_PRIMITIVES_PROTOCOL, CreateMessageBox) == 8 * 8);
static_assert(offsetof(DRAW_PRIMITIVES_PROTOCOL, DrawLine) == 37 * 8);
