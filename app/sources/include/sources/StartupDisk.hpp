#pragma once

#include <filesystem>
#include <optional>

#include "shared/WidgetSnapshot.hpp"
#include "system/SystemReadings.hpp"

namespace zelto::sources {

/// The volume that "/" is on, under its label, else under its drive's model; absent where it has no name that
/// a person could know, or does not tell its size. `root` is where dev, proc and sys are.
std::optional<shared::WidgetSnapshot::Disk> readStartupDisk(
    const std::filesystem::path& root, const system::SystemReadings& readings);

}  // namespace zelto::sources
