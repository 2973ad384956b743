#include "support/Shell.h"

#include "shell/CommandLine.h"
#include "support/Pool.h"
#include "tests/gui/ToolkitBench.h"

namespace {

constexpr EFI_GUID gNewShell = {0x6302D008, 0x7F9B, 0x4F30, {0x87, 0xAC, 0x60, 0xC9, 0xFE, 0xF5, 0xDA, 0x4E}};
constexpr EFI_GUID gNewParameters = {0x752F3136, 0x4E16, 0x4FDC, {0xA2, 0x2A, 0xE5, 0xF4, 0x68, 0x12, 0xF4, 0xCA}};
constexpr EFI_GUID gOldEnvironment = {0x47C7B221, 0xC42A, 0x11D2, {0x8E, 0x57, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};
constexpr EFI_GUID gOldInterface = {0x47C7B223, 0xC42A, 0x11D2, {0x8E, 0x57, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};
constexpr EFI_GUID gSignature = {0xD2C18636, 0x40E5, 0x4EB5, {0xA3, 0x1B, 0x36, 0x69, 0x5F, 0xD4, 0x2C, 0x87}};
constexpr EFI_GUID gForeignSignature = {
    0xD2C18636, 0x40E5, 0x4EB5, {0xA3, 0x1B, 0x36, 0x69, 0x5F, 0xD4, 0x2C, 0x88}}; // another layout's

struct SHELL : HOSTED {
    ~SHELL() override { EXPECT_FALSE(ReleasedArguments()); }

    // Whether the shell's protocols stay open, or its arguments in reach, when they are given back.
    bool ReleasedArguments()
    {
        ReleaseShellProtocols();
        for (const auto& [Handle, Guid] : mInstalled) {
            const std::vector<PROTOCOL_USE>* Uses = Boot->Handles.Uses(Handle, &Guid);
            EXPECT_TRUE(Uses == nullptr || Uses->empty());
        }
        return ShellArguments(&mArgv, &mArgc);
    }

    // On the image or, with a null handle, on a new one.
    VOID Install(EFI_HANDLE Handle, const EFI_GUID& Guid, VOID* Interface)
    {
        (void)Boot->Handles.Install(&Handle, &Guid, Interface);
        mInstalled.push_back({Handle, Guid});
    }

    VOID SetArguments(std::vector<std::u16string> Arguments)
    {
        mTexts = std::move(Arguments);
        mPointers.clear();
        for (std::u16string& Text : mTexts) {
            mPointers.push_back(Text.data());
        }
        mParameters = {mPointers.data(), mPointers.size(), nullptr, nullptr, nullptr};
        mInterface = {nullptr, nullptr, mPointers.data(), mPointers.size()};
    }

    std::vector<std::pair<EFI_HANDLE, EFI_GUID>> mInstalled;
    int mShell = 0;
    struct {
        CHAR16** Argv;
        UINTN Argc;
        VOID *In, *Out, *Error;
    } mParameters = {};
    struct {
        VOID *Image, *Info;
        CHAR16** Argv;
        UINTN Argc;
    } mInterface = {};
    struct {
        VOID* Functions[12];
        EFI_GUID Signature;
    } mForeignEnvironment = {{}, gForeignSignature}, mEnvironment = {{}, gSignature};
    std::vector<std::u16string> mTexts;
    std::vector<CHAR16*> mPointers;
    CHAR16** mArgv = nullptr;
    UINTN mArgc = 0;
};

TEST_F(SHELL, ThatIsMissingHasNoEffect)
{
    EXPECT_EQ(BindShellProtocols(), EFI_NOT_FOUND);
    EXPECT_TRUE(ParseCommandLine());
    EXPECT_FALSE(gShellConsole);
    EXPECT_EQ(Boot->Consoles.OutputText, "");
}

TEST_F(SHELL, OfTheNewKindIsFoundOnTheImageOrElsewhere)
{
    SetArguments({u"ventara.efi", u"x", u"y"});
    for (const bool OnImage : {false, true}) {
        Reboot({});
        mInstalled.clear();
        Install(OnImage ? gImageHandle : nullptr, gNewShell, &mShell);
        Install(gImageHandle, gNewParameters, &mParameters);
        EXPECT_EQ(BindShellProtocols(), EFI_SUCCESS);
        EXPECT_TRUE(ShellArguments(&mArgv, &mArgc));
        EXPECT_EQ(mArgv, mPointers.data());
        EXPECT_EQ(mArgc, 3u);
        EXPECT_FALSE(ReleasedArguments());
    }
}

TEST_F(SHELL, OfTheOldKindServesWhenTheNewPairIsIncomplete)
{
    SetArguments({u"ventara.efi", u"x"});
    Install(nullptr, gNewShell, &mShell);
    Install(nullptr, gOldEnvironment, &mForeignEnvironment);
    Install(gImageHandle, gOldInterface, &mInterface);
    EXPECT_EQ(BindShellProtocols(), EFI_NOT_FOUND);
    EXPECT_FALSE(ShellArguments(&mArgv, &mArgc));
    EXPECT_FALSE(ReleasedArguments());

    Install(nullptr, gOldEnvironment, &mEnvironment);
    EXPECT_EQ(BindShellProtocols(), EFI_SUCCESS);
    EXPECT_TRUE(ShellArguments(&mArgv, &mArgc));
    EXPECT_EQ(mArgv, mPointers.data());
    EXPECT_EQ(mArgc, 2u);
}

TEST_F(SHELL, ThatAsksForTheVersionInEitherCaseGetsItAndStartsNothing)
{
    Install(gImageHandle, gNewShell, &mShell);
    Install(gImageHandle, gNewParameters, &mParameters);
    const struct {
        std::vector<std::u16string> Arguments;
        bool Starts;
        std::string Printed;
    } Cases[] = {
        {{u"ventara.efi"}, true, ""},
        {{u"ventara.efi", u"-V"}, false, "UseShellFun\t\nVersion 0.9.0 Kestrin\n"},
        {{u"ventara.efi", u"-v"}, false, "UseShellFun\t\nVersion 0.9.0 Kestrin\n"},
        {{u"ventara.efi", u"-vv"}, true, "UseShellFun\t\n"},
        {{u"ventara.efi", u"-"}, true, "UseShellFun\t\n"},
        {{u"ventara.efi", u"-v", u"-v"}, true, ""},
    };
    for (const auto& Case : Cases) {
        SetArguments(Case.Arguments);
        Boot->Consoles.OutputText.clear();
        EXPECT_EQ(BindShellProtocols(), EFI_SUCCESS);
        EXPECT_EQ(ParseCommandLine(), Case.Starts);
        EXPECT_TRUE(gShellConsole);
        EXPECT_EQ(Boot->Consoles.OutputText, Case.Printed);
        ReleaseShellProtocols();
    }
}

} // namespace
