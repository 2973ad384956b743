#include "fan/FanPage.h"

#include "controls/Labels.h"
#include "fan/FanChart.h"
#include "fan/FanLegend.h"
#include "fan/FanOutline.h"
#include "fan/Fan_Ctrl_Function.h"
#include "graphics/Artwork.h"
#include "graphics/GraphicProtocol.h"
#include "gui/PageBar.h"
#include "gui/PointerEngine.h"
#include "gui/core/Listeners.h"
#include "shell/contract/Board.h"
#include "support/Pool.h"
#include "support/Strings.h"
#include "support/Print.h"

namespace {

// --- The facts ---

constexpr UINT32 gTabSection = 5;       // JPEG
constexpr UINT32 gNode8Section = 11;    // BMP
constexpr UINT32 gNode6Section = 13;    // BMP
constexpr UINT32 gRadioSection = 18;    // JPEG
constexpr UINT32 gFanBoxSection = 19;   // BMP

constexpr UINT32 gTabY = 118;
constexpr UINT16 gTabTextX = 0;
constexpr UINT16 gTabTextY = 38;
constexpr UINT32 gFanBackdropY = 181;
constexpr UINT32 gFanBoxX = 286;
constexpr UINT32 gFanBoxY = 232;

constexpr UINT32 gTempBackdropX = 165;
constexpr UINT32 gRadioX = 55;
constexpr UINT16 gRadioTextX = 56;
constexpr UINT16 gRadioTextY = 7;
// Backdrop and radio of each temperature source. The third row keeps the pitch of the first two.
constexpr UINT32 gTemperatureRowY[gTemperatureItemCount] = {296, 333, 370};

constexpr UINT8 gFanKindItem = 5; // the one fan whose layout the board decides

// Vendor of the temperature history, which all charts share.
constexpr EFI_GUID gChartTemperatureGuid = {
    0x7BE9DF7E, 0x521C, 0x4547, {0xAB, 0x36, 0x67, 0x3B, 0x07, 0x4C, 0xC5, 0x5D}};

struct FAN_PAGE_FACTS {
    FAN_PAGE_LAYOUT Layout; // NONE: asked of the board
    UINT32 TabX;
    UINT32 BackdropX;
    EFI_GUID RpmGuid; // vendor of the speed history
};

// The tab of item 8 lies one pixel right of the pitch and its backdrop doesn't; that is meant.
constexpr FAN_PAGE_FACTS gFanPageFacts[gFanItemCount] = {
    {FAN_LAYOUT_CURVE8, 275, 275,
     {0xFE2A31D4, 0xE344, 0x4B1C, {0xAC, 0x0A, 0x54, 0xB6, 0x99, 0xBA, 0xEB, 0xF6}}},
    {FAN_LAYOUT_NONE, 374, 374,
     {0x55D26D12, 0x33F2, 0x4000, {0xB1, 0x7D, 0xD2, 0x20, 0xFD, 0xB3, 0xB5, 0xF2}}},
    {FAN_LAYOUT_CURVE6, 473, 473,
     {0xAEFF8490, 0xBEDF, 0x460D, {0xBE, 0x5F, 0x62, 0x99, 0x7F, 0x9B, 0x2D, 0xA5}}},
    {FAN_LAYOUT_CURVE6_SLIDER, 572, 572,
     {0x9F2A1282, 0x0C21, 0x48A8, {0x8F, 0x51, 0x7E, 0x42, 0xF5, 0x0C, 0x01, 0xC4}}},
    {FAN_LAYOUT_CURVE6_SLIDER, 672, 671,
     {0xC352DF79, 0x3511, 0x4D1F, {0x99, 0xF4, 0xD1, 0xBC, 0x4A, 0xB1, 0x9F, 0xA1}}},
    {FAN_LAYOUT_SLIDER, 770, 770,
     {0x659F4BA5, 0x4D74, 0x46DB, {0x8F, 0x50, 0xBF, 0x9C, 0xD4, 0x4A, 0x26, 0xA3}}},
    {FAN_LAYOUT_SLIDER, 869, 869,
     {0xE20DC3DF, 0x0041, 0x4A25, {0xB3, 0x04, 0x76, 0xF1, 0x6B, 0x07, 0x76, 0xFD}}},
};

// --- What ties a page together ---

// One call each: a link of the box, a target of the tab, a listener, or the reading of the setting into page and box.
enum PAGE_STEP : UINT8 {
    READ_SETTING,
    LINK_WRITE_CHECKED,      // a click that checks the box writes the setting
    LINK_WRITE_UNCHECKED,    // and so does one that unchecks it
    LINK_REFRESH_FRAME,      // a click inside the box repaints the frame
    LINK_REFRESH_LEGEND,     // and the legend
    LINK_SHOW_FRAME,         // the checked box switches the frame on
    LINK_SHOW_SLIDER,        // the unchecked one the slider
    TARGET_BOX,
    TARGET_FRAME,
    TARGET_SLIDER,
    TARGET_FRAME_IF_CHECKED, // only switched, not repainted: the box does that
    TARGET_SLIDER_IF_UNCHECKED,
    TARGET_LEGEND,
    LISTEN_FRAME_DROP,
    LISTEN_SLIDER_DROP,
};

constexpr PAGE_STEP gCurve8Steps[] = {
    LINK_WRITE_UNCHECKED, LINK_WRITE_CHECKED, TARGET_FRAME,        TARGET_BOX,    READ_SETTING,
    LINK_REFRESH_FRAME,   LISTEN_FRAME_DROP,  LINK_REFRESH_LEGEND, TARGET_LEGEND,
};
constexpr PAGE_STEP gCurve6Steps[] = {
    READ_SETTING, LINK_REFRESH_FRAME, LINK_WRITE_UNCHECKED, LINK_WRITE_CHECKED, TARGET_BOX,
    TARGET_FRAME, LISTEN_FRAME_DROP,  LINK_REFRESH_LEGEND,  TARGET_LEGEND,
};
constexpr PAGE_STEP gCurve6SliderSteps[] = {
    READ_SETTING,
    LINK_SHOW_FRAME,
    LINK_SHOW_SLIDER,
    LINK_WRITE_UNCHECKED,
    LINK_WRITE_CHECKED,
    TARGET_BOX,
    TARGET_FRAME_IF_CHECKED,
    TARGET_SLIDER_IF_UNCHECKED,
    LISTEN_FRAME_DROP,
    LISTEN_SLIDER_DROP,
    LINK_REFRESH_LEGEND,
    TARGET_LEGEND,
};
constexpr PAGE_STEP gSliderSteps[] = {TARGET_SLIDER, LISTEN_SLIDER_DROP, TARGET_LEGEND};

struct FAN_LAYOUT_FACTS {
    const CHAR16* const* DutyLabels; // null without a curve frame
    UINT32 NodeSection;
    const CHAR16* TabPrefix;
    const PAGE_STEP* Steps;
    UINTN StepCount;
};

template <UINTN Count>
constexpr FAN_LAYOUT_FACTS LayoutFacts(const CHAR16* const* DutyLabels, UINT32 NodeSection, const CHAR16* TabPrefix,
                                       const PAGE_STEP (&Steps)[Count])
{
    return {DutyLabels, NodeSection, TabPrefix, Steps, Count};
}

constexpr FAN_LAYOUT_FACTS gLayoutFacts[] = {
    {nullptr, 0, u"", nullptr, 0},
    LayoutFacts(gDutyLabels8, gNode8Section, u"    ", gCurve8Steps),
    LayoutFacts(gDutyLabels6, gNode6Section, u"   ", gCurve6Steps),
    LayoutFacts(gDutyLabels6, gNode6Section, u"   ", gCurve6SliderSteps),
    LayoutFacts(nullptr, 0, u"   ", gSliderSteps),
};
static_assert(sizeof(gLayoutFacts) / sizeof(gLayoutFacts[0]) == FAN_LAYOUT_SLIDER + 1);

bool IsPresent(UINTN Item) { return gItemPresent[Item] == 1; }

// --- Temperature rows ---

VOID CreateTemperatureRows()
{
    for (UINT8 Source = 0; Source < gTemperatureItemCount; Source++) {
        if (!IsPresent(gFirstTemperatureItem + Source)) {
            continue;
        }
        const UINT32 Y = gTemperatureRowY[Source];
        if (gTempReadoutBackdrop != nullptr) {
            (void)PasteBlt(gTempReadoutBackdrop, gTempReadoutBackdropWidth, gTempReadoutBackdropHeight, gTempBackdropX,
                           Y, gGuiCore->Screen);
        }
        const TEMPORARY<CHAR16> Name(gHwService->GetItemString(gHwService, Source));
        (void)CreateCheckBox(&gTemperatureRadio[Source], Name.Data, gRadioX, Y, gRadioSection, &gArtworkFileGuid,
                             CHECK_BOX_JPEG, gRadioTextX, gRadioTextY);
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
    }
    if (gFanReadoutBackdrop != nullptr) {
        (void)PasteBlt(gFanReadoutBackdrop, gFanReadoutBackdropWidth, gFanReadoutBackdropHeight, Facts.BackdropX,
                       gFanBackdropY, gGuiCore->Screen);
    }
}

FAN_PAGE_LAYOUT DecideLayout(const FAN_PAGE* Page)
{
    if (!IsPresent(Page->ItemId)) {
        return FAN_LAYOUT_NONE;
    }
    if (Page->ItemId != gFanKindItem) {
        return gFanPageFacts[IndexOfFanPage(Page)].Layout;
    }
    switch (AskFanKind()) {
    case 1:
        return FAN_LAYOUT_CURVE8;
    case 0:
        return FAN_LAYOUT_CURVE6;
    default:
        return FAN_LAYOUT_NONE;
    }
}

// --- Tab, box, links and targets ---

VOID ReadSettingIntoBox(FAN_PAGE* Page)
{
    (void)ReadFanSetting(Page, &Page->Setting);
    if (Page->CheckBox != nullptr) {
        Page->CheckBox->State = Page->Setting.CurveEnabled != 0 ? 1 : 0;
    }
}

// Shows the frame as the page's box stands, its nodes or none. The box's links bring the state to the frame too, but the
// firmware chooses whether it runs them before this.
VOID ShowFanFrame(FAN_PAGE* Page)
{
    if (Page->CheckBox != nullptr) {
        Page->Frame.Linked = Page->CheckBox->State;
    }
    ShowDragDropFrame(&Page->Frame);
}

EFI_STATUS OnFanFrameShown(EFI_EVENT, VOID* Context)
{
    ShowFanFrame(static_cast<FAN_PAGE*>(Context));
    return EFI_SUCCESS;
}

VOID AddLink(FAN_PAGE* Page, VOID* Context, EFI_EVENT_NOTIFY Notify, CHECK_BOX_LINK_KIND Kind, UINT8* Target,
             UINT32 ComponentId)
{
    if (Page->CheckBox != nullptr) {
        (void)AddCheckBoxLink(Page->CheckBox, Context, Notify, Kind, Target, static_cast<UINT16>(ComponentId));
    }
}

VOID AddTarget(FAN_PAGE* Page, VOID* Context, EFI_EVENT_NOTIFY Notify, UINT32 ComponentId, const UINT8* Flag,
               UINT8 FlagValue)
{
    if (Page->Tab != nullptr && gFanPageBar != nullptr) {
        (void)AddPageBarTarget(Page->Tab, Context, Notify, static_cast<UINT16>(ComponentId), Flag, FlagValue);
    }
}

// A step that needs a control which isn't there is left out. Without its box a page of curve or slider is one of the
// slider alone.
VOID RunPageStep(FAN_PAGE* Page, PAGE_STEP Step)
{
    const FAN_PAGE_WRITERS& Writers = gFanPageWriters[IndexOfFanPage(Page)];
    CHECK_BOX_COMPONENT* Box = Page->CheckBox;
    DRAGDROP_COMPONENT* Frame = &Page->Frame;
    SLIDER_COMPONENT* Slider = &Page->Slider;
    const bool HasFrame = PageHasFrame(Page);
    const bool HasSlider = PageHasSlider(Page);

    switch (Step) {
    case READ_SETTING:
        ReadSettingIntoBox(Page);
        break;
    case LINK_WRITE_CHECKED:
        AddLink(Page, nullptr, Writers.OnCurveChecked, CHECK_BOX_LINK_CHECKED, &Page->LinkByte, 0);
        break;
    case LINK_WRITE_UNCHECKED:
        AddLink(Page, nullptr, Writers.OnCurveUnchecked, CHECK_BOX_LINK_UNCHECKED, &Page->LinkByte, 0);
        break;
    case LINK_REFRESH_FRAME:
        if (HasFrame) {
            AddLink(Page, Frame, OnDragDropRefresh, CHECK_BOX_LINK_INSIDE, &Frame->Linked, 0);
        }
        break;
    case LINK_REFRESH_LEGEND:
        AddLink(Page, nullptr, RefreshFanLegend, CHECK_BOX_LINK_INSIDE, &Frame->Linked, 0);
        break;
    case LINK_SHOW_FRAME:
        if (HasFrame) {
            Frame->Inverted = 0;
            AddLink(Page, Frame, OnDragDropRefresh, CHECK_BOX_LINK_CHECKED, &Frame->Linked, Frame->Id);
        }
        break;
    case LINK_SHOW_SLIDER:
        if (HasSlider) {
            Slider->Inverted = 1;
            AddLink(Page, Slider, OnSliderRefresh, CHECK_BOX_LINK_UNCHECKED, &Slider->Linked, Slider->FrameId);
        }
        break;
    case TARGET_BOX:
        if (Box != nullptr) {
            AddTarget(Page, Box, SetCheckBoxState, Box->Id, nullptr, 0);
        }
        break;
    case TARGET_FRAME:
        if (HasFrame) {
            AddTarget(Page, Page, OnFanFrameShown, Frame->Id, nullptr, 0);
        }
        break;
    case TARGET_SLIDER:
        if (HasSlider) {
            AddTarget(Page, Slider, OnSliderRefresh, Slider->FrameId, nullptr, 0);
        }
        break;
    case TARGET_FRAME_IF_CHECKED:
        if (HasFrame && Box != nullptr) {
            AddTarget(Page, nullptr, nullptr, Frame->Id, &Box->State, 1);
        }
        break;
    case TARGET_SLIDER_IF_UNCHECKED:
        if (HasSlider) {
            // The box repaints the slider; without one the tab has to.
            AddTarget(Page, Box != nullptr ? nullptr : Slider, Box != nullptr ? nullptr : OnSliderRefresh,
                      Slider->FrameId, Box != nullptr ? &Box->State : nullptr, 0);
        }
        break;
    case TARGET_LEGEND:
        AddTarget(Page, nullptr, RefreshFanLegend, LayoutHasFrame(Page->Layout) ? Frame->Id : Slider->FrameId, nullptr,
                  0);
        break;
    case LISTEN_FRAME_DROP:
        AddDragDropListener(Writers.OnFrameDrop, L_HOLD_TO_RELEASE);
        break;
    case LISTEN_SLIDER_DROP:
        AddSliderListener(Writers.OnSliderDrop, L_HOLD_TO_RELEASE);
        break;
    }
}

// What the links of a page's box run, in their order; without a click those alone that paint the frame.
VOID RunBoxLinks(FAN_PAGE* Page, bool Clicked)
{
    const FAN_LAYOUT_FACTS& Layout = gLayoutFacts[Page->Layout];
    const FAN_PAGE_WRITERS& Writers = gFanPageWriters[IndexOfFanPage(Page)];
    const bool Checked = PageBoxIsChecked(Page);
    for (UINTN Step = 0; Step < Layout.StepCount; Step++) {
        const PAGE_STEP Link = Layout.Steps[Step];
        if (Link == LINK_WRITE_CHECKED && Clicked && Checked) {
            (void)Writers.OnCurveChecked(nullptr, nullptr);
        } else if (Link == LINK_WRITE_UNCHECKED && Clicked && !Checked) {
            (void)Writers.OnCurveUnchecked(nullptr, nullptr);
        } else if (Link == LINK_REFRESH_FRAME && PageHasFrame(Page)) {
            ShowFanFrame(Page);
        } else if (Link == LINK_SHOW_FRAME && Checked && PageHasFrame(Page)) {
            (void)OnDragDropRefresh(nullptr, &Page->Frame);
        } else if (Link == LINK_SHOW_SLIDER && Clicked && !Checked && PageHasSlider(Page)) {
            (void)OnSliderRefresh(nullptr, &Page->Slider);
        }
    }
}

// The tab's text: the layout's blanks, then the fan's name. Null without memory: the tab then shows no text.
CHAR16* BuildTabText(const CHAR16* Prefix, const CHAR16* Name)
{
    const UINTN Length = StringLength(Prefix) + 1 + StringLength(Name) + 1;
    CHAR16* Text = AllocateZeroArray<CHAR16>(Length);
    if (Text != nullptr) {
        (void)FormatUnicodeText(Text, Length * sizeof(CHAR16), u"%s%s", Prefix, Name != nullptr ? Name : u"");
    }
    return Text;
}

// The page's tab, box, links and targets. Nothing for a fan without a page.
VOID CreateFanPage(FAN_PAGE* Page)
{
    if (Page->Layout == FAN_LAYOUT_NONE) {
        return;
    }
    const UINTN Index = IndexOfFanPage(Page);
    const FAN_LAYOUT_FACTS& Layout = gLayoutFacts[Page->Layout];

    const TEMPORARY<CHAR16> Name(gHwService->GetItemString(gHwService, Page->ItemId));
    const TEMPORARY<CHAR16> Text(BuildTabText(Layout.TabPrefix, Name.Data));
    (void)CreateButton(&Page->Tab, &gArtworkFileGuid, gTabSection, Text.Data, gFanPageFacts[Index].TabX, gTabY,
                       gTabTextX, gTabTextY);
    if (Page->Tab != nullptr && gFanPageBar != nullptr) {
        (void)AddPageBarButton(gFanPageBar, Page->Tab, gShowFanPageFrame[Index]);
    }
    if (LayoutHasFrame(Page->Layout)) {
        (void)CreateCheckBox(&Page->CheckBox, nullptr, gFanBoxX, gFanBoxY, gFanBoxSection, &gArtworkFileGuid,
                             CHECK_BOX_BMP, 0, 0);
    }
    for (UINTN Step = 0; Step < Layout.StepCount; Step++) {
        RunPageStep(Page, Layout.Steps[Step]);
    }
}

} // namespace

