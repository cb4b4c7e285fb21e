#include "host/ExtensionWorker.hpp"

#include <cstdint>
#include <map>
#include <sstream>
#include <utility>

#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace zelto::host {

ExtensionWorker::ExtensionWorker(ExtensionOptions options, Seams seams)
    : options_(std::move(options)),
      seams_(std::move(seams)),
      cancel_(eventfd(0, EFD_CLOEXEC)),
      backoff_(options_.firstPause, options_.longestPause),
      thread_([this] { run(); }) {}

ExtensionWorker::~ExtensionWorker() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    changed_.notify_all();
    const std::uint64_t one = 1;
    // A counter that was never written takes it.
    [[maybe_unused]] const ssize_t written = write(cancel_.get(), &one, sizeof(one));
    thread_.join();
}

void ExtensionWorker::ask(std::vector<Request> requests, Completion completion) {
    {
        const std::lock_guard lock(mutex_);
        work_.push_back({std::move(requests), std::move(completion)});
    }
    changed_.notify_all();
}

void ExtensionWorker::restart() {
    const std::lock_guard lock(mutex_);
    isStale_ = true;
}

std::deque<ExtensionWorker::Work> ExtensionWorker::nextWork(std::optional<Clock::time_point> until) {
    std::unique_lock lock(mutex_);
    const auto isAwake = [this] { return isEnding_ || !work_.empty(); };
    if (until)
        changed_.wait_until(lock, *until, isAwake);
    else
        changed_.wait(lock, isAwake);
    if (isEnding_) return {};
    return std::exchange(work_, {});
}

void ExtensionWorker::run() {
    while (true) {
        std::optional<Clock::time_point> idleAt;
        if (process_) idleAt = Clock::now() + options_.idle;
        auto all = nextWork(idleAt);
        if (!all.empty()) {
            work(std::move(all));
            continue;
        }
        process_.reset();
        const std::lock_guard lock(mutex_);
        if (isEnding_) return;
    }
}

void ExtensionWorker::work(std::deque<Work> works) {
    // What is asked apart may be answered long after this.
    const auto all = std::make_shared<std::deque<Work>>(std::move(works));
    std::vector<Request> requests;
    std::vector<std::pair<std::size_t, std::size_t>> owners;  // work, and place among its requests
    for (std::size_t i = 0; i < all->size(); ++i)
        for (std::size_t place = 0; place < (*all)[i].requests.size(); ++place) {
            requests.push_back((*all)[i].requests[place]);
            owners.emplace_back(i, place);
        }
    exchange(requests, [this, all, owners](Outcomes&& outcomes) {
        std::map<std::size_t, Outcomes> byWork;
        for (auto& [place, outcome] : outcomes)
            byWork[owners[place].first].emplace(owners[place].second, std::move(outcome));
        for (auto& [i, own] : byWork)
            seams_.post([completion = (*all)[i].completion, own = std::move(own)]() mutable {
                completion(std::move(own));
            });
    });
}

void ExtensionWorker::exchange(const std::vector<Request>& requests, const Deliver& deliver) {
    std::vector<Request> together;
    std::vector<std::size_t> places;
    Death death;
    {
        const std::lock_guard lock(mutex_);
        for (std::size_t place = 0; place < requests.size(); ++place) {
            if (deadly_.contains(subjectOf(requests[place]))) {
                death.unanswered[place] = requests[place];
            } else {
                together.push_back(requests[place]);
                places.push_back(place);
            }
        }
    }
    if (!together.empty()) {
        if (const auto started = startProcess(); !started) {
            Outcomes none;
            for (const std::size_t place : places) none.emplace(place, NoReply{started.fault().text(), true});
            deliver(std::move(none));
            together.clear();
        }
    }
    if (!together.empty()) {
        process_->exchange(
            std::move(together),
            [&](Outcomes&& outcomes) {
                Outcomes answered;
                for (auto& [i, outcome] : outcomes) {
                    if (isUnanswered(outcome))
                        death.unanswered[places[i]] = requests[places[i]];
                    else
                        answered.emplace(places[i], std::move(outcome));
                }
                death.othersWereAnswered = death.othersWereAnswered || !answered.empty();
                if (!answered.empty()) deliver(std::move(answered));
            },
            cancel_.get());
        if (process_->isUsable()) {
            const std::lock_guard lock(mutex_);
            backoff_.succeeded();
        } else {
            death.how = process_->failure();
            process_.reset();
        }
    }
    if (death.unanswered.empty() || isEnding()) return;
    // Nobody else waits for what may hang again.
    std::erase_if(apart_, [](const Apart& each) { return each.isOver->load(); });
    auto isOver = std::make_shared<std::atomic<bool>>(false);
    const auto ask = [this, death = std::move(death), deliver, isOver] {
        askAgain(death, deliver);
        *isOver = true;
    };
    try {
        apart_.push_back({isOver, std::jthread(ask)});
    } catch (const std::system_error&) {
        // There is no thread to be had: the others do wait.
        ask();
    }
}

