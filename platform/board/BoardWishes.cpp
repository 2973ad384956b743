#include "platform/board/BoardWishes.h"

namespace {

constexpr INT32 gFactorDecimals = 4;
constexpr UINT32 gHighestFactor = 1000000; // 100

// A piece of the file, without blanks at either end.
struct PIECE {
    const CHAR8* Text;
    UINTN Length;
};

struct READER {
    BOARD_WISHES* Wishes;
    VOID (*Fault)(VOID* Context, UINT32 Line, const CHAR8* What);
    VOID* Context;
    UINT32 Line;

    VOID Tell(const CHAR8* What) const
    {
        if (Fault != nullptr) {
            Fault(Context, Line, What);
        }
    }
};

bool IsBlank(CHAR8 Letter) { return Letter == ' ' || Letter == '\t' || Letter == '\r'; }

CHAR8 Lower(CHAR8 Letter) { return Letter >= 'A' && Letter <= 'Z' ? static_cast<CHAR8>(Letter + 32) : Letter; }

PIECE Trim(const CHAR8* Text, UINTN Length)
{
    while (Length > 0 && IsBlank(*Text)) {
        Text++;
        Length--;
    }
    while (Length > 0 && IsBlank(Text[Length - 1])) {
        Length--;
    }
    return {Text, Length};
}

bool Is(PIECE Piece, const CHAR8* Word)
{
    UINTN At = 0;
    while (At < Piece.Length && Word[At] != 0 && Lower(Piece.Text[At]) == Word[At]) {
        At++;
    }
    return At == Piece.Length && Word[At] == 0;
}

// What stands in front of the mark, which is taken off Rest with it; all of Rest where there is none.
PIECE CutAt(PIECE* Rest, CHAR8 Mark)
{
    UINTN At = 0;
    while (At < Rest->Length && Rest->Text[At] != Mark) {
        At++;
    }
    const PIECE Front = Trim(Rest->Text, At);
    const UINTN Used = At < Rest->Length ? At + 1 : At;
    *Rest = Trim(Rest->Text + Used, Rest->Length - Used);
    return Front;
}

// A decimal number above 0, in ten-thousandths, digits beyond which are dropped; 0 for anything else.
UINT32 FactorOf(PIECE Piece)
{
    UINT32 Factor = 0;
    INT32 Decimals = -1; // still in front of the point
    for (UINTN Index = 0; Index < Piece.Length; Index++) {
        const CHAR8 Letter = Piece.Text[Index];
        if (Letter == '.' && Decimals < 0 && Index > 0) {
            Decimals = 0;
        } else if (Letter < '0' || Letter > '9' || Factor > gHighestFactor) {
            return 0;
        } else if (Decimals < gFactorDecimals) {
            Factor = Factor * 10 + static_cast<UINT32>(Letter - '0');
            Decimals += Decimals < 0 ? 0 : 1;
        }
    }
    for (Decimals = Decimals < 0 ? 0 : Decimals; Decimals < gFactorDecimals && Factor <= gHighestFactor; Decimals++) {
        Factor *= 10;
    }
    return Factor <= gHighestFactor ? Factor : 0;
}

// The next row, with the sensor in it; null when it can't be taken.
WISH* AddWish(const READER& Reader, WISH_KIND Kind, PIECE Sensor)
{
    BOARD_WISHES* Wishes = Reader.Wishes;
    if (Sensor.Length == 0 || Sensor.Length >= sizeof(Wishes->Rows[0].Sensor)) {
        Reader.Tell(Sensor.Length == 0 ? "the name of a sensor is missing" : "no sensor has so long a name");
        return nullptr;
    }
    if (Wishes->Count == gMostWishes) {
        Reader.Tell("there are too many lines");
        return nullptr;
    }
    WISH* Wish = &Wishes->Rows[Wishes->Count++];
    *Wish = {};
    Wish->Kind = Kind;
    Wish->Line = Reader.Line;
    for (UINTN Index = 0; Index < Sensor.Length; Index++) {
        Wish->Sensor[Index] = Sensor.Text[Index];
    }
    return Wish;
}

VOID AddList(const READER& Reader, WISH_KIND Kind, PIECE Names)
{
    do {
        (void)AddWish(Reader, Kind, CutAt(&Names, ','));
    } while (Names.Length > 0);
}

VOID AddName(const READER& Reader, PIECE Sensor, PIECE Name)
{
    constexpr UINTN Room = sizeof(WISH::Name) / sizeof(CHAR16) - 1;
    if (Name.Length == 0 || Name.Length > Room) {
        Reader.Tell(Name.Length == 0 ? "a name is missing behind =" : "a name has at most 15 letters");
        return;
    }
    if (WISH* Wish = AddWish(Reader, WISH_NAME, Sensor)) {
        for (UINTN Index = 0; Index < Name.Length; Index++) {
            const UINT8 Letter = static_cast<UINT8>(Name.Text[Index]);
            Wish->Name[Index] = Letter >= 0x20 && Letter < 0x7F ? Letter : u'?';
        }
    }
}

VOID AddFactor(const READER& Reader, PIECE Sensor, PIECE Number)
{
    const UINT32 Factor = FactorOf(Number);
    if (Factor == 0) {
        Reader.Tell("a factor is a number above 0 and up to 100, such as 5.0455");
    } else if (WISH* Wish = AddWish(Reader, WISH_FACTOR, Sensor)) {
        Wish->Factor = Factor;
    }
}

enum SECTION : UINT8 { SECTION_NONE, SECTION_NAMES, SECTION_ORDER, SECTION_FACTORS, SECTION_LEAVE };

constexpr struct {
    const CHAR8* Word;
    SECTION Section;
} gSections[] = {
    {"[names]", SECTION_NAMES},
    {"[order]", SECTION_ORDER},
    {"[factors]", SECTION_FACTORS},
    {"[leave]", SECTION_LEAVE},
};

// The left side of a line in a section that lists sensors.
constexpr struct {
    SECTION Section;
    const CHAR8* Word;
    WISH_KIND Kind;
} gListKeys[] = {
    {SECTION_ORDER, "temperatures", WISH_TEMPERATURE},
    {SECTION_ORDER, "fans", WISH_FAN},
    {SECTION_ORDER, "voltages", WISH_VOLTAGE},
    {SECTION_LEAVE, "fans", WISH_LEAVE},
};

SECTION SectionOf(const READER& Reader, PIECE Line)
{
    for (const auto& Row : gSections) {
        if (Is(Line, Row.Word)) {
            return Row.Section;
        }
    }
    Reader.Tell("no such section; there are [names], [order], [factors] and [leave]");
    return SECTION_NONE;
}

VOID ReadEntry(const READER& Reader, SECTION Section, PIECE Line)
{
    PIECE Right = Line;
    const PIECE Left = CutAt(&Right, '=');
    if (Left.Length == Line.Length) {
        Reader.Tell("neither a section in brackets nor a line with =");
    } else if (Section == SECTION_NAMES) {
        AddName(Reader, Left, Right);
    } else if (Section == SECTION_FACTORS) {
        AddFactor(Reader, Left, Right);
    } else {
        for (const auto& Row : gListKeys) {
            if (Row.Section == Section && Is(Left, Row.Word)) {
                return AddList(Reader, Row.Kind, Right);
            }
        }
        Reader.Tell(Section == SECTION_ORDER   ? "only temperatures, fans and voltages have an order"
                    : Section == SECTION_LEAVE ? "only fans are left alone"
                                               : "a line before the first section");
    }
}

} // namespace

