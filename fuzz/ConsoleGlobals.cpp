#include "fuzz/ConsoleGlobals.h"

#include <cstring>
#include <vector>

// The linker's names for the borders of a section.
extern "C" char __start_console_data[] __attribute__((weak));
extern "C" char __stop_console_data[] __attribute__((weak));
extern "C" char __start_console_bss[] __attribute__((weak));
extern "C" char __stop_console_bss[] __attribute__((weak));

namespace {

// The sanitizer keeps the places between globals from being touched, this included.
__attribute__((no_sanitize("address"))) void CopyBytes(char* To, const char* From, size_t Size)
{
    for (size_t At = 0; At < Size; At++) {
        To[At] = From == nullptr ? 0 : From[At];
    }
}

} // namespace

__attribute__((no_sanitize("address"))) void RestoreConsoleGlobals()
{
    static std::vector<char> AtLoad;
    const size_t Size = static_cast<size_t>(__stop_console_data - __start_console_data);
    if (AtLoad.empty() && Size != 0) {
        AtLoad.resize(Size);
        CopyBytes(AtLoad.data(), __start_console_data, Size);
    } else {
        CopyBytes(__start_console_data, AtLoad.data(), Size);
    }
    CopyBytes(__start_console_bss, nullptr, static_cast<size_t>(__stop_console_bss - __start_console_bss));
}
