#include "platform/host/CommandLine.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <string_view>

#include "platform/board/SimulatedBoard.h"
#include "platform/board/Version.h"

namespace {

bool ParseNumber(const std::string& Word, UINT64 Lowest, UINT64 Highest, UINT64* Value)
{
    const char* Last = Word.data() + Word.size();
    const auto [End, Error] = std::from_chars(Word.data(), Last, *Value);
    return Error == std::errc() && End == Last && *Value >= Lowest && *Value <= Highest;
}

bool ParsePanel(const std::string& Word, PANEL* Panel)
{
    static constexpr const char* Formats[] = {"", "rgb", "bytes3", "blt"}; // in the order of PANEL_FORMAT
    const size_t Colon = Word.find(':');
    const std::string Size = Word.substr(0, Colon);
    const std::string Format = Colon == std::string::npos ? "" : Word.substr(Colon + 1);
    const auto Found = std::find(std::begin(Formats) + (Colon == std::string::npos ? 0 : 1), std::end(Formats), Format);
    const size_t Cross = Size.find('x');
    UINT64 Width = 0;
    UINT64 Height = 0;
    if (Cross == std::string::npos || Found == std::end(Formats) ||
        !ParseNumber(Size.substr(0, Cross), 640, 8192, &Width) ||
        !ParseNumber(Size.substr(Cross + 1), 480, 8192, &Height)) {
        return false;
    }
    *Panel = {static_cast<UINT32>(Width), static_cast<UINT32>(Height),
              static_cast<PANEL_FORMAT>(Found - std::begin(Formats))};
    return true;
}

std::string ListBoards()
{
    std::string List;
    for (UINTN Index = 0; Index < gBoardNameCount; Index++) {
        List += gBoardNames[Index] + std::string(", ");
    }
    return List + gLinuxBoardName;
}

constexpr std::string_view gLinuxHelp = "board linux:"; // in front of what an option for that board alone does

// Each option takes its value, or an empty one where it has none, and gives what it expected, or an empty text.
using OPTION_PARSER = std::string (*)(const std::string& Value, COMMAND& Command);

struct OPTION_FACTS {
    const char* Name;
    const char* ValueName; // null: the option has no value
    const char* Help;
    OPTION_PARSER Parse;
};

std::string ParseCount(const std::string& Value, UINT64* Count)
{
    return ParseNumber(Value, 1, ~UINT64{0}, Count) ? "" : "a number of at least 1";
}

const OPTION_FACTS gOptions[] = {
    // option, name of its value, help, what reads it
    {"--board", "NAME", "the board: a simulated one, or linux for this machine's own sensors",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         Command.Session.Board = Value;
         if (Value == gLinuxBoardName) {
             return "";
         }
         for (UINTN Index = 0; Index < gBoardNameCount; Index++) {
             if (Value == gBoardNames[Index]) {
                 return "";
             }
         }
         return "one of " + ListBoards();
     }},
    {"--headless", nullptr, "no window",
     [](const std::string&, COMMAND& Command) -> std::string {
         Command.Session.Window = false;
         return "";
     }},
    {"--script", "FILE", "play a script, without a window and on a virtual clock",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         Command.ScriptPath = Value;
         return Value.empty() ? "a file" : "";
     }},
    {"--trace", "FILE", "write every call across the firmware's tables as JSON lines",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         Command.TracePath = Value;
         return Value.empty() ? "a file" : "";
     }},
    {"--screenshot", "FILE", "a PNG of the display when the console ends",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         Command.ScreenshotPath = Value;
         return Value.empty() ? "a file" : "";
     }},
    {"--seed", "N", "the seed of the simulated board (1)",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         return ParseNumber(Value, 0, ~UINT64{0}, &Command.Session.Seed) ? "" : "a number";
     }},
    {"--generation", "N", "what GetFirmwareGeneration answers (0)",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         UINT64 Number = 0;
         const bool Good = ParseNumber(Value, 0, 255, &Number);
         Command.Session.Generation = static_cast<UINT8>(Number);
         return Good ? "" : "a number from 0 to 255";
     }},
    {"--panel", "WxH[:FORMAT]", "the display, where it isn't 1024x768; FORMAT is rgb, bytes3 or blt",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         return ParsePanel(Value, &Command.Session.Panel) ? ""
                                                          : "a size from 640x480 to 8192x8192 and perhaps :rgb (red "
                                                            "first), :bytes3 (three bytes a pixel) or :blt (Blt alone)";
     }},
    {"--pool-limit", "N", "the Nth pool allocation of a start and every later one fails",
     [](const std::string& Value, COMMAND& Command) { return ParseCount(Value, &Command.Session.PoolLimit); }},
    {"--pool-fail", "N", "the Nth pool allocation of a start fails",
     [](const std::string& Value, COMMAND& Command) { return ParseCount(Value, &Command.Session.PoolFail); }},
    {"--trace-pool", nullptr, "pool calls in the trace too",
     [](const std::string&, COMMAND& Command) -> std::string {
         Command.Session.TracePool = true;
         return "";
     }},
    {"--record", "FILE", "write the window's input as a script that plays back",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         Command.Session.RecordPath = Value;
         return Value.empty() ? "a file" : "";
     }},
    {"--hwmon", "DIR", "board linux: where the chips' files are (/sys/class/hwmon)",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         Command.Linux.Root = Value;
         return Value.empty() ? "a folder" : "";
     }},
    {"--temperature", "LABEL", "board linux: show this temperature; up to three times",
     [](const std::string& Value, COMMAND& Command) -> std::string {
         Command.Linux.Temperatures.push_back(Value);
         return Value.empty()                                               ? "a label of --list-sensors"
                : Command.Linux.Temperatures.size() > gTemperatureItemCount ? "three temperatures at most"
                                                                            : "";
     }},
    {"--set-fans", nullptr, "board linux: let the console set this machine's fans",
     [](const std::string&, COMMAND& Command) -> std::string {
         Command.Linux.SetFans = true;
         return "";
     }},
    {"--keep", nullptr, "board linux: what was set stays, however the program ends",
     [](const std::string&, COMMAND& Command) -> std::string {
         Command.Linux.Keep = true;
         return "";
     }},
    {"--list-sensors", nullptr, "list this machine's sensors and what would become of them; no window",
     [](const std::string&, COMMAND& Command) -> std::string {
         Command.Kind = COMMAND_LIST_SENSORS;
         return "";
     }},
    {"--help", nullptr, "this text",
     [](const std::string&, COMMAND& Command) -> std::string {
         Command.Kind = COMMAND_HELP;
         return "";
     }},
    {"--version", nullptr, "the version",
     [](const std::string&, COMMAND& Command) -> std::string {
         Command.Kind = COMMAND_VERSION;
         return "";
     }},
};

