// What the hosted firmware has to complain of: calls that a real firmware may answer with anything, a crash included, and
// settings that no fan may get.
//
// A complaint doesn't change what the call returns. It is kept for tests and written on standard error, so that nobody
// gets used to it.
#pragma once

#include <cstdarg>
#include <cstdio>
#include <string>
#include <vector>

struct COMPLAINTS {
    std::vector<std::string> Lines;
    bool Quiet = false; // kept alone, not written

    __attribute__((format(printf, 2, 3))) void Add(const char* Format, ...)
    {
        char Text[256];
        va_list Arguments;
        va_start(Arguments, Format);
        std::vsnprintf(Text, sizeof(Text), Format, Arguments);
        va_end(Arguments);
        Lines.push_back(Text);
        if (!Quiet) {
            std::fprintf(stderr, "ventara: %s\n", Text);
        }
    }
};
