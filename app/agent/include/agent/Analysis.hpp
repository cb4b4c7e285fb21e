#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "foundation/Date.hpp"
#include "records/Record.hpp"
#include "runloop/Log.hpp"
#include "runloop/MainLoop.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "sources/Care.hpp"

namespace zelto::agent {

/// What the last analysis found.
struct CareReport {
    Date date = {};
    std::vector<shared::WidgetSnapshot::CareItem> items = {};
    /// When updates were last asked for, and what that told.
    std::optional<Date> updatesAsked = {};
    std::optional<std::int64_t> securityUpdates = {}, otherUpdates = {}, firmwareUpdates = {};
};

/// The analysis of the machine: once a day, and when a person asks. It only advises. For the main thread.
class Analysis {
  public:
    struct Seams {
        /// Where the last report is kept.
        std::filesystem::path file;
        std::function<Date()> now = Date::now;
        runloop::Log log;
        /// What files tell; runs on a thread of its own.
        std::function<sources::CareFacts()> readFiles;
        /// What daemons tell, updates included or not; answers once.
        std::function<void(bool updates, std::function<void(sources::CareFacts)> answered)> ask;
        std::function<std::optional<shared::WidgetSnapshot::Battery>()> battery;
        std::function<void(const CareReport&)> reported;
        /// Seconds for which files are waited for: a folder of a network that is gone never answers.
        double longestWait = 10;
    };
    explicit Analysis(Seams seams);
    Analysis(const Analysis&) = delete;
    Analysis& operator=(const Analysis&) = delete;

    const std::optional<CareReport>& last() const { return report_; }
    /// Analyses if the last report is a day old.
    void daily();
    /// Analyses now; `done` is called with the report, also where one was under way already.
    void run(std::function<void(const CareReport&)> done);

  private:
    void begin();
    void finish(const sources::CareFacts& files, sources::CareFacts told, bool askedUpdates);

    const Seams seams_;
    std::optional<CareReport> report_;
    bool isRunning_ = false;
    std::vector<std::function<void(const CareReport&)>> waiting_;
    runloop::MainSource filesLate_;
    std::shared_ptr<int> life_ = std::make_shared<int>(0);
};

}  // namespace zelto::agent

ZELTO_RECORD(
    zelto::agent::CareReport, date, items, updatesAsked, securityUpdates, otherUpdates, firmwareUpdates);
