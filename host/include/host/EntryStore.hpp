#pragma once

#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include "foundation/Result.hpp"
#include "host/PlacedWidget.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::host {

class DrawingMark;

/// The last good timeline of every look that is placed, one file each in a folder of their own, so that the
/// widgets show at once after a start: the reply as it came from the extension. What is lost here is asked
/// for again: faults are an absent timeline. No file is ever replaced or written over, which file systems
/// carry out on the disk at once: a new one of another name is written, and then the old one removed.
class EntryStore {
  public:
    /// Nothing else may be kept in the folder.
    explicit EntryStore(std::filesystem::path folder) : folder_(std::move(folder)) {}

    /// For the one process that draws from here, at its start: drops what those before it died of drawing
    /// (DrawingMark.hpp), and returns its name.
    std::optional<std::string> dropUnfinished();
    /// Marks a look's timeline as being drawn while a function runs, where even a death leaves the mark: in
    /// a page of memory that belongs to a file. Costs no system call.
    void whileDrawing(const Look& look, const std::function<void()>& draw) const;

    /// Checked like an answer of the extension.
    std::optional<widgetkit::ArchivedTimeline> load(const Look& look) const;
    /// A line that held the look's timeline.
    Result<void> save(const Look& look, std::string_view line) const;
    /// Deletes the files of all other looks.
    void keepOnly(const std::set<Look>& looks) const;

  private:
    void makeFolder() const;
    /// Both names of a look's file, the one with the newer timeline first.
    std::array<std::filesystem::path, 2> filesOf(const Look& look) const;

    std::filesystem::path folder_;
    std::shared_ptr<DrawingMark> mark_;  // null for others, and where there is no room for it
};

}  // namespace zelto::host
