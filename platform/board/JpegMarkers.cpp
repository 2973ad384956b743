#include "platform/board/JpegMarkers.h"

namespace {

constexpr UINT8 gMarkerPrefix = 0xFF;
constexpr UINT8 gStuffedByte = 0x00; // after the prefix: the prefix was coded data
constexpr UINT8 gFirstRestart = 0xD0;
constexpr UINT8 gLastRestart = 0xD7;
constexpr UINT8 gStartOfImage = 0xD8;
constexpr UINT8 gEndOfImage = 0xD9;
constexpr UINT8 gHuffmanTables = 0xC4;
constexpr UINT8 gStartOfScan = 0xDA;

constexpr UINT32 gHuffmanLengths = 16; // code lengths of 1 to 16 bits
constexpr UINT32 gMaxHuffmanSymbols = 256;

// Body of a segment: any number of tables, each with its class and number, a count for each code length, and symbols.
bool CheckHuffmanTables(const UINT8* Body, UINT32 Size)
{
    UINT32 Place = 0;
    while (Place < Size) {
        if (Size - Place < 1 + gHuffmanLengths) {
            return false;
        }
        UINT32 Symbols = 0;
        for (UINT32 Length = 0; Length < gHuffmanLengths; Length++) {
            Symbols += Body[Place + 1 + Length];
        }
        Place += 1 + gHuffmanLengths;
        if (Symbols > gMaxHuffmanSymbols || Symbols > Size - Place) {
            return false;
        }
        Place += Symbols;
    }
    return true;
}

// Where the coded data of a scan ends: at the next prefix that begins a marker other than a restart.
UINT32 SkipCodedData(const UINT8* Image, UINT32 ImageSize, UINT32 Place)
{
    while (ImageSize - Place >= 2) {
        const UINT8 Next = Image[Place + 1];
        const bool Coded = Next == gStuffedByte || (Next >= gFirstRestart && Next <= gLastRestart);
        if (Image[Place] == gMarkerPrefix && !Coded) {
            break;
        }
        Place++;
    }
    return Place;
}

} // namespace

bool CheckJpegMarkers(const UINT8* Image, UINT32 ImageSize)
{
    if (ImageSize < 2 || Image[0] != gMarkerPrefix || Image[1] != gStartOfImage) {
        return false;
    }
    bool HasScan = false;
    UINT32 Place = 2;
    while (ImageSize - Place >= 2 && Image[Place] == gMarkerPrefix) {
        const UINT8 Marker = Image[Place + 1];
        if (Marker == gMarkerPrefix) { // filling
            Place++;
            continue;
        }
        if (Marker == gEndOfImage) {
            return HasScan;
        }
        constexpr UINT32 MarkerSize = 2;
        constexpr UINT32 LengthSize = 2; // counted in the length
        if (ImageSize - Place < MarkerSize + LengthSize) {
            return false;
        }
        const UINT32 Length = static_cast<UINT32>(Image[Place + 2]) << 8 | Image[Place + 3];
        if (Length < LengthSize || Length > ImageSize - Place - MarkerSize) {
            return false;
        }
        const UINT8* Body = Image + Place + MarkerSize + LengthSize;
        if (Marker == gHuffmanTables && !CheckHuffmanTables(Body, Length - LengthSize)) {
            return false;
        }
        Place += MarkerSize + Length;
        if (Marker == gStartOfScan) {
            HasScan = true;
            Place = SkipCodedData(Image, ImageSize, Place);
        }
    }
    return false;
}