void ExtensionWorker::askAgain(const Death& death, const Deliver& deliver) {
    bool isOfUse = death.othersWereAnswered;
    std::set<Subject> dead;
    // The last one is handed over when all that follows from it has been settled.
    std::size_t left = death.unanswered.size();
    Outcomes last;
    askApart(
        options_.program,
        death.unanswered,
        [&](Outcomes outcomes) {
            {
                const std::lock_guard lock(mutex_);
                for (const auto& [place, outcome] : outcomes) {
                    const Subject subject = subjectOf(death.unanswered.at(place));
                    isOfUse = isOfUse || !isUnanswered(outcome);
                    if (isUnanswered(outcome)) {
                        dead.insert(subject);
                        deadly_.insert(subject);
                    } else {
                        deadly_.erase(subject);
                    }
                }
            }
            left -= outcomes.size();
            if (left == 0)
                last = std::move(outcomes);
            else
                deliver(std::move(outcomes));
        },
        cancel_.get());

    if (!isOfUse && dead.size() > 1) {
        // When all of several die, it is the program that is broken, and no widget is to blame.
        {
            const std::lock_guard lock(mutex_);
            for (const Subject& subject : dead) deadly_.erase(subject);
        }
        backOff(death.how.empty() ? "the widget extension dies of every request" : death.how);
    } else if (!death.how.empty() && dead.empty()) {
        log(death.how + "; what it had not answered was asked again");
    }
    if (!last.empty()) deliver(std::move(last));
}

Result<void> ExtensionWorker::startProcess() {
    if (isOutdated()) process_.reset();
    if (process_)
        if (const auto ending = process_->exitReason()) {
            process_.reset();
            backOff(*ending);
        }
    if (process_) return {};
    if (!pauses()) return Fault{.reason = "the host ends"};
    auto started = ExtensionProcess::start(options_.program);
    if (!started) {
        backOff(started.fault().text());
        return std::move(started).fault();
    }
    process_.emplace(*std::move(started));
    return {};
}

void ExtensionWorker::backOff(const std::string& how) {
    std::ostringstream line;
    {
        const std::lock_guard lock(mutex_);
        backoff_.failed();
        startableAt_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                          std::chrono::duration<double>(backoff_.pause()));
        line << how << "; to be started again after " << backoff_.pause() << " s";
    }
    log(line.str());
}

bool ExtensionWorker::isEnding() {
    const std::lock_guard lock(mutex_);
    return isEnding_;
}

/// Whether the process is to be replaced, told once.
bool ExtensionWorker::isOutdated() {
    const std::lock_guard lock(mutex_);
    return std::exchange(isStale_, false);
}

/// Nobody wants to know of an end that was asked for.
void ExtensionWorker::log(const std::string& line) {
    const std::lock_guard lock(mutex_);
    if (!isEnding_) seams_.log(line);
}

/// Waits until the process may be started again; false when the end has come.
bool ExtensionWorker::pauses() {
    std::unique_lock lock(mutex_);
    return !changed_.wait_until(lock, startableAt_, [this] { return isEnding_; });
}

}  // namespace zelto::host
