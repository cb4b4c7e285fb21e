#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// The command line and the extension, as processes.
struct ZeltoProcess : testing::Test {
    TemporaryFolder folder;

    static Finished zelto(std::vector<std::string> arguments, const std::string& input = "") {
        arguments.insert(arguments.begin(), programFolder() / "zelto");
        return run(arguments, input);
    }
    static Finished extension(const std::string& input) {
        return run({programFolder() / "zelto-widgets", "--home", "/no/such/home"}, input);
    }
    std::string write(const std::string& name, const std::string& text) const {
        return folder.write(name, text);
    }
};

}  // namespace zelto::test
