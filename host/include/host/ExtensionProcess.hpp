#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "foundation/FileDescriptor.hpp"
#include "foundation/Result.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::host {

/// A reply that was checked, and the line in which it came.
struct CheckedReply {
    Reply reply;
    std::string line;
};
/// Why there is none.
struct NoReply {
    std::string reason;
    /// The process ended or hung before it answered, for which another request may be to blame.
    bool isUnanswered = false;
};
/// What became of one request.
using Outcome = Result<CheckedReply, NoReply>;
inline bool isUnanswered(const Outcome& outcome) {
    return !outcome && outcome.fault().isUnanswered;
}
/// By the requests' places in the list that was asked.
using Outcomes = std::map<std::size_t, Outcome>;

/// How to start the extension, and how long a request may take before it counts as a hang.
struct ExtensionProgram {
    std::filesystem::path path;
    std::vector<std::string> arguments = {};
    std::chrono::milliseconds deadline{10'000};
};

/// The widget extension as a child process. What it says on its standard error is kept for the report of its
/// end. Ends, if it must by force, with this object.
class ExtensionProcess {
  public:
    static Result<ExtensionProcess> start(const ExtensionProgram& program);

    ExtensionProcess(ExtensionProcess&& other) noexcept;
    ExtensionProcess& operator=(ExtensionProcess&&) = delete;
    ~ExtensionProcess();

    /// Sends requests side by side, their ids given here, and hands over what became of each, once: all of
    /// them together, unless nothing came for a second while some were still open. A process that dies, talks
    /// nonsense or lets the deadline pass leaves its requests with an error, and is of no use afterwards. So
    /// does a `cancel` descriptor that becomes readable.
    void exchange(
        std::vector<Request> requests, const std::function<void(Outcomes)>& deliver, int cancel = -1);

    /// How it ended, if it has; it is of no use then.
    std::optional<std::string> exitReason();
    /// False when there is nothing left to ask.
    bool isUsable() const { return pid_ > 0; }
    /// Why it is of no use.
    const std::string& failure() const { return failure_; }

    pid_t pid() const { return pid_; }

    /// A reply line that is longer is nonsense.
    static constexpr std::size_t longestLine = std::size_t{32} * 1024 * 1024;

  private:
    struct Exchange;

    ExtensionProcess(
        pid_t pid, std::chrono::milliseconds deadline, FileDescriptor input, FileDescriptor output,
        FileDescriptor errors)
        : pid_(pid),
          deadline_(deadline),
          input_(std::move(input)),
          output_(std::move(output)),
          errors_(std::move(errors)) {}

    bool sendSome(std::string& pending);
    bool receiveSome();
    std::string takeReplies(Exchange& exchange);
    std::string serve(Exchange& exchange, int cancel);
    std::string reap();
    bool waitForExit(std::chrono::milliseconds allowed) const;
    bool drainStderr();
    std::string stderrTail();
    void kill();

    pid_t pid_;
    std::chrono::milliseconds deadline_;
    FileDescriptor input_;
    FileDescriptor output_;
    FileDescriptor errors_;
    std::string received_;
    std::string stderr_;
    std::string failure_;
    std::int64_t lastID_ = 0;
};

/// Asks each request in a process of its own, several side by side, and hands over what became of each as
/// soon as it is known; none any more once `cancel` is readable. `deliver` may be called on any thread, by
/// one at a time.
void askApart(
    const ExtensionProgram& program, const std::map<std::size_t, Request>& requests,
    const std::function<void(Outcomes)>& deliver, int cancel = -1);

/// The extension program that was installed beside the running one.
std::filesystem::path installedExtension();

}  // namespace zelto::host
