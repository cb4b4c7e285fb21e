#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>

#include <unistd.h>

#include "Commands.hpp"
#include "Failure.hpp"
#include "RunningDesktop.hpp"
#include "foundation/Files.hpp"

namespace zelto::cli {

int desktop(const std::vector<std::string>& arguments) {
    if (!arguments.empty() && isDesktopVerb(arguments.front())) return runDesktopVerb(arguments);
    // A word that is none of them is no option either.
    if (!arguments.empty() && !arguments.front().starts_with('-'))
        throw Failure(
            "'" + arguments.front() + "' is none of the words that follow zelto desktop (try --help)", 2);
    if (std::ranges::find(arguments, "--help") != arguments.end() ||
        std::ranges::find(arguments, "-h") != arguments.end())
        std::cout << desktopVerbTexts() << std::endl;
    const auto program = programBeside("zelto-desktop");
    std::vector<std::string> words{program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> argv;
    for (auto& word : words) argv.push_back(word.data());
    argv.push_back(nullptr);
    execv(program.c_str(), argv.data());
    throw Failure(program.string() + ": " + std::strerror(errno));
}

}  // namespace zelto::cli
