#include "tests/gui/ToolkitBench.h"

#include "platform/board/ArtworkPack.h"
#include "shell/contract/Board.h"
#include "shell/Main.h"
#include "support/Pool.h"
#include "tests/host/TraceLines.h"

std::ostream& operator<<(std::ostream& Out, const BLT_CALL& Call)
{
    return Out << "(" << Call.X << ", " << Call.Y << ") " << Call.Width << " by " << Call.Height << ", delta "
               << Call.Delta;
}

VOID HOSTED::SwitchOn(BOOT_OPTIONS Options)
{
    Options.ArtworkPack = gArtworkPack;
    Options.ArtworkPackSize = gArtworkPackSize;
    Boot = std::make_unique<BOOT>(Options);
    Boot->Complaints.Quiet = true;
    Boot->Trace.Keep = true;
    ASSERT_EQ(Boot->InstallBoard(), EFI_SUCCESS);
    RunLibraryConstructors(Boot->BeginStart(), &Boot->ConsoleTable);
    Boot->Trace.Lines.clear();
}

VOID HOSTED::SwitchOff()
{
    RunLibraryDestructors(gImageHandle);
    for (const POOL_BLOCK& Block : Boot->Pool.Held(1)) {
        ADD_FAILURE() << "pool still held: " << DescribeBlock(Block);
    }
    Boot->RemoveBoard();
    for (const std::string& Complaint : Boot->Complaints.Lines) {
        ADD_FAILURE() << "the firmware complains: " << Complaint;
    }
    Boot.reset();
}

VOID TOOLKIT::MakeCore()
{
    ASSERT_EQ(LocateProtocols(), EFI_SUCCESS);
    ASSERT_EQ(CreateGuiCore(), EFI_SUCCESS);
    FillPixels(gGuiCore->Screen, gScreenWidth * gScreenHeight, gScreenFill);
    FillPixels(gGuiCore->Background, gScreenWidth * gScreenHeight, gBackgroundFill);
    Boot->Trace.Lines.clear();
}

VOID TOOLKIT::DestroyCore()
{
    (void)DestroyGuiCore();
    gGuiCore = nullptr;
    ReleasePool(gSavedScreen);
}

std::vector<BLT_CALL> HOSTED::Blts()
{
    std::vector<BLT_CALL> Calls;
    for (const CALL_LINE& Line : CallsNamed(ParseTrace(Boot->Trace.Lines), "Blt")) {
        EXPECT_EQ(Line.Text("status"), "0x0000000000000000");
        Calls.push_back(
            {Line.Number("x"), Line.Number("y"), Line.Number("width"), Line.Number("height"), Line.Number("delta")});
    }
    Boot->Trace.Lines.clear();
    return Calls;
}

std::vector<std::string> HOSTED::Fields(const std::string& Call, const std::string& Field)
{
    std::vector<std::string> Found;
    for (const CALL_LINE& Line : CallsNamed(ParseTrace(Boot->Trace.Lines), Call)) {
        Found.push_back(Line.Text(Field));
    }
    Boot->Trace.Lines.clear();
    return Found;
}

UINT32 ColorOf(PIXEL Pixel) { return UINT32{Pixel.Red} << 16 | UINT32{Pixel.Green} << 8 | Pixel.Blue; }

UINT32 ColorAt(const PIXEL* Surface, UINTN X, UINTN Y) { return ColorOf(Surface[Y * gScreenWidth + X]); }
