// A folder of the host as a volume: what a program of the firmware reads and writes there are the host's own files.
//
// Its root alone. A file is opened to see that it is there, or created and written: one that is there can't be. Nobody
// reads one.
#pragma once

#include <string>

#include "uefi/FileSystem.h"

struct FOLDER {
    EFI_SIMPLE_FILE_SYSTEM_PROTOCOL FileSystem; // first, so that the protocol's address is the record's
    std::string Path;

    explicit FOLDER(const std::string& ThePath);
    FOLDER(const FOLDER&) = delete;
    FOLDER& operator=(const FOLDER&) = delete;
};
