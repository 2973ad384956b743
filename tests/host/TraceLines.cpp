#include "tests/host/TraceLines.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace {

// Takes that text off the front of a line. Throws when something else stands there.
VOID Take(std::string_view* Rest, std::string_view Text)
{
    if (!Rest->starts_with(Text)) {
        throw std::runtime_error("a trace line with \"" + std::string(*Rest) + "\" in place of \"" + std::string(Text) + "\"");
    }
    Rest->remove_prefix(Text.size());
}

UINT64 TakeNumber(std::string_view* Rest)
{
    UINT64 Number = 0;
    while (!Rest->empty() && Rest->front() >= '0' && Rest->front() <= '9') {
        Number = Number * 10 + static_cast<UINT64>(Rest->front() - '0');
        Rest->remove_prefix(1);
    }
    return Number;
}

// Takes a string with its quotes off the front, and gives what it says.
std::string TakeString(std::string_view* Rest)
{
    std::string Text;
    Take(Rest, "\"");
    while (!Rest->starts_with('"')) {
        const bool Escaped = Rest->starts_with('\\');
        Rest->remove_prefix(Escaped ? 1 : 0);
        if (Rest->empty()) {
            throw std::runtime_error("a trace line ends within a string");
        }
        const char Char = Rest->front();
        Rest->remove_prefix(1);
        if (!Escaped || Char == '"' || Char == '\\') {
            Text += Char;
        } else if (Char == 'u') { // the trace writes control characters so, and no others
            Text += static_cast<char>(std::strtoul(std::string(Rest->substr(0, 4)).c_str(), nullptr, 16));
            Rest->remove_prefix(4);
        } else {
            Text += Char == 'n' ? '\n' : Char == 'r' ? '\r' : '\t';
        }
    }
    Take(Rest, "\"");
    return Text;
}

// Takes any value off the front.
std::string TakeValue(std::string_view* Rest)
{
    if (Rest->starts_with('"')) {
        return TakeString(Rest);
    }
    const std::string_view Whole = *Rest;
    if (Rest->starts_with('[')) {
        while (!Rest->starts_with(']')) {
            Rest->remove_prefix(1);
            if (Rest->starts_with('"')) {
                TakeString(Rest);
            } else if (Rest->empty()) {
                throw std::runtime_error("a trace line ends within a list");
            }
        }
        Take(Rest, "]");
    } else {
        Rest->remove_prefix(std::min(Rest->find_first_of(",}"), Rest->size()));
    }
    return std::string(Whole.substr(0, Whole.size() - Rest->size()));
}

CALL_LINE ParseLine(std::string_view Line)
{
    CALL_LINE Call;
    Take(&Line, "{\"us\":");
    Call.Microseconds = TakeNumber(&Line);
    Take(&Line, ",\"start\":");
    Call.Start = TakeNumber(&Line);
    Take(&Line, ",\"turn\":");
    Call.Turn = TakeNumber(&Line);
    Take(&Line, ",\"call\":");
    Call.Call = TakeString(&Line);
    Call.Fields = Line;
    return Call;
}

} // namespace

std::string CALL_LINE::Text(std::string_view Field) const
{
    std::string_view Rest = Fields;
    while (Rest.starts_with(',')) {
        Take(&Rest, ",");
        const std::string Name = TakeString(&Rest);
        Take(&Rest, ":");
        std::string Value = TakeValue(&Rest);
        if (Name == Field) {
            return Value;
        }
    }
    Take(&Rest, "}");
    return "(no field " + std::string(Field) + ")";
}

UINT64 CALL_LINE::Number(std::string_view Field) const
{
    return std::strtoull(Text(Field).c_str(), nullptr, 10);
}

std::vector<CALL_LINE> ParseTrace(const std::vector<std::string>& Lines)
{
    std::vector<CALL_LINE> Calls;
    Calls.reserve(Lines.size());
    for (const std::string& Line : Lines) {
        Calls.push_back(ParseLine(Line));
    }
    return Calls;
}

std::vector<CALL_LINE> CallsNamed(const std::vector<CALL_LINE>& Calls, const std::string& Name)
{
    std::vector<CALL_LINE> Found;
    for (const CALL_LINE& Call : Calls) {
        if (Call.Call == Name) {
            Found.push_back(Call);
        }
    }
    return Found;
}
