#include "host/ExtensionWorker.hpp"

#include <cstdint>
#include <sstream>

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

std::optional<ExtensionWorker::Work> ExtensionWorker::nextWork(std::optional<Clock::time_point> until) {
    std::unique_lock lock(mutex_);
    const auto isAwake = [this] { return isEnding_ || !work_.empty(); };
    if (until)
        changed_.wait_until(lock, *until, isAwake);
    else
        changed_.wait(lock, isAwake);
    if (isEnding_ || work_.empty()) return std::nullopt;
    Work work = std::move(work_.front());
    work_.pop_front();
    return work;
}

void ExtensionWorker::run() {
    while (true) {
        std::optional<Clock::time_point> idleAt;
        if (process_) idleAt = Clock::now() + options_.idle;
        auto work = nextWork(idleAt);
        if (!work) {
            process_.reset();
            const std::lock_guard lock(mutex_);
            if (isEnding_) return;
            continue;
        }
        auto outcomes = exchange(std::move(work->requests));
        seams_.post([completion = std::move(work->completion), outcomes = std::move(outcomes)]() mutable {
            completion(std::move(outcomes));
        });
    }
}

void ExtensionWorker::died(const std::string& how) {
    process_.reset();
    {
        const std::lock_guard lock(mutex_);
        if (isEnding_) return;
    }
    backoff_.failed();
    startableAt_ = Clock::now() + std::chrono::duration_cast<Clock::duration>(
                                      std::chrono::duration<double>(backoff_.pause()));
    std::ostringstream line;
    line << how << "; to be started again after " << backoff_.pause() << " s";
    seams_.log(line.str());
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
