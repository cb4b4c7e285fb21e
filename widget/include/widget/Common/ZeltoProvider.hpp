#pragma once

#include <functional>
#include <optional>

#include "widget/Common/ZeltoEntry.hpp"
#include "widgetkit/Timeline.hpp"

namespace zelto::widget {

/// Where the provider's values come from.
struct ProviderSources {
    std::function<Date()> now;
    /// Blocks for about half a second.
    std::function<LiveData()> live;
    std::function<std::optional<shared::WidgetSnapshot>()> snapshot;

    /// The clock, this machine and the user's snapshot file.
    static ProviderSources system();
};

/// Live readings for wherever sample content is shown.
LiveData placeholderLiveData();

/// The one timeline provider of all widgets.
struct ZeltoProvider {
    using Entry = ZeltoEntry;

    /// Thirty entries a minute apart instead of one that is refreshed every five minutes.
    bool minuteByMinute = false;
    ProviderSources sources;

    ZeltoEntry placeholder(const widgetkit::TimelineProviderContext& context) const;
    void getSnapshot(
        const widgetkit::TimelineProviderContext& context,
        const std::function<void(ZeltoEntry)>& completion) const;
    void getTimeline(
        const widgetkit::TimelineProviderContext& context,
        const std::function<void(widgetkit::Timeline<ZeltoEntry>)>& completion) const;

  private:
    ZeltoEntry currentEntry() const;
};

}  // namespace zelto::widget
