#pragma once

#include <stdexcept>
#include <string>

namespace zelto::cli {

/// Why a command cannot do what it was asked: one line for the person who asked.
class Failure : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

}  // namespace zelto::cli
