#include "sources/Graphics.hpp"

#include <algorithm>
#include <string_view>

#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

#include "Devices.hpp"
#include "foundation/Files.hpp"
#include "system/KernelValues.hpp"

namespace zelto::sources {
namespace {

namespace fs = std::filesystem;
using system::entriesOf;
using system::leadingNumber;

bool isNumber(const std::string& name) {
    return !name.empty() && std::ranges::all_of(name, [](char c) { return c >= '0' && c <= '9'; });
}

/// "card0", and not its connectors, such as "card0-DP-1".
bool isCard(const std::string& name) {
    return name.starts_with("card") && isNumber(name.substr(4));
}

/// Calls `line(key, value)` for each "key:  value" of a text.
template <class Line>
void eachLine(std::string_view text, Line line) {
    while (!text.empty()) {
        const std::string_view each = text.substr(0, text.find('\n'));
        text.remove_prefix(std::min(each.size() + 1, text.size()));
        const auto colon = each.find(':');
        if (colon == std::string_view::npos) continue;
        std::string_view value = each.substr(colon + 1);
        value.remove_prefix(std::min(value.find_first_not_of(" \t"), value.size()));
        line(each.substr(0, colon), value);
    }
}

/// What follows a beginning; absent where there is another.
std::optional<std::string> after(std::string_view text, std::string_view begin) {
    if (!text.starts_with(begin)) return std::nullopt;
    return std::string(text.substr(begin.size()));
}

}  // namespace

Graphics::Seams Graphics::Seams::ofLinux(const fs::path& root) {
    return {
        .root = root,
        .user = getuid(),
        .clock = [] { return std::chrono::steady_clock::now().time_since_epoch(); },
        .vendorLoad =
            [](const std::string& address) { return vendorLibraryLoad("libnvidia-ml.so.1", address); }};
}

std::optional<double> Graphics::read() {
    std::optional<double> busiest;
    std::optional<Uses> uses;
    const auto now = seams_.clock();
    // The mean of hours that nobody looked at is not the load of now.
    constexpr std::chrono::minutes longest{10};
    if (readAt_ && now - *readAt_ > longest) readAt_.reset();
    for (const fs::path& card : entriesOf(seams_.root / "sys/class/drm")) {
        const fs::path device = card / "device";
        if (!isCard(card.filename().string()) || isAsleep(device)) continue;
        const std::string driver = nameOfLink(device / "driver").value_or("");
        const std::string address = nameOfLink(device).value_or("");
        std::optional<double> load;
        if (driver == "nvidia") {
            load = seams_.vendorLoad(address);
        } else if (const auto percent = system::kernelInteger(device / "gpu_busy_percent")) {
            load = static_cast<double>(*percent) / 100;
        } else {
            // One walk through the programs serves all cards.
            if (!uses) uses = readUses();
            if (readAt_) load = loadOf(address, *uses, static_cast<double>((now - *readAt_).count()));
        }
        if (load) busiest = std::max(busiest.value_or(0), std::clamp(*load, 0.0, 1.0));
    }
    readAt_ = uses ? std::optional(now) : std::nullopt;
    before_ = uses ? *std::move(uses) : Uses();
    return busiest;
}

Graphics::Uses Graphics::readUses() const {
    Uses uses;
    for (const fs::path& process : entriesOf(seams_.root / "proc")) {
        struct stat status {};
        if (!isNumber(process.filename().string()) || stat(process.c_str(), &status) != 0 ||
            status.st_uid != seams_.user)
            continue;
        for (const fs::path& file : entriesOf(process / "fd")) {
            std::error_code error;
            if (fs::read_symlink(file, error).string().starts_with("/dev/dri/"))
                addUses(uses, process / "fdinfo" / file.filename());
        }
    }
    return uses;
}

void Graphics::addUses(Uses& uses, const fs::path& information) const {
    const std::string text = readFile(information).value_or("");
    std::string address, client;
    eachLine(text, [&](std::string_view key, std::string_view value) {
        if (key == "drm-pdev") address = value;
        if (key == "drm-client-id") client = value;
    });
    if (client.empty()) return;
    // Several descriptors of one client tell the same.
    auto& engines = uses[address][client];
    eachLine(text, [&](std::string_view key, std::string_view value) {
        const double number = leadingNumber(value).value_or(0);
        if (const auto engine = after(key, "drm-engine-capacity-"))
            engines[*engine].engines = std::max(number, 1.0);
        else if (const auto name = after(key, "drm-engine-"))
            engines[*name].used = number;
        else if (const auto counted = after(key, "drm-cycles-"))
            engines[*counted].used = number;
        else if (const auto all = after(key, "drm-total-cycles-"))
            engines[*all].total = number;
    });
}

std::optional<double> Graphics::loadOf(
    const std::string& address, const Uses& now, double nanoseconds) const {
    const auto found = now.find(address);
    if (found == now.end() || !(nanoseconds > 0)) return std::nullopt;
    const auto before = before_.find(address);
    std::map<std::string, double> loads;
    for (const auto& [client, engines] : found->second)
        for (const auto& [engine, use] : engines) {
            // A program that has come since then began with nothing, but the engine's own count did not.
            Use old;
            if (before != before_.end())
                for (const auto& [other, its] : before->second)
                    if (const auto same = its.find(engine); same != its.end()) {
                        old.total = same->second.total;
                        if (other == client) old.used = same->second.used;
                    }
            if (use.total && !old.total) continue;
            const double time = use.total ? *use.total - old.total.value_or(0) : nanoseconds;
            if (time > 0) loads[engine] += std::max(use.used - old.used, 0.0) / time / use.engines;
        }
    double busiest = 0;
    for (const auto& [engine, load] : loads) busiest = std::max(busiest, load);
    return busiest;
}

}  // namespace zelto::sources
