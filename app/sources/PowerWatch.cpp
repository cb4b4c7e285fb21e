#include "sources/PowerWatch.hpp"

#include <algorithm>

namespace zelto::sources {
namespace {

constexpr const char* service = "org.freedesktop.UPower";
constexpr const char* object = "/org/freedesktop/UPower";
constexpr const char* properties = "org.freedesktop.DBus.Properties";
constexpr const char* device = "org.freedesktop.UPower.Device";

/// More devices than any machine has; a daemon that tells of more is not well.
constexpr std::size_t mostDevices = 64;

}  // namespace

PowerWatch::PowerWatch(bus::Client& systemBus, std::function<void()> changed)
    : bus_(systemBus), changed_(std::move(changed)) {
    const auto took = [this](const bus::Signal& signal) { this->took(signal); };
    subscriptions_.push_back(bus_.follow({service, "", properties, "PropertiesChanged"}, took));
    subscriptions_.push_back(bus_.follow({service, object, service, ""}, took));
    subscriptions_.push_back(bus_.watch(service, [this](bool isThere) { daemonChanged(isThere); }));
}

void PowerWatch::daemonChanged(bool isThere) {
    const bool wasKnown = reading().has_value();
    isThere_ = isThere;
    devices_.reset();
    isOnBattery_.reset();
    ++round_;
    if (isThere)
        enumerate();
    else if (wasKnown)
        changed_();
}

void PowerWatch::enumerate() {
    bus_.call(
        {service, object, properties, "Get"},
        "(ss)",
        {service, "OnBattery"},
        [this, round = round_](const bus::Result<bus::Data>& results) {
            if (round != round_ || !results) return;
            isOnBattery_ = results.value()[0].flag();
            if (reading()) changed_();
        });
    bus_.call(
        {service, object, service, "EnumerateDevices"},
        "()",
        {},
        [this, round = round_](const bus::Result<bus::Data>& results) {
            if (round != round_ || !results) return;
            devices_.emplace();
            for (const bus::Data& path : results.value()[0].list())
                if (const auto text = path.text(); text && devices_->size() < mostDevices) ask(*text);
            if (devices_->empty() && reading()) changed_();
        });
}

void PowerWatch::ask(const std::string& path) {
    devices_->try_emplace(path);
    bus_.call(
        {service, path, properties, "GetAll"},
        "(s)",
        {device},
        [this, path, round = round_](const bus::Result<bus::Data>& results) {
            if (round != round_ || !devices_->contains(path)) return;
            // One that went away in between tells nothing; one that is slow is asked again when it says
            // something.
            if (results)
                devices_->at(path) = results.value()[0].map();
            else if (results.fault().kind == bus::ErrorKind::refused)
                devices_->erase(path);
            if (reading()) changed_();
        });
}

void PowerWatch::took(const bus::Signal& signal) {
    if (!isThere_ || !devices_) return;
    const bus::Data& arguments = signal.arguments;
    if (signal.name == "PropertiesChanged" && signal.path == object) {
        if (const auto flag = arguments[1]["OnBattery"].flag()) isOnBattery_ = flag;
    } else if (signal.name == "PropertiesChanged") {
        const auto found = devices_->find(signal.path);
        if (found == devices_->end()) return;
        if (found->second.empty()) {
            ask(signal.path);
            return;
        }
        for (const auto& [name, value] : arguments[1].map()) found->second.insert_or_assign(name, value);
    } else if (const auto path = arguments[0].text(); path && signal.name == "DeviceAdded") {
        if (devices_->size() < mostDevices) ask(*path);
        return;
    } else if (path && signal.name == "DeviceRemoved") {
        devices_->erase(*path);
    } else {
        return;
    }
    if (reading()) changed_();
}

std::optional<PowerReading> PowerWatch::reading() const {
    if (!isThere_ || !devices_ || !isOnBattery_) return std::nullopt;
    PowerReading reading{.isPluggedIn = !*isOnBattery_};
    for (const auto& [path, told] : *devices_) {
        if (told.empty()) return std::nullopt;
        if (auto pack = packOf(bus::Data(told))) reading.packs.push_back(*std::move(pack));
    }
    std::ranges::sort(reading.packs, {}, &Pack::name);
    return reading;
}

}  // namespace zelto::sources
