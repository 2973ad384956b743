// Lines of a trace as a test asks them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "uefi/Base.h"

// One line of the trace. Numbers are kept as text too, so that a field can be compared without knowing its kind.
struct CALL_LINE {
    std::string Call;
    UINT64 Microseconds = 0;
    UINT64 Start = 0;
    UINT64 Turn = 0;
    std::map<std::string, std::string> Fields; // strings without quotes, numbers in decimal, null as "null"

    std::string Text(const std::string& Field) const;
    UINT64 Number(const std::string& Field) const;
    bool operator==(const CALL_LINE&) const = default;
};

std::vector<CALL_LINE> ParseTrace(const std::vector<std::string>& Lines);

// The calls of that name, in their order.
std::vector<CALL_LINE> CallsNamed(const std::vector<CALL_LINE>& Calls, const std::string& Name);
