#pragma once

#include <filesystem>
#include <optional>
#include <string>

// What the kernel tells of devices of all kinds.

namespace zelto::sources {

/// Whether a device saves power so that reading from it would wake it. One that does not tell is awake.
bool isAsleep(const std::filesystem::path& device);

/// The last name of what a link leads to; absent where there is no link.
std::optional<std::string> nameOfLink(const std::filesystem::path& link);

}  // namespace zelto::sources
