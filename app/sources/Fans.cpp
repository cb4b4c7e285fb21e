#include "sources/Fans.hpp"

#include <algorithm>

#include <system_error>

#include "Devices.hpp"
#include "system/KernelValues.hpp"

namespace zelto::sources {
namespace {

namespace fs = std::filesystem;
using system::kernelInteger;

/// Faster than any fan turns; a broken sensor counts 65535.
constexpr std::int64_t fastest = 60'000;

std::optional<double> speed(const fs::path& file) {
    const auto value = kernelInteger(file);
    if (!value || *value < 0 || *value > fastest) return std::nullopt;
    return static_cast<double>(*value);
}

/// "fan1" of "fan1_input"; empty where it is something else.
std::string fanOf(const std::string& file) {
    constexpr std::string_view begin = "fan", end = "_input";
    const bool isOne =
        file.starts_with(begin) && file.ends_with(end) && file.size() > begin.size() + end.size();
    return isOne ? file.substr(0, file.size() - end.size()) : std::string();
}

}  // namespace

std::vector<FanReading> readFans(const fs::path& root) {
    std::vector<FanReading> readings;
    for (const fs::path& chip : system::entriesOf(root / "sys/class/hwmon")) {
        if (isAsleep(chip / "device")) continue;
        for (const fs::path& file : system::entriesOf(chip)) {
            const std::string fan = fanOf(file.filename().string());
            const auto actual = fan.empty() ? std::nullopt : speed(file);
            if (!actual) continue;
            // A minimum without a maximum is where an alarm goes off.
            const auto maximum = speed(chip / (fan + "_max"));
            const auto minimum = maximum ? speed(chip / (fan + "_min")) : std::nullopt;
            readings.push_back(
                {.key = system::kernelLine(chip / "name").value_or("") + "/" +
                        nameOfLink(chip / "device").value_or("") + "/" + fan,
                 .actual = *actual,
                 .minimum = minimum,
                 .maximum = maximum,
                 .manual = kernelInteger(chip / ("pwm" + fan.substr(3) + "_enable")) == 1});
        }
    }
    std::ranges::sort(readings, {}, &FanReading::key);
    return readings;
}

std::vector<shared::WidgetSnapshot::Fan> FanMemory::fans(const std::vector<FanReading>& readings) {
    std::vector<shared::WidgetSnapshot::Fan> fans;
    for (const FanReading& each : readings) {
        double& highest = highest_[each.key];
        highest = std::max(highest, each.actual);
        if (highest <= 0) continue;
        const bool hasLimits = each.maximum && *each.maximum > each.minimum.value_or(0);
        fans.push_back(
            {.actual = each.actual,
             .minimum = hasLimits ? each.minimum.value_or(0) : 0,
             .maximum = hasLimits ? *each.maximum : std::max(highest, usualMaximum),
             .manual = each.manual});
    }
    return fans;
}

}  // namespace zelto::sources
