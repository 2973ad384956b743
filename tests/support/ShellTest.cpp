#include <gtest/gtest.h>

#include "FakeFirmware.h"
#include "shell/CommandLine.h"
#include "support/Shell.h"

namespace {

constexpr EFI_GUID gNewShell = {0x6302D008, 0x7F9B, 0x4F30, {0x87, 0xAC, 0x60, 0xC9, 0xFE, 0xF5, 0xDA, 0x4E}};
constexpr EFI_GUID gNewParameters = {0x752F3136, 0x4E16, 0x4FDC, {0xA2, 0x2A, 0xE5, 0xF4, 0x68, 0x12, 0xF4, 0xCA}};
constexpr EFI_GUID gOldEnvironment = {0x47C7B221, 0xC42A, 0x11D2, {0x8E, 0x57, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};
constexpr EFI_GUID gOldInterface = {0x47C7B223, 0xC42A, 0x11D2, {0x8E, 0x57, 0x00, 0xA0, 0xC9, 0x69, 0x72, 0x3B}};
constexpr EFI_GUID gSignature = {0xD2C18636, 0x40E5, 0x4EB5, {0xA3, 0x1B, 0x36, 0x69, 0x5F, 0xD4, 0x2C, 0x87}};

class Shell : public testing::Test {
protected:
    Shell() { gImageHandle = &mImage; }
    ~Shell() override
    {
        ReleaseShellProtocols();
        EXPECT_EQ(Firmware.OpenCount, 0u);
        EXPECT_TRUE(Firmware.Blocks.empty());
        EXPECT_FALSE(ShellArguments(&mArgv, &mArgc));
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

    VOID InstallNewShell(EFI_HANDLE ShellHandle)
    {
        Firmware.Install(ShellHandle, gNewShell, &mShell);
        Firmware.Install(gImageHandle, gNewParameters, &mParameters);
    }

    FakeFirmware Firmware;
    int mImage = 0;
    int mOther[2] = {};
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
    } mForeignEnvironment = {}, mEnvironment = {{}, gSignature};
    std::vector<std::u16string> mTexts;
    std::vector<CHAR16*> mPointers;
    CHAR16** mArgv = nullptr;
    UINTN mArgc = 0;
};

TEST_F(Shell, WithoutAShellTheCommandLineIsNotLookedAt)
{
    EXPECT_EQ(BindShellProtocols(), EFI_NOT_FOUND);
    EXPECT_TRUE(ParseCommandLine());
    EXPECT_FALSE(gShellConsole);
    EXPECT_EQ(Firmware.Printed, u"");
}

TEST_F(Shell, TheNewShellIsFoundOnTheImageOrElsewhere)
{
    SetArguments({u"ventara.efi", u"x", u"y"});
    for (EFI_HANDLE ShellHandle : {static_cast<VOID*>(&mImage), static_cast<VOID*>(&mOther[0])}) {
        InstallNewShell(ShellHandle);
        EXPECT_EQ(BindShellProtocols(), EFI_SUCCESS);
        EXPECT_TRUE(ShellArguments(&mArgv, &mArgc));
        EXPECT_EQ(mArgv, mPointers.data());
        EXPECT_EQ(mArgc, 3u);
        ReleaseShellProtocols();
        EXPECT_EQ(Firmware.OpenCount, 0u);
    }
}

TEST_F(Shell, TheOldShellServesWhenTheNewPairIsIncomplete)
{
    SetArguments({u"ventara.efi", u"x"});
    Firmware.Install(&mOther[0], gNewShell, &mShell);
    Firmware.Install(&mOther[0], gOldEnvironment, &mForeignEnvironment);
    Firmware.Install(gImageHandle, gOldInterface, &mInterface);
    EXPECT_EQ(BindShellProtocols(), EFI_NOT_FOUND);
    EXPECT_FALSE(ShellArguments(&mArgv, &mArgc));
    ReleaseShellProtocols();

    Firmware.Install(&mOther[1], gOldEnvironment, &mEnvironment);
    EXPECT_EQ(BindShellProtocols(), EFI_SUCCESS);
    EXPECT_TRUE(ShellArguments(&mArgv, &mArgc));
    EXPECT_EQ(mArgv, mPointers.data());
    EXPECT_EQ(mArgc, 2u);
}

TEST_F(Shell, TheVersionOptionInEitherCaseShowsTheVersionAndStartsNothing)
{
    InstallNewShell(gImageHandle);
    const struct {
        std::vector<std::u16string> Arguments;
        bool Starts;
        const CHAR16* Printed;
    } Cases[] = {
        {{u"ventara.efi"}, true, u""},
        {{u"ventara.efi", u"-V"}, false, u"UseShellFun\t\r\nVersion 0.9.0 Kestrin\r\n"},
        {{u"ventara.efi", u"-v"}, false, u"UseShellFun\t\r\nVersion 0.9.0 Kestrin\r\n"},
        {{u"ventara.efi", u"-vv"}, true, u"UseShellFun\t\r\n"},
        {{u"ventara.efi", u"-"}, true, u"UseShellFun\t\r\n"},
        {{u"ventara.efi", u"-v", u"-v"}, true, u""},
    };
    for (const auto& Case : Cases) {
        SetArguments(Case.Arguments);
        Firmware.Printed.clear();
        EXPECT_EQ(BindShellProtocols(), EFI_SUCCESS);
        EXPECT_EQ(ParseCommandLine(), Case.Starts);
        EXPECT_TRUE(gShellConsole);
        EXPECT_EQ(Firmware.Printed, Case.Printed);
        ReleaseShellProtocols();
    }
}

} // namespace
