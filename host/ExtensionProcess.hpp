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

/// The widget extension as a child process. What it says on its standard error is kept for the report of its
/// end. Ends, if it must by force, with this object.
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
    /// with an error, and is of no use afterwards. So does a `cancel` descriptor that becomes readable.
    std::vector<Outcome> exchange(
        std::vector<Request> requests, std::chrono::milliseconds deadline, int cancel = -1);

    /// How it ended, if it has; it is of no use then.
    std::optional<std::string> ending();
    /// False when there is nothing left to ask.
    bool isUsable() const { return pid_ > 0; }
    /// Why it is of no use.
    const std::string& failure() const { return failure_; }

    pid_t pid() const { return pid_; }

    /// A reply line that is longer is nonsense.
    static constexpr std::size_t longestLine = std::size_t{32} * 1024 * 1024;

  private:
    ExtensionProcess(pid_t pid, FileDescriptor input, FileDescriptor output, FileDescriptor errors)
        : pid_(pid), input_(std::move(input)), output_(std::move(output)), errors_(std::move(errors)) {}

    bool sendSome(std::string& pending);
    bool receiveSome();
    std::string takeReplies(std::map<std::int64_t, Outcome>& outcomes);
    std::string farewell();
    bool endsWithin(std::chrono::milliseconds allowed) const;
    bool listen();
    std::string lastWords();
    void end();

    pid_t pid_;
    FileDescriptor input_;
    FileDescriptor output_;
    FileDescriptor errors_;
    std::string received_;
    std::string said_;
    std::string failure_;
    std::int64_t lastID_ = 0;
};

/// The extension program that was installed beside the running one.
std::filesystem::path installedExtension();

}  // namespace zelto::host
