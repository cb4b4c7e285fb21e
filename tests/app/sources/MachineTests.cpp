#include <gtest/gtest.h>

#include "sources/Machine.hpp"
#include "tests/app/MachineTree.hpp"

namespace zelto::sources {
namespace {

using shared::WidgetSnapshot;
using test::MachineTree;

const std::string supply = "sys/class/power_supply/";

struct WholeMachine : testing::Test {
    MachineTree tree;
    Date now{800'000'000};
    std::optional<PowerReading> daemon;
    std::vector<FanMemory::Speeds> kept;
    WidgetSnapshot snapshot;

    Machine::Seams seams() {
        auto seams = Machine::Seams::ofLinux(tree.root());
        seams.now = [this] { return now; };
        seams.daemonPower = [this] { return daemon; };
        seams.keepFanSpeeds = [this](const FanMemory::Speeds& speeds) { kept.push_back(speeds); };
        return seams;
    }
    void read(Machine& machine) {
        for (const Part& part : machine.parts()) part.begin()()(snapshot);
    }
};

TEST_F(WholeMachine, WithoutAnythingLeavesEverythingOut) {
    Machine machine(seams());
    snapshot = WidgetSnapshot();
    snapshot.gpu = 1;
    snapshot.chipTemperature = 1;
    snapshot.fans = {{.actual = 1}};
    snapshot.battery.emplace();
    read(machine);
    EXPECT_FALSE(snapshot.gpu);
    EXPECT_FALSE(snapshot.chipTemperature);
    EXPECT_TRUE(snapshot.fans.empty());
    EXPECT_FALSE(snapshot.fanMode);
    EXPECT_FALSE(snapshot.battery);
    EXPECT_FALSE(snapshot.disk);
    EXPECT_EQ(snapshot.memoryTotal, 0U);
}

TEST_F(WholeMachine, FillsWhatItHas) {
    tree.add(
        {{"proc/meminfo", "MemTotal: 1000 kB\nAnonPages: 200 kB\nShmem: 40 kB\nSUnreclaim: 10 kB\n"},
         {"sys/class/hwmon/hwmon0/name", "cpu_thermal\n"},
         {"sys/class/hwmon/hwmon0/temp1_input", "48000\n"},
         {"sys/class/hwmon/hwmon0/fan1_input", "2100\n"},
         {supply + "BAT0/type", "Battery\n"},
         {supply + "BAT0/capacity", "33\n"}});
    Machine filled(seams());
    read(filled);
    EXPECT_EQ(snapshot.memoryTotal, 1000U * 1024);
    EXPECT_DOUBLE_EQ(snapshot.memory, static_cast<double>(snapshot.memoryUsed) / (1000 * 1024));
    EXPECT_EQ(snapshot.chipTemperature, 48);
    EXPECT_EQ(snapshot.fans.size(), 1U);
    EXPECT_EQ(snapshot.fanMode, "automatic");
    EXPECT_EQ(snapshot.battery->percent, 33);
    ASSERT_EQ(kept.size(), 1U);
    read(filled);
    EXPECT_EQ(kept.size(), 1U);
}

TEST_F(WholeMachine, ReadsFansThatStopTheMachineEveryFiveMinutesAtMost) {
    const auto speed = [&](const std::string& chip, const std::string& rpm) {
        tree.add({{"sys/class/hwmon/hwmon0/name", chip}, {"sys/class/hwmon/hwmon0/fan1_input", rpm}});
    };
    speed("dell_smm\n", "2100\n");
    Machine dell(seams());
    read(dell);
    speed("dell_smm\n", "2500\n");
    now = now + 294;
    read(dell);
    EXPECT_EQ(snapshot.fans.front().actual, 2100);
    now = now + 1;
    read(dell);
    EXPECT_EQ(snapshot.fans.front().actual, 2500);
    speed("thinkpad\n", "2600\n");
    Machine other(seams());
    read(other);
    speed("thinkpad\n", "2700\n");
    read(other);
    EXPECT_EQ(snapshot.fans.front().actual, 2700);
}

TEST_F(WholeMachine, BelievesTheDaemonAndTheKernelsLimit) {
    tree.add(
        {{supply + "BAT0/type", "Battery\n"},
         {supply + "BAT0/capacity", "33\n"},
         {supply + "BAT0/charge_control_end_threshold", "60\n"}});
    daemon = PowerReading{
        .packs = {{.name = "BAT0", .state = Pack::State::held, .percent = 60}}, .isPluggedIn = true};
    Machine held(seams());
    read(held);
    EXPECT_EQ(snapshot.battery->percent, 60);
    EXPECT_EQ(snapshot.battery->limit, 60);
    EXPECT_TRUE(snapshot.battery->chargingPaused);
}

TEST_F(WholeMachine, ShowsWattsAsTheMeanOfAMinuteInOneDirection) {
    const auto draws = [&](double watts, Pack::State state) {
        daemon = PowerReading{
            .packs = {{.state = state, .percent = 50, .watts = watts}},
            .isPluggedIn = state == Pack::State::charging};
        now = now + 20;
    };
    Machine drawing(seams());
    draws(10, Pack::State::discharging);
    read(drawing);
    draws(20, Pack::State::discharging);
    read(drawing);
    EXPECT_EQ(snapshot.battery->watts, 15);
    draws(40, Pack::State::charging);
    read(drawing);
    EXPECT_EQ(snapshot.battery->watts, 40);
}

}  // namespace
}  // namespace zelto::sources
