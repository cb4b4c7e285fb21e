#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "foundation/Result.hpp"
#include "host/PlacedWidget.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::host {

class DrawingMark;

/// The last good timeline of every placed widget, one file each in a folder of their own, so that the widgets
/// show at once after a start: the reply as it came from the extension. What is lost here is asked for again:
/// faults are an absent timeline. No file is ever replaced or written over, which file systems carry out on
/// the disk at once: a new one of another name is written, and then the old one removed.
class EntryStore {
  public:
    /// Nothing else may be kept in the folder.
    explicit EntryStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// For the one process that draws from here, at its start: drops what those before it died of drawing
    /// (DrawingMark.hpp), and returns its name.
    std::optional<std::string> dropUnfinished();
    /// Marks a widget's timeline as being drawn while a function runs, where even a death leaves the mark: in
    /// a page of memory that belongs to a file. Costs no system call.
    void whileDrawing(const PlacedWidget& widget, const std::function<void()>& draw) const;

    /// Checked like an answer of the extension; absent for another kind or family too.
    std::optional<widgetkit::ArchivedTimeline> load(const PlacedWidget& widget) const;
    /// A line that held the widget's timeline.
    Result<void> save(const PlacedWidget& widget, std::string_view line) const;
    /// Deletes the files of all other widgets.
    void keepOnly(const std::vector<PlacedWidget>& widgets) const;

  private:
    void makeFolder() const;
    /// Both names of a widget's file, the one with the newer timeline first.
    std::array<std::filesystem::path, 2> filesOf(const PlacedWidget& widget) const;

    std::filesystem::path folder_;
    std::shared_ptr<DrawingMark> mark_;  // null for others, and where there is no room for it
};

}  // namespace zelto::host
