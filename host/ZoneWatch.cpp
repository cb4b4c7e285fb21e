#include "host/ZoneWatch.hpp"

#include <array>

#include <sys/inotify.h>
#include <unistd.h>

namespace zelto::host {

ZoneWatch::ZoneWatch(const std::filesystem::path& setting, const std::filesystem::path& data)
    : name_(setting.filename()), events_(inotify_init1(IN_CLOEXEC | IN_NONBLOCK)) {
    const auto watch = [this](const std::filesystem::path& folder) {
        return inotify_add_watch(
            events_.get(), folder.c_str(), IN_CREATE | IN_MOVED_TO | IN_CLOSE_WRITE | IN_DELETE | IN_ONLYDIR);
    };
    // The setting is replaced as a whole, mostly by a new symbolic link.
    watch(setting.parent_path());
    data_ = watch(data);
}

ZoneWatch::Changes ZoneWatch::take() {
    Changes changes;
    alignas(inotify_event) std::array<char, 4096> buffer;
    for (ssize_t count = 0; (count = read(events_.get(), buffer.data(), buffer.size())) > 0;) {
        for (const char* at = buffer.data(); at < buffer.data() + count;) {
            const auto* event = reinterpret_cast<const inotify_event*>(at);
            if (event->wd == data_)
                changes.data = true;
            else if (event->len > 0 && name_ == event->name)
                changes.setting = true;
            at += sizeof(inotify_event) + event->len;
        }
    }
    return changes;
}

}  // namespace zelto::host
