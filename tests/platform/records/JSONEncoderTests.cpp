#include <limits>

#include <gtest/gtest.h>

#include "foundation/NumberText.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "tests/support/Vectors.hpp"

namespace zelto::test {

using namespace records;

struct Mixed {
    std::string text;
    std::optional<double> number;
    std::vector<std::int64_t> list;
    UUID id;
    Date date;
    bool flag = false;
};

}  // namespace zelto::test

ZELTO_RECORD(zelto::test::Mixed, text, number, list, id, date, flag);

namespace zelto::test {
namespace {

std::string text(double value) {
    std::string out;
    appendNumber(out, value);
    return out;
}

TEST(JSONEncoder, WritesTheShortestDigitsThatReadBack) {
    for (const auto& row : vectors("json_double_text").at("vectors"))
        EXPECT_EQ(
            text(std::strtod(row.at("value17").get<std::string>().c_str(), nullptr)),
            row.at("json").get<std::string>());
    EXPECT_EQ(text(1e15), "1000000000000000");
    EXPECT_EQ(text(1e16), "1e+16");
    EXPECT_EQ(text(1e-4), "0.0001");
    EXPECT_EQ(text(1e-5), "1e-05");
    EXPECT_EQ(text(-0.0), "-0");
    EXPECT_EQ(text(123456.75), "123456.75");
}

TEST(JSONEncoder, EscapesOnlyWhatMustBeAndSlashes) {
    for (const auto& row : vectors("json_string_write").at("vectors")) {
        const std::string scalar = row.at("scalars").at(0), expected = row.at("json");
        if (expected.starts_with("raw")) continue;  // shown below
        std::string out;
        ASSERT_TRUE(appendJSONString(out, std::string(1, static_cast<char>(std::stoi(scalar, nullptr, 16)))));
        EXPECT_EQ(out, "\"" + expected + "\"") << scalar;
    }
    const std::string raw = "\x7f\u0085\u2028\uFEFF\U0001F600é";
    std::string out;
    ASSERT_TRUE(appendJSONString(out, raw));
    EXPECT_EQ(out, "\"" + raw + "\"");
}

TEST(JSONEncoder, WritesFieldsInTableOrderAndLeavesAbsentOnesOut) {
    Mixed value{.text = "a/b", .number = {}, .list = {1, -2}, .id = {}, .date = {0.5}, .flag = true};
    EXPECT_EQ(
        encodeJSON(value),
        R"({"text":"a\/b","list":[1,-2],"id":"00000000-0000-0000-0000-000000000000","date":0.5,"flag":true})");
    value.number = 2;
    EXPECT_TRUE(encodeJSON(value)->starts_with(R"({"text":"a\/b","number":2,)"));
}

TEST(JSONEncoder, RefusesNumbersThatAreNotFinite) {
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        EXPECT_FALSE(encodeJSON(Mixed{.text = {}, .number = bad, .list = {}, .id = {}, .date = {}}));
        EXPECT_FALSE(encodeJSON(Mixed{.text = {}, .number = {}, .list = {}, .id = {}, .date = {bad}}));
    }
}

TEST(JSONEncoder, RefusesTextThatIsNotUTF8) {
    for (const std::string bad :
         {"\xff", "a\xc3", "\xc0\x80", "\xed\xa0\x80", "\xf4\x90\x80\x80", "12345678\x80"})
        EXPECT_FALSE(encodeJSON(Mixed{.text = bad, .number = {}, .list = {}, .id = {}, .date = {}})) << bad;
}

TEST(JSONPrefix, CountsBytesAsTheyAreWritten) {
    struct Row {
        std::string text;
        std::size_t bytes, end;
    };
    for (const auto& [text, bytes, end] : std::vector<Row>{
             {"abc", 2, 2},
             {"abc", 3, 3},
             {"abc", 9, 3},
             {"", 0, 0},
             {"\x01\x01", 11, 1},
             {"\x01\x01", 12, 2},
             {"a\n\"/", 4, 2},
             {"é", 1, 0},
             {"aé", 2, 1},
             {"aéz", 3, 3},
             {std::string("\0", 1), 5, 0}}) {
        EXPECT_EQ(jsonPrefix(text, bytes), end) << text << " " << bytes;
        std::string written;
        EXPECT_TRUE(appendJSONString(written, text));
        EXPECT_EQ(jsonLength(text) + 2, written.size()) << text;
    }
}

}  // namespace
}  // namespace zelto::test
