#include <gtest/gtest.h>

#include "tests/support/LiveFields.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "widget/Common/LiveReader.hpp"

namespace zelto::test {

using namespace system;
using namespace widget;
namespace {

/// A machine on which every reading can be set.
struct FakeMachine {
    std::optional<std::vector<PowerSourceDescription>> sources;
    std::vector<std::optional<CPUTicks>> ticks;
    std::optional<VirtualMemoryStatistics> memory;
    std::uint64_t physical = 0;
    std::optional<VolumeCapacities> volume;
    std::vector<std::chrono::microseconds> pauses = {};
    std::vector<std::string> asked = {};

    SystemReadings readings() {
        return {
            .powerSources =
                [this] {
                    asked.emplace_back("battery");
                    return sources;
                },
            .cpuTicks = [this]() -> std::optional<CPUTicks> {
                asked.emplace_back("processor");
                if (ticks.empty()) return std::nullopt;
                const auto next = ticks.front();
                ticks.erase(ticks.begin());
                return next;
            },
            .virtualMemory =
                [this] {
                    asked.emplace_back("memory");
                    return memory;
                },
            .pageSize = [] { return std::uint64_t{4096}; },
            .physicalMemory = [this] { return physical; },
            .volume =
                [this](const std::filesystem::path& path) {
                    asked.push_back("volume " + path.string());
                    return volume;
                },
            .sleep = [this](std::chrono::microseconds pause) { pauses.push_back(pause); }};
    }
};

using Source = PowerSourceDescription;
Source source(std::int64_t current, std::int64_t maximum) {
    return {{"Current Capacity", current}, {"Max Capacity", maximum}, {"Is Charging", true}};
}

std::optional<LiveReader::BatteryState> battery(std::optional<std::vector<Source>> sources) {
    FakeMachine machine{.sources = std::move(sources), .ticks = {}, .memory = {}, .volume = {}};
    return LiveReader::batteryState(machine.readings());
}

TEST(BatteryState, IsAbsentWithoutAUsableSource) {
    EXPECT_FALSE(battery(std::nullopt));
    EXPECT_FALSE(battery(std::vector<Source>{}));
    EXPECT_FALSE(battery({{{{"Max Capacity", std::int64_t{100}}}}}));
    EXPECT_FALSE(battery({{{{"Current Capacity", std::string("80")}, {"Max Capacity", std::int64_t{100}}}}}));
}

TEST(BatteryState, SkipsASourceWithoutCapacityAndTriesTheNext) {
    EXPECT_EQ(battery({{source(1, 0), source(50, 100), source(90, 100)}})->percent, 50);
}

TEST(BatteryState, RoundsHalvesAwayFromZeroAndDoesNotClamp) {
    EXPECT_EQ(battery({{source(87, 100)}})->percent, 87);
    EXPECT_EQ(battery({{source(1, 3)}})->percent, 33);
    EXPECT_EQ(battery({{source(1, 8)}})->percent, 13);
    EXPECT_EQ(battery({{source(110, 100)}})->percent, 110);
}

TEST(BatteryState, ChargesOnlyWhenAFlagSaysSo) {
    EXPECT_TRUE(battery({{source(1, 2)}})->charging);
    Source silent = source(1, 2), odd = source(1, 2);
    silent.erase("Is Charging");
    odd["Is Charging"] = std::int64_t{1};
    EXPECT_FALSE(battery({{silent}})->charging);
    EXPECT_FALSE(battery({{odd}})->charging);
    EXPECT_EQ(battery({{odd}})->percent, 50);
}

double cpu(std::vector<std::optional<CPUTicks>> ticks, std::size_t pauses = 1) {
    FakeMachine machine{.sources = {}, .ticks = std::move(ticks), .memory = {}, .volume = {}};
    const double load = LiveReader::read(machine.readings()).cpu;
    EXPECT_EQ(machine.pauses.size(), pauses);
    for (const auto pause : machine.pauses) EXPECT_EQ(pause, std::chrono::microseconds(500'000));
    return load;
}

TEST(CPULoad, IsTheBusyShareBetweenTwoSamples) {
    EXPECT_EQ(cpu({CPUTicks{10, 10, 100, 10}, CPUTicks{20, 15, 160, 35}}), 0.4);
}

TEST(CPULoad, StaysWithinItsBoundsWhenTheWaitingTimeStepsBack) {
    // "cpu 1000 0 0 1000 500", then "cpu 1400 0 0 1020 440": less idle time than before.
    EXPECT_EQ(cpu({CPUTicks{1000, 0, 1500, 0}, CPUTicks{1400, 0, 1460, 0}}), 1);
    EXPECT_EQ(cpu({CPUTicks{1000, 0, 1000, 0}, CPUTicks{900, 0, 2000, 0}}), 0);
}

TEST(LiveReader, TakesItsReadingsInOrder) {
    FakeMachine machine{.sources = {}, .ticks = {CPUTicks{}, CPUTicks{}}, .memory = {}, .volume = {}};
    LiveReader::read(machine.readings());
    EXPECT_EQ(
        machine.asked, (std::vector<std::string>{"battery", "processor", "processor", "memory", "volume /"}));
}

TEST(CPULoad, IsZeroWhenASampleFailsOrTimeStandsStill) {
    EXPECT_EQ(cpu({CPUTicks{1, 1, 1, 1}, CPUTicks{1, 1, 1, 1}}), 0);
    EXPECT_EQ(cpu({CPUTicks{9, 9, 9, 9}, CPUTicks{1, 1, 1, 1}}), 0);
    EXPECT_EQ(cpu({std::nullopt}, 0), 0);
    EXPECT_EQ(cpu({CPUTicks{1, 1, 1, 1}, std::nullopt}), 0);
}

double memory(std::optional<VirtualMemoryStatistics> pages, std::uint64_t physical) {
    FakeMachine machine{.sources = {}, .ticks = {}, .memory = pages, .physical = physical, .volume = {}};
    return LiveReader::memoryUsage(machine.readings());
}

TEST(MemoryUsage, CountsAppWiredAndCompressedPages) {
    EXPECT_EQ(memory(VirtualMemoryStatistics{60, 10, 20, 30}, 400 * 4096), 0.25);
}

TEST(MemoryUsage, CountsTheAppAsNothingWhenMoreIsPurgeableThanThereIs) {
    EXPECT_EQ(memory(VirtualMemoryStatistics{10, 60, 20, 30}, 100 * 4096), 0.5);
}

TEST(MemoryUsage, FallsBackToZeroAndIsCappedAtOne) {
    EXPECT_EQ(memory(std::nullopt, 4096), 0);
    EXPECT_EQ(memory(VirtualMemoryStatistics{1, 0, 0, 0}, 0), 0);
    EXPECT_EQ(memory(VirtualMemoryStatistics{100, 0, 0, 0}, 4096), 1);
}

LiveReader::DiskUsage disk(std::optional<VolumeCapacities> volume) {
    FakeMachine machine{.sources = {}, .ticks = {}, .memory = {}, .volume = volume};
    return LiveReader::diskUsage(machine.readings());
}

TEST(DiskUsage, IsOneMinusTheFreeShare) {
    const auto usage = disk(VolumeCapacities{1'000'000'000'000, 250'000'000'000});
    EXPECT_EQ(usage.fraction, 0.75);
    EXPECT_EQ(usage.free, 250'000'000'000U);
    EXPECT_EQ(usage.total, 1'000'000'000'000U);
}

TEST(DiskUsage, IsAllZeroWhenItCannotBeTold) {
    for (const auto& volume :
         {std::optional<VolumeCapacities>(),
          std::optional(VolumeCapacities{std::nullopt, 5}),
          std::optional(VolumeCapacities{0, 0}),
          std::optional(VolumeCapacities{5, std::nullopt})}) {
        const auto usage = disk(volume);
        EXPECT_EQ(usage.fraction, 0);
        EXPECT_EQ(usage.free, 0U);
        EXPECT_EQ(usage.total, 0U);
    }
}

TEST(LiveReader, PutsAReadingTogetherFromAFolderTree) {
    const TemporaryFolder root;
    root.write("sys/class/power_supply/BAT0/type", "Battery\n");
    root.write("sys/class/power_supply/BAT0/status", "Charging\n");
    root.write("sys/class/power_supply/BAT0/capacity", "73\n");
    root.write("proc/stat", "cpu 1 2 3 4\n");
    root.write("proc/meminfo", "MemTotal: 1000 kB\nAnonPages: 400 kB\nShmem: 100 kB\nSUnreclaim: 100 kB\n");
    auto readings = SystemReadings::ofLinux(root.path());
    readings.sleep = [&](std::chrono::microseconds) { root.write("proc/stat", "cpu 2 2 3 7\n"); };
    const LiveData live = LiveReader::read(readings);
    EXPECT_EQ(live.battery, 73);
    EXPECT_TRUE(live.charging);
    EXPECT_EQ(live.cpu, 0.25);
    EXPECT_NEAR(live.memory, 0.6, 0.01);
    EXPECT_GT(live.diskTotal, 0U);
}

TEST(LiveReader, TakesEveryReading) {
    FakeMachine machine{
        .sources = std::vector{source(50, 100)},
        .ticks = {CPUTicks{}, CPUTicks{.user = 1, .system = 0, .idle = 1, .nice = 0}},
        .memory = VirtualMemoryStatistics{.internal = 1, .purgeable = 0, .wired = 0, .compressor = 0},
        .physical = 100'000,
        .volume = VolumeCapacities{100, 50}};
    EXPECT_EQ(untouched(LiveReader::read(machine.readings())), "");
}

TEST(LiveReader, FallsBackEverywhereOnAnEmptyMachine) {
    const TemporaryFolder root;
    auto readings = SystemReadings::ofLinux(root.path());
    readings.sleep = [](std::chrono::microseconds) {};
    readings.volume = [](const std::filesystem::path&) { return std::nullopt; };
    const LiveData live = LiveReader::read(readings);
    EXPECT_FALSE(live.battery);
    EXPECT_FALSE(live.charging);
    EXPECT_EQ(live.cpu + live.memory + live.disk, 0);
    EXPECT_EQ(live.diskFree + live.diskTotal, 0U);
}

}  // namespace
}  // namespace zelto::test
