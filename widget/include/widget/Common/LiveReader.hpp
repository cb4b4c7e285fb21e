#pragma once

#include <cstdint>
#include <optional>

#include "system/SystemReadings.hpp"
#include "widget/Common/LiveData.hpp"

/// Takes the live readings. Keeps no state; a reading that cannot be taken becomes its fallback.
namespace zelto::widget::LiveReader {

/// All readings. Blocks for half a second between the two samples of the processor.
LiveData read(const system::SystemReadings& system);

struct BatteryState {
    std::int64_t percent;
    bool charging;
};
/// The first power source that tells a usable charge; absent when none does.
std::optional<BatteryState> batteryState(const system::SystemReadings& system);

struct CPUUsage {
    double busy, total;
};
/// One sample of the cumulative processor ticks.
std::optional<CPUUsage> cpuUsage(const system::SystemReadings& system);

/// Fraction of the physical memory in use; 0 when it cannot be told.
double memoryUsage(const system::SystemReadings& system);

struct DiskUsage {
    double fraction;
    std::uint64_t free, total;
};
/// The start-up volume; zeros when it cannot be told.
DiskUsage diskUsage(const system::SystemReadings& system);

}  // namespace zelto::widget::LiveReader
