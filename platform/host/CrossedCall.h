// One call of the console on its way across a table: what the table of calls says of it is done here, for all alike. A call
// may be made to fail, leaving garbage in its outputs, or to take its time, and it is traced.
//
//     CROSSED_CALL Call(CALL_STALL, Microseconds);
//     if (!Call.Fails()) {
//         Call.Status = Firmware.Stall(Microseconds);
//     }
//     return Call.Finish();
#pragma once

#include <type_traits>

#include "platform/host/CurrentBoot.h"

// As a pointer neither null nor anywhere, as a number far out of every range.
constexpr UINT8 gGarbagePattern = 0xA5;

// An argument as failures and the trace need it.
struct CALL_ARGUMENT {
    enum KIND : UINT8 { NUMBER, TEXT, GUID, POINTER } Kind = NUMBER;
    UINT64 Word = 0;       // the number or the pointer
    UINTN PointedSize = 0; // bytes of what the pointer points to; 0: not known
};

template <typename T> CALL_ARGUMENT DescribeArgument(T Argument)
{
    if constexpr (std::is_pointer_v<T>) {
        using POINTED = std::remove_cv_t<std::remove_pointer_t<T>>;
        CALL_ARGUMENT Described = {CALL_ARGUMENT::POINTER, reinterpret_cast<UINT64>(Argument), 0};
        if constexpr (std::is_same_v<POINTED, CHAR16>) {
            Described.Kind = CALL_ARGUMENT::TEXT;
        } else if constexpr (std::is_same_v<POINTED, EFI_GUID>) {
            Described.Kind = CALL_ARGUMENT::GUID;
        }
        if constexpr (std::is_object_v<POINTED>) {
            // NOLINTNEXTLINE(bugprone-sizeof-expression): where the output is a pointer, that is what is overwritten
            Described.PointedSize = sizeof(POINTED);
        }
        return Described;
    } else {
        return {CALL_ARGUMENT::NUMBER, static_cast<UINT64>(Argument), 0};
    }
}

struct CALL_FACTS;
const CALL_FACTS& FactsOf(CALL Call);

struct CROSSED_CALL {
    static constexpr UINTN gMostArguments = 10;
    static constexpr UINTN gResult = gMostArguments; // what a call without a status gives stands behind its arguments

    BOOT& Boot;
    const CALL_FACTS& Facts;
    EFI_STATUS Status = EFI_SUCCESS;
    bool Garbage = false; // it failed, and what it fills or gives means nothing
    CALL_ARGUMENT Arguments[gMostArguments + 1];

    // Most often the call's own arguments; at any rate those that its row in the table means.
    template <typename... ARGUMENTS>
    explicit CROSSED_CALL(CALL Call, ARGUMENTS... Its)
        : Boot(*gCurrentBoot), Facts(FactsOf(Call)), Arguments{DescribeArgument(Its)...}
    {
    }

    // Before the service is called, once: true when a failure takes its place. Status says which.
    bool Fails();
    // Behind it: writes the call's line. The status.
    EFI_STATUS Finish();
    // The same for a call that gives no status but a result.
    template <typename RESULT> RESULT FinishWith(RESULT Result)
    {
        Arguments[gResult] = DescribeArgument(Result);
        (void)Finish();
        return Result;
    }

    template <typename T> T* Pointer(UINTN At) const { return reinterpret_cast<T*>(Arguments[At].Word); }
    // The number that an argument points to; 0 for null.
    UINT64 Pointed(UINTN At) const;
};

// How a field of the trace's line is written, where an argument isn't just written as it is.
using FIELD_WRITER = VOID(TRACE_LINE& Line, const char* Name, const CROSSED_CALL& Call, UINTN At);

FIELD_WRITER WriteArgument;  // as its type wants it
FIELD_WRITER WritePointed;   // the number behind it
FIELD_WRITER WriteOutput;    // number or record behind it; null after a failure
FIELD_WRITER WriteBytes;     // so many as the argument in front says
FIELD_WRITER WriteTexts;     // the same for strings
FIELD_WRITER WriteEvent;     // its number
FIELD_WRITER WriteNewEvent;  // number of the event behind it
FIELD_WRITER WriteBlock;     // number of the pool's block behind it
FIELD_WRITER WriteTimer;     // name of a timer's type
FIELD_WRITER WriteConsole;   // name of the console
FIELD_WRITER WriteKey;       // scan code and character
FIELD_WRITER WriteOperation; // name of a Blt's operation
FIELD_WRITER WritePlace;     // of a Blt on the display, where X and Y of the target stand

struct CALL_FIELD {
    const char* Name = nullptr; // null: no field
    UINTN Argument = 0;
    FIELD_WRITER* Write = WriteArgument;
};

// An argument that the service fills. Where its type doesn't say how much: the argument with the number of its elements, or
// a pointer to the number of its bytes.
struct CALL_OUTPUT {
    UINTN Argument = gNone;
    UINTN Size = gNone;

    static constexpr UINTN gNone = ~UINTN{0};
};

struct OPERATION {
    CALL Call;
    const char* Name;         // in traces and scripts
    const VOID* Table;        // stands for the kind of table that it is in
    VOID (*Put)(VOID* Table); // puts its cover into such a table
};

// A row of the table of calls.
struct CALL_FACTS {
    OPERATION Of;
    EFI_STATUS Statuses[3] = {};                          // up to a zero; none: it gives no status
    CALL_OUTPUT Outputs[5] = {};                          // those with a size first
    CALL_FIELD Fields[6] = {};                            // behind the status
    bool (*IsTraced)(const CROSSED_CALL& Call) = nullptr; // null: always
    VOID (*Before)(const CROSSED_CALL& Call) = nullptr;   // whatever becomes of the call
    VOID (*After)(const CROSSED_CALL& Call) = nullptr;    // where it succeeded
};
