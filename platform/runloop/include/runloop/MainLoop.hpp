#pragma once

#include <functional>
#include <memory>

// The main loop of the thread that runs it: the windows' own, or that of a command that waits.

namespace zelto::runloop {

/// Runs a function on the main thread, later. May be called on any thread.
void postToMainThread(std::function<void()> function);

/// Runs the main loop until a condition holds, for those who have no windows.
void runMainLoopUntil(const std::function<bool()>& condition);

/// A source of the main loop; goes away with this object.
class MainSource {
  public:
    MainSource() = default;
    MainSource(MainSource&& other) noexcept { swap(other); }
    MainSource& operator=(MainSource&& other) noexcept {
        swap(other);
        return *this;
    }
    ~MainSource() { reset(); }

    /// Calls `function` whenever `fd` can be read, or written.
    static MainSource whenReadable(int fd, std::function<void()> function);
    static MainSource whenWritable(int fd, std::function<void()> function);
    /// Calls `function` once, after so many seconds.
    static MainSource after(double seconds, std::function<void()> function);

    void reset();

  private:
    explicit MainSource(std::function<void()> function)
        : function_(std::make_unique<std::function<void()>>(std::move(function))) {}
    static MainSource watch(int fd, int condition, std::function<void()> function);
    void swap(MainSource& other) {
        std::swap(id_, other.id_);
        std::swap(function_, other.function_);
    }

    unsigned id_ = 0;
    std::unique_ptr<std::function<void()>> function_;
};

}  // namespace zelto::runloop
