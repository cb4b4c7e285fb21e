// The screen reader itself: what it would speak.

#include <algorithm>
#include <regex>

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"
#include "tests/support/Child.hpp"
#include "ui/Reading.hpp"

namespace zelto::test {

using namespace widgetkit;
namespace {

struct Orca : testing::Test {
    std::unique_ptr<Display> display = startX11();
    RunningDesktop desktop{*display, true};
    std::optional<Child> reader;

    Orca() { display->move(Display::width - 2, Display::height - 2); }

    void startReader() {
        auto variables = desktop.environment();
        variables.insert(
            variables.end(),
            {"GSETTINGS_BACKEND=memory", "XDG_RUNTIME_DIR=" + desktop.folder().string(), "GTK_MODULES=gail"});
        reader.emplace(
            std::vector<std::string>{"/usr/bin/orca", "--replace", "--debug-file=" + debugFile()},
            variables,
            desktop.folder() / "orca.log");
    }
    std::string debugFile() const { return desktop.folder() / "orca.debug"; }
    /// What it would have spoken so far, a line each.
    std::string spoken() const {
        static const std::regex output("SPEECH OUTPUT: '(.*)'");
        const std::string log = readFile(debugFile()).value_or("");
        std::string out;
        for (std::sregex_iterator at(log.begin(), log.end(), output), end; at != end; ++at)
            out += (*at)[1].str() + "\n";
        return out;
    }
    bool speaks(const std::string& text) const { return spoken().find(text) != std::string::npos; }
};

TEST_F(Orca, SpeaksEveryWidgetAMessageAndAMove) {
    if (!std::filesystem::exists("/usr/bin/orca")) GTEST_SKIP() << "orca is not installed";
    desktop.place(eleven());
    desktop.start();
    ASSERT_TRUE(eventually([&] { return desktop.allSeen(); })) << desktop.log();
    startReader();
    ASSERT_TRUE(eventually([&] { return spoken() != ""; }))
        << readFile(desktop.folder() / "orca.log").value_or("");
    auto widgets = eleven();
    std::ranges::sort(widgets, {}, [](const auto& each) { return std::pair(each.row, each.column); });
    for (const auto& each : widgets) {
        ASSERT_EQ(desktop.zelto({"desktop", "focus"}).status, 0);
        // Readings of the moment change meanwhile, and a countdown goes on.
        auto texts = ui::readingTexts(desktop.entry(each)->view, Date::now());
        texts.resize(std::min<std::size_t>(texts.size(), 2));
        ASSERT_TRUE(eventually([&] { return speaks(ui::joined(texts)); }))
            << each.kind << ": " << ui::joined(texts) << "\n"
            << spoken();
    }
    display->key("ctrl+Right");
    ASSERT_TRUE(eventually([&] { return speaks("Cuidados: movido para"); })) << spoken();
    desktop.forgetHandler();
    display->key("Return");
    ASSERT_TRUE(eventually([&] { return speaks("Nenhum app abre este link"); })) << spoken();
    display->key("Delete");
    ASSERT_TRUE(eventually([&] { return speaks("Cuidados: removido. Desfazer"); })) << spoken();
}

}  // namespace
}  // namespace zelto::test
