#include "platform/host/Trace.h"

#include <charconv>
#include <iterator>

#include "platform/host/HostText.h"

TRACE_LINE::TRACE_LINE(TRACE* Trace, const char* Call) : mTrace(Trace), mLine(Trace->Line)
{
    mLine = "{\"us\":";
    AddNumber(Trace->Clock->Microseconds());
    Number("start", Trace->Start).Number("turn", Trace->Turn).Text("call", Call);
}

TRACE_LINE::~TRACE_LINE()
{
    mLine += '}';
    if (mTrace->Keep) {
        mTrace->Lines.push_back(mLine);
    }
    if (mTrace->File != nullptr) {
        mLine += '\n';
        std::fwrite(mLine.data(), 1, mLine.size(), mTrace->File);
    }
}

VOID TRACE_LINE::AddName(std::string_view Name)
{
    mLine += ",\"";
    mLine += Name;
    mLine += "\":";
}

VOID TRACE_LINE::AddNumber(UINT64 Value)
{
    char Digits[20];
    mLine.append(Digits, std::to_chars(Digits, std::end(Digits), Value).ptr);
}

TRACE_LINE& TRACE_LINE::Status(EFI_STATUS Status)
{
    return Status == EFI_SUCCESS ? Text("status", "0x0000000000000000") : Text("status", FormatStatus(Status));
}

TRACE_LINE& TRACE_LINE::Number(const char* Name, UINT64 Value)
{
    AddName(Name);
    AddNumber(Value);
    return *this;
}

TRACE_LINE& TRACE_LINE::Null(const char* Name)
{
    AddName(Name);
    mLine += "null";
    return *this;
}

TRACE_LINE& TRACE_LINE::Text(const char* Name, std::string_view Utf8)
{
    AddName(Name);
    AddQuoted(Utf8);
    return *this;
}

TRACE_LINE& TRACE_LINE::Text(const char* Name, const CHAR16* String)
{
    return String == nullptr ? Null(Name) : Text(Name, ToUtf8(String));
}

TRACE_LINE& TRACE_LINE::Texts(const char* Name, CHAR16* const* Strings, UINTN Count)
{
    AddName(Name);
    mLine += '[';
    for (UINTN Index = 0; Strings != nullptr && Index < Count; Index++) {
        mLine += Index == 0 ? "" : ",";
        if (Strings[Index] == nullptr) {
            mLine += "null";
        } else {
            AddQuoted(ToUtf8(Strings[Index]));
        }
    }
    mLine += ']';
    return *this;
}

TRACE_LINE& TRACE_LINE::Guid(const char* Name, const EFI_GUID* Guid)
{
    return Guid == nullptr ? Null(Name) : Text(Name, FormatGuid(*Guid));
}

TRACE_LINE& TRACE_LINE::Hex(const char* Name, const VOID* Data, UINTN Size)
{
    return Data == nullptr ? Null(Name) : Text(Name, FormatHex(Data, Size));
}

VOID TRACE_LINE::AddQuoted(std::string_view Utf8)
{
    mLine += '"';
    for (const char Char : Utf8) {
        switch (Char) {
        case '"':
            mLine += "\\\"";
            break;
        case '\\':
            mLine += "\\\\";
            break;
        case '\n':
            mLine += "\\n";
            break;
        case '\r':
            mLine += "\\r";
            break;
        case '\t':
            mLine += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(Char) < 0x20) {
                char Escape[8];
                std::snprintf(Escape, sizeof(Escape), "\\u%04x", static_cast<unsigned>(Char));
                mLine += Escape;
            } else {
                mLine += Char;
            }
        }
    }
    mLine += '"';
}
