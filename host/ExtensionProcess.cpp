#include "host/ExtensionProcess.hpp"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

#include <gio/gio.h>
#include <gio/gunixinputstream.h>
#include <gio/gunixoutputstream.h>
#include <glib-unix.h>
#include <unistd.h>

#include "foundation/Files.hpp"
#include "foundation/Handle.hpp"
#include "records/JSONEncoder.hpp"
#include "runloop/MainLoop.hpp"
#include "widgetkit/ReplyReader.hpp"

namespace zelto::host {
namespace {

using Subprocess = Handle<GSubprocess, g_object_unref>;

/// How long a process that closed its output may take to be gone, so that its status can be told, and one
/// that is not needed any more, in seconds.
constexpr double exitGrace = 2, dismissalGrace = 0.25;
/// What has been answered waits so long for the rest, in seconds.
constexpr double together = 1;
/// How much of what it says on its standard error is kept, in bytes.
constexpr std::size_t longestTail = 1024;

std::string describe(GSubprocess* process) {
    if (g_subprocess_get_if_signaled(process)) {
        const int signal = g_subprocess_get_term_sig(process);
        return "the widget extension died (signal " + std::to_string(signal) + ", " + strsignal(signal) + ")";
    }
    return "the widget extension ended by itself (status " +
           std::to_string(g_subprocess_get_exit_status(process)) + ")";
}

Outcome outcomeOf(widgetkit::Reply reply, std::string line) {
    if (reply.error) return NoReply{reply.error->empty() ? "an error without a reason" : *reply.error};
    return CheckedReply{std::move(reply), std::move(line)};
}

using Launcher = Handle<GSubprocessLauncher, g_object_unref>;

/// Of the environment it gets what its texts depend on, and nothing that is secret. Descriptors need not be
/// closed for it, for which the library would copy this whole process: those of ours close themselves.
Launcher launcher() {
    Launcher out(g_subprocess_launcher_new(static_cast<GSubprocessFlags>(
        G_SUBPROCESS_FLAGS_STDIN_PIPE | G_SUBPROCESS_FLAGS_STDOUT_PIPE | G_SUBPROCESS_FLAGS_STDERR_PIPE |
        G_SUBPROCESS_FLAGS_INHERIT_FDS)));
    const Handle<gchar*, g_strfreev> all(g_get_environ());
    Handle<gchar*, g_strfreev> kept(g_new0(gchar*, 1));
    for (gchar** each = all.get(); *each; ++each) {
        const std::string_view variable(*each);
        const std::string_view name = variable.substr(0, variable.find('='));
        constexpr std::array<std::string_view, 6> passed{
            "HOME", "LANG", "LANGUAGE", "TZ", "PATH", "XDG_DATA_DIRS"};
        if (!name.starts_with("LC_") && std::ranges::find(passed, name) == passed.end()) continue;
        const std::string own(name), value(variable.substr(std::min(name.size() + 1, variable.size())));
        kept.reset(g_environ_setenv(kept.release(), own.c_str(), value.c_str(), TRUE));
    }
    g_subprocess_launcher_set_environ(out.get(), kept.get());
    return out;
}

/// Calls a function once the process is gone.
void whenGone(GSubprocess* process, std::function<void()> function) {
    g_subprocess_wait_async(
        process,
        nullptr,
        [](GObject* source, GAsyncResult* result, gpointer data) {
            const std::unique_ptr<std::function<void()>> called(static_cast<std::function<void()>*>(data));
            g_subprocess_wait_finish(G_SUBPROCESS(source), result, nullptr);
            (*called)();
        },
        new std::function<void()>(std::move(function)));
}

/// What can be read now; absent at the end.
std::optional<std::string> readSome(int fd) {
    std::array<char, 64 * 1024> buffer;
    const ssize_t count = read(fd, buffer.data(), buffer.size());
    if (count > 0) return std::string(buffer.data(), static_cast<std::size_t>(count));
    if (count < 0 && (errno == EAGAIN || errno == EINTR)) return "";
    return std::nullopt;
}

}  // namespace

struct ExtensionProcess::State : std::enable_shared_from_this<State> {
    State(Subprocess started, std::chrono::milliseconds allowed)
        : subprocess(std::move(started)),
          deadline(std::chrono::duration<double>(allowed).count()),
          input(g_unix_output_stream_get_fd(
              G_UNIX_OUTPUT_STREAM(g_subprocess_get_stdin_pipe(subprocess.get())))),
          output(g_unix_input_stream_get_fd(
              G_UNIX_INPUT_STREAM(g_subprocess_get_stdout_pipe(subprocess.get())))),
          errors(g_unix_input_stream_get_fd(
              G_UNIX_INPUT_STREAM(g_subprocess_get_stderr_pipe(subprocess.get())))) {
        for (const int fd : {input, output, errors}) g_unix_set_fd_nonblocking(fd, TRUE, nullptr);
    }

