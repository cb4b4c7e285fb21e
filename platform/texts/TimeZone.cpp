#include "texts/TimeZone.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <map>
#include <mutex>
#include <string_view>
#include <utility>

#include <fcntl.h>
#include <glib.h>
#include <sys/stat.h>
#include <unistd.h>

#include "TimeZoneRule.hpp"
#include "foundation/FileDescriptor.hpp"
#include "foundation/Files.hpp"

namespace zelto::texts {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view zoneFolder = "/usr/share/zoneinfo/";

bool isZoneFile(const fs::path& path) {
    const FileDescriptor fd(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    struct stat status {};
    if (!fd || fstat(fd.get(), &status) != 0 || !S_ISREG(status.st_mode)) return false;
    std::string magic(4, '\0');
    return read(fd.get(), magic.data(), magic.size()) == 4 && magic == "TZif";
}

/// Pieces of plain characters between single slashes: nothing that leaves the folder.
bool isPlainName(std::string_view name) {
    const auto isPlain = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_' ||
               c == '-' || c == '+' || c == '/';
    };
    return !name.empty() && name.size() < 256 && name.front() != '/' && name.back() != '/' &&
           name.find("//") == std::string_view::npos && std::ranges::all_of(name, isPlain);
}

bool isSecondName(std::string_view name) {
    return name == "localtime" || name == "posixrules" || name.starts_with("posix/") ||
           name.starts_with("right/");
}

/// The number of eight bytes, the highest first, that begins at `at`.
std::int64_t bigEndian64(std::string_view bytes, std::size_t at) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < 8; ++i) value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
    return static_cast<std::int64_t>(value);
}

/// What a zone file says of the time behind the last change that it lists.
struct Footer {
    double from;  // seconds since 1970
    TimeZoneRule rule;
};

/// Read from the second of the file's two blocks, as RFC 8536 describes it; absent where there is none.
std::optional<Footer> footerOf(std::string_view bytes) {
    constexpr std::size_t header = 44;
    // Six counts stand at the end of a header: indicators twice, leap seconds, changes, types, characters.
    const auto count = [&](std::size_t block, std::size_t index) {
        return static_cast<std::size_t>(bigEndian64(bytes, block + 20 + index * 4) >> 32 & 0xFFFFFFFF);
    };
    if (bytes.size() < 2 * header || bytes[4] < '2') return std::nullopt;
    const std::size_t second = header + count(0, 3) * 5 + count(0, 4) * 6 + count(0, 5) + count(0, 2) * 8 +
                               count(0, 1) + count(0, 0);
    if (second + header > bytes.size()) return std::nullopt;
    const std::size_t changes = count(second, 3);
    if (changes > (bytes.size() - second - header) / 8) return std::nullopt;
    if (!bytes.ends_with('\n')) return std::nullopt;
    bytes.remove_suffix(1);
    const auto rule = TimeZoneRule::parse(bytes.substr(bytes.rfind('\n') + 1));
    if (!rule) return std::nullopt;
    const double last = changes == 0
                            ? -HUGE_VAL
                            : static_cast<double>(bigEndian64(bytes, second + header + (changes - 1) * 8));
    return Footer{last, *rule};
}

}  // namespace

/// The changes that a zone file lists are read by the library. What it makes of rules is wrong where
/// "daylight" time lies behind the other (Ireland) and where days are counted through the year: those are
/// read here.
struct TimeZone::Clock {
    std::shared_ptr<GTimeZone> listed;
    std::optional<Footer> footer;
    bool isName = false;

    double offset(double instant) const {
        if (footer && instant >= footer->from) return footer->rule.offset(instant);
        if (!listed) return 0;
        const auto seconds = static_cast<gint64>(std::floor(instant));
        return g_time_zone_get_offset(
            listed.get(), g_time_zone_find_interval(listed.get(), G_TIME_TYPE_UNIVERSAL, seconds));
    }

    static std::shared_ptr<const Clock> ofFile(const std::string& path, bool isName) {
        constexpr std::size_t largest = std::size_t{1} << 20;
        const auto bytes = readFile(path, largest);
        std::shared_ptr<GTimeZone> zone(
            bytes ? g_time_zone_new_identifier(path.c_str()) : nullptr, [](GTimeZone* opened) {
                if (opened) g_time_zone_unref(opened);
            });
        if (!zone) return nullptr;
        return std::make_shared<Clock>(Clock{std::move(zone), footerOf(*bytes), isName});
    }
    static std::shared_ptr<const Clock> ofRule(const TimeZoneRule& rule) {
        return std::make_shared<Clock>(Clock{nullptr, Footer{-HUGE_VAL, rule}, false});
    }
};

