#include <gtest/gtest.h>

#include "platform/host/Variables.h"

namespace {

constexpr EFI_GUID gMine = {1, 0, 0, {}};
constexpr EFI_GUID gOthers = {2, 0, 0, {}};
constexpr UINT32 gBootAccess = EFI_VARIABLE_BOOTSERVICE_ACCESS;

struct VariablesTest : testing::Test {
    VARIABLES Variables;
    UINT8 Data[4] = {1, 2, 3, 4};
    UINT8 Read[8] = {};
};

TEST_F(VariablesTest, AQueryWithoutABufferTellsWhetherAndHowLargeTheVariableIs)
{
    UINTN Size = 0;
    UINT32 Attributes = 0;
    EXPECT_EQ(Variables.Get(u"A", &gMine, nullptr, &Size, nullptr), EFI_NOT_FOUND);
    ASSERT_EQ(Variables.Set(u"A", &gMine, gBootAccess, 4, Data), EFI_SUCCESS);
    EXPECT_EQ(Variables.Get(u"A", &gMine, &Attributes, &Size, nullptr), EFI_BUFFER_TOO_SMALL);
    EXPECT_EQ(Size, 4u);
    EXPECT_EQ(Attributes, 2u);
    EXPECT_EQ(Variables.Get(u"A", &gMine, nullptr, &Size, nullptr), EFI_INVALID_PARAMETER);
    Size = 8;
    EXPECT_EQ(Variables.Get(u"A", &gMine, nullptr, &Size, Read), EFI_SUCCESS);
    EXPECT_EQ(Size, 4u);
    EXPECT_EQ(Read[3], 4);
    EXPECT_EQ(Read[4], 0);
}

TEST_F(VariablesTest, NameAndVendorTogetherMakeAVariable)
{
    ASSERT_EQ(Variables.Set(u"A", &gMine, gBootAccess, 1, &Data[0]), EFI_SUCCESS);
    ASSERT_EQ(Variables.Set(u"A", &gOthers, gBootAccess, 1, &Data[1]), EFI_SUCCESS);
    ASSERT_EQ(Variables.Set(u"AB", &gMine, gBootAccess, 1, &Data[2]), EFI_SUCCESS);
    UINTN Size = 1;
    EXPECT_EQ(Variables.Get(u"A", &gOthers, nullptr, &Size, Read), EFI_SUCCESS);
    EXPECT_EQ(Read[0], 2);
    EXPECT_EQ(Variables.Get(u"AB", &gOthers, nullptr, &Size, Read), EFI_NOT_FOUND);
}

TEST_F(VariablesTest, WritingWithNoBytesDeletesAndOtherAttributesAreRefused)
{
    ASSERT_EQ(Variables.Set(u"A", &gMine, gBootAccess, 4, Data), EFI_SUCCESS);
    EXPECT_EQ(Variables.Set(u"A", &gMine, gBootAccess | EFI_VARIABLE_NON_VOLATILE, 4, Data), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Variables.Set(u"A", &gMine, gBootAccess, 0, nullptr), EFI_SUCCESS);
    EXPECT_EQ(Variables.Set(u"A", &gMine, gBootAccess, 0, nullptr), EFI_NOT_FOUND);
    EXPECT_EQ(Variables.Set(u"", &gMine, gBootAccess, 4, Data), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Variables.Set(u"B", &gMine, EFI_VARIABLE_RUNTIME_ACCESS, 4, Data), EFI_INVALID_PARAMETER);
    EXPECT_TRUE(Variables.All().empty());
}

} // namespace
