#pragma once

#include <string>
#include <vector>

namespace zelto::test {

struct Finished {
    int status;  // the exit status, or minus the signal that ended it
    std::string output, errors;
};

/// Runs a program to its end with `input` on its standard input. `environment` replaces the whole
/// environment.
Finished run(
    const std::vector<std::string>& command, const std::string& input = "",
    const std::vector<std::string>& environment = {
        "PATH=/usr/bin:/bin", "LC_ALL=pt_BR.UTF-8", "TZ=America/Sao_Paulo"});

}  // namespace zelto::test
