// A folder that looks like /sys/class/hwmon, made by a test of plain files.
#pragma once

#include <fstream>
#include <iterator>
#include <map>
#include <string>

#include "tests/host/TestFolder.h"

struct HWMON_TREE {
    TestFolder Folder;
    std::string Root = Folder.File("hwmon");

    using FILES = std::map<std::string, std::string>; // name, text without the end of its line

    // "hwmon2/pwm1" to its path.
    std::string Path(const std::string& Name) const { return Root + '/' + Name; }
    void Write(const std::string& Name, const std::string& Text) const { std::ofstream(Path(Name)) << Text << '\n'; }
    std::string Text(const std::string& Name) const
    {
        std::ifstream File(Path(Name));
        std::string All{std::istreambuf_iterator<char>(File), {}};
        return All.substr(0, All.find('\n'));
    }
    void Chip(const std::string& Name, const FILES& Files) const
    {
        std::filesystem::create_directories(Path(Name));
        for (const auto& [File, Value] : Files) {
            Write(Name + '/' + File, Value);
        }
    }
    // Every file's bytes.
    FILES Bytes() const
    {
        FILES All;
        for (const auto& Entry : std::filesystem::recursive_directory_iterator(Root)) {
            if (Entry.is_regular_file()) {
                std::ifstream File(Entry.path());
                All[Entry.path()] = {std::istreambuf_iterator<char>(File), {}};
            }
        }
        return All;
    }

    // Adds a fan to a chip's files: a curve of 30, 45, 60 and 72 degrees at 20, 39, 63 and 86 %, and full at 100 degrees.
    static FILES WithCurve(FILES Files, int Fan)
    {
        const std::string Pwm = "pwm" + std::to_string(Fan);
        Files["fan" + std::to_string(Fan) + "_input"] = std::to_string(1000 + Fan);
        Files[Pwm] = "77";
        Files[Pwm + "_enable"] = "5";
        const char* Points[][2] = {
            {"30000", "51"}, {"45000", "100"}, {"60000", "160"}, {"72000", "220"}, {"100000", "255"}};
        for (int Point = 0; Point < 5; Point++) {
            const std::string Stem = Pwm + "_auto_point" + std::to_string(Point + 1);
            Files[Stem + "_temp"] = Points[Point][0];
            Files[Stem + "_pwm"] = Points[Point][1];
        }
        return Files;
    }
    // A processor, a chip with three curves, and one of slopes that takes a duty.
    void MakeDesktop() const
    {
        // clang-format off
        Chip("hwmon0", {{"name", "acpitz"}, {"temp1_input", "27800"}});
        Chip("hwmon1", {{"name", "coretemp"}, {"temp1_input", "56400"}, {"temp1_label", "Package id 0"},
                        {"temp2_input", "55000"}, {"temp2_label", "Core 0"}});
        Chip("hwmon2", {{"name", "it8728"}, {"temp1_input", "-55000"}, {"fan1_input", "800"}, {"pwm1", "102"},
                        {"pwm1_enable", "2"}, {"pwm1_auto_point1_temp", "30000"}, {"pwm1_auto_point2_temp", "50000"},
                        {"pwm1_auto_point3_temp", "70000"}, {"in7_input", "3312"}, {"in7_label", "3VSB"}});
        Chip("hwmon10", WithCurve(WithCurve(WithCurve({{"name", "nct6798"}, {"temp1_input", "34000"},
                                                       {"temp1_label", "SYSTIN"}, {"temp2_input", "-60000"},
                                                       {"temp2_label", "CPUTIN"}, {"temp7_input", "0"},
                                                       {"temp7_label", "PCH_CHIP_TEMP"}, {"in0_input", "1216"},
                                                       {"in3_input", "3328"}, {"in3_label", "3VCC"}},
                                                      1), 2), 3));
        // clang-format on
    }
};
