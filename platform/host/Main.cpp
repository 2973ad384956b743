// The command `ventara`: the console on a simulated board or on the machine's own, in a window or under a script.
#include <csignal>
#include <cstdio>

#include "platform/host/CommandLine.h"
#include "platform/host/HostText.h"
#include "platform/host/Png.h"

namespace {

enum EXIT_STATUS : int { EXIT_GOOD = 0, EXIT_CONSOLE_FAILED = 1, EXIT_BAD_USE = 2 };

volatile sig_atomic_t gSignalled = 0;

VOID OnStopSignal(int)
{
    gSignalled = 1;
    RequestStop();
}

VOID Say(const std::string& Line) { std::fprintf(stderr, "%s\n", Line.c_str()); }

// Found out before the session, so that nobody plays one for nothing. An empty path isn't asked for.
bool CanBeWritten(const char* Option, const std::string& Path)
{
    if (Path.empty()) {
        return true;
    }
    FILE* File = std::fopen(Path.c_str(), "ab");
    if (File == nullptr) {
        Say(std::string("ventara: ") + Option + " " + Path + ": expected a file that can be written");
        return false;
    }
    (void)std::fclose(File);
    return true;
}

int RunCommand(COMMAND& Command)
{
    SESSION_OPTIONS& Options = Command.Session;
    if (!Command.ScriptPath.empty()) {
        Options.ScriptName = Command.ScriptPath;
        Options.Script.emplace();
        if (!ReadWholeFile(Command.ScriptPath, &*Options.Script)) {
            Say("ventara: --script " + Command.ScriptPath + ": expected a file that can be read");
            return EXIT_BAD_USE;
        }
        // Before the trace's file is emptied, so that a mistake in the script costs nobody an older trace.
        SCRIPT Script;
        std::string Error;
        if (!ParseScript(Options.ScriptName, *Options.Script, &Script, &Error)) {
            Say(Error);
            return EXIT_BAD_USE;
        }
    }
    if (!CanBeWritten("--record", Options.RecordPath) || !CanBeWritten("--screenshot", Command.ScreenshotPath)) {
        return EXIT_BAD_USE;
    }
    if (!Command.TracePath.empty()) {
        Options.TraceFile = std::fopen(Command.TracePath.c_str(), "w");
        if (Options.TraceFile == nullptr) {
            Say("ventara: --trace " + Command.TracePath + ": expected a file that can be written");
            return EXIT_BAD_USE;
        }
    }
    LINUX_BOARD Linux;
    if (Options.Board == gLinuxBoardName) {
        std::string Error;
        if (!Linux.Find(Command.Linux, &Error)) {
            Say("ventara: " + Error);
            return EXIT_BAD_USE;
        }
        Linux.Open();
        Options.Source = &Linux;
    }
    std::signal(SIGINT, OnStopSignal);
    std::signal(SIGTERM, OnStopSignal);
    const SESSION_RESULT Result = RunSession(Options);
    int Exit = EXIT_GOOD;
    if (Options.Source != nullptr) {
        Linux.Leave(gSignalled != 0);
    }

    if (Options.TraceFile != nullptr) {
        const bool Written = std::ferror(Options.TraceFile) == 0;
        if (std::fclose(Options.TraceFile) != 0 || !Written) {
            Say("ventara: " + Command.TracePath + " couldn't be written");
            Exit = EXIT_CONSOLE_FAILED;
        }
    }
    for (const SESSION_LEAK& Leak : Result.Leaks) {
        Say("ventara: start " + std::to_string(Leak.Start) + " left " + Leak.Description);
    }
    if (Result.Ran && !Command.ScreenshotPath.empty() &&
        !WritePng(Command.ScreenshotPath.c_str(), Result.Display.data(), Options.Panel.Width, Options.Panel.Height)) {
        Say("ventara: " + Command.ScreenshotPath + " couldn't be written");
        Exit = EXIT_CONSOLE_FAILED;
    }
    if (!Result.Complaints.empty()) {
        Exit = EXIT_CONSOLE_FAILED; // they are written where they arise
    }
    if (Result.Status != EFI_SUCCESS) {
        const char* Name = NameStatus(Result.Status);
        Say("ventara: the console returned " + FormatStatus(Result.Status) +
            (Name == nullptr ? "" : std::string(" (EFI_") + Name + ")"));
        Exit = EXIT_CONSOLE_FAILED;
    }
    if (!Result.Error.empty()) {
        Say(Result.ScriptError ? Result.Error : "ventara: " + Result.Error);
        Exit = Result.ScriptError ? EXIT_BAD_USE : EXIT_CONSOLE_FAILED;
    }
    return Exit;
}

int PrintSensors(const LINUX_BOARD_OPTIONS& Options)
{
    LINUX_BOARD Linux;
    std::string Error;
    if (!Linux.Find(Options, &Error)) {
        Say("ventara: " + Error);
        return EXIT_BAD_USE;
    }
    std::fputs(Linux.List().c_str(), stdout);
    return EXIT_GOOD;
}

} // namespace

int main(int Count, char** Words)
{
    COMMAND Command;
    std::string Error;
    if (!ParseCommandLine(std::vector<std::string>(Words + 1, Words + Count), &Command, &Error)) {
        Say("ventara: " + Error);
        return EXIT_BAD_USE;
    }
    switch (Command.Kind) {
    case COMMAND_HELP:
        std::fputs(DescribeOptions().c_str(), stdout);
        return EXIT_GOOD;
    case COMMAND_VERSION:
        std::fputs(DescribeVersion().c_str(), stdout);
        return EXIT_GOOD;
    case COMMAND_LIST_SENSORS:
        return PrintSensors(Command.Linux);
    case COMMAND_RUN:
        break;
    }
    return RunCommand(Command);
}
