#include "KernelFiles.hpp"

#include <charconv>
#include <string>
#include <string_view>

#include <sys/statvfs.h>

#include "foundation/Files.hpp"

namespace zelto::system {
namespace {

namespace fs = std::filesystem;

/// Takes the next blank-separated word off the front of `text`.
std::string_view nextWord(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
    const auto word = text.substr(0, text.find_first_of(" \t\n"));
    text.remove_prefix(word.size());
    return word;
}

std::optional<std::uint64_t> nextNumber(std::string_view& text) {
    const auto word = nextWord(text);
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), value);
    if (error != std::errc() || end != word.data() + word.size()) return std::nullopt;
    return value;
}

/// The lines of the form "MemTotal:  16384 kB" of a file; others are passed over.
class KilobyteTable {
  public:
    explicit KilobyteTable(const fs::path& meminfo) : text_(readFile(meminfo).value_or("")) {}

    std::optional<std::uint64_t> operator[](std::string_view name) const {
        for (std::string_view rest = text_; !rest.empty();) {
            std::string_view line = rest.substr(0, rest.find('\n'));
            rest.remove_prefix(std::min(line.size() + 1, rest.size()));
            if (!line.starts_with(name) || line.substr(name.size(), 1) != ":") continue;
            line.remove_prefix(name.size() + 1);
            if (const auto number = nextNumber(line); number && nextWord(line) == "kB") return number;
        }
        return std::nullopt;
    }

  private:
    std::string text_;
};

/// Memory that the zram devices take, in bytes: the third figure of mm_stat.
std::uint64_t zramBytes(const fs::path& blockDevices) {
    std::uint64_t bytes = 0;
    std::error_code error;
    fs::directory_iterator folder(blockDevices, error);
    if (error) return 0;
    for (; folder != fs::directory_iterator() && !error; folder.increment(error)) {
        if (!folder->path().filename().string().starts_with("zram")) continue;
        const std::string text = readFile(folder->path() / "mm_stat").value_or("");
        std::string_view words = text;
        nextWord(words);
        nextWord(words);
        bytes += nextNumber(words).value_or(0);
    }
    return bytes;
}

}  // namespace

std::optional<CPUTicks> readCPUTicks(const fs::path& stat) {
    const auto text = readFile(stat);
    if (!text) return std::nullopt;
    std::string_view line = std::string_view(*text).substr(0, text->find('\n'));
    if (nextWord(line) != "cpu") return std::nullopt;
    const auto user = nextNumber(line), nice = nextNumber(line), system = nextNumber(line),
               idle = nextNumber(line);
    if (!user || !nice || !system || !idle) return std::nullopt;
    // Old kernels stop here.
    const auto iowait = nextNumber(line).value_or(0);
    const auto irq = nextNumber(line).value_or(0);
    const auto softirq = nextNumber(line).value_or(0);
    return CPUTicks{.user = *user, .system = *system + irq + softirq, .idle = *idle + iowait, .nice = *nice};
}

std::optional<VirtualMemoryStatistics> readVirtualMemory(
    const fs::path& meminfo, const fs::path& blockDevices, std::uint64_t pageSize) {
    const KilobyteTable table(meminfo);
    for (const std::string_view required : {"AnonPages", "Shmem", "SUnreclaim"})
        if (!table[required]) return std::nullopt;
    if (pageSize == 0) return std::nullopt;
    const auto pages = [&](std::initializer_list<std::string_view> names, std::uint64_t bytes = 0) {
        for (const auto name : names) bytes += table[name].value_or(0) * 1024;
        return bytes / pageSize;
    };
    return VirtualMemoryStatistics{
        .internal = pages({"AnonPages", "Shmem"}),
        .purgeable = pages({"LazyFree"}),
        .wired = pages({"SUnreclaim", "KernelStack", "PageTables", "SecPageTables", "Percpu", "Hugetlb"}),
        .compressor = pages({"Zswap"}, zramBytes(blockDevices)),
    };
}

std::uint64_t readPhysicalMemory(const fs::path& meminfo) {
    const KilobyteTable table(meminfo);
    return table["MemTotal"].value_or(0) * 1024;
}

VolumeCapacities capacitiesOf(const struct statvfs& status) {
    return {
        .total = std::uint64_t{status.f_blocks} * status.f_frsize,
        .availableForImportantUsage = std::uint64_t{status.f_bavail} * status.f_frsize};
}

std::optional<VolumeCapacities> readVolume(const fs::path& path) {
    struct statvfs status {};
    if (statvfs(path.c_str(), &status) != 0) return std::nullopt;
    return capacitiesOf(status);
}

}  // namespace zelto::system
