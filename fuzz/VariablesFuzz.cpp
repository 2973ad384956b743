// Variables that somebody else wrote: the settings and the charts' histories, of any size and content, before a start.
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "fuzz/ConsoleGlobals.h"
#include "fuzz/Input.h"
#include "platform/host/CurrentBoot.h"
#include "platform/host/Session.h"

extern "C" EFI_STATUS _ModuleEntryPoint(EFI_HANDLE ImageHandle, EFI_SYSTEM_TABLE* SystemTable);

namespace {

struct REWRITER {
    INPUT Input;
    UINT32 LastStart = 0;
};

// Every variable gets another content at the beginning of the second start.
VOID RewriteAll(INPUT& Input)
{
    const std::vector<VARIABLE> Before = gCurrentBoot->Variables.All();
    for (const VARIABLE& Variable : Before) {
        const uint8_t Way = Input.Byte();
        std::vector<uint8_t> Content;
        // Often of the settings' or a history's own size.
        const size_t Size = Way % 4 == 0 ? 24 : Way % 4 == 1 ? 4u * (128 + Way) : Input.Word();
        for (size_t At = 0; At < Size; At++) {
            Content.push_back(Input.Byte());
        }
        (void)gCurrentBoot->Variables.Set(Variable.Name.c_str(), &Variable.Vendor, 2, 0, nullptr);
        (void)gCurrentBoot->Variables.Set(Variable.Name.c_str(), &Variable.Vendor, 2, Content.size(), Content.data());
    }
}

bool AtCall(VOID* Context, CALL, EFI_STATUS*, bool*)
{
    REWRITER& Rewriter = *static_cast<REWRITER*>(Context);
    if (gCurrentBoot->Trace.Start != Rewriter.LastStart) {
        Rewriter.LastStart = gCurrentBoot->Trace.Start;
        if (gCurrentBoot->Trace.Start == 2) {
            RewriteAll(Rewriter.Input);
        }
    }
    return false;
}

EFI_STATUS StartFresh(EFI_HANDLE Image, EFI_SYSTEM_TABLE* Table)
{
    RestoreConsoleGlobals();
    return _ModuleEntryPoint(Image, Table);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* Data, size_t Size)
{
    REWRITER Rewriter = {{Data, Size}};
    SESSION_OPTIONS Options;
    Options.Board = Rewriter.Input.Byte() % 2 == 0 ? "full" : "small";
    Options.Script =
        "tick 2\nkey esc\nturn\nstart\ntick 4\npointer 420 150\nturn 2\nleft down\nturn 2\nadvance 100000\n"
        "left up\nturn 3\ntick 3\n";
    Options.Entry = StartFresh;
    Options.Failures = {.Call = AtCall, .Allocation = nullptr, .Context = &Rewriter};
    const SESSION_RESULT Result = RunSession(Options);
    if (!Result.Error.empty() || Result.Status != EFI_SUCCESS || !Result.Leaks.empty() || !Result.Complaints.empty() ||
        BoardContractFaults() != 0) {
        std::fprintf(stderr, "error \"%s\", status %llx, %zu blocks left, %zu complaints, %llu illegal records\n",
                     Result.Error.c_str(), Result.Status, Result.Leaks.size(), Result.Complaints.size(),
                     BoardContractFaults());
        std::abort();
    }
    return 0;
}
