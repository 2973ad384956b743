#include "platform/board/chips/ChipBoard.h"

#include "platform/board/chips/ChipFan.h"
#include "platform/board/chips/ProcessorTemperature.h"

namespace {

constexpr UINT16 gSuperIoPorts[] = {0x2E, 0x4E};
constexpr UINTN gMostChips = 2;

// A processor that has no more than this isn't running, and a chipset's channel that nobody feeds has 0.
constexpr INT32 gLowestLikely = 1000;
constexpr INT32 gHighestLikely = 120000;

constexpr UINT32 gFactorUnit = 10000;

constexpr bool gTrueThenFalse[] = {true, false};

// What is known of a sensor's value, in the unit of ReadNumber.
struct READING {
    INT32 Last; // plausible
    UINT64 At;
    UINT8 Bad; // in a row
    UINT8 Good;
    bool Absent;
};

struct FAN {
    CHIP_FAN Chip;
    FAN_CONTROL Control;
    SHOWN_PAGE Page;
};

struct CHIP_BOARD : BOARD_SOURCE {
    PORTS* Ports;
    const BOARD_WISHES* Wishes; // while the board is being opened
    PROCESSOR Processor;
    CHIP Chips[gMostChips];
    UINT8 ChipCount;
    SENSOR_LIST Sensors;
    READING Readings[gMostSensors]; // by sensor
    UINT32 Factors[gMostSensors];
    CHIP_FAN Fans[gMostSensors]; // of the sensors that are one
    UINT8 SensorOf[gItemCount];  // by item
    FAN Pages[gFanItemCount];
    UINT64 Now;
    bool SetFans;
    bool TakenBack; // Default or Cancel since the console started
};

constinit CHIP_BOARD gBoard = {};

CHAR8 Lower(CHAR8 Letter) { return Letter >= 'A' && Letter <= 'Z' ? static_cast<CHAR8>(Letter + 32) : Letter; }

bool SameName(const CHAR8* A, const CHAR8* B)
{
    while (*A != 0 && Lower(*A) == Lower(*B)) {
        A++;
        B++;
    }
    return *A == *B;
}

bool MentionsPump(const CHAR16* Text)
{
    constexpr CHAR8 Word[] = "pump";
    for (; *Text != 0; Text++) {
        UINTN Same = 0;
        while (Word[Same] != 0 && Text[Same] < 0x80 && Lower(static_cast<CHAR8>(Text[Same])) == Word[Same]) {
            Same++;
        }
        if (Word[Same] == 0) {
            return true;
        }
    }
    return false;
}

// --- Report ---

constexpr UINTN gListIndent = 4;

// The line that is being written; a word that doesn't fit any more begins the next one.
struct WRITER {
    CHIP_REPORT* Report;
    UINTN Column;
};

VOID BeginLine(WRITER* Writer, UINTN Indent)
{
    CHIP_REPORT* Report = Writer->Report;
    if (Report->Count < gChipLines) {
        Report->Count++;
    }
    CHAR16* Line = Report->Lines[Report->Count - 1];
    for (Writer->Column = 0; Writer->Column < Indent; Writer->Column++) {
        Line[Writer->Column] = u' ';
    }
    Line[Writer->Column] = 0;
}

VOID Put(WRITER* Writer, const CHAR8* Text)
{
    UINTN Length = 0;
    while (Text[Length] != 0) {
        Length++;
    }
    // There is always room for the comma behind a word.
    if (Writer->Column + Length + 1 > gChipLineLength && Length > 1 && Length + gListIndent < gChipLineLength) {
        BeginLine(Writer, gListIndent);
        while (*Text == ' ') {
            Text++;
        }
    }
    CHAR16* Line = Writer->Report->Lines[Writer->Report->Count - 1];
    for (; *Text != 0 && Writer->Column < gChipLineLength; Text++) {
        Line[Writer->Column++] = static_cast<CHAR16>(*Text);
    }
    Line[Writer->Column] = 0;
}

// Words that stay together on one line.
struct WORDS {
    CHAR8 Text[gChipLineLength + 1] = {};
    UINTN Length = 0;

