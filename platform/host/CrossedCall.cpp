#include "platform/host/CrossedCall.h"

#include <algorithm>
#include <cstring>

namespace {

VOID Spoil(const CROSSED_CALL& Call, const CALL_OUTPUT& Output)
{
    const CALL_ARGUMENT& Where = Call.Arguments[Output.Argument];
    UINTN Bytes = Where.PointedSize;
    if (Output.Size != CALL_OUTPUT::gNone) {
        const CALL_ARGUMENT& Size = Call.Arguments[Output.Size];
        Bytes = Size.Kind == CALL_ARGUMENT::POINTER ? Call.Pointed(Output.Size)
                                                    : Size.Word * std::max<UINTN>(Where.PointedSize, 1);
    }
    if (Where.Word != 0) {
        std::memset(Call.Pointer<VOID>(Output.Argument), gGarbagePattern, Bytes);
    }
}

} // namespace

bool CROSSED_CALL::Fails()
{
    if (Facts.Before != nullptr) {
        Facts.Before(*this);
    }
    Boot.Clock.Advance(Boot.Crossing.Overrides.Slow[Facts.Of.Call]); // however it ends
    if (!Boot.Crossing.Overrides.TakeFailure(Facts.Of.Call, &Status, &Garbage)) {
        return false;
    }
    for (const CALL_OUTPUT& Output : Facts.Outputs) {
        if (Garbage && Output.Argument != CALL_OUTPUT::gNone) {
            Spoil(*this, Output);
        }
    }
    return true;
}

EFI_STATUS CROSSED_CALL::Finish()
{
    if (Facts.After != nullptr && !EfiError(Status)) {
        Facts.After(*this);
    }
    if (Boot.Trace.IsOn() && (Facts.IsTraced == nullptr || Facts.IsTraced(*this))) {
        TRACE_LINE Line(&Boot.Trace, Facts.Of.Name);
        if (CallHasStatus(Facts.Of.Call)) {
            Line.Status(Status);
        }
        for (const CALL_FIELD& Field : Facts.Fields) {
            if (Field.Name != nullptr) {
                Field.Write(Line, Field.Name, *this, Field.Argument);
            }
        }
    }
    return Status;
}

UINT64 CROSSED_CALL::Pointed(UINTN At) const
{
    UINT64 Number = 0;
    if (Arguments[At].Word != 0) {
        std::memcpy(&Number, Pointer<VOID>(At), std::min<UINTN>(Arguments[At].PointedSize, sizeof(Number)));
    }
    return Number;
}

// --- Fields of the trace ---

VOID WriteArgument(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    const CALL_ARGUMENT& Argument = Call.Arguments[At];
    switch (Argument.Kind) {
    case CALL_ARGUMENT::NUMBER:
        Line.Number(Name, Argument.Word);
        break;
    case CALL_ARGUMENT::TEXT:
        Line.Text(Name, Call.Pointer<const CHAR16>(At));
        break;
    case CALL_ARGUMENT::GUID:
        Line.Guid(Name, Call.Pointer<const EFI_GUID>(At));
        break;
    case CALL_ARGUMENT::POINTER:
        Line.Hex(Name, Call.Pointer<const VOID>(At), Argument.PointedSize);
        break;
    }
}

VOID WritePointed(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    Line.Number(Name, Call.Pointed(At));
}

VOID WriteOutput(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    if (EfiError(Call.Status)) {
        Line.Null(Name);
    } else if (Call.Arguments[At].PointedSize <= sizeof(UINT64)) {
        WritePointed(Line, Name, Call, At);
    } else {
        WriteArgument(Line, Name, Call, At);
    }
}

VOID WriteBytes(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    const CALL_ARGUMENT& Size = Call.Arguments[At - 1];
    const UINTN Filled = Call.Status == EFI_SUCCESS ? Call.Pointed(At - 1) : 0;
    Line.Hex(Name, Call.Pointer<const VOID>(At), Size.Kind == CALL_ARGUMENT::POINTER ? Filled : Size.Word);
}

VOID WriteTexts(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    Line.Texts(Name, Call.Pointer<CHAR16*>(At), Call.Arguments[At - 1].Word);
}

VOID WriteEvent(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    Line.Number(Name, Call.Boot.Crossing.NumberEvent(Call.Pointer<VOID>(At)));
}

VOID WriteNewEvent(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    const bool Made = !EfiError(Call.Status);
    Line.Number(Name, Made ? Call.Boot.Crossing.NumberEvent(*Call.Pointer<EFI_EVENT>(At)) : 0);
}

VOID WriteBlock(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    const POOL_BLOCK* Block = EfiError(Call.Status) ? nullptr : Call.Boot.Pool.Find(*Call.Pointer<VOID*>(At));
    Line.Number(Name, Block == nullptr ? 0 : Block->Number);
}

VOID WriteTimer(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    static constexpr std::string_view Names[] = {"cancel", "periodic", "relative", "unknown"};
    Line.Text(Name, Names[std::min<UINT64>(Call.Arguments[At].Word, TimerRelative + 1)]);
}

VOID WriteConsole(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    Line.Text(Name, std::string_view(Call.Pointer<VOID>(At) == Call.Boot.ConsoleTable.StdErr ? "StdErr" : "ConOut"));
}

VOID WriteKey(TRACE_LINE& Line, const char*, const CROSSED_CALL& Call, UINTN At)
{
    const EFI_INPUT_KEY* Key = Call.Pointer<EFI_INPUT_KEY>(At);
    Line.Number("scan", Key->ScanCode).Number("char", Key->UnicodeChar);
}

VOID WriteOperation(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    static constexpr std::string_view Names[] = {"fill", "to-buffer", "from-buffer", "video", "unknown"};
    Line.Text(Name, Names[std::min<UINT64>(Call.Arguments[At].Word, EfiGraphicsOutputBltOperationMax)]);
}

VOID WritePlace(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At)
{
    constexpr UINTN Operation = 2;
    const bool Reads = Call.Arguments[Operation].Word == EfiBltVideoToBltBuffer;
    Line.Number(Name, Call.Arguments[Reads ? At - 2 : At].Word); // the source stands two arguments before the target
}
