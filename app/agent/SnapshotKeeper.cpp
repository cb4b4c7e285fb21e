#include "agent/SnapshotKeeper.hpp"

#include <algorithm>
#include <cmath>

#include <sys/stat.h>
#include <system_error>

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"

namespace zelto::agent {
namespace {

using shared::WidgetSnapshot;

/// Seconds between two writings.
constexpr double pause = 0.2;

/// What is compared: all but the date, which is another each time.
std::string contentOf(WidgetSnapshot snapshot) {
    snapshot.date = {};
    return records::encodeJSON(snapshot).value_or("");
}

/// Files of earlier versions, and of other programs, may be open to everybody.
void makePrivate(const std::filesystem::path& file) {
    using std::filesystem::perms;
    std::error_code error;
    const auto withdraw = [&error](const std::filesystem::path& path) {
        std::filesystem::permissions(
            path, perms::group_all | perms::others_all, std::filesystem::perm_options::remove, error);
    };
    withdraw(file.parent_path());
    withdraw(file);
}

}  // namespace

SnapshotKeeper::SnapshotKeeper(Seams seams) : seams_(std::move(seams)) {
    makePrivateFolder(seams_.file.parent_path());
    makePrivateFolder(seams_.mark.parent_path());
    removeLeftovers(seams_.file);
    removeLeftovers(seams_.mark);
    makePrivate(seams_.file);
    const auto mark = records::decodeJSON<std::vector<double>>(readFile(seams_.mark).value_or(""));
    if (mark && mark->size() == announced_.size()) std::ranges::copy(*mark, announced_.begin());
    const auto bytes = readFile(seams_.file, WidgetSnapshot::largestDocument);
    auto stored = bytes ? records::decodeJSON<WidgetSnapshot>(*bytes) : Fault{};
    // What was read longer ago is not so any more.
    if (stored && isOurs(*stored) && std::abs(seams_.now() - stored->date) < fresh)
        snapshot_ = *std::move(stored);
}

bool SnapshotKeeper::isOurs(const WidgetSnapshot& snapshot) const {
    constexpr double rounding = 1e-3;
    return std::ranges::any_of(announced_, [&snapshot](double announced) {
        return std::abs(announced - snapshot.date.sinceReference) < rounding;
    });
}

SnapshotKeeper::Identity SnapshotKeeper::identityOf(const std::filesystem::path& file) {
    struct stat status {};
    if (stat(file.c_str(), &status) != 0) return std::nullopt;
    return std::array<std::int64_t, 4>{
        static_cast<std::int64_t>(status.st_ino),
        status.st_size,
        status.st_mtim.tv_sec,
        status.st_mtim.tv_nsec};
}

void SnapshotKeeper::change(const std::function<void(WidgetSnapshot&)>& change) {
    change(snapshot_);
    if (contentOf(snapshot_) != written_) writeSoon();
}

void SnapshotKeeper::renew() {
    isRenewed_ = true;
    writeSoon();
}

void SnapshotKeeper::flush() {
    if (isRenewed_ || contentOf(snapshot_) != written_) write();
}

void SnapshotKeeper::writeSoon() {
    const double since = lastWritten_ ? seams_.now() - *lastWritten_ : pause;
    // A clock that was set back makes nobody wait.
    if (since >= pause || since < 0)
        write();
    else
        soon_ = runloop::MainSource::after(pause - since, [this] { write(); });
}

bool SnapshotKeeper::isAnothers() {
    const Identity there = identityOf(seams_.file);
    if (!there || there == own_) return false;
    const auto bytes = readFile(seams_.file, WidgetSnapshot::largestDocument);
    const auto other = bytes ? records::decodeJSON<WidgetSnapshot>(*bytes) : Fault{};
    if (!other) return false;
    const double age = std::abs(seams_.now() - other->date);
    if (isOurs(*other) || age >= fresh) return false;
    const Date until = other->date + fresh;
    if (!leftAloneUntil_)
        seams_.log.info(
            "another program keeps the snapshot " + seams_.file.string() +
            "; it is left alone until it is 15 minutes old");
    leftAloneUntil_ = until;
    later_ = runloop::MainSource::after(std::max(until - seams_.now(), 1.0), [this] { write(); });
    return true;
}

void SnapshotKeeper::announce(Date date) {
    announced_ = {date.sinceReference, announced_[0]};
    const auto document = records::encodeJSON(std::vector<double>(announced_.begin(), announced_.end()));
    const auto written = writeFileAtomically(
        seams_.mark,
        document.value_or("[]"),
        {.durability = Durability::processDeath, .readers = Readers::owner});
    if (!written) seams_.log(seams_.mark.string() + " cannot be written: " + written.fault().reason);
}

void SnapshotKeeper::write() {
    soon_.reset();
    if (isAnothers()) return;
    later_.reset();
    if (leftAloneUntil_) seams_.log.info("the snapshot " + seams_.file.string() + " is kept here again");
    leftAloneUntil_.reset();
    snapshot_.date = seams_.now();
    const auto document = records::encodeJSON(snapshot_);
    if (!document) {
        seams_.log("the snapshot cannot be written: a text in it is not UTF-8, or a number is none");
        return;
    }
    // Somebody may have removed the folder, or opened the file to others.
    makePrivateFolder(seams_.file.parent_path());
    makePrivateFolder(seams_.mark.parent_path());
    makePrivate(seams_.file);
    // Announced before it is there: whoever is killed in between has announced one too many.
    announce(snapshot_.date);
    // What power loss takes is gathered anew.
    const auto written = writeFileAtomically(
        seams_.file, *document, {.durability = Durability::processDeath, .readers = Readers::owner});
    if (!written) {
        seams_.log("the snapshot " + seams_.file.string() + " cannot be written: " + written.fault().reason);
        return;
    }
    own_ = identityOf(seams_.file);
    written_ = contentOf(snapshot_);
    isRenewed_ = false;
    lastWritten_ = snapshot_.date;
    seams_.written();
}

}  // namespace zelto::agent
