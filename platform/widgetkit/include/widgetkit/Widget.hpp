#pragma once

#include <concepts>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "widgetkit/Messages.hpp"
#include "widgetkit/Timeline.hpp"

namespace zelto::widgetkit {

/// A widget as the host's requests meet it: its description, and three operations whose entries carry
/// finished views.
class WidgetConfiguration {
  public:
    template <class T>
    using Operation = std::function<T(const TimelineProviderContext&, const EnvironmentValues&)>;

    WidgetConfiguration(
        std::string kind, Operation<ArchivedEntry> makePlaceholder, Operation<ArchivedEntry> makeSnapshot,
        Operation<ArchivedTimeline> makeTimeline)
        : placeholder(std::move(makePlaceholder)),
          snapshot(std::move(makeSnapshot)),
          timeline(std::move(makeTimeline)) {
        info_.kind = std::move(kind);
    }

    [[nodiscard]] WidgetConfiguration configurationDisplayName(std::string name) && {
        info_.displayName = std::move(name);
        return std::move(*this);
    }
    [[nodiscard]] WidgetConfiguration description(std::string text) && {
        info_.description = std::move(text);
        return std::move(*this);
    }
    [[nodiscard]] WidgetConfiguration supportedFamilies(std::vector<WidgetFamily> families) && {
        info_.families = std::move(families);
        return std::move(*this);
    }

    const WidgetDescription& info() const { return info_; }

    Operation<ArchivedEntry> placeholder;
    Operation<ArchivedEntry> snapshot;
    Operation<ArchivedTimeline> timeline;

  private:
    WidgetDescription info_;
};

/// A configuration without settings of the user's: entries come from `provider`, views from `content`, which
/// is called with one entry and what surrounds the view.
template <TimelineProvider Provider, class Content>
requires std::invocable<const Content&, const typename Provider::Entry&, const EnvironmentValues&>
    WidgetConfiguration StaticConfiguration(std::string kind, Provider provider, Content content) {
    using Entry = typename Provider::Entry;
    const auto archive = [content](const Entry& entry, const EnvironmentValues& environment) {
        return ArchivedEntry{entry.date, content(entry, environment)};
    };
    return WidgetConfiguration(
        std::move(kind),
        [provider, archive](const TimelineProviderContext& context, const EnvironmentValues& environment) {
            return archive(provider.placeholder(context), environment);
        },
        [provider, archive](const TimelineProviderContext& context, const EnvironmentValues& environment) {
            ArchivedEntry out = records::blank<ArchivedEntry>();
            provider.getSnapshot(context, [&](const Entry& entry) { out = archive(entry, environment); });
            return out;
        },
        [provider, archive](const TimelineProviderContext& context, const EnvironmentValues& environment) {
            ArchivedTimeline out;
            provider.getTimeline(context, [&](const Timeline<Entry>& timeline) {
                out.entries.reserve(timeline.entries.size());
                for (const Entry& entry : timeline.entries)
                    out.entries.push_back(archive(entry, environment));
                out.reloadAfter = timeline.policy.instant;
            });
            return out;
        });
}

/// A type that configures one widget, whose entries are made of some sources.
template <class W, class Sources>
concept Widget = requires(const W& widget, const Sources& sources) {
    { widget.body(sources) } -> std::same_as<WidgetConfiguration>;
};

/// A type that lists widgets in gallery order.
template <class B>
concept WidgetBundle = requires(const B& bundle) {
    { bundle.body() } -> std::same_as<std::vector<WidgetConfiguration>>;
};

}  // namespace zelto::widgetkit
