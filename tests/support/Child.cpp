#include "tests/support/Child.hpp"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/Words.hpp"

namespace zelto::test {
Child::Child(
    std::vector<std::string> command, std::vector<std::string> environment, const std::string& errorFile) {
    std::array<int, 2> out{};
    if (pipe2(out.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, "/dev/null", O_RDONLY, 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    if (!errorFile.empty())
        posix_spawn_file_actions_addopen(&actions, 2, errorFile.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0666);
    if (const char* options = std::getenv("LSAN_OPTIONS"))
        environment.push_back(std::string("LSAN_OPTIONS=") + options);
    const int failed = posix_spawnp(
        &pid_,
        command[0].c_str(),
        &actions,
        nullptr,
        pointersTo(command).data(),
        pointersTo(environment).data());
    posix_spawn_file_actions_destroy(&actions);
    close(out[1]);
    output_ = out[0];
    if (failed != 0) throw std::runtime_error("cannot start " + command[0]);
}

Child::Child(Child&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)),
      output_(std::exchange(other.output_, -1)),
      received_(std::move(other.received_)) {}

Child& Child::operator=(Child&& other) noexcept {
    std::swap(pid_, other.pid_);
    std::swap(output_, other.output_);
    std::swap(received_, other.received_);
    return *this;
}

Child::~Child() {
    if (pid_ > 0) {
        ::kill(pid_, SIGKILL);
        wait();
    }
    if (output_ >= 0) close(output_);
}

std::optional<std::string> Child::line(std::chrono::milliseconds allowed) {
    using Clock = std::chrono::steady_clock;
    const auto deadline = Clock::now() + allowed;
    while (true) {
        if (const auto end = received_.find('\n'); end != std::string::npos) {
            std::string out = received_.substr(0, end);
            received_.erase(0, end + 1);
            return out;
        }
        const auto left =
            std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd waiting{output_, POLLIN, 0};
        if (left <= 0 || poll(&waiting, 1, static_cast<int>(left)) == 0) return std::nullopt;
        std::array<char, 4096> buffer;
        const ssize_t count = read(output_, buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return std::nullopt;
        received_.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

void Child::kill(int signal) {
    // What is over has no number any more; that of nobody would be everybody's.
    if (pid_ > 0) ::kill(pid_, signal);
}

int Child::wait() {
    int status = 0;
    while (waitpid(pid_, &status, 0) < 0 && errno == EINTR) {
    }
    pid_ = -1;
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

}  // namespace zelto::test
