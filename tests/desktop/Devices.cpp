#include "tests/desktop/Devices.hpp"

#include <map>
#include <stdexcept>

#include "tests/desktop/Nobody.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"

namespace zelto::test {
namespace {

/// It reads from a FIFO, which the shell opens for it. Compositors look at who their clients are: it is a
/// program that they can see, of the user that they are.
Child started(
    const std::filesystem::path& folder, const std::string& fifo, const std::vector<std::string>& environment,
    const std::string& area) {
    const std::string program = copyIn(folder, programFolder() / "virtual-input");
    run(asNobody(folder, {"/usr/bin/mkfifo", fifo}));
    return Child(
        asNobody(folder, {"/bin/sh", "-c", "exec \"$0\" " + area + " 0<>\"$1\"", program, fifo}),
        environment,
        fifo + ".log");
}

}  // namespace

Devices::Devices(
    const std::filesystem::path& folder, const std::vector<std::string>& environment, int width, int height)
    : fifo_(folder / "devices"),
      program_(started(folder, fifo_, environment, std::to_string(width) + " " + std::to_string(height))) {
    if (program_.line() != "ready") throw std::runtime_error("no pointer and keyboard");
    input_ = std::fopen(fifo_.c_str(), "w");
}

Devices::~Devices() {
    if (input_) std::fclose(input_);
}

void Devices::key(const std::string& name) {
    // By the kernel's codes, with shift as 1 and control as 4.
    static const std::map<std::string, std::string> codes{
        {"Tab", "15 0"},
        {"Return", "28 0"},
        {"Up", "103 0"},
        {"Down", "108 0"},
        {"Left", "105 0"},
        {"Right", "106 0"},
        {"Escape", "1 0"},
        {"Delete", "111 0"},
        {"Insert", "110 0"},
        {"minus", "12 0"},
        {"plus", "13 1"},
        {"ctrl+z", "44 4"},
        {"ctrl+Left", "105 4"},
        {"ctrl+Right", "106 4"}};
    tell("key " + codes.at(name));
}

void Devices::tell(const std::string& command) {
    std::fputs((command + "\n").c_str(), input_);
    std::fflush(input_);
    if (program_.line() != "ok") throw std::runtime_error("the devices do not answer");
}

}  // namespace zelto::test
