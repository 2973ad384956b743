#include "tests/board/ArtworkBench.h"

namespace {

std::vector<UINT8> CopyPack() { return {gArtworkPack, gArtworkPack + gArtworkPackSize}; }

void PutUint32(std::vector<UINT8>* Bytes, size_t Offset, UINT32 Value)
{
    for (size_t Index = 0; Index < 4; Index++) {
        (*Bytes)[Offset + Index] = static_cast<UINT8>(Value >> (8 * Index));
    }
}

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

using ArtworkServices = ARTWORK_BENCH;

TEST_F(ArtworkServices, ServeNothingOfADamagedPack)
{
    UseArtworkPack(gArtworkPack, gArtworkPackSize - 1);
    EXPECT_TRUE(Section(4).empty());
    UseArtworkPack(gArtworkPack, gArtworkPackSize);
}

TEST_F(ArtworkServices, ShowAScriptsChangesUntilTheyAreTakenBack)
{
    const std::vector<UINT8> Before = Section(26);
    const std::vector<UINT8> Mine = {1, 2, 3};
    OverrideArtwork(26, Mine.data(), Mine.size());
    OverrideArtwork(11, nullptr, 0);
    EXPECT_EQ(Section(26), Mine);
    EXPECT_TRUE(Section(11).empty());
    EXPECT_FALSE(Section(13).empty());

    OverrideArtwork(26, nullptr, 0); // the last word counts
    EXPECT_TRUE(Section(26).empty());

    Reboot({});
    EXPECT_EQ(Section(26), Before);
    EXPECT_FALSE(Section(11).empty());
}

TEST_F(ArtworkServices, StillFindTheFileWhenItsFirstSectionIsMissing)
{
    OverrideArtwork(2, nullptr, 0);
    TEMPORARY<VOID> Data;
    UINTN Size = 0;
    EXPECT_EQ(gBoardImageLookup.GetFileSection(&gArtworkFileGuid, EFI_SECTION_RAW, &Data.Data, &Size), EFI_SUCCESS);
}

} // namespace
