// The operations that the console can call across the firmware's tables, under the names that the trace writes and
// scripts use. Whatever else there is to say of an operation stands in its row of the table in Calls.cpp.
#pragma once

#include <span>
#include <string_view>

#include "uefi/Base.h"

enum CALL : UINT8 {
    CALL_GET_MEMORY_MAP,
    CALL_ALLOCATE_POOL,
    CALL_FREE_POOL,
    CALL_CREATE_EVENT,
    CALL_CREATE_EVENT_EX,
    CALL_SET_TIMER,
    CALL_WAIT_FOR_EVENT,
    CALL_SIGNAL_EVENT,
    CALL_CLOSE_EVENT,
    CALL_HANDLE_PROTOCOL,
    CALL_LOCATE_HANDLE,
    CALL_OPEN_PROTOCOL,
    CALL_CLOSE_PROTOCOL,
    CALL_LOCATE_PROTOCOL,
    CALL_GET_NEXT_MONOTONIC_COUNT,
    CALL_STALL,
    CALL_GET_TIME,
    CALL_GET_VARIABLE,
    CALL_SET_VARIABLE,
    CALL_OUTPUT_STRING,
    CALL_CLEAR_SCREEN,
    CALL_READ_KEY_STROKE,
    CALL_BLT,
    CALL_STRING_TO_IMAGE,
    CALL_GET_TIMER_VALUE,

    CALL_INITIALIZE,
    CALL_GET_FAN_KIND,
    CALL_GET_ITEM_STRING,
    CALL_GET_ITEM_VALUE,
    CALL_GET_FAN_4_SETTING, // a pair for each fan, in the order of the service's slots
    CALL_SET_FAN_4_SETTING,
    CALL_GET_FAN_5_SETTING,
    CALL_SET_FAN_5_SETTING,
    CALL_GET_FAN_6_SETTING,
    CALL_SET_FAN_6_SETTING,
    CALL_GET_FAN_7_SETTING,
    CALL_SET_FAN_7_SETTING,
    CALL_GET_FAN_8_SETTING,
    CALL_SET_FAN_8_SETTING,
    CALL_GET_FAN_9_SETTING,
    CALL_SET_FAN_9_SETTING,
    CALL_GET_FAN_10_SETTING,
    CALL_SET_FAN_10_SETTING,
    CALL_LOAD_DEFAULT_FAN_SETTINGS,
    CALL_SET_ALL_FANS_FULL_SPEED,
    CALL_RESTORE_FAN_SETTINGS,
    CALL_GET_CURSOR_STATE,
    CALL_SET_CURSOR_LIMITS,
    CALL_CLOSE_CURSOR,
    CALL_FLOAT_TO_STRING,
    CALL_GET_FILE_SECTION,
    CALL_GET_ARTWORK_SECTION,
    CALL_CONFIGURE,
    CALL_CONVERT_JPEG,
    CALL_CONVERT_BMP,
    CALL_GET_FIRMWARE_GENERATION,
    CALL_CREATE_MESSAGE_BOX,
    CALL_UPDATE_MESSAGE_BOX,
    CALL_DRAW_MESSAGE_BOX,
    CALL_DRAW_LINE,

    CALL_COUNT,
};

const char* NameCall(CALL Call);
// False for an unknown name.
bool FindCall(std::string_view Name, CALL* Call);
// The error statuses that it may give, by the UEFI specification or as far as the contract of the board's services leaves
// them open; none for an operation that gives no status.
std::span<const EFI_STATUS> StatusesOf(CALL Call);
inline bool CallHasStatus(CALL Call) { return !StatusesOf(Call).empty(); }
