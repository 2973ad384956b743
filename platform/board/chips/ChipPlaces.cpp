#include "platform/board/chips/ChipBoardState.h"

namespace {

// A processor that has no more than this isn't running, and a chipset's channel that nobody feeds has 0.
constexpr INT32 gLowestLikely = 1000;
constexpr INT32 gHighestLikely = 120000;

constexpr bool gTrueThenFalse[] = {true, false};

CHAR8 Lower(CHAR8 Letter) { return Letter >= 'A' && Letter <= 'Z' ? static_cast<CHAR8>(Letter + 32) : Letter; }

bool SameName(const CHAR8* A, const CHAR8* B)
{
    while (*A != 0 && Lower(*A) == Lower(*B)) {
        A++;
        B++;
    }
    return *A == *B;
}

bool MentionsPump(const CHAR16* Text)
{
    constexpr CHAR8 Word[] = "pump";
    for (; *Text != 0; Text++) {
        UINTN Same = 0;
        while (Word[Same] != 0 && Text[Same] < 0x80 && Lower(static_cast<CHAR8>(Text[Same])) == Word[Same]) {
            Same++;
        }
        if (Word[Same] == 0) {
            return true;
        }
    }
    return false;
}

// The next wish of that kind for which there is a sensor, from *Row on; gMostSensors when there is none.
UINTN NextWished(WISH_KIND Kind, UINTN* Row)
{
    while (gChipBoard.Wishes != nullptr && *Row < gChipBoard.Wishes->Count) {
        const WISH& Wish = gChipBoard.Wishes->Rows[(*Row)++];
        for (UINTN Index = 0; Wish.Kind == Kind && Index < gChipBoard.Sensors.Count; Index++) {
            if (SameName(Wish.Sensor, gChipBoard.Sensors.Rows[Index].Name)) {
                return Index;
            }
        }
    }
    return gMostSensors;
}

constexpr bool Suits(WISH_KIND Wish, READING_KIND Kind)
{
    switch (Wish) {
    case WISH_NAME:
        return true;
    case WISH_TEMPERATURE:
        return Kind == READING_TEMPERATURE;
    case WISH_VOLTAGE:
    case WISH_FACTOR:
        return Kind == READING_VOLTAGE;
    default:
        return Kind == READING_FAN;
    }
}

bool IsLikely(UINT8 Index)
{
    const SENSOR_READING& Reading = gChipBoard.Readings[Index];
    return !Reading.Absent && (gChipBoard.Sensors.Rows[Index].Kind != READING_TEMPERATURE ||
                               (Reading.Last >= gLowestLikely && Reading.Last <= gHighestLikely));
}

VOID Place(UINTN Item, UINTN At)
{
    gChipBoard.SensorOf[Item] = static_cast<UINT8>(At);
    gChipBoard.Present |= UINT32{1} << Item;
}

// The first sensor of that kind that is likely, has no place yet, and is meant for that one, or for any with gNoPlace.
UINTN FindFor(READING_KIND Kind, UINT8 Wanted)
{
    for (UINT8 Index = 0; Index < gChipBoard.Sensors.Count; Index++) {
        const CHIP_SENSOR& Sensor = gChipBoard.Sensors.Rows[Index];
        if (Sensor.Kind == Kind && (Wanted == gNoPlace || Sensor.Place == Wanted) && IsLikely(Index) &&
            !IsPlaced(Index)) {
            return Index;
        }
    }
    return gMostSensors;
}

VOID PlaceWished(WISH_KIND Wish, READING_KIND Kind, UINT8 FirstItem, UINT8 Count)
{
    UINT8 Filled = 0;
    for (UINTN Row = 0, At = 0; Filled < Count && (At = NextWished(Wish, &Row)) != gMostSensors;) {
        if (gChipBoard.Sensors.Rows[At].Kind == Kind && !gChipBoard.Readings[At].Absent && !IsPlaced(At)) {
            Place(UINTN{FirstItem} + Filled++, At);
        }
    }
}

VOID PlaceTemperatures()
{
    PlaceWished(WISH_TEMPERATURE, READING_TEMPERATURE, gFirstTemperatureItem, gTemperatureItemCount);
    const bool Wished = gChipBoard.Present != 0;
    UINT8 Item = gFirstTemperatureItem;
    for (UINT8 Role = 0; Role < gTemperatureItemCount; Role++) {
        // Without wishes a role keeps its place, so that the second temperature always is the board's.
        while (Wished && HasItem(gChipBoard, Item)) {
            Item++;
        }
        const UINTN At = FindFor(READING_TEMPERATURE, Role);
        if (At != gMostSensors && (Wished ? Item : Role) < gTemperatureItemCount) {
            Place(Wished ? Item : Role, At);
        }
    }
}

VOID PlaceVoltages()
{
    PlaceWished(WISH_VOLTAGE, READING_VOLTAGE, gFirstVoltageItem, gVoltageItemCount);
    for (const bool Known : gTrueThenFalse) {
        for (UINT8 Index = 0; Index < gVoltageItemCount; Index++) {
            const UINT8 Item = static_cast<UINT8>(gFirstVoltageItem + Index);
            const UINTN Sensor = FindFor(READING_VOLTAGE, Known ? Index : gNoPlace);
            if (!HasItem(gChipBoard, Item) && Sensor != gMostSensors) {
                Place(Item, Sensor);
            }
        }
    }
}

VOID PlaceFan(UINTN At)
{
    for (const UINT8 Item : gChipBoard.Fans[At].Means.HasCurve ? gCurvePages : gSliderPages) {
        if (!HasItem(gChipBoard, Item)) {
            gChipBoard.Pages[Item - gFirstFanItem] = {gChipBoard.Fans[At], ControlOfFan(gChipBoard.FanKind, Item), {}};
            return Place(Item, At);
        }
    }
}

VOID PlaceFans()
{
    // By wish, then turning ones, then the others: as many as there are places. Among the chosen, fans with a curve have
    // the first choice of a page.
    UINTN Chosen[gFanItemCount];
    UINTN Count = 0;
    const auto Choose = [&](UINTN At) {
        bool New = Count < gFanItemCount && gChipBoard.Sensors.Rows[At].Kind == READING_FAN;
        for (UINTN Index = 0; Index < Count; Index++) {
            New = New && Chosen[Index] != At;
        }
        if (New) {
            Chosen[Count++] = At;
        }
    };
    UINTN At = 0;
    for (UINTN Row = 0; (At = NextWished(WISH_FAN, &Row)) != gMostSensors;) {
        Choose(At);
    }
    const UINTN Wished = Count;
    for (const bool Turning : gTrueThenFalse) {
        for (At = 0; At < gChipBoard.Sensors.Count; At++) {
            if (!Turning || (!gChipBoard.Readings[At].Absent && gChipBoard.Readings[At].Last > 0)) {
                Choose(At);
            }
        }
    }
    // Back into the chips' order, behind those by wish.
    for (UINTN First = Wished; First < Count; First++) {
        for (UINTN Other = First + 1; Other < Count; Other++) {
            if (Chosen[Other] < Chosen[First]) {
                At = Chosen[First];
                Chosen[First] = Chosen[Other];
                Chosen[Other] = At;
            }
        }
    }
    for (const bool Curve : gTrueThenFalse) {
        for (UINTN Index = 0; Index < Count; Index++) {
            if (gChipBoard.Fans[Chosen[Index]].Means.HasCurve == Curve) {
                PlaceFan(Chosen[Index]);
            }
        }
    }
}

} // namespace

