// zelto timeline, as a process.

#include <gtest/gtest.h>

#include "foundation/ISO8601.hpp"
#include "records/JSONDecoder.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/Snapshots.hpp"
#include "tests/support/Trees.hpp"
#include "tests/support/ZeltoProcess.hpp"
#include "ui/Outline.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::test {

using namespace records;
using namespace widgetkit;
namespace {

TEST_F(ZeltoProcess, TimelinePrintsDatesAndTheFirstTree) {
    const auto result = zelto({"timeline", "overview", "--family", "medium", "--home", folder.path()});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.output.starts_with("entry 20")) << result.output;
    EXPECT_NE(result.output.find("\nreload after 20"), std::string::npos);
    EXPECT_NE(
        result.output.find("\n\nVStack alignment=center spacing=8 .widgetURL(\"zelto://open?tab=home\")"),
        std::string::npos);
    const auto clock =
        zelto({"timeline", "worldClock", "--family", "small", "--json", "--home", folder.path()});
    const auto timeline = decodeJSON<ArchivedTimeline>(clock.output);
    ASSERT_TRUE(timeline) << clock.errors;
    EXPECT_EQ(timeline->entries.size(), 30U);
}

TEST_F(ZeltoProcess, ThirtyWorldClockEntriesCrossADaylightSavingChange) {
    folder.write("Library/Application Support/Zelto/widget.json", [] {
        std::string document = leastDocument();
        const std::string zones = "\"clockZones\":[]";
        return document.replace(
            document.find(zones), zones.size(), R"("clockZones":["Asia/Kathmandu","America/Sao_Paulo"])");
    }());
    // Fifteen minutes before Lisbon's clocks go forward, one second short of a minute.
    const std::vector<std::string> command{
        programFolder() / "zelto",
        "timeline",
        "worldClock",
        "--family",
        "medium",
        "--json",
        "--home",
        folder.path(),
        "--now",
        "2026-03-29T00:45:59Z"};
    const auto result = run(command, "", {"PATH=/usr/bin", "LC_ALL=pt_PT.UTF-8", "TZ=Europe/Lisbon"});
    const auto timeline = decodeJSON<ArchivedTimeline>(result.output);
    ASSERT_TRUE(timeline) << result.errors;
    ASSERT_EQ(timeline->entries.size(), 30U);
    const Date start = *parseISO8601("2026-03-29T00:45:00Z");
    EXPECT_EQ(timeline->reloadAfter, start + 1800);
    for (int i = 0; i < 30; ++i) {
        const auto& entry = timeline->entries[static_cast<std::size_t>(i)];
        EXPECT_EQ(entry.date, start + 60.0 * i);
        const auto time = [](int hour, int minute) {
            const int hours = (hour + minute / 60) % 24, minutes = minute % 60;
            return (hours < 10 ? "0" : "") + std::to_string(hours) + (minutes < 10 ? ":0" : ":") +
                   std::to_string(minutes);
        };
        const std::string lisbon = i < 15 ? time(0, 45 + i) : time(2, i - 15);
        const auto shown = texts(ui::outline(entry.view));
        EXPECT_EQ(
            shown,
            (std::vector<std::string>{
                "Relógio mundial",
                "🇵🇹",
                lisbon,
                "Lisbon",
                "🇳🇵",
                time(6, 30 + i),
                "Kathmandu",
                "🇧🇷",
                time(21, 45 + i),
                "Sao Paulo"}));
        const std::string outline = ui::outline(entry.view);
        EXPECT_EQ(count(outline, "moon.fill"), 2) << i;
        EXPECT_EQ(count(outline, "sun.max.fill"), 1) << i;
    }
}

}  // namespace
}  // namespace zelto::test
