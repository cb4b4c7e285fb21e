// Every widget in every family and state, as outlines under tests/goldens/.

#include <filesystem>
#include <set>

#include <gtest/gtest.h>

#include "tests/support/Golden.hpp"
#include "tests/support/Looks.hpp"

namespace zelto::test {

using namespace records;
using namespace shared;
using namespace widget;
using namespace widgetkit;
namespace {

/// The sample with fixed identifiers and everything that it leaves out.
WidgetSnapshot fullSnapshot() {
    WidgetSnapshot s = WidgetSnapshot::sample(wednesday);
    s.battery->minutesRemaining = 135;
    s.disk =
        WidgetSnapshot::Disk{.name = "Macintosh HD", .total = 994'662'584'320, .available = 245'300'000'000};
    for (std::size_t i = 0; i < s.clips.size(); ++i)
        s.clips[i].id.bytes[15] = static_cast<std::uint8_t>(i + 1);
    for (auto& clip : s.clips) std::fill_n(clip.id.bytes.begin(), 15, std::uint8_t{0xAB});
    s.clips[0].pinned = true;
    return s;
}

/// The widgets' states, by name.
std::vector<std::pair<std::string, Look>> states() {
    Look full{.snapshot = fullSnapshot()}, none, stale = full, bare = full;
    stale.date = wednesday + 900;
    stale.now = stale.date;
    bare.live = {
        .battery = {},
        .charging = false,
        .cpu = 0.85,
        .memory = 0.678,
        .disk = 0,
        .diskFree = 0,
        .diskTotal = 0};
    bare.snapshot = WidgetSnapshot{};
    bare.snapshot->date = wednesday;
    bare.snapshot->calendarAccess = true;
    return {{"full", full}, {"none", none}, {"stale", stale}, {"bare", bare}};
}

TEST(WidgetLooks, AreThoseOfTheOutlines) {
    int looks = 0;
    for (const auto& [state, look] : states())
        for (const auto& widget : ZeltoWidgetBundle{}.body())
            for (const WidgetFamily family : widget.info().families) {
                const std::string name = widget.info().kind + "-" + std::string(nameOf(family)) + "-" + state;
                EXPECT_TRUE(matchesGolden(name, outlineOf(widget.info().kind, family, look)));
                ++looks;
            }
    EXPECT_GE(looks, 4 * 11);
}

void collectSymbols(const ui::View& view, std::set<std::string>& names) {
    if (const auto* symbol = std::get_if<ui::node::Symbol>(&view.node)) names.insert(symbol->name);
    if (const ui::Views* children = ui::childrenOf(view.node))
        for (const ui::View& child : *children) collectSymbols(child, names);
}

TEST(WidgetLooks, NameSymbolsThatThereAre) {
    std::set<std::string> names;
    for (const auto& [state, look] : states())
        for (const auto& widget : ZeltoWidgetBundle{}.body())
            for (const WidgetFamily family : widget.info().families)
                collectSymbols(view(widget.info().kind, family, look), names);
    EXPECT_GT(names.size(), 15U);
    for (const std::string& name : names)
        EXPECT_TRUE(std::filesystem::exists(
            std::filesystem::path(ZELTO_TESTS_FOLDER).parent_path() / "platform/drawing/symbols" /
            (name + ".svg")))
            << name;
}

TEST(WidgetLooks, KeepToWhatAHostAccepts) {
    for (const auto& [state, look] : states())
        for (const auto& widget : ZeltoWidgetBundle{}.body())
            for (const WidgetFamily family : widget.info().families) {
                const auto checked = check(view(widget.info().kind, family, look));
                EXPECT_TRUE(checked) << widget.info().kind << state << ": " << checked.fault().text();
            }
}

}  // namespace
}  // namespace zelto::test
