#include "fan/FanPage.h"

#include "controls/Labels.h"
#include "fan/FanChart.h"
#include "fan/FanJoins.h"
#include "fan/FanOutline.h"
#include "fan/Fan_Ctrl_Function.h"
#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "graphics/KeptPicture.h"
#include "gui/PageBar.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "support/Strings.h"
#include "support/Print.h"

namespace {

// --- The facts ---

constexpr UINT32 gTabSection = 5;     // JPEG
constexpr UINT32 gNode8Section = 11;  // BMP
constexpr UINT32 gNode6Section = 13;  // BMP
constexpr UINT32 gRadioSection = 18;  // JPEG
constexpr UINT32 gFanBoxSection = 19; // BMP
constexpr UINT32 gFanBackdropSection = 20;
constexpr UINT32 gTempBackdropSection = 21;

constexpr UINT32 gTabY = 118;
constexpr UINT16 gTabTextX = 0;
constexpr UINT16 gTabTextY = 38;
constexpr UINT32 gFanBoxX = 286;
constexpr UINT32 gFanBoxY = 232;

constexpr UINT32 gRadioX = 55;
constexpr UINT16 gRadioTextX = 56;
constexpr UINT16 gRadioTextY = 7;

// Vendor of the temperature history, which all charts share.
constexpr EFI_GUID gChartTemperatureGuid = {
    0x7BE9DF7E, 0x521C, 0x4547, {0xAB, 0x36, 0x67, 0x3B, 0x07, 0x4C, 0xC5, 0x5D}};

struct FAN_PAGE_FACTS {
    FAN_PAGE_LAYOUT Layout; // FAN_LAYOUT_NONE: the board decides
    UINT32 TabX;
    EFI_GUID RpmGuid; // vendor of the speed history
};

// The tab of item 8 lies one pixel right of the pitch and its readout doesn't; that is meant.
constexpr FAN_PAGE_FACTS gFanPageFacts[gFanItemCount] = {
    // layout, the tab's left edge, vendor of the speed history
    {FAN_LAYOUT_CURVE8, 275, {0xFE2A31D4, 0xE344, 0x4B1C, {0xAC, 0x0A, 0x54, 0xB6, 0x99, 0xBA, 0xEB, 0xF6}}},
    {FAN_LAYOUT_NONE, 374, {0x55D26D12, 0x33F2, 0x4000, {0xB1, 0x7D, 0xD2, 0x20, 0xFD, 0xB3, 0xB5, 0xF2}}},
    {FAN_LAYOUT_CURVE6, 473, {0xAEFF8490, 0xBEDF, 0x460D, {0xBE, 0x5F, 0x62, 0x99, 0x7F, 0x9B, 0x2D, 0xA5}}},
    {FAN_LAYOUT_CURVE6_SLIDER, 572, {0x9F2A1282, 0x0C21, 0x48A8, {0x8F, 0x51, 0x7E, 0x42, 0xF5, 0x0C, 0x01, 0xC4}}},
    {FAN_LAYOUT_CURVE6_SLIDER, 672, {0xC352DF79, 0x3511, 0x4D1F, {0x99, 0xF4, 0xD1, 0xBC, 0x4A, 0xB1, 0x9F, 0xA1}}},
    {FAN_LAYOUT_SLIDER, 770, {0x659F4BA5, 0x4D74, 0x46DB, {0x8F, 0x50, 0xBF, 0x9C, 0xD4, 0x4A, 0x26, 0xA3}}},
    {FAN_LAYOUT_SLIDER, 869, {0xE20DC3DF, 0x0041, 0x4A25, {0xB3, 0x04, 0x76, 0xF1, 0x6B, 0x07, 0x76, 0xFD}}},
};

struct FAN_LAYOUT_FACTS {
    const CHAR16* const* DutyLabels; // null without a curve frame
    UINT32 NodeSection;
    const CHAR16* TabPrefix;
};

constexpr FAN_LAYOUT_FACTS gLayoutFacts[] = {
    // duty labels, section of the nodes, blanks before the tab's text
    {nullptr, 0, u""},
    {gDutyLabels8, gNode8Section, u"    "},
    {gDutyLabels6, gNode6Section, u"   "},
    {gDutyLabels6, gNode6Section, u"   "},
    {nullptr, 0, u"   "},
};
static_assert(sizeof(gLayoutFacts) / sizeof(gLayoutFacts[0]) == FAN_LAYOUT_SLIDER + 1);

bool IsPresent(UINTN Item) { return gItemPresent[Item] == 1; }

KEPT_PICTURE gFanReadoutBackdrop;
KEPT_PICTURE gTempReadoutBackdrop;

// Into Screen, of which the clean picture is still to be taken.
VOID PasteBackdrop(const KEPT_PICTURE& Backdrop, const READOUT& Readout)
{
    if (Backdrop.Pixels != nullptr) {
        (void)PasteBlt(Backdrop.Pixels, Backdrop.Width, Backdrop.Height, Readout.X, Readout.Y, gGuiCore->Screen);
    }
}

// --- Temperature rows ---

VOID CreateTemperatureRows()
{
    for (UINT8 Source = 0; Source < gTemperatureItemCount; Source++) {
        if (!IsPresent(gFirstTemperatureItem + Source)) {
            continue;
        }
        const READOUT& Readout = gReadout[Source];
        PasteBackdrop(gTempReadoutBackdrop, Readout);
        const TEMPORARY<CHAR16> Name(gHwService->GetItemString(gHwService, Source));
        (void)CreateCheckBox(&gTemperatureRadio[Source], Name.Data, gRadioX, Readout.Y, gRadioSection,
                             &gArtworkFileGuid, CHECK_BOX_JPEG, gRadioTextX, gRadioTextY);
        if (gTemperatureRadio[Source] != nullptr && gTemperaturePageBar != nullptr) {
            (void)AddPageBarCheckBox(gTemperaturePageBar, gTemperatureRadio[Source], OnTemperatureSourceSelected);
        }
    }
}

// The bar counts its members, the settings hold an item id: with a source missing the two part. That is meant.
VOID SelectStoredTemperatureSource()
{
    if (gTemperaturePageBar == nullptr) {
        return;
    }
    PAGE_BAR_ENTRY* Entry = nullptr;
    for (UINT16 Index = 0;; Index++) {
        (void)FindPageBarEntry(gTemperaturePageBar->Entries, Index, &Entry);
        if (Entry == nullptr) {
            return;
        }
        auto* Box = static_cast<CHECK_BOX_COMPONENT*>(Entry->Control);
        const bool Selected = Entry->Index == gGlobalVariable.TemperatureSource;
        if (Selected) {
            gTemperaturePageBar->SelectedIndex = Entry->Index;
            gTemperaturePageBar->SelectedId = Box->Id;
        }
        Box->State = Selected ? 1 : 0;
    }
}

// --- Frame, slider, chart ---

// A stored level beyond the slider's rows shows at the bottom. 0, which no service should hold, counts as 1.
UINT16 FirstSliderLevel(const FAN_PAGE* Page)
{
    FAN_SETTING Setting = {};
    (void)ReadFanSetting(Page, &Setting);
    if (Setting.FixedLevel == 0 || Setting.FixedLevel > CountStringTable(gDutyLabels6)) {
        return 0;
    }
    return static_cast<UINT16>(Setting.FixedLevel - 1);
}

// What stands in the panel and under the tab. The chart lies on the frame, or on the slider where there is no frame.
VOID CreatePanelControls(FAN_PAGE* Page)
{
    const FAN_PAGE_FACTS& Facts = gFanPageFacts[IndexOfFanPage(Page)];
    const FAN_LAYOUT_FACTS& Layout = gLayoutFacts[Page->Layout];
    const GUI_RECT* ChartRect = nullptr;

    if (LayoutHasFrame(Page->Layout)) {
        LoadNodeCells(Page, Layout.DutyLabels, Page->NodeCells);
        (void)CreateDragDropFrame(&Page->Frame, Layout.DutyLabels, &gArtworkFileGuid, Layout.NodeSection,
                                  Page->NodeCells);
        ChartRect = PageHasFrame(Page) ? &Page->Frame.Rect : nullptr;
    }
    if (LayoutHasSlider(Page->Layout)) {
        (void)CreateSlider(&Page->Slider, &gArtworkFileGuid, FirstSliderLevel(Page));
        if (!LayoutHasFrame(Page->Layout)) {
            ChartRect = PageHasSlider(Page) ? &Page->Slider.Rect : nullptr;
        }
    }
    if (ChartRect != nullptr) {
        (void)CreateLineChart(&Page->Chart, ChartRect, &Facts.RpmGuid, &gChartTemperatureGuid);
    }
    if (Page->Layout == FAN_LAYOUT_SLIDER) {
        Page->Slider.Linked = 1; // no box will ever write it, and the thumb is to take a drag
    } else if (Page->Layout == FAN_LAYOUT_CURVE6_SLIDER) {
        Page->Slider.Inverted = 1; // live while the box isn't checked
    }
    PasteBackdrop(gFanReadoutBackdrop, gFanReadout[IndexOfFanPage(Page)]);
}

// --- Tab and box ---

// The tab's text: the layout's blanks, then the fan's name. Null without memory: the tab then shows no text.
CHAR16* BuildTabText(const CHAR16* Prefix, const CHAR16* Name)
{
    const UINTN Length = StringLength(Prefix) + 1 + StringLength(Name) + 1;
    CHAR16* Text = AllocateZeroArray<CHAR16>(Length);
    if (Text != nullptr) {
        FormatUnicodeText(Text, Length * sizeof(CHAR16), u"%s%s", Prefix, Name != nullptr ? Name : u"");
    }
    return Text;
}

// The page's tab, box, links and targets. Nothing for a fan without a page.
VOID CreateFanPage(FAN_PAGE* Page)
{
    if (Page->Layout == FAN_LAYOUT_NONE) {
        return;
    }
    const FAN_PAGE_FACTS& Facts = gFanPageFacts[IndexOfFanPage(Page)];
    const FAN_LAYOUT_FACTS& Layout = gLayoutFacts[Page->Layout];

    const TEMPORARY<CHAR16> Name(gHwService->GetItemString(gHwService, Page->ItemId));
    const TEMPORARY<CHAR16> Text(BuildTabText(Layout.TabPrefix, Name.Data));
    (void)CreateButton(&Page->Tab, &gArtworkFileGuid, gTabSection, Text.Data, Facts.TabX, gTabY, gTabTextX, gTabTextY);
    if (Page->Tab != nullptr && gFanPageBar != nullptr) {
        (void)AddPageBarButton(gFanPageBar, Page->Tab, gShowFanPageFrame[IndexOfFanPage(Page)]);
    }
    if (LayoutHasFrame(Page->Layout)) {
        (void)CreateCheckBox(&Page->CheckBox, nullptr, gFanBoxX, gFanBoxY, gFanBoxSection, &gArtworkFileGuid,
                             CHECK_BOX_BMP, 0, 0);
    }
    JoinFanPage(Page);
}

} // namespace

