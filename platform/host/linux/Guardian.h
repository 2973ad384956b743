// A process beside this one that does something when this one ends without having said that all is well: by a signal, by
// a fault, or because it was killed.
#pragma once

#include <sys/types.h>

#include <functional>

#include "uefi/Base.h"

struct GUARDIAN {
    GUARDIAN() = default;
    ~GUARDIAN() { Dismiss(); }
    GUARDIAN(const GUARDIAN&) = delete;
    GUARDIAN& operator=(const GUARDIAN&) = delete;

    // Starts it, while the process has one thread. False when there is none to be had.
    bool Start(const std::function<VOID()>& AtTheEnd);
    // All is well: it ends and does nothing. May be called when none was started.
    VOID Dismiss();

private:
    int mLine = -1;
    pid_t mChild = -1;
};
