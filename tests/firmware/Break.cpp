// A test image that stands in the starter's place and does what hardened images have to be stopped for: S writes over
// the stack, U adds past the largest number, A reads past an array. B leaves.
#include "platform/firmware/Report.h"
#include "uefi/SystemTable.h"

namespace {

volatile UINTN gLength = 40;
volatile INT32 gLargest = 0x7fffffff;
UINT8 gNumbers[16];

__attribute__((noinline)) VOID WriteOverStack()
{
    UINT8 Room[16];
    volatile UINT8* At = Room;
    for (UINTN Index = 0; Index < gLength; Index++) {
        At[Index] = 0x55;
    }
}

__attribute__((noinline)) INT32 AddPastTheLargest() { return gLargest + 1; }

__attribute__((noinline)) UINT8 ReadPastArray() { return gNumbers[gLength]; }

}

extern "C" EFI_STATUS BreakEntry(EFI_HANDLE, EFI_SYSTEM_TABLE* SystemTable)
{
    EFI_SIMPLE_TEXT_INPUT_PROTOCOL* Keyboard = SystemTable->ConIn;
    Report("break: ready\n");
    for (;;) {
        EFI_INPUT_KEY Key = {};
        if (EfiError(Keyboard->ReadKeyStroke(Keyboard, &Key))) {
            continue;
        }
        switch (Key.UnicodeChar) {
        case u's':
            WriteOverStack();
            break;
        case u'u':
            (void)AddPastTheLargest();
            break;
        case u'a':
            (void)ReadPastArray();
            break;
        case u'b':
            return EFI_SUCCESS;
        default:
            continue;
        }
        Report("break: not stopped\n");
    }
}
