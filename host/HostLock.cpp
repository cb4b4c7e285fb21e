#include "host/HostLock.hpp"

#include <cerrno>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <system_error>

namespace zelto::host {

HostLock::HostLock(const std::filesystem::path& folder, std::chrono::milliseconds patience) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    file_ = FileDescriptor(
        open((folder / "desktop.lock").c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0600));
    if (!file_) return;
    constexpr std::chrono::milliseconds step{50};
    const auto isTaken = [this] {
        return flock(file_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    };
    for (isHeld_ = !isTaken(); !isHeld_ && patience > step; isHeld_ = !isTaken()) {
        patience -= step;
        poll(nullptr, 0, static_cast<int>(step.count()));
    }
}

}  // namespace zelto::host
