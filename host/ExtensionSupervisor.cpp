#include "host/ExtensionSupervisor.hpp"

#include <algorithm>
#include <sstream>

namespace zelto::host {
namespace {

/// Processes that are asked apart at once.
constexpr std::size_t mostApart = 16;

double seconds(std::chrono::steady_clock::duration duration) {
    return std::chrono::duration<double>(duration).count();
}

}  // namespace

class ExtensionSupervisor::Round {
  public:
    explicit Round(std::deque<Work> works) : works_(std::move(works)) {
        for (std::size_t i = 0; i < works_.size(); ++i)
            for (std::size_t place = 0; place < works_[i].requests.size(); ++place) {
                requests.push_back(works_[i].requests[place]);
                owners_.emplace_back(i, place);
            }
    }

    /// Hands each asker its own, by the places in `requests`.
    void deliver(Outcomes&& outcomes) const {
        std::map<std::size_t, Outcomes> byWork;
        for (auto& [place, outcome] : outcomes)
            byWork[owners_[place].first].emplace(owners_[place].second, std::move(outcome));
        for (auto& [i, own] : byWork) works_[i].completion(std::move(own));
    }

    std::vector<widgetkit::Request> requests;
    /// How the process ended that was asked all of it; empty when it did not.
    std::string end = {};
    /// What that has left, or what is not asked beside others at all, by its places.
    std::set<std::size_t> unanswered = {};
    bool othersWereAnswered = false;
    /// How many are not back yet from the process that was asked all of it.
    std::size_t left = 0;

  private:
    std::deque<Work> works_;
    std::vector<std::pair<std::size_t, std::size_t>> owners_;  // work, and place among its requests
};

struct ExtensionSupervisor::Apart {
    std::shared_ptr<Round> round;
    std::deque<std::size_t> next;  // places
    std::map<std::size_t, ExtensionProcess> running = {};
    std::size_t left = 0;
    bool isOfUse = false;
    std::set<Subject> dead = {};
    // The last one is handed over when all that follows from it has been settled.
    Outcomes last = {};
};

ExtensionSupervisor::ExtensionSupervisor(ExtensionOptions options, runloop::Log log)
    : options_(std::move(options)),
      log_(std::move(log)),
      backoff_(options_.firstPause, options_.longestPause) {}

ExtensionSupervisor::~ExtensionSupervisor() = default;

void ExtensionSupervisor::ask(std::vector<widgetkit::Request> requests, Completion completion) {
    waiting_.push_back({std::move(requests), std::move(completion)});
    if (!isBusy_) schedule();
}

bool ExtensionSupervisor::needsStart() const {
    if (process_ && process_->exitReason().empty() && !isStale_) return false;
    // What is asked apart has processes of its own.
    return std::ranges::any_of(waiting_, [this](const Work& work) {
        return std::ranges::any_of(work.requests, [this](const widgetkit::Request& each) {
            return !deadly_.contains(subjectOf(each));
        });
    });
}

void ExtensionSupervisor::schedule() {
    idle_.reset();
    if (!waiting_.empty())
        next_ = runloop::MainSource::after(
            needsStart() ? seconds(startableAt_ - Clock::now()) : 0, [this] { startRound(); });
    else if (process_)
        idle_ = runloop::MainSource::after(seconds(options_.idle), [this] {
            std::move(*process_).dismiss();
            process_.reset();
        });
}

void ExtensionSupervisor::startRound() {
    if (process_ && !process_->exitReason().empty()) {
        // It ended while nothing was asked.
        const std::string how = process_->exitReason();
        process_.reset();
        backOff(how);
        schedule();
        return;
    }
    const auto round = std::make_shared<Round>(std::exchange(waiting_, {}));
    std::vector<widgetkit::Request> together;
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < round->requests.size(); ++place) {
        if (deadly_.contains(subjectOf(round->requests[place]))) {
            round->unanswered.insert(place);
        } else {
            together.push_back(round->requests[place]);
            places.push_back(place);
        }
    }
    if (together.empty()) {
        askApart(round);
        schedule();
        return;
    }
    if (const auto started = startProcess(); !started) {
        Outcomes none;
        for (std::size_t place = 0; place < round->requests.size(); ++place)
            none.emplace(place, NoReply{started.fault().text(), true});
        round->deliver(std::move(none));
        schedule();
        return;
    }
    isBusy_ = true;
    round->left = together.size();
    process_->exchange(std::move(together), [this, round, places](Outcomes&& outcomes) {
        round->left -= outcomes.size();
        Outcomes answered;
        for (auto& [i, outcome] : outcomes) {
            if (isUnanswered(outcome))
                round->unanswered.insert(places[i]);
            else
                answered.emplace(places[i], std::move(outcome));
        }
        round->othersWereAnswered = round->othersWereAnswered || !answered.empty();
        const bool isLast = round->left == 0;
        if (!answered.empty()) round->deliver(std::move(answered));
        if (isLast) finishRound(round);
    });
}

