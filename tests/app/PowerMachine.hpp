#pragma once

#include <fstream>
#include <stdexcept>
#include <string>

#include <sys/stat.h>

#include "tests/support/Child.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// A machine with batteries as its kernel shows them, and the real power daemon on it.
class PowerMachine {
  public:
    /// The daemon goes to that bus.
    explicit PowerMachine(const std::string& bus) : machine_(start(bus)), commands_(fifo()) {}

    void adapter(bool isIn) { tell(std::string("adapter ") + (isIn ? "1" : "0")); }
    /// Adds one, or changes it: "status Charging capacity 71".
    void battery(const std::string& name, const std::string& attributes) {
        tell("battery " + name + " " + attributes);
    }
    void remove(const std::string& name) { tell("remove " + name); }
    void startDaemon() { tell("daemon start"); }
    void killDaemon() { tell("daemon kill"); }

    /// Of a battery as new machines have it, at 70 percent and emptied.
    static constexpr const char* usual =
        "type Battery present 1 technology Li-ion status Discharging energy_full 48000000 energy_full_design "
        "60000000 energy_now 33600000 power_now 12500000 voltage_now 11400000 cycle_count 454 capacity 70 "
        "temp 312";

  private:
    std::string fifo() const { return folder_.path() / "commands"; }
    Child start(const std::string& bus) const {
        if (mkfifo(fifo().c_str(), 0600) != 0) throw std::runtime_error("no FIFO");
        return Child(
            {"umockdev-wrapper", programFolder() / "power-machine", bus, fifo()},
            {"PATH=/usr/bin:/bin", "G_MESSAGES_DEBUG="},
            folder_.path() / "log");
    }
    void tell(const std::string& line) {
        commands_ << line << std::endl;
        if (machine_.line() != "done") throw std::runtime_error("the machine with batteries has ended");
    }

    TemporaryFolder folder_;
    Child machine_;
    std::ofstream commands_;
};

}  // namespace zelto::test