constinit FAN_PAGE gFanPage[gFanItemCount] = {};
CHECK_BOX_COMPONENT* gTemperatureRadio[gTemperatureItemCount];

VOID LoadReadoutBackdrops()
{
    LoadPicture(gFanBackdropSection, &gFanReadoutBackdrop);
    LoadPicture(gTempBackdropSection, &gTempReadoutBackdrop);
}

VOID FreeReadoutBackdrops()
{
    FreePicture(&gFanReadoutBackdrop);
    FreePicture(&gTempReadoutBackdrop);
}

VOID CreateFanPages()
{
    (void)CreatePageBar(&gTemperaturePageBar);
    CreateTemperatureRows();
    SelectStoredTemperatureSource();

    for (FAN_PAGE& Page : gFanPage) {
        Page.ItemId = static_cast<UINT8>(gFirstFanItem + IndexOfFanPage(&Page));
        Page.Layout = IsPresent(Page.ItemId) ? LayoutNow(&Page) : FAN_LAYOUT_NONE;
        if (Page.Layout != FAN_LAYOUT_NONE) {
            CreatePanelControls(&Page);
        }
    }

    (void)CreatePageBar(&gFanPageBar);
    for (FAN_PAGE& Page : gFanPage) {
        CreateFanPage(&Page);
    }
}

