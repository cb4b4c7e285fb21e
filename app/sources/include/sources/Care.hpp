#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "shared/WidgetSnapshot.hpp"
#include "sources/Temperature.hpp"
#include "system/SystemReadings.hpp"

namespace zelto::sources {

/// What an analysis of the machine found. What nobody tells is absent, and is not judged.
struct CareFacts {
    struct Volume {
        std::string path;
        double free = 0;  // fraction
    };
    struct Updates {
        std::int64_t security = 0, others = 0;
    };
    /// Memory that programs could still get, as a fraction of all; and the share of the last five minutes, in
    /// percent, for which some program waited for memory.
    std::optional<double> memoryAvailable = {}, memoryWaiting = {};
    std::vector<Volume> volumes = {};
    /// Drives by name that say that they fail, and those that are only worn.
    std::vector<std::string> failingDrives = {}, wornDrives = {};
    std::optional<bool> drivesKnown = {};
    std::optional<double> batteryHealth = {};  // fraction
    std::optional<Updates> updates = {};
    /// A firewall is installed, and whether it is on.
    std::optional<bool> firewall = {};
    std::optional<bool> secureBoot = {};
    /// The names of services that failed, the machine's and the person's own.
    std::optional<std::vector<std::string>> failedSystemServices = {}, failedUserServices = {};
    std::optional<ChipTemperature> chip = {};
    std::optional<double> startSeconds = {};
    /// Something that was installed waits for a restart; a newer kernel is installed than runs.
    std::optional<bool> restartRequired = {}, newerKernel = {};
    std::optional<std::int64_t> firmwareUpdates = {};
};

/// The findings, in Portuguese: levels "ok", "info" and "attention", with a line of advice each. An area of
/// which nothing is known is left out.
std::vector<shared::WidgetSnapshot::CareItem> careItems(const CareFacts& facts);

/// What files tell: memory, volumes, firewall, Secure Boot, temperature, restarts. Volumes of the network and
/// those that are mounted when they are looked at are left alone. `root` is where boot, etc, lib, proc, run
/// and sys are; `kernel` is the name of the one that runs.
CareFacts readCareFiles(const std::filesystem::path& root, const std::string& kernel);

}  // namespace zelto::sources
