#include "platform/board/chips/ChipBoardState.h"

namespace {

VOID AddReading(WORDS* Words, UINT8 At)
{
    const CHIP_SENSOR& Sensor = gChipBoard.Sensors.Rows[At];
    Words->Add(Sensor.Name).Add(" ");
    if (gChipBoard.Readings[At].Absent) {
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
    LINE_WRITER Writer = {Report, 0};
    for (UINT8 Index = 0; Index < gChipBoard.Sensors.Count; Index++) {
        const CHIP_SENSOR& Sensor = gChipBoard.Sensors.Rows[Index];
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

} // namespace

VOID ReportFindings(CHIP_REPORT* Report)
{
    constexpr struct {
        READING_KIND Kind;
        const CHAR8* Title;
    } Lists[] = {{READING_TEMPERATURE, "degrees:"}, {READING_FAN, "rpm:"}, {READING_VOLTAGE, "volts:"}};
    if (gChipBoard.Processor.Sensor != PROCESSOR_NONE) {
        WORDS Words;
        Words.Add("The processor's own sensor: ");
        AddReading(&Words, 0);
        Words.Add(" degrees");
        if (gChipBoard.Processor.Sensor == PROCESSOR_INTEL_CORE) {
            Words.Add(", on the assumption of ")
                .AddNumber(static_cast<UINT32>(gChipBoard.Processor.Limit))
                .Add(" at most");
        }
        ReportLine(Report, Words.Add("."));
    }
    for (UINT8 Chip = 0; Chip < gChipBoard.ChipCount; Chip++) {
        const SUPER_IO& Io = gChipBoard.Chips[Chip].Monitor.Io;
        WORDS Words = NameChip(Io);
        Words.Add(", its registers at ").AddNumber(Io.Base, 16, 4);
        ReportLine(Report, Words.Add(gChipBoard.Chips[Chip].WasLocked ? ", unlocked to be read:" : ":"));
        for (const auto& Row : Lists) {
            ReportList(Report, Chip, Row.Kind, Row.Title, [](WORDS* Text, UINT8 At) {
                AddReading(Text, At);
                return gChipBoard.Sensors.Rows[At].Kind == READING_FAN || !gChipBoard.Readings[At].Absent;
            });
        }
        ReportList(Report, Chip, READING_FAN, "can be set:", [](WORDS* Text, UINT8 At) {
            Text->Add(gChipBoard.Sensors.Rows[At].Name);
            return gChipBoard.Fans[At].Means.WhyNot == nullptr && IsPlaced(At);
        });
        ReportList(Report, Chip, READING_FAN, "never set:", [](WORDS* Text, UINT8 At) {
            const CHAR8* WhyNot = gChipBoard.Fans[At].Means.WhyNot;
            Text->Add(gChipBoard.Sensors.Rows[At].Name).Add(" (").Add(WhyNot == nullptr ? "" : WhyNot).Add(")");
            return WhyNot != nullptr;
        });
    }
}
