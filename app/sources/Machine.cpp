#include "sources/Machine.hpp"

#include <algorithm>
#include <cmath>

#include "sources/StartupDisk.hpp"
#include "sources/Temperature.hpp"

namespace zelto::sources {
namespace {

using shared::WidgetSnapshot;

/// Seconds; a little less than the time between two readings of everything.
constexpr double costlyPause = 295;

Change memoryChange(const system::SystemReadings& readings) {
    const auto memory = system::memoryUse(readings);
    return [memory](WidgetSnapshot& snapshot) {
        snapshot.memory = memory ? memory->fraction() : 0;
        snapshot.memoryUsed = memory ? static_cast<std::uint64_t>(memory->used) : 0;
        snapshot.memoryTotal = memory ? memory->total : 0;
    };
}

Change chipChange(const std::filesystem::path& root) {
    const auto chip = readChipTemperature(root);
    return [chip](WidgetSnapshot& snapshot) {
        snapshot.chipTemperature = chip ? std::optional(chip->celsius) : std::nullopt;
    };
}

}  // namespace

Machine::Seams Machine::Seams::ofLinux(const std::filesystem::path& root) {
    return {
        .root = root,
        .readings = system::SystemReadings::ofLinux(root),
        .graphics = Graphics::Seams::ofLinux(root)};
}

Machine::Machine(Seams seams)
    : seams_(std::move(seams)), graphics_(seams_.graphics), fanMemory_(seams_.fanSpeeds) {}

std::vector<Part> Machine::parts() {
    const auto always = [](std::function<Change()> read) {
        return [read = std::move(read)] { return read; };
    };
    return {
        {"memory",
         always([this] { return memoryChange(seams_.readings); }),
         [](WidgetSnapshot& snapshot) { snapshot.memory = 0; }},
        {"graphics",
         always([this]() -> Change {
             const auto load = graphics_.read();
             return [load](WidgetSnapshot& snapshot) { snapshot.gpu = load; };
         }),
         [](WidgetSnapshot& snapshot) { snapshot.gpu.reset(); }},
        {"temperature",
         always([this] { return chipChange(seams_.root); }),
         [](WidgetSnapshot& snapshot) { snapshot.chipTemperature.reset(); }},
        {"fans",
         [this] { return beginFans(); },
         [](WidgetSnapshot& snapshot) {
             snapshot.fans.clear();
             snapshot.fanMode.reset();
         }},
        {"disk",
         always([this]() -> Change {
             const auto disk = readStartupDisk(seams_.root, seams_.readings);
             return [disk](WidgetSnapshot& snapshot) { snapshot.disk = disk; };
         }),
         [](WidgetSnapshot& snapshot) { snapshot.disk.reset(); }},
        {"battery",
         [this] { return beginPower(); },
         [](WidgetSnapshot& snapshot) { snapshot.battery.reset(); }}};
}

void Machine::sawPower(const WidgetSnapshot::Battery& battery) {
    watts_.add(seams_.now(), battery.watts);
    minutes_.add(
        seams_.now(),
        battery.minutesRemaining ? std::optional(static_cast<double>(*battery.minutesRemaining))
                                 : std::nullopt);
}

std::function<Change()> Machine::beginFans() {
    const Date now = seams_.now();
    // Reading these stops the whole machine for a moment, whatever thread does it.
    const bool isCostly = std::ranges::any_of(
        lastFans_, [](const FanReading& each) { return each.key.starts_with("dell_smm"); });
    const bool isEarly = fansReadAt_ && now - *fansReadAt_ >= 0 && now - *fansReadAt_ < costlyPause;
    if (isCostly && isEarly) return []() -> Change { return [](WidgetSnapshot&) {}; };
    return [this, now]() -> Change {
        return [this, now, readings = readFans(seams_.root)](WidgetSnapshot& snapshot) {
            lastFans_ = readings;
            fansReadAt_ = now;
            const auto before = fanMemory_.highest();
            snapshot.fans = fanMemory_.fans(readings);
            // Nobody but the firmware and the person's own tools drives them: the widget says which of both.
            snapshot.fanMode = snapshot.fans.empty() ? std::nullopt : std::optional<std::string>("automatic");
            if (fanMemory_.highest() != before) seams_.keepFanSpeeds(fanMemory_.highest());
        };
    };
}

std::function<Change()> Machine::beginPower() {
    return [this, daemon = seams_.daemonPower()]() -> Change {
        PowerReading reading;
        if (daemon) {
            reading = *daemon;
            reading.control = readChargeControl(seams_.root);
        } else {
            reading = readPower(seams_.root);
        }
        return [this, battery = batteryOf(reading)](WidgetSnapshot& snapshot) {
            // Another direction has nothing to do with what was before.
            if (!battery || !snapshot.battery || battery->charging != snapshot.battery->charging ||
                battery->pluggedIn != snapshot.battery->pluggedIn) {
                watts_.add(seams_.now(), std::nullopt);
                minutes_.add(seams_.now(), std::nullopt);
            }
            snapshot.battery = battery;
            if (!battery) return;
            snapshot.battery->watts = watts_.add(seams_.now(), battery->watts);
            const auto minutes = minutes_.add(
                seams_.now(),
                battery->minutesRemaining ? std::optional(static_cast<double>(*battery->minutesRemaining))
                                          : std::nullopt);
            snapshot.battery->minutesRemaining =
                minutes ? std::optional<std::int64_t>(std::llround(*minutes)) : std::nullopt;
        };
    };
}

}  // namespace zelto::sources
