#include "platform/host/HostText.h"

#include <cstdio>
#include <cstring>

namespace {

constexpr char32_t gReplacementCharacter = 0xFFFD;

void AppendUtf8(std::string& Out, char32_t Code)
{
    if (Code < 0x80) {
        Out += static_cast<char>(Code);
    } else if (Code < 0x800) {
        Out += static_cast<char>(0xC0 | (Code >> 6));
        Out += static_cast<char>(0x80 | (Code & 0x3F));
    } else if (Code < 0x10000) {
        Out += static_cast<char>(0xE0 | (Code >> 12));
        Out += static_cast<char>(0x80 | ((Code >> 6) & 0x3F));
        Out += static_cast<char>(0x80 | (Code & 0x3F));
    } else {
        Out += static_cast<char>(0xF0 | (Code >> 18));
        Out += static_cast<char>(0x80 | ((Code >> 12) & 0x3F));
        Out += static_cast<char>(0x80 | ((Code >> 6) & 0x3F));
        Out += static_cast<char>(0x80 | (Code & 0x3F));
    }
}

void AppendUtf16(std::u16string& Out, char32_t Code)
{
    if (Code >= 0x10000) {
        Out += static_cast<char16_t>(0xD800 + ((Code - 0x10000) >> 10));
        Out += static_cast<char16_t>(0xDC00 + ((Code - 0x10000) & 0x3FF));
    } else {
        Out += static_cast<char16_t>(Code);
    }
}

struct STATUS_NAME {
    EFI_STATUS Status;
    const char* Name;
};

constexpr STATUS_NAME gStatusNames[] = {
    {EFI_SUCCESS, "SUCCESS"},
    {EFI_LOAD_ERROR, "LOAD_ERROR"},
    {EFI_INVALID_PARAMETER, "INVALID_PARAMETER"},
    {EFI_UNSUPPORTED, "UNSUPPORTED"},
    {EFI_BAD_BUFFER_SIZE, "BAD_BUFFER_SIZE"},
    {EFI_BUFFER_TOO_SMALL, "BUFFER_TOO_SMALL"},
    {EFI_NOT_READY, "NOT_READY"},
    {EFI_DEVICE_ERROR, "DEVICE_ERROR"},
    {EFI_WRITE_PROTECTED, "WRITE_PROTECTED"},
    {EFI_OUT_OF_RESOURCES, "OUT_OF_RESOURCES"},
    {EFI_VOLUME_CORRUPTED, "VOLUME_CORRUPTED"},
    {EFI_VOLUME_FULL, "VOLUME_FULL"},
    {EFI_NO_MEDIA, "NO_MEDIA"},
    {EFI_MEDIA_CHANGED, "MEDIA_CHANGED"},
    {EFI_NOT_FOUND, "NOT_FOUND"},
    {EFI_ACCESS_DENIED, "ACCESS_DENIED"},
    {EFI_NO_RESPONSE, "NO_RESPONSE"},
    {EFI_NO_MAPPING, "NO_MAPPING"},
    {EFI_TIMEOUT, "TIMEOUT"},
    {EFI_NOT_STARTED, "NOT_STARTED"},
    {EFI_ALREADY_STARTED, "ALREADY_STARTED"},
    {EFI_ABORTED, "ABORTED"},
    {EFI_ICMP_ERROR, "ICMP_ERROR"},
    {EFI_TFTP_ERROR, "TFTP_ERROR"},
    {EFI_PROTOCOL_ERROR, "PROTOCOL_ERROR"},
    {EFI_SECURITY_VIOLATION, "SECURITY_VIOLATION"},
};

int HexDigit(char Char)
{
    if (Char >= '0' && Char <= '9') {
        return Char - '0';
    }
    if (Char >= 'a' && Char <= 'f') {
        return Char - 'a' + 10;
    }
    if (Char >= 'A' && Char <= 'F') {
        return Char - 'A' + 10;
    }
    return -1;
}

} // namespace

