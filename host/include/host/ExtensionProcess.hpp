#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "foundation/Result.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::host {

/// A reply that was checked, and the line in which it came.
struct CheckedReply {
    widgetkit::Reply reply;
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

/// The widget extension as a child process, served by the main loop of the thread that uses it. What it says
/// on its standard error is kept for the report of its end. Killed with this object.
class ExtensionProcess {
  public:
    static Result<ExtensionProcess> start(const ExtensionProgram& program);

    ExtensionProcess(ExtensionProcess&&) noexcept;
    ExtensionProcess& operator=(ExtensionProcess&&) = delete;
    ~ExtensionProcess();

    /// Sends requests side by side, their ids given here, and hands over what became of each, once, from the
    /// main loop: all of them together, unless nothing came for a second while some were still open. A
    /// process that dies, sends an invalid reply or lets the deadline pass leaves its requests with an error,
    /// and is of no use afterwards. One exchange at a time; `deliver` may destroy this object when it has had
    /// all.
    void exchange(std::vector<widgetkit::Request> requests, std::function<void(Outcomes)> deliver);

    /// Calls a function, once, when the process ends while nothing is asked of it.
    void whenEndedIdle(std::function<void()> function);

    /// Why it is of no use any more; empty while it is.
    const std::string& exitReason() const;

    /// Lets it end by itself, for which it has a moment.
    void dismiss() &&;

    /// A longer reply line ends the process.
    static constexpr std::size_t longestLine = widgetkit::ReplyBounds().bytes;

  private:
    struct State;
    explicit ExtensionProcess(std::shared_ptr<State> state);

    std::shared_ptr<State> state_;
};

/// The extension that is installed beside every program here.
std::filesystem::path installedExtension();

}  // namespace zelto::host
