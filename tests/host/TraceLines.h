// Lines of a trace as a test asks them. A start alone writes thousands, so a line is read no further than is asked for.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "uefi/Base.h"

// One line of the trace.
struct CALL_LINE {
    std::string Call;
    UINT64 Microseconds = 0;
    UINT64 Start = 0;
    UINT64 Turn = 0;
    std::string Fields; // the other fields, as the trace has them

    // A field's value: strings without quotes, numbers in decimal, lists as the trace has them, null as "null".
    std::string Text(std::string_view Field) const;
    UINT64 Number(std::string_view Field) const;
    bool operator==(const CALL_LINE&) const = default;
};

std::vector<CALL_LINE> ParseTrace(const std::vector<std::string>& Lines);

// The calls of that name, in their order.
std::vector<CALL_LINE> CallsNamed(const std::vector<CALL_LINE>& Calls, const std::string& Name);
