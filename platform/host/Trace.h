// The trace: one JSON object a line for each call that crosses the firmware's tables.
//
//     TRACE_LINE(&Boot.Trace, "LocateProtocol").Status(Status).Guid("guid", Protocol);
//
// begins a line with the time, the start and the turn, adds fields, and writes the line when the expression ends. There
// is one line at a time.
#pragma once

#include <cstdio>
#include <string>
#include <vector>

#include "platform/host/Clock.h"

struct TRACE {
    bool Keep = false;    // lines are kept in Lines
    FILE* File = nullptr; // lines are written here
    bool Pool = false;    // pool calls too
    bool Blts = true;
    std::vector<std::string> Lines;
    const CLOCK* Clock = nullptr;
    UINT32 Start = 0;
    UINT64 Turn = 0;
    std::string Line; // the one that is being written: its room serves all, as a start alone has thousands

    bool IsOn() const { return Keep || File != nullptr; }
};

struct TRACE_LINE {
    TRACE_LINE(TRACE* Trace, const char* Call);
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
    VOID AddName(std::string_view Name);
    VOID AddNumber(UINT64 Value);
    VOID AddQuoted(std::string_view Utf8);

    TRACE* mTrace;
    std::string& mLine;
};