const OPTION_FACTS* FindOption(const std::string& Name)
{
    for (const OPTION_FACTS& Facts : gOptions) {
        if (Name == Facts.Name) {
            return &Facts;
        }
    }
    return nullptr;
}

} // namespace

bool ParseCommandLine(const std::vector<std::string>& Arguments, COMMAND* Command, std::string* Error)
{
    *Command = {};
    Command->Session.Window = true;
    Command->Session.KeepPictures = false;
    Command->Session.EchoConsoles = true;
    std::string LinuxOption; // one that means nothing elsewhere
    for (size_t Index = 0; Index < Arguments.size(); Index++) {
        if (Arguments[Index] == "--") {
            Command->Session.ShellArguments.emplace(Arguments.begin() + static_cast<std::ptrdiff_t>(Index) + 1,
                                                    Arguments.end());
            break;
        }
        // A value stands behind its option, or in the same word behind a '='.
        const size_t Equals = Arguments[Index].find('=');
        const std::string Name = Arguments[Index].substr(0, Equals);
        const OPTION_FACTS* Option = FindOption(Name);
        if (Option == nullptr) {
            *Error = "unknown option " + Arguments[Index] + " (see --help)";
            return false;
        }
        std::string Value;
        if (Option->ValueName == nullptr && Equals != std::string::npos) {
            *Error = Name + " takes no value";
            return false;
        }
        if (Option->ValueName != nullptr) {
            if (Equals != std::string::npos) {
                Value = Arguments[Index].substr(Equals + 1);
            } else if (Index + 1 < Arguments.size()) {
                Value = Arguments[++Index];
            } else {
                *Error = Name + ": expected " + Option->ValueName + " behind it";
                return false;
            }
        }
        const std::string Expected = Option->Parse(Value, *Command);
        if (std::string_view(Option->Help).starts_with(gLinuxHelp)) {
            LinuxOption = Name;
        }
        if (!Expected.empty()) {
            *Error = Name + " " + Value + ": expected " + Expected;
            return false;
        }
        if (Command->Kind == COMMAND_HELP || Command->Kind == COMMAND_VERSION) {
            return true; // nothing else is done, so nothing else matters
        }
    }
    if (!LinuxOption.empty() && Command->Kind == COMMAND_RUN && Command->Session.Board != gLinuxBoardName) {
        *Error = LinuxOption + ": expected --board " + gLinuxBoardName + " with it";
        return false;
    }
    if (Command->Linux.Keep && !Command->Linux.SetFans) {
        *Error = "--keep: expected --set-fans with it";
        return false;
    }
    if (!Command->ScriptPath.empty()) {
        Command->Session.Window = false;
    }
    if (!Command->Session.Window && !Command->Session.RecordPath.empty()) {
        *Error = "--record: expected a window, so neither --headless nor --script";
        return false;
    }
    return true;
}

std::string DescribeOptions()
{
    std::string Text =
        "Usage: ventara [OPTION]... [-- ARGUMENT...]\n"
        "Runs the sensor and fan console on a simulated board, or on this machine's own sensors. What stands\n"
        "behind -- is passed to the console as a UEFI shell would pass it.\n\n";
    for (const OPTION_FACTS& Facts : gOptions) {
        std::string Line = std::string("  ") + Facts.Name + (Facts.ValueName == nullptr ? "" : " ") +
                           (Facts.ValueName == nullptr ? "" : Facts.ValueName);
        Line.resize(22, ' ');
        Text += Line + Facts.Help + "\n";
    }
    Text += "\nBoards: " + ListBoards() +
            "\n"
            "Exit status: 0 when the console succeeded, 1 for any other status of its, 2 for a bad option or script.\n";
    return Text;
}

std::string DescribeVersion() { return std::string("ventara ") + gVentaraVersion + "\n"; }
