#pragma once

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "host/WidgetHost.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "ui/Building.hpp"

namespace zelto::host {

/// A host whose clock, extension and display are the test's.
struct Hosted : testing::Test, HostObserver {
    struct Asked {
        std::vector<widgetkit::Request> requests;
        std::function<void(Outcomes)> completion;
    };

    test::TemporaryFolder folder;
    Date now{800'000'000};
    texts::Environment environment{"pt_BR", "America/Sao_Paulo"};
    std::deque<Asked> asked;
    std::optional<Date> wakeAt;
    std::vector<std::string> log, seen, pictureTroubles, layoutTroubles, removals;
    std::vector<DesktopSettings> settings;
    std::map<std::string, ArrangedWidget> standing;
    decltype(HostSeams::onDisk) onDisk = [](const auto& work, const auto& then) { then(work()); };
    std::vector<widgetkit::WidgetDescription> offers_ = offered();
    std::optional<double> refresh;
    bool isSeen_ = true;
    std::unique_ptr<WidgetHost> host;

    void SetUp() override { make(); }
    void make() {
        standing.clear();
        const auto note = [this](runloop::LogLevel, const std::string& line) { log.push_back(line); };
        host = std::make_unique<WidgetHost>(
            HostSeams{
                .now = [this] { return now; },
                .environment = [this] { return environment; },
                .ask =
                    [this](
                        std::vector<widgetkit::Request> requests, std::function<void(Outcomes)> completion) {
                        asked.push_back({std::move(requests), std::move(completion)});
                    },
                .wakeAt = [this](std::optional<Date> instant) { wakeAt = instant; },
                .log = note,
                .onDisk = onDisk,
                .refresh = [this] { return refresh; }},
            DesktopLayoutStore(folder.path() / "config"),
            EntryStore(folder.path() / "cache"),
            *this);
        host->setMonitors({{"DP-1", 4, 8}});
    }

    /// Sees what has changed since the last time.
    void arranged(const std::vector<ArrangedWidget>& widgets) override {
        std::map<std::string, ArrangedWidget> latest;
        for (const ArrangedWidget& each : widgets) {
            latest.emplace(each.widget.id, each);
            const auto before = standing.find(each.widget.id);
            if (before == standing.end() || before->second != each)
                see("placed " + each.widget.kind + " " + std::to_string(each.slot.cell.column) + "," +
                    std::to_string(each.slot.cell.row));
        }
        for (const auto& [id, before] : std::exchange(standing, latest))
            if (!latest.contains(id)) see("removed");
    }
    void shows(const PlacedWidget& widget, const widgetkit::ArchivedEntry& entry) override {
        see(widget.kind + " shows " + std::get<ui::node::Text>(entry.view.node).text);
    }
    void offers(const std::vector<widgetkit::WidgetDescription>& widgets) override {
        see("offers " + std::to_string(widgets.size()));
    }
    void seenChanged(bool isSeen) override { isSeen_ = isSeen; }
    void troubled(const PlacedWidget& widget, const std::optional<PictureTrouble>& trouble) override {
        const char* names[] = {"is not offered", "has no answer", "is old"};
        pictureTroubles.push_back(
            widget.kind + " " + (trouble ? names[static_cast<int>(trouble->kind)] : "is well"));
    }
    void troubled(const LayoutTrouble& trouble) override {
        const char* names[] = {"broken", "not saved: ", "no room"};
        layoutTroubles.push_back(names[static_cast<int>(trouble.kind)] + trouble.reason);
    }
    void removed(const PlacedWidget& widget) override { removals.push_back(widget.id); }
    void settingsChanged(const DesktopSettings& changed) override { settings.push_back(changed); }
    void see(const std::string& what) { seen.push_back(what); }
    std::vector<std::string> takeSeen() { return std::exchange(seen, {}); }

    static CheckedReply checked(const widgetkit::Reply& reply) {
        return {reply, widgetkit::encodeReply(reply).value()};
    }
    static Outcomes only(std::size_t place, const widgetkit::Reply& reply) {
        Outcomes outcomes;
        outcomes.emplace(place, checked(reply));
        return outcomes;
    }
    /// Answers the oldest open question with timelines that show `text`, or with the widgets on offer.
    void answer(const std::string& text) {
        Asked open = std::move(asked.front());
        asked.pop_front();
        Outcomes outcomes;
        for (const widgetkit::Request& request : open.requests) {
            widgetkit::Reply reply{};
            if (request.request == widgetkit::RequestKind::bundle)
                reply.widgets = offers_;
            else if (request.request == widgetkit::RequestKind::snapshot)
                reply.entry = widgetkit::ArchivedEntry{now, ui::Text(text)};
            else
                reply.timeline = widgetkit::ArchivedTimeline{{{now, ui::Text(text)}}, now + 300};
            outcomes.emplace(outcomes.size(), checked(reply));
        }
        open.completion(std::move(outcomes));
    }
    void fail(const std::string& error) {
        Asked open = std::move(asked.front());
        asked.pop_front();
        Outcomes outcomes;
        for (std::size_t i = 0; i < open.requests.size(); ++i) outcomes.emplace(i, NoReply{error});
        open.completion(std::move(outcomes));
    }
    static std::vector<widgetkit::WidgetDescription> offered() {
        using enum widgetkit::WidgetFamily;
        return {
            {"Battery", "Bateria", "", {systemSmall, systemMedium}},
            {"Clock", "Relógio", "", {systemSmall, systemMedium, systemLarge}}};
    }
    /// Started, with the widgets on offer known.
    void start() {
        host->start();
        answer("");
        seen.clear();
    }
    std::string add(const std::string& kind, widgetkit::WidgetFamily family, std::optional<Cell> cell = {}) {
        return host->add(kind, family, {.cell = cell}).value();
    }
};

using Seen = std::vector<std::string>;

/// Why something was not done; empty when it was.
template <class T>
std::string refusal(const Result<T>& done) {
    return done ? "" : done.fault().text();
}

}  // namespace zelto::host
