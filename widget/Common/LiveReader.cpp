#include "widget/Common/LiveReader.hpp"

#include <algorithm>
#include <chrono>
#include <cmath>

#include "Common/Rounding.hpp"

namespace zelto::widget::LiveReader {

using namespace system;
namespace {

template <class T>
std::optional<T> value(const PowerSourceDescription& source, const char* key) {
    const auto found = source.find(key);
    if (found == source.end() || !std::holds_alternative<T>(found->second)) return std::nullopt;
    return std::get<T>(found->second);
}

double cpuLoad(const SystemReadings& system) {
    const auto first = cpuUsage(system);
    if (!first) return 0;
    system.sleep(std::chrono::microseconds(500'000));
    const auto second = cpuUsage(system);
    if (!second || !(second->total > first->total)) return 0;
    // The kernel's waiting time, which counts as idle, may step back, and with it the busy share beyond all.
    return std::clamp((second->busy - first->busy) / (second->total - first->total), 0.0, 1.0);
}

}  // namespace

LiveData read(const SystemReadings& system) {
    const auto battery = batteryState(system);
    const double cpu = cpuLoad(system);
    const double memory = memoryUsage(system);
    const DiskUsage disk = diskUsage(system);
    return {
        .battery = battery ? std::optional(battery->percent) : std::nullopt,
        .charging = battery && battery->charging,
        .cpu = cpu,
        .memory = memory,
        .disk = disk.fraction,
        .diskFree = disk.free,
        .diskTotal = disk.total,
    };
}

std::optional<BatteryState> batteryState(const SystemReadings& system) {
    const auto sources = system.powerSources();
    if (!sources) return std::nullopt;
    for (const auto& source : *sources) {
        const auto current = value<std::int64_t>(source, "Current Capacity");
        const auto maximum = value<std::int64_t>(source, "Max Capacity");
        if (!current || !maximum || *maximum < 1) continue;
        return BatteryState{
            .percent = nearestInteger(static_cast<double>(*current) / static_cast<double>(*maximum) * 100),
            .charging = value<bool>(source, "Is Charging").value_or(false)};
    }
    return std::nullopt;
}

std::optional<CPUUsage> cpuUsage(const SystemReadings& system) {
    const auto ticks = system.cpuTicks();
    if (!ticks) return std::nullopt;
    const double busy = static_cast<double>(ticks->user) + static_cast<double>(ticks->system) +
                        static_cast<double>(ticks->nice);
    return CPUUsage{.busy = busy, .total = busy + static_cast<double>(ticks->idle)};
}

double memoryUsage(const SystemReadings& system) {
    const auto memory = memoryUse(system);
    return memory ? memory->fraction() : 0;
}

DiskUsage diskUsage(const SystemReadings& system) {
    const auto volume = system.volume("/");
    if (!volume || !volume->total || *volume->total < 1 || !volume->availableForImportantUsage)
        return {0, 0, 0};
    const std::uint64_t free = *volume->availableForImportantUsage, total = *volume->total;
    return {1 - static_cast<double>(free) / static_cast<double>(total), free, total};
}

}  // namespace zelto::widget::LiveReader
