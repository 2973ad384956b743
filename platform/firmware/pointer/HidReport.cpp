#include "platform/firmware/pointer/HidReport.h"

constexpr HID_LAYOUT gBootMouseLayout = {
    .ReportId = 0,
    .Absolute = false,
    .X = {.BitOffset = 8, .BitCount = 8, .Minimum = -127, .Maximum = 127},
    .Y = {.BitOffset = 16, .BitCount = 8, .Minimum = -127, .Maximum = 127},
    .Left = {.BitOffset = 0, .BitCount = 1, .Minimum = 0, .Maximum = 1},
    .Right = {.BitOffset = 1, .BitCount = 1, .Minimum = 0, .Maximum = 1},
};

namespace {

// Items of a report descriptor, without the two bits of their data's size.
enum HID_ITEM : UINT8 {
    ITEM_USAGE_PAGE = 0x04,
    ITEM_USAGE = 0x08,
    ITEM_LOGICAL_MINIMUM = 0x14,
    ITEM_USAGE_MINIMUM = 0x18,
    ITEM_LOGICAL_MAXIMUM = 0x24,
    ITEM_USAGE_MAXIMUM = 0x28,
    ITEM_REPORT_SIZE = 0x74,
    ITEM_INPUT = 0x80,
    ITEM_REPORT_ID = 0x84,
    ITEM_REPORT_COUNT = 0x94,
    ITEM_COLLECTION = 0xA0,
    ITEM_PUSH = 0xA4,
    ITEM_POP = 0xB4,
    ITEM_END_COLLECTION = 0xC0,
    ITEM_LONG = 0xFC,
};

constexpr UINT32 gInputConstant = 1;
constexpr UINT32 gInputVariable = 2;
constexpr UINT32 gInputRelative = 4;
constexpr UINT32 gCollectionApplication = 1;

// A usage with its page in the upper half.
constexpr UINT32 gUsagePointer = 0x00010001;
constexpr UINT32 gUsageMouse = 0x00010002;
constexpr UINT32 gUsageX = 0x00010030;
constexpr UINT32 gUsageY = 0x00010031;
constexpr UINT32 gUsageButton1 = 0x00090001;
constexpr UINT32 gUsageButton2 = 0x00090002;
constexpr UINT32 gUsagePen = 0x000D0002;
constexpr UINT32 gUsageTouchScreen = 0x000D0004;
constexpr UINT32 gUsageTip = 0x000D0042; // the finger or the pen touches the screen

constexpr UINTN gMaximumUsages = 32;
constexpr UINTN gMaximumPushes = 4;
constexpr UINT32 gMaximumReportBits = 8 * 64;

struct HID_GLOBALS {
    UINT32 UsagePage;
    INT32 Minimum;
    INT32 Maximum;
    UINT32 ReportSize;
    UINT32 ReportCount;
    UINT8 ReportId;
};

struct HID_PARSER {
    HID_GLOBALS Globals;
    HID_GLOBALS Pushed[gMaximumPushes];
    UINTN PushCount;
    bool ForDigitizers; // a touch screen or a pen is looked for, and no mouse
    UINT32 Usages[gMaximumUsages];
    UINTN UsageCount;
    UINT32 UsageMinimum;
    UINT32 Depth;
    UINT32 PointerDepth; // depth inside the collection of a pointer; 0: outside
    UINT32 BitOffset;    // in the report at hand
    HID_LAYOUT Found;
};

bool IsPointer(const HID_PARSER* Parser, UINT32 Usage)
{
    return Parser->ForDigitizers ? Usage == gUsageTouchScreen || Usage == gUsagePen
                                 : Usage == gUsageMouse || Usage == gUsagePointer;
}

bool HasBothAxes(const HID_LAYOUT* Layout) { return Layout->X.BitCount != 0 && Layout->Y.BitCount != 0; }

VOID AddUsage(HID_PARSER* Parser, UINT32 Usage)
{
    if (Parser->UsageCount < gMaximumUsages) {
        Parser->Usages[Parser->UsageCount++] = Usage;
    }
}

// A usage of up to 16 bits belongs to the page in force; a longer one names its own.
UINT32 WidenUsage(const HID_PARSER* Parser, UINT32 Data, UINTN DataSize)
{
    return DataSize == 4 ? Data : (Parser->Globals.UsagePage << 16) | Data;
}

VOID TakeField(HID_PARSER* Parser, UINT32 Usage, UINT32 BitOffset, UINT32 Flags)
{
    HID_LAYOUT* Layout = &Parser->Found;
    HID_FIELD* Field = nullptr;
    switch (Usage) {
    case gUsageX:
        Field = &Layout->X;
        break;
    case gUsageY:
        Field = &Layout->Y;
        break;
    case gUsageButton1:
    case gUsageTip:
        Field = &Layout->Left;
        break;
    case gUsageButton2:
        Field = &Layout->Right;
        break;
    default:
        return;
    }
    if (Field->BitCount != 0) {
        return;
    }
    *Field = {
        .BitOffset = static_cast<UINT16>(BitOffset),
        .BitCount = static_cast<UINT8>(Parser->Globals.ReportSize),
        .Minimum = Parser->Globals.Minimum,
        .Maximum = Parser->Globals.Maximum,
    };
    if (Usage == gUsageX) {
        Layout->Absolute = (Flags & gInputRelative) == 0;
    }
}

// False when the report is longer than any pointer's.
bool TakeInput(HID_PARSER* Parser, UINT32 Flags)
{
    const HID_GLOBALS* Globals = &Parser->Globals;
    if (Globals->ReportSize > gMaximumReportBits || Globals->ReportCount > gMaximumReportBits ||
        Globals->ReportSize * Globals->ReportCount > gMaximumReportBits - Parser->BitOffset) {
        return false;
    }
    bool Usable = (Flags & gInputConstant) == 0 && (Flags & gInputVariable) != 0 && Parser->PointerDepth != 0 &&
                  Globals->ReportSize != 0 && Globals->ReportSize <= 32 && Parser->UsageCount != 0;
    for (UINT32 Index = 0; Usable && Index < Globals->ReportCount; Index++) {
        // The last usage stands for all fields behind it.
        UINTN At = Index < Parser->UsageCount ? Index : Parser->UsageCount - 1;
        TakeField(Parser, Parser->Usages[At], Parser->BitOffset + Index * Globals->ReportSize, Flags);
    }
    Parser->BitOffset += Globals->ReportSize * Globals->ReportCount;
    return true;
}

// A report with another id begins: what was found so far is of no use if it isn't the pointer's.
VOID BeginReport(HID_PARSER* Parser, UINT8 ReportId)
{
    Parser->Globals.ReportId = ReportId;
    Parser->BitOffset = 0;
    if (!HasBothAxes(&Parser->Found)) {
        Parser->Found = {};
        Parser->Found.ReportId = ReportId;
    }
}

INT32 SignedData(UINT32 Data, UINTN DataSize)
{
    switch (DataSize) {
    case 1:
        return static_cast<INT8>(Data);
    case 2:
        return static_cast<INT16>(Data);
    default:
        return static_cast<INT32>(Data);
    }
}

// False when the descriptor can't be followed any further.
bool TakeItem(HID_PARSER* Parser, UINT8 Item, UINT32 Data, UINTN DataSize)
{
    HID_GLOBALS* Globals = &Parser->Globals;
    bool Main = false;
    switch (Item) {
    case ITEM_USAGE_PAGE:
        Globals->UsagePage = Data;
        break;
    case ITEM_LOGICAL_MINIMUM:
        Globals->Minimum = SignedData(Data, DataSize);
        break;
    case ITEM_LOGICAL_MAXIMUM:
        // Often written without room for its sign: 255 in one byte.
        Globals->Maximum = SignedData(Data, DataSize);
        if (Globals->Maximum < Globals->Minimum) {
            Globals->Maximum = static_cast<INT32>(Data);
        }
        break;
    case ITEM_REPORT_SIZE:
        Globals->ReportSize = Data;
        break;
    case ITEM_REPORT_COUNT:
        Globals->ReportCount = Data;
        break;
    case ITEM_REPORT_ID:
        // Fields of the pointer's own report end where the next report begins.
        if (HasBothAxes(&Parser->Found)) {
            return false;
        }
        BeginReport(Parser, static_cast<UINT8>(Data));
        break;
    case ITEM_PUSH:
        if (Parser->PushCount == gMaximumPushes) {
            return false;
        }
        Parser->Pushed[Parser->PushCount++] = *Globals;
        break;
    case ITEM_POP:
        if (Parser->PushCount == 0) {
            return false;
        }
        *Globals = Parser->Pushed[--Parser->PushCount];
        break;
    case ITEM_USAGE:
        AddUsage(Parser, WidenUsage(Parser, Data, DataSize));
        break;
    case ITEM_USAGE_MINIMUM:
        Parser->UsageMinimum = WidenUsage(Parser, Data, DataSize);
        break;
    case ITEM_USAGE_MAXIMUM: {
        UINT32 Last = WidenUsage(Parser, Data, DataSize);
        for (UINT32 Usage = Parser->UsageMinimum; Usage <= Last && Parser->UsageCount < gMaximumUsages; Usage++) {
            AddUsage(Parser, Usage);
        }
        break;
    }
    case ITEM_COLLECTION:
        Parser->Depth++;
        if (Parser->PointerDepth == 0 && Data == gCollectionApplication && Parser->UsageCount != 0 &&
            IsPointer(Parser, Parser->Usages[0])) {
            Parser->PointerDepth = Parser->Depth;
        }
        Main = true;
        break;
    case ITEM_END_COLLECTION:
        if (Parser->Depth == 0) {
            return false;
        }
        if (Parser->PointerDepth == Parser->Depth) {
            Parser->PointerDepth = 0;
        }
        Parser->Depth--;
        Main = true;
        break;
    case ITEM_INPUT:
        if (!TakeInput(Parser, Data)) {
            return false;
        }
        Main = true;
        break;
    default:
        // Output and feature fields lie in reports of their own; they end the local items as every main item does.
        Main = (Item & 0x0C) == 0;
        break;
    }
    if (Main) {
        Parser->UsageCount = 0;
        Parser->UsageMinimum = 0;
    }
    return true;
}

bool FieldFits(const HID_FIELD* Field, UINTN Bits) { return Field->BitOffset + UINTN{Field->BitCount} <= Bits; }

// The field's value, with its sign if its range has one; 0 for a field that the report doesn't have. The field has been
// checked against the report's size.
INT64 ReadField(const HID_FIELD* Field, const UINT8* Bytes)
{
    if (Field->BitCount == 0) {
        return 0;
    }
    UINT64 Value = 0;
    for (UINTN Bit = 0; Bit < Field->BitCount; Bit++) {
        UINTN At = Field->BitOffset + Bit;
        Value |= static_cast<UINT64>((Bytes[At / 8] >> (At % 8)) & 1) << Bit;
    }
    if (Field->Minimum < 0 && ((Value >> (Field->BitCount - 1)) & 1) != 0) {
        Value |= ~UINT64{0} << Field->BitCount;
    }
    return static_cast<INT64>(Value);
}

INT64 ScaleField(const HID_FIELD* Field, const UINT8* Bytes)
{
    INT64 Range = static_cast<INT64>(Field->Maximum) - Field->Minimum;
    INT64 Place = ReadField(Field, Bytes) - Field->Minimum;
    if (Range <= 0 || Place < 0) {
        return 0;
    }
    return Place > Range ? gFullScale : Place * gFullScale / Range;
}

bool FindPointer(const UINT8* Descriptor, UINTN Size, bool ForDigitizers, HID_LAYOUT* Layout)
{
    HID_PARSER Parser = {};
    Parser.ForDigitizers = ForDigitizers;
    UINTN At = 0;
    while (At < Size) {
        UINT8 Prefix = Descriptor[At++];
        if ((Prefix & ITEM_LONG) == 0xFC) {
            break; // long items were never given a meaning
        }
        UINTN DataSize = (Prefix & 3) == 3 ? 4 : Prefix & 3;
        if (DataSize > Size - At) {
            break;
        }
        UINT32 Data = 0;
        for (UINTN Index = 0; Index < DataSize; Index++) {
            Data |= static_cast<UINT32>(Descriptor[At + Index]) << (8 * Index);
        }
        At += DataSize;
        if (!TakeItem(&Parser, Prefix & 0xFC, Data, DataSize)) {
            break;
        }
    }
    if (!HasBothAxes(&Parser.Found)) {
        return false;
    }
    *Layout = Parser.Found;
    return true;
}

}

