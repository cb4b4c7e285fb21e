#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "ui/Nodes.hpp"

namespace zelto::pictures {

/// Pictures are squares of at most so many pixels a side.
inline constexpr std::uint64_t side = 66;

/// The process that opens and decodes image files for one that may do neither. It stands by as a sleeping
/// child, and its program is only started when the first picture is wanted. Where it dies there are no
/// pictures any more. Ends with this object. Pictures may be asked for on any thread.
class PictureProcess {
  public:
    using Clock = std::chrono::steady_clock;

    /// To be called before the process confines itself, and before it has threads. Without pictures when the
    /// system has no room for a process.
    static PictureProcess standBy(const std::filesystem::path& program);
    PictureProcess(PictureProcess&&) noexcept;
    PictureProcess& operator=(PictureProcess&&) = delete;
    ~PictureProcess();

    /// The middle of an image file, upright; absent for whatever is no sound image in a regular file, and
    /// when it is not there by the deadline. It may be there the next time then.
    std::optional<ui::node::Image> thumbnail(const std::string& path, Clock::time_point deadline) const;

  private:
    struct State;
    explicit PictureProcess(std::unique_ptr<State> state);
    std::unique_ptr<State> state_;
};

/// The name of the program that a picture process runs.
constexpr std::string_view programName = "zelto-pictures";

}  // namespace zelto::pictures
