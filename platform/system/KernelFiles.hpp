#pragma once

#include <filesystem>
#include <optional>

#include "system/SystemReadings.hpp"

struct statvfs;

namespace zelto::system {

/// From the first line of a file like /proc/stat.
std::optional<CPUTicks> readCPUTicks(const std::filesystem::path& stat);

/// From a file like /proc/meminfo and the zram devices below a folder like /sys/block. Absent when the file
/// lacks one of the lines that every kernel writes.
std::optional<VirtualMemoryStatistics> readVirtualMemory(
    const std::filesystem::path& meminfo, const std::filesystem::path& blockDevices, std::uint64_t pageSize);

/// MemTotal of a file like /proc/meminfo, in bytes; 0 when it is not told.
std::uint64_t readPhysicalMemory(const std::filesystem::path& meminfo);

/// What the kernel says of a volume, as capacities: what an ordinary user may still write is available.
VolumeCapacities capacitiesOf(const struct statvfs& status);
std::optional<VolumeCapacities> readVolume(const std::filesystem::path& path);

}  // namespace zelto::system