// A touch screen that is a mouse as well speaks as one until it is told otherwise. Of several fingers the first one counts.
bool ParseHidDescriptor(const UINT8* Descriptor, UINTN Size, HID_LAYOUT* Layout)
{
    return FindPointer(Descriptor, Size, false, Layout) || FindPointer(Descriptor, Size, true, Layout);
}

bool DecodeHidReport(const HID_LAYOUT* Layout, const UINT8* Report, UINTN Size, POINTER_CHANGE* Change)
{
    if (Layout->ReportId != 0) {
        if (Size == 0 || Report[0] != Layout->ReportId) {
            return false;
        }
        Report++;
        Size--;
    }
    UINTN Bits = 8 * Size;
    if (!FieldFits(&Layout->X, Bits) || !FieldFits(&Layout->Y, Bits) || !FieldFits(&Layout->Left, Bits) ||
        !FieldFits(&Layout->Right, Bits)) {
        return false;
    }
    *Change = {
        .Absolute = Layout->Absolute,
        .X = Layout->Absolute ? ScaleField(&Layout->X, Report) : ReadField(&Layout->X, Report),
        .Y = Layout->Absolute ? ScaleField(&Layout->Y, Report) : ReadField(&Layout->Y, Report),
        .Left = static_cast<UINT8>(ReadField(&Layout->Left, Report) != 0 ? 1 : 0),
        .Right = static_cast<UINT8>(ReadField(&Layout->Right, Report) != 0 ? 1 : 0),
    };
    return true;
}
