// The firmware's base types and status codes, under their names in the UEFI specification, and the few questions that
// everybody asks about numbers.
//
// Both worlds are x86-64 with eight-byte pointers, and in each of them the compiler's own calling convention is the
// convention of the tables it is handed: the firmware image is compiled for the firmware's convention, and the hosted
// tables are compiled together with the console. So no calling-convention word stands on the function types.
#pragma once

#include <stddef.h>

using INT8 = signed char;
using UINT8 = unsigned char;
using INT16 = short;
using UINT16 = unsigned short;
using INT32 = int;
using UINT32 = unsigned int;
using INT64 = long long;
using UINT64 = unsigned long long;
using INTN = INT64;
using UINTN = UINT64;
using BOOLEAN = UINT8;
using CHAR8 = char;
using CHAR16 = char16_t;
using VOID = void;

static_assert(sizeof(INT16) == 2 && sizeof(INT32) == 4 && sizeof(INT64) == 8 && sizeof(CHAR16) == 2);
static_assert(sizeof(VOID*) == sizeof(UINTN));

using EFI_STATUS = UINTN;
using EFI_TPL = UINTN;
using EFI_HANDLE = VOID*;
using EFI_EVENT = VOID*;

struct EFI_GUID {
    UINT32 Data1;
    UINT16 Data2;
    UINT16 Data3;
    UINT8 Data4[8];
};
static_assert(sizeof(EFI_GUID) == 16);

constexpr bool SameGuid(const EFI_GUID& A, const EFI_GUID& B)
{
    bool Same = A.Data1 == B.Data1 && A.Data2 == B.Data2 && A.Data3 == B.Data3;
    for (UINTN Index = 0; Index < sizeof(A.Data4); Index++) {
        Same = Same && A.Data4[Index] == B.Data4[Index];
    }
    return Same;
}

struct LIST_ENTRY {
    LIST_ENTRY* ForwardLink;
    LIST_ENTRY* BackLink;
};

constexpr EFI_STATUS gEfiErrorBit = 0x8000000000000000ull;

constexpr EFI_STATUS EFI_SUCCESS = 0;
constexpr EFI_STATUS EFI_LOAD_ERROR = gEfiErrorBit | 1;
constexpr EFI_STATUS EFI_INVALID_PARAMETER = gEfiErrorBit | 2;
constexpr EFI_STATUS EFI_UNSUPPORTED = gEfiErrorBit | 3;
constexpr EFI_STATUS EFI_BAD_BUFFER_SIZE = gEfiErrorBit | 4;
constexpr EFI_STATUS EFI_BUFFER_TOO_SMALL = gEfiErrorBit | 5;
constexpr EFI_STATUS EFI_NOT_READY = gEfiErrorBit | 6;
constexpr EFI_STATUS EFI_DEVICE_ERROR = gEfiErrorBit | 7;
constexpr EFI_STATUS EFI_WRITE_PROTECTED = gEfiErrorBit | 8;
constexpr EFI_STATUS EFI_OUT_OF_RESOURCES = gEfiErrorBit | 9;
constexpr EFI_STATUS EFI_VOLUME_CORRUPTED = gEfiErrorBit | 10;
constexpr EFI_STATUS EFI_VOLUME_FULL = gEfiErrorBit | 11;
constexpr EFI_STATUS EFI_NO_MEDIA = gEfiErrorBit | 12;
constexpr EFI_STATUS EFI_MEDIA_CHANGED = gEfiErrorBit | 13;
constexpr EFI_STATUS EFI_NOT_FOUND = gEfiErrorBit | 14;
constexpr EFI_STATUS EFI_ACCESS_DENIED = gEfiErrorBit | 15;
constexpr EFI_STATUS EFI_NO_RESPONSE = gEfiErrorBit | 16;
constexpr EFI_STATUS EFI_NO_MAPPING = gEfiErrorBit | 17;
constexpr EFI_STATUS EFI_TIMEOUT = gEfiErrorBit | 18;
constexpr EFI_STATUS EFI_NOT_STARTED = gEfiErrorBit | 19;
constexpr EFI_STATUS EFI_ALREADY_STARTED = gEfiErrorBit | 20;
constexpr EFI_STATUS EFI_ABORTED = gEfiErrorBit | 21;
constexpr EFI_STATUS EFI_ICMP_ERROR = gEfiErrorBit | 22;
constexpr EFI_STATUS EFI_TFTP_ERROR = gEfiErrorBit | 23;
constexpr EFI_STATUS EFI_PROTOCOL_ERROR = gEfiErrorBit | 24;
constexpr EFI_STATUS EFI_SECURITY_VIOLATION = gEfiErrorBit | 26;

// True for a negative status: the error bit is the sign.
constexpr bool EfiError(EFI_STATUS Status) { return (Status & gEfiErrorBit) != 0; }

template <typename NUMBER> constexpr NUMBER Smaller(NUMBER A, NUMBER B) { return A < B ? A : B; }
template <typename NUMBER> constexpr NUMBER Larger(NUMBER A, NUMBER B) { return A > B ? A : B; }
template <typename NUMBER> constexpr NUMBER Distance(NUMBER A, NUMBER B) { return A > B ? A - B : B - A; }
// Value, held between two bounds that belong to the range.
template <typename NUMBER> constexpr NUMBER Limit(NUMBER Value, NUMBER Least, NUMBER Most)
{
    return Value < Least ? Least : Value > Most ? Most : Value;
}

constexpr EFI_TPL TPL_APPLICATION = 4;
constexpr EFI_TPL TPL_CALLBACK = 8;
constexpr EFI_TPL TPL_NOTIFY = 16;
constexpr EFI_TPL TPL_HIGH_LEVEL = 31;

struct EFI_TIME {
    UINT16 Year;
    UINT8 Month;
    UINT8 Day;
    UINT8 Hour;
    UINT8 Minute;
    UINT8 Second;
    UINT8 Pad1;
    UINT32 Nanosecond;
    INT16 TimeZone;
    UINT8 Daylight;
    UINT8 Pad2;
};
static_assert(sizeof(EFI_TIME) == 16);

struct EFI_TIME_CAPABILITIES {
    UINT32 Resolution; // ticks a second
    UINT32 Accuracy;
    BOOLEAN SetsToZero;
};