namespace {

/// Zones by identifier. Opening one costs more than all that is asked of it in a round.
class ZoneCache {
  public:
    std::shared_ptr<const TimeZone::Clock> find(const std::string& identifier) {
        const std::lock_guard lock(mutex_);
        const auto found = zones_.find(identifier);
        return found == zones_.end() ? nullptr : found->second;
    }
    void keep(const std::string& identifier, std::shared_ptr<const TimeZone::Clock> zone) {
        const std::lock_guard lock(mutex_);
        if (zones_.size() >= most) zones_.clear();
        zones_.insert_or_assign(identifier, std::move(zone));
    }

  private:
    /// More than there are names.
    static constexpr std::size_t most = 1024;

    std::mutex mutex_;
    std::map<std::string, std::shared_ptr<const TimeZone::Clock>> zones_;
};

ZoneCache& zoneCache() {
    static ZoneCache cache;
    return cache;
}

/// The name that a file of the zone folder has; absent for one from elsewhere.
std::optional<std::string> nameIn(const fs::path& path) {
    const std::string text = path.lexically_normal().string();
    if (!text.starts_with(zoneFolder)) return std::nullopt;
    std::string name = text.substr(zoneFolder.size());
    if (name.starts_with("posix/")) name.erase(0, 6);
    return isKnownTimeZone(name) ? std::optional(name) : std::nullopt;
}

/// A zone file as an identifier: its name, that of what it links to, or its path.
std::string identifierOfFile(const fs::path& path) {
    if (!isZoneFile(path)) return "UTC";
    if (auto name = nameIn(path)) return *std::move(name);
    std::error_code error;
    if (const fs::path target = fs::read_symlink(path, error); !error)
        if (auto name = nameIn(path.parent_path() / target)) return *std::move(name);
    if (const fs::path target = fs::canonical(path, error); !error)
        if (auto name = nameIn(target)) return *std::move(name);
    return path.string();
}

/// The machine's own zone. A copy of a zone file has no name, but a file beside it may know it.
std::string identifierOfMachine(const TimeZoneSetting& setting) {
    std::string identifier = identifierOfFile(setting.localTime);
    if (identifier != setting.localTime) return identifier;
    std::string name = readFile(setting.nameFile).value_or("");
    name.erase(std::min(name.find('\n'), name.size()));
    const bool isItsName =
        isKnownTimeZone(name) && readFile(std::string(zoneFolder) + name) == readFile(setting.localTime);
    return isItsName ? name : identifier;
}

}  // namespace

bool isKnownTimeZone(const std::string& name) {
    if (const auto clock = zoneCache().find(name)) return clock->isName;
    return isPlainName(name) && !isSecondName(name) && isZoneFile(std::string(zoneFolder) + name);
}

std::optional<TimeZone> TimeZone::find(const std::string& identifier) {
    auto clock = zoneCache().find(identifier);
    if (clock) return TimeZone(std::move(clock));
    if (isKnownTimeZone(identifier))
        clock = Clock::ofFile(std::string(zoneFolder) + identifier, true);
    else if (identifier.starts_with('/') && isZoneFile(identifier))
        clock = Clock::ofFile(identifier, false);
    else if (const auto rule = TimeZoneRule::parse(identifier))
        clock = Clock::ofRule(*rule);
    if (!clock) return std::nullopt;
    zoneCache().keep(identifier, clock);
    return TimeZone(std::move(clock));
}

TimeZone TimeZone::utc() {
    static const auto clock = Clock::ofRule({});
    return TimeZone(clock);
}

double TimeZone::wallClock(Date date) const {
    return date.held().sinceReference + clock_->offset(date.held().since1970());
}

Date TimeZone::instant(double wallClock) const {
    const Date wall = Date{wallClock}.held();
    constexpr double day = 86'400;
    const double before = clock_->offset(wall.since1970() - day),
                 after = clock_->offset(wall.since1970() + day);
    const auto shows = [&](double offset) { return clock_->offset((wall - offset).since1970()) == offset; };
    // Clocks that were put back show a time twice, the first time with the greater offset.
    for (const double offset : {std::max(before, after), std::min(before, after)})
        if (shows(offset)) return wall - offset;
    return wall - before;
}

std::string identifierOf(const TimeZoneSetting& setting) {
    if (!setting.variable) return identifierOfMachine(setting);
    std::string text = *setting.variable;
    if (text.starts_with(':')) text.erase(0, 1);
    if (text.empty()) return "UTC";
    if (text.starts_with('/')) return identifierOfFile(text);
    // The C library looks for a file first, whatever else the text may mean.
    if (isKnownTimeZone(text)) return text;
    if (isPlainName(text) && isZoneFile(std::string(zoneFolder) + text))
        return identifierOfFile(std::string(zoneFolder) + text);
    const auto rule = TimeZoneRule::parse(text);
    if (!rule) return "UTC";
    const auto name = rule->nameOfWholeHours();
    return name && isKnownTimeZone(*name) ? *name : text;
}

}  // namespace zelto::texts
