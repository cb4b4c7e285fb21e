#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "host/Backoff.hpp"
#include "host/ExtensionProcess.hpp"

namespace zelto::host {

struct ExtensionOptions {
    std::filesystem::path program;
    std::vector<std::string> arguments = {};
    /// A request that takes longer counts as a hang.
    std::chrono::milliseconds deadline{10'000};
    /// The process is ended when nothing was asked for so long: a while more than widgets commonly live
    /// between two requests, since a start costs as much as it does in a round.
    std::chrono::milliseconds idle{600'000};
    /// Seconds before the process is started again after a death, a hang or nonsense.
    double firstPause = 1, longestPause = 60;
};

/// Looks after the extension's process on a thread of its own: starts it when something is asked, ends it
/// when nothing is, starts it again after it died. What is asked while it is busy goes out together
/// afterwards. Ends with this object, without waiting for answers.
class ExtensionWorker {
  public:
    using Completion = std::function<void(std::vector<Outcome>)>;
    struct Seams {
        /// Carries a function over to the thread on which completions are to run.
        std::function<void(std::function<void()>)> post;
        /// Called on any thread.
        std::function<void(const std::string&)> log;
    };

    ExtensionWorker(ExtensionOptions options, Seams seams);
    ~ExtensionWorker();

    /// Sends the requests side by side. The completion gets one outcome for each, in order.
    void ask(std::vector<Request> requests, Completion completion);

  private:
    using Clock = std::chrono::steady_clock;
    struct Work {
        std::vector<Request> requests;
        Completion completion;
    };

    void run();
    /// All that is to be done next, if anything comes before `until`.
    std::deque<Work> nextWork(std::optional<Clock::time_point> until);
    void work(std::deque<Work> all);
    std::vector<Outcome> exchange(std::vector<Request> requests);
    void died(const std::string& how);
    bool pauses();

    const ExtensionOptions options_;
    const Seams seams_;
    FileDescriptor cancel_;  // readable once the end has come
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Work> work_;
    bool isEnding_ = false;
    // The thread's own.
    std::optional<ExtensionProcess> process_;
    Backoff backoff_;
    Clock::time_point startableAt_{};
    std::thread thread_;
};

}  // namespace zelto::host
