#pragma once

#include <chrono>
#include <csignal>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

#include "tests/support/Child.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// The machine's bus with the real login manager and the real authority for permissions, in a mount namespace
/// of their own. Wants to be root.
class LoginManager {
  public:
    /// `more` are further daemons, by their programs and their names on the bus.
    using Daemons = std::vector<std::pair<std::string, std::string>>;
    explicit LoginManager(const Daemons& more = {}) : daemons_(start(more)) {
        if (daemons_.line() != "ready") throw std::runtime_error("no login manager");
    }

    /// Whether this user may make a mount namespace, which not even root may everywhere.
    static bool isPossible() {
        return getuid() == 0 && run({"/usr/bin/unshare", "--mount", "/bin/true"}).status == 0;
    }

    const std::string& address() const { return address_; }
    /// What inhibits what, as the login manager tells: "what who why mode uid pid" of each.
    std::string inhibitors() const { return ask("org.freedesktop.login1.Manager.ListInhibitors", {}); }
    /// "idle:sleep": all that is blocked now.
    std::string blocked() const {
        return ask(
            "org.freedesktop.DBus.Properties.Get", {"org.freedesktop.login1.Manager", "BlockInhibited"});
    }
    std::string ask(const std::string& method, const std::vector<std::string>& arguments) const {
        std::vector<std::string> words{
            "/usr/bin/gdbus",
            "call",
            "--address",
            address_,
            "--dest",
            "org.freedesktop.login1",
            "--object-path",
            "/org/freedesktop/login1",
            "--method",
            method};
        words.insert(words.end(), arguments.begin(), arguments.end());
        const auto done = run(words);
        return done.output + done.errors;
    }
    void kill() {
        daemons_.kill(SIGTERM);
        daemons_.wait();
    }

  private:
    Child start(const Daemons& more) {
        // The authority is a user of its own.
        std::filesystem::permissions(folder_.path(), static_cast<std::filesystem::perms>(0755));
        address_ = "unix:path=" + (folder_.path() / "bus").string();
        folder_.write(
            "bus.conf",
            R"(<!DOCTYPE busconfig PUBLIC "-//freedesktop//DTD D-BUS Bus Configuration 1.0//EN" )"
            R"("http://www.freedesktop.org/standards/dbus/1.0/busconfig.dtd"><busconfig><type>system</type><listen>)" +
                address_ +
                // Some daemons look nowhere else.
                R"(</listen><listen>unix:path=/run/dbus/system_bus_socket</listen><policy context="default"><allow user="*"/><allow own="*"/>)"
                R"(<allow send_destination="*"/><allow receive_sender="*"/></policy></busconfig>)");
        std::string others;
        for (const auto& [program, name] : more)
            others += "start " + program + "\nuntil asked " + name + "; do :; done\n";
        const auto script = folder_.write(
            "daemons",
            "mount -t tmpfs t /run && mkdir -p /run/dbus /run/systemd /run/lock || exit 1\n"
            // They die with the one that started them.
            "start() { setpriv --pdeathsig KILL \"$@\" & }\n"
            "start dbus-daemon --config-file=" +
                (folder_.path() / "bus.conf").string() +
                " --nofork\n"
                "export DBUS_SYSTEM_BUS_ADDRESS=" +
                address_ +
                "\n"
                "asked() { gdbus call --system -d $1 -o / -m org.freedesktop.DBus.Peer.Ping; }\n"
                "until gdbus call --system -d org.freedesktop.DBus -o / -m org.freedesktop.DBus.ListNames; "
                "do :; done\n"
                "start /usr/lib/polkit-1/polkitd --no-debug\n"
                "until asked org.freedesktop.PolicyKit1; do :; done\n"
                "start /usr/lib/systemd/systemd-logind\n"
                "until asked org.freedesktop.login1; do :; done\n" +
                others +
                "echo ready >&3\n"
                "wait\n");
        return Child(
            {"setpriv",
             "--pdeathsig",
             "KILL",
             "unshare",
             "--mount",
             "--propagation",
             "private",
             "/bin/bash",
             "-c",
             "exec 3>&1 > " + (folder_.path() / "log").string() + " 2>&1; . " + script.string()},
            {"PATH=/usr/sbin:/usr/bin:/sbin:/bin"});
    }

    TemporaryFolder folder_;
    std::string address_;
    Child daemons_;
};

}  // namespace zelto::test
