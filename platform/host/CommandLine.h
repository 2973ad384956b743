// The command line of `ventara`.
#pragma once

#include <string>
#include <vector>

#include "platform/host/Session.h"
#include "platform/host/linux/LinuxBoard.h"

enum COMMAND_KIND : UINT8 { COMMAND_RUN, COMMAND_HELP, COMMAND_VERSION, COMMAND_LIST_SENSORS };

struct COMMAND {
    COMMAND_KIND Kind = COMMAND_RUN;
    SESSION_OPTIONS Session;
    LINUX_BOARD_OPTIONS Linux; // of the board "linux", and of --list-sensors
    std::string ScriptPath;    // empty: no script
    std::string TracePath;
    std::string ScreenshotPath;
};

// Arguments without the program's name. False with a line for the user in *Error.
bool ParseCommandLine(const std::vector<std::string>& Arguments, COMMAND* Command, std::string* Error);

// What --help and --version print.
std::string DescribeOptions();
std::string DescribeVersion();
