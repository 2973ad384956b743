#include "platform/host/Script.h"

#include <charconv>
#include <cstdio>
#include <cstring>

#include "platform/host/HostText.h"
#include "uefi/CpuArch.h"
#include "uefi/Devices.h"
#include "uefi/Hii.h"

namespace {

struct PROTOCOL_NAME {
    const char* Name;
    const EFI_GUID* Guid;
};

// The protocols that a script can take away. The two of the pointer are told apart by their numbers.
constexpr PROTOCOL_NAME gProtocolNames[] = {
    {"EFI_GRAPHICS_OUTPUT_PROTOCOL", &gEfiGraphicsOutputProtocolGuid},
    {"EFI_CPU_ARCH_PROTOCOL", &gEfiCpuArchProtocolGuid},
    {"EFI_HII_FONT_PROTOCOL", &gEfiHiiFontProtocolGuid},
    {"EFI_HII_STRING_PROTOCOL", &gEfiHiiStringProtocolGuid},
    {"EFI_HII_DATABASE_PROTOCOL", &gEfiHiiDatabaseProtocolGuid},
    {"EFI_HII_CONFIG_ROUTING_PROTOCOL", &gEfiHiiConfigRoutingProtocolGuid},
    {"EFI_HII_IMAGE_PROTOCOL", &gEfiHiiImageProtocolGuid},
    {"EFI_BLOCK_IO_PROTOCOL", &gEfiBlockIoProtocolGuid},
    {"EFI_DEVICE_PATH_PROTOCOL", &gEfiDevicePathProtocolGuid},
    {"IMAGE_DECODER_PROTOCOL", &gImageDecoderProtocolGuid},
    {"CURSOR_SERVICE_PROTOCOL", &gCursorServiceProtocolGuid},
    {"CURSOR_SERVICE_PROTOCOL_2", &gCursorServiceProtocol2Guid},
    {"REQUIRED_SERVICE_PROTOCOL", &gRequiredServiceProtocolGuid},
    {"FLOAT_MATH_PROTOCOL", &gFloatMathProtocolGuid},
    {"IMAGE_LOOKUP_PROTOCOL", &gImageLookupProtocolGuid},
    {"HW_SERVICE_PROTOCOL", &gHwServiceProtocolGuid},
    {"DRAW_PRIMITIVES_PROTOCOL", &gDrawPrimitivesProtocolGuid},
    {"IMAGE_SECTION_PROTOCOL", &gImageSectionProtocolGuid},
};

bool IsBlank(char Char) { return Char == ' ' || Char == '\t'; }

// The arguments of one line, taken from front to back.
struct ARGUMENTS {
    std::string_view Rest;

