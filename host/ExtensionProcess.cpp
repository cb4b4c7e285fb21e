#include "host/ExtensionProcess.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <mutex>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "records/JSONEncoder.hpp"

namespace zelto::host {
namespace {

using Clock = std::chrono::steady_clock;

/// How long a process that closed its output may take to be gone, so that its status can be told.
constexpr std::chrono::milliseconds exitGrace{2000};
/// How long one that is not needed any more may take: whoever ends the host waits for it.
constexpr std::chrono::milliseconds dismissalGrace{250};

struct Pipe {
    FileDescriptor read, write;
    static std::optional<Pipe> make() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) return std::nullopt;
        return Pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    }
};

void makeNonBlocking(int fd) {
    fcntl(fd, F_SETFL, fcntl(fd, F_GETFL) | O_NONBLOCK);
}

bool isReadable(int fd) {
    pollfd waiting{fd, POLLIN, 0};
    return poll(&waiting, 1, 0) > 0;
}

int remaining(Clock::time_point deadline) {
    const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::max<decltype(left)>(left, 0));
}

std::string describe(int status) {
    if (WIFSIGNALED(status))
        return "the widget extension died (signal " + std::to_string(WTERMSIG(status)) + ", " +
               strsignal(WTERMSIG(status)) + ")";
    return "the widget extension ended by itself (status " + std::to_string(WEXITSTATUS(status)) + ")";
}

Outcome outcomeOf(Reply reply, std::string line) {
    if (reply.error) return NoReply{reply.error->empty() ? "an error without a reason" : *reply.error};
    return CheckedReply{std::move(reply), std::move(line)};
}

}  // namespace

/// The requests of one exchange and what became of them.
struct ExtensionProcess::Exchange {
    std::map<std::int64_t, std::size_t> open;  // the place of each request that has no answer yet, by its id
    Outcomes answered;                         // and not handed over yet
    std::string pending;                       // what is still to be sent
    Clock::time_point deadline;
};

