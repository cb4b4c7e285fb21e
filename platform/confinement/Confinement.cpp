#include "confinement/Confinement.hpp"

#include <algorithm>
#include <csignal>

#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

#include "CallFilter.hpp"
#include "Landlock.hpp"

#if defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ZELTO_SANITIZED
#endif
#endif
#if defined(__SANITIZE_ADDRESS__)
#define ZELTO_SANITIZED
#endif

namespace zelto::confinement {
namespace {

#ifdef ZELTO_SANITIZED
constexpr bool isSanitized = true;
#else
constexpr bool isSanitized = false;
#endif

/// Whoever has less already keeps it.
bool limit(__rlimit_resource_t resource, rlim_t most) {
    rlimit both{};
    if (getrlimit(resource, &both) != 0) return false;
    both.rlim_max = std::min(both.rlim_max, most);
    both.rlim_cur = std::min(both.rlim_cur, both.rlim_max);
    return setrlimit(resource, &both) == 0;
}

bool setLimits(const Allowance& allowance) {
    if (isSanitized) return false;
    bool all = limit(RLIMIT_CORE, 0);
    all = limit(RLIMIT_NOFILE, allowance.openFiles) && all;
    if (allowance.processorSeconds) all = limit(RLIMIT_CPU, *allowance.processorSeconds) && all;
    return limit(RLIMIT_AS, allowance.addressSpace) && all;
}

}  // namespace

std::vector<std::string> confine(const Allowance& allowance) {
    std::vector<std::string> missing;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    // A leader of a group stays one: a person has started it by hand.
    setsid();
    // The sanitizers look into the process themselves.
    std::vector<std::filesystem::path> readable = allowance.readable;
    if (isSanitized)
        readable.emplace_back("/proc/self");
    else
        prctl(PR_SET_DUMPABLE, 0);
    if (!setLimits(allowance)) missing.emplace_back("limits");
    if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0) missing.emplace_back("no_new_privs");
    if (!restrictFiles(readable)) missing.emplace_back("landlock");
    if (isSanitized || !restrictCalls(allowance.calls)) missing.emplace_back("seccomp");
    return missing;
}

void closeDescriptors(unsigned first) {
    close_range(first, ~0U, 0);
}

}  // namespace zelto::confinement
