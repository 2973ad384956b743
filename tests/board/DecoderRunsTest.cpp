// Damaged pictures in great number; VENTARA_DECODER_RUNS in the environment says how many. What is read lies before a page
// that can't be touched, so that a read beyond it shows in any build; a write beyond a block of the pool shows in the one
// with sanitizers.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <random>

#include "platform/host/CurrentBoot.h"
#include "tests/board/ArtworkBench.h"
#include "tests/support/GuardedRoom.h"

namespace {

UINT64 WantedRuns()
{
    const char* Text = std::getenv("VENTARA_DECODER_RUNS");
    return Text != nullptr ? std::strtoull(Text, nullptr, 10) : 100000;
}

// Larger blocks are refused, as by a pool that is nearly empty: pictures as large as a screen would take all the time.
constexpr UINTN gLargestBlock = 64 * 1024;

EFI_STATUS AllocateSmall(EFI_MEMORY_TYPE, UINTN Size, VOID** Buffer)
{
    return Size > gLargestBlock ? EFI_OUT_OF_RESOURCES : gCurrentBoot->Pool.Allocate(Size, nullptr, Buffer);
}

using BYTES = std::vector<UINT8>;

struct DecoderRuns : ARTWORK_BENCH {
    UINT32 Random(UINT64 Limit) { return static_cast<UINT32>(Generator() % Limit); }

    // A few bytes anew, a field of two or four bytes at an end of its range, bytes taken out or put in twice, or the end cut.
    BYTES Damage(const BYTES& Good)
    {
        static constexpr UINT32 Ends[] = {0, 1, 2, 0xFF, 0x7FFF, 0x8000, 0xFFFF, 0x10001, 0x7FFFFFFF, 0x80000000, ~0u};
        BYTES Bytes = Good;
        for (UINT32 Times = 1 + Random(3); Times > 0; Times--) {
            // Headers lead, and decide more than what follows them.
            const UINT32 At = Random(Random(2) == 0 ? Bytes.size() : std::min<size_t>(Bytes.size(), 64));
            const UINT32 Length = std::min<UINT32>(1 + Random(16), static_cast<UINT32>(Bytes.size()) - At);
            switch (Random(5)) {
            case 0:
                Bytes[At] = static_cast<UINT8>(Generator());
                break;
            case 1:
                Bytes[At] = static_cast<UINT8>(Bytes[At] ^ 1u << Random(8));
                break;
            case 2:
                std::memcpy(Bytes.data() + At, &Ends[Random(std::size(Ends))], std::min<UINT32>(Length, 4));
                break;
            case 3: {
                const BYTES Twice(Bytes.begin() + At, Bytes.begin() + At + Length);
                Bytes.insert(Bytes.begin() + At, Twice.begin(), Twice.end());
                break;
            }
            default:
                Bytes.resize(std::max<UINT32>(At, 1));
                break;
            }
        }
        return Bytes;
    }

    std::mt19937_64 Generator{19};
};

TEST_F(DecoderRuns, EndInAnAnswerInsideTheirBuffersAndWithoutALeak)
{
    std::vector<std::pair<BYTES, bool>> Good; // bytes, whether they are a JPEG
    std::vector<BYTES> Pictures;
    for (UINT32 Instance = 1; Instance < 60; Instance++) {
        const BYTES Bytes = Section(Instance);
        if (Bytes.size() > 2 && Bytes[0] == 0xFF && Bytes[1] == 0xD8) {
            Pictures.push_back(Bytes);
        }
    }
    ASSERT_GE(Pictures.size(), 3u);
    std::sort(Pictures.begin(), Pictures.end(), [](const BYTES& A, const BYTES& B) { return A.size() < B.size(); });
    for (size_t I = 0; I < 3; I++) {
        Good.push_back({Pictures[I], true});
    }
    Good.push_back({Section(17), true}); // packed
    for (const UINT32 Depth : {1, 4, 8, 16, 24, 32}) {
        Good.push_back({MakeBmp(5, 3, Depth), false});
        Good.push_back({MakeBmp(5, -3, Depth), false});
    }
    Boot->FirmwareTable.BootServices->AllocatePool = AllocateSmall;
    Boot->Pool.FillLimit = 64;
    const UINTN Held = Boot->Pool.Count();
    GUARDED_ROOM Room(64 * 1024);
    UINT64 Decoded = 0;
    const UINT64 Runs = WantedRuns();
    for (UINT64 Run = 0; Run < Runs; Run++) {
        const auto& [Seed, IsJpeg] = Good[Random(Good.size())];
        const BYTES Bytes = Damage(Seed);
        UINT8* Place = Room.Place<UINT8>(Bytes.size(), true);
        std::memcpy(Place, Bytes.data(), Bytes.size());
        const auto Size = static_cast<UINT32>(Bytes.size());
        PIXEL* Blt = nullptr;
        UINTN Given = 0;
        UINT32 Height = 0;
        UINT32 Width = 0;
        UINT32 Stride = 0;
        const EFI_STATUS Status = IsJpeg ? gBoardImageDecoder.ConvertJPEGToUgaBltA(
                                               &gBoardImageDecoder, Place, Size, &Blt, &Given, &Height, &Width, &Stride)
                                         : gBoardImageDecoder.ConvertBmpToGopBltA(&gBoardImageDecoder, Place, Size,
                                                                                  &Blt, &Given, &Height, &Width);
        if (!EfiError(Status)) {
            Decoded++;
            ASSERT_GT(Width, 0u) << "run " << Run;
            ASSERT_EQ(Given, UINTN{IsJpeg ? Stride : Width} * Height * sizeof(PIXEL)) << "run " << Run;
            ASSERT_EQ(Boot->Pool.Count(), Held + 1) << "run " << Run;
            FreePool(Blt);
        } else {
            ASSERT_EQ(Blt, nullptr) << "run " << Run;
        }
        ASSERT_EQ(Boot->Pool.Count(), Held) << "run " << Run;
    }
    // Neither may be rare, or one road is hardly tried.
    EXPECT_GT(Decoded, Runs / 20);
    EXPECT_LT(Decoded, Runs - Runs / 20);
    RecordProperty("decoded", std::to_string(Decoded));
    std::printf("%llu runs, %llu decoded\n", static_cast<unsigned long long>(Runs),
                static_cast<unsigned long long>(Decoded));
}

} // namespace
