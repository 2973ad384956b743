// A board opened on a model of a machine, for tests: time, readings, settings, and what became of the chip.
#pragma once

#include <cstdio>
#include <optional>

#include "platform/board/FanContract.h"
#include "platform/board/chips/ChipBoard.h"
#include "tests/chips/ChipModel.h"

struct CHIP_BENCH {
    MACHINE_MODEL Machine;
    CHIP_REPORT Report = {};
    BOARD_SOURCE* Board = nullptr;
    UINT64 Now = 1000000;

    bool Open(bool SetFans = false, const BOARD_WISHES* Wishes = nullptr)
    {
        const CHIP_BOARD_OPTIONS Options = {SetFans, Wishes};
        Board = OpenChipBoard(&Machine.Ports, &Options, &Report);
        return Board != nullptr;
    }
    // A reading of now; nothing for an item that isn't there or has no value.
    std::optional<INT64> Read(UINT8 Item)
    {
        UINT64 Value = 0;
        if (Board == nullptr || !HasItem(*Board, Item)) {
            return std::nullopt;
        }
        Board->Advance(Board, Now += gReadingPeriod);
        return Board->Read(Board, Item, &Value) == EFI_SUCCESS ? std::optional(static_cast<INT64>(Value))
                                                               : std::nullopt;
    }
    FAN_SETTING Get(UINT8 Item)
    {
        FAN_SETTING Setting = {};
        (void)Board->GetFan(Board, Item, &Setting);
        return Setting;
    }
    EFI_STATUS Set(UINT8 Item, const FAN_SETTING& Setting) { return Board->SetFan(Board, Item, &Setting); }
    bool Reports(const std::string& Words) const
    {
        std::string Text;
        for (UINTN Line = 0; Line < Report.Count; Line++) {
            for (const CHAR16* At = Report.Lines[Line]; *At != 0; At++) {
                Text += static_cast<char>(*At);
            }
        }
        return Text.find(Words) != std::string::npos;
    }
    // What a chip holds but for its selected bank, and what is different now, a register a line.
    std::string Held(UINT8 Chip = 0) const
    {
        const CHIP_MODEL& Of = Machine.Chips[Chip];
        std::string Bytes(reinterpret_cast<const char*>(Of.Configuration), sizeof(Of.Configuration));
        Bytes.append(reinterpret_cast<const char*>(Of.Monitor), sizeof(Of.Monitor));
        Bytes[sizeof(Of.Configuration) + Of.BankAt()] &= Of.Is(TRAIT_ITE) ? 0x1F : 0;
        return Bytes;
    }
    std::string Differences(const std::string& Before, UINT8 Chip = 0) const
    {
        const std::string Bytes = Held(Chip);
        std::string Text;
        for (UINTN At = 0; At < Bytes.size(); At++) {
            char Line[40] = {};
            if (Bytes[At] != Before[At]) {
                std::snprintf(Line, sizeof(Line), "%04llX: %02X was %02X\n", At, Bytes[At] & 0xFF, Before[At] & 0xFF);
            }
            Text += Line;
        }
        return Text;
    }
    ~CHIP_BENCH() { CloseChipBoard(); }
};

inline FAN_SETTING Level(UINT16 Number)
{
    FAN_SETTING Setting = {};
    Setting.FixedLevel = Number;
    return Setting;
}
inline FAN_SETTING Curve(UINT8 Enabled, CURVE Nodes, UINT16 Number)
{
    FAN_SETTING Setting = Level(Number);
    Setting.CurveEnabled = Enabled;
    PutCurve(&Setting, Nodes);
    return Setting;
}
