// What assistive technology finds of the running widgets.

#include <algorithm>

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"
#include "ui/Reading.hpp"

namespace zelto::test {

using namespace records;
using namespace widgetkit;
namespace {

struct Accessibility : testing::Test {
    std::unique_ptr<Display> display = startX11();
    RunningDesktop desktop{*display, true};

    // Where it highlights nothing.
    Accessibility() { display->move(Display::width - 2, Display::height - 2); }

    std::string tree() const {
        return run({programFolder() / "accessible-tree", "zelto-desktop"}, "", desktop.environment()).output;
    }
};

/// The lines of a widget's group: the one with its name and those that are deeper.
std::string groupOf(const std::string& tree, const std::string& name) {
    const std::string head = "grouping \"" + name + "\"";
    const auto at = tree.find(head);
    if (at == std::string::npos) return {};
    const auto begin = tree.rfind('\n', at) + 1;
    const std::string deeper(at - begin + 1, ' ');
    auto end = tree.find('\n', at);
    while (end != std::string::npos && tree.compare(end + 1, deeper.size(), deeper) == 0)
        end = tree.find('\n', end + 1);
    return tree.substr(begin, end - begin) + "\n";
}

TEST_F(Accessibility, FindsEveryWidgetItsLinksAndItsText) {
    desktop.place(eleven());
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    const auto gallery = desktop.zelto({"gallery", "--json"});
    const auto all = decodeJSON<std::vector<WidgetDescription>>(gallery.output).value();
    ASSERT_TRUE(eventually([&] {
        const std::string found = tree();
        return std::ranges::all_of(
            all, [&](const auto& each) { return groupOf(found, each.displayName) != ""; });
    })) << tree();
    const std::string found = tree();
    for (const auto& each : eleven()) {
        const auto description = std::ranges::find(all, each.kind, &WidgetDescription::kind);
        const std::string group = groupOf(found, description->displayName);
        const auto displayList = desktop.displayList(each);
        EXPECT_NE(group.find("link \"" + description->displayName + "\""), std::string::npos) << group;
        for (const auto& link : displayList.links)
            EXPECT_NE(
                group.find("link \"" + (link.name.empty() ? description->displayName : link.name) + "\""),
                std::string::npos)
                << link.name << " in " << group;
        // A countdown's seconds pass while we look.
        for (const std::string& text : ui::readingTexts(desktop.entry(each)->view, Date::now()))
            EXPECT_TRUE(text.find(':') != std::string::npos || group.find(text) != std::string::npos)
                << text << " in " << group;
    }
}

TEST_F(Accessibility, TheTextFollowsWhatIsShown) {
    desktop.place({widget("ZeltoFans", WidgetFamily::systemSmall, 0, 0)});
    desktop.start();
    ASSERT_TRUE(eventually([&] { return tree().find(", 2400 rpm,") != std::string::npos; })) << tree();
    // The app writes a new snapshot and says so.
    const auto file = desktop.folder() / "Library/Application Support/Zelto/widget.json";
    auto text = readFile(file).value();
    const auto at = text.find("\"actual\":2400");
    ASSERT_NE(at, std::string::npos);
    text.replace(at, 13, "\"actual\":3111");
    ASSERT_TRUE(writeFileAtomically(file, text));
    EXPECT_EQ(desktop.zelto({"reload", "ZeltoFans"}).status, 0);
    EXPECT_TRUE(eventually([&] { return tree().find(", 3111 rpm,") != std::string::npos; })) << tree();
}

TEST_F(Accessibility, ACountdownIsReadAsItStands) {
    desktop.place({widget("ZeltoAwake", WidgetFamily::systemSmall, 0, 0)});
    desktop.start();
    const auto timeLeft = [this] {
        const std::string found = tree();
        const auto at = found.find("termina em ");
        return at == std::string::npos ? "" : found.substr(at, found.find_first_of(",\"\n", at) - at);
    };
    std::string first;
    ASSERT_TRUE(eventually([&] { return !(first = timeLeft()).empty(); })) << tree();
    EXPECT_TRUE(eventually([&] {
        const std::string next = timeLeft();
        return !next.empty() && next != first;
    })) << first;
}

}  // namespace
}  // namespace zelto::test
