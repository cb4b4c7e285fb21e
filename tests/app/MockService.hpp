#pragma once

#include <stdexcept>
#include <string>

#include "tests/app/MainLoop.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// A service of another program's on a bus, by python-dbusmock: its methods do what a test says.
class MockService {
  public:
    MockService(std::string bus, std::string name, std::string object, const std::string& interface)
        : bus_(std::move(bus)),
          name_(std::move(name)),
          object_(std::move(object)),
          service_(
              {"/usr/bin/python3", "-m", "dbusmock", "--logfile", log(), name_, object_, interface},
              {"PATH=/usr/bin:/bin", "DBUS_SESSION_BUS_ADDRESS=" + bus_}, folder_.path() / "errors") {
        if (!runUntil([this] { return call(object_, "org.freedesktop.DBus.Peer.Ping", {}).status == 0; }))
            throw std::runtime_error("no stand-in for " + name_);
    }

    /// `code` is Python: "ret = 7".
    void method(
        const std::string& interface, const std::string& name, const std::string& in, const std::string& out,
        const std::string& code, const std::string& object = {}) const {
        check(call(
            object.empty() ? object_ : object,
            "org.freedesktop.DBus.Mock.AddMethod",
            {interface, name, in, out, code}));
    }
    /// Values as the bus's own tool writes them: "<true>".
    void property(const std::string& interface, const std::string& name, const std::string& value) const {
        check(call(object_, "org.freedesktop.DBus.Mock.AddProperty", {interface, name, value}));
    }
    void object(const std::string& path, const std::string& interface, const std::string& properties) const {
        check(call(object_, "org.freedesktop.DBus.Mock.AddObject", {path, interface, properties, "[]"}));
    }
    void signal(
        const std::string& interface, const std::string& name, const std::string& signature,
        const std::string& arguments, const std::string& object = {}) const {
        check(call(
            object.empty() ? object_ : object,
            "org.freedesktop.DBus.Mock.EmitSignal",
            {interface, name, signature, arguments}));
    }
    /// What was called, a line each, with the time before it.
    std::string calls() const { return run({"/bin/cat", log()}).output; }
    void kill() {
        service_.kill(SIGKILL);
        service_.wait();
    }

  private:
    std::string log() const { return folder_.path() / "calls"; }
    Finished call(
        const std::string& object, const std::string& method,
        const std::vector<std::string>& arguments) const {
        std::vector<std::string> words{
            "/usr/bin/gdbus",
            "call",
            "--address",
            bus_,
            "--dest",
            name_,
            "--object-path",
            object,
            "--method",
            method,
            "--"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return run(words);
    }
    static void check(const Finished& done) {
        if (done.status != 0) throw std::runtime_error(done.errors);
    }

    TemporaryFolder folder_;
    std::string bus_, name_, object_;
    Child service_;
};

}  // namespace zelto::test
