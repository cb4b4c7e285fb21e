#include "agent/Analysis.hpp"

#include <cmath>
#include <utility>

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "runloop/Aside.hpp"
#include "shared/WidgetSnapshotFields.hpp"

namespace zelto::agent {
namespace {

constexpr double day = 86'400;

bool isOlderThanADay(std::optional<Date> date, Date now) {
    // A clock that was set back makes everything old.
    return !date || std::abs(now - *date) >= day;
}

}  // namespace

Analysis::Analysis(Seams seams) : seams_(std::move(seams)) {
    const auto bytes = readFile(seams_.file);
    if (!bytes) return;
    auto report = records::decodeJSON<CareReport>(*bytes);
    if (report)
        report_ = *std::move(report);
    else
        seams_.log(seams_.file.string() + ": " + report.fault().text() + "; it is made anew");
}

void Analysis::daily() {
    if (isOlderThanADay(report_ ? std::optional(report_->date) : std::nullopt, seams_.now()) && !isRunning_)
        begin();
}

void Analysis::run(std::function<void(const CareReport&)> done) {
    waiting_.push_back(std::move(done));
    if (!isRunning_) begin();
}

void Analysis::begin() {
    isRunning_ = true;
    const auto battery = seams_.battery();
    // Asking costs the daemons minutes of work and the network: once a day, and on mains.
    const bool updates = (!battery || battery->pluggedIn) &&
                         isOlderThanADay(report_ ? report_->updatesAsked : std::nullopt, seams_.now());
    const auto isAsked = std::make_shared<bool>(false);
    const auto ask = [this, updates, isAsked](const sources::CareFacts& files) {
        if (std::exchange(*isAsked, true)) return;
        filesLate_.reset();
        seams_.ask(updates, [this, updates, files, life = std::weak_ptr(life_)](sources::CareFacts told) {
            if (!life.expired()) finish(files, std::move(told), updates);
        });
    };
    filesLate_ = runloop::MainSource::after(seams_.longestWait, [this, ask] {
        seams_.log("the analysis goes on without what files tell: reading them takes long");
        ask({});
    });
    runloop::runAside(life_, [ask, read = seams_.readFiles]() -> std::function<void()> {
        return [ask, files = read()] { ask(files); };
    });
}

void Analysis::finish(const sources::CareFacts& files, sources::CareFacts facts, bool askedUpdates) {
    CareReport report{.date = seams_.now()};
    // Asked or not: at most once a day, also where it failed.
    report.updatesAsked = askedUpdates ? std::optional(report.date)
                          : report_    ? report_->updatesAsked
                                       : std::nullopt;
    // What was told counts until something else is.
    if (report_ && !facts.updates && report_->securityUpdates)
        facts.updates = {*report_->securityUpdates, report_->otherUpdates.value_or(0)};
    if (report_ && !facts.firmwareUpdates) facts.firmwareUpdates = report_->firmwareUpdates;
    if (facts.updates) {
        report.securityUpdates = facts.updates->security;
        report.otherUpdates = facts.updates->others;
    }
    report.firmwareUpdates = facts.firmwareUpdates;
    facts.memoryAvailable = files.memoryAvailable;
    facts.memoryWaiting = files.memoryWaiting;
    facts.volumes = files.volumes;
    // Of two that are installed, one that is on is enough.
    if (files.firewall && facts.firewall != true) facts.firewall = files.firewall;
    facts.secureBoot = files.secureBoot;
    facts.chip = files.chip;
    facts.restartRequired = files.restartRequired;
    facts.newerKernel = files.newerKernel;
    if (const auto battery = seams_.battery()) facts.batteryHealth = battery->health;
    report.items = sources::careItems(facts);
    report_ = report;
    isRunning_ = false;
    makePrivateFolder(seams_.file.parent_path());
    const auto written = writeFileAtomically(
        seams_.file,
        records::encodeJSON(report).value_or("{}"),
        {.durability = Durability::processDeath, .readers = Readers::owner});
    if (!written) seams_.log(seams_.file.string() + " cannot be written: " + written.fault().reason);
    seams_.reported(report);
    for (const auto& done : std::exchange(waiting_, {})) done(report);
}

}  // namespace zelto::agent