VOID DestroyFanPages()
{
    for (FAN_PAGE& Page : gFanPage) {
        (void)DestroyDragDropFrame(&Page.Frame);
    }
    for (FAN_PAGE& Page : gFanPage) {
        (void)DestroySlider(&Page.Slider);
    }
    for (FAN_PAGE& Page : gFanPage) {
        (void)DestroyLineChart(Page.Chart);
        Page.Chart = nullptr;
    }
    for (CHECK_BOX_COMPONENT*& Radio : gTemperatureRadio) {
        (void)DestroyCheckBox(Radio);
        Radio = nullptr;
    }
    for (FAN_PAGE& Page : gFanPage) {
        (void)DestroyCheckBox(Page.CheckBox);
        Page.CheckBox = nullptr;
    }
    (void)DestroyPageBar(gFanPageBar);
    gFanPageBar = nullptr;
    (void)DestroyPageBar(gTemperaturePageBar);
    gTemperaturePageBar = nullptr;
}

VOID DestroyFanTabs()
{
    for (FAN_PAGE& Page : gFanPage) {
        DestroyButton(Page.Tab);
        Page.Tab = nullptr;
    }
}

FAN_PAGE* FindFanPage(UINT8 ItemId)
{
    if (ItemId < gFirstFanItem || ItemId >= gFirstFanItem + gFanItemCount) {
        return nullptr;
    }
    return &gFanPage[ItemId - gFirstFanItem];
}

FAN_PAGE* FanPageOnTop()
{
    if (gFanPageBar == nullptr) {
        return nullptr;
    }
    for (FAN_PAGE& Page : gFanPage) {
        if (Page.Tab != nullptr && Page.Tab->Id == gFanPageBar->SelectedId) {
            return &Page;
        }
    }
    return nullptr;
}

FAN_PAGE_LAYOUT LayoutNow(const FAN_PAGE* Page)
{
    const FAN_PAGE_LAYOUT Layout = gFanPageFacts[IndexOfFanPage(Page)].Layout;
    if (Layout != FAN_LAYOUT_NONE) {
        return Layout;
    }
    const UINT8 Kind = gHwService->GetFanKind(gHwService, Page->ItemId);
    return Kind == 1 ? FAN_LAYOUT_CURVE8 : Kind == 0 ? FAN_LAYOUT_CURVE6 : FAN_LAYOUT_NONE;
}

EFI_STATUS ReadFanSetting(const FAN_PAGE* Page, FAN_SETTING* Setting)
{
    return gHwService->Fan[IndexOfFanPage(Page)].Get(gHwService, Setting);
}

EFI_STATUS WriteFanSetting(const FAN_PAGE* Page, const FAN_SETTING* Setting)
{
    return gHwService->Fan[IndexOfFanPage(Page)].Set(gHwService, Setting);
}
