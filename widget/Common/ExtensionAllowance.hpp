#pragma once

#include <filesystem>
#include <string>

#include "confinement/Confinement.hpp"

namespace zelto::widget {

/// What the extension is left with while it answers requests: the folder of the snapshot, the zones' data,
/// and what it reads of the machine below `machine`, which is "/" for the kernel's own. A zone that is the
/// path of a file is one too.
confinement::Allowance extensionAllowance(
    const std::filesystem::path& snapshotFolder, const std::filesystem::path& machine,
    const std::string& timeZone);

}  // namespace zelto::widget
