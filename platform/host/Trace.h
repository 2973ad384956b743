// The trace: one JSON object a line for each call that crosses the firmware's tables.
//
//     TraceCall(Boot.Trace, CALL_LOCATE_PROTOCOL).Status(Status).Guid("guid", Protocol);
//
// begins a line with the time, the start and the turn, adds fields, and writes the line when the expression ends. While
// nobody keeps a trace, nothing is formatted.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "platform/host/Calls.h"
#include "platform/host/Clock.h"

struct TRACE {
    bool Keep = false;    // lines are kept in Lines
    FILE* File = nullptr; // lines are written here
    bool Pool = false;    // pool calls too
    std::vector<std::string> Lines;
    const CLOCK* Clock = nullptr;
    UINT32 Start = 0;
    UINT64 Turn = 0;

    bool IsOn() const { return Keep || File != nullptr; }
    VOID Write(std::string&& Line);
};

struct TRACE_LINE {
    // Trace null: the line goes nowhere.
    TRACE_LINE(TRACE* Trace, CALL Call);
    TRACE_LINE(const TRACE_LINE&) = delete;
    TRACE_LINE& operator=(const TRACE_LINE&) = delete;
    ~TRACE_LINE();

    TRACE_LINE& Status(EFI_STATUS Status);
    TRACE_LINE& Number(const char* Name, UINT64 Value);
    TRACE_LINE& Null(const char* Name);
    TRACE_LINE& Text(const char* Name, std::string_view Utf8);
    // Null for a null string.
    TRACE_LINE& Text(const char* Name, const CHAR16* String);
    TRACE_LINE& Texts(const char* Name, CHAR16* const* Strings, UINTN Count);
    // Null for a null pointer.
    TRACE_LINE& Guid(const char* Name, const EFI_GUID* Guid);
    TRACE_LINE& Hex(const char* Name, const VOID* Data, UINTN Size);

private:
    VOID AddName(const char* Name);

    TRACE* mTrace;
    std::string mLine;
};

inline TRACE_LINE TraceCall(TRACE& Trace, CALL Call) { return TRACE_LINE(Trace.IsOn() ? &Trace : nullptr, Call); }

// The text as a JSON string, quotes included.
std::string QuoteJson(std::string_view Utf8);
