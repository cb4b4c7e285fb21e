#include "widget/Common/ZeltoProvider.hpp"

#include "widget/Common/LiveReader.hpp"

namespace zelto::widget {

using namespace shared;
using namespace system;
using namespace texts;
using namespace widgetkit;
namespace {

constexpr double reloadInterval = 300;  // seconds
constexpr int minuteEntries = 30;
constexpr double minute = 60;  // seconds

std::shared_ptr<const WidgetSnapshot> shared(std::optional<WidgetSnapshot> snapshot) {
    return snapshot ? std::make_shared<const WidgetSnapshot>(*std::move(snapshot)) : nullptr;
}

}  // namespace

ProviderSources ProviderSources::system() {
    return {
        .now = Date::now,
        .live = [] { return LiveReader::read(SystemReadings::ofLinux()); },
        .snapshot = [] { return WidgetSnapshot::load(); },
    };
}

LiveData placeholderLiveData() {
    return {
        .battery = 80,
        .charging = true,
        .cpu = 0.22,
        .memory = 0.55,
        .disk = 0.86,
        .diskFree = 33'000'000'000,
        .diskTotal = 245'000'000'000};
}

ZeltoEntry ZeltoProvider::placeholder(const TimelineProviderContext&) const {
    const Date now = sources.now();
    return {.date = now, .live = placeholderLiveData(), .snapshot = shared(WidgetSnapshot::sample(now))};
}

ZeltoEntry ZeltoProvider::currentEntry() const {
    // Read in this order: the date first, since the readings take half a second.
    const Date now = sources.now();
    LiveData live = sources.live();
    return {.date = now, .live = live, .snapshot = shared(sources.snapshot())};
}

void ZeltoProvider::getSnapshot(
    const TimelineProviderContext& context, const std::function<void(ZeltoEntry)>& completion) const {
    completion(context.isPreview ? placeholder(context) : currentEntry());
}

void ZeltoProvider::getTimeline(
    const TimelineProviderContext&, const std::function<void(Timeline<ZeltoEntry>)>& completion) const {
    const ZeltoEntry base = currentEntry();
    if (!minuteByMinute) {
        completion(
            {.entries = {base}, .policy = TimelineReloadPolicy::after(sources.now() + reloadInterval)});
        return;
    }
    const Date start = Formatting::startOfMinute(base.date).value_or(base.date);
    Timeline<ZeltoEntry> timeline{
        .entries = {}, .policy = TimelineReloadPolicy::after(start + minuteEntries * minute)};
    for (int i = 0; i < minuteEntries; ++i) {
        ZeltoEntry entry = base;
        entry.date = start + i * minute;
        timeline.entries.push_back(std::move(entry));
    }
    completion(std::move(timeline));
}

}  // namespace zelto::widget