std::string ToUtf8(const CHAR16* Text)
{
    std::string Out;
    while (Text != nullptr && *Text != 0) {
        char32_t Code = *Text++;
        if (Code >= 0xD800 && Code < 0xDC00 && *Text >= 0xDC00 && *Text < 0xE000) {
            Code = 0x10000 + ((Code - 0xD800) << 10) + (*Text++ - 0xDC00u);
        } else if (Code >= 0xD800 && Code < 0xE000) {
            Code = gReplacementCharacter;
        }
        AppendUtf8(Out, Code);
    }
    return Out;
}

std::u16string ToUtf16(std::string_view Text)
{
    std::u16string Out;
    for (size_t Index = 0; Index < Text.size();) {
        const UINT8 First = static_cast<UINT8>(Text[Index++]);
        const int More = First < 0x80                    ? 0
                         : First >= 0xC2 && First < 0xE0 ? 1
                         : (First & 0xF0) == 0xE0        ? 2
                         : First >= 0xF0 && First < 0xF5 ? 3
                                                         : -1;
        if (More < 0) {
            AppendUtf16(Out, gReplacementCharacter);
            continue;
        }
        char32_t Code = More == 0 ? First : First & (0x3Fu >> More);
        int Read = 0;
        while (Read < More && Index < Text.size() && (static_cast<UINT8>(Text[Index]) & 0xC0) == 0x80) {
            Code = (Code << 6) | (static_cast<UINT8>(Text[Index++]) & 0x3Fu);
            Read++;
        }
        const bool TooLong = (More == 2 && Code < 0x800) || (More == 3 && Code < 0x10000);
        if (Read < More || TooLong || Code > 0x10FFFF || (Code >= 0xD800 && Code < 0xE000)) {
            Code = gReplacementCharacter;
        }
        AppendUtf16(Out, Code);
    }
    return Out;
}

std::string FormatGuid(const EFI_GUID& Guid)
{
    char Text[40];
    std::snprintf(Text, sizeof(Text), "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X", Guid.Data1, Guid.Data2,
                  Guid.Data3, Guid.Data4[0], Guid.Data4[1], Guid.Data4[2], Guid.Data4[3], Guid.Data4[4], Guid.Data4[5],
                  Guid.Data4[6], Guid.Data4[7]);
    return Text;
}

std::string FormatHex(const void* Data, size_t Size)
{
    static const char Digits[] = "0123456789abcdef";
    std::string Out;
    Out.reserve(Size * 2);
    for (size_t Index = 0; Index < Size; Index++) {
        const UINT8 Byte = static_cast<const UINT8*>(Data)[Index];
        Out += Digits[Byte >> 4];
        Out += Digits[Byte & 15];
    }
    return Out;
}

bool ParseHexBytes(std::string_view Text, std::vector<UINT8>* Bytes)
{
    Bytes->clear();
    for (size_t Index = 0; Index < Text.size();) {
        if (Text[Index] == ' ' || Text[Index] == '\t') {
            Index++;
            continue;
        }
        if (Index + 1 >= Text.size() || HexDigit(Text[Index]) < 0 || HexDigit(Text[Index + 1]) < 0) {
            return false;
        }
        Bytes->push_back(static_cast<UINT8>(HexDigit(Text[Index]) * 16 + HexDigit(Text[Index + 1])));
        Index += 2;
    }
    return true;
}

std::string FormatStatus(EFI_STATUS Status)
{
    char Text[24];
    std::snprintf(Text, sizeof(Text), "0x%016llx", Status);
    return Text;
}

const char* NameStatus(EFI_STATUS Status)
{
    for (const STATUS_NAME& Entry : gStatusNames) {
        if (Entry.Status == Status) {
            return Entry.Name;
        }
    }
    return nullptr;
}

bool FindStatus(std::string_view Name, EFI_STATUS* Status)
{
    if (Name.substr(0, 4) == "EFI_") {
        Name.remove_prefix(4);
    }
    for (const STATUS_NAME& Entry : gStatusNames) {
        if (Name == Entry.Name) {
            *Status = Entry.Status;
            return true;
        }
    }
    return false;
}
