#pragma once

#include <filesystem>
#include <vector>

namespace zelto::confinement {

/// Leaves this process only those files and folders, for reading, and neither TCP nor, where the kernel knows
/// how, abstract sockets and signals beyond it. False when the kernel has no Landlock.
bool restrictFiles(const std::vector<std::filesystem::path>& readable);

}  // namespace zelto::confinement
