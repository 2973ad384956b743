#include "tests/host/TraceLines.h"

#include <cstdlib>

#include <nlohmann/json.hpp>

namespace {

CALL_LINE ParseLine(const std::string& Line)
{
    const nlohmann::json Object = nlohmann::json::parse(Line);
    CALL_LINE Call;
    for (const auto& [Name, Value] : Object.items()) {
        if (Name == "call") {
            Call.Call = Value.get<std::string>();
        } else if (Name == "us") {
            Call.Microseconds = Value.get<UINT64>();
        } else if (Name == "start") {
            Call.Start = Value.get<UINT64>();
        } else if (Name == "turn") {
            Call.Turn = Value.get<UINT64>();
        } else {
            Call.Fields[Name] = Value.is_string() ? Value.get<std::string>() : Value.dump();
        }
    }
    return Call;
}

} // namespace

std::string CALL_LINE::Text(const std::string& Field) const
{
    const auto Found = Fields.find(Field);
    return Found == Fields.end() ? "(no field " + Field + ")" : Found->second;
}

UINT64 CALL_LINE::Number(const std::string& Field) const
{
    return std::strtoull(Text(Field).c_str(), nullptr, 10);
}

std::vector<CALL_LINE> ParseTrace(const std::vector<std::string>& Lines)
{
    std::vector<CALL_LINE> Calls;
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
