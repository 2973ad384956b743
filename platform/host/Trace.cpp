#include "platform/host/Trace.h"

#include "platform/host/HostText.h"

VOID TRACE::Write(std::string&& Line)
{
    if (File != nullptr) {
        std::fwrite(Line.data(), 1, Line.size(), File);
        std::fputc('\n', File);
    }
    if (Keep) {
        Lines.push_back(std::move(Line));
    }
}

TRACE_LINE::TRACE_LINE(TRACE* Trace, const char* Call) : mTrace(Trace)
{
    mLine = "{\"us\":" + std::to_string(Trace->Clock->Microseconds()) + ",\"start\":" + std::to_string(Trace->Start) +
            ",\"turn\":" + std::to_string(Trace->Turn) + ",\"call\":\"" + Call + "\"";
}

TRACE_LINE::~TRACE_LINE()
{
    mLine += '}';
    mTrace->Write(std::move(mLine));
}

VOID TRACE_LINE::AddName(const char* Name)
{
    mLine += ",\"";
    mLine += Name;
    mLine += "\":";
}

TRACE_LINE& TRACE_LINE::Status(EFI_STATUS Status) { return Text("status", FormatStatus(Status)); }

TRACE_LINE& TRACE_LINE::Number(const char* Name, UINT64 Value)
{
    AddName(Name);
    mLine += std::to_string(Value);
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
    mLine += QuoteJson(Utf8);
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
    for (UINTN At = 0; Strings != nullptr && At < Count; At++) {
        mLine += At == 0 ? "" : ",";
        mLine += Strings[At] == nullptr ? "null" : QuoteJson(ToUtf8(Strings[At]));
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

std::string QuoteJson(std::string_view Utf8)
{
    std::string Out = "\"";
    for (const char Char : Utf8) {
        switch (Char) {
        case '"':
            Out += "\\\"";
            break;
        case '\\':
            Out += "\\\\";
            break;
        case '\n':
            Out += "\\n";
            break;
        case '\r':
            Out += "\\r";
            break;
        case '\t':
            Out += "\\t";
            break;
        default:
            if (static_cast<unsigned char>(Char) < 0x20) {
                char Escape[8];
                std::snprintf(Escape, sizeof(Escape), "\\u%04x", static_cast<unsigned>(Char));
                Out += Escape;
            } else {
                Out += Char;
            }
        }
    }
    return Out + "\"";
}
