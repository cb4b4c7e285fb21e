#include "runloop/PathWatch.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto::runloop {
namespace {

constexpr std::uint32_t departures = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t arrivals = IN_CREATE | IN_MOVED_TO;
/// Of a folder with files: what has been written whole, and what came and went.
constexpr std::uint32_t contents = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;

}  // namespace

PathWatch::PathWatch() : events_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

PathWatch::Identity PathWatch::identityOf(const Path& path) {
    struct statx status {};
    if (statx(AT_FDCWD, path.path.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0 ||
        S_ISDIR(status.stx_mode) == path.isFile)
        return std::nullopt;
    std::array<std::uint64_t, 8> out{
        status.stx_dev_major,
        status.stx_dev_minor,
        status.stx_ino,
        static_cast<std::uint64_t>(status.stx_btime.tv_sec),
        status.stx_btime.tv_nsec};
    if (path.isFile) {
        out[5] = status.stx_size;
        out[6] = static_cast<std::uint64_t>(status.stx_mtime.tv_sec);
        out[7] = status.stx_mtime.tv_nsec;
    }
    return out;
}

void PathWatch::follow(std::vector<std::filesystem::path> folders, std::vector<std::filesystem::path> files) {
    std::vector<Path> paths;
    for (auto& path : folders) paths.push_back({.path = std::move(path), .isFile = false});
    for (auto& path : files) paths.push_back({.path = std::move(path), .isFile = true});
    // What has changed since they were first followed is still to be told.
    const auto isSame = [](const Path& a, const Path& b) { return a.path == b.path && a.isFile == b.isFile; };
    if (std::ranges::equal(paths, paths_, isSame)) return;
    paths_ = std::move(paths);
    for (Path& path : paths_) path.identity = identityOf(path);
    watchAll();
}

void PathWatch::watch(const Path& watched) {
    bool isNearest = true;
    const std::filesystem::path folder = watched.isFile ? watched.path.parent_path() : watched.path;
    for (auto path = folder; path.has_relative_path(); path = path.parent_path()) {
        // Of those further up it is enough to know that they are still what they are called.
        std::uint32_t events = departures;
        if (isNearest && path != folder) events |= arrivals;
        if (path == folder && watched.isFile) events |= contents;
        const int watch = inotify_add_watch(events_.get(), path.c_str(), events | IN_MASK_ADD);
        if (watch < 0) continue;
        watches_.push_back(watch);
        if (path == folder && !watched.isFile) own_.push_back(watch);
        isNearest = false;
    }
}

void PathWatch::watchAll() {
    for (const int watched : std::exchange(watches_, {})) inotify_rm_watch(events_.get(), watched);
    own_.clear();
    for (const Path& path : paths_) watch(path);
}

PathWatch::Changes PathWatch::take() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool isAny = false;
    Changes changes;
    for (ssize_t count = 0; (count = read(events_.get(), buffer.data(), buffer.size())) > 0;)
        for (const char* at = buffer.data(); at < buffer.data() + count;) {
            const auto* event = reinterpret_cast<const inotify_event*>(at);
            // The end of a watch that was taken off is no news.
            isAny = isAny || (event->mask & IN_IGNORED) == 0;
            changes.folders = changes.folders || ((event->mask & IN_DELETE_SELF) != 0 &&
                                                  std::ranges::find(own_, event->wd) != own_.end());
            at += sizeof(inotify_event) + event->len;
        }
    if (!isAny) return changes;
    // Watched anew before it is looked at: what comes after that is news again.
    watchAll();
    for (Path& path : paths_) {
        const Identity now = identityOf(path);
        if (std::exchange(path.identity, now) == now) continue;
        if (path.isFile)
            changes.files.insert(path.path.string());
        else
            changes.folders = true;
    }
    return changes;
}

}  // namespace zelto::runloop
