#pragma once

#include <string>
#include <utility>

#include "bus/Address.hpp"
#include "foundation/Result.hpp"

namespace zelto::host {

/// Why a link was not opened.
struct LinkFault {
    /// It is not the app's; nothing is registered for it; what is, could not be started.
    enum class Kind { refused, noProgram, failed };
    Kind kind;
    std::string text;
};

/// Opens the app's links. Links of other schemes are refused: nothing but the extension's word says that they
/// are harmless.
class LinkOpener {
  public:
    /// `command` is run with the link as its last argument; empty for the desktop's handler of the scheme.
    explicit LinkOpener(std::string command) : command_(std::move(command)) {}

    /// `token` is the desktop's for the tap, so that a window which the link opens comes to the front; it may
    /// be empty.
    Result<void, LinkFault> open(const std::string& url, const std::string& token = {}) const;
    /// Hands a link to the app that is on the bus, or that the bus can start: its method `open`. Waits for
    /// the answer, at most five seconds.
    static Result<void, LinkFault> handToApp(
        const bus::Address& bus, const std::string& url, const std::string& token = {});

  private:
    Result<void, LinkFault> openWithCommand(const std::string& url) const;
    static Result<void, LinkFault> openWithHandler(const std::string& url, const std::string& token);

    std::string command_;
};

}  // namespace zelto::host
