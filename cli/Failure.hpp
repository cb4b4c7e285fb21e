#pragma once

#include <stdexcept>
#include <string>

namespace zelto::cli {

/// Why a command cannot do what it was asked: one line for the person who asked, and the exit status.
class Failure : public std::runtime_error {
  public:
    explicit Failure(const std::string& text, int exitStatus = 1)
        : std::runtime_error(text), status(exitStatus) {}

    int status;
};

}  // namespace zelto::cli
