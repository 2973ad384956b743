// What the benchmark measures: one line a piece of work, with the reference that its time is told in, its goal, and the
// same work as other libraries do it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/Pictures.h"

// What a time is divided by for the table.
enum BENCH_UNIT {
    BENCH_UNIT_NONE,  // a reference itself
    BENCH_UNIT_T,     // one memcpy of 391 x 241 pixels
    BENCH_UNIT_R,     // the same rows into a surface 1024 pixels wide
    BENCH_UNIT_F,     // the two copies that a frame of a drag can't do without: grid to canvas, canvas to screen
    BENCH_UNIT_PIXEL, // nanoseconds a pixel
    BENCH_UNIT_CALL,  // nanoseconds a call
};

struct BENCH_WORK {
    std::string Name;
    BENCH_UNIT Unit;
    double Goal;     // in that unit; 0 where there is none
    double Quantity; // calls, or pixels for BENCH_UNIT_PIXEL, of one run
    std::function<void()> Run;
    std::string PeerOf; // for a peer: the name of the work that it is a peer of, and Name is the library's
};

// Our own work, references first.
void AddOwnWork(std::vector<BENCH_WORK>& Work, BENCH_PICTURES& Pictures);
// The same by the libraries that were there at the build, and the names of those that weren't.
void AddPeerWork(std::vector<BENCH_WORK>& Work, BENCH_PICTURES& Pictures);
std::vector<std::string> MissingPeers();
