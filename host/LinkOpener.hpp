#pragma once

#include <functional>
#include <string>

namespace zelto::host {

/// Opens the app's links. Links of other schemes are refused: nothing but the extension's word says that they
/// are harmless.
class LinkOpener {
  public:
    /// `command` is run with the link as its last argument; empty for the desktop's handler of the scheme.
    LinkOpener(std::string command, std::function<void(const std::string&)> log);

    /// False, with a line in the log, when nothing opens it.
    bool open(const std::string& url) const;

  private:
    bool openWithCommand(const std::string& url) const;
    bool openWithHandler(const std::string& url) const;

    std::string command_;
    std::function<void(const std::string&)> log_;
};

}  // namespace zelto::host