    /// A function of this object's for the loop, for as long as there is this object.
    std::function<void()> whileThere(void (State::*function)()) {
        return [self = weak_from_this(), function] {
            if (const auto state = self.lock()) (*state.*function)();
        };
    }
    void unwatch() {
        for (runloop::MainSource* source :
             {&readable, &writable, &errorsReadable, &deadlineTimer, &quietTimer, &exitTimer})
            source->reset();
    }

    void send() {
        const ssize_t count = write(input, pending.data(), pending.size());
        // A broken input shows on the output too, as its end.
        if (count < 0 && errno != EAGAIN && errno != EINTR) pending.clear();
        if (count > 0) pending.erase(0, static_cast<std::size_t>(count));
        if (pending.empty()) writable.reset();
    }

    void receive() {
        const auto bytes = readSome(output);
        if (!bytes) {
            outputEnded();
            return;
        }
        received += *bytes;
        if (const auto taken = takeReplies(); !taken) {
            g_subprocess_force_exit(subprocess.get());
            over(taken.fault().text());
            return;
        }
        if (open.empty())
            flush();
        else
            quietTimer = runloop::MainSource::after(together, whileThere(&State::flush));
    }

    /// Moves whole lines to the requests that wait for them.
    Result<void> takeReplies() {
        std::size_t begin = 0;
        for (auto end = received.find('\n', searched); end != std::string::npos;
             end = received.find('\n', begin)) {
            std::string line = received.substr(begin, end - begin);
            begin = end + 1;
            auto reply = reader.read(line);
            if (!reply)
                return Fault{.reason = "the widget extension sent an invalid reply: " + reply.fault().text()};
            const auto waiting = reply->id ? open.find(*reply->id) : open.end();
            if (waiting == open.end())
                return Fault{.reason = "the widget extension answered an unknown request"};
            answered.emplace(waiting->second, outcomeOf(*std::move(reply), std::move(line)));
            open.erase(waiting);
        }
        received.erase(0, begin);
        searched = received.size();
        static_assert(longestLine == std::size_t{2} << 20);
        if (received.size() > longestLine)
            return Fault{.reason = "the widget extension sent a reply longer than 2 MiB"};
        return {};
    }

    void listen() {
        const auto bytes = readSome(errors);
        if (!bytes) {
            errorsReadable.reset();
            return;
        }
        said += *bytes;
        if (said.size() > longestTail) said.erase(0, said.size() - longestTail);
    }

    /// The end of what it said, once it is gone, to be put behind the report of that.
    std::string stderrTail() {
        // No more than a pipe holds: somebody else may have it open still.
        for (int i = 0; i < 2; ++i) listen();
        std::string tail = std::exchange(said, {});
        while (tail.ends_with('\n')) tail.pop_back();
        // One line of log, whatever it said.
        for (char& c : tail)
            if (static_cast<unsigned char>(c) < ' ') c = ' ';
        return tail.empty() ? "" : "; its last words: " + tail;
    }

    /// A process that ends closes its output a little before it is gone.
    void outputEnded() {
        readable.reset();
        writable.reset();
        g_output_stream_close(g_subprocess_get_stdin_pipe(subprocess.get()), nullptr, nullptr);
        input = -1;
        exitTimer = runloop::MainSource::after(exitGrace, whileThere(&State::outlivedItsOutput));
        whenGone(subprocess.get(), whileThere(&State::gone));
    }
    void gone() { over(describe(subprocess.get()) + stderrTail()); }
    void outlivedItsOutput() {
        g_subprocess_force_exit(subprocess.get());
        over("the widget extension closed its output" + stderrTail());
    }
    void deadlinePassed() {
        g_subprocess_force_exit(subprocess.get());
        over("the widget extension did not answer in time" + stderrTail());
    }

    /// It is of no use from here on.
    void over(std::string reason) {
        if (!exitReason.empty()) return;
        exitReason = std::move(reason);
        unwatch();
        // Not from within: whoever hears of it lets go of this object.
        if (open.empty() && answered.empty() && endedIdle)
            runloop::postToMainThread(std::exchange(endedIdle, {}));
        for (const auto& [id, place] : std::exchange(open, {}))
            answered.emplace(place, NoReply{exitReason, true});
        flush();
    }

