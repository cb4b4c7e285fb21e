#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "foundation/Date.hpp"
#include "runloop/Log.hpp"
#include "runloop/MainLoop.hpp"
#include "shared/WidgetSnapshot.hpp"

namespace zelto::agent {

/// The one snapshot, and its file: written when something of it changed, at most five times a second. A
/// snapshot that another program wrote within the last quarter of an hour is left alone. For the main thread.
class SnapshotKeeper {
  public:
    struct Seams {
        std::filesystem::path file;
        /// Remembers which snapshots were written here, so that the next start knows its own.
        std::filesystem::path mark;
        std::function<Date()> now = Date::now;
        runloop::Log log;
        /// Called when the file has another snapshot.
        std::function<void()> written = [] {};
    };
    /// Begins with the file's snapshot where that was written here, and is fresh.
    explicit SnapshotKeeper(Seams seams);

    const shared::WidgetSnapshot& snapshot() const { return snapshot_; }
    /// Changes it without a writing of its own.
    void note(const std::function<void(shared::WidgetSnapshot&)>& change) { change(snapshot_); }
    /// Changes it, and writes it if that made it another.
    void change(const std::function<void(shared::WidgetSnapshot&)>& change);
    /// Writes it with the current date although nothing changed.
    void renew();
    /// Writes what waits to be written, at once.
    void flush();

    /// Until when another program's snapshot is left alone; absent when none is.
    std::optional<Date> leftAloneUntil() const { return leftAloneUntil_; }
    std::optional<Date> lastWritten() const { return lastWritten_; }

    /// Seconds for which a snapshot counts as somebody's.
    static constexpr double fresh = 900;

  private:
    /// What tells one version of a file from the next.
    using Identity = std::optional<std::array<std::int64_t, 4>>;
    static Identity identityOf(const std::filesystem::path& file);

    void writeSoon();
    void write();
    bool isOurs(const shared::WidgetSnapshot& snapshot) const;
    bool isAnothers();
    void announce(Date date);

    const Seams seams_;
    shared::WidgetSnapshot snapshot_;
    std::string written_;  // without its date
    Identity own_;
    std::array<double, 2> announced_{};  // dates of the last snapshots from here
    std::optional<Date> lastWritten_, leftAloneUntil_;
    bool isRenewed_ = false;
    runloop::MainSource soon_, later_;
};

}  // namespace zelto::agent
