// What all commands and programs share, as processes.

#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "records/JSONDecoder.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/ZeltoProcess.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::test {

using namespace records;
using namespace widgetkit;
namespace {

TEST_F(ZeltoProcess, RefusalsAreOneClearLine) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> rows{
        {{"preview", "overview", "--family", "large", "--placeholder"},
         "zelto: --family: ZeltoWidget offers small, medium, not large\n"},
        {{"preview", "overview", "--family", "huge"},
         "zelto: --family: 'huge' is not small, medium or large\n"},
        {{"preview", "weather", "--family", "small"},
         "zelto: no widget 'weather'; there are ZeltoWidget, ZeltoBattery, ZeltoSystem, ZeltoStorage, "
         "ZeltoFans, "
         "ZeltoCalendar, ZeltoWorldClock, ZeltoClipboard, ZeltoAwake, ZeltoEqualizer, ZeltoCare\n"},
        {{"preview", "overview", "--family", "small", "--placeholder", "--locale", "zz"},
         "zelto: --locale: 'zz' is not known\n"},
        {{"preview", "overview", "--family", "small", "--placeholder", "--time-zone", "Mars"},
         "zelto: --time-zone: 'Mars' is not known\n"},
        {{"preview", "overview", "--family", "small", "--placeholder", "--date", "soon"},
         "zelto: --date: 'soon' is neither a date like 2026-03-11T14:05:00-03:00 nor seconds since 2001\n"},
        {{"timeline", "storage", "--family", "medium"},
         "zelto: --family: ZeltoStorage offers small, not medium\n"},
        {{"gallery", "--extension", "/no/such/program"},
         "zelto: cannot start the widget extension /no/such/program: No such file or directory\n"}};
    for (const auto& [command, expected] : rows) {
        const auto result = zelto(command);
        EXPECT_NE(result.status, 0);
        EXPECT_EQ(result.errors, expected);
        EXPECT_EQ(result.output, "");
    }
    EXPECT_EQ(
        zelto({"preview", "overview", "--family", "small", "--live", "-"}, "{\"charging\":1}").errors,
        "zelto: standard input: charging: expected true or false, found 1\n");
    EXPECT_EQ(zelto({"fly"}).status, 2);
    EXPECT_EQ(zelto({"--help"}).status, 0);
}

TEST_F(ZeltoProcess, GalleryListsTheWidgetsAsTheExtensionReportsThem) {
    const auto text = zelto({"gallery"});
    EXPECT_EQ(text.status, 0) << text.errors;
    EXPECT_TRUE(
        text.output.starts_with("ZeltoWidget  small, medium\n    Zelto · Visão geral\n    Bateria, CPU, "
                                "memória e disco do seu Mac.\n"));
    const auto widgets = decodeJSON<std::vector<WidgetDescription>>(zelto({"gallery", "--json"}).output);
    ASSERT_TRUE(widgets);
    EXPECT_EQ(widgets->size(), 11U);
}

TEST_F(ZeltoProcess, EveryProgramTellsTheSameVersion) {
    std::set<std::string> versions;
    for (const std::string program : {"zelto", "zelto-desktop", "zelto-widgets"}) {
        const auto result = run({programFolder() / program, "--version"});
        EXPECT_EQ(result.status, 0);
        ASSERT_TRUE(result.output.starts_with(program + " ")) << result.output;
        versions.insert(result.output.substr(program.size() + 1));
    }
    ASSERT_EQ(versions.size(), 1U);
    EXPECT_TRUE(std::regex_match(*versions.begin(), std::regex("[0-9]+\\.[0-9]+\\.[0-9]+\n")));
}

}  // namespace
}  // namespace zelto::test
