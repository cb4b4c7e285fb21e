#include <gtest/gtest.h>

#include "sources/Power.hpp"
#include "tests/app/MachineTree.hpp"

namespace zelto::sources {
namespace {

using test::MachineTree;

const std::string supply = "sys/class/power_supply/";

MachineTree::Files pack(const std::string& name, MachineTree::Files more = {}) {
    MachineTree::Files files{
        {"type", "Battery\n"},
        {"present", "1\n"},
        {"status", "Discharging\n"},
        {"energy_now", "33600000\n"},
        {"energy_full", "48000000\n"},
        {"energy_full_design", "60000000\n"},
        {"power_now", "12000000\n"},
        {"cycle_count", "454\n"},
        {"temp", "312\n"}};
    for (const auto& [file, text] : more) files[file] = text;
    MachineTree::Files out;
    for (const auto& [file, text] : files) out[supply + name + "/" + file] = text;
    return out;
}

MachineTree machineWith(std::initializer_list<MachineTree::Files> all) {
    MachineTree::Files files;
    for (const auto& each : all) files.insert(each.begin(), each.end());
    return MachineTree(files);
}

const MachineTree::Files adapter{{supply + "AC/type", "Mains\n"}, {supply + "AC/online", "1\n"}};

auto batteryIn(const MachineTree& machine) {
    return batteryOf(readPower(machine.root()));
}

TEST(Battery, IsAbsentOnAMachineWithout) {
    EXPECT_FALSE(batteryIn(MachineTree()));
    EXPECT_FALSE(batteryIn(machineWith({adapter})));
    // A mouse's.
    EXPECT_FALSE(batteryIn(machineWith({pack("hidpp_battery_0", {{"scope", "Device\n"}})})));
}

TEST(Battery, ThatIsEmptiedTellsEverything) {
    const auto battery = batteryIn(machineWith({pack("BAT0")}));
    ASSERT_TRUE(battery);
    EXPECT_EQ(battery->percent, 70);
    EXPECT_FALSE(battery->charging);
    EXPECT_FALSE(battery->pluggedIn);
    EXPECT_DOUBLE_EQ(battery->health.value_or(-1), 0.8);
    EXPECT_EQ(battery->cycles, 454);
    EXPECT_EQ(battery->minutesRemaining, 168);
    EXPECT_DOUBLE_EQ(battery->temperature.value_or(-1), 31.2);
    EXPECT_DOUBLE_EQ(battery->watts.value_or(-1), 12);
    EXPECT_FALSE(battery->limitEnabled);
    EXPECT_EQ(battery->limit, 80);
    EXPECT_FALSE(battery->chargingPaused);
    EXPECT_FALSE(battery->adapterDisabled);
}

TEST(Battery, ThatIsChargedTellsTheMinutesToFull) {
    const auto battery = batteryIn(machineWith({pack("BAT0", {{"status", "Charging\n"}}), adapter}));
    EXPECT_TRUE(battery->charging);
    EXPECT_TRUE(battery->pluggedIn);
    EXPECT_EQ(battery->minutesRemaining, 72);
}

TEST(Battery, HeldAtALimitIsPaused) {
    const auto held = [](const std::string& status, const std::string& limit) {
        return *batteryIn(machineWith(
            {pack("BAT0", {{"status", status}, {"charge_control_end_threshold", limit}}), adapter}));
    };
    EXPECT_TRUE(held("Not charging\n", "80\n").chargingPaused);
    EXPECT_TRUE(held("Not charging\n", "80\n").limitEnabled);
    EXPECT_EQ(held("Not charging\n", "75\n").limit, 75);
    EXPECT_FALSE(held("Charging\n", "80\n").chargingPaused);
    EXPECT_FALSE(held("Not charging\n", "100\n").chargingPaused);
    EXPECT_FALSE(held("Not charging\n", "100\n").limitEnabled);
    // What firmware says that was never asked, and what cannot be read, is no limit.
    EXPECT_FALSE(held("Not charging\n", "0\n").limitEnabled);
    EXPECT_FALSE(held("Not charging\n", "nonsense\n").limitEnabled);
}

TEST(Battery, EmptiedAtTheAdapterHasItSwitchedOff) {
    const auto battery = batteryIn(machineWith(
        {pack("BAT0", {{"charge_behaviour", "auto inhibit-charge [force-discharge]\n"}}), adapter}));
    EXPECT_TRUE(battery->adapterDisabled);
}

TEST(Battery, OfTwoPacksIsTheirSum) {
    const auto battery = batteryIn(machineWith(
        {pack("BAT0"),
         pack(
             "BAT1",
             {{"energy_now", "2400000\n"},
              {"energy_full", "24000000\n"},
              {"energy_full_design", "24000000\n"},
              {"power_now", "0\n"},
              {"status", "Unknown\n"},
              {"cycle_count", "12\n"}})}));
    EXPECT_EQ(battery->percent, 50);
    EXPECT_DOUBLE_EQ(battery->watts.value_or(-1), 12);
    EXPECT_EQ(battery->minutesRemaining, 180);
    EXPECT_EQ(battery->cycles, 454);
    EXPECT_NEAR(battery->health.value_or(-1), 72.0 / 84, 1e-12);
}

TEST(Battery, ThatTellsChargeIsCountedAtTheVoltageItWasMadeFor) {
    const MachineTree machine(
        {{supply + "BAT0/type", "Battery\n"},
         {supply + "BAT0/status", "Discharging\n"},
         {supply + "BAT0/charge_now", "2500000\n"},
         {supply + "BAT0/charge_full", "5000000\n"},
         {supply + "BAT0/voltage_min_design", "11400000\n"},
         {supply + "BAT0/voltage_now", "11000000\n"},
         {supply + "BAT0/current_now", "-1000000\n"}});
    const auto battery = batteryIn(machine);
    EXPECT_EQ(battery->percent, 50);
    EXPECT_DOUBLE_EQ(battery->watts.value_or(-1), 11);
}

TEST(Battery, ThatTellsOnlyItsPercentageTellsNoMore) {
    const MachineTree machine({{supply + "BAT0/type", "Battery\n"}, {supply + "BAT0/capacity", "33\n"}});
    const auto battery = batteryIn(machine);
    EXPECT_EQ(battery->percent, 33);
    EXPECT_EQ(battery->health, std::nullopt);
    EXPECT_EQ(battery->watts, std::nullopt);
    EXPECT_EQ(battery->minutesRemaining, std::nullopt);
}

bus::Data device(bus::Data::Map more = {}) {
    bus::Data::Map all{
        {"Type", 2},
        {"PowerSupply", true},
        {"IsPresent", true},
        {"Percentage", 70.0},
        {"State", 2},
        {"Energy", 33.6},
        {"EnergyFull", 48.0},
        {"EnergyFullDesign", 60.0},
        {"EnergyRate", 12.5},
        {"Temperature", 31.2},
        {"ChargeCycles", 454},
        {"TimeToEmpty", 9676},
        {"TimeToFull", 0},
        {"NativePath", "BAT0"}};
    for (const auto& [name, value] : more) all.insert_or_assign(name, value);
    return all;
}

TEST(DaemonsDevice, IsAPackWithAllThatItTells) {
    const auto pack = packOf(device());
    ASSERT_TRUE(pack);
    EXPECT_EQ(pack->name, "BAT0");
    EXPECT_EQ(pack->state, Pack::State::discharging);
    const auto battery = batteryOf({.packs = {*pack}});
    EXPECT_EQ(battery->percent, 70);
    EXPECT_DOUBLE_EQ(battery->health.value_or(-1), 0.8);
    EXPECT_EQ(battery->minutesRemaining, 161);
    EXPECT_EQ(battery->cycles, 454);
}

TEST(DaemonsDevice, ThatIsNoBatteryOfTheMachineIsNone) {
    EXPECT_FALSE(packOf(device({{"Type", 1}})));
    EXPECT_FALSE(packOf(device({{"PowerSupply", false}})));
    EXPECT_FALSE(packOf(device({{"IsPresent", false}})));
    EXPECT_FALSE(packOf(device({{"Percentage", "seventy"}})));
    EXPECT_FALSE(packOf({}));
    EXPECT_FALSE(packOf("nonsense"));
}

TEST(DaemonsDevice, TellsNothingByZeros) {
    const auto pack = packOf(
        device({{"EnergyFullDesign", 0.0}, {"Temperature", 0.0}, {"ChargeCycles", -1}, {"TimeToEmpty", 0}}));
    EXPECT_EQ(pack->energyDesign, std::nullopt);
    EXPECT_EQ(pack->temperature, std::nullopt);
    EXPECT_EQ(pack->cycles, std::nullopt);
    EXPECT_EQ(pack->minutes, std::nullopt);
}

TEST(DaemonsDevice, StatesAreThoseOfThePacks) {
    using enum Pack::State;
    const std::pair<int, Pack::State> states[] = {
        {0, unknown},
        {1, charging},
        {2, discharging},
        {3, discharging},
        {4, full},
        {5, held},
        {6, discharging},
        {9, unknown}};
    for (const auto& [number, state] : states)
        EXPECT_EQ(packOf(device({{"State", number}}))->state, state) << number;
}

TEST(MinuteMean, IsOfTheLastMinute) {
    MinuteMean mean;
    const Date begin{1000};
    EXPECT_EQ(mean.add(begin, 10), 10);
    EXPECT_EQ(mean.add(begin + 30, 20), 15);
    EXPECT_EQ(mean.add(begin + 61, 40), 30);
    EXPECT_EQ(mean.add(begin + 62, std::nullopt), std::nullopt);
    EXPECT_EQ(mean.add(begin + 63, 8), 8);
    // A clock that was set back.
    EXPECT_EQ(mean.add(begin - 1000, 4), 4);
}

}  // namespace
}  // namespace zelto::sources
