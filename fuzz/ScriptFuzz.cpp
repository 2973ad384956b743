// Scripts of any text.
#include <cstdint>
#include <cstdlib>

#include "platform/host/Script.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    SCRIPT Script;
    std::string Error;
    const std::string_view Text(reinterpret_cast<const char*>(Data), Size);
    if (Text.find("artwork") != std::string_view::npos) {
        return 0; // it names files, which are the user's
    }
    if (!ParseScript("script", Text, &Script, &Error) && Error.find("script:") != 0) {
        std::abort(); // a refusal without its place
    }
    return 0;
}