constinit FAN_PAGE gFanPage[gFanItemCount] = {};
CHECK_BOX_COMPONENT* gTemperatureRadio[gTemperatureItemCount];

PIXEL* gFanReadoutBackdrop;
UINT32 gFanReadoutBackdropWidth;
UINT32 gFanReadoutBackdropHeight;
PIXEL* gTempReadoutBackdrop;
UINT32 gTempReadoutBackdropWidth;
UINT32 gTempReadoutBackdropHeight;

VOID CreateFanPages()
{
    (void)CreatePageBar(&gTemperaturePageBar);
    CreateTemperatureRows();
    SelectStoredTemperatureSource();

    for (FAN_PAGE& Page : gFanPage) {
        Page.ItemId = static_cast<UINT8>(gFirstFanItem + IndexOfFanPage(&Page));
        Page.Layout = DecideLayout(&Page);
        if (Page.Layout != FAN_LAYOUT_NONE) {
            CreatePanelControls(&Page);
        }
    }

    (void)CreatePageBar(&gFanPageBar);
    for (FAN_PAGE& Page : gFanPage) {
        CreateFanPage(&Page);
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

VOID ApplyFanBox(FAN_PAGE* Page, bool Clicked)
{
    if (Page->CheckBox != nullptr) {
        ShowCheckBoxState(Page->CheckBox);
        RunBoxLinks(Page, Clicked);
    }
}

UINT8 AskFanKind() { return gHwService->GetFanKind(gHwService, gFanKindItem); }

EFI_STATUS ReadFanSetting(const FAN_PAGE* Page, FAN_SETTING* Setting)
{
    return gHwService->Fan[IndexOfFanPage(Page)].Get(gHwService, Setting);
}

EFI_STATUS WriteFanSetting(const FAN_PAGE* Page, const FAN_SETTING* Setting)
{
    return gHwService->Fan[IndexOfFanPage(Page)].Set(gHwService, Setting);
}