void ExtensionSupervisor::finishRound(const std::shared_ptr<Round>& round) {
    round->end = process_->exitReason();
    if (round->end.empty())
        backoff_.succeeded();
    else
        process_.reset();
    isBusy_ = false;
    askApart(round);
    schedule();
}

Result<void> ExtensionSupervisor::startProcess() {
    if (std::exchange(isStale_, false)) process_.reset();
    if (process_) return {};
    auto started = ExtensionProcess::start(options_.program);
    if (!started) {
        backOff(started.fault().text());
        return std::move(started).fault();
    }
    process_.emplace(*std::move(started));
    process_->whenEndedIdle([alive = std::weak_ptr(alive_), this] {
        // Meanwhile something may have been asked, which tells of it itself.
        if (alive.expired() || isBusy_ || !process_ || process_->exitReason().empty()) return;
        log_(process_->exitReason() + " while nothing was asked; to be started when something is");
        process_.reset();
    });
    return {};
}

void ExtensionSupervisor::backOff(const std::string& how) {
    backoff_.failed();
    startableAt_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                      std::chrono::duration<double>(backoff_.pause()));
    std::ostringstream line;
    line << how << "; to be started again after " << backoff_.pause() << " s";
    log_(line.str());
}

/// Nobody else waits for what may hang again.
void ExtensionSupervisor::askApart(const std::shared_ptr<Round>& round) {
    if (round->unanswered.empty()) return;
    const auto& places = round->unanswered;
    startApart(apart_.insert(
        apart_.end(),
        {.round = round,
         .next = {places.begin(), places.end()},
         .left = places.size(),
         .isOfUse = round->othersWereAnswered}));
}

void ExtensionSupervisor::startApart(Aparts::iterator apart) {
    std::map<std::size_t, NoReply> failed;
    while (!apart->next.empty() && apart->running.size() < mostApart) {
        const std::size_t place = apart->next.front();
        apart->next.pop_front();
        auto started = ExtensionProcess::start(options_.program);
        if (!started) {
            failed.emplace(place, NoReply{started.fault().text(), true});
            continue;
        }
        apart->running.emplace(place, *std::move(started))
            .first->second.exchange({apart->round->requests[place]}, [this, apart, place](Outcomes outcomes) {
                Outcomes one;
                one.emplace(place, std::move(outcomes.begin()->second));
                apart->running.erase(place);
                settle(apart, place, std::move(one));
            });
    }
    // The last of them may be the end of all.
    for (auto& [place, why] : failed) {
        Outcomes one;
        one.emplace(place, std::move(why));
        settle(apart, place, std::move(one));
    }
}

void ExtensionSupervisor::settle(Aparts::iterator apart, std::size_t place, Outcomes outcome) {
    const Subject subject = subjectOf(apart->round->requests[place]);
    if (isUnanswered(outcome.at(place))) {
        apart->dead.insert(subject);
        deadly_.insert(subject);
    } else {
        apart->isOfUse = true;
        deadly_.erase(subject);
    }
    if (--apart->left == 0) {
        apart->last = std::move(outcome);
        conclude(apart);
        return;
    }
    apart->round->deliver(std::move(outcome));
    startApart(apart);
}

void ExtensionSupervisor::conclude(Aparts::iterator apart) {
    Apart ended = std::move(*apart);
    apart_.erase(apart);
    const std::string& end = ended.round->end;
    if (!ended.isOfUse && ended.dead.size() > 1) {
        // When all of several die, it is the program that is broken, and no widget is to blame.
        for (const Subject& subject : ended.dead) deadly_.erase(subject);
        backOff(end.empty() ? "the widget extension dies of every request" : end);
    } else if (!end.empty() && ended.dead.empty()) {
        log_(end + "; what it had not answered was asked again");
    }
    ended.round->deliver(std::move(ended.last));
}

}  // namespace zelto::host
