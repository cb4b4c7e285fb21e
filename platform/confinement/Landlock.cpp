#include "Landlock.hpp"

#include <array>
#include <linux/landlock.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"

namespace zelto::confinement {
namespace {

// The library has no functions for these calls, and headers of the oldest system here know their first
// version only: the kernel may know more.
struct RulesetAttributes {
    __u64 files, network, scopes;
};
constexpr __u64 refer = 1ULL << 13, truncateFile = 1ULL << 14, controlDevice = 1ULL << 15;
constexpr __u64 bindAndConnect = 3, abstractSocketsAndSignals = 3;

/// What a version of the interface knows, and how many bytes of the attributes it takes.
struct Version {
    RulesetAttributes attributes;
    std::size_t size;
};
Version version(long abi) {
    Version out{{(LANDLOCK_ACCESS_FS_MAKE_SYM << 1) - 1, 0, 0}, sizeof(__u64)};
    if (abi >= 2) out.attributes.files |= refer;
    if (abi >= 3) out.attributes.files |= truncateFile;
    if (abi >= 4) {
        out.attributes.network = bindAndConnect;
        out.size = 2 * sizeof(__u64);
    }
    if (abi >= 5) out.attributes.files |= controlDevice;
    if (abi >= 6) {
        out.attributes.scopes = abstractSocketsAndSignals;
        out.size = sizeof(RulesetAttributes);
    }
    return out;
}

void allowReading(int ruleset, const std::filesystem::path& path) {
    const FileDescriptor file(open(path.c_str(), O_PATH | O_CLOEXEC));
    struct stat status {};
    if (!file || fstat(file.get(), &status) != 0) return;
    landlock_path_beneath_attr rule{};
    rule.parent_fd = file.get();
    rule.allowed_access = LANDLOCK_ACCESS_FS_READ_FILE;
    if (S_ISDIR(status.st_mode)) rule.allowed_access |= LANDLOCK_ACCESS_FS_READ_DIR;
    syscall(SYS_landlock_add_rule, ruleset, LANDLOCK_RULE_PATH_BENEATH, &rule, 0U);
}

}  // namespace

bool restrictFiles(const std::vector<std::filesystem::path>& readable) {
    const long abi =
        syscall(SYS_landlock_create_ruleset, nullptr, std::size_t{0}, LANDLOCK_CREATE_RULESET_VERSION);
    if (abi < 1) return false;
    const Version known = version(abi);
    const FileDescriptor ruleset(
        static_cast<int>(syscall(SYS_landlock_create_ruleset, &known.attributes, known.size, 0U)));
    if (!ruleset) return false;
    for (const auto& path : readable) allowReading(ruleset.get(), path);
    return syscall(SYS_landlock_restrict_self, ruleset.get(), 0U) == 0;
}

}  // namespace zelto::confinement