    // The next word; empty at the end of the line.
    std::string_view Next()
    {
        Skip();
        size_t End = 0;
        while (End < Rest.size() && !IsBlank(Rest[End])) {
            End++;
        }
        const std::string_view Word = Rest.substr(0, End);
        Rest.remove_prefix(End);
        return Word;
    }
    // All that is left, without blanks at either end.
    std::string_view All()
    {
        Skip();
        std::string_view Text = Rest;
        while (!Text.empty() && IsBlank(Text.back())) {
            Text.remove_suffix(1);
        }
        Rest = {};
        return Text;
    }
    bool AtEnd()
    {
        Skip();
        return Rest.empty();
    }

private:
    void Skip()
    {
        while (!Rest.empty() && IsBlank(Rest.front())) {
            Rest.remove_prefix(1);
        }
    }
};

template <typename NUMBER> bool ParseNumber(std::string_view Word, NUMBER* Value, int Base = 10)
{
    if (Word.size() > 2 && Word[0] == '0' && (Word[1] == 'x' || Word[1] == 'X')) {
        Word.remove_prefix(2);
        Base = 16;
    }
    const auto [End, Error] = std::from_chars(Word.data(), Word.data() + Word.size(), *Value, Base);
    return !Word.empty() && Error == std::errc() && End == Word.data() + Word.size();
}

// An optional count of at least 1 at the end of a line.
bool ParseCount(ARGUMENTS& Arguments, UINT64* Count)
{
    if (Arguments.AtEnd()) {
        return true;
    }
    return ParseNumber(Arguments.Next(), Count) && *Count > 0;
}

// Each parser fills the command and gives null, or says what it expected.
using PARSER = const char* (*)(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command);

const char* ParsePointer(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    const bool Good = ParseNumber(Arguments.Next(), &Command.X) && ParseNumber(Arguments.Next(), &Command.Y);
    return Good ? nullptr : "pointer X Y, in pixels";
}

const char* ParseButton(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    const std::string_view Word = Arguments.Next();
    Command.Down = Word == "down";
    return Word == "down" || Word == "up" ? nullptr : "'down' or 'up'";
}

const char* ParseKey(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    static constexpr const char* Expected = "key C, key esc, key enter, or key SCAN CHAR in hex";
    const std::string_view First = Arguments.Next();
    if (!Arguments.AtEnd()) {
        const bool Good = ParseNumber(First, &Command.Key.ScanCode, 16);
        UINT16 Char = 0;
        if (!Good || !ParseNumber(Arguments.Next(), &Char, 16)) {
            return Expected;
        }
        Command.Key.UnicodeChar = Char;
        return nullptr;
    }
    if (First == "esc") {
        Command.Key = {SCAN_ESC, 0};
    } else if (First == "enter") {
        Command.Key = {SCAN_NULL, CHAR_CARRIAGE_RETURN};
    } else {
        const std::u16string Char = ToUtf16(First);
        if (Char.size() != 1) {
            return Expected;
        }
        Command.Key = {SCAN_NULL, Char[0]};
    }
    return nullptr;
}

// Ninety-nine at once are more than any row of keys, and fewer than the keyboard loses.
constexpr UINT64 gMostStrokes = 99;

const char* ParseHand(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    std::string_view Word = Arguments.Next();
    const bool Shift = Word == "shift";
    if (Shift) {
        Word = Arguments.Next();
    }
    for (const HAND_NAME& Hand : gHandNames) {
        if (Word != Hand.Name || (Shift && !Hand.TakesShift)) {
            continue;
        }
        Command.Key = Hand.Key;
        Command.ShiftState = Shift ? gShiftPressed : Hand.ShiftState;
        return ParseCount(Arguments, &Command.Count) && Command.Count <= gMostStrokes ? nullptr
                                                                                      : "a count from 1 to 99";
    }
    return "left, right, up, down, each also behind 'shift', tab, back, space, grab or picture";
}

const char* ParseRepeat(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    return ParseCount(Arguments, &Command.Count) ? nullptr : "a count of at least 1";
}

// More than thirty years; the clock counts nanoseconds in 64 bits.
constexpr UINT64 gLongestAdvance = 1000000000000000;

const char* ParseAdvance(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    const bool Good = ParseNumber(Arguments.Next(), &Command.Count) && Command.Count <= gLongestAdvance;
    return Good ? nullptr : "advance US, in microseconds, at most 10^15";
}

const char* ParseReading(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    if (!ParseNumber(Arguments.Next(), &Command.Item) || Command.Item >= gItemCount) {
        return "the id of an item with a reading, 0 to 17";
    }
    const std::string_view Word = Arguments.Next();
    if (Word == "live") {
        Command.Live = true;
    } else if (Word == "absent") {
        Command.Reading.Kind = READING_OVERRIDE::ABSENT;
    } else if (Word == "error") {
        Command.Reading.Kind = READING_OVERRIDE::ERROR;
    } else if (!ParseNumber(Word, &Command.Reading.Value)) {
        return "a value, 'absent', 'error' or 'live'";
    }
    return nullptr;
}

const char* ParseString(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    if (!ParseNumber(Arguments.Next(), &Command.Item)) {
        return "the id of an item, 0 to 255";
    }
    if (Arguments.AtEnd()) {
        return "'null' or a text";
    }
    const std::string_view Text = Arguments.All();
    if (Text != "null") {
        Command.String = ToUtf16(Text);
    }
    return nullptr;
}

const char* ParseSetting(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    if (!ParseNumber(Arguments.Next(), &Command.Item) || Command.Item < gFirstFanItem ||
        Command.Item >= gFirstFanItem + gFanItemCount) {
        return "the item of a fan, 4 to 10";
    }
    std::vector<UINT8> Bytes;
    if (Arguments.AtEnd() || !ParseHexBytes(Arguments.All(), &Bytes) || Bytes.size() > sizeof(Command.Setting)) {
        return "1 to 64 bytes in hex";
    }
    std::memcpy(&Command.Setting, Bytes.data(), Bytes.size());
    return nullptr;
}

const char* ParseFail(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    if (!FindCall(Arguments.Next(), &Command.Call) || !CallHasStatus(Command.Call)) {
        return "the name of an operation that gives a status, as in the trace";
    }
    // A call that said success and did nothing would leave its caller with outputs that nobody filled.
    if (!FindStatus(Arguments.Next(), &Command.Status) || !EfiError(Command.Status)) {
        return "the name of an error status, such as NOT_FOUND";
    }
    return ParseRepeat(Arguments, Command);
}

const char* ParseSlow(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    if (!FindCall(Arguments.Next(), &Command.Call)) {
        return "the name of an operation, as in the trace";
    }
    const bool Good = ParseNumber(Arguments.Next(), &Command.Count) && Command.Count <= gLongestAdvance;
    return Good ? nullptr : "slow CALL US, in microseconds, at most 10^15";
}

const char* ParseWithout(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    const std::string_view Name = Arguments.Next();
    for (const PROTOCOL_NAME& Protocol : gProtocolNames) {
        if (Name == Protocol.Name) {
            Command.Guid = *Protocol.Guid;
            return nullptr;
        }
    }
    return "the name of a protocol, such as HW_SERVICE_PROTOCOL";
}

const char* ParseArtwork(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    const std::string_view First = Arguments.Next();
    if (First == "type") {
        Command.ArtworkKind = ARTWORK_TYPE;
        const bool Good = ParseNumber(Arguments.Next(), &Command.Instance) &&
                          (Command.Instance == EFI_SECTION_PE32 || Command.Instance == EFI_SECTION_RAW);
        return Good ? nullptr : "a section type, 16 or 25";
    }
    if (!ParseNumber(First, &Command.Instance)) {
        return "a section's number or 'type'";
    }
    const std::string Source(Arguments.All());
    if (Source == "none") {
        return nullptr;
    }
    Command.ArtworkKind = ARTWORK_FROM_FILE;
    std::string Bytes;
    if (Source.empty() || !ReadWholeFile(Source, &Bytes)) {
        return "'none' or a file that can be read";
    }
    Command.Bytes.assign(Bytes.begin(), Bytes.end());
    return nullptr;
}

const char* ParseScreenshot(ARGUMENTS& Arguments, SCRIPT_COMMAND& Command)
{
    Command.Path = Arguments.All();
    return Command.Path.empty() ? "the name of a file" : nullptr;
}

const char* ParseNothing(ARGUMENTS&, SCRIPT_COMMAND&) { return nullptr; }

struct VERB_FACTS {
    const char* Name;
    SCRIPT_VERB Verb;
    PARSER Parse;
    bool BeforeStart; // means something before the first start alone
};

constexpr VERB_FACTS gVerbs[] = {
    // word, command, what reads its arguments, for before the first start alone
    {"pointer", SCRIPT_POINTER, ParsePointer, false}, {"left", SCRIPT_LEFT, ParseButton, false},
    {"right", SCRIPT_RIGHT, ParseButton, false},      {"key", SCRIPT_KEY, ParseKey, false},
    {"turn", SCRIPT_TURN, ParseRepeat, false},        {"advance", SCRIPT_ADVANCE, ParseAdvance, false},
    {"tick", SCRIPT_TICK, ParseRepeat, false},        {"reading", SCRIPT_READING, ParseReading, false},
    {"string", SCRIPT_STRING, ParseString, false},    {"setting", SCRIPT_SETTING, ParseSetting, false},
    {"default", SCRIPT_DEFAULT, ParseSetting, false}, {"fail", SCRIPT_FAIL, ParseFail, false},
    {"slow", SCRIPT_SLOW, ParseSlow, false},          {"without", SCRIPT_WITHOUT, ParseWithout, true},
    {"artwork", SCRIPT_ARTWORK, ParseArtwork, true},  {"screenshot", SCRIPT_SCREENSHOT, ParseScreenshot, false},
    {"start", SCRIPT_START, ParseNothing, false},     {"reset", SCRIPT_RESET, ParseNothing, false},
    {"hand", SCRIPT_KEY, ParseHand, false},
};

bool LetsTurnsGoBy(SCRIPT_VERB Verb) { return Verb == SCRIPT_TURN || Verb == SCRIPT_TICK || Verb == SCRIPT_START; }

// A comment begins at a '#'. Where the line may hold a text or the name of a file, it has to stand behind a blank.
std::string_view WithoutComment(std::string_view Line)
{
    const std::string_view Word = ARGUMENTS{Line}.Next();
    const bool HoldsText = Word == "string" || Word == "artwork" || Word == "screenshot";
    for (size_t Index = 0; Index < Line.size(); Index++) {
        if (Line[Index] == '#' && (!HoldsText || Index == 0 || IsBlank(Line[Index - 1]))) {
            return Line.substr(0, Index);
        }
    }
    return Line;
}

const char* ParseLine(std::string_view Name, ARGUMENTS& Arguments, bool Started, SCRIPT_COMMAND& Command)
{
    for (const VERB_FACTS& Facts : gVerbs) {
        if (Name != Facts.Name) {
            continue;
        }
        if (Facts.BeforeStart && Started) {
            return "this command before the first 'turn'";
        }
        Command.Verb = Facts.Verb;
        const char* Expected = Facts.Parse(Arguments, Command);
        return Expected != nullptr || Arguments.AtEnd() ? Expected : "the end of the line";
    }
    return "a command (pointer, left, right, key, hand, turn, advance, tick, reading, string, setting, default, fail, "
           "slow, without, artwork, screenshot, start, reset)";
}

// A reset leaves the machine off: only a start lets anything happen again.
bool ResetsAreFollowedByStarts(const SCRIPT& Script, UINT32* Line)
{
    bool Off = false;
    for (const SCRIPT_COMMAND& Command : Script.Commands) {
        if (Command.Verb == SCRIPT_START) {
            Off = false;
        } else if (Off && (LetsTurnsGoBy(Command.Verb) || Command.Verb == SCRIPT_RESET)) {
            *Line = Command.Line;
            return false;
        } else if (Command.Verb == SCRIPT_RESET) {
            Off = true;
            *Line = Command.Line;
        }
    }
    return !Off;
}

} // namespace

