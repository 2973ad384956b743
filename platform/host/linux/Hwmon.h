// The kernel's files of sensor chips, as under /sys/class/hwmon: what is there, what it is called, and one number or text
// of a file read or written. A folder made by a test serves as well.
#pragma once

#include <string>
#include <vector>

#include "uefi/Base.h"

// The text of a small file without the end of its line. 0, or the errno of what failed; an empty file is ENODATA. Where
// Wait is false, a file that isn't ready answers at once.
int ReadChipText(const std::string& Path, std::string* Text, bool Wait = false);
// The same for a number in decimal; EINVAL for anything else.
int ReadChipNumber(const std::string& Path, INT64* Number, bool Wait = false);
// Writes a text and the end of its line over what the file has. 0, or errno.
int WriteChipText(const std::string& Path, const std::string& Text);

enum SENSOR_KIND : UINT8 { SENSOR_TEMPERATURE, SENSOR_FAN, SENSOR_VOLTAGE };

// One sensor: thousandths of a degree, revolutions a minute, or millivolts.
struct SENSOR {
    SENSOR_KIND Kind;
    UINTN Chip;         // number of the chip in the order of its folders
    std::string Driver; // the name that the driver gives its chip, such as "coretemp"
    UINT32 Number;      // N of tempN_input
    std::string Stem;   // path up to the sensor's own name, such as ".../hwmon2/temp1"
    std::string Label;  // the kernel's, at most 63 characters, or "temp1" where it has none
    bool Labelled;
    std::string Device; // what the chip's folder leads to, with all links followed; empty where it leads nowhere

    // Looks for the chip's folder where that isn't this chip's any more, since drivers that are loaded again deal the
    // folders' numbers anew: by the device, or, where that isn't told, by the driver, if no other chip has the same. False
    // when there is none.
    bool Follow();
    std::string Input() const { return Stem + "_input"; }
    std::string Folder() const { return Stem.substr(0, Stem.rfind('/')); }
    // The folder with a file for this number, such as pwm1 of fan1.
    std::string Beside(const std::string& Name) const { return Folder() + '/' + Name; }
    // Reads it: 0, errno, or ERANGE for a value that no such sensor has, as an input that isn't wired gives.
    int Read(INT64* Value, bool Wait = false) const;
};

// All sensors under that folder, chip by chip, each kind by number. False with a sentence when the folder can't be read.
bool FindSensors(const std::string& Root, std::vector<SENSOR>* Sensors, std::string* Error);

// The sensors that the console shows, by place: three temperatures, seven fans, seven voltages; null where none is.
struct CHOSEN_SENSORS {
    const SENSOR* Temperatures[3] = {};
    const SENSOR* Fans[7] = {}; // in the chips' order; their pages are dealt out later
    const SENSOR* Voltages[7] = {};
};
// Wanted names temperatures by label, "driver/label" or "driver/tempN", and they come first; the processor's, the board's
// and the chipset's fill what is left. False with a sentence when one isn't there.
bool ChooseSensors(const std::vector<SENSOR>& Sensors, const std::vector<std::string>& Wanted, CHOSEN_SENSORS* Chosen,
                   std::string* Error);

// Whether Text begins with Start, and whether it has Part in it, both without a look at the case.
bool BeginsWith(const std::string& Text, const std::string& Start);
bool Mentions(const std::string& Text, const std::string& Part);