    WORDS& Add(const CHAR8* More)
    {
        while (*More != 0 && Length < gChipLineLength) {
            Text[Length++] = *More++;
        }
        Text[Length] = 0;
        return *this;
    }
    WORDS& AddNumber(UINT32 Number, UINT32 Base = 10, UINTN Digits = 1)
    {
        CHAR8 Reversed[12];
        UINTN Count = 0;
        do {
            Reversed[Count++] = "0123456789ABCDEF"[Number % Base];
            Number /= Base;
        } while (Number != 0 || Count < Digits);
        while (Count > 0) {
            const CHAR8 One[] = {Reversed[--Count], 0};
            Add(One);
        }
        return *this;
    }
};

VOID ReportLine(CHIP_REPORT* Report, const WORDS& Words, UINTN Indent = 0)
{
    WRITER Writer = {Report, 0};
    BeginLine(&Writer, Indent);
    Put(&Writer, Words.Text);
}

WORDS NameChip(const SUPER_IO& Io)
{
    WORDS Words;
    Words.Add(Io.Name).Add(" at port ").AddNumber(Io.Port, 16);
    return Words;
}

// --- Readings ---

bool ReadSensor(const CHIP_SENSOR& Sensor, INT32* Value)
{
    if (Sensor.Chip == gProcessor) {
        return ReadProcessor(gBoard.Processor, Value) && IsPlausibleTemperature(*Value);
    }
    return ReadNumber(MONITOR_VISIT(gBoard.Chips[Sensor.Chip].Monitor), Sensor.Value, Value);
}

VOID Refresh(UINT8 Index)
{
    READING& Reading = gBoard.Readings[Index];
    if (gBoard.Now - Reading.At < gReadingPeriod) {
        return;
    }
    Reading.At = gBoard.Now;
    INT32 Value = 0;
    if (!ReadSensor(gBoard.Sensors.Rows[Index], &Value)) {
        Reading.Good = 0;
        Reading.Bad = Reading.Bad < gBadReadings ? static_cast<UINT8>(Reading.Bad + 1) : gBadReadings;
        Reading.Absent = Reading.Absent || Reading.Bad == gBadReadings;
        return;
    }
    Reading.Bad = 0;
    Reading.Good = Reading.Good < gGoodReadings ? static_cast<UINT8>(Reading.Good + 1) : gGoodReadings;
    Reading.Absent = Reading.Absent && Reading.Good < gGoodReadings;
    if (!Reading.Absent) {
        Reading.Last = Value;
    }
}

// What the console shows of a value: whole degrees, revolutions a minute, or millivolts in front of the divider.
INT64 ShownValue(UINT8 Index)
{
    const INT64 Value = gBoard.Readings[Index].Last;
    switch (gBoard.Sensors.Rows[Index].Kind) {
    case READING_TEMPERATURE:
        return Value >= 0 ? (Value + 500) / 1000 : -((-Value + 500) / 1000);
    case READING_VOLTAGE:
        return (Value * gBoard.Factors[Index] / gFactorUnit + 500) / 1000;
    default:
        return Value;
    }
}

bool IsLikely(UINT8 Index)
{
    const READING& Reading = gBoard.Readings[Index];
    return !Reading.Absent && (gBoard.Sensors.Rows[Index].Kind != READING_TEMPERATURE ||
                               (Reading.Last >= gLowestLikely && Reading.Last <= gHighestLikely));
}

// --- Looking ---

VOID FindChips(CHIP_REPORT* Report)
{
    bool Any = false;
    for (const UINT16 Port : gSuperIoPorts) {
        CHIP Chip = {};
        SUPER_IO& Io = Chip.Monitor.Io;
        const SUPER_IO_STATE State = FindSuperIo(gBoard.Ports, Port, &Io);
        Any = Any || State == SUPER_IO_FOUND || State == SUPER_IO_OFF;
        if (State == SUPER_IO_NONE) {
            continue;
        }
        if (State == SUPER_IO_UNKNOWN) {
            WORDS Words;
            Words.Add("At port ").AddNumber(Port, 16).Add(" a chip that isn't known (").AddNumber(Io.Id, 16, 4);
            ReportLine(Report, Words.Add("). It is left alone."));
            continue;
        }
        WORDS Words = NameChip(Io);
        Chip.Driver = Io.Maker == MAKER_NUVOTON ? &gNuvotonDriver : &gIteDriver;
        if (State == SUPER_IO_OFF) {
            ReportLine(Report, Words.Add(": its monitor is switched off. It is left alone."));
        } else if (gBoard.ChipCount > 0 && gBoard.Chips[0].Monitor.Io.Base == Io.Base) {
            ReportLine(Report, Words.Add(": the same chip once more."));
        } else if (!Chip.Driver->Open(&Chip)) {
            Chip.Driver->Close(Chip);
            ReportLine(Report, Words.Add(": its monitor doesn't run. It is left alone."));
        } else {
            gBoard.Chips[gBoard.ChipCount++] = Chip;
        }
    }
    if (!Any) {
        WORDS Words;
        ReportLine(Report, Words.Add("No sensor chip that is known answers at the ports 2E and 4E."));
    }
}

// Where there are two chips, the second one's sensors have its port in front of their names.
VOID NameSecondChip()
{
    WORDS Words;
    Words.AddNumber(gBoard.Chips[1].Monitor.Io.Port, 16).Add("/");
    for (UINTN Index = 0; Index < gBoard.Sensors.Count; Index++) {
        CHIP_SENSOR& Sensor = gBoard.Sensors.Rows[Index];
        if (Sensor.Chip != 1) {
            continue;
        }
        WORDS Name = Words;
        Name.Add(Sensor.Name);
        for (UINTN Letter = 0; Letter < gSensorNameRoom - 1; Letter++) {
            Sensor.Name[Letter] = Name.Text[Letter];
            Sensor.Label[Letter] = static_cast<CHAR16>(Name.Text[Letter]);
        }
    }
}

VOID ListSensors()
{
    SENSOR_LIST& List = gBoard.Sensors;
    gBoard.Processor = FindProcessor(gBoard.Ports);
    if (gBoard.Processor.Sensor != PROCESSOR_NONE) {
        CHIP_SENSOR Sensor = {};
        Sensor.Chip = gProcessor;
        AddSensor(&List, Sensor, "CPU", -1, nullptr);
    }
    for (UINT8 Index = 0; Index < gBoard.ChipCount; Index++) {
        gBoard.Chips[Index].Driver->List(gBoard.Chips[Index], Index, &List);
    }
    if (gBoard.ChipCount > 1) {
        NameSecondChip();
    }
    for (UINTN Index = 0; Index < List.Count; Index++) {
        gBoard.Readings[Index].Absent = !ReadSensor(List.Rows[Index], &gBoard.Readings[Index].Last);
        gBoard.Factors[Index] = gFactorUnit;
        if (List.Rows[Index].Kind == READING_FAN) {
            OpenChipFan(&gBoard.Fans[Index], &gBoard.Chips[List.Rows[Index].Chip], List.Rows[Index].Fan);
        }
    }
}

// --- Wishes ---

// The next wish of that kind for which there is a sensor, from *Row on; gMostSensors when there is none.
UINTN NextWished(WISH_KIND Kind, UINTN* Row)
{
    while (gBoard.Wishes != nullptr && *Row < gBoard.Wishes->Count) {
        const WISH& Wish = gBoard.Wishes->Rows[(*Row)++];
        for (UINTN Index = 0; Wish.Kind == Kind && Index < gBoard.Sensors.Count; Index++) {
            if (SameName(Wish.Sensor, gBoard.Sensors.Rows[Index].Name)) {
                return Index;
            }
        }
    }
    return gMostSensors;
}

constexpr bool Suits(WISH_KIND Wish, READING_KIND Kind)
{
    switch (Wish) {
    case WISH_NAME:
        return true;
    case WISH_TEMPERATURE:
        return Kind == READING_TEMPERATURE;
    case WISH_VOLTAGE:
    case WISH_FACTOR:
        return Kind == READING_VOLTAGE;
    default:
        return Kind == READING_FAN;
    }
}

VOID FulfilWishes(CHIP_REPORT* Report)
{
    for (UINTN Row = 0; gBoard.Wishes != nullptr && Row < gBoard.Wishes->Count; Row++) {
        const WISH& Wish = gBoard.Wishes->Rows[Row];
        UINTN Next = Row;
        const UINTN At = NextWished(Wish.Kind, &Next);
        if (At == gMostSensors || Next != Row + 1 || !Suits(Wish.Kind, gBoard.Sensors.Rows[At].Kind)) {
            ReportWishFault(Report, Wish.Line,
                            At == gMostSensors || Next != Row + 1 ? "no sensor has that name"
                                                                  : "not that kind of sensor",
                            Wish.Sensor);
            continue;
        }
        if (Wish.Kind == WISH_NAME) {
            for (UINTN Letter = 0; Letter < gSensorNameRoom; Letter++) {
                gBoard.Sensors.Rows[At].Label[Letter] = Wish.Name[Letter];
            }
        } else if (Wish.Kind == WISH_FACTOR) {
            gBoard.Factors[At] = Wish.Factor;
        } else if (Wish.Kind == WISH_LEAVE) {
            gBoard.Fans[At].Means.WhyNot = "ventara.ini leaves it alone";
        }
    }
    for (UINTN Index = 0; Index < gBoard.Sensors.Count; Index++) {
        const CHIP_SENSOR& Sensor = gBoard.Sensors.Rows[Index];
        if (Sensor.Kind == READING_FAN && gBoard.Fans[Index].Means.WhyNot == nullptr) {
            if (MentionsPump(Sensor.Label)) {
                gBoard.Fans[Index].Means.WhyNot = "a pump is left alone";
            } else if (gBoard.Readings[Index].Absent || gBoard.Readings[Index].Last == 0) {
                gBoard.Fans[Index].Means.WhyNot = "it stands still, or there is none";
            }
        }
    }
}

// --- Places ---

bool IsPlaced(UINTN At)
{
    for (UINT8 Item = 0; Item < gItemCount; Item++) {
        if (HasItem(gBoard, Item) && gBoard.SensorOf[Item] == At) {
            return true;
        }
    }
    return false;
}

VOID Place(UINTN Item, UINTN At)
{
    gBoard.SensorOf[Item] = static_cast<UINT8>(At);
    gBoard.Present |= UINT32{1} << Item;
}

// The first sensor of that kind that is likely, has no place yet, and is meant for that one, or for any with gNoPlace.
UINTN FindFor(READING_KIND Kind, UINT8 Wanted)
{
    for (UINT8 Index = 0; Index < gBoard.Sensors.Count; Index++) {
        const CHIP_SENSOR& Sensor = gBoard.Sensors.Rows[Index];
        if (Sensor.Kind == Kind && (Wanted == gNoPlace || Sensor.Place == Wanted) && IsLikely(Index) &&
            !IsPlaced(Index)) {
            return Index;
        }
    }
    return gMostSensors;
}

VOID PlaceWished(WISH_KIND Wish, READING_KIND Kind, UINT8 FirstItem, UINT8 Count)
{
    UINT8 Filled = 0;
    for (UINTN Row = 0, At = 0; Filled < Count && (At = NextWished(Wish, &Row)) != gMostSensors;) {
        if (gBoard.Sensors.Rows[At].Kind == Kind && !gBoard.Readings[At].Absent && !IsPlaced(At)) {
            Place(UINTN{FirstItem} + Filled++, At);
        }
    }
}

VOID PlaceTemperatures()
{
    PlaceWished(WISH_TEMPERATURE, READING_TEMPERATURE, gFirstTemperatureItem, gTemperatureItemCount);
    const bool Wished = gBoard.Present != 0;
    UINT8 Item = gFirstTemperatureItem;
    for (UINT8 Role = 0; Role < gTemperatureItemCount; Role++) {
        // Without wishes a role keeps its place, so that the second temperature always is the board's.
        while (Wished && HasItem(gBoard, Item)) {
            Item++;
        }
        const UINTN At = FindFor(READING_TEMPERATURE, Role);
        if (At != gMostSensors && (Wished ? Item : Role) < gTemperatureItemCount) {
            Place(Wished ? Item : Role, At);
        }
    }
}

VOID PlaceVoltages()
{
    PlaceWished(WISH_VOLTAGE, READING_VOLTAGE, gFirstVoltageItem, gVoltageItemCount);
    for (const bool Known : gTrueThenFalse) {
        for (UINT8 Index = 0; Index < gVoltageItemCount; Index++) {
            const UINT8 Item = static_cast<UINT8>(gFirstVoltageItem + Index);
            const UINTN Sensor = FindFor(READING_VOLTAGE, Known ? Index : gNoPlace);
            if (!HasItem(gBoard, Item) && Sensor != gMostSensors) {
                Place(Item, Sensor);
            }
        }
    }
}

VOID PlaceFan(UINTN At)
{
    for (const UINT8 Item : gBoard.Fans[At].Means.HasCurve ? gCurvePages : gSliderPages) {
        if (!HasItem(gBoard, Item)) {
            gBoard.Pages[Item - gFirstFanItem] = {gBoard.Fans[At], ControlOfFan(gBoard.FanKind, Item), {}};
            return Place(Item, At);
        }
    }
}

VOID PlaceFans()
{
    // By wish, then turning ones, then the others: as many as there are places. Among the chosen, fans with a curve have
    // the first choice of a page.
    UINTN Chosen[gFanItemCount];
    UINTN Count = 0;
    const auto Choose = [&](UINTN At) {
        bool New = Count < gFanItemCount && gBoard.Sensors.Rows[At].Kind == READING_FAN;
        for (UINTN Index = 0; Index < Count; Index++) {
            New = New && Chosen[Index] != At;
        }
        if (New) {
            Chosen[Count++] = At;
        }
    };
    UINTN At = 0;
    for (UINTN Row = 0; (At = NextWished(WISH_FAN, &Row)) != gMostSensors;) {
        Choose(At);
    }
    const UINTN Wished = Count;
    for (const bool Turning : gTrueThenFalse) {
        for (At = 0; At < gBoard.Sensors.Count; At++) {
            if (!Turning || (!gBoard.Readings[At].Absent && gBoard.Readings[At].Last > 0)) {
                Choose(At);
            }
        }
    }
    // Back into the chips' order, behind those by wish.
    for (UINTN First = Wished; First < Count; First++) {
        for (UINTN Other = First + 1; Other < Count; Other++) {
            if (Chosen[Other] < Chosen[First]) {
                At = Chosen[First];
                Chosen[First] = Chosen[Other];
                Chosen[Other] = At;
            }
        }
    }
    for (const bool Curve : gTrueThenFalse) {
        for (UINTN Index = 0; Index < Count; Index++) {
            if (gBoard.Fans[Chosen[Index]].Means.HasCurve == Curve) {
                PlaceFan(Chosen[Index]);
            }
        }
    }
}

// --- What was found ---

VOID AddReading(WORDS* Words, UINT8 At)
{
    const CHIP_SENSOR& Sensor = gBoard.Sensors.Rows[At];
    Words->Add(Sensor.Name).Add(" ");
    if (gBoard.Readings[At].Absent) {
        Words->Add("nothing likely");
        return;
    }
    const INT64 Value = ShownValue(At);
    Words->Add(Value < 0 ? "-" : "");
    const UINT32 Number = static_cast<UINT32>(Value < 0 ? -Value : Value);
    if (Sensor.Kind == READING_VOLTAGE) {
        Words->AddNumber(Number / 1000).Add(".").AddNumber(Number % 1000, 10, 3);
    } else {
        Words->AddNumber(Number);
    }
}

// One list of a chip, or nothing where it would be empty.
template <typename DESCRIBE>
VOID ReportList(CHIP_REPORT* Report, UINT8 Chip, READING_KIND Kind, const CHAR8* Title, DESCRIBE Describe)
{
    WRITER Writer = {Report, 0};
    for (UINT8 Index = 0; Index < gBoard.Sensors.Count; Index++) {
        const CHIP_SENSOR& Sensor = gBoard.Sensors.Rows[Index];
        WORDS Words;
        if (Sensor.Chip != Chip || Sensor.Kind != Kind || !Describe(&Words, Index)) {
            continue;
        }
        if (Writer.Column == 0) {
            BeginLine(&Writer, 2);
            Put(&Writer, Title);
        } else {
            Put(&Writer, ",");
        }
        WORDS Spaced;
        Put(&Writer, Spaced.Add(" ").Add(Words.Text).Text);
    }
}

VOID ReportFindings(CHIP_REPORT* Report)
{
    constexpr struct {
        READING_KIND Kind;
        const CHAR8* Title;
    } Lists[] = {{READING_TEMPERATURE, "degrees:"}, {READING_FAN, "rpm:"}, {READING_VOLTAGE, "volts:"}};
    if (gBoard.Processor.Sensor != PROCESSOR_NONE) {
        WORDS Words;
        Words.Add("The processor's own sensor: ");
        AddReading(&Words, 0);
        Words.Add(" degrees");
        if (gBoard.Processor.Sensor == PROCESSOR_INTEL_CORE) {
            Words.Add(", on the assumption of ").AddNumber(static_cast<UINT32>(gBoard.Processor.Limit)).Add(" at most");
        }
        ReportLine(Report, Words.Add("."));
    }
    for (UINT8 Chip = 0; Chip < gBoard.ChipCount; Chip++) {
        const SUPER_IO& Io = gBoard.Chips[Chip].Monitor.Io;
        WORDS Words = NameChip(Io);
        Words.Add(", its registers at ").AddNumber(Io.Base, 16, 4);
        ReportLine(Report, Words.Add(gBoard.Chips[Chip].WasLocked ? ", unlocked to be read:" : ":"));
        for (const auto& Row : Lists) {
            ReportList(Report, Chip, Row.Kind, Row.Title, [](WORDS* Text, UINT8 At) {
                AddReading(Text, At);
                return gBoard.Sensors.Rows[At].Kind == READING_FAN || !gBoard.Readings[At].Absent;
            });
        }
        ReportList(Report, Chip, READING_FAN, "can be set:", [](WORDS* Text, UINT8 At) {
            Text->Add(gBoard.Sensors.Rows[At].Name);
            return gBoard.Fans[At].Means.WhyNot == nullptr && IsPlaced(At);
        });
        ReportList(Report, Chip, READING_FAN, "never set:", [](WORDS* Text, UINT8 At) {
            const CHAR8* WhyNot = gBoard.Fans[At].Means.WhyNot;
            Text->Add(gBoard.Sensors.Rows[At].Name).Add(" (").Add(WhyNot == nullptr ? "" : WhyNot).Add(")");
            return WhyNot != nullptr;
        });
    }
}

// --- The board ---

FAN& PageOf(UINT8 Item) { return gBoard.Pages[Item - gFirstFanItem]; }

EFI_STATUS ReadItem(BOARD_SOURCE*, UINT8 Item, UINT64* Value)
{
    if (!HasItem(gBoard, Item)) {
        return EFI_NOT_FOUND;
    }
    const UINT8 At = gBoard.SensorOf[Item];
    Refresh(At);
    if (gBoard.Readings[At].Absent) {
        return EFI_DEVICE_ERROR;
    }
    *Value = static_cast<UINT64>(ShownValue(At));
    return EFI_SUCCESS;
}

EFI_STATUS GetFan(BOARD_SOURCE*, UINT8 Item, FAN_SETTING* Setting)
{
    *Setting = {};
    if (!IsFanItem(Item) || !HasItem(gBoard, Item)) {
        return EFI_NOT_FOUND;
    }
    FAN& Fan = PageOf(Item);
    *Setting = GetChipFan(Fan.Chip, Fan.Control);
    Fan.Page.WasRead(Fan.Control, *Setting, gBoard.TakenBack);
    return EFI_SUCCESS;
}

EFI_STATUS SetFan(BOARD_SOURCE*, UINT8 Item, const FAN_SETTING* Setting)
{
    if (!IsFanItem(Item) || !HasItem(gBoard, Item)) {
        return EFI_NOT_FOUND;
    }
    FAN& Fan = PageOf(Item);
    if (Fan.Page.Shows(Fan.Control, *Setting)) {
        return EFI_SUCCESS;
    }
    if (!gBoard.SetFans) {
        return EFI_WRITE_PROTECTED;
    }
    if (Fan.Chip.Means.WhyNot != nullptr || !SetChipFan(&Fan.Chip, Fan.Control, *Setting)) {
        return EFI_DEVICE_ERROR;
    }
    Fan.Page.WasSent(Fan.Control, *Setting);
    return EFI_SUCCESS;
}

template <bool (*Command)(CHIP_FAN*)> EFI_STATUS CommandAll()
{
    if (!gBoard.SetFans) {
        return EFI_WRITE_PROTECTED;
    }
    bool Good = true;
    for (UINT8 Item = gFirstFanItem; IsFanItem(Item); Item++) {
        if (HasItem(gBoard, Item) && PageOf(Item).Chip.Means.WhyNot == nullptr) {
            Good = Command(&PageOf(Item).Chip) && Good;
        }
    }
    return Good ? EFI_SUCCESS : EFI_DEVICE_ERROR;
}

EFI_STATUS SetFullSpeed(BOARD_SOURCE*)
{
    const EFI_STATUS Status = CommandAll<SetChipFanToFullSpeed>();
    for (FAN& Fan : gBoard.Pages) {
        if (Status != EFI_WRITE_PROTECTED) {
            Fan.Page.ShowFullSpeed(Fan.Control);
        }
    }
    return Status;
}

EFI_STATUS GiveBack(BOARD_SOURCE*)
{
    gBoard.TakenBack = true;
    return CommandAll<GiveChipFanBack>();
}

} // namespace

