#include "host/ExtensionWorker.hpp"

#include <cstdint>
#include <iterator>
#include <sstream>
#include <utility>

#include <sys/eventfd.h>
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

void ExtensionWorker::work(std::deque<Work> all) {
    std::vector<Request> requests;
    for (const Work& each : all) requests.insert(requests.end(), each.requests.begin(), each.requests.end());
    auto outcomes = exchange(std::move(requests));
    auto next = std::make_move_iterator(outcomes.begin());
    for (Work& each : all) {
        const auto end = next + static_cast<std::ptrdiff_t>(each.requests.size());
        std::vector<Outcome> own(next, end);
        next = end;
        seams_.post([completion = std::move(each.completion), own = std::move(own)]() mutable {
            completion(std::move(own));
        });
    }
}

void ExtensionWorker::died(const std::string& how) {
    backoff_.failed();
    startableAt_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                      std::chrono::duration<double>(backoff_.pause()));
    std::ostringstream line;
    line << how << "; to be started again after " << backoff_.pause() << " s";
    // What is told may be the process's own.
    process_.reset();
    const std::lock_guard lock(mutex_);
    if (!isEnding_) seams_.log(line.str());
}

/// Waits until the process may be started again; false when the end has come.
bool ExtensionWorker::pauses() {
    std::unique_lock lock(mutex_);
    return !changed_.wait_until(lock, startableAt_, [this] { return isEnding_; });
}

std::vector<Outcome> ExtensionWorker::exchange(std::vector<Request> requests) {
    const std::size_t count = requests.size();
    const auto all = [count](const std::string& error) {
        return std::vector<Outcome>(count, Outcome{std::nullopt, error});
    };
    if (process_)
        if (const auto ending = process_->ending()) died(*ending);
    if (!process_) {
        if (!pauses()) return all("the host ends");
        std::string why;
        if (auto started = ExtensionProcess::start(options_.program, options_.arguments, why))
            process_.emplace(*std::move(started));
        if (!process_) {
            died(why);
            return all(why);
        }
    }
    auto outcomes = process_->exchange(std::move(requests), options_.deadline, cancel_.get());
    if (process_->isUsable())
        backoff_.succeeded();
    else
        died(process_->failure());
    return outcomes;
}

}  // namespace zelto::host
