#include "platform/board/chips/ChipBoardState.h"

namespace {

constexpr UINT16 gSuperIoPorts[] = {0x2E, 0x4E};

bool ReadSensor(const CHIP_SENSOR& Sensor, INT32* Value)
{
    if (Sensor.Chip == gProcessor) {
        return ReadProcessor(gChipBoard.Processor, Value) && IsPlausibleTemperature(*Value);
    }
    return ReadNumber(MONITOR_VISIT(gChipBoard.Chips[Sensor.Chip].Monitor), Sensor.Value, Value);
}

// Where there are two chips, the second one's sensors have its port in front of their names.
VOID NameSecondChip()
{
    WORDS Words;
    Words.AddNumber(gChipBoard.Chips[1].Monitor.Io.Port, 16).Add("/");
    for (UINTN Index = 0; Index < gChipBoard.Sensors.Count; Index++) {
        CHIP_SENSOR& Sensor = gChipBoard.Sensors.Rows[Index];
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

WORDS NameChip(const SUPER_IO& Io)
{
    WORDS Words;
    Words.Add(Io.Name).Add(" at port ").AddNumber(Io.Port, 16);
    return Words;
}

VOID FindChips(CHIP_REPORT* Report)
{
    bool Any = false;
    for (const UINT16 Port : gSuperIoPorts) {
        CHIP Chip = {};
        SUPER_IO& Io = Chip.Monitor.Io;
        const SUPER_IO_STATE State = FindSuperIo(gChipBoard.Ports, Port, &Io);
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
        } else if (gChipBoard.ChipCount > 0 && gChipBoard.Chips[0].Monitor.Io.Base == Io.Base) {
            ReportLine(Report, Words.Add(": the same chip once more."));
        } else if (!Chip.Driver->Open(&Chip)) {
            Chip.Driver->Close(Chip);
            ReportLine(Report, Words.Add(": its monitor doesn't run. It is left alone."));
        } else {
            gChipBoard.Chips[gChipBoard.ChipCount++] = Chip;
        }
    }
    if (!Any) {
        WORDS Words;
        ReportLine(Report, Words.Add("No sensor chip that is known answers at the ports 2E and 4E."));
    }
}

VOID ListSensors()
{
    SENSOR_LIST& List = gChipBoard.Sensors;
    gChipBoard.Processor = FindProcessor(gChipBoard.Ports);
    if (gChipBoard.Processor.Sensor != PROCESSOR_NONE) {
        CHIP_SENSOR Sensor = {};
        Sensor.Chip = gProcessor;
        AddSensor(&List, Sensor, "CPU", -1, nullptr);
    }
    for (UINT8 Index = 0; Index < gChipBoard.ChipCount; Index++) {
        gChipBoard.Chips[Index].Driver->List(gChipBoard.Chips[Index], Index, &List);
    }
    if (gChipBoard.ChipCount > 1) {
        NameSecondChip();
    }
    for (UINTN Index = 0; Index < List.Count; Index++) {
        gChipBoard.Readings[Index].Absent = !ReadSensor(List.Rows[Index], &gChipBoard.Readings[Index].Last);
        gChipBoard.Factors[Index] = gFactorUnit;
        if (List.Rows[Index].Kind == READING_FAN) {
            OpenChipFan(&gChipBoard.Fans[Index], &gChipBoard.Chips[List.Rows[Index].Chip], List.Rows[Index].Fan);
        }
    }
}

VOID RefreshSensor(UINT8 Index)
{
    SENSOR_READING& Reading = gChipBoard.Readings[Index];
    if (gChipBoard.Now - Reading.At < gReadingPeriod) {
        return;
    }
    Reading.At = gChipBoard.Now;
    INT32 Value = 0;
    if (!ReadSensor(gChipBoard.Sensors.Rows[Index], &Value)) {
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

INT64 ShownValue(UINT8 Index)
{
    const INT64 Value = gChipBoard.Readings[Index].Last;
    switch (gChipBoard.Sensors.Rows[Index].Kind) {
    case READING_TEMPERATURE:
        return Value >= 0 ? (Value + 500) / 1000 : -((-Value + 500) / 1000);
    case READING_VOLTAGE:
        return (Value * gChipBoard.Factors[Index] / gFactorUnit + 500) / 1000;
    default:
        return Value;
    }
}
