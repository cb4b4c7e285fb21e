#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "host/PlacedWidget.hpp"

namespace zelto::host {

/// The widgets' places as a JSON file that a person can edit, one widget a line.
class PlacementStore {
  public:
    PlacementStore(std::filesystem::path folder, std::function<void(const std::string&)> log);

    /// None without a file. Absent for a file that makes no sense, which is reported and kept aside under
    /// another name.
    std::optional<std::vector<PlacedWidget>> load();
    /// False, with a report, when the file cannot be written.
    bool save(const std::vector<PlacedWidget>& widgets);
    /// Whether the file holds something else than what was last loaded or saved.
    bool wasEdited() const;

    std::filesystem::path file() const { return folder_ / "desktop.json"; }

  private:
    void keepAside(const std::string& why);

    std::filesystem::path folder_;
    std::function<void(const std::string&)> log_;
    std::string bytes_;
};

}  // namespace zelto::host
