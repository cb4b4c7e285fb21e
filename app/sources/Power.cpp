#include "sources/Power.hpp"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>

namespace zelto::sources {
namespace {

using shared::WidgetSnapshot;

/// The sum of a member that all packs have.
std::optional<double> sum(const std::vector<Pack>& packs, std::optional<double> Pack::*member) {
    double total = 0;
    for (const Pack& pack : packs) {
        if (!(pack.*member)) return std::nullopt;
        total += *(pack.*member);
    }
    return total;
}

bool isAny(const std::vector<Pack>& packs, Pack::State state) {
    return std::ranges::any_of(packs, [state](const Pack& pack) { return pack.state == state; });
}

double percentOf(const std::vector<Pack>& packs) {
    const auto energy = sum(packs, &Pack::energy), full = sum(packs, &Pack::energyFull);
    if (packs.size() > 1 && energy && full && *full > 0) return *energy / *full * 100;
    const double all = std::accumulate(
        packs.begin(), packs.end(), 0.0, [](double total, const Pack& pack) { return total + pack.percent; });
    return all / static_cast<double>(packs.size());
}

std::optional<double> healthOf(const std::vector<Pack>& packs) {
    const auto full = sum(packs, &Pack::energyFull), design = sum(packs, &Pack::energyDesign);
    if (!full || !design || *design <= 0 || *full <= 0) return std::nullopt;
    return std::min(*full / *design, 1.0);
}

/// Until all packs are empty, or full, at the rate at which they are emptied or filled now.
std::optional<std::int64_t> minutesOf(const std::vector<Pack>& packs, std::optional<double> watts) {
    std::optional<double> minutes;
    if (packs.size() == 1) {
        minutes = packs.front().minutes;
    } else if (watts && *watts > 0) {
        const auto energy = sum(packs, &Pack::energy), full = sum(packs, &Pack::energyFull);
        if (energy && full && isAny(packs, Pack::State::discharging))
            minutes = *energy / *watts * 60;
        else if (energy && full && isAny(packs, Pack::State::charging))
            minutes = std::max(*full - *energy, 0.0) / *watts * 60;
    }
    // Longer than any battery lasts: the rate is too small to tell.
    constexpr double longest = 7.0 * 24 * 60;
    if (!minutes || !(*minutes >= 1 && *minutes <= longest)) return std::nullopt;
    return static_cast<std::int64_t>(std::llround(*minutes));
}

}  // namespace

std::optional<WidgetSnapshot::Battery> batteryOf(const PowerReading& reading) {
    const auto& packs = reading.packs;
    if (packs.empty()) return std::nullopt;
    WidgetSnapshot::Battery battery;
    battery.percent = static_cast<std::int64_t>(std::llround(std::clamp(percentOf(packs), 0.0, 100.0)));
    battery.charging = isAny(packs, Pack::State::charging);
    battery.pluggedIn = reading.isPluggedIn;
    battery.health = healthOf(packs);
    std::optional<double> watts;
    for (const Pack& pack : packs) {
        if (pack.watts) watts = watts.value_or(0) + *pack.watts;
        if (pack.cycles) battery.cycles = std::max(battery.cycles.value_or(0), *pack.cycles);
        if (pack.temperature)
            battery.temperature =
                std::max(battery.temperature.value_or(*pack.temperature), *pack.temperature);
    }
    battery.watts = watts;
    battery.minutesRemaining = minutesOf(packs, watts);
    const auto limit = reading.control.limit;
    battery.limitEnabled = limit && *limit < 100;
    if (battery.limitEnabled) battery.limit = *limit;
    battery.chargingPaused =
        reading.isPluggedIn && battery.limitEnabled && !battery.charging && isAny(packs, Pack::State::held);
    battery.adapterDisabled = reading.isPluggedIn && reading.control.adapterDisabled;
    return battery;
}

std::optional<double> MinuteMean::add(Date now, std::optional<double> value) {
    if (!value) {
        values_.clear();
        return std::nullopt;
    }
    values_.emplace_back(now, *value);
    std::erase_if(values_, [now](const auto& each) { return std::abs(now - each.first) > 60; });
    return std::accumulate(
               values_.begin(),
               values_.end(),
               0.0,
               [](double total, const auto& each) { return total + each.second; }) /
           static_cast<double>(values_.size());
}

}  // namespace zelto::sources
