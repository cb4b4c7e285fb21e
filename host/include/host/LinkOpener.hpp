#pragma once

#include <string>
#include <utility>

#include "foundation/Result.hpp"

namespace zelto::host {

/// Opens the app's links. Links of other schemes are refused: nothing but the extension's word says that they
/// are harmless.
class LinkOpener {
  public:
    /// `command` is run with the link as its last argument; empty for the desktop's handler of the scheme.
    explicit LinkOpener(std::string command) : command_(std::move(command)) {}

    /// The fault says why nothing opens it.
    Result<void> open(const std::string& url) const;

  private:
    Result<void> openWithCommand(const std::string& url) const;
    static Result<void> openWithHandler(const std::string& url);

    std::string command_;
};

}  // namespace zelto::host
