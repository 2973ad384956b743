#include "tests/host/TraceLines.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <stdexcept>

namespace {

// Where the string that opens a line of JSON closes: at the first quote that isn't escaped.
size_t EndOfString(std::string_view Text)
{
    size_t At = 1;
    while (At < Text.size() && Text[At] != '"') {
        At += Text[At] == '\\' ? 2 : 1;
    }
    return At;
}

std::string WithoutEscapes(std::string_view Text)
{
    std::string Plain;
    for (size_t At = 0; At < Text.size(); At++) {
        if (Text[At] != '\\') {
            Plain += Text[At];
        } else if (Text[++At] == 'u') { // the trace writes control characters so, and no others
            Plain += static_cast<char>(std::strtoul(std::string(Text.substr(At + 1, 4)).c_str(), nullptr, 16));
            At += 4;
        } else {
            Plain += Text[At] == 'n' ? '\n' : Text[At] == 'r' ? '\r' : Text[At] == 't' ? '\t' : Text[At];
        }
    }
    return Plain;
}

// The number behind Head, with which Rest begins; Rest loses both.
UINT64 TakeNumber(std::string_view* Rest, std::string_view Head)
{
    UINT64 Number = 0;
    const char* End = Rest->data() + Rest->size();
    if (!Rest->starts_with(Head)) {
        throw std::runtime_error("no trace line");
    }
    const auto Read = std::from_chars(Rest->data() + Head.size(), End, Number);
    if (Read.ec != std::errc()) {
        throw std::runtime_error("no number in a trace line");
    }
    *Rest = {Read.ptr, static_cast<size_t>(End - Read.ptr)};
    return Number;
}

CALL_LINE ParseLine(const std::string& Line)
{
    CALL_LINE Call;
    std::string_view Rest = Line;
    Call.Microseconds = TakeNumber(&Rest, "{\"us\":");
    Call.Start = TakeNumber(&Rest, ",\"start\":");
    Call.Turn = TakeNumber(&Rest, ",\"turn\":");
    constexpr std::string_view Head = ",\"call\":";
    if (!Rest.starts_with(Head) || !Rest.ends_with('}')) {
        throw std::runtime_error("no trace line: " + Line);
    }
    Rest.remove_prefix(Head.size());
    const size_t End = EndOfString(Rest);
    Call.Call = Rest.substr(1, End - 1);
    Call.Fields = Rest.substr(End + 1);
    return Call;
}

} // namespace

std::string CALL_LINE::Text(std::string_view Field) const
{
    // Within a string every quote is escaped, so this stands before a field's value and nowhere else.
    const std::string Head = ",\"" + std::string(Field) + "\":";
    const size_t At = Fields.find(Head);
    if (At == std::string::npos) {
        return "(no field " + std::string(Field) + ")";
    }
    const std::string_view Rest = std::string_view(Fields).substr(At + Head.size());
    if (Rest.starts_with('"')) {
        return WithoutEscapes(Rest.substr(1, EndOfString(Rest) - 1));
    }
    size_t End = 0; // of a number, or of a list of strings
    for (const bool IsList = Rest.starts_with('['); End < Rest.size(); End++) {
        if (IsList && Rest[End] == '"') {
            End += EndOfString(Rest.substr(End));
        } else if (IsList ? Rest[End] == ']' : Rest[End] == ',' || Rest[End] == '}') {
            break;
        }
    }
    return std::string(Rest.substr(0, End + (Rest.starts_with('[') ? 1 : 0)));
}

UINT64 CALL_LINE::Number(std::string_view Field) const { return std::strtoull(Text(Field).c_str(), nullptr, 10); }

std::vector<CALL_LINE> ParseTrace(const std::vector<std::string>& Lines)
{
    std::vector<CALL_LINE> Calls;
    Calls.reserve(Lines.size());
    std::transform(Lines.begin(), Lines.end(), std::back_inserter(Calls), ParseLine);
    return Calls;
}

std::vector<CALL_LINE> CallsNamed(const std::vector<CALL_LINE>& Calls, const std::string& Name)
{
    std::vector<CALL_LINE> Found;
    std::copy_if(Calls.begin(), Calls.end(), std::back_inserter(Found),
                 [&Name](const CALL_LINE& Call) { return Call.Call == Name; });
    return Found;
}
