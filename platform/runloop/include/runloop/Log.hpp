#pragma once

#include <concepts>
#include <functional>
#include <string>
#include <utility>

namespace zelto::runloop {

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

/// Writes "2026-03-11 14:05:00 warning: line" to the standard error, the time as the machine's zone has it;
/// leaves lines out where there are too many. On any thread.
void logToStandardError(LogLevel level, const std::string& line);

}  // namespace zelto::runloop