bool IsPlaced(UINTN At)
{
    for (UINT8 Item = 0; Item < gItemCount; Item++) {
        if (HasItem(gChipBoard, Item) && gChipBoard.SensorOf[Item] == At) {
            return true;
        }
    }
    return false;
}

VOID FulfilWishes(CHIP_REPORT* Report)
{
    for (UINTN Row = 0; gChipBoard.Wishes != nullptr && Row < gChipBoard.Wishes->Count; Row++) {
        const WISH& Wish = gChipBoard.Wishes->Rows[Row];
        UINTN Next = Row;
        const UINTN At = NextWished(Wish.Kind, &Next);
        if (At == gMostSensors || Next != Row + 1 || !Suits(Wish.Kind, gChipBoard.Sensors.Rows[At].Kind)) {
            ReportWishFault(Report, Wish.Line,
                            At == gMostSensors || Next != Row + 1 ? "no sensor has that name"
                                                                  : "not that kind of sensor",
                            Wish.Sensor);
            continue;
        }
        if (Wish.Kind == WISH_NAME) {
            for (UINTN Letter = 0; Letter < gSensorNameRoom; Letter++) {
                gChipBoard.Sensors.Rows[At].Label[Letter] = Wish.Name[Letter];
            }
        } else if (Wish.Kind == WISH_FACTOR) {
            gChipBoard.Factors[At] = Wish.Factor;
        } else if (Wish.Kind == WISH_LEAVE) {
            gChipBoard.Fans[At].Means.WhyNot = "ventara.ini leaves it alone";
        }
    }
    for (UINTN Index = 0; Index < gChipBoard.Sensors.Count; Index++) {
        const CHIP_SENSOR& Sensor = gChipBoard.Sensors.Rows[Index];
        if (Sensor.Kind == READING_FAN && gChipBoard.Fans[Index].Means.WhyNot == nullptr) {
            if (MentionsPump(Sensor.Label)) {
                gChipBoard.Fans[Index].Means.WhyNot = "a pump is left alone";
            } else if (gChipBoard.Readings[Index].Absent || gChipBoard.Readings[Index].Last == 0) {
                gChipBoard.Fans[Index].Means.WhyNot = "it stands still, or there is none";
            }
        }
    }
}

VOID PlaceSensors()
{
    PlaceTemperatures();
    PlaceVoltages();
    PlaceFans();
}
