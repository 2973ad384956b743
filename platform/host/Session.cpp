#include "platform/host/Session.h"

#include <csignal>
#include <memory>

#include "platform/board/ArtworkPack.h"
#include "platform/board/hooks/FanHooks.h"
#include "platform/host/HostText.h"
#include "platform/host/WindowDriver.h"
#include "uefi/Shell.h"

namespace {

volatile sig_atomic_t gStopRequested = 0;

// Every slot of the shell's own protocol: this shell does nothing but hand over arguments.
EFI_STATUS RefuseShellCall() { return EFI_UNSUPPORTED; }

// The shell as a program finds it: its protocol on a handle of its own, and on the image's handle the program's name and
// arguments.
struct SHELL_COMMAND {
    static constexpr UINTN gShellSlots = 64; // more than any version of the protocol has
    EFI_STATUS (*Shell[gShellSlots])();
    std::vector<std::u16string> Words = {u"ventara.efi"};
    std::vector<CHAR16*> Pointers;
    EFI_SHELL_PARAMETERS_PROTOCOL Protocol = {};

    explicit SHELL_COMMAND(const std::vector<std::string>& Arguments)
    {
        for (const std::string& Argument : Arguments) {
            Words.push_back(ToUtf16(Argument));
        }
        for (std::u16string& Word : Words) {
            Pointers.push_back(Word.data());
        }
        Protocol.Argv = Pointers.data();
        Protocol.Argc = Pointers.size();
        for (auto& Slot : Shell) {
            Slot = RefuseShellCall;
        }
    }
    VOID Install(HANDLES& Handles, EFI_HANDLE Image)
    {
        (void)Handles.Install(&mShellHandle, &gEfiShellProtocolGuid, Shell);
        (void)Handles.Install(&Image, &gEfiShellParametersProtocolGuid, &Protocol);
    }
    VOID Uninstall(HANDLES& Handles, EFI_HANDLE Image)
    {
        (void)Handles.Uninstall(mShellHandle, &gEfiShellProtocolGuid, Shell);
        (void)Handles.Uninstall(Image, &gEfiShellParametersProtocolGuid, &Protocol);
    }

private:
    EFI_HANDLE mShellHandle = nullptr;
};

// What a session hands from one boot to the next over a reset: the outside of the machine, and what a board's own
// controller keeps, its fan settings.
struct CARRIED {
    CLOCK Clock;
    TRACE Trace;
    OVERRIDES Overrides;
    POINTER_STATE Pointer;
    FAN_SETTING Settings[gFanItemCount];
};

struct SESSION {
    const SESSION_OPTIONS& Options;
    SESSION_RESULT& Result;
    SCRIPT Script;
    PLAYER Player;
    WINDOW_DRIVER Window;
    std::unique_ptr<BOOT> Boot;

    SESSION(const SESSION_OPTIONS& TheOptions, SESSION_RESULT& TheResult)
        : Options(TheOptions), Result(TheResult), Player(&Script)
    {
    }

