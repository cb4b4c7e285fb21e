#include "foundation/Files.hpp"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <vector>

#include <fcntl.h>
#include <pwd.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"
#include "foundation/UUID.hpp"

namespace zelto {
namespace {

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool syncFolder(const std::filesystem::path& folder) {
    const FileDescriptor fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return fd && fsync(fd.get()) == 0;
}

/// A temporary file is locked by its writer right after it was made; one that is older and not locked has
/// none.
constexpr time_t secondsToLock = 10;

std::string temporaryPrefix(const std::filesystem::path& path) {
    return "." + path.filename().string() + ".";
}

}  // namespace

std::optional<std::string> readFile(const std::filesystem::path& path, std::size_t mostBytes) {
    const FileDescriptor fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!fd || fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode)) return std::nullopt;
    if (status.st_size > 0 && static_cast<std::size_t>(status.st_size) > mostBytes) return std::nullopt;

    // Sized once, so that a large file is held once. Files of the kernel say 0 and are read as they come.
    constexpr std::size_t step = 16 * 1024;
    std::string bytes(status.st_size > 0 ? static_cast<std::size_t>(status.st_size) : step, '\0');
    std::size_t end = 0;
    while (true) {
        if (end == bytes.size()) {
            char next = 0;
            const ssize_t more = read(fd.get(), &next, 1);
            if (more < 0 && errno == EINTR) continue;
            if (more < 0) return std::nullopt;
            if (more == 0) break;
            bytes.resize(bytes.size() + step);
            bytes[end++] = next;
        }
        const ssize_t count = read(fd.get(), bytes.data() + end, bytes.size() - end);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return std::nullopt;
        if (count == 0) break;
        end += static_cast<std::size_t>(count);
        if (end > mostBytes) return std::nullopt;
    }
    bytes.resize(end);
    return bytes;
}

Result<void> writeFileAtomically(
    const std::filesystem::path& path, std::string_view bytes, WriteOptions options) {
    const auto refused = [] { return Fault{.reason = std::strerror(errno)}; };
    const bool syncs = options.durability == Durability::powerLoss;
    const auto folder = path.parent_path();
    const auto temporary = folder / (temporaryPrefix(path) + UUID::random().text());
    const mode_t mode = options.readers == Readers::owner ? 0600 : 0666;
    // O_EXCL refuses whatever stands there already, a planted symbolic link included.
    const FileDescriptor fd(
        open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!fd) return refused();
    // Tells whoever clears up that this is no leftover; the kernel lets go of it with the process.
    flock(fd.get(), LOCK_EX | LOCK_NB);
    struct stat old {};
    const bool replaces = lstat(path.c_str(), &old) == 0 && S_ISREG(old.st_mode);
    if ((!replaces || fchmod(fd.get(), old.st_mode & 07777) == 0) && writeAll(fd.get(), bytes) &&
        (!syncs || fsync(fd.get()) == 0) && rename(temporary.c_str(), path.c_str()) == 0)
        return !syncs || syncFolder(folder) ? Result<void>() : refused();
    const Fault why = refused();
    unlink(temporary.c_str());
    return why;
}

void removeLeftovers(const std::filesystem::path& path) {
    std::error_code error;
    std::vector<std::filesystem::path> leftovers;
    for (std::filesystem::directory_iterator entry(path.parent_path(), error), end; entry != end && !error;
         entry.increment(error)) {
        const std::string name = entry->path().filename();
        const std::string prefix = temporaryPrefix(path);
        if (name.starts_with(prefix) && UUID::parse(name.substr(prefix.size())))
            leftovers.push_back(entry->path());
    }
    for (const auto& leftover : leftovers) {
        const FileDescriptor fd(open(leftover.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat status {};
        if (fd && fstat(fd.get(), &status) == 0 && status.st_mtime < time(nullptr) - secondsToLock &&
            flock(fd.get(), LOCK_EX | LOCK_NB) == 0)
            std::filesystem::remove(leftover, error);
    }
}

void makePrivateFolder(const std::filesystem::path& path) {
    std::error_code ignored;
    std::filesystem::create_directories(path.parent_path(), ignored);
    mkdir(path.c_str(), 0700);
}

HomeLookup HomeLookup::system() {
    return {
        .userDatabase = []() -> std::optional<std::string> {
            constexpr std::size_t most = std::size_t{64} << 20;
            std::vector<char> buffer(4096);
            passwd entry{};
            passwd* found = nullptr;
            int error = 0;
            while ((error = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)) == ERANGE &&
                   buffer.size() < most)
                buffer.resize(buffer.size() * 4);
            if (error != 0 || !found || !found->pw_dir || *found->pw_dir == '\0') return std::nullopt;
            return found->pw_dir;
        },
        .environment = []() -> std::optional<std::string> {
            const char* home = std::getenv("HOME");
            if (!home || *home == '\0') return std::nullopt;
            return home;
        },
    };
}

HomeLookup HomeLookup::fixed(const std::string& home) {
    return {.userDatabase = [home] { return home; }, .environment = [home] { return home; }};
}

std::filesystem::path HomeLookup::home() const {
    if (const auto fromDatabase = userDatabase()) return *fromDatabase;
    return environment().value_or("/");
}

std::filesystem::path programBeside(std::string_view name) {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error).parent_path() / name;
}

}  // namespace zelto
