#include <cstdlib>
#include <iterator>

#include "tests/faults/FaultBench.h"

// A click: there, press, and release within the click time. What follows has the turns in which the reaction ends.
#define CLICK(X, Y) "pointer " #X " " #Y "\nturn 2\nleft down\nturn 2\nadvance 100000\nleft up\nturn 3\n"
#define DRAG(X, Y, TO_X, TO_Y) \
    "pointer " #X " " #Y "\nturn\nleft down\nturn 3\npointer " #TO_X " " #TO_Y "\nturn 3\nadvance 200000\nleft up\nturn 3\n"

// Readings that don't go with the time: where a failure keeps a page from opening, the page's wait is missing, and the
// picture should not tell. What changes by itself is watched by one scenario without them.
#define READINGS(TEMPERATURE, SPEED, VOLTAGE)                                                                        \
    "reading 0 " TEMPERATURE "\nreading 1 " TEMPERATURE "\nreading 2 " TEMPERATURE "\nreading 4 " SPEED               \
    "\nreading 5 " SPEED "\nreading 6 " SPEED "\nreading 7 " SPEED "\nreading 8 " SPEED "\nreading 9 " SPEED           \
    "\nreading 10 " SPEED "\nreading 11 " VOLTAGE "\nreading 12 " VOLTAGE "\nreading 13 " VOLTAGE                      \
    "\nreading 14 " VOLTAGE "\nreading 15 " VOLTAGE "\nreading 16 " VOLTAGE "\nreading 17 " VOLTAGE "\n"
#define FIRST_LINES READINGS("0", "0", "1000") "turn 2\n"

// The last lines of a use: two tabs, a thumb taken and let go, which paints the scales anew, a source entered and left,
// which writes the sources' names, then the pointer off everything, other readings, and time for every readout and gauge
// to have its turn.
#define SETTLE                                                                                                       \
    "# settle\n" CLICK(800, 150) DRAG(397, 402, 397, 403) DRAG(397, 322, 397, 323) CLICK(320, 150)                   \
    "pointer 71 386\nturn 3\npointer 20 760\nturn 20\n" READINGS("57", "1234", "1100") "tick 45\n"

namespace {

constexpr UINTN gGaugeTop = 624; // first row of the voltage gauges

#define USE_OF_CONTROLS                                                                                              \
    "pointer 512 400\ntick 2\n" CLICK(420, 150) CLICK(296, 242) CLICK(800, 150) DRAG(397, 400, 397, 320)             \
    CLICK(320, 150) DRAG(397, 457, 427, 427) "key f\nturn\nkey d\nturn\n" CLICK(71, 349)
#define SHORT_USE                                                                                                    \
    USE_OF_CONTROLS                                                                                                  \
    "pointer 805 94\nturn 2\nleft down\nturn 2\nadvance 100000\nleft up\nturn 4\nkey enter\nturn 4\ntick 2\n"

} // namespace

const SCENARIO gStarts[] = {
    {"StartOnTheFullBoard", "full", 0, SHORT_USE},
    {"StartOnGeneration4", "full", 4, SHORT_USE},
    {"StartOnKind0", "kind0", 0, SHORT_USE},
    {"StartOnKind2", "kind2", 0, SHORT_USE},
    {"StartOnTheSmallBoard", "small", 0, SHORT_USE},
    {"StartOnTheSecondSource", "second-source", 0, SHORT_USE},
    {"StartOnTheBareBoard", "bare", 0, SHORT_USE},
};
const UINTN gStartCount = std::size(gStarts);

const SCENARIO gUses[] = {
    {"Buttons", "full", 0, FIRST_LINES CLICK(741, 570) CLICK(894, 570) "pointer 600 570\nturn 3\n" SETTLE},
    {"CheckBox", "full", 0, FIRST_LINES CLICK(296, 242) CLICK(296, 242) SETTLE},
    {"Node", "full", 0, FIRST_LINES DRAG(397, 457, 427, 427) DRAG(667, 277, 700, 300) SETTLE},
    {"Thumb", "full", 0, FIRST_LINES CLICK(800, 150) DRAG(397, 400, 397, 320) SETTLE},
    {"Tabs", "full", 0, FIRST_LINES CLICK(420, 150) CLICK(620, 150) CLICK(900, 150) SETTLE},
    {"Sources", "full", 0, FIRST_LINES CLICK(71, 349) "tick 3\n" CLICK(71, 312) SETTLE},
    // A page that doesn't open lets Enter through, and nothing happens. But the gauges are then at another point of their
    // rotation, and which of two values a gauge was painted with last goes by that.
    {"AboutPage", "full", 0, FIRST_LINES CLICK(805, 94) "pointer 512 400\nturn 3\nkey enter\nturn 5\n" SETTLE, gGaugeTop},
    {"HelpPage", "full", 0, FIRST_LINES CLICK(887, 94) "pointer 512 400\nturn 3\nkey enter\nturn 5\n" SETTLE, gGaugeTop},
    {"Keys", "full", 0, FIRST_LINES "key f\nturn 2\nkey d\nturn 2\nkey c\nturn 2\n" SETTLE},
    {"Watching", "full", 0, "turn 2\npointer 1020 765\ntick 40\npointer 0 0\nturn 3\npointer 1023 767\nturn 3\n" SETTLE},
    // The pointer keeps to the frame in the first start. Where it left a mark beside that, because the ground couldn't be
    // painted back, the second start would come upon it and keep it as a part of the screen.
    {"Restart", "full", 0, "pointer 420 150\n" FIRST_LINES CLICK(420, 150) "key esc\nturn\nstart\ntick 3\n" USE_OF_CONTROLS SETTLE, gGaugeTop},
};
const UINTN gUseCount = std::size(gUses);

const SCENARIO& FindScenario(const std::string& Name)
{
    for (const SCENARIO& Scenario : gStarts) {
        if (Name == Scenario.Name) {
            return Scenario;
        }
    }
    for (const SCENARIO& Scenario : gUses) {
        if (Name == Scenario.Name) {
            return Scenario;
        }
    }
    std::abort();
}
