#pragma once

#include <concepts>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "foundation/Date.hpp"
#include "texts/Formatting.hpp"
#include "ui/Nodes.hpp"
#include "widgetkit/WidgetFamily.hpp"

namespace zelto::widgetkit {

/// What surrounds a view while it is built.
struct EnvironmentValues {
    WidgetFamily family;
    const texts::Formatting& formatting;
    /// The current instant, for the few rules that speak of it rather than of an entry's date.
    std::function<Date()> now;
    /// The middle of an image file, as a small square; absent for whatever is no sound image, or does not
    /// come in time for the answer.
    std::function<std::optional<ui::node::Image>(const std::string& path)> thumbnail = {};
};

/// What a host says when it asks a provider.
struct TimelineProviderContext {
    WidgetFamily family;
    /// The entry is for the widget gallery.
    bool isPreview;
};

/// What a provider hands out: something with the date at which it is shown.
template <class T>
concept TimelineEntry = requires(const T& entry) {
    { entry.date } -> std::convertible_to<Date>;
};

/// When a host may ask for the next timeline.
struct TimelineReloadPolicy {
    Date instant;

    /// At or after `instant`.
    static TimelineReloadPolicy after(Date instant) { return {instant}; }
};

template <TimelineEntry Entry>
struct Timeline {
    std::vector<Entry> entries;
    TimelineReloadPolicy policy;
};

/// A type that makes entries. The two `get` operations call their completion exactly once, before they
/// return.
template <class P>
concept TimelineProvider = requires(
    const P& provider, const TimelineProviderContext& context,
    std::function<void(typename P::Entry)> takesEntry,
    std::function<void(Timeline<typename P::Entry>)> takesTimeline) {
    requires TimelineEntry<typename P::Entry>;
    { provider.placeholder(context) } -> std::same_as<typename P::Entry>;
    { provider.getSnapshot(context, takesEntry) } -> std::same_as<void>;
    { provider.getTimeline(context, takesTimeline) } -> std::same_as<void>;
};

}  // namespace zelto::widgetkit
