#include "system/SystemReadings.hpp"

#include <algorithm>
#include <thread>

#include <unistd.h>

#include "KernelFiles.hpp"

namespace zelto::system {

SystemReadings SystemReadings::ofLinux(const std::filesystem::path& root) {
    const auto pageSize = static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE));
    return {
        .powerSources = [root] { return readPowerSources(root / "sys/class/power_supply"); },
        .cpuTicks = [root] { return readCPUTicks(root / "proc/stat"); },
        .virtualMemory =
            [root, pageSize] {
                return readVirtualMemory(root / "proc/meminfo", root / "sys/block", pageSize);
            },
        .pageSize = [pageSize] { return pageSize; },
        .physicalMemory = [root] { return readPhysicalMemory(root / "proc/meminfo"); },
        .volume = readVolume,
        .sleep = [](std::chrono::microseconds pause) { std::this_thread::sleep_for(pause); },
    };
}

double MemoryUse::fraction() const {
    return std::min(used / static_cast<double>(total), 1.0);
}

std::optional<MemoryUse> memoryUse(const SystemReadings& system) {
    const auto pages = system.virtualMemory();
    const std::uint64_t physical = system.physicalMemory();
    if (!pages || physical == 0) return std::nullopt;
    const std::uint64_t app = pages->internal - std::min(pages->internal, pages->purgeable);
    const double used = (static_cast<double>(app) + static_cast<double>(pages->wired) +
                         static_cast<double>(pages->compressor)) *
                        static_cast<double>(system.pageSize());
    return MemoryUse{.used = used, .total = physical};
}

}  // namespace zelto::system
