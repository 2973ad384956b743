// Strings and identifiers between the firmware's forms and a Linux program's: UTF-16 and UTF-8, GUIDs, hex, statuses.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "uefi/Base.h"

// A zero-ended UTF-16 string as UTF-8. Half a surrogate pair becomes U+FFFD; null gives an empty string.
std::string ToUtf8(const CHAR16* Text);
// Bytes that are no UTF-8 become U+FFFD.
std::u16string ToUtf16(std::string_view Text);

// The upper-case 8-4-4-4-12 form.
std::string FormatGuid(const EFI_GUID& Guid);
std::string FormatHex(const void* Data, size_t Size);
// Pairs of hex digits, blanks between pairs allowed. False for anything else.
bool ParseHexBytes(std::string_view Text, std::vector<UINT8>* Bytes);

// "0x8000000000000005"
std::string FormatStatus(EFI_STATUS Status);
// The name of a status without its EFI_, such as "NOT_FOUND"; null when it has none here.
const char* NameStatus(EFI_STATUS Status);
// The status of that name, with or without EFI_. False for an unknown name.
bool FindStatus(std::string_view Name, EFI_STATUS* Status);
