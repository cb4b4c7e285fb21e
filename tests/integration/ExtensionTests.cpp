// The extension, as a process.

#include <algorithm>

#include <gtest/gtest.h>

#include "shared/WidgetSnapshotFields.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/Sanitizers.hpp"
#include "tests/support/Snapshots.hpp"
#include "tests/support/ZeltoProcess.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::test {

using namespace shared;
namespace {

TEST_F(ZeltoProcess, MemoryThatRunsOutCostsARequestAndNotTheProcess) {
    if (isSanitized)
        GTEST_SKIP() << "not tested: the sanitizer itself needs more address space than any limit here";
    auto s = WidgetSnapshot::sample();
    s.clips[0].text = std::string(15'000'000, 'x');
    s.save(HomeLookup::fixed(folder.path()));
    const std::string requests =
        R"({"id":1,"request":"timeline","kind":"ZeltoClipboard","family":"systemMedium"})"
        "\n"
        R"({"id":2,"request":"bundle"})"
        "\n";
    int without = 0, with = 0;
    // From hardly enough for the process, threads included, to enough for fifteen megabytes three times over.
    for (const int megabytes : {70, 90, 110, 400}) {
        const auto result =
            run({"/bin/sh",
                 "-c",
                 "ulimit -v $0; exec \"$@\"",
                 std::to_string(megabytes * 1000),
                 programFolder() / "zelto-widgets",
                 "--home",
                 folder.path()},
                requests);
        EXPECT_EQ(result.status, 0) << megabytes << ": " << result.errors;
        EXPECT_EQ(std::ranges::count(result.output, '\n'), 2) << megabytes << ": " << result.errors;
        EXPECT_NE(result.output.find(R"({"id":1,)"), std::string::npos);
        EXPECT_NE(result.output.find(R"({"id":2,"widgets":)"), std::string::npos);
        const bool isShown = result.output.find("xxxx") != std::string::npos;
        const bool isError = result.output.find(R"({"id":1,"error":"the request failed: std::bad_alloc"})") !=
                             std::string::npos;
        EXPECT_NE(isShown, isError) << megabytes << ": " << result.output.substr(0, 200);
        ++(isShown ? with : without);
    }
    EXPECT_GT(without, 0);
    EXPECT_GT(with, 0);
}

TEST_F(ZeltoProcess, AHomeMayBeGivenFromWhereOneIs) {
    WidgetSnapshot::sample().save(HomeLookup::fixed(folder.path() / "home"));
    const auto result = run(
        {"/bin/sh",
         "-c",
         "cd \"$0\" && exec \"$@\"",
         folder.path(),
         programFolder() / "zelto",
         "timeline",
         "clipboard",
         "--family",
         "medium",
         "--home",
         "home"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.output.find("Reunião às 15h com o time"), std::string::npos) << result.output;
}

TEST_F(ZeltoProcess, AnImpossibleFanSpeedStopsTheExtensionAndTheHostSaysSo) {
    std::string document =
        leastDocument(R"("fans":[{"actual":1e19,"minimum":0,"maximum":1,"manual":false}],)");
    const auto now = std::to_string(static_cast<std::int64_t>(Date::now().sinceReference));
    document.replace(document.find("\"date\":0"), 8, "\"date\":" + now);
    folder.write("Library/Application Support/Zelto/widget.json", document);
    const auto result = zelto({"timeline", "fans", "--family", "small", "--home", folder.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "zelto: the widget extension died (signal 6, Aborted)\n");
}

TEST_F(ZeltoProcess, TheExtensionSurvivesGarbageAndEndsWithItsInput) {
    const auto result = extension(
        "\nnonsense\n{\"id\":1}\n" + std::string(100'000, 'x') +
        "\n{\"id\":2,\"request\":\"bundle\"}\n{\"id\":3,\"request\":\"bundle\"}");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::ranges::count(result.output, '\n'), 5);
    for (const char* piece :
         {"{\"error\":\"line 1",
          "{\"id\":1,\"error\":\"request: missing\"}",
          "a request line holds at most 65536 bytes",
          "{\"id\":2,\"widgets\":",
          "{\"id\":3,\"widgets\":"})
        EXPECT_NE(result.output.find(piece), std::string::npos) << piece;
}

TEST_F(ZeltoProcess, TheExtensionRefusesUnknownOptions) {
    const auto result = run({programFolder() / "zelto-widgets", "--fly"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "zelto-widgets: invalid option '--fly' (try --help)\n");
}

TEST_F(ZeltoProcess, TheExtensionReadsTheMachineAndTheSnapshotThatItIsPointedTo) {
    folder.write("sys/class/power_supply/BAT0/type", "Battery\n");
    folder.write("sys/class/power_supply/BAT0/capacity", "7\n");
    const auto result = zelto({"timeline", "overview", "--family", "small", "--machine", folder.path()});
    EXPECT_NE(result.output.find("Text \"7%\""), std::string::npos) << result.output << result.errors;
    EXPECT_NE(result.output.find("trim=0.07 paint=stroke(style=#FF6166"), std::string::npos);
}

}  // namespace
}  // namespace zelto::test