VOID AddSensor(SENSOR_LIST* List, const CHIP_SENSOR& Like, const CHAR8* Stem, INT32 Number, const CHAR8* Label)
{
    if (List->Count == gMostSensors) {
        return;
    }
    CHIP_SENSOR& Sensor = List->Rows[List->Count++];
    Sensor = Like;
    WORDS Name;
    Name.Add(Stem);
    if (Number >= 0) {
        Name.AddNumber(static_cast<UINT32>(Number));
    }
    WORDS Shown;
    Shown.Add(Label == nullptr ? Name.Text : Label);
    for (UINTN Index = 0; Index < gSensorNameRoom - 1; Index++) {
        Sensor.Name[Index] = Name.Text[Index];
        Sensor.Label[Index] = static_cast<CHAR16>(Shown.Text[Index]);
    }
}

VOID ReportWishFault(CHIP_REPORT* Report, UINT32 Line, const CHAR8* What, const CHAR8* Sensor)
{
    WORDS Words;
    Words.Add("ventara.ini, line ").AddNumber(Line).Add(": ").Add(What);
    if (Sensor != nullptr) {
        Words.Add(" (").Add(Sensor).Add(")");
    }
    ReportLine(Report, Words);
}

BOARD_SOURCE* OpenChipBoard(PORTS* Ports, const CHIP_BOARD_OPTIONS* Options, CHIP_REPORT* Report)
{
    UINT8* Bytes = reinterpret_cast<UINT8*>(&gBoard);
    for (UINTN Index = 0; Index < sizeof(gBoard); Index++) {
        Bytes[Index] = 0;
    }
    gBoard.FanKind = 1;
    gBoard.Ports = Ports;
    gBoard.SetFans = Options->SetFans;
    gBoard.Wishes = Options->Wishes;
    Report->Count = 0;
    Report->SettableFans = 0;

    FindChips(Report);
    ListSensors();
    FulfilWishes(Report);
    PlaceTemperatures();
    PlaceVoltages();
    PlaceFans();
    gBoard.Wishes = nullptr;
    ReportFindings(Report);
    for (UINT8 Item = gFirstFanItem; IsFanItem(Item); Item++) {
        Report->SettableFans += HasItem(gBoard, Item) && PageOf(Item).Chip.Means.WhyNot == nullptr ? 1 : 0;
    }

    gBoard.NameOf = [](BOARD_SOURCE*, UINT8 Item) -> const CHAR16* {
        return HasItem(gBoard, Item) ? gBoard.Sensors.Rows[gBoard.SensorOf[Item]].Label : nullptr;
    };
    gBoard.Read = ReadItem;
    gBoard.GetFan = GetFan;
    gBoard.SetFan = SetFan;
    gBoard.LoadDefaults = gBoard.Restore = GiveBack; // a board's defaults aren't in the chip
    gBoard.SetFullSpeed = SetFullSpeed;
    gBoard.Begin = [](BOARD_SOURCE*) { gBoard.TakenBack = false; };
    gBoard.Advance = [](BOARD_SOURCE*, UINT64 Microseconds) {
        gBoard.Now = Microseconds > gBoard.Now ? Microseconds : gBoard.Now;
    };
    if (gBoard.Present == 0) {
        CloseChipBoard();
        return nullptr;
    }
    return &gBoard;
}

VOID AllowChipFans(bool SetFans)
{
    for (UINT8 Item = gFirstFanItem; IsFanItem(Item); Item++) {
        if (SetFans && !gBoard.SetFans && HasItem(gBoard, Item)) {
            KeepChipFan(&PageOf(Item).Chip);
        }
    }
    gBoard.SetFans = SetFans;
}

VOID CloseChipBoard()
{
    for (UINT8 Index = 0; Index < gBoard.ChipCount; Index++) {
        gBoard.Chips[Index].Driver->Close(gBoard.Chips[Index]);
    }
    gBoard.ChipCount = 0;
    gBoard.Present = 0;
    gBoard.SetFans = false;
}
