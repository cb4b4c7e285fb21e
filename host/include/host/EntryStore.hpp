#pragma once

#include <filesystem>
#include <optional>
#include <string_view>
#include <vector>

#include "foundation/Result.hpp"
#include "host/PlacedWidget.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::host {

/// The last good timeline of every placed widget, one file each in a folder of their own, so that the widgets
/// show at once after a start: the reply as it came from the extension. What is lost here is asked for again:
/// faults are an absent timeline.
class EntryStore {
  public:
    /// Nothing else may be kept in the folder.
    explicit EntryStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// Checked like an answer of the extension; absent for another kind or family too.
    std::optional<widgetkit::ArchivedTimeline> load(const PlacedWidget& widget) const;
    /// A line that held the widget's timeline.
    Result<void> save(const PlacedWidget& widget, std::string_view line) const;
    /// Deletes the files of all other widgets.
    void keepOnly(const std::vector<PlacedWidget>& widgets) const;

  private:
    std::filesystem::path fileOf(const PlacedWidget& widget) const;

    std::filesystem::path folder_;
};

}  // namespace zelto::host
