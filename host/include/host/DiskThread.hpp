#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

#include "foundation/Result.hpp"

namespace zelto::host {

/// Does work that waits for the disk, one after the other, and hands its result to the caller's thread.
using OnDisk =
    std::function<void(std::function<Result<void>()> work, std::function<void(Result<void>)> then)>;

/// Does what waits for the disk, one after the other, away from the thread that shows things. All of it is
/// done when this object is gone.
class DiskThread {
  public:
    DiskThread() = default;
    DiskThread(const DiskThread&) = delete;
    DiskThread& operator=(const DiskThread&) = delete;
    ~DiskThread();

    void run(std::function<void()> work);

  private:
    void work();

    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::function<void()>> waiting_;
    bool isOver_ = false;
    std::thread thread_;  // from the first work on
};

}  // namespace zelto::host
