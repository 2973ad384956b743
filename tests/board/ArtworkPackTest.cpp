#include <cstring>

#include <gtest/gtest.h>

#include "tests/board/ArtworkBench.h"

namespace {

std::vector<UINT8> CopyPack() { return {gArtworkPack, gArtworkPack + gArtworkPackSize}; }

void PutUint32(std::vector<UINT8>* Bytes, size_t Offset, UINT32 Value)
{
    for (size_t Index = 0; Index < 4; Index++) {
        (*Bytes)[Offset + Index] = static_cast<UINT8>(Value >> (8 * Index));
    }
}

} // namespace

TEST(ArtworkPack, OfTheBuildIsWhole) { EXPECT_TRUE(CheckArtworkPack(gArtworkPack, gArtworkPackSize)); }

TEST(ArtworkPack, CutShortAnywhereIsRefused)
{
    EXPECT_FALSE(CheckArtworkPack(nullptr, 0));
    for (UINTN Size = 0; Size < 512; Size++) {
        // A copy of exactly that size, so that a read past its end shows under the address sanitizer.
        const std::vector<UINT8> Short(gArtworkPack, gArtworkPack + Size);
        EXPECT_FALSE(CheckArtworkPack(Short.data(), Short.size())) << Size;
    }
    EXPECT_FALSE(CheckArtworkPack(gArtworkPack, gArtworkPackSize - 1));
}

TEST(ArtworkPack, WithASectionOutsideItselfIsRefused)
{
    constexpr size_t FirstOffset = 16 + 8;
    constexpr size_t FirstSize = 16 + 12;
    const struct {
        size_t Place;
        UINT32 Value;
    } Damages[] = {
        {FirstOffset, 0},          // inside the header
        {FirstOffset, 0xFFFFFFFF}, // far beyond the end
        {FirstSize, 0xFFFFFFFF},   // the sum doesn't fit 32 bits
        {8, 0x10000000},           // a table longer than the pack
        {0, 0},                    // no signature
    };
    for (const auto& Damage : Damages) {
        std::vector<UINT8> Pack = CopyPack();
        PutUint32(&Pack, Damage.Place, Damage.Value);
        EXPECT_FALSE(CheckArtworkPack(Pack.data(), Pack.size())) << Damage.Place;
    }
}

TEST(ArtworkPack, ThatIsDamagedServesNothing)
{
    ARTWORK_BENCH Bench;
    UseArtworkPack(gArtworkPack, gArtworkPackSize - 1);
    EXPECT_TRUE(Bench.Section(4).empty());
}

TEST(ArtworkServices, HandOutCopiesThatTheCallerFrees)
{
    ARTWORK_BENCH Bench;
    VOID* First = nullptr;
    VOID* Second = nullptr;
    UINTN Size = 0;
    const UINT8 Type = EFI_SECTION_RAW;
    ASSERT_EQ(gBoardImageSection.GetArtworkSection(4, &First, &Size, &gArtworkFileGuid, &Type), EFI_SUCCESS);
    ASSERT_EQ(gBoardImageSection.GetArtworkSection(4, &Second, &Size, &gArtworkFileGuid, &Type), EFI_SUCCESS);
    EXPECT_NE(First, Second);
    EXPECT_EQ(std::memcmp(First, Second, Size), 0);
    EXPECT_EQ(Bench.LiveBlocks, 2);
    (void)Bench.Services.FreePool(First);
    (void)Bench.Services.FreePool(Second);
}

TEST(ArtworkServices, AnswerUnderOneSectionTypeAlone)
{
    ARTWORK_BENCH Bench;
    VOID* Data = nullptr;
    UINTN Size = 0;
    const struct {
        UINT8 Stored;
        UINT8 Other;
    } Types[] = {{EFI_SECTION_RAW, EFI_SECTION_PE32}, {EFI_SECTION_PE32, EFI_SECTION_RAW}};
    for (const auto& Type : Types) {
        SetArtworkSectionType(Type.Stored);
        for (const EFI_GUID& File : {gArtworkFileGuid, gCursorFileGuid}) {
            EXPECT_EQ(gBoardImageLookup.GetFileSection(&File, Type.Other, &Data, &Size), EFI_NOT_FOUND);
            EXPECT_EQ(Data, nullptr);
            EXPECT_EQ(Size, 0u);
            ASSERT_EQ(gBoardImageLookup.GetFileSection(&File, Type.Stored, &Data, &Size), EFI_SUCCESS);
            (void)Bench.Services.FreePool(Data);
            Data = nullptr;
            Size = 0;
        }
        EXPECT_TRUE(Bench.Section(4, gArtworkFileGuid, Type.Other).empty());
        EXPECT_FALSE(Bench.Section(4, gArtworkFileGuid, Type.Stored).empty());
    }
    EXPECT_EQ(Bench.LiveBlocks, 0);
}

TEST(ArtworkServices, KnowNoOtherFileAndNoOtherInstance)
{
    ARTWORK_BENCH Bench;
    EFI_GUID Other = gArtworkFileGuid;
    Other.Data4[7] ^= 1;
    VOID* Data = nullptr;
    UINTN Size = 0;
    EXPECT_EQ(gBoardImageLookup.GetFileSection(&Other, EFI_SECTION_RAW, &Data, &Size), EFI_NOT_FOUND);
    for (const UINT32 Missing : {1u, 12u, 14u, 25u, 27u, 0x104u}) {
        EXPECT_TRUE(Bench.Section(Missing).empty()) << Missing;
    }
    // The pointer's picture is in its own file.
    EXPECT_TRUE(Bench.Section(4, gCursorFileGuid).empty());
}

TEST(ArtworkServices, ReportAnExhaustedPoolAndTouchNothing)
{
    ARTWORK_BENCH Bench;
    Bench.AllocationsLeft = 0;
    VOID* Data = nullptr;
    UINTN Size = 7;
    EXPECT_EQ(gBoardImageLookup.GetFileSection(&gArtworkFileGuid, EFI_SECTION_RAW, &Data, &Size), EFI_OUT_OF_RESOURCES);
    EXPECT_EQ(Data, nullptr);
    EXPECT_EQ(Size, 7u);
}

TEST(ArtworkServices, ShowAScriptsChangesUntilTheyAreTakenBack)
{
    ARTWORK_BENCH Bench;
    const std::vector<UINT8> Before = Bench.Section(26);
    const std::vector<UINT8> Mine = {1, 2, 3};
    OverrideArtwork(26, Mine.data(), Mine.size());
    OverrideArtwork(11, nullptr, 0);
    EXPECT_EQ(Bench.Section(26), Mine);
    EXPECT_TRUE(Bench.Section(11).empty());
    EXPECT_FALSE(Bench.Section(13).empty());

    OverrideArtwork(26, nullptr, 0); // the last word counts
    EXPECT_TRUE(Bench.Section(26).empty());

    ResetArtwork();
    EXPECT_EQ(Bench.Section(26), Before);
    EXPECT_FALSE(Bench.Section(11).empty());
}

TEST(ArtworkServices, ProbeOfTheFileStillWorksWhenItsFirstSectionIsMissing)
{
    ARTWORK_BENCH Bench;
    OverrideArtwork(2, nullptr, 0);
    VOID* Data = nullptr;
    UINTN Size = 0;
    ASSERT_EQ(gBoardImageLookup.GetFileSection(&gArtworkFileGuid, EFI_SECTION_RAW, &Data, &Size), EFI_SUCCESS);
    (void)Bench.Services.FreePool(Data);
}
