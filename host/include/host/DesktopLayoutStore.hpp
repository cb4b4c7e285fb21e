#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "foundation/Result.hpp"
#include "host/DesktopLayout.hpp"

namespace zelto::host {

/// The desktop's layout as a JSON file that a person can edit, one widget a line, and a copy of the last one
/// that was good. Faults name the file.
class DesktopLayoutStore {
  public:
    explicit DesktopLayoutStore(std::filesystem::path folder);

    /// Empty without a file. A file that is invalid is kept aside under another name, which the fault tells.
    /// One that cannot be read now may be sound: it stays, and nothing is saved over it until it has been
    /// loaded after all.
    Result<DesktopLayout> load();
    /// Whether the last `load` found a file.
    bool wasThere() const { return wasThere_; }
    /// The layout that was loaded or saved last, now or before the start; absent where nothing is known of
    /// one.
    std::optional<DesktopLayout> lastGood() const;
    /// From now on the file is to hold this: the work that writes it, for whichever thread, in the order of
    /// these calls.
    std::function<Result<void>()> saving(const DesktopLayout& layout);
    Result<void> save(const DesktopLayout& layout) { return saving(layout)(); }
    /// Whether the file holds something else than what was last loaded or saved.
    bool wasEdited() const;
    /// Whether there is a file that could not be read.
    bool isUnread() const { return isUnread_; }

    std::filesystem::path file() const { return folder_ / "desktop.json"; }
    std::filesystem::path copy() const { return folder_ / "desktop.last.json"; }

  private:
    Fault keptAside(const std::string& why) const;

    std::filesystem::path folder_;
    /// What the file is known to hold; set by the work that writes it. Not to be asked for while that is
    /// under way.
    std::shared_ptr<std::string> bytes_ = std::make_shared<std::string>();
    bool isUnread_ = false, wasThere_ = false;
};

}  // namespace zelto::host
