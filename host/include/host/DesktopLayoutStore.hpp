#pragma once

#include <filesystem>
#include <string>

#include "foundation/Result.hpp"
#include "host/DesktopLayout.hpp"

namespace zelto::host {

/// The desktop's layout as a JSON file that a person can edit, one widget a line. Faults name the file.
class DesktopLayoutStore {
  public:
    explicit DesktopLayoutStore(std::filesystem::path folder);

    /// Empty without a file. A file that cannot be read or is invalid is kept aside under another name, which
    /// the fault tells.
    Result<DesktopLayout> load();
    Result<void> save(const DesktopLayout& layout);
    /// Whether the file holds something else than what was last loaded or saved.
    bool wasEdited() const;

    std::filesystem::path file() const { return folder_ / "desktop.json"; }

  private:
    Fault keptAside(const std::string& why) const;

    std::filesystem::path folder_;
    std::string bytes_;
};

}  // namespace zelto::host