Result<ExtensionProcess> ExtensionProcess::start(const ExtensionProgram& program) {
    auto toChild = Pipe::make(), fromChild = Pipe::make(), errors = Pipe::make();
    if (!toChild || !fromChild || !errors)
        return Fault{.reason = std::string("no pipe for the widget extension: ") + std::strerror(errno)};
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, toChild->read.get(), STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, fromChild->write.get(), STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors->write.get(), STDERR_FILENO);

    std::vector<std::string> words{program.path.string()};
    words.insert(words.end(), program.arguments.begin(), program.arguments.end());
    std::vector<char*> argv;
    for (auto& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    pid_t pid = -1;
    const int error = posix_spawn(&pid, program.path.c_str(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        return Fault{
            .reason =
                "cannot start the widget extension " + program.path.string() + ": " + std::strerror(error)};
    makeNonBlocking(toChild->write.get());
    makeNonBlocking(fromChild->read.get());
    makeNonBlocking(errors->read.get());
    return ExtensionProcess(
        pid,
        program.deadline,
        std::move(toChild->write),
        std::move(fromChild->read),
        std::move(errors->read));
}

ExtensionProcess::ExtensionProcess(ExtensionProcess&& other) noexcept
    : pid_(std::exchange(other.pid_, -1)),
      deadline_(other.deadline_),
      input_(std::move(other.input_)),
      output_(std::move(other.output_)),
      errors_(std::move(other.errors_)),
      received_(std::move(other.received_)),
      stderr_(std::move(other.stderr_)),
      failure_(std::move(other.failure_)),
      lastID_(other.lastID_) {}

ExtensionProcess::~ExtensionProcess() {
    if (pid_ < 0) return;
    // Without its ends it has nothing to wait for.
    input_.reset();
    output_.reset();
    errors_.reset();
    if (!waitForExit(dismissalGrace)) ::kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
}

bool ExtensionProcess::waitForExit(std::chrono::milliseconds allowed) const {
    const FileDescriptor process(static_cast<int>(syscall(SYS_pidfd_open, pid_, 0)));
    const auto deadline = Clock::now() + allowed;
    pollfd gone{process.get(), POLLIN, 0};
    int ready = 0;
    do ready = poll(&gone, 1, remaining(deadline));
    while (ready < 0 && errno == EINTR);
    return ready > 0;
}

std::string ExtensionProcess::reap() {
    input_.reset();
    // A process that ends closes its output a little before it is gone.
    if (!waitForExit(exitGrace)) {
        kill();
        return "the widget extension closed its output" + stderrTail();
    }
    int status = 0;
    waitpid(pid_, &status, 0);
    pid_ = -1;
    return describe(status) + stderrTail();
}

/// Takes some of what it says on its standard error, and keeps the end of it.
bool ExtensionProcess::drainStderr() {
    constexpr std::size_t most = 1024;
    std::array<char, 4096> buffer;
    const ssize_t count = read(errors_.get(), buffer.data(), buffer.size());
    if (count <= 0) return false;
    stderr_.append(buffer.data(), static_cast<std::size_t>(count));
    if (stderr_.size() > most) stderr_.erase(0, stderr_.size() - most);
    return true;
}

/// The end of what it said, once it is gone, to be put behind the report of that.
std::string ExtensionProcess::stderrTail() {
    // No more than a pipe holds: somebody else may have it open still.
    for (int i = 0; i < 32 && drainStderr(); ++i) {
    }
    std::string words = std::exchange(stderr_, {});
    while (words.ends_with('\n')) words.pop_back();
    // One line of log, whatever it said.
    for (char& c : words)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    return words.empty() ? "" : "; its last words: " + words;
}

void ExtensionProcess::kill() {
    ::kill(pid_, SIGKILL);
    waitpid(pid_, nullptr, 0);
    pid_ = -1;
}

std::optional<std::string> ExtensionProcess::exitReason() {
    if (pid_ < 0) return "the widget extension has ended";
    pollfd output{output_.get(), POLLIN, 0};
    // Nothing was asked: whatever comes is its end, or as bad.
    if (poll(&output, 1, 0) <= 0) return std::nullopt;
    return reap();
}

bool ExtensionProcess::sendSome(std::string& pending) {
    const ssize_t count = write(input_.get(), pending.data(), pending.size());
    if (count < 0) return errno == EAGAIN || errno == EINTR;
    pending.erase(0, static_cast<std::size_t>(count));
    return true;
}

bool ExtensionProcess::receiveSome() {
    std::array<char, 64 * 1024> buffer;
    const ssize_t count = read(output_.get(), buffer.data(), buffer.size());
    if (count < 0) return errno == EAGAIN || errno == EINTR;
    received_.append(buffer.data(), static_cast<std::size_t>(count));
    return count > 0;
}

/// Moves whole lines to the requests that wait for them; tells what is wrong with one that makes no sense.
std::string ExtensionProcess::takeReplies(Exchange& exchange) {
    std::size_t begin = 0;
    for (auto end = received_.find('\n'); end != std::string::npos; end = received_.find('\n', begin)) {
        std::string line = received_.substr(begin, end - begin);
        auto reply = decodeReply(line);
        begin = end + 1;
        if (!reply) return "the widget extension sent an invalid reply: " + reply.fault().text();
        const auto waiting = reply->id ? exchange.open.find(*reply->id) : exchange.open.end();
        if (waiting == exchange.open.end()) return "the widget extension answered an unknown request";
        exchange.answered.emplace(waiting->second, outcomeOf(*std::move(reply), std::move(line)));
        exchange.open.erase(waiting);
    }
    received_.erase(0, begin);
    static_assert(longestLine == std::size_t{32} << 20);
    return received_.size() > longestLine ? "the widget extension sent a reply longer than 32 MiB" : "";
}

/// Sends and receives until something is worth telling: all is answered, nothing came for a while though
/// something has been answered, or the process is of no use any more, which is told by why.
std::string ExtensionProcess::serve(Exchange& exchange, int cancel) {
    /// What has been answered waits so long for the rest.
    constexpr std::chrono::milliseconds together{1000};
    auto quietUntil = Clock::now() + together;
    while (!exchange.open.empty()) {
        const auto now = Clock::now();
        if (now >= exchange.deadline) {
            kill();
            return "the widget extension did not answer in time" + stderrTail();
        }
        if (!exchange.answered.empty() && now >= quietUntil) return "";
        std::array<pollfd, 4> ends{
            pollfd{output_.get(), POLLIN, 0},
            pollfd{exchange.pending.empty() ? -1 : input_.get(), POLLOUT, 0},
            pollfd{cancel, POLLIN, 0},
            pollfd{errors_.get(), POLLIN, 0}};
        const auto until =
            exchange.answered.empty() ? exchange.deadline : std::min(exchange.deadline, quietUntil);
        const int ready = poll(ends.data(), ends.size(), remaining(until) + 1);
        if (ready < 0 && errno != EINTR)
            return std::string("cannot wait for the widget extension: ") + std::strerror(errno);
        if (ready <= 0) continue;
        if (ends[2].revents != 0) return "the request was cancelled";
        if (ends[3].revents != 0 && !drainStderr()) errors_.reset();
        // A broken input shows on the output too, as its end.
        if (ends[1].revents != 0 && !sendSome(exchange.pending)) exchange.pending.clear();
        std::string failure;
        if (ends[0].revents != 0) {
            if (!receiveSome()) failure = reap();
            quietUntil = Clock::now() + together;
        }
        if (const std::string nonsense = takeReplies(exchange); !nonsense.empty()) failure = nonsense;
        if (!failure.empty()) return failure;
    }
    return "";
}

void ExtensionProcess::exchange(
    std::vector<Request> requests, const std::function<void(Outcomes)>& deliver, int cancel) {
    Exchange exchange;
    exchange.deadline = Clock::now() + deadline_;
    for (std::size_t place = 0; place < requests.size(); ++place) {
        requests[place].id = ++lastID_;
        if (const auto line = encodeJSON(requests[place])) {
            exchange.pending += *line + '\n';
            exchange.open[requests[place].id] = place;
        } else {
            exchange.answered.emplace(place, NoReply{"a request that is not UTF-8"});
        }
    }
    std::string failure = pid_ < 0 ? "the widget extension has ended" : "";
    while (failure.empty() && !exchange.open.empty()) {
        failure = serve(exchange, cancel);
        if (failure.empty() && !exchange.open.empty()) deliver(std::exchange(exchange.answered, {}));
    }
    if (!failure.empty() && pid_ > 0) kill();
    failure_ = failure;
    for (const auto& [id, place] : exchange.open) exchange.answered.emplace(place, NoReply{failure, true});
    if (!exchange.answered.empty()) deliver(std::move(exchange.answered));
}

void askApart(
    const ExtensionProgram& program, const std::map<std::size_t, Request>& requests,
    const std::function<void(Outcomes)>& deliver, int cancel) {
    constexpr std::size_t mostAtOnce = 16;
    std::mutex mutex;
    auto next = requests.begin();
    const auto hand = [&](std::size_t place, Outcome outcome) {
        const std::lock_guard lock(mutex);
        Outcomes one;
        one.emplace(place, std::move(outcome));
        deliver(std::move(one));
    };
    const auto workOff = [&] {
        while (true) {
            std::unique_lock lock(mutex);
            if (next == requests.end() || isReadable(cancel)) return;
            const auto& [place, request] = *next++;
            lock.unlock();
            auto process = ExtensionProcess::start(program);
            if (process)
                process->exchange(
                    {request},
                    [&hand, at = place](Outcomes outcomes) { hand(at, std::move(outcomes.begin()->second)); },
                    cancel);
            else
                hand(place, NoReply{process.fault().text(), true});
        }
    };
    std::vector<std::jthread> others;
    try {
        while (others.size() + 1 < std::min(requests.size(), mostAtOnce)) others.emplace_back(workOff);
    } catch (const std::system_error&) {
        // Those that there are take longer.
    }
    workOff();
}

std::filesystem::path installedExtension() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / "zelto-widgets";
}

}  // namespace zelto::host