    bool Fail(std::string Error)
    {
        Result.Error = std::move(Error);
        return false;
    }
    bool Prepare();
    bool SwitchOn(const CARRIED* Before);
    bool Reset();
    bool StartOnce();
    VOID BeginTurn();
    VOID CollectFromBoot();
    VOID Run();
};

VOID OnTurn(VOID* Context) { static_cast<SESSION*>(Context)->BeginTurn(); }

VOID OnStall(VOID* Context, UINT64 Microseconds) { static_cast<SESSION*>(Context)->Window.NoteStall(Microseconds); }

bool SESSION::Prepare()
{
    if (Options.Script && !ParseScript(Options.ScriptName, *Options.Script, &Script, &Result.Error)) {
        Result.ScriptError = true;
        return false;
    }
    for (const SCRIPT_COMMAND& Command : Script.Commands) {
        if (Options.Source != nullptr && (Command.Verb == SCRIPT_SETTING || Command.Verb == SCRIPT_DEFAULT)) {
            Result.ScriptError = true;
            return Fail(DescribeScriptError(Script, Command.Line, "a simulated board"));
        }
    }
    if (Options.Window && !Window.Open(Options.Panel, Options.RecordPath, &Result.Error)) {
        return false;
    }
    Player.KeepPictures = Options.KeepPictures;
    return SwitchOn(nullptr);
}

bool SESSION::SwitchOn(const CARRIED* Before)
{
    BOOT_OPTIONS Machine;
    Machine.Board = Options.Board;
    Machine.Seed = Options.Seed;
    Machine.Source = Options.Source;
    Machine.Generation = Options.Generation;
    Machine.Panel = Options.Panel;
    Machine.VirtualClock = Options.Script.has_value();
    Machine.WithNetwork = Options.WithNetwork;
    Machine.Folder = Options.Folder;
    Machine.EchoConsoles = Options.EchoConsoles;
    Machine.TimerAtStart = Options.TimerAtStart;
    Machine.TimerPeriod = Options.TimerPeriod;
    Machine.CountAtStart = Options.CountAtStart;
    Machine.RoomyTextPictures = Options.RoomyTextPictures;
    Machine.ArtworkPack = Options.ArtworkPack != nullptr ? Options.ArtworkPack : gArtworkPack;
    Machine.ArtworkPackSize = Options.ArtworkPack != nullptr ? Options.ArtworkPackSize : gArtworkPackSize;
    Boot = std::make_unique<BOOT>(Machine);
    Boot->Complaints.Quiet = !Options.EchoConsoles;
    Boot->Events.OldestFirst = Options.GroupsOldestFirst;
    if (Before != nullptr) {
        Boot->Clock = Before->Clock;
        Boot->Trace = Before->Trace;
        Boot->Crossing.Overrides = Before->Overrides;
        Boot->Pointer.State = Before->Pointer;
    } else {
        Boot->Trace.Keep = Options.KeepTrace;
        Boot->Trace.Pool = Options.TracePool;
        Boot->Trace.Blts = Options.TraceBlts;
        Boot->Trace.File = Options.TraceFile;
    }
    Boot->Trace.Clock = &Boot->Clock;
    Boot->Crossing.Listener = {.BeginTurn = OnTurn, .Stalled = Options.Window ? OnStall : nullptr, .Context = this};
    Boot->Pool.FillLimit = Options.PoolFillLimit;
    Boot->Pool.TraceOwners = Options.TracePool;
    Boot->Events.StandsInTurns = Options.Window;
    const EFI_STATUS Status = Boot->InstallBoard();
    if (EfiError(Status)) {
        return Fail("the board's services can't be installed: " + FormatStatus(Status));
    }
    if (Before != nullptr) {
        Player.HideProtocols(*Boot);
        Player.PrepareBoard(*Boot);
        for (UINT8 Fan = 0; Fan < gFanItemCount; Fan++) {
            (void)PutBoardSetting(static_cast<UINT8>(gFirstFanItem + Fan), &Before->Settings[Fan]);
        }
    }
    return true;
}

bool SESSION::Reset()
{
    CARRIED Before = {.Clock = Boot->Clock,
                      .Trace = std::move(Boot->Trace),
                      .Overrides = Boot->Crossing.Overrides,
                      .Pointer = Boot->Pointer.State,
                      .Settings = {}};
    for (UINT8 Fan = 0; Fan < gFanItemCount; Fan++) {
        (void)ReadBoardSetting(static_cast<UINT8>(gFirstFanItem + Fan), &Before.Settings[Fan]);
    }
    CollectFromBoot();
    return SwitchOn(&Before);
}

bool SESSION::StartOnce()
{
    const EFI_HANDLE Image = Boot->BeginStart();
    std::optional<SHELL_COMMAND> Shell;
    if (Options.ShellArguments) {
        Shell.emplace(*Options.ShellArguments);
        Shell->Install(Boot->Handles, Image);
    }
    IMAGE_ENTRY_POINT Entry = Options.Entry;
    VOID* Loaded = nullptr;
    if (Entry == nullptr) {
        const std::string Path = Options.ImagePath.empty() ? FindConsoleImage() : Options.ImagePath;
        if (Path.empty()) {
            return Fail("the console's image libventara-console.so isn't beside the program");
        }
        Loaded = LoadImage(Path, &Entry, &Result.Error);
        if (Loaded == nullptr) {
            return false;
        }
    }
    if (Boot->Trace.IsOn()) {
        TRACE_LINE(&Boot->Trace, "Start").Text("board", std::string_view(Options.Board)).Number("seed", Options.Seed);
    }
    Boot->Pool.FailFrom = Options.PoolLimit;
    Boot->Pool.FailOnly = Options.PoolFail;
    Boot->Pool.Refuses = Options.Failures.Allocation;
    Boot->Pool.RefusesContext = Options.Failures.Context;
    Boot->Crossing.Overrides.Plan = Options.Failures;
    const UINTN Mark = Boot->Events.MarkNow();
    const EFI_STATUS Status = Entry(Image, &Boot->ConsoleTable);
    Boot->Pool.FailFrom = 0;
    Boot->Pool.FailOnly = 0;
    Boot->Pool.Refuses = nullptr;
    Boot->Crossing.Overrides.Plan = {};
    if (Shell) {
        Shell->Uninstall(Boot->Handles, Image);
    }

    UINT64 Bytes = 0;
    const std::vector<POOL_BLOCK> Held = Boot->Pool.Held(Boot->Trace.Start);
    for (const POOL_BLOCK& Block : Held) {
        Bytes += Block.Size;
        // Its owners are told while their image is still there.
        Result.Leaks.push_back({Boot->Trace.Start, Block, DescribeBlock(Block)});
    }
    UnloadImage(Loaded);
    Result.OpenEvents += Boot->Events.Abandon(Mark);
    if (Boot->Trace.IsOn()) {
        TRACE_LINE(&Boot->Trace, "Return").Status(Status).Number("blocks", Held.size()).Number("bytes", Bytes);
    }
    Result.Ran = true;
    Result.Turns = Boot->Trace.Turn;
    Result.Statuses.push_back(Status);
    if (Result.Status == EFI_SUCCESS) {
        Result.Status = Status;
    }
    return true;
}

VOID SESSION::BeginTurn()
{
    if (Options.Window) {
        Window.BeginTurn(*Boot);
    }
    if (Options.Script) {
        Player.BeginTurn(*Boot);
    }
    if ((gStopRequested != 0 || (Options.Window && Window.IsClosed())) && Boot->Consoles.Keys.empty()) {
        Boot->Consoles.Press(SCAN_ESC, 0);
    }
}

// The boot ends here.
VOID SESSION::CollectFromBoot()
{
    Result.OutputText += Boot->Consoles.OutputText;
    Result.ErrorText += Boot->Consoles.ErrorText;
    Result.TakenHome += Boot->TakenHome;
    if (Options.KeepDisplay) {
        Boot->SettleDisplay();
        Result.Display = Boot->Display.TakeWords();
    }
    // The board's services go first: they may be complained of.
    Boot->RemoveBoard();
    Result.Complaints.insert(Result.Complaints.end(), Boot->Complaints.Lines.begin(), Boot->Complaints.Lines.end());
    Boot.reset();
}

VOID SESSION::Run()
{
    if (Prepare()) {
        Player.RunBeforeFirstStart(*Boot);
        bool On = StartOnce();
        while (On && Options.Script) {
            const PLAYER_NEXT Next = Player.RunAfterReturn(*Boot);
            if (Next == NEXT_END) {
                break;
            }
            On = Next == NEXT_START ? StartOnce() : Reset();
        }
    }
    if (Boot != nullptr) {
        Result.Trace = std::move(Boot->Trace.Lines);
        CollectFromBoot();
    }
    Result.Pictures = std::move(Player.Pictures);
    if (Result.Error.empty() && !Player.Error.empty()) {
        Result.Error = Player.Error;
        Result.ScriptError = true;
    }
    if (!Window.Close() && Result.Error.empty()) {
        Result.Error = Options.RecordPath + " couldn't be written";
    }
}

} // namespace

SESSION_RESULT RunSession(const SESSION_OPTIONS& Options)
{
    SESSION_RESULT Result;
    SESSION Session(Options, Result);
    Session.Run();
    return Result;
}

VOID RequestStop() { gStopRequested = 1; }
