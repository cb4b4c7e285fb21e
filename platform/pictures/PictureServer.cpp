#include "pictures/PictureServer.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <deque>
#include <list>
#include <tuple>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "PictureMessages.hpp"
#include "foundation/FileDescriptor.hpp"
#include "pictures/PictureProcess.hpp"

namespace zelto::pictures {
namespace {

using confinement::AllowedCall;
using Terms = AllowedCall::Terms;

constexpr off_t largestFile = off_t{128} << 20;
constexpr std::size_t mostKept = 64, mostWaiting = 64, mostAtOnce = 2;
constexpr std::size_t decoderSpace = std::size_t{256} << 20;
constexpr std::size_t decoderSeconds = 3;
/// For a file that does not come, from a disk that hangs.
constexpr std::chrono::seconds patience{10};

const std::vector<AllowedCall> openerCalls{
    AllowedCall{ZELTO_CALL(openat), Terms::readOnly},
    AllowedCall{ZELTO_CALL(sendto), Terms::connected},
    AllowedCall{ZELTO_CALL(pipe2)},
    AllowedCall{ZELTO_CALL(clone), Terms::noNamespace},
    AllowedCall{ZELTO_CALL(wait4)},
    AllowedCall{ZELTO_CALL(kill), Terms::deadlyOnly},
    // What a decoder does before it is confined itself.
    AllowedCall{ZELTO_CALL(dup2)},
    AllowedCall{ZELTO_CALL(close_range)},
    AllowedCall{ZELTO_CALL(setsid)},
    AllowedCall{ZELTO_CALL(prctl)},
    AllowedCall{ZELTO_CALL(prlimit64)},
    AllowedCall{ZELTO_CALL(landlock_create_ruleset)},
    AllowedCall{ZELTO_CALL(landlock_add_rule)},
    AllowedCall{ZELTO_CALL(landlock_restrict_self)},
    AllowedCall{ZELTO_CALL(seccomp)},
};

/// What makes a file's picture the same as before.
using Key = std::tuple<dev_t, ino_t, off_t, std::int64_t, std::int64_t>;

Key keyOf(const struct stat& status) {
    return {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
}

[[noreturn]] void decodeAndEnd(int file, int result, const Decode& decode) {
    // In this order: neither is in the other's place.
    if (dup2(result, STDOUT_FILENO) < 0 || dup2(file, STDIN_FILENO) < 0) _exit(1);
    confinement::closeDescriptors(STDERR_FILENO + 1);
    confinement::confine(decoderAllowance());
    try {
        const std::string reply = encode(PictureReply{0, decode(STDIN_FILENO, static_cast<int>(side))});
        const ssize_t written = write(STDOUT_FILENO, reply.data(), reply.size());
        _exit(written == static_cast<ssize_t>(reply.size()) ? 0 : 1);
    } catch (const std::exception&) {
        _exit(1);
    }
}

class Server {
  public:
    Server(int socket, const Decode& decode) : socket_(socket), decode_(decode) {}

    void run() {
        while (true) {
            std::vector<pollfd> awaited{{socket_, POLLIN, 0}};
            for (const Job& job : running_) awaited.push_back({job.result.get(), POLLIN, 0});
            if (poll(awaited.data(), awaited.size(), untilDeadline()) < 0) {
                if (errno == EINTR) continue;
                return;
            }
            const auto now = Clock::now();
            auto job = running_.begin();
            for (std::size_t i = 1; i < awaited.size(); ++i) {
                const auto each = job++;
                if (awaited[i].revents != 0 && hasEnded(*each))
                    finish(each, true);
                else if (each->deadline <= now)
                    finish(each, false);  // which may be the disk's fault
            }
            if (awaited[0].revents != 0 && !receive()) return;
            while (!queued_.empty() && running_.size() < mostAtOnce) start();
        }
    }

  private:
    using Clock = std::chrono::steady_clock;
    struct Job {
        Key key;
        FileDescriptor file;
        std::vector<std::uint64_t> askers;
        FileDescriptor result = {};
        pid_t process = -1;
        Clock::time_point deadline = {};
        std::string bytes = {};
        bool isWhole = false;
    };

    /// In milliseconds, as it is waited for.
    int untilDeadline() const {
        if (running_.empty()) return -1;
        const auto left = std::ranges::min_element(running_, {}, &Job::deadline)->deadline - Clock::now();
        return static_cast<int>(
            std::max<std::int64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(left).count(), 0) +
            1);
    }

    /// False when the other side is gone.
    bool receive() {
        std::array<char, longestPacket> packet;
        const ssize_t count = read(socket_, packet.data(), packet.size());
        if (count == 0) return false;
        if (count < 0) return errno == EINTR || errno == EAGAIN;
        if (const auto request = decodeRequest({packet.data(), static_cast<std::size_t>(count)}))
            take(*request);
        return true;
    }

    void take(const PictureRequest& request) {
        // Whatever is no file is not even opened: that alone has effects on some devices.
        struct stat status {};
        if (stat(request.path.c_str(), &status) != 0 || !S_ISREG(status.st_mode)) {
            answer(request.id, std::nullopt);
            return;
        }
        FileDescriptor file(open(request.path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
        if (!file || fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
            status.st_size > largestFile) {
            answer(request.id, std::nullopt);
            return;
        }
        const Key key = keyOf(status);
        if (const auto known = std::ranges::find(kept_, key, &Kept::first); known != kept_.end()) {
            answer(request.id, known->second);
            std::rotate(known, known + 1, kept_.end());
            return;
        }
        for (auto* jobs : {&running_, &queued_})
            for (Job& job : *jobs)
                if (job.key == key) {
                    job.askers.push_back(request.id);
                    return;
                }
        if (queued_.size() >= mostWaiting)
            answer(request.id, std::nullopt);
        else
            queued_.push_back({.key = key, .file = std::move(file), .askers = {request.id}});
    }

    void start() {
        Job& job = queued_.front();
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) == 0) {
            job.result = FileDescriptor(ends[0]);
            const FileDescriptor other(ends[1]);
            job.process = fork();
            if (job.process == 0) decodeAndEnd(job.file.get(), other.get(), decode_);
        }
        job.file.reset();
        job.deadline = Clock::now() + patience;
        if (job.process < 0) {
            for (const std::uint64_t id : job.askers) answer(id, std::nullopt);
            queued_.pop_front();
            return;
        }
        running_.splice(running_.end(), queued_, queued_.begin());
    }

    static bool hasEnded(Job& job) {
        std::array<char, longestPacket> bytes;
        const ssize_t count = read(job.result.get(), bytes.data(), bytes.size());
        if (count < 0) return errno != EINTR && errno != EAGAIN;
        job.bytes.append(bytes.data(), static_cast<std::size_t>(count));
        job.isWhole = count == 0;
        // A decoder that somebody has taken over may say more than there is to say.
        return job.isWhole || job.bytes.size() > longestPacket;
    }

    void finish(std::list<Job>::iterator job, bool isFinal) {
        // What has said all, or too much, or nothing in time, has no further use.
        kill(job->process, SIGKILL);
        int how = 0;
        while (waitpid(job->process, &how, 0) < 0 && errno == EINTR) {
        }
        std::optional<ui::node::Image> picture;
        if (job->isWhole)
            if (auto reply = decodePictureReply(job->bytes)) picture = std::move(reply->picture);
        for (const std::uint64_t id : job->askers) answer(id, picture);
        if (isFinal) {
            if (kept_.size() == mostKept) kept_.pop_front();
            kept_.emplace_back(job->key, std::move(picture));
        }
        running_.erase(job);
    }

    void answer(std::uint64_t id, const std::optional<ui::node::Image>& picture) const {
        const std::string packet = encode(PictureReply{id, picture});
        // Whoever does not listen goes without.
        send(socket_, packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
    }

    using Kept = std::pair<Key, std::optional<ui::node::Image>>;
    int socket_;
    const Decode& decode_;
    std::list<Job> queued_, running_;
    std::deque<Kept> kept_;  // the one that was asked for last is last
};

}  // namespace

void servePictures(int socket, const Decode& decode) {
    Server(socket, decode).run();
}

confinement::Allowance openerAllowance() {
    return {.readable = {"/"}, .calls = openerCalls, .addressSpace = decoderSpace};
}

confinement::Allowance decoderAllowance() {
    return {.addressSpace = decoderSpace, .openFiles = 8, .processorSeconds = decoderSeconds};
}

}  // namespace zelto::pictures
