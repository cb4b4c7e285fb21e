#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <filesystem>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "host/Backoff.hpp"
#include "host/ExtensionProcess.hpp"

namespace zelto::host {

struct ExtensionOptions {
    ExtensionProgram program;
    /// The process is ended when nothing was asked for so long: a while more than widgets commonly live
    /// between two requests, since a start costs as much as it does in a round.
    std::chrono::milliseconds idle{600'000};
    /// Seconds before the process is started again after it was of no use to anybody.
    double firstPause = 1, longestPause = 60;
};

/// Looks after the extension's process on a thread of its own: starts it when something is asked, ends it
/// when nothing is, starts it again after it died. What is asked while it is busy goes out together
/// afterwards. What a death or a hang leaves unanswered is asked once more, each request in a process of its
/// own, while everything else goes on. A widget whose request is the end of that too is not asked beside
/// others any more until it has been answered. Ends with this object, without waiting for answers.
class ExtensionWorker {
  public:
    /// Gets what became of each request, once; in several calls when some take much longer than others.
    using Completion = std::function<void(Outcomes)>;
    struct Seams {
        /// Carries a function over to the thread on which completions are to run.
        std::function<void(std::function<void()>)> post;
        /// Called on any thread.
        std::function<void(const std::string&)> log;
    };

    ExtensionWorker(ExtensionOptions options, Seams seams);
    ~ExtensionWorker();

    /// Sends the requests side by side.
    void ask(std::vector<Request> requests, Completion completion);
    /// What is asked from now on is answered by a new process, which reads everything anew.
    void restart();

  private:
    using Clock = std::chrono::steady_clock;
    struct Work {
        std::vector<Request> requests;
        Completion completion;
    };
    /// What tells one widget's requests from another's.
    using Subject = std::pair<std::optional<std::string>, std::optional<WidgetFamily>>;
    static Subject subjectOf(const Request& request) { return {request.kind, request.family}; }

    void run();
    /// All that is to be done next, if anything comes before `until`.
    std::deque<Work> nextWork(std::optional<Clock::time_point> until);
    using Deliver = std::function<void(Outcomes)>;
    /// What the end of a process has left, or what is not asked beside others at all.
    struct Death {
        std::map<std::size_t, Request> unanswered = {};  // by their places
        std::string how = {};                            // empty when there was none
        bool othersWereAnswered = false;
    };
    /// Requests that are asked apart, on a thread of their own.
    struct Apart {
        std::shared_ptr<std::atomic<bool>> isOver;
        std::jthread thread;
    };

    void work(std::deque<Work> works);
    void exchange(const std::vector<Request>& requests, const Deliver& deliver);
    void askAgain(const Death& death, const Deliver& deliver);
    /// Sees to it that there is a process to ask.
    Result<void> startProcess();
    void backOff(const std::string& how);
    void log(const std::string& line);
    bool pauses();
    bool isEnding();
    bool isOutdated();

    const ExtensionOptions options_;
    const Seams seams_;
    FileDescriptor cancel_;  // readable once the end has come
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<Work> work_;
    bool isEnding_ = false, isStale_ = false;
    std::set<Subject> deadly_;  // to be asked apart
    Backoff backoff_;
    Clock::time_point startableAt_{};
    // The thread's own.
    std::optional<ExtensionProcess> process_;
    std::list<Apart> apart_;
    std::thread thread_;
};

}  // namespace zelto::host
