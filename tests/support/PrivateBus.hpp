#pragma once

#include <csignal>
#include <stdexcept>
#include <string>

#include "tests/support/Child.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// A message bus of the test's own. `rules` are elements of its configuration.
class PrivateBus {
  public:
    /// Whoever may open the folder may connect, call and offer.
    explicit PrivateBus(
        const std::string& rules =
            R"(<policy context="default"><allow user="*"/><allow own="*"/>)"
            R"(<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/></policy>)")
        : configuration_(folder_.write("bus.conf", configuration(rules))), daemon_(start()) {
        waitUntilThere();
    }

    const std::string& address() const { return address_; }
    const std::filesystem::path& folder() const { return folder_.path(); }
    void end() {
        daemon_.kill(SIGKILL);
        daemon_.wait();
    }

    /// Another one in its place.
    void restart() {
        end();
        std::filesystem::remove(folder_.path() / "bus");
        daemon_ = start();
        waitUntilThere();
    }

  private:
    Child start() const {
        return Child(
            {"dbus-daemon", "--nofork", "--print-address=1", "--config-file=" + configuration_.string()},
            {"PATH=/usr/bin:/bin"},
            folder_.path() / "bus.log");
    }
    void waitUntilThere() {
        const auto line = daemon_.line();
        if (!line) throw std::runtime_error("the message bus did not start");
        address_ = line->substr(0, line->find(",guid="));
    }
    std::string configuration(const std::string& rules) const {
        return "<!DOCTYPE busconfig PUBLIC \"-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN\" "
               "\"http://www.freedesktop.org/standards/dbus/1.0/"
               "busconfig.dtd\">\n<busconfig><listen>unix:path=" +
               (folder_.path() / "bus").string() + "</listen><auth>EXTERNAL</auth>" + rules + "</busconfig>";
    }

    TemporaryFolder folder_;
    std::filesystem::path configuration_;
    Child daemon_;
    std::string address_;
};

}  // namespace zelto::test
