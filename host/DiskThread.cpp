#include "host/DiskThread.hpp"

#include <utility>

#include <system_error>

namespace zelto::host {

DiskThread::~DiskThread() {
    {
        const std::lock_guard lock(mutex_);
        isOver_ = true;
    }
    changed_.notify_one();
    if (thread_.joinable()) thread_.join();
}

void DiskThread::run(std::function<void()> work) {
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(work));
    }
    if (!thread_.joinable()) {
        try {
            thread_ = std::thread([this] { this->work(); });
        } catch (const std::system_error&) {
            // Without a thread whoever asks waits.
            std::exchange(waiting_, {}).front()();
        }
    }
    changed_.notify_one();
}

void DiskThread::work() {
    std::unique_lock lock(mutex_);
    while (true) {
        changed_.wait(lock, [this] { return isOver_ || !waiting_.empty(); });
        if (waiting_.empty()) return;
        const auto next = std::move(waiting_.front());
        waiting_.pop_front();
        lock.unlock();
        next();
        lock.lock();
    }
}

}  // namespace zelto::host
