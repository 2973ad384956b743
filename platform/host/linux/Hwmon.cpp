#include "platform/host/linux/Hwmon.h"

#include <dirent.h>
#include <fcntl.h>
#include <strings.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <filesystem>
#include <iterator>

namespace {

constexpr size_t gLabelLimit = 63; // the console draws no longer text

// Where a sensor of a kind stands in a file's name, and what it can show. A value outside is that of an input without a
// sensor: -128, 127 and 255 degrees are usual there.
//   kind, name in front of the number, lowest, highest
constexpr struct {
    SENSOR_KIND Kind;
    const char* Name;
    INT64 Lowest;
    INT64 Highest;
} gKinds[] = {
    {SENSOR_TEMPERATURE, "temp", -40000, 125000},
    {SENSOR_FAN, "fan", 0, 65534},
    {SENSOR_VOLTAGE, "in", -20000, 20000},
};

// What a temperature is for, the console's first, second and third, best row first. An empty word fits everything.
//   place, driver begins with, label begins with
constexpr struct {
    UINTN Place;
    const char* Driver;
    const char* Label;
} gTemperatureRoles[] = {
    // clang-format off
    {0, "coretemp", "Package"}, {0, "k10temp", "Tdie"}, // Tctl is for control and can lie above the truth
    {0, "k10temp", ""},         {0, "zenpower", "Tdie"}, {0, "coretemp", ""}, {0, "cpu_thermal", ""},
    {0, "", "CPU"},             {0, "", "PECI"},
    {1, "", "SYSTIN"},          {1, "", "System"},       {1, "", "Motherboard"}, {1, "", "Mainboard"},
    {1, "", "MB"},              {1, "", "Board"},        {1, "nct", "AUXTIN"},   {1, "it8", ""},
    {1, "acpitz", ""},
    {2, "pch", ""},             {2, "", "PCH"},          {2, "", "Chipset"},
    // clang-format on
};
// A processor that reads no more than this at the start isn't running, and a chipset's channel that nobody feeds has 0.
constexpr INT64 gLowestLikely = 1000;
constexpr INT64 gHighestLikely = 120000;

// Which voltage goes to which place, best row first.
//   place, driver begins with, label mentions
constexpr struct {
    UINTN Place;
    const char* Driver;
    const char* Label;
} gVoltageRoles[] = {
    {0, "", "Vcore"}, {0, "", "CPU Core"}, {0, "", "CPUVC"}, {1, "", "VCCIO"},  {1, "", "CPU I/O"},
    {1, "", "VTT"},   {1, "", "SoC"},      {2, "", "3.3V"},  {2, "", "3VCC"},   {2, "", "AVCC"},
    {3, "", "+5V"},   {3, "", "5VCC"},     {4, "", "12V"},   {5, "amdgpu", ""}, {5, "nouveau", ""},
    {5, "", "GPU"},   {6, "", "DRAM"},     {6, "", "DIMM"},  {6, "", "VDDQ"},
};

std::vector<std::string> NamesIn(const std::string& Folder, bool* Good)
{
    std::vector<std::string> Names;
    DIR* Open = opendir(Folder.c_str());
    *Good = Open != nullptr;
    if (Open != nullptr) {
        while (const dirent* Entry = readdir(Open)) {
            Names.push_back(Entry->d_name);
        }
        (void)closedir(Open);
    }
    return Names;
}

// What stays when a driver is loaded again, while its folder's number doesn't: the device behind it. Empty where a folder
// names none.
std::string DeviceOf(const std::string& Folder)
{
    std::error_code Error;
    return std::filesystem::canonical(Folder + "/device", Error).string();
}

// The number between the two words, or -1.
INT64 NumberBetween(const std::string& Text, const std::string& Before, const std::string& Behind)
{
    if (Text.size() <= Before.size() + Behind.size() || Text.compare(0, Before.size(), Before) != 0 ||
        Text.compare(Text.size() - Behind.size(), Behind.size(), Behind) != 0) {
        return -1;
    }
    INT64 Number = -1;
    const char* Last = Text.data() + Text.size() - Behind.size();
    const auto [End, Error] = std::from_chars(Text.data() + Before.size(), Last, Number);
    return Error == std::errc() && End == Last && Number >= 0 && Number < 1000 ? Number : -1;
}

VOID AddChip(const std::string& Folder, UINTN Chip, std::vector<SENSOR>* Sensors)
{
    bool Good;
    std::vector<std::string> Names = NamesIn(Folder, &Good);
    std::string Driver;
    if (ReadChipText(Folder + "/name", &Driver) != 0) {
        return;
    }
    const std::string Device = DeviceOf(Folder);
    for (const auto& Kind : gKinds) {
        std::vector<UINT32> Numbers;
        for (const std::string& Name : Names) {
            const INT64 Number = NumberBetween(Name, Kind.Name, "_input");
            if (Number >= 0) {
                Numbers.push_back(static_cast<UINT32>(Number));
            }
        }
        std::sort(Numbers.begin(), Numbers.end());
        for (const UINT32 Number : Numbers) {
            const std::string Own = Kind.Name + std::to_string(Number);
            SENSOR Sensor = {Kind.Kind, Chip, Driver, Number, Folder + '/' + Own, Own, false, Device};
            std::string Label;
            if (ReadChipText(Sensor.Stem + "_label", &Label) == 0) {
                Sensor.Label = Label.substr(0, gLabelLimit);
                Sensor.Labelled = true;
            }
            Sensors->push_back(std::move(Sensor));
        }
    }
}

bool IsChosen(const SENSOR* Sensor, const SENSOR* const* First, UINTN Count)
{
    return std::find(First, First + Count, Sensor) != First + Count;
}

bool IsLikely(const SENSOR& Sensor)
{
    INT64 Value;
    const int Error = Sensor.Read(&Value);
    // One that can't be read just now may come back.
    return Error == 0 ? Value >= gLowestLikely && Value <= gHighestLikely : Error != ERANGE;
}

bool IsNamed(const SENSOR& Sensor, const std::string& Name)
{
    const std::string Own = Sensor.Stem.substr(Sensor.Stem.rfind('/') + 1);
    for (const std::string& Form : {Sensor.Label, Sensor.Driver + '/' + Sensor.Label, Sensor.Driver + '/' + Own}) {
        if (strcasecmp(Form.c_str(), Name.c_str()) == 0) {
            return true;
        }
    }
    return false;
}

} // namespace

