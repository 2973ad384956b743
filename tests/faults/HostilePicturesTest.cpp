// Pictures of other sizes than the layout counts on, and pictures that are damaged: drawn as far as they fit or left out.
#include <gtest/gtest.h>

#include <span>
#include <vector>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STB_IMAGE_WRITE_STATIC
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image_write.h>
#pragma GCC diagnostic pop

#include "platform/board/ArtworkPack.h"
#include "tests/console/ConsoleBench.h"

namespace {

using BYTES = std::vector<UINT8>;

BYTES OwnPack() { return {gArtworkPack, gArtworkPack + gArtworkPackSize}; }

std::span<ARTWORK_PACK_ENTRY> EntriesOf(BYTES& Pack)
{
    return {reinterpret_cast<ARTWORK_PACK_ENTRY*>(Pack.data() + sizeof(ARTWORK_PACK_HEADER)),
            reinterpret_cast<ARTWORK_PACK_HEADER*>(Pack.data())->Count};
}

// Gives an entry of the pack other bytes, which go behind all others.
VOID Replace(BYTES& Pack, size_t At, const BYTES& Bytes)
{
    ARTWORK_PACK_ENTRY& Entry = EntriesOf(Pack)[At];
    Entry.Offset = static_cast<UINT32>(Pack.size());
    Entry.Size = static_cast<UINT32>(Bytes.size());
    Pack.insert(Pack.end(), Bytes.begin(), Bytes.end());
}

void AppendTo(void* Bytes, void* Data, int Size)
{
    BYTES& To = *static_cast<BYTES*>(Bytes);
    To.insert(To.end(), static_cast<UINT8*>(Data), static_cast<UINT8*>(Data) + Size);
}

// A picture of that size in the format of the one that it stands for.
BYTES PictureLike(const UINT8* Stored, int Width, int Height)
{
    const BYTES Pixels(static_cast<size_t>(Width) * static_cast<size_t>(Height) * 3, 0x80);
    BYTES Bytes;
    if (Stored[0] == 'B') {
        stbi_write_bmp_to_func(AppendTo, &Bytes, Width, Height, 3, Pixels.data());
    } else {
        stbi_write_jpg_to_func(AppendTo, &Bytes, Width, Height, 3, Pixels.data(), 80);
    }
    return Bytes;
}

// Everything that has a picture is entered, pressed, dragged and painted anew.
std::string Use()
{
    SCENE Scene;
    Scene.Hover({512, 400}).Ticks(3).Tab(5).Tab(9).Thumb(5).Tab(4).Node(0, {1, -1}).Box();
    return Scene.Hover({1023, 767}).Hover({0, 0}).Ticks(3).Script;
}

VOID Play(const BYTES& Pack)
{
    SESSION_OPTIONS Options;
    Options.Script = Use();
    Options.ImagePath = VENTARA_CONSOLE_IMAGE;
    Options.ArtworkPack = Pack.data();
    Options.ArtworkPackSize = Pack.size();
    const SESSION_RESULT Result = RunSession(Options);
    EXPECT_EQ(Result.Error, "");
    EXPECT_TRUE(Result.Status == EFI_SUCCESS || Result.Status == EFI_PROTOCOL_ERROR);
    EXPECT_TRUE(Result.Leaks.empty()) << Result.Leaks[0].Description;
    EXPECT_TRUE(Result.Complaints.empty()) << Result.Complaints[0];
    EXPECT_EQ(BoardContractFaults(), 0u) << LastBoardContractFault();
}

class EveryPicture : public testing::TestWithParam<std::pair<int, int>> {};

// One picture alone has the size, in turn, and all at once.
TEST_P(EveryPicture, OfAnotherSizeStaysWithinItsBounds)
{
    const auto [Width, Height] = GetParam();
    BYTES All = OwnPack();
    for (size_t At = 0; At < EntriesOf(All).size(); At++) {
        SCOPED_TRACE("section " + std::to_string(EntriesOf(All)[At].Instance));
        BYTES One = OwnPack();
        const BYTES Picture = PictureLike(One.data() + EntriesOf(One)[At].Offset, Width, Height);
        Replace(One, At, Picture);
        Replace(All, At, Picture);
        if (!VENTARA_SANITIZED || At % 3 == 0) {
            Play(One);
        }
    }
    SCOPED_TRACE("all");
    Play(All);
}

INSTANTIATE_TEST_SUITE_P(Of, EveryPicture,
                         testing::Values(std::pair{1, 1}, std::pair{1, 767}, std::pair{1400, 1}, std::pair{1025, 769},
                                         std::pair{31, 13}),
                         [](const testing::TestParamInfo<std::pair<int, int>>& Info) {
                             return std::to_string(Info.param.first) + "By" + std::to_string(Info.param.second);
                         });

// Heights and widths of nothing, and sizes that no picture has, in the headers of all formats.
TEST(EveryPicture, WithAnAbsurdHeaderIsLeftOut)
{
    for (const UINT16 Side : {UINT16(0), UINT16(0xFFFF)}) {
        for (const bool IsHeight : {false, true}) {
            BYTES All = OwnPack();
            for (const ARTWORK_PACK_ENTRY& Entry : EntriesOf(All)) {
                if (Entry.File == ARTWORK_FILE_CURSOR) {
                    continue; // without it there is no start
                }
                UINT8* const Bytes = All.data() + Entry.Offset;
                UINT8* Field = nullptr;
                if (Bytes[0] == 'B') {
                    Field = Bytes + (IsHeight ? 22 : 18); // 32 bits, low end first
                    Field[2] = Field[3] = 0;
                } else if (Bytes[0] == 'V') { // packed
                    Field = Bytes + (IsHeight ? 6 : 4);
                }
                for (size_t At = 2; Field == nullptr && At + 9 < Entry.Size; At++) {
                    if (Bytes[At] == 0xFF && (Bytes[At + 1] & 0xFE) == 0xC0) {
                        Field = Bytes + At + (IsHeight ? 5 : 7); // frame header
                    }
                }
                ASSERT_NE(Field, nullptr);
                Field[0] = Field[1] = static_cast<UINT8>(Side);
            }
            SCOPED_TRACE(std::to_string(Side) + (IsHeight ? " high" : " wide"));
            Play(All);
        }
    }
}

} // namespace