    void flush() {
        if (open.empty())
            for (runloop::MainSource* source : {&deadlineTimer, &quietTimer, &errorsReadable})
                source->reset();
        if (answered.empty()) return;
        const auto to = open.empty() ? std::exchange(deliver, nullptr) : deliver;
        if (to) to(std::exchange(answered, {}));
    }

    Subprocess subprocess;
    double deadline;  // of an exchange, in seconds
    int input, output, errors;
    runloop::MainSource readable, writable, errorsReadable, deadlineTimer, quietTimer, exitTimer;
    widgetkit::ReplyReader reader;
    std::string pending;                       // what is still to be sent
    std::string received;                      // what is not a whole line yet
    std::size_t searched = 0;                  // of that, for its end
    std::string said, exitReason;              // on its standard error; why it is of no use
    std::map<std::int64_t, std::size_t> open;  // the place of each request that has no answer yet, by its id
    Outcomes answered;                         // and not handed over yet
    std::function<void(Outcomes)> deliver;
    std::function<void()> endedIdle;
    std::int64_t lastID = 0;
};

Result<ExtensionProcess> ExtensionProcess::start(const ExtensionProgram& program) {
    std::vector<std::string> words{program.path.string()};
    words.insert(words.end(), program.arguments.begin(), program.arguments.end());
    std::vector<gchar*> argv;
    for (auto& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    GError* error = nullptr;
    Subprocess started(g_subprocess_launcher_spawnv(launcher().get(), argv.data(), &error));
    if (!started) {
        // The library's message repeats the path and has quotes of its own.
        const std::string reason =
            access(words.front().c_str(), X_OK) != 0 ? std::strerror(errno) : error->message;
        g_clear_error(&error);
        return Fault{.reason = "cannot start the widget extension " + words.front() + ": " + reason};
    }
    auto state = std::make_shared<State>(std::move(started), program.deadline);
    state->readable = runloop::MainSource::whenReadable(state->output, state->whileThere(&State::receive));
    return ExtensionProcess(std::move(state));
}

ExtensionProcess::ExtensionProcess(std::shared_ptr<State> state) : state_(std::move(state)) {}
ExtensionProcess::ExtensionProcess(ExtensionProcess&&) noexcept = default;

ExtensionProcess::~ExtensionProcess() {
    if (!state_) return;
    state_->unwatch();
    state_->deliver = nullptr;
    // What is over was killed then, or is gone; whether it can be is not to hold up the loop.
    if (!state_->exitReason.empty()) return;
    g_subprocess_force_exit(state_->subprocess.get());
    // Killed by another thread of the library: it is not to outlive this one.
    g_subprocess_wait(state_->subprocess.get(), nullptr, nullptr);
}

const std::string& ExtensionProcess::exitReason() const {
    return state_->exitReason;
}

void ExtensionProcess::whenEndedIdle(std::function<void()> function) {
    state_->endedIdle = std::move(function);
}

void ExtensionProcess::dismiss() && {
    const auto state = std::exchange(state_, nullptr);
    state->unwatch();
    g_output_stream_close(g_subprocess_get_stdin_pipe(state->subprocess.get()), nullptr, nullptr);
    // The timer goes away with the process.
    const auto timer = std::make_shared<runloop::MainSource>(runloop::MainSource::after(
        dismissalGrace, [state] { g_subprocess_force_exit(state->subprocess.get()); }));
    whenGone(state->subprocess.get(), [timer] { timer->reset(); });
}

void ExtensionProcess::exchange(
    std::vector<widgetkit::Request> requests, std::function<void(Outcomes)> deliver) {
    State& state = *state_;
    state.deliver = std::move(deliver);
    for (std::size_t place = 0; place < requests.size(); ++place) {
        requests[place].id = ++state.lastID;
        if (!state.exitReason.empty()) {
            state.answered.emplace(place, NoReply{state.exitReason, true});
        } else if (const auto line = records::encodeJSON(requests[place])) {
            state.pending += *line + '\n';
            state.open[requests[place].id] = place;
        } else {
            state.answered.emplace(place, NoReply{"a request that is not UTF-8"});
        }
    }
    if (state.open.empty()) {
        state.quietTimer = runloop::MainSource::after(0, state.whileThere(&State::flush));
        return;
    }
    state.deadlineTimer =
        runloop::MainSource::after(state.deadline, state.whileThere(&State::deadlinePassed));
    // Only who is waited for is listened to.
    state.errorsReadable = runloop::MainSource::whenReadable(state.errors, state.whileThere(&State::listen));
    if (state.input >= 0)
        state.writable = runloop::MainSource::whenWritable(state.input, state.whileThere(&State::send));
}

std::filesystem::path installedExtension() {
    return programBeside("zelto-widgets");
}

}  // namespace zelto::host
