#include <gtest/gtest.h>

#include "platform/layout/TextFit.hpp"
#include "tests/support/FixedMeasuring.hpp"

namespace zelto::layout {
namespace {

const ui::modifier::Font ten{.size = 10};  // 5 points a character, lines of 12

/// "60x12" for a text that fits; with "*0.8" when it shrinks, "|40" when it is broken at 40 points, "/2" when
/// it may have so many lines.
std::string fit(
    const std::string& text, std::int64_t lineLimit, double minimumScale, const ProposedSize& proposal) {
    test::FixedMeasuring measuring;
    const TextFit out = fitText({text, ten, lineLimit, minimumScale}, proposal, measuring);
    const auto number = [](double value) {
        std::string digits = std::to_string(value);
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.ends_with('.')) digits.pop_back();
        return digits;
    };
    return number(out.extent.size.width) + "x" + number(out.extent.size.height) +
           (out.scale < 1 ? "*" + number(out.scale) : "") + (out.width ? "|" + number(*out.width) : "") +
           (out.lines > 0 ? "/" + std::to_string(out.lines) : "");
}

TEST(TextFit, IsOneLineWhereThereIsRoom) {
    EXPECT_EQ(fit("twelve chars", 0, 1, {}), "60x12");
    EXPECT_EQ(fit("twelve chars", 0, 1, {60, 50}), "60x12");
    EXPECT_EQ(fit("twelve chars", 1, 0.5, {59.995, 50}), "60x12");
    EXPECT_EQ(fit("", 0, 1, {0, 0}), "0x12");
}

TEST(TextFit, IsBrokenIntoLinesButNotWithinARun) {
    EXPECT_EQ(fit("twelve chars", 0, 1, {40, std::nullopt}), "40x24|40");
    EXPECT_EQ(fit("twelve chars", 0, 1, {10, std::nullopt}), "30x24|30");
    EXPECT_EQ(fit("twelve_chars", 0, 1, {10, 50}), "60x12");
    // Into no more than the height holds.
    EXPECT_EQ(fit("one two three", 0, 1, {30, 24}), "30x24|30/2");
    EXPECT_EQ(fit("one two three", 0, 1, {30, 5}), "30x12|30/1");
}

TEST(TextFit, ShrinksBeforeItIsCut) {
    EXPECT_EQ(fit("twelve chars", 1, 0.5, {45, 50}), "45x9*0.75");
    EXPECT_EQ(fit("twelve chars", 1, 0.8, {45, 50}), "44x9.6*0.8|45/1");
    EXPECT_EQ(fit("twelve chars", 1, 1, {45, 50}), "45x12|45/1");
    // Asked how small it can get.
    EXPECT_EQ(fit("twelve chars", 1, 1, {0, 50}), "0x12|0/1");
}

TEST(TextFit, ShowsTheFirstLineOfATextThatMayHaveOne) {
    EXPECT_EQ(shownText("one \t\ntwo", 1), "one…");
    EXPECT_EQ(shownText("one\u2028two", 1), "one…");
    EXPECT_EQ(shownText("one\ntwo", 2), "one\ntwo");
    EXPECT_EQ(shownText(std::string("a\0b", 3), 0), "ab");
}

}  // namespace
}  // namespace zelto::layout
