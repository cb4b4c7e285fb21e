#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <vector>

#include "system/PowerSources.hpp"

namespace zelto::system {

/// Cumulative processor time since the machine started, in ticks of one length.
///   user    user + guest time      (the kernel counts a guest's time as user time already)
///   system  system + irq + softirq
///   idle    idle + iowait
///   nice    nice
/// Time that a hypervisor took away (steal) is neither busy nor idle.
struct CPUTicks {
    std::uint64_t user = 0, system = 0, idle = 0, nice = 0;
};

/// Counts of memory pages.
///   internal     AnonPages + Shmem
///   purgeable    LazyFree where the kernel tells it, otherwise 0
///   wired        SUnreclaim + KernelStack + PageTables + SecPageTables + Percpu + Hugetlb
///   compressor   Zswap + what the zram devices take
struct VirtualMemoryStatistics {
    std::uint64_t internal = 0, purgeable = 0, wired = 0, compressor = 0;
};

struct VolumeCapacities {
    /// Bytes; absent when not told.
    std::optional<std::uint64_t> total;
    /// What an ordinary user may still write, in bytes.
    std::optional<std::uint64_t> availableForImportantUsage;
};

/// The machine as the live reader sees it: one function per reading, each absent when it cannot be taken.
struct SystemReadings {
    std::function<std::optional<std::vector<PowerSourceDescription>>()> powerSources;
    std::function<std::optional<CPUTicks>()> cpuTicks;
    std::function<std::optional<VirtualMemoryStatistics>()> virtualMemory;
    std::function<std::uint64_t()> pageSize;
    /// Bytes; 0 when unknown.
    std::function<std::uint64_t()> physicalMemory;
    std::function<std::optional<VolumeCapacities>(const std::filesystem::path&)> volume;
    std::function<void(std::chrono::microseconds)> sleep;

    /// Linux, with the kernel's folders (/proc, /sys) below `root`.
    static SystemReadings ofLinux(const std::filesystem::path& root = "/");
};

/// Memory in use, in bytes: what programs hold (internal less purgeable pages), what the kernel cannot give
/// away, and what compressed memory takes.
struct MemoryUse {
    double used = 0;
    std::uint64_t total = 0;

    double fraction() const;
};
/// Absent when the machine does not tell it.
std::optional<MemoryUse> memoryUse(const SystemReadings& system);

}  // namespace zelto::system
