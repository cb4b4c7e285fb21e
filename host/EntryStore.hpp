#pragma once

#include <filesystem>
#include <optional>
#include <vector>

#include "host/PlacedWidget.hpp"
#include "platform/widgetkit/Messages.hpp"

namespace zelto::host {

/// The last good timeline of every placed widget, one file each in a folder of their own, so that the widgets
/// show at once after a start. What is lost here is asked for again: faults are an absent timeline.
class EntryStore {
  public:
    /// Nothing else may be kept in the folder.
    explicit EntryStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// Checked like an answer of the extension; absent for another kind or family too.
    std::optional<ArchivedTimeline> load(const PlacedWidget& widget) const;
    bool save(const PlacedWidget& widget, const ArchivedTimeline& timeline) const;
    /// Deletes the files of all other widgets.
    void keepOnly(const std::vector<PlacedWidget>& widgets) const;

  private:
    std::filesystem::path fileOf(const PlacedWidget& widget) const;

    std::filesystem::path folder_;
};

}  // namespace zelto::host
