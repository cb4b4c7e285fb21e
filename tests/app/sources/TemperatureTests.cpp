#include <gtest/gtest.h>

#include "sources/Temperature.hpp"
#include "tests/app/MachineTree.hpp"

namespace zelto::sources {
namespace {

using test::MachineTree;

std::optional<double> celsius(const MachineTree::Files& files) {
    const MachineTree machine(files);
    const auto chip = readChipTemperature(machine.root());
    return chip ? std::optional(chip->celsius) : std::nullopt;
}

const std::string hwmon = "sys/class/hwmon/hwmon";
const std::string zone = "sys/class/thermal/thermal_zone";

TEST(ChipTemperature, IsFoundByTheChipsNameAndTheSensorsLabel) {
    struct Case {
        const char* what;
        MachineTree::Files files;
        std::optional<double> expected;
    };
    const MachineTree::Files others{
        {hwmon + "0/name", "acpitz\n"},
        {hwmon + "0/temp1_input", "27800\n"},
        {hwmon + "1/name", "nvme\n"},
        {hwmon + "1/temp1_input", "71000\n"},
        {hwmon + "2/name", "iwlwifi_1\n"},
        {hwmon + "2/temp1_input", "55000\n"},
        {zone + "0/type", "acpitz\n"},
        {zone + "0/temp", "27800\n"}};
    const auto with = [&](MachineTree::Files more) {
        more.insert(others.begin(), others.end());
        return more;
    };
    const Case cases[] = {
        {"nothing that counts", others, std::nullopt},
        {"no machine at all", {}, std::nullopt},
        {"Intel's package, not a core",
         with(
             {{hwmon + "5/name", "coretemp\n"},
              {hwmon + "5/temp1_input", "58250\n"},
              {hwmon + "5/temp1_label", "Package id 0\n"},
              {hwmon + "5/temp2_input", "61000\n"},
              {hwmon + "5/temp2_label", "Core 0\n"}}),
         58.25},
        {"AMD's die before what carries an offset",
         with(
             {{hwmon + "3/name", "k10temp\n"},
              {hwmon + "3/temp1_input", "72500\n"},
              {hwmon + "3/temp1_label", "Tctl\n"},
              {hwmon + "3/temp2_input", "62500\n"},
              {hwmon + "3/temp2_label", "Tdie\n"}}),
         62.5},
        {"AMD without a die's sensor",
         with(
             {{hwmon + "3/name", "k10temp\n"},
              {hwmon + "3/temp1_input", "72500\n"},
              {hwmon + "3/temp1_label", "Tctl\n"}}),
         72.5},
        {"a small board's",
         with({{hwmon + "3/name", "cpu_thermal\n"}, {hwmon + "3/temp1_input", "48312\n"}}),
         48.312},
        {"a zone by its type",
         with({{zone + "3/type", "x86_pkg_temp\n"}, {zone + "3/temp", "51000\n"}}),
         51.0},
        {"a sensor that is broken",
         with({{hwmon + "3/name", "cpu_thermal\n"}, {hwmon + "3/temp1_input", "-127000\n"}}),
         std::nullopt},
        {"nonsense",
         with({{hwmon + "3/name", "cpu_thermal\n"}, {hwmon + "3/temp1_input", "hot\n"}}),
         std::nullopt},
    };
    for (const Case& each : cases) EXPECT_EQ(celsius(each.files), each.expected) << each.what;
}

TEST(ChipTemperature, TellsWhereItBecomesCritical) {
    const MachineTree machine(
        {{hwmon + "5/name", "coretemp\n"},
         {hwmon + "5/temp1_input", "58250\n"},
         {hwmon + "5/temp1_label", "Package id 0\n"},
         {hwmon + "5/temp1_crit", "100000\n"}});
    EXPECT_EQ(readChipTemperature(machine.root())->critical, 100);
}

}  // namespace
}  // namespace zelto::sources