bool ParseScript(const std::string& Name, std::string_view Text, SCRIPT* Script, std::string* Error)
{
    Script->Name = Name;
    Script->Commands.clear();
    bool Started = false;
    for (UINT32 Line = 1; !Text.empty(); Line++) {
        const size_t End = Text.find('\n');
        std::string_view Content = Text.substr(0, End);
        Text.remove_prefix(End == std::string_view::npos ? Text.size() : End + 1);
        if (!Content.empty() && Content.back() == '\r') {
            Content.remove_suffix(1);
        }
        ARGUMENTS Arguments = {WithoutComment(Content)};
        if (Arguments.AtEnd()) {
            continue;
        }
        SCRIPT_COMMAND Command = {};
        Command.Line = Line;
        const std::string_view Word = Arguments.Next();
        const char* Expected = ParseLine(Word, Arguments, Started, Command);
        if (Expected != nullptr) {
            *Error = DescribeScriptError(*Script, Line, Expected);
            return false;
        }
        Started = Started || LetsTurnsGoBy(Command.Verb);
        Script->Commands.push_back(std::move(Command));
    }
    UINT32 Line = 0;
    if (!ResetsAreFollowedByStarts(*Script, &Line)) {
        *Error = DescribeScriptError(*Script, Line, "a 'start' behind the 'reset' and before turns");
        return false;
    }
    return true;
}

std::string DescribeScriptError(const SCRIPT& Script, UINT32 Line, std::string_view Expected)
{
    return Script.Name + ":" + std::to_string(Line) + ": expected " + std::string(Expected);
}

bool ReadWholeFile(const std::string& Path, std::string* Bytes)
{
    FILE* File = std::fopen(Path.c_str(), "rb");
    if (File == nullptr) {
        return false;
    }
    Bytes->clear();
    char Part[65536];
    size_t Read;
    while ((Read = std::fread(Part, 1, sizeof(Part), File)) > 0) {
        Bytes->append(Part, Read);
    }
    const bool Good = std::ferror(File) == 0;
    std::fclose(File);
    return Good;
}
