#include "host/FolderWatch.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include <fcntl.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zelto::host {
namespace {

constexpr std::uint32_t departures = IN_DELETE_SELF | IN_MOVE_SELF | IN_ONLYDIR;
constexpr std::uint32_t arrivals = IN_CREATE | IN_MOVED_TO;

}  // namespace

FolderWatch::FolderWatch() : events_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {}

FolderWatch::Identity FolderWatch::identityOf(const std::filesystem::path& path) {
    struct statx status {};
    if (statx(AT_FDCWD, path.c_str(), 0, STATX_BASIC_STATS | STATX_BTIME, &status) != 0 ||
        !S_ISDIR(status.stx_mode))
        return std::nullopt;
    return std::array<std::uint64_t, 5>{
        status.stx_dev_major,
        status.stx_dev_minor,
        status.stx_ino,
        static_cast<std::uint64_t>(status.stx_btime.tv_sec),
        status.stx_btime.tv_nsec};
}

void FolderWatch::follow(std::vector<std::filesystem::path> folders) {
    // What has changed since they were first followed is still to be told.
    if (std::ranges::equal(folders, folders_, {}, {}, &Folder::path)) return;
    folders_.clear();
    for (auto& path : folders) folders_.push_back({.path = std::move(path)});
    for (Folder& folder : folders_) folder.identity = identityOf(folder.path);
    watchAll();
}

void FolderWatch::watch(const std::filesystem::path& folder) {
    bool isNearest = true;
    for (auto path = folder; path.has_relative_path(); path = path.parent_path()) {
        // Of those further up it is enough to know that they are still what they are called.
        const std::uint32_t events = departures | (isNearest && path != folder ? arrivals : 0);
        const int watched = inotify_add_watch(events_.get(), path.c_str(), events | IN_MASK_ADD);
        if (watched < 0) continue;
        watches_.push_back(watched);
        if (path == folder) own_.push_back(watched);
        isNearest = false;
    }
}

void FolderWatch::watchAll() {
    for (const int watched : std::exchange(watches_, {})) inotify_rm_watch(events_.get(), watched);
    own_.clear();
    for (const Folder& folder : folders_) watch(folder.path);
}

bool FolderWatch::take() {
    alignas(inotify_event) std::array<char, 4096> buffer;
    bool isAny = false, isOther = false;
    for (ssize_t count = 0; (count = read(events_.get(), buffer.data(), buffer.size())) > 0;)
        for (const char* at = buffer.data(); at < buffer.data() + count;) {
            const auto* event = reinterpret_cast<const inotify_event*>(at);
            // The end of a watch that was taken off is no news.
            isAny = isAny || (event->mask & IN_IGNORED) == 0;
            isOther = isOther || ((event->mask & IN_DELETE_SELF) != 0 &&
                                  std::ranges::find(own_, event->wd) != own_.end());
            at += sizeof(inotify_event) + event->len;
        }
    if (!isAny) return false;
    // Watched anew before it is looked at: what comes after that is news again.
    watchAll();
    for (Folder& folder : folders_) {
        const Identity now = identityOf(folder.path);
        isOther = isOther || now != folder.identity;
        folder.identity = now;
    }
    return isOther;
}

}  // namespace zelto::host
