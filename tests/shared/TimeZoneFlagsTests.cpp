#include <thread>

#include <gtest/gtest.h>

#include "shared/TimeZoneFlags.hpp"
#include "tests/support/Vectors.hpp"

namespace zelto::test {

using namespace shared;
namespace {

std::optional<std::string> flag(const std::string& table, const std::string& zone) {
    return TimeZoneFlags::flag(zone, TimeZoneFlags::parse(table));
}
constexpr const char* brazil = "BR\t-2332-04637\tAmerica/Sao_Paulo\tBrazil (southeast)\n";

TEST(TimeZoneFlags, MapsAZoneToItsCountrysFlag) {
    EXPECT_EQ(flag("BR\t-2332-04637\tAmerica/Sao_Paulo", "America/Sao_Paulo"), "🇧🇷");
    EXPECT_EQ(flag(brazil, "America/Sao_Paulo"), "🇧🇷");
}

TEST(TimeZoneFlags, IgnoresCommentsBlankLinesAndShortLines) {
    EXPECT_FALSE(flag("#BR\tx\tAmerica/Sao_Paulo\n", "America/Sao_Paulo"));
    // A code that would do, number sign and all.
    EXPECT_FALSE(flag("#B\tx\tAmerica/Sao_Paulo\n", "America/Sao_Paulo"));
    EXPECT_EQ(flag(std::string("\n\n") + brazil + "\n", "America/Sao_Paulo"), "🇧🇷");
    EXPECT_FALSE(flag("BR\tAmerica/Sao_Paulo\n", "America/Sao_Paulo"));
    EXPECT_EQ(TimeZoneFlags::parse("BR\tx\n").size(), 0U);
}

TEST(TimeZoneFlags, KnowsNothingOfZonesThatAreNotListed) {
    EXPECT_FALSE(flag(brazil, "UTC"));
    EXPECT_FALSE(flag(brazil, "america/sao_paulo"));
    EXPECT_FALSE(flag("", "America/Sao_Paulo"));
}

TEST(TimeZoneFlags, MovesColumnsToTheLeftOfAnEmptyOne) {
    EXPECT_FALSE(flag("BR\t\tAmerica/Sao_Paulo\n", "America/Sao_Paulo"));
    EXPECT_EQ(flag("BR\t\tAmerica/Sao_Paulo\tcomment\n", "comment"), "🇧🇷");
}

TEST(TimeZoneFlags, LetsTheLaterLineWin) {
    EXPECT_EQ(flag("US\tx\tZone\nCA\tx\tZone\n", "Zone"), "🇨🇦");
}

TEST(TimeZoneFlags, TakesAFileWithCRLFForOneLine) {
    const auto table = TimeZoneFlags::parse("BR\tx\tOne\r\nUS\ty\tTwo\r\n");
    EXPECT_EQ(table.size(), 1U);
    EXPECT_EQ(table.begin()->first, "One\r\nUS");
    EXPECT_EQ(TimeZoneFlags::parse("BR\tx\tOne\n\rUS\ty\tTwo").size(), 2U);
}

TEST(TimeZoneFlags, IsEmptyForAFileThatIsNotUTF8) {
    EXPECT_EQ(TimeZoneFlags::parse(std::string(brazil) + "\xff").size(), 0U);
}

std::string fromScalars(const std::string& text) {
    std::string out;
    for (std::size_t begin = 0; begin < text.size();) {
        const std::string word = text.substr(begin, text.find(' ', begin) - begin);
        begin += word.size() + 1;
        if (!word.starts_with("U+")) {
            out += word;
            continue;
        }
        const auto scalar = static_cast<unsigned>(std::stoul(word.substr(2), nullptr, 16));
        if (scalar < 0x80) {
            out += static_cast<char>(scalar);
        } else if (scalar < 0x800) {
            out += static_cast<char>(0xC0 | scalar >> 6);
            out += static_cast<char>(0x80 | (scalar & 0x3F));
        } else if (scalar < 0x10000) {
            out += static_cast<char>(0xE0 | scalar >> 12);
            out += static_cast<char>(0x80 | (scalar >> 6 & 0x3F));
            out += static_cast<char>(0x80 | (scalar & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | scalar >> 18);
            out += static_cast<char>(0x80 | (scalar >> 12 & 0x3F));
            out += static_cast<char>(0x80 | (scalar >> 6 & 0x3F));
            out += static_cast<char>(0x80 | (scalar & 0x3F));
        }
    }
    return out;
}

TEST(TimeZoneFlags, MapsEveryTwoCharacterCode) {
    for (const auto& row : vectors("flag_mapping").at("vectors")) {
        const std::string code = fromScalars(row.at("code"));
        const auto result = TimeZoneFlags::flag("Zone", {{"Zone", code}});
        if (row.at("flag") == "nothing")
            EXPECT_FALSE(result) << row;
        else
            EXPECT_EQ(result, fromScalars(row.at("flag"))) << row;
    }
}

TEST(TimeZoneFlags, ReadsTheSystemsTableOnceForAllThreads) {
    std::vector<const TimeZoneFlags::Countries*> seen(8);
    {
        std::vector<std::jthread> threads;
        for (auto& slot : seen) threads.emplace_back([&slot] { slot = &TimeZoneFlags::countries(); });
    }
    for (const auto* table : seen) EXPECT_EQ(table, seen[0]);
    EXPECT_GT(seen[0]->size(), 300U);
    EXPECT_EQ(TimeZoneFlags::flag("Asia/Tokyo"), "🇯🇵");
}

}  // namespace
}  // namespace zelto::test
