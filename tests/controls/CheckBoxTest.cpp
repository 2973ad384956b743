#include "controls/CheckBox.h"

#include <algorithm>

#include "shell/contract/Services.h"
#include "tests/gui/ToolkitBench.h"

namespace {

std::string gRan; // what the links' functions did

EFI_STATUS RunLink(EFI_EVENT, VOID* Context)
{
    gRan += static_cast<const char*>(Context);
    return EFI_SUCCESS;
}

VOID* Tag(const char* Text) { return const_cast<char*>(Text); }

// A fan's box at (286, 232), 20 by 20.
struct CHECK_BOX : TOOLKIT {
    CHECK_BOX_COMPONENT* Box = nullptr;

    CHECK_BOX()
    {
        gRan.clear();
        EXPECT_EQ(CreateCheckBox(&Box, nullptr, 286, 232, 19, &gArtworkFileGuid, CHECK_BOX_BMP, 0, 0), EFI_SUCCESS);
    }
    ~CHECK_BOX() override
    {
        (void)DestroyCheckBox(Box);
        CloseLeftLinkEvents();
    }

    // What the pointer engine does at a click while the pointer is there.
    VOID Click(INT64 X, INT64 Y)
    {
        gGuiCore->PointerX = X;
        gGuiCore->PointerY = Y;
        gGuiCore->HitId = Box->Id;
        gGuiCore->MouseState = L_CLICK;
        (void)OnCheckBoxEvent(nullptr, Box);
        (void)SetCheckBoxState(nullptr, Box);
        gGuiCore->MouseState = NOEVENT;
    }
};

TEST_F(CHECK_BOX, RunsItsLinksAtAClickAndMirrorsAlways)
{
    GUI_RECT Rect = {1, 1, 1, 1, 4};
    UINT32 Ids[3];
    GUI_COMPONENT* Parts[3];
    for (UINTN I = 0; I < 3; I++) {
        (void)RegisterComponent(gGuiCore->Components, nullptr, &Rect, _BLT_BUF, &Ids[I], nullptr, nullptr, u"part");
        (void)FindComponent(gGuiCore->Components, static_cast<UINT16>(Ids[I]), &Parts[I]);
    }
    UINT8 Bytes[7] = {9, 9, 9, 9, 9, 9, 9};
    const struct {
        const char* Tag;
        UINT8 Kind;
        UINT32 Component;
    } Links[7] = {
        {"o", CHECK_BOX_LINK_OUTSIDE, 0},
        {"i", CHECK_BOX_LINK_INSIDE, Ids[0]},
        {"u", CHECK_BOX_LINK_UNCHECKED, Ids[2]},
        {"c", CHECK_BOX_LINK_CHECKED, Ids[1]},
        {"c", CHECK_BOX_LINK_CHECKED, 0},
        {"i", CHECK_BOX_LINK_INSIDE, 0},
        {"never", 4, 0},
    };
    for (UINTN I = 0; I < 7; I++) {
        EXPECT_EQ(AddCheckBoxLink(Box, Tag(Links[I].Tag), RunLink, Links[I].Kind, &Bytes[I],
                                  static_cast<UINT16>(Links[I].Component)),
                  EFI_SUCCESS);
    }
    const auto AllBytesAre = [&Bytes](UINT8 Value) {
        return std::all_of(Bytes, Bytes + 7, [Value](UINT8 Byte) { return Byte == Value; });
    };

    // Set by program: bytes, components and picture follow, and no function runs.
    Box->State = 0;
    (void)SetCheckBoxState(nullptr, Box);
    EXPECT_EQ(gRan, "");
    EXPECT_TRUE(AllBytesAre(0));
    EXPECT_EQ(Parts[0]->Active, 0);
    EXPECT_EQ(Parts[1]->Active, 0);
    EXPECT_EQ(Parts[2]->Active, 1);

    Click(290, 240);
    EXPECT_EQ(gRan, "ccii") << "both of a kind by one signal, and the inside last";
    EXPECT_TRUE(AllBytesAre(1));
    EXPECT_EQ(Parts[0]->Active, 0) << "an inside link switches nothing";
    EXPECT_EQ(Parts[1]->Active, 1);
    EXPECT_EQ(Parts[2]->Active, 0);

    gRan.clear();
    Click(305, 251); // the last pixel inside
    EXPECT_EQ(gRan, "uii");
    EXPECT_TRUE(AllBytesAre(0));
    EXPECT_EQ(Parts[1]->Active, 0);
    EXPECT_EQ(Parts[2]->Active, 1);

    gRan.clear();
    Click(306, 251);
    EXPECT_EQ(gRan, "cco") << "the click ended elsewhere";
}

TEST_F(CHECK_BOX, AClickInsideWithoutAnInsideLinkCountsAsOutside)
{
    UINT8 Byte = 9;
    (void)AddCheckBoxLink(Box, Tag("o"), RunLink, CHECK_BOX_LINK_OUTSIDE, &Byte, 0);
    Click(290, 240);
    EXPECT_EQ(gRan, "o");
    // A link without a function still mirrors.
    UINT8 Silent = 9;
    (void)AddCheckBoxLink(Box, nullptr, nullptr, CHECK_BOX_LINK_INSIDE, &Silent, 0);
    Click(290, 240);
    EXPECT_EQ(Silent, 1);
}

TEST_F(CHECK_BOX, LeavesTheEventsOfItsLinksToBeClosedLater)
{
    const UINTN Before = Boot->Events.Count();
    CHECK_BOX_COMPONENT* Linked = nullptr;
    (void)CreateCheckBox(&Linked, nullptr, 1, 1, 19, &gArtworkFileGuid, CHECK_BOX_BMP, 0, 0);
    for (UINTN I = 0; I < 40; I++) {
        (void)AddCheckBoxLink(Linked, nullptr, RunLink, CHECK_BOX_LINK_CHECKED, nullptr, 0);
    }
    (void)DestroyCheckBox(Linked);
    EXPECT_EQ(Boot->Events.Count(), Before + 40);
    CloseLeftLinkEvents();
    EXPECT_EQ(Boot->Events.Count(), Before) << "however many they are";
    CloseLeftLinkEvents();
    EXPECT_EQ(Boot->Events.Count(), Before) << "each is closed once";
}

} // namespace
