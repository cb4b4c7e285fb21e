// zelto snapshot, as a process.

#include <algorithm>

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "tests/support/EnormousSnapshot.hpp"
#include "tests/support/Snapshots.hpp"
#include "tests/support/ZeltoProcess.hpp"

namespace zelto::test {

using namespace records;
using namespace shared;
namespace {

TEST_F(ZeltoProcess, SnapshotCheckNamesThePlaceOfEachFault) {
    const std::string battery =
        R"("battery":{"percent":80,"charging":true,"pluggedIn":true,"limitEnabled":true,"chargingPaused":false,"adapterDisabled":false},)";
    const std::string clip = R"("clips":[{"id":"x","date":0,"pinned":false}],)";
    const std::string event =
        R"("events":[{"id":"","title":"","start":0,"end":0,"allDay":false,"colorHex":"","meetingURL":"ht tp://x"}],)";
    const std::string good = leastDocument();
    const std::vector<std::pair<std::string, std::string>> rows{
        {leastDocument(battery), "battery.limit: missing"},
        {leastDocument(R"("memoryUsed":80.5,)"), "memoryUsed: expected a non-negative integer, found 80.5"},
        {leastDocument(clip), "clips[0].id: not a UUID"},
        {leastDocument(event), "events[0].meetingURL: not a URL"},
        {good.substr(0, 100),
         "line 1, column 101: invalid string: missing closing quote; expected string literal"},
        {good + "\n x", "line 2, column 2: invalid literal; expected end of input"},
        {leastDocument("\"x\":\"\xff\","), "line 1, column 7: invalid string: ill-formed UTF-8 byte"},
        {"", "line 1, column 1: the document is empty"}};
    for (const auto& [document, place] : rows) {
        const std::string file = write("widget.json", document);
        const auto result = zelto({"snapshot", "check", file});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, "zelto: " + file + ": " + place + "\n");
        EXPECT_EQ(readFile(file), document);  // and changes nothing
    }
    EXPECT_EQ(zelto({"snapshot", "check", folder.path() / "missing"}).status, 1);
}

TEST_F(ZeltoProcess, SnapshotCheckAcceptsTheSample) {
    const auto sample = zelto({"snapshot", "sample"});
    const auto checked = zelto({"snapshot", "check", "-"}, sample.output);
    EXPECT_EQ(checked.status, 0) << checked.errors;
    EXPECT_TRUE(checked.output.starts_with("ok: taken ")) << checked.output;
    EXPECT_NE(
        checked.output.find("battery 80%, 1 fan, 3 clips, 3 events, 3 clock zones, 4 findings\n"),
        std::string::npos);
}

TEST_F(ZeltoProcess, SnapshotCheckNotesWhatWidgetsCutOrLeaveOut) {
    const auto result = zelto({"snapshot", "check", "-"}, enormousDocument());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.output.substr(result.output.find('\n') + 1),
        "note: awakeEnd: beyond the years 1 to 9999, at whose end it is held\n"
        "note: clips[0].text: longer than 1,024 bytes; the widgets show its beginning\n"
        "note: events[0].title: longer than 1,024 bytes; the widgets show its beginning\n"
        "note: cpuHistory: more than 5504 values; only what can be told apart of them is drawn\n"
        "note: careItems: more than 1,000; the last ones may be left out\n"
        "note: fans[0].actual: beyond 64 bits; the fans widget keeps its last picture\n"
        "note: events[0].meetingURL: too long for a link; its button opens the calendar tab\n");
    EXPECT_TRUE(result.output.starts_with("ok: taken 2001-01-01T00:00:00Z, battery 80%")) << result.output;
    // What fits is not worth a word; of very many notes the first are.
    EXPECT_EQ(std::ranges::count(zelto({"snapshot", "check", "-"}, leastDocument()).output, '\n'), 1);
    auto many = WidgetSnapshot::sample();
    many.clockZones.assign(100, std::string(2000, 'x'));
    const std::string output = zelto({"snapshot", "check", "-"}, *encodeJSON(many)).output;
    EXPECT_EQ(std::ranges::count(output, '\n'), 1 + 20 + 1);
    EXPECT_TRUE(output.ends_with("note: and 80 more\n")) << output;
    // Titles that fit one by one may be too many together.
    auto findings = WidgetSnapshot::sample();
    findings.careItems.assign(1000, {.title = std::string(60, 'x'), .level = "ok", .summary = {}});
    EXPECT_TRUE(zelto({"snapshot", "check", "-"}, *encodeJSON(findings))
                    .output.ends_with(
                        "note: careItems: titles of more than 48 KiB together; the last ones are cut\n"));
}

TEST_F(ZeltoProcess, SnapshotCheckRefusesWhatNoWidgetReads) {
    const std::string file = write("big.json", leastDocument());
    std::filesystem::resize_file(file, std::uintmax_t{200} << 30);
    const auto result = zelto({"snapshot", "check", file});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "zelto: " + file + ": larger than 16 MiB, which no widget reads\n");
}

}  // namespace
}  // namespace zelto::test
