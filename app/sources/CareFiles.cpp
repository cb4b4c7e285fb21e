// What an analysis finds in files.

#include <algorithm>
#include <array>
#include <string_view>

#include <sys/statvfs.h>
#include <system_error>

#include "foundation/Files.hpp"
#include "sources/Care.hpp"
#include "system/KernelValues.hpp"

namespace zelto::sources {
namespace {

namespace fs = std::filesystem;

/// "MemTotal:  16384 kB" as a number.
std::optional<double> meminfo(const std::string& text, std::string_view name) {
    const auto at = text.find(std::string(name) + ":");
    if (at == std::string::npos || (at > 0 && text[at - 1] != '\n')) return std::nullopt;
    return system::leadingNumber(std::string_view(text).substr(at + name.size() + 1));
}

void addMemory(const fs::path& root, CareFacts& facts) {
    const std::string text = readFile(root / "proc/meminfo").value_or("");
    const auto total = meminfo(text, "MemTotal"), available = meminfo(text, "MemAvailable");
    if (total && available && *total > 0) facts.memoryAvailable = *available / *total;
    // "some avg10=0.00 avg60=0.00 avg300=0.12 total=…"
    const std::string pressure = system::kernelLine(root / "proc/pressure/memory").value_or("");
    constexpr std::string_view key = "avg300=";
    if (const auto at = pressure.find(key); pressure.starts_with("some ") && at != std::string::npos)
        facts.memoryWaiting = system::leadingNumber(std::string_view(pressure).substr(at + key.size()));
}

/// Whether what is mounted there is a disk of this machine's: statvfs waits for a network's other side.
bool isLocal(const fs::path& root, const std::string& path) {
    const std::string mounts = readFile(root / "proc/self/mounts").value_or("");
    constexpr std::array<std::string_view, 8> remote{
        "autofs", "nfs", "nfs4", "cifs", "smb3", "9p", "ceph", "fuse."};
    bool isLocal = true;
    for (std::string_view rest = mounts; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        const auto first = line.find(' ');
        const auto second = line.find(' ', first + 1);
        if (first == std::string_view::npos || second == std::string_view::npos ||
            line.substr(first + 1, second - first - 1) != path)
            continue;
        const std::string_view type = line.substr(second + 1);
        isLocal =
            std::ranges::none_of(remote, [type](std::string_view each) { return type.starts_with(each); });
    }
    return isLocal;
}

void addVolumes(const fs::path& root, CareFacts& facts) {
    std::optional<unsigned long> seen;
    for (const std::string path : {"/", "/home"}) {
        struct statvfs status {};
        const fs::path place = path == "/" ? root : root / "home";
        if (!isLocal(root, path) || statvfs(place.c_str(), &status) != 0 || status.f_blocks == 0) continue;
        // Where the home is no volume of its own there is only one to tell of.
        if (seen == status.f_fsid) continue;
        seen = status.f_fsid;
        facts.volumes.push_back(
            {path, static_cast<double>(status.f_bavail) / static_cast<double>(status.f_blocks)});
    }
}

std::optional<bool> firewall(const fs::path& root) {
    const auto configuration = readFile(root / "etc/ufw/ufw.conf");
    // One that runs tells so itself.
    std::error_code error;
    if (!configuration)
        return fs::exists(root / "usr/lib/systemd/system/firewalld.service", error) ? std::optional(false)
                                                                                    : std::nullopt;
    return ("\n" + *configuration).find("\nENABLED=yes") != std::string::npos;
}

std::optional<bool> secureBoot(const fs::path& root) {
    const auto value =
        readFile(root / "sys/firmware/efi/efivars/SecureBoot-8be4df61-93ca-11d2-aa0d-00e098032b8c");
    // Four bytes of attributes, then the flag.
    if (!value || value->size() < 5) return std::nullopt;
    return (*value)[4] == 1;
}

/// Numbers by their value, all else by its bytes: 6.1.0-9 comes before 6.1.0-13.
bool isOlder(std::string_view left, std::string_view right) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    while (!left.empty() && !right.empty()) {
        if (isDigit(left.front()) && isDigit(right.front())) {
            const auto number = [&](std::string_view& text) {
                const auto end = std::ranges::find_if_not(text, isDigit);
                std::string_view digits = text.substr(0, static_cast<std::size_t>(end - text.begin()));
                text.remove_prefix(digits.size());
                digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
                return digits;
            };
            const std::string_view a = number(left), b = number(right);
            if (a.size() != b.size()) return a.size() < b.size();
            if (a != b) return a < b;
        } else {
            if (left.front() != right.front()) return left.front() < right.front();
            left.remove_prefix(1);
            right.remove_prefix(1);
        }
    }
    return left.size() < right.size();
}

/// "rt-amd64" of "6.1.0-13-rt-amd64", what follows the last number: kernels of another flavour are no
/// successors.
std::string_view flavourOf(std::string_view kernel) {
    std::string_view flavour;
    for (std::string_view rest = kernel; !rest.empty();) {
        const std::string_view word = rest.substr(0, rest.find('-'));
        rest.remove_prefix(std::min(word.size() + 1, rest.size()));
        if (!word.empty() && word.front() >= '0' && word.front() <= '9') flavour = rest;
    }
    return flavour;
}

std::optional<bool> newerKernel(const fs::path& root, const std::string& running) {
    bool isInstalled = false, isNewer = false;
    for (const fs::path& folder : system::entriesOf(root / "lib/modules")) {
        const std::string name = folder.filename().string();
        isInstalled = isInstalled || name == running;
        std::error_code error;
        // What a removed kernel leaves behind has no image.
        isNewer = isNewer || (flavourOf(name) == flavourOf(running) && isOlder(running, name) &&
                              fs::exists(root / "boot" / ("vmlinuz-" + name), error));
    }
    // One that is not installed here is a container's or one's own.
    return isInstalled ? std::optional(isNewer) : std::nullopt;
}

}  // namespace

CareFacts readCareFiles(const fs::path& root, const std::string& kernel) {
    CareFacts facts;
    addMemory(root, facts);
    addVolumes(root, facts);
    facts.firewall = firewall(root);
    facts.secureBoot = secureBoot(root);
    facts.chip = readChipTemperature(root);
    std::error_code error;
    if (fs::exists(root / "run/reboot-required", error)) facts.restartRequired = true;
    facts.newerKernel = newerKernel(root, kernel);
    return facts;
}

}  // namespace zelto::sources
