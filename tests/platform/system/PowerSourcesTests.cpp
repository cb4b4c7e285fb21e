#include <gtest/gtest.h>

#include "system/PowerSources.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

using namespace system;
namespace {

struct PowerSourcesTest : testing::Test {
    TemporaryFolder folder;

    void device(const std::string& name, const std::map<std::string, std::string>& files) const {
        for (const auto& [file, text] : files) folder.write(name + "/" + file, text + "\n");
    }
    PowerSourceDescription only() const {
        const auto sources = readPowerSources(folder.path());
        return sources && sources->size() == 1 ? sources->front() : PowerSourceDescription{};
    }
};

using Value = PowerSourceValue;

TEST_F(PowerSourcesTest, IsAbsentWithoutTheFolderAndEmptyWithoutABattery) {
    EXPECT_FALSE(readPowerSources(folder.path() / "missing"));
    device("AC", {{"type", "Mains"}, {"online", "1"}});
    EXPECT_TRUE(readPowerSources(folder.path())->empty());
}

TEST_F(PowerSourcesTest, ReadsABatteryThatTellsEnergy) {
    device(
        "BAT0",
        {{"type", "Battery"},
         {"present", "1"},
         {"status", "Charging"},
         {"energy_now", "43500000"},
         {"energy_full", "50000000"},
         {"charge_now", "1"},
         {"charge_full", "2"},
         {"capacity", "3"}});
    EXPECT_EQ(only()["Name"], Value("BAT0"));
    EXPECT_EQ(only()["Current Capacity"], Value(std::int64_t{43500000}));
    EXPECT_EQ(only()["Max Capacity"], Value(std::int64_t{50000000}));
    EXPECT_EQ(only()["Is Charging"], Value(true));
}

TEST_F(PowerSourcesTest, FallsBackToChargeAndThenToCapacity) {
    device(
        "BAT0",
        {{"type", "Battery"},
         {"status", "Discharging"},
         {"charge_now", "900"},
         {"charge_full", "1000"},
         {"energy_now", "5"},
         {"capacity", "42"}});
    EXPECT_EQ(only()["Current Capacity"], Value(std::int64_t{900}));
    EXPECT_EQ(only()["Is Charging"], Value(false));
    std::filesystem::remove(folder.path() / "BAT0/charge_full");
    EXPECT_EQ(only()["Current Capacity"], Value(std::int64_t{42}));
    EXPECT_EQ(only()["Max Capacity"], Value(std::int64_t{100}));
}

TEST_F(PowerSourcesTest, PassesOverPeripheralsAndEmptyBays) {
    device("hidpp_battery_0", {{"type", "Battery"}, {"scope", "Device"}, {"capacity", "10"}});
    device("BAT1", {{"type", "Battery"}, {"present", "0"}, {"capacity", "20"}});
    EXPECT_TRUE(readPowerSources(folder.path())->empty());
    device("BAT2", {{"type", "Battery"}, {"scope", "System"}, {"capacity", "30"}});
    EXPECT_EQ(only()["Current Capacity"], Value(std::int64_t{30}));
}

TEST_F(PowerSourcesTest, SumsTwoBatteriesInAUnitThatBothTell) {
    device(
        "BAT1",
        {{"type", "Battery"},
         {"status", "Charging"},
         {"charge_now", "10"},
         {"charge_full", "40"},
         {"energy_now", "1"},
         {"energy_full", "2"}});
    device("BAT0", {{"type", "Battery"}, {"status", "Full"}, {"charge_now", "60"}, {"charge_full", "60"}});
    EXPECT_EQ(only()["Name"], Value("BAT0"));
    EXPECT_EQ(only()["Current Capacity"], Value(std::int64_t{70}));
    EXPECT_EQ(only()["Max Capacity"], Value(std::int64_t{100}));
    EXPECT_EQ(only()["Is Charging"], Value(true));
}

TEST_F(PowerSourcesTest, LeavesOutWhatIsGarbled) {
    device("BAT0", {{"type", "Battery"}, {"energy_now", "12x"}, {"energy_full", ""}, {"capacity", "many"}});
    EXPECT_FALSE(only().contains("Current Capacity"));
    EXPECT_EQ(only()["Is Charging"], Value(false));
}

TEST_F(PowerSourcesTest, LeavesOutABatteryThatTellsNoCharge) {
    device("BAT0", {{"type", "Battery"}, {"status", "Charging"}});
    device("BAT1", {{"type", "Battery"}, {"energy_now", "10"}, {"energy_full", "40"}});
    EXPECT_EQ(only()["Name"], Value("BAT1"));
    EXPECT_EQ(only()["Current Capacity"], Value(std::int64_t{10}));
    EXPECT_EQ(only()["Max Capacity"], Value(std::int64_t{40}));
    EXPECT_EQ(only()["Is Charging"], Value(false));
    // Nor one that can hold nothing: a quarter is a quarter.
    device("BAT0", {{"energy_now", "5"}, {"energy_full", "0"}});
    EXPECT_EQ(only()["Current Capacity"], Value(std::int64_t{10}));
    // What it tells in another unit counts where all tell it.
    device("BAT0", {{"capacity", "50"}});
    device("BAT1", {{"capacity", "25"}});
    EXPECT_EQ(only()["Current Capacity"], Value(std::int64_t{75}));
    EXPECT_EQ(only()["Max Capacity"], Value(std::int64_t{200}));
}

TEST_F(PowerSourcesTest, TakesTheFirstAloneWhereNoSumIsToBeHad) {
    device("BAT0", {{"type", "Battery"}, {"energy_now", "1"}, {"energy_full", "2"}});
    device("BAT1", {{"type", "Battery"}, {"charge_now", "3"}, {"charge_full", "4"}});
    EXPECT_EQ(only()["Max Capacity"], Value(std::int64_t{2}));
    // A sum that does not fit is no sum.
    device("BAT1", {{"energy_now", "9223372036854775807"}, {"energy_full", "9223372036854775807"}});
    EXPECT_EQ(only()["Max Capacity"], Value(std::int64_t{2}));
}

}  // namespace
}  // namespace zelto::test
