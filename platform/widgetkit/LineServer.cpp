#include "LineServer.hpp"

#include <array>
#include <atomic>
#include <cerrno>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <new>
#include <thread>
#include <vector>

#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace zelto::widgetkit {
namespace {

/// Threads that are started when work waits and nobody is free, and that end with the pool.
class Workers {
  public:
    explicit Workers(std::function<void(const std::string&)> work) : work_(std::move(work)) {}
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    ~Workers() {
        {
            const std::lock_guard lock(mutex_);
            ended_ = true;
        }
        changed_.notify_all();
        for (auto& thread : threads_) thread.join();
    }

    void add(std::string line) {
        {
            const std::lock_guard lock(mutex_);
            waiting_.push_back(std::move(line));
            if (idle_ < waiting_.size() && threads_.size() < most) startThread();
            if (!threads_.empty()) {
                changed_.notify_one();
                return;
            }
        }
        // There is no thread to be had: the one that reads does the work.
        workOff();
    }

  private:
    static constexpr std::size_t most = 64;

    /// Without one more, those that are there take over what waits, one after the other.
    void startThread() {
        try {
            threads_.emplace_back([this] { run(); });
        } catch (const std::system_error&) {
        } catch (const std::bad_alloc&) {
        }
    }

    void run() {
        while (true) {
            {
                std::unique_lock lock(mutex_);
                ++idle_;
                changed_.wait(lock, [this] { return ended_ || !waiting_.empty(); });
                --idle_;
                if (waiting_.empty()) return;
            }
            workOff();
        }
    }

    void workOff() {
        std::unique_lock lock(mutex_);
        while (!waiting_.empty()) {
            const std::string line = std::move(waiting_.front());
            waiting_.pop_front();
            lock.unlock();
            try {
                work_(line);
            } catch (const std::bad_alloc&) {
                // Not even an answer that says so: whoever asked waits until its own deadline.
            }
            lock.lock();
        }
    }

    std::function<void(const std::string&)> work_;
    std::mutex mutex_;
    std::condition_variable changed_;
    std::deque<std::string> waiting_;
    std::vector<std::thread> threads_;
    std::size_t idle_ = 0;
    bool ended_ = false;
};

/// Writes whole lines, one writer at a time.
class LineWriter {
  public:
    explicit LineWriter(int output) : output_(output) {}

    void write(std::string line) {
        line += '\n';
        const std::lock_guard lock(mutex_);
        for (std::string_view rest = line; !rest.empty() && !broken_;) {
            const ssize_t count = ::write(output_, rest.data(), rest.size());
            if (count >= 0)
                rest.remove_prefix(static_cast<std::size_t>(count));
            else if (errno == EAGAIN)
                waitUntilWritable();
            else if (errno != EINTR)
                broken_ = true;
        }
    }
    bool isBroken() const { return broken_; }

  private:
    void waitUntilWritable() const {
        pollfd writable{output_, POLLOUT, 0};
        poll(&writable, 1, -1);
    }

    int output_;
    std::mutex mutex_;
    std::atomic<bool> broken_ = false;
};

}  // namespace

bool serveLines(
    int input, int output, std::size_t longestLine,
    const std::function<std::string(std::string_view)>& answer) {
    LineWriter writer(output);
    {
        Workers workers([&](const std::string& line) { writer.write(answer(line)); });
        const auto take = [&](std::string& line) {
            if (line.find_first_not_of(" \t\r") != std::string::npos) workers.add(std::move(line));
            line.clear();
        };
        std::array<char, 4096> buffer;
        std::string line;
        while (!writer.isBroken()) {
            const ssize_t count = read(input, buffer.data(), buffer.size());
            if (count < 0 && errno == EINTR) continue;
            if (count < 0 && errno == EAGAIN) {
                pollfd readable{input, POLLIN, 0};
                poll(&readable, 1, -1);
                continue;
            }
            if (count <= 0) break;
            for (const char c : std::string_view(buffer.data(), static_cast<std::size_t>(count))) {
                if (c == '\n')
                    take(line);
                else if (line.size() <= longestLine)
                    line += c;
            }
        }
        take(line);
    }
    return !writer.isBroken();
}

}  // namespace zelto::widgetkit
