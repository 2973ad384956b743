#include "platform/board/MachineReport.h"

#include "platform/board/ConsoleDisplay.h"
#include "platform/board/FanContract.h"
#include "platform/board/Version.h"
#include "uefi/CpuArch.h"
#include "uefi/Pointers.h"
#include "uefi/TextInputEx.h"

namespace {

constexpr struct {
    const CHAR8* Name;
    const EFI_GUID* Guid;
} gServices[] = {
    {"graphics output", &gEfiGraphicsOutputProtocolGuid},
    {"display's identity (EDID)", &gEfiEdidActiveProtocolGuid},
    {"processor's timer", &gEfiCpuArchProtocolGuid},
    {"font", &gEfiHiiFontProtocolGuid},
    {"single keys (extended text input)", &gEfiSimpleTextInputExProtocolGuid},
    {"simple pointer", &gEfiSimplePointerProtocolGuid},
    {"absolute pointer", &gEfiAbsolutePointerProtocolGuid},
    {"board: readings and settings", &gHwServiceProtocolGuid},
    {"board: pointer", &gCursorServiceProtocolGuid},
    {"board: pictures' decoder", &gImageDecoderProtocolGuid},
    {"board: pictures' files", &gImageLookupProtocolGuid},
    {"board: pictures' sections", &gImageSectionProtocolGuid},
    {"board: message boxes", &gDrawPrimitivesProtocolGuid},
    {"board: arithmetic", &gFloatMathProtocolGuid},
    {"board: the service that is never called", &gRequiredServiceProtocolGuid},
};

constexpr const CHAR8* gFormats[] = {"red first", "blue first", "by masks", "by Blt alone"};

VOID* Locate(const EFI_SYSTEM_TABLE* SystemTable, const EFI_GUID& Guid)
{
    VOID* Interface = nullptr;
    return EfiError(SystemTable->BootServices->LocateProtocol(&Guid, nullptr, &Interface)) ? nullptr : Interface;
}

// Null where the record is there for its font alone, and the console works on the display itself.
const CONSOLE_DISPLAY* FindLayer(const EFI_SYSTEM_TABLE* SystemTable)
{
    const auto* Record = static_cast<const CONSOLE_DISPLAY*>(Locate(SystemTable, gConsoleDisplayGuid));
    const bool Same = Record != nullptr && Record->Graphics == Locate(SystemTable, gEfiGraphicsOutputProtocolGuid);
    return Same ? nullptr : Record;
}

// The last decimal, which is left out where it is nothing.
VOID AddTenth(REPORT_TEXT* Report, UINT64 Tenth)
{
    if (Tenth != 0) {
        AddText(Report, ".");
        AddNumber(Report, Tenth);
    }
}

VOID AddSize(REPORT_TEXT* Report, UINT64 Width, UINT64 Height)
{
    AddNumber(Report, Width);
    AddText(Report, " by ");
    AddNumber(Report, Height);
}

VOID AddMode(REPORT_TEXT* Report, UINT32 Number, const EFI_GRAPHICS_OUTPUT_MODE_INFORMATION& Mode)
{
    AddText(Report, "  mode ");
    AddNumber(Report, Number);
    AddText(Report, ": ");
    AddSize(Report, Mode.HorizontalResolution, Mode.VerticalResolution);
    AddText(Report, ", ");
    AddText(Report, Mode.PixelFormat <= PixelBltOnly ? gFormats[Mode.PixelFormat] : "of another format");
    AddText(Report, ", ");
    AddNumber(Report, Mode.PixelsPerScanLine);
    AddText(Report, " a row\n");
}

VOID AddDisplay(REPORT_TEXT* Report, const EFI_SYSTEM_TABLE* SystemTable)
{
    AddText(Report, "\nDisplay\n");
    auto* Graphics = static_cast<EFI_GRAPHICS_OUTPUT_PROTOCOL*>(Locate(SystemTable, gEfiGraphicsOutputProtocolGuid));
    if (Graphics == nullptr) {
        AddText(Report, "  none\n");
        return;
    }
    AddText(Report, "  now in\n");
    AddMode(Report, Graphics->Mode->Mode, *Graphics->Mode->Info);
    if (const CONSOLE_DISPLAY* Layer = FindLayer(SystemTable)) {
        AddText(Report, "  by a layer, on ");
        AddSize(Report, Layer->PanelWidth, Layer->PanelHeight);
        AddText(Report, ": the console is ");
        AddSize(Report, Layer->Width, Layer->Height);
        AddText(Report, " from ");
        AddNumber(Report, Layer->X);
        AddText(Report, ", ");
        AddNumber(Report, Layer->Y);
        AddText(Report, "\n");
    }
    AddText(Report, "  offers\n");
    for (UINT32 Number = 0; Number < Graphics->Mode->MaxMode; Number++) {
        UINTN Size = 0;
        EFI_GRAPHICS_OUTPUT_MODE_INFORMATION* Mode = nullptr;
        if (!EfiError(Graphics->QueryMode(Graphics, Number, &Size, &Mode)) && Mode != nullptr) {
            AddMode(Report, Number, *Mode);
            (void)SystemTable->BootServices->FreePool(Mode);
        }
    }
}

VOID AddCurve(REPORT_TEXT* Report, const FAN_SETTING& Setting, FAN_CONTROL Control)
{
    for (const CURVE_NODE& Node : CurveOf(Setting).Nodes) {
        AddText(Report, ", ");
        AddNumber(Report, static_cast<UINT64>(DegreesOfColumn(Node.Column)));
        AddText(Report, " C ");
        const auto Duty = static_cast<UINT64>(DutyOfLevel(Node.Level, Control));
        AddNumber(Report, Duty / 10);
        AddTenth(Report, Duty % 10);
        AddText(Report, " %");
    }
}

VOID AddFan(REPORT_TEXT* Report, BOARD_SOURCE* Board, UINT8 Item)
{
    const FAN_CONTROL Control = ControlOfFan(Board->FanKind, Item);
    FAN_SETTING Setting = {};
    if (Control == CONTROL_NONE || EfiError(Board->GetFan(Board, Item, &Setting))) {
        AddText(Report, ", no setting");
        return;
    }
    if (Control != CONTROL_FIXED_LEVEL) {
        AddText(Report, Setting.CurveEnabled != 0 ? ", curve on" : ", curve off");
        AddCurve(Report, Setting, Control);
    }
    if (Setting.FixedLevel != 0) {
        AddText(Report, ", level ");
        AddNumber(Report, Setting.FixedLevel);
    }
    AddText(Report, ", record ");
    for (UINTN Index = 0; Index < offsetof(FAN_SETTING, Reserved12); Index++) {
        AddHexByte(Report, reinterpret_cast<const UINT8*>(&Setting)[Index]);
    }
}

VOID AddBoard(REPORT_TEXT* Report, BOARD_SOURCE* Board, UINT64 (*Microseconds)())
{
    AddText(Report, "\nSensors and fans\n");
    for (UINT8 Item = 0; Item < gItemCount; Item++) {
        if (!HasItem(*Board, Item)) {
            continue;
        }
        AddText(Report, "  ");
        AddNumber(Report, Item);
        AddText(Report, " ");
        AddText(Report, Board->NameOf(Board, Item));
        AddText(Report, ": ");
        if (Board->Advance != nullptr) {
            Board->Advance(Board, Microseconds());
        }
        UINT64 Value = 0;
        if (EfiError(Board->Read(Board, Item, &Value))) {
            AddText(Report, "can't be read");
        } else {
            AddNumber(Report, Value);
            AddText(Report, IsFanItem(Item) ? " rpm" : Item < gFirstFanItem ? " C" : " mV");
        }
        if (IsFanItem(Item)) {
            AddFan(Report, Board, Item);
        }
        AddText(Report, "\n");
    }
}

VOID AddService(REPORT_TEXT* Report, const CHAR8* Name, bool Found)
{
    AddText(Report, Found ? "  yes  " : "  no   ");
    AddText(Report, Name);
    AddText(Report, "\n");
}

} // namespace

