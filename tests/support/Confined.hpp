#pragma once

#include <filesystem>
#include <linux/landlock.h>
#include <string>
#include <vector>

#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/Sanitizers.hpp"

namespace zelto::test {

/// What programs that confine themselves go without here, asked of this machine's kernel.
inline std::vector<std::string> lackedHere() {
    std::vector<std::string> out;
    if (isSanitized) out.emplace_back("limits");
    if (syscall(SYS_landlock_create_ruleset, nullptr, std::size_t{0}, LANDLOCK_CREATE_RULESET_VERSION) < 1)
        out.emplace_back("landlock");
    if (isSanitized || !std::filesystem::exists("/proc/sys/kernel/seccomp/actions_avail"))
        out.emplace_back("seccomp");
    return out;
}

}  // namespace zelto::test
