#include <gtest/gtest.h>

#include <vector>

#include "platform/host/Pool.h"

namespace {

struct PoolTest : testing::Test {
    COMPLAINTS Complaints;
    POOL Pool{&Complaints};

    PoolTest() { Complaints.Quiet = true; }

    EFI_STATUS Take(UINTN Size, VOID** Buffer) { return Pool.Allocate(Size, this, Buffer); }
};

TEST_F(PoolTest, AGivenBlockHoldsThePatternAndNotZero)
{
    VOID* Block;
    ASSERT_EQ(Take(3, &Block), EFI_SUCCESS);
    for (int At = 0; At < 3; At++) {
        EXPECT_EQ(static_cast<UINT8*>(Block)[At], 0xAF);
    }
    EXPECT_EQ(Pool.Free(Block, this), EFI_SUCCESS);
}

TEST_F(PoolTest, BlocksLieAtMultiplesOfEightAsUefiPromisesAndNoBetter)
{
    for (const UINTN Size : {0u, 1u, 40u, 4096u, 3u << 20}) {
        VOID* Given = nullptr;
        VOID* Zeroed = nullptr;
        ASSERT_EQ(Pool.Allocate(Size, nullptr, &Given), EFI_SUCCESS);
        ASSERT_EQ(Pool.AllocateZeroed(Size, nullptr, &Zeroed), EFI_SUCCESS);
        EXPECT_EQ(reinterpret_cast<UINTN>(Given) % 16, 8u) << Size;
        EXPECT_EQ(reinterpret_cast<UINTN>(Zeroed) % 16, 8u) << Size;
        EXPECT_EQ(Pool.Free(Given, nullptr), EFI_SUCCESS);
        EXPECT_EQ(Pool.Free(Zeroed, nullptr), EFI_SUCCESS);
    }
}

TEST_F(PoolTest, FreeingWhatIsNoBlockIsRefusedAndComplainedOf)
{
    VOID* Block;
    ASSERT_EQ(Take(8, &Block), EFI_SUCCESS);
    EXPECT_EQ(Pool.Free(static_cast<UINT8*>(Block) + 4, this), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Pool.Free(nullptr, this), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Pool.Free(Block, this), EFI_SUCCESS);
    EXPECT_EQ(Pool.Free(Block, this), EFI_INVALID_PARAMETER);
    EXPECT_EQ(Complaints.Lines.size(), 3u);
}

TEST_F(PoolTest, AStartsBlocksAreListedAndItsLimitCountsWithoutOlderBlocks)
{
    VOID* Older;
    VOID* Kept;
    VOID* Returned;
    Pool.FailFrom = 3;
    ASSERT_EQ(Take(10, &Older), EFI_SUCCESS);
    Pool.BeginStart(1);
    ASSERT_EQ(Take(20, &Returned), EFI_SUCCESS);
    ASSERT_EQ(Take(30, &Kept), EFI_SUCCESS);
    EXPECT_EQ(Take(40, &Older), EFI_OUT_OF_RESOURCES);
    ASSERT_EQ(Pool.Free(Returned, this), EFI_SUCCESS);
    const std::vector<POOL_BLOCK> Held = Pool.Held(1);
    ASSERT_EQ(Held.size(), 1u);
    EXPECT_EQ(Held[0].Size, 30u);
    EXPECT_EQ(Held[0].Number, 3u);
    EXPECT_EQ(Held[0].Owner[0], this);
}

} // namespace
