#pragma once

#include <chrono>
#include <deque>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "host/ExtensionProcess.hpp"
#include "runloop/Backoff.hpp"
#include "runloop/Log.hpp"
#include "runloop/MainLoop.hpp"

namespace zelto::host {

struct ExtensionOptions {
    ExtensionProgram program;
    /// The process is ended when nothing was asked for so long: a while more than widgets commonly live
    /// between two requests, since a start costs as much as it does in a round.
    std::chrono::milliseconds idle{600'000};
    /// Seconds before the process is started again after it was of no use to anybody.
    double firstPause = 1, longestPause = 60;
};

/// Looks after the extension's process, on the main loop: starts it when something is asked, ends it when
/// nothing is, starts it again after it died. What is asked while it is busy goes out together afterwards.
/// What a death or a hang leaves unanswered is asked once more, each request in a process of its own, while
/// everything else goes on. A widget whose request is the end of that too is not asked beside others any more
/// until it has been answered. Kills what runs with this object, without waiting for answers.
class ExtensionSupervisor {
  public:
    /// Gets what became of each request, once; in several calls when some take much longer than others.
    using Completion = std::function<void(Outcomes)>;

    ExtensionSupervisor(ExtensionOptions options, runloop::Log log);
    ~ExtensionSupervisor();
    ExtensionSupervisor(const ExtensionSupervisor&) = delete;
    ExtensionSupervisor& operator=(const ExtensionSupervisor&) = delete;

    /// Sends the requests side by side; the completion is called later.
    void ask(std::vector<widgetkit::Request> requests, Completion completion);
    /// What is asked from now on is answered by a new process, which reads everything anew.
    void restart() { isStale_ = true; }

  private:
    using Clock = std::chrono::steady_clock;
    struct Work {
        std::vector<widgetkit::Request> requests;
        Completion completion;
    };
    /// What goes out together, and whom it is for.
    class Round;
    /// Requests of a round that are asked apart.
    struct Apart;
    using Aparts = std::list<Apart>;

    /// What tells one widget's requests from another's.
    using Subject = std::pair<std::optional<std::string>, std::optional<widgetkit::WidgetFamily>>;
    static Subject subjectOf(const widgetkit::Request& request) { return {request.kind, request.family}; }

    void schedule();
    /// Whether what waits needs a process that is not there.
    bool needsStart() const;
    void startRound();
    void finishRound(const std::shared_ptr<Round>& round);
    Result<void> startProcess();
    void backOff(const std::string& how);
    void askApart(const std::shared_ptr<Round>& round);
    void startApart(Aparts::iterator apart);
    void settle(Aparts::iterator apart, std::size_t place, Outcomes outcome);
    void conclude(Aparts::iterator apart);

    const ExtensionOptions options_;
    const runloop::Log log_;
    std::deque<Work> waiting_;
    bool isBusy_ = false, isStale_ = false;
    std::set<Subject> deadly_;  // to be asked apart
    runloop::Backoff backoff_;
    Clock::time_point startableAt_{};
    std::optional<ExtensionProcess> process_;
    Aparts apart_;
    runloop::MainSource next_, idle_;
    std::shared_ptr<bool> alive_ = std::make_shared<bool>();  // as long as this object
};

}  // namespace zelto::host