VOID ReadBoardWishes(const CHAR8* Text, UINTN Size, BOARD_WISHES* Wishes,
                     VOID (*Fault)(VOID* Context, UINT32 Line, const CHAR8* What), VOID* Context)
{
    Wishes->Count = 0;
    READER Reader = {.Wishes = Wishes, .Fault = Fault, .Context = Context, .Line = 0};
    SECTION Section = SECTION_NONE;
    bool Known = true; // lines of a section that isn't known have been told with it
    UINTN At = 0;
    constexpr UINT8 Mark[] = {0xEF, 0xBB, 0xBF}; // that some editors put in front of a text
    while (At < sizeof(Mark) && At < Size && static_cast<UINT8>(Text[At]) == Mark[At]) {
        At++;
    }
    while (At < Size) {
        UINTN End = At;
        while (End < Size && Text[End] != '\n') {
            End++;
        }
        UINTN Length = 0;
        while (At + Length < End && Text[At + Length] != '#' && Text[At + Length] != ';') {
            Length++;
        }
        const PIECE Line = Trim(Text + At, Length);
        At = End + 1;
        Reader.Line++;
        if (Line.Length > 0 && Line.Text[0] == '[') {
            Section = SectionOf(Reader, Line);
            Known = Section != SECTION_NONE;
        } else if (Line.Length > 0 && Known) {
            ReadEntry(Reader, Section, Line);
        }
    }
}
