// docs/confinement.md tells what confined processes may do, call by call and folder by folder.

#include <algorithm>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "confinement/Confinement.hpp"
#include "foundation/Files.hpp"
#include "pictures/PictureServer.hpp"
#include "tests/support/Paths.hpp"
#include "widget/Common/ExtensionAllowance.hpp"

namespace zelto::test {
namespace {

using confinement::AllowedCall;
using Terms = AllowedCall::Terms;

const char* termsText(Terms terms) {
    switch (terms) {
        case Terms::always: return "";
        case Terms::readOnly: return " (reading)";
        case Terms::flagsOnly: return " (flags only)";
        case Terms::threadsOnly: return " (threads)";
        case Terms::noNamespace: return " (no namespaces)";
        case Terms::askingOnly: return " (asking)";
        case Terms::connected: return " (connected)";
        case Terms::deadlyOnly: return " (SIGKILL)";
        case Terms::ownProcess: return " (its own threads)";
        case Terms::dataOnly: return " (data only)";
    }
    return "?";
}

std::string page() {
    return readFile(dataFolder().parent_path().parent_path() / "docs/confinement.md").value_or("");
}

/// The last cell of the table's row that begins so.
std::string cell(const std::string& process) {
    std::istringstream lines(page());
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("| " + process + " |"))
            return line.substr(process.size() + 5, line.size() - process.size() - 7);
    return "no row " + process;
}

std::string callsText(std::span<const AllowedCall> calls) {
    std::string out;
    for (const AllowedCall& call : calls)
        out += (out.empty() ? "`" : ", `") + std::string(call.name) + "`" + termsText(call.terms);
    return out.empty() ? "none more" : out;
}

TEST(ConfinementDocument, NamesEverySystemCall) {
    const auto extension = widget::extensionAllowance("/folder", "/", "UTC");
    EXPECT_EQ(cell("all of them"), callsText(confinement::basicCalls()));
    EXPECT_EQ(cell("`zelto-widgets`"), callsText(extension.calls));
    EXPECT_EQ(cell("`zelto-pictures`, opening"), callsText(pictures::openerAllowance().calls));
    EXPECT_EQ(cell("`zelto-pictures`, decoding"), callsText(pictures::decoderAllowance().calls));
}

TEST(ConfinementDocument, NamesEveryFolder) {
    const auto text = page();
    const auto begin = text.find("## Readable for zelto-widgets"), end = text.find("## System calls");
    std::set<std::string> told;
    for (auto at = text.find('`', text.find("|---|", begin)); at < end; at = text.find('`', at + 1)) {
        const auto close = text.find('`', at + 1);
        told.insert(text.substr(at + 1, close - at - 1));
        at = close;
    }
    std::set<std::string> allowed;
    for (const auto& path :
         widget::extensionAllowance("~/Library/Application Support/Zelto", "DIR", "America/Sao_Paulo")
             .readable)
        allowed.insert(path.string());
    EXPECT_EQ(told, allowed);
}

TEST(ConfinementDocument, TheFileOfAZoneIsReadableToo) {
    const auto own = widget::extensionAllowance("/folder", "/", "/home/user/zone").readable;
    EXPECT_EQ(std::ranges::count(own, "/home/user/zone"), 1);
    const auto named = widget::extensionAllowance("/folder", "/", "UTC").readable;
    EXPECT_EQ(std::ranges::count(named, "UTC"), 0);
}

}  // namespace
}  // namespace zelto::test
