#include "Common/ExtensionAllowance.hpp"

#include <vector>

namespace zelto::widget {
namespace {

using confinement::AllowedCall;
using Terms = AllowedCall::Terms;

const std::vector<AllowedCall> ownCalls{
    AllowedCall{ZELTO_CALL(openat), Terms::readOnly},
    AllowedCall{ZELTO_CALL(getdents64)},
    AllowedCall{ZELTO_CALL(readlink)},
    AllowedCall{ZELTO_CALL(access)},
    AllowedCall{ZELTO_CALL(statfs)},
    AllowedCall{ZELTO_CALL(sysinfo)},
    AllowedCall{ZELTO_CALL(sched_getaffinity)},
    AllowedCall{ZELTO_CALL(clock_nanosleep)},
    // Pictures are asked for over a socket that is there.
    AllowedCall{ZELTO_CALL(sendto), Terms::connected},
    // Threads, and what the C library does for each.
    AllowedCall{ZELTO_CALL(clone), Terms::threadsOnly},
    AllowedCall{ZELTO_CALL(set_robust_list)},
    AllowedCall{ZELTO_CALL(rseq)},
    AllowedCall{ZELTO_CALL(prlimit64), Terms::askingOnly},
};

}  // namespace

confinement::Allowance extensionAllowance(
    const std::filesystem::path& snapshotFolder, const std::filesystem::path& machine,
    const std::string& timeZone) {
    confinement::Allowance out{
        .readable =
            {snapshotFolder,
             "/usr/share/zoneinfo",
             "/usr/share/zoneinfo-icu",
             "/etc/localtime",
             machine / "proc/stat",
             machine / "proc/meminfo",
             machine / "sys/class/power_supply",
             machine / "sys/block",
             machine / "sys/devices"},
        .calls = ownCalls};
    if (timeZone.starts_with('/')) out.readable.emplace_back(timeZone);
    return out;
}

}  // namespace zelto::widget
