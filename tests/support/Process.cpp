#include "tests/support/Process.hpp"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/Words.hpp"

namespace zelto::test {
Finished run(
    const std::vector<std::string>& command, const std::string& input,
    const std::vector<std::string>& environment) {
    std::array<int, 2> in{}, out{}, err{};
    if (pipe2(in.data(), O_CLOEXEC) != 0 || pipe2(out.data(), O_CLOEXEC) != 0 ||
        pipe2(err.data(), O_CLOEXEC) != 0)
        throw std::runtime_error("no pipes");
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], 0);
    posix_spawn_file_actions_adddup2(&actions, out[1], 1);
    posix_spawn_file_actions_adddup2(&actions, err[1], 2);
    auto words = command, variables = environment;
    // A sanitizer's options belong to the build, not to what is tested.
    if (const char* options = std::getenv("LSAN_OPTIONS"))
        variables.push_back(std::string("LSAN_OPTIONS=") + options);
    pid_t pid = -1;
    const int failed = posix_spawnp(
        &pid, command[0].c_str(), &actions, nullptr, pointersTo(words).data(), pointersTo(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    close(in[0]);
    close(out[1]);
    close(err[1]);
    if (failed != 0) throw std::runtime_error("cannot start " + command[0]);

    Finished result{0, {}, {}};
    std::size_t sent = 0;
    std::array<pollfd, 3> ends{
        pollfd{out[0], POLLIN, 0}, pollfd{err[0], POLLIN, 0}, pollfd{in[1], POLLOUT, 0}};
    fcntl(in[1], F_SETFL, O_NONBLOCK);
    while (ends[0].fd >= 0 || ends[1].fd >= 0) {
        if (ends[2].fd >= 0 && sent == input.size()) {
            close(in[1]);
            ends[2].fd = -1;
        }
        if (poll(ends.data(), ends.size(), -1) < 0 && errno != EINTR) throw std::runtime_error("cannot wait");
        for (const std::size_t i : {0U, 1U}) {
            if (ends[i].fd < 0 || ends[i].revents == 0) continue;
            std::array<char, 4096> buffer;
            const ssize_t count = read(ends[i].fd, buffer.data(), buffer.size());
            if (count > 0) {
                (i == 0 ? result.output : result.errors)
                    .append(buffer.data(), static_cast<std::size_t>(count));
            } else {
                close(ends[i].fd);
                ends[i].fd = -1;
            }
        }
        if (ends[2].fd >= 0 && ends[2].revents != 0) {
            const ssize_t count = write(ends[2].fd, input.data() + sent, input.size() - sent);
            sent = count < 0 ? input.size() : sent + static_cast<std::size_t>(count);
        }
    }
    if (ends[2].fd >= 0) close(ends[2].fd);
    int status = 0;
    waitpid(pid, &status, 0);
    result.status = WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
    return result;
}

}  // namespace zelto::test