VOID WriteMachineReport(REPORT_TEXT* Report, const EFI_SYSTEM_TABLE* SystemTable, BOARD_SOURCE* Board,
                        UINT64 (*Microseconds)(), VOID (*Describe)(REPORT_TEXT* Report))
{
    AddText(Report, "Ventara ");
    AddText(Report, gVentaraVersion);
    AddText(Report, "\n\nFirmware\n  ");
    AddText(Report, SystemTable->FirmwareVendor);
    AddText(Report, ", revision ");
    AddNumber(Report, SystemTable->FirmwareRevision);
    AddText(Report, ", UEFI ");
    AddNumber(Report, SystemTable->Hdr.Revision >> 16);
    AddText(Report, ".");
    AddNumber(Report, (SystemTable->Hdr.Revision & 0xFFFF) / 10);
    AddTenth(Report, (SystemTable->Hdr.Revision & 0xFFFF) % 10);
    AddText(Report, "\n");
    AddDisplay(Report, SystemTable);
    if (Describe != nullptr) {
        Describe(Report);
    }
    AddBoard(Report, Board, Microseconds);
    AddText(Report, "\nServices\n");
    for (const auto& Service : gServices) {
        AddService(Report, Service.Name, Locate(SystemTable, *Service.Guid) != nullptr);
    }
    AddService(Report, "layer over the display", FindLayer(SystemTable) != nullptr);
}
