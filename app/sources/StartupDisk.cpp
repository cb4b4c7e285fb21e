#include "sources/StartupDisk.hpp"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>

#include <system_error>

#include "Devices.hpp"
#include "foundation/Files.hpp"
#include "foundation/UTF8.hpp"
#include "system/KernelValues.hpp"

namespace zelto::sources {
namespace {

namespace fs = std::filesystem;

/// The word at `index` of a line.
std::string_view wordAt(std::string_view line, int index) {
    for (; index > 0 && !line.empty(); --index)
        line.remove_prefix(std::min(std::min(line.find(' '), line.size()) + 1, line.size()));
    return line.substr(0, line.find(' '));
}

/// "sda2" or "dm-0": what the kernel calls the block device of the volume that is mounted at "/". Absent for
/// those that have none, such as a container's.
std::optional<std::string> rootDevice(const fs::path& root) {
    const std::string mounts = readFile(root / "proc/self/mountinfo").value_or("");
    std::optional<std::string> device;
    for (std::string_view rest = mounts; !rest.empty();) {
        const std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(std::min(line.size() + 1, rest.size()));
        if (wordAt(line, 4) != "/") continue;
        // Behind " - ": the type, and the source, which some name where the number is not a device's.
        const auto separator = line.find(" - ");
        const fs::path source =
            separator == std::string_view::npos ? "" : wordAt(line.substr(separator + 3), 1);
        std::error_code error;
        const fs::path number = root / "sys/dev/block" / wordAt(line, 2);
        if (auto name = nameOfLink(number))
            device = std::move(name);
        else if (source.string().starts_with("/dev/"))
            device = nameOfLink(root / source.relative_path()).value_or(source.filename().string());
    }
    return device;
}

/// The device manager writes what a file name may not hold as \x20.
std::string unescaped(std::string_view name) {
    std::string out;
    for (std::size_t i = 0; i < name.size(); ++i) {
        unsigned value = 0;
        const std::string_view digits = name.substr(i).starts_with("\\x") ? name.substr(i + 2, 2) : "";
        if (digits.size() == 2 &&
            std::from_chars(digits.data(), digits.data() + 2, value, 16).ptr == digits.data() + 2) {
            out += static_cast<char>(value);
            i += 3;
        } else {
            out += name[i];
        }
    }
    return out;
}

std::optional<std::string> labelOf(const fs::path& root, const std::string& device) {
    for (const fs::path& label : system::entriesOf(root / "dev/disk/by-label"))
        if (nameOfLink(label) == device) return unescaped(label.filename().string());
    return std::nullopt;
}

std::optional<std::string> modelOf(const fs::path& root, const std::string& device) {
    std::error_code error;
    // A partition lies in its drive's folder.
    const fs::path folder = fs::canonical(root / "sys/class/block" / device, error);
    if (error) return std::nullopt;
    for (const fs::path& drive : {folder, folder.parent_path()})
        if (auto model = system::kernelLine(drive / "device/model")) {
            model->erase(model->find_last_not_of(" \t") + 1);
            return model;
        }
    // What is encrypted or put together lies on others.
    const auto below = system::entriesOf(folder / "slaves");
    return below.empty() ? std::nullopt : modelOf(root, below.front().filename().string());
}

}  // namespace

std::optional<shared::WidgetSnapshot::Disk> readStartupDisk(
    const fs::path& root, const system::SystemReadings& readings) {
    const auto device = rootDevice(root);
    const auto volume = readings.volume("/");
    if (!device || !volume || !volume->total || !volume->availableForImportantUsage) return std::nullopt;
    auto name = labelOf(root, *device);
    if (!name || name->empty()) name = modelOf(root, *device);
    if (!name || name->empty() || validUTF8Prefix(*name) != name->size()) return std::nullopt;
    return shared::WidgetSnapshot::Disk{
        .name = *name, .total = *volume->total, .available = *volume->availableForImportantUsage};
}

}  // namespace zelto::sources
