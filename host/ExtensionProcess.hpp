#pragma once

#include <chrono>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

#include "platform/foundation/FileDescriptor.hpp"
#include "platform/widgetkit/Messages.hpp"

namespace zelto::host {

/// What became of one request: a reply that was checked, or why there is none.
struct Outcome {
    std::optional<Reply> reply;
    std::string error;
};

/// The widget extension as a child process. Its standard error stays the caller's own. Ends, if it must by
/// force, with this object.
class ExtensionProcess {
  public:
    /// Absent, with the reason, when the program cannot be started.
    static std::optional<ExtensionProcess> start(
        const std::filesystem::path& program, const std::vector<std::string>& arguments, std::string& why);

    ExtensionProcess(ExtensionProcess&& other) noexcept;
    ExtensionProcess& operator=(ExtensionProcess&&) = delete;
    ~ExtensionProcess();

    /// Sends requests side by side, their ids given here, and waits for their replies; outcomes stand in the
    /// requests' order. A process that dies, talks nonsense or lets the deadline pass leaves its requests
    /// with an error, and is of no use afterwards.
    std::vector<Outcome> exchange(std::vector<Request> requests, std::chrono::milliseconds deadline);

    pid_t pid() const { return pid_; }

    /// A reply line that is longer is nonsense.
    static constexpr std::size_t longestLine = std::size_t{32} * 1024 * 1024;

  private:
    ExtensionProcess(pid_t pid, FileDescriptor input, FileDescriptor output)
        : pid_(pid), input_(std::move(input)), output_(std::move(output)) {}

    bool sendSome(std::string& pending);
    bool receiveSome();
    std::string takeReplies(std::map<std::int64_t, Outcome>& outcomes);
    std::string farewell();

    pid_t pid_;
    FileDescriptor input_;
    FileDescriptor output_;
    std::string received_;
    std::int64_t lastID_ = 0;
};

/// The extension program that was installed beside the running one.
std::filesystem::path installedExtension();

}  // namespace zelto::host
