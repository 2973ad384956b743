#include <cstdlib>
#include <iterator>

#include "tests/faults/FaultBench.h"

// A click: there, press, and release within the click time. What follows has the turns in which the reaction ends.
#define CLICK(X, Y) "pointer " #X " " #Y "\nturn 2\nleft down\nturn 2\nadvance 100000\nleft up\nturn 3\n"
#define DRAG(X, Y, TO_X, TO_Y) \
    "pointer " #X " " #Y "\nturn\nleft down\nturn 3\npointer " #TO_X " " #TO_Y "\nturn 3\nadvance 200000\nleft up\nturn 3\n"

// The last lines of a use: two tabs, a thumb taken and let go, which paints the scales anew, then the pointer off
// everything and time for every readout and gauge to have its turn.
#define LAST_LINES                                                                                                   \
    CLICK(800, 150) DRAG(397, 402, 397, 403) DRAG(397, 322, 397, 323) CLICK(320, 150) "pointer 20 760\nturn 20\ntick 45\n"
#define SETTLE "# settle\n" LAST_LINES

namespace {

#define SHORT_USE                                                                                                    \
    "pointer 512 400\ntick 2\n" CLICK(420, 150) CLICK(296, 242) CLICK(800, 150) DRAG(397, 400, 397, 320)             \
    CLICK(320, 150) DRAG(397, 457, 427, 427) "key f\nturn\nkey d\nturn\n" CLICK(71, 349)                             \
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
    {"Buttons", "full", 0, "turn 2\n" CLICK(741, 570) CLICK(894, 570) "pointer 600 570\nturn 3\n" SETTLE},
    {"CheckBox", "full", 0, "turn 2\n" CLICK(296, 242) CLICK(296, 242) SETTLE},
    {"Node", "full", 0, "turn 2\n" DRAG(397, 457, 427, 427) DRAG(667, 277, 700, 300) SETTLE},
    {"Thumb", "full", 0, "turn 2\n" CLICK(800, 150) DRAG(397, 400, 397, 320) SETTLE},
    {"Tabs", "full", 0, "turn 2\n" CLICK(420, 150) CLICK(620, 150) CLICK(900, 150) SETTLE},
    {"Sources", "full", 0, "turn 2\n" CLICK(71, 349) "tick 3\n" CLICK(71, 312) SETTLE},
    // Without a page there is no wait at its end, so time goes another way and with it the readings: no settling.
    {"AboutPage", "full", 0, "turn 2\n" CLICK(805, 94) "pointer 512 400\nturn 3\nkey enter\nturn 5\n" LAST_LINES},
    {"HelpPage", "full", 0, "turn 2\n" CLICK(887, 94) "pointer 512 400\nturn 3\nkey esc\nturn 5\n" LAST_LINES},
    {"Keys", "full", 0, "turn 2\nkey f\nturn 2\nkey d\nturn 2\nkey c\nturn 2\n" SETTLE},
    {"Watching", "full", 0, "pointer 1020 765\ntick 40\npointer 0 0\nturn 3\npointer 1023 767\nturn 3\n" SETTLE},
    {"Restart", "full", 0, "tick 5\n" CLICK(420, 150) "key esc\nturn\nstart\ntick 3\n" SHORT_USE},
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
