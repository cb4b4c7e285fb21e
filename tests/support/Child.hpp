#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace zelto::test {

/// A program that runs beside the test; killed with this object. Its standard output is read line by line,
/// its standard error is the test's unless it goes to a file.
class Child {
  public:
    explicit Child(
        std::vector<std::string> command, std::vector<std::string> environment = {"PATH=/usr/bin:/bin"},
        const std::string& errorFile = "");
    Child(Child&& other) noexcept;
    Child& operator=(Child&& other) noexcept;
    ~Child();

    /// The next line without its end; absent at the output's end or after the deadline.
    std::optional<std::string> line(std::chrono::milliseconds deadline = std::chrono::seconds(30));
    void kill(int signal);
    /// The exit status, or minus the signal that ended it.
    int wait();
    pid_t pid() const { return pid_; }

  private:
    pid_t pid_ = -1;
    int output_ = -1;
    std::string received_;
};

}  // namespace zelto::test