int ReadChipText(const std::string& Path, std::string* Text, bool Wait)
{
    const int File = open(Path.c_str(), O_RDONLY | O_CLOEXEC | (Wait ? 0 : O_NONBLOCK));
    if (File < 0) {
        return errno;
    }
    char Buffer[4096];
    const ssize_t Count = read(File, Buffer, sizeof(Buffer));
    const int Error = Count < 0 ? errno : 0;
    (void)close(File);
    if (Error != 0) {
        return Error;
    }
    Text->assign(Buffer, static_cast<size_t>(Count));
    while (!Text->empty() && (Text->back() == '\n' || Text->back() == ' ')) {
        Text->pop_back();
    }
    return Text->empty() ? ENODATA : 0;
}

int ReadChipNumber(const std::string& Path, INT64* Number, bool Wait)
{
    std::string Text;
    if (const int Error = ReadChipText(Path, &Text, Wait)) {
        return Error;
    }
    INT64 Value = 0;
    const char* Last = Text.data() + Text.size();
    const auto [End, Bad] = std::from_chars(Text.data(), Last, Value);
    if (Bad != std::errc() || End != Last) {
        return EINVAL;
    }
    *Number = Value;
    return 0;
}

int WriteChipText(const std::string& Path, const std::string& Text)
{
    const int File = open(Path.c_str(), O_WRONLY | O_TRUNC | O_CLOEXEC | O_NONBLOCK);
    if (File < 0) {
        return errno;
    }
    const std::string Line = Text + '\n';
    const ssize_t Count = write(File, Line.data(), Line.size());
    int Error = Count < 0 ? errno : Count != static_cast<ssize_t>(Line.size()) ? EIO : 0;
    if (close(File) != 0 && Error == 0) {
        Error = errno;
    }
    return Error;
}

bool SENSOR::Follow()
{
    const std::string Here = Folder();
    std::string Name;
    if (ReadChipText(Here + "/name", &Name) == 0 && Name == Driver && DeviceOf(Here) == Device) {
        return true;
    }
    std::vector<SENSOR> Found;
    std::string Candidate;
    if (!FindSensors(Here.substr(0, Here.rfind('/')), &Found, &Name)) {
        return false;
    }
    for (const SENSOR& Other : Found) {
        if (Other.Driver == Driver && Other.Device == Device) {
            if (!Candidate.empty() && Candidate != Other.Folder()) {
                return false;
            }
            Candidate = Other.Folder();
        }
    }
    Stem = Candidate.empty() ? Stem : Candidate + Stem.substr(Here.size());
    return !Candidate.empty();
}

int SENSOR::Read(INT64* Value, bool Wait) const
{
    INT64 Fault = 0;
    if (ReadChipNumber(Stem + "_fault", &Fault, Wait) == 0 && Fault != 0) {
        return ERANGE; // the chip says itself that its input can't be trusted
    }
    INT64 Reading = 0;
    if (const int Error = ReadChipNumber(Input(), &Reading, Wait)) {
        return Error;
    }
    *Value = Reading;
    return Reading < gKinds[Kind].Lowest || Reading > gKinds[Kind].Highest ? ERANGE : 0;
}

