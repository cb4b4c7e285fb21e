#include "agent/HostWatch.hpp"

namespace zelto::agent {
namespace {

constexpr const char* host = "com.kavra.zelto.desktop";
constexpr const char* object = "/com/kavra/zelto/desktop";
constexpr const char* properties = "org.freedesktop.DBus.Properties";

}  // namespace

HostWatch::HostWatch(bus::Client& sessionBus, std::function<void()> changed)
    : bus_(sessionBus), changed_(std::move(changed)) {
    subscriptions_.push_back(
        bus_.follow({host, object, properties, "PropertiesChanged"}, [this](const bus::Signal& signal) {
            if (isThere_ && isKnown_) took(signal.arguments[1].map());
        }));
    subscriptions_.push_back(bus_.watch(host, [this](bool isThere) {
        isThere_ = isThere;
        isSeen_ = true;
        watchesFiles_ = isKnown_ = false;
        if (!isThere) {
            changed_();
            return;
        }
        bus_.call(
            {host, object, properties, "GetAll"}, "(s)", {host}, [this](const bus::Result<bus::Data>& all) {
                if (!isThere_) return;
                isKnown_ = true;
                took(all ? all.value()[0].map() : bus::Data::Map());
            });
    }));
}

void HostWatch::took(const bus::Data::Map& told) {
    const bus::Data all(told);
    isSeen_ = all["seen"].flag().value_or(isSeen_);
    watchesFiles_ = all["watchesFiles"].flag().value_or(watchesFiles_);
    changed_();
}

void HostWatch::tell() {
    if (!isThere_ || !isKnown_ || watchesFiles_) return;
    bus_.call({host, object, host, "reload"}, "(s)", {""}, [](const auto&) {});
}

}  // namespace zelto::agent
