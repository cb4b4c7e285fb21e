#pragma once

#include <array>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace zelto::host {

/// What this process draws at the moment, in a page of memory that belongs to a file: even a death leaves it
/// there for the next process. For one thread of one process at a time.
class DrawingMark {
  public:
    /// Seconds of a clock that goes on while the computer sleeps.
    using Clock = std::function<double()>;

    /// Null where there is no room for it.
    static std::shared_ptr<DrawingMark> at(const std::filesystem::path& file, Clock clock = sinceBoot);

    /// What the processes before this one died of drawing, if they did: one that crashed in it, or three in
    /// a row that were killed in it after two seconds. To be asked once, at the start. Somebody else may be
    /// the cause of a kill; for three at the same long drawing nobody else is.
    std::optional<std::string> cause();
    /// Marks a name, of at most 1023 bytes, while a function runs. Costs no system call.
    void during(std::string_view name, const std::function<void()>& draw);

  private:
    /// What is in the file.
    struct Page {
        std::array<char, 1024> drawing, suspect;  // now; when the process before this one died
        std::uint8_t kills;                       // in a row, at the latter
        volatile std::uint8_t isCrash;            // set by a handler of signals
        double began;                             // with `drawing`
    };

    DrawingMark(std::shared_ptr<Page> page, Clock clock);
    static double sinceBoot();
    static void crashed(int signal, siginfo_t* info, void* context);

    std::shared_ptr<Page> page_;
    Clock clock_;
    static volatile Page* current;  // while something is drawn
};

}  // namespace zelto::host
