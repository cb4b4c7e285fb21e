#pragma once

#include <concepts>
#include <functional>
#include <string>
#include <utility>

namespace zelto::host {

enum class LogLevel { info, warning, error };

/// Where lines of log go. To be called is to warn, which is what most lines do.
class Log {
  public:
    template <std::invocable<LogLevel, const std::string&> Write>
    Log(Write write) : write_(std::move(write)) {}

    void operator()(const std::string& line) const { write_(LogLevel::warning, line); }
    void info(const std::string& line) const { write_(LogLevel::info, line); }

  private:
    std::function<void(LogLevel, const std::string&)> write_;
};

}  // namespace zelto::host
