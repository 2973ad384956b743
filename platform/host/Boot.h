// One boot of the hosted machine: everything that a firmware owns from power-on to reset, and the system tables in front
// of it.
//
// There are two tables over the same firmware. FirmwareTable is for those who belong to it, such as the board's services.
// ConsoleTable is for the console: the operations of platform/host/Calls.h can be made to fail there, and those that don't
// come in hundreds are traced (docs/trace.md says which); CopyMem, SetMem and what the console never calls go straight
// through. The protocols of the board that are found through it stand in front of the true ones.
//
//     BOOT Boot({.Board = "small"});
//     if (!EfiError(Boot.InstallBoard())) { Status = Main(Boot.BeginStart(), &Boot.ConsoleTable); }
//
// The tables' functions carry no context, so a process has one boot at a time; the next may begin when it is gone. They find
// it in platform/host/CurrentBoot.h.
#pragma once

#include <string>
#include <vector>

#include "platform/board/BoardServices.h"
#include "platform/display/DisplayLayer.h"
#include "platform/host/Clock.h"
#include "platform/host/Complaints.h"
#include "platform/host/ConsoleTables.h"
#include "platform/host/Consoles.h"
#include "platform/host/Crossing.h"
#include "platform/host/Display.h"
#include "platform/host/Events.h"
#include "platform/host/FirmwareProtocols.h"
#include "platform/host/Folder.h"
#include "platform/host/Handles.h"
#include "platform/host/Machine.h"
#include "platform/host/Pool.h"
#include "platform/host/Trace.h"
#include "platform/host/Variables.h"

struct BOOT_OPTIONS {
    std::string Board = "full"; // of the simulation
    UINT64 Seed = 1;
    BOARD_SOURCE* Source = nullptr; // a board in the simulation's place; outlives the boot
    UINT8 Generation = 0;
    bool VirtualClock = true;
    bool WithNetwork = false;           // a network card among the device paths
    bool EchoConsoles = false;          // ConOut and StdErr reach the program's own streams
    std::vector<EFI_GUID> Hidden = {};  // protocols that aren't there
    const UINT8* ArtworkPack = nullptr; // the pack that the build made, or a test's own
    UINTN ArtworkPackSize = 0;
    UINT64 TimerAtStart = 0;        // what the CPU's timer shows when the machine is switched on
    UINT64 TimerPeriod = 1000000;   // femtoseconds of one of its ticks
    UINT64 CountAtStart = 0;        // and the monotonic count
    bool RoomyTextPictures = false; // see platform/board/TextService.h
    std::string Folder = ".";       // the volume that F12 writes to
    PANEL Panel = {};               // the display; the console sees 1024 by 768 whatever it is
};

struct POINTER_STATE {
    INT64 X = 0;
    INT64 Y = 0;
    UINT8 Left = 0;
    UINT8 Right = 0;
};

// The pointer source that the board's cursor service reads.
struct HOST_POINTER {
    POINTER_SOURCE Source; // first, so that the source's address is the record's
    POINTER_STATE State;
};

struct BOOT {
    COMPLAINTS Complaints;
    CLOCK Clock;
    POOL Pool;
    HANDLES Handles;
    EVENTS Events;
    VARIABLES Variables;
    DISPLAY Display;
    MACHINE Machine;
    CONSOLES Consoles;
    HOST_POINTER Pointer;
    TRACE Trace;
    CROSSING Crossing;
    FIRMWARE_PROTOCOLS Protocols;
    FOLDER Volume;
    std::string TakenHome; // what became of F12, a line each time
    CONSOLE_TABLES Console;

    EFI_SYSTEM_TABLE FirmwareTable;
    EFI_SYSTEM_TABLE ConsoleTable;

    explicit BOOT(const BOOT_OPTIONS& Options);
    BOOT(const BOOT&) = delete;
    BOOT& operator=(const BOOT&) = delete;
    ~BOOT();

    // Installs the board's services of the options. Their status: EFI_INVALID_PARAMETER for an unknown board.
    EFI_STATUS InstallBoard();
    // Takes them away again; what they leave in the pool is complained of. The boot's end does it too.
    VOID RemoveBoard();
    // A handle for a console that is about to start, and the count of its start: pool, turns and events count anew.
    EFI_HANDLE BeginStart();

    // Sends what a display layer still holds back, so that the display shows what the console has drawn.
    VOID SettleDisplay();

    UINT64 MonotonicCount;
    const BOOT_OPTIONS& Options() const { return mOptions; }

private:
    BOOT_OPTIONS mOptions;
    VOID OpenLayer();

    EFI_HANDLE mBoardHandle = nullptr;
    DISPLAY_LAYER* mLayer = nullptr; // null: the console works on the display itself
    UINTN mLayerBlocks = 0;          // the first of the pool, which the layer holds
    EFI_BOOT_SERVICES mBootServices = {};
    EFI_RUNTIME_SERVICES mRuntimeServices = {};
    EFI_SIMPLE_TEXT_INPUT_PROTOCOL mTextInput = {};
    EFI_SIMPLE_TEXT_INPUT_EX_PROTOCOL mTextInputEx = {};
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL mTextOutput = {};
    EFI_SIMPLE_TEXT_OUTPUT_PROTOCOL mErrorOutput = {};
};