bool BeginsWith(const std::string& Text, const std::string& Start)
{
    return strncasecmp(Text.c_str(), Start.c_str(), Start.size()) == 0;
}

bool Mentions(const std::string& Text, const std::string& Part)
{
    return strcasestr(Text.c_str(), Part.c_str()) != nullptr;
}

bool FindSensors(const std::string& Root, std::vector<SENSOR>* Sensors, std::string* Error)
{
    bool Good;
    std::vector<INT64> Chips;
    for (const std::string& Name : NamesIn(Root, &Good)) {
        const INT64 Number = NumberBetween(Name, "hwmon", "");
        if (Number >= 0) {
            Chips.push_back(Number);
        }
    }
    if (!Good) {
        *Error = Root + ": " + std::strerror(errno) + ": expected a folder like /sys/class/hwmon";
        return false;
    }
    std::sort(Chips.begin(), Chips.end());
    for (UINTN Chip = 0; Chip < Chips.size(); Chip++) {
        const std::string Folder = Root + "/hwmon" + std::to_string(Chips[Chip]);
        // Older kernels keep a chip's files one folder further down.
        const bool Older = access((Folder + "/name").c_str(), F_OK) != 0;
        AddChip(Older ? Folder + "/device" : Folder, Chip, Sensors);
    }
    return true;
}

bool ChooseSensors(const std::vector<SENSOR>& Sensors, const std::vector<std::string>& Wanted, CHOSEN_SENSORS* Chosen,
                   std::string* Error)
{
    UINTN Filled = 0;
    for (const std::string& Name : Wanted) {
        const auto Found = std::find_if(Sensors.begin(), Sensors.end(), [&](const SENSOR& Sensor) {
            return Sensor.Kind == SENSOR_TEMPERATURE && IsNamed(Sensor, Name) &&
                   !IsChosen(&Sensor, Chosen->Temperatures, 3);
        });
        if (Found == Sensors.end()) {
            *Error = "no temperature is called " + Name + " (see --list-sensors)";
            return false;
        }
        Chosen->Temperatures[Filled++] = &*Found;
    }
    // A processor that has been named by the user doesn't come a second time, but the others keep their order.
    for (UINTN Place = 0; Place < 3 && Filled < 3; Place++) {
        const SENSOR* Best = nullptr;
        for (const auto& Role : gTemperatureRoles) {
            for (const SENSOR& Sensor : Sensors) {
                if (Best == nullptr && Role.Place == Place && Sensor.Kind == SENSOR_TEMPERATURE &&
                    BeginsWith(Sensor.Driver, Role.Driver) && BeginsWith(Sensor.Label, Role.Label) &&
                    !IsChosen(&Sensor, Chosen->Temperatures, 3) && IsLikely(Sensor)) {
                    Best = &Sensor;
                }
            }
        }
        // Without wishes a role keeps its place, so that the second temperature always is the board's.
        UINTN& At = Wanted.empty() ? Place : Filled;
        if (Best != nullptr) {
            Chosen->Temperatures[At] = Best;
            Filled += Wanted.empty() ? 0 : 1;
        }
    }

    std::vector<const SENSOR*> Fans;
    for (const SENSOR& Sensor : Sensors) {
        if (Sensor.Kind == SENSOR_FAN) {
            Fans.push_back(&Sensor);
        }
    }
    // Where there are more than places, headers without a turning fan stay away.
    for (auto Fan = Fans.end(); Fan != Fans.begin() && Fans.size() > std::size(Chosen->Fans);) {
        INT64 Speed = 0;
        --Fan;
        if ((*Fan)->Read(&Speed) != 0 || Speed == 0) {
            Fan = Fans.erase(Fan);
        }
    }
    std::copy_n(Fans.begin(), std::min(Fans.size(), std::size(Chosen->Fans)), Chosen->Fans);

    for (const auto& Role : gVoltageRoles) {
        for (const SENSOR& Sensor : Sensors) {
            if (Sensor.Kind == SENSOR_VOLTAGE && Chosen->Voltages[Role.Place] == nullptr &&
                BeginsWith(Sensor.Driver, Role.Driver) && Mentions(Sensor.Label, Role.Label) &&
                !IsChosen(&Sensor, Chosen->Voltages, 7)) {
                Chosen->Voltages[Role.Place] = &Sensor;
            }
        }
    }
    for (const bool Labelled : {true, false}) {
        for (const SENSOR& Sensor : Sensors) {
            const SENSOR** Free = std::find(std::begin(Chosen->Voltages), std::end(Chosen->Voltages), nullptr);
            if (Free != std::end(Chosen->Voltages) && Sensor.Kind == SENSOR_VOLTAGE && Sensor.Labelled == Labelled &&
                !IsChosen(&Sensor, Chosen->Voltages, 7)) {
                *Free = &Sensor;
            }
        }
    }
    return true;
}
