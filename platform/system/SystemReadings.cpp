#include "system/SystemReadings.hpp"

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

}  // namespace zelto::system
