#include "platform/host/Calls.h"

#include <iterator>

namespace {

struct CALL_FACTS {
    CALL Call;
    const char* Name;
    bool HasStatus;
};

constexpr CALL_FACTS gCalls[] = {
    {CALL_START, "Start", false},
    {CALL_RETURN, "Return", false},
    {CALL_GET_MEMORY_MAP, "GetMemoryMap", true},
    {CALL_ALLOCATE_POOL, "AllocatePool", true},
    {CALL_FREE_POOL, "FreePool", true},
    {CALL_CREATE_EVENT, "CreateEvent", true},
    {CALL_CREATE_EVENT_EX, "CreateEventEx", true},
    {CALL_SET_TIMER, "SetTimer", true},
    {CALL_WAIT_FOR_EVENT, "WaitForEvent", true},
    {CALL_SIGNAL_EVENT, "SignalEvent", true},
    {CALL_CLOSE_EVENT, "CloseEvent", true},
    {CALL_HANDLE_PROTOCOL, "HandleProtocol", true},
    {CALL_LOCATE_HANDLE, "LocateHandle", true},
    {CALL_OPEN_PROTOCOL, "OpenProtocol", true},
    {CALL_CLOSE_PROTOCOL, "CloseProtocol", true},
    {CALL_LOCATE_PROTOCOL, "LocateProtocol", true},
    {CALL_GET_NEXT_MONOTONIC_COUNT, "GetNextMonotonicCount", true},
    {CALL_STALL, "Stall", true},
    {CALL_GET_TIME, "GetTime", true},
    {CALL_GET_VARIABLE, "GetVariable", true},
    {CALL_SET_VARIABLE, "SetVariable", true},
    {CALL_OUTPUT_STRING, "OutputString", true},
    {CALL_CLEAR_SCREEN, "ClearScreen", true},
    {CALL_READ_KEY_STROKE, "ReadKeyStroke", true},
    {CALL_BLT, "Blt", true},
    {CALL_STRING_TO_IMAGE, "StringToImage", true},
    {CALL_GET_TIMER_VALUE, "GetTimerValue", true},
    {CALL_INITIALIZE, "Initialize", true},
    {CALL_GET_FAN_KIND, "GetFanKind", false},
    {CALL_GET_ITEM_STRING, "GetItemString", false},
    {CALL_GET_ITEM_VALUE, "GetItemValue", true},
    {CALL_GET_FAN_4_SETTING, "GetFan4Setting", true},
    {CALL_SET_FAN_4_SETTING, "SetFan4Setting", true},
    {CALL_GET_FAN_5_SETTING, "GetFan5Setting", true},
    {CALL_SET_FAN_5_SETTING, "SetFan5Setting", true},
    {CALL_GET_FAN_6_SETTING, "GetFan6Setting", true},
    {CALL_SET_FAN_6_SETTING, "SetFan6Setting", true},
    {CALL_GET_FAN_7_SETTING, "GetFan7Setting", true},
    {CALL_SET_FAN_7_SETTING, "SetFan7Setting", true},
    {CALL_GET_FAN_8_SETTING, "GetFan8Setting", true},
    {CALL_SET_FAN_8_SETTING, "SetFan8Setting", true},
    {CALL_GET_FAN_9_SETTING, "GetFan9Setting", true},
    {CALL_SET_FAN_9_SETTING, "SetFan9Setting", true},
    {CALL_GET_FAN_10_SETTING, "GetFan10Setting", true},
    {CALL_SET_FAN_10_SETTING, "SetFan10Setting", true},
    {CALL_LOAD_DEFAULT_FAN_SETTINGS, "LoadDefaultFanSettings", true},
    {CALL_SET_ALL_FANS_FULL_SPEED, "SetAllFansFullSpeed", true},
    {CALL_RESTORE_FAN_SETTINGS, "RestoreFanSettings", true},
    {CALL_GET_CURSOR_STATE, "GetCursorState", true},
    {CALL_SET_CURSOR_LIMITS, "SetCursorLimits", true},
    {CALL_CLOSE_CURSOR, "CloseCursor", true},
    {CALL_FLOAT_TO_STRING, "FloatToString", true},
    {CALL_GET_FILE_SECTION, "GetFileSection", true},
    {CALL_GET_ARTWORK_SECTION, "GetArtworkSection", true},
    {CALL_CONFIGURE, "Configure", true},
    {CALL_CONVERT_JPEG, "ConvertJPEGToUgaBltA", true},
    {CALL_CONVERT_BMP, "ConvertBmpToGopBltA", true},
    {CALL_GET_FIRMWARE_GENERATION, "GetFirmwareGeneration", false},
    {CALL_CREATE_MESSAGE_BOX, "CreateMessageBox", true},
    {CALL_UPDATE_MESSAGE_BOX, "UpdateMessageBox", true},
    {CALL_DRAW_MESSAGE_BOX, "DrawMessageBox", true},
    {CALL_DRAW_LINE, "DrawLine", true},
};

constexpr bool RowsStandInOrder()
{
    for (UINTN At = 0; At < std::size(gCalls); At++) {
        if (gCalls[At].Call != At) {
            return false;
        }
    }
    return std::size(gCalls) == CALL_COUNT;
}
static_assert(RowsStandInOrder());

} // namespace

const char* NameCall(CALL Call) { return gCalls[Call].Name; }

bool FindCall(std::string_view Name, CALL* Call)
{
    for (const CALL_FACTS& Facts : gCalls) {
        if (Name == Facts.Name) {
            *Call = Facts.Call;
            return true;
        }
    }
    return false;
}

bool CallHasStatus(CALL Call) { return gCalls[Call].HasStatus; }
