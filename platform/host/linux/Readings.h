// Readings beside the console's thread: a thread for each chip reads its sensors again and again, and whoever asks gets
// what was read last. A chip that takes its time, or never answers, holds up neither the console nor another chip. One
// whose driver is loaded again is followed to its new folder.
#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "platform/host/linux/Hwmon.h"

struct READINGS {
    // Reads these sensors four times a second from now on, and waits for the first round, for a second at most. A value
    // that is older than StaleAfter isn't one.
    READINGS(const std::vector<SENSOR>& Sensors, std::chrono::milliseconds StaleAfter);
    // Doesn't wait for a chip that hangs.
    ~READINGS();
    READINGS(const READINGS&) = delete;
    READINGS& operator=(const READINGS&) = delete;

    // The last value of a sensor, by its place in the list. False when it couldn't be read or is too old.
    bool Last(UINTN Index, INT64* Value) const;

private:
    struct SHARED;
    std::shared_ptr<SHARED> mShared; // with the threads, one of which may outlive this
};
