#include "platform/host/Consoles.h"

#include <algorithm>
#include <cstdio>

#include "platform/host/HostText.h"

EFI_STATUS CONSOLES::Write(bool IsError, const CHAR16* Text)
{
    if (Text == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    std::string Line = ToUtf8(Text);
    std::erase(Line, '\r');
    (IsError ? ErrorText : OutputText) += Line;
    if (Echo) {
        FILE* Stream = IsError ? stderr : stdout;
        std::fwrite(Line.data(), 1, Line.size(), Stream);
        std::fflush(Stream);
    }
    return EFI_SUCCESS;
}

EFI_STATUS CONSOLES::ReadKey(EFI_INPUT_KEY* Key)
{
    if (Key == nullptr) {
        return EFI_INVALID_PARAMETER;
    }
    if (Keys.empty()) {
        *Key = {};
        return EFI_NOT_READY;
    }
    *Key = Keys.front();
    Keys.pop_front();
    return EFI_SUCCESS;
}
