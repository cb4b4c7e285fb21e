#include "tests/platform/foundation/SystemCalls.hpp"

#include <cerrno>
#include <dlfcn.h>
#include <filesystem>

#include <pwd.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace SystemCalls = zelto::test::SystemCalls;

extern "C" {

int fsync(int fd) {
    std::error_code error;
    SystemCalls::synced.push_back(
        std::filesystem::read_symlink("/proc/self/fd/" + std::to_string(fd), error).string());
    return static_cast<int>(syscall(SYS_fsync, fd));
}

uid_t getuid() noexcept {
    return SystemCalls::user ? *SystemCalls::user : static_cast<uid_t>(syscall(SYS_getuid));
}

int getpwuid_r(uid_t uid, passwd* entry, char* buffer, std::size_t size, passwd** result) {
    if (!SystemCalls::user) {
        using Function = int (*)(uid_t, passwd*, char*, std::size_t, passwd**);
        return reinterpret_cast<Function>(dlsym(RTLD_NEXT, "getpwuid_r"))(uid, entry, buffer, size, result);
    }
    *result = nullptr;
    if (size < SystemCalls::entryBytes) return ERANGE;
    static std::string home;
    home = "/home/of/" + std::to_string(uid);
    entry->pw_dir = home.data();
    if (uid == *SystemCalls::user) *result = entry;
    return 0;
}
}
