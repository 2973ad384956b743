#include "shell/CommandLine.h"

#include "support/Print.h"
#include "support/Shell.h"

bool gShellConsole = false;

namespace {

// It goes through %s, where a line feed isn't given its carriage return.
constexpr CHAR16 gVersionLine[] = u"Version 0.9.0 Kestrin\r\n";

bool AsksForVersion(const CHAR16* Argument)
{
    return Argument != nullptr && Argument[0] == u'-' && (Argument[1] == u'V' || Argument[1] == u'v') &&
           Argument[2] == 0;
}

} // namespace

bool ParseCommandLine()
{
    CHAR16** Argv = nullptr;
    UINTN Argc = 0;
    gShellConsole = ShellArguments(&Argv, &Argc);
    if (!gShellConsole || Argc != 2 || Argv == nullptr) {
        return true;
    }
    PrintToConsole(u"UseShellFun\t\n");
    if (!AsksForVersion(Argv[1])) {
        return true;
    }
    PrintToConsole(u"%s", gVersionLine);
    return false;
}
