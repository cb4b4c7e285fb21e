#include "pictures/PictureProcess.hpp"

#include <array>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <map>
#include <mutex>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "PictureMessages.hpp"
#include "foundation/FileDescriptor.hpp"

namespace zelto::pictures {
namespace {

/// The child's whole life before the first picture is wanted. It shares its parent's memory, which may have
/// other threads: only the kernel is called.
[[noreturn]] void waitForWork(int socket, char* program) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int nothing = open("/dev/null", O_RDWR);
    dup2(socket, STDIN_FILENO);
    // What its parent says and hears is not kept open by a child.
    dup2(nothing, STDOUT_FILENO);
    dup2(nothing, STDERR_FILENO);
    close_range(3, ~0U, 0);
    pollfd request{STDIN_FILENO, POLLIN, 0};
    while (poll(&request, 1, -1) < 0 && errno == EINTR) {
    }
    if ((request.revents & POLLIN) != 0) {
        const std::array<char*, 2> words{program, nullptr};
        const std::array<char*, 1> environment{nullptr};
        execve(program, words.data(), environment.data());
    }
    _exit(0);
}

}  // namespace

struct PictureProcess::State {
    FileDescriptor socket = {};
    pid_t child = -1;
    std::mutex mutex = {};
    std::condition_variable changed = {};
    std::uint64_t lastID = 0;
    bool isReading = false;  // one of those who wait does it for all
    bool isDead = false;
    std::map<std::uint64_t, std::optional<PictureReply>> waiting = {};

    /// Waits for a packet without the lock, and gives it to whom it is for.
    void readOne(std::unique_lock<std::mutex>& lock, Clock::time_point deadline) {
        std::optional<std::string> packet(std::in_place, longestPacket, '\0');
        isReading = true;
        lock.unlock();
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count() + 1;
        pollfd reply{socket.get(), POLLIN, 0};
        if (poll(&reply, 1, static_cast<int>(std::max<long>(left, 0))) > 0) {
            const ssize_t count = read(socket.get(), packet->data(), packet->size());
            packet->resize(static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
        } else {
            packet.reset();
        }
        lock.lock();
        isReading = false;
        changed.notify_all();
        if (!packet) return;
        auto decoded = decodePictureReply(*packet);
        if (!decoded) {
            isDead = true;  // or out of its mind
            return;
        }
        // Those who have given up are not there any more.
        if (const auto asker = waiting.find(decoded->id); asker != waiting.end())
            asker->second = std::move(decoded);
    }
};

PictureProcess PictureProcess::standBy(const std::filesystem::path& program) {
    auto state = std::make_unique<State>();
    std::string path = program.string();
    std::array<int, 2> ends{};
    if (socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) == 0) {
        state->socket = FileDescriptor(ends[0]);
        const FileDescriptor other(ends[1]);
        state->child = fork();
        if (state->child == 0) waitForWork(other.get(), path.data());
    }
    state->isDead = state->child < 0;
    return PictureProcess(std::move(state));
}

PictureProcess::PictureProcess(std::unique_ptr<State> state) : state_(std::move(state)) {}
PictureProcess::PictureProcess(PictureProcess&&) noexcept = default;

PictureProcess::~PictureProcess() {
    if (!state_ || state_->child < 0) return;
    // It ends when the socket does; a confined parent may neither kill it nor wait for it.
    state_->socket.reset();
    waitpid(state_->child, nullptr, 0);
}

std::optional<ui::node::Image> PictureProcess::thumbnail(
    const std::string& path, Clock::time_point deadline) const {
    State& state = *state_;
    std::unique_lock lock(state.mutex);
    if (state.isDead) return std::nullopt;
    const std::uint64_t id = ++state.lastID;
    const std::string packet = encode(PictureRequest{id, path});
    // What is no path at all gets no answer.
    if (!decodeRequest(packet)) return std::nullopt;
    if (send(state.socket.get(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) < 0) {
        // Too much to do already is no death.
        state.isDead = errno == EPIPE || errno == ECONNRESET;
        return std::nullopt;
    }
    const auto own = state.waiting.emplace(id, std::nullopt).first;
    while (!own->second && !state.isDead && Clock::now() < deadline) {
        if (state.isReading)
            state.changed.wait_until(lock, deadline);
        else
            state.readOne(lock, deadline);
    }
    auto reply = std::move(own->second);
    state.waiting.erase(own);
    return reply ? std::move(reply->picture) : std::nullopt;
}

}  // namespace zelto::pictures
