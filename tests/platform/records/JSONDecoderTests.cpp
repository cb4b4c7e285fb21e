#include <cmath>

#include <gtest/gtest.h>

#include "records/JSONDecoder.hpp"
#include "tests/support/Vectors.hpp"
#include "texts/URL.hpp"

namespace zelto::test {

using namespace records;
using namespace texts;

/// The record that the document vectors speak of.
struct Sheet {
    std::int64_t a = 0;
    std::optional<std::int64_t> o;
    std::optional<std::string> s;
    std::optional<URL> u;
    std::optional<UUID> i;
};
template <class T>
struct Holder {
    T value{};
};
using IntHolder = Holder<std::int64_t>;
using UIntHolder = Holder<std::uint64_t>;
using DoubleHolder = Holder<double>;
using SheetList = Holder<std::vector<Sheet>>;

}  // namespace zelto::test

ZELTO_RECORD(zelto::test::Sheet, a, o, s, u, i);
ZELTO_RECORD(zelto::test::IntHolder, value);
ZELTO_RECORD(zelto::test::UIntHolder, value);
ZELTO_RECORD(zelto::test::DoubleHolder, value);
ZELTO_RECORD(zelto::test::SheetList, value);

namespace zelto::test {
namespace {

/// The platform forgives these under keys that nobody asks for; here malformed text rejects wherever it
/// stands.
bool isStricterHere(const std::string& document) {
    static const std::vector<std::string> rejected{
        "{\"a\":1,}",
        "{\"a\":1,\"x\":[1,2,],}",
        "{\"a\":1,\"x\":01}",
        "{\"a\":1,\"x\":1.2.3}",
        "{\"a\":1,\"x\":-}",
        "{\"a\":1,\"x\":\"\\q\"}",
        "{\"a\":1,\"x\":\"\\ud800\"}",
        "{\"a\":1,\"x\":\"raw\nnewline\"}",
        "{\"a\":1,\"x\":\"\\u12zz\"}"};
    return std::ranges::find(rejected, document) != rejected.end();
}

std::string fault(const std::string& document) {
    const auto decoded = decodeJSON<Sheet>(document);
    return decoded ? "" : decoded.fault().text();
}

TEST(JSONDecoder, AgreesWithThePlatformOnWholeDocuments) {
    int stricter = 0;
    for (const auto& row : vectors("json_documents").at("vectors")) {
        const std::string document = row.at("doc");
        const bool accepted = row.at("accepted").get<bool>() && !isStricterHere(document);
        stricter += isStricterHere(document) ? 1 : 0;
        EXPECT_EQ(decodeJSON<Sheet>(document).has_value(), accepted) << document;
    }
    EXPECT_EQ(stricter, 9);
}

TEST(JSONDecoder, RejectsInvalidUTF8InKeysAndInAllStrings) {
    EXPECT_FALSE(decodeJSON<Sheet>("{\"key\xff\":1,\"a\":1}"));
    EXPECT_FALSE(decodeJSON<Sheet>("{\"a\":1,\"x\":\"\xff\"}"));
    EXPECT_FALSE(decodeJSON<Sheet>("{\"a\":1,\"s\":\"\xff\"}"));
    EXPECT_FALSE(decodeJSON<Sheet>("{\"a\":1,\"s\":\"\xed\xa0\x80\"}"));
    EXPECT_TRUE(decodeJSON<Sheet>("{\"a\":1,\"s\":\"\xf0\x9f\x98\x80\"}"));
}

template <class T>
std::optional<T> number(const std::string& token) {
    const auto holder = decodeJSON<Holder<T>>("{\"value\":" + token + "}");
    return holder ? std::optional(holder->value) : std::nullopt;
}

TEST(JSONDecoder, ReadsNumbersExactly) {
    for (const auto& row : vectors("json_number_read").at("vectors")) {
        const std::string token = row.at("token");
        // Where the platform goes through a double, the exact value is taken here.
        std::string wantInt = row.at("Int"), wantUInt = row.at("UInt64");
        if (token == "9223372036854775807.0") wantInt = "9223372036854775807";
        if (token == "18446744073709551615.0") wantUInt = "18446744073709551615";
        if (token == "1.0000000000000001" || token == "1e-400" || token == "2e-324")
            wantInt = wantUInt = "reject";
        const auto text = [](const auto& value) {
            return value ? std::to_string(*value) : std::string("reject");
        };
        EXPECT_EQ(text(number<std::int64_t>(token)), wantInt) << token;
        EXPECT_EQ(text(number<std::uint64_t>(token)), wantUInt) << token;
        const auto real = number<double>(token);
        if (row.at("Double") == "reject") {
            EXPECT_FALSE(real) << token;
        } else {
            ASSERT_TRUE(real) << token;
            const double expected = std::strtod(row.at("Double").get<std::string>().c_str(), nullptr);
            EXPECT_EQ(*real, expected) << token;
            EXPECT_EQ(std::signbit(*real), std::signbit(expected)) << token;
        }
    }
}

TEST(JSONDecoder, NamesThePlaceAndReasonOfTheFirstFault) {
    EXPECT_EQ(fault("{}"), "a: missing");
    EXPECT_EQ(fault("{\"a\":null}"), "a: expected an integer, found null");
    EXPECT_EQ(fault("{\"a\":80.5}"), "a: expected an integer, found 80.5");
    EXPECT_EQ(fault("{\"a\":\"1\"}"), "a: expected an integer, found a string");
    EXPECT_EQ(fault("{\"a\":1,\"u\":\"\"}"), "u: not a URL");
    EXPECT_EQ(fault("{\"a\":1,\"i\":\"x\"}"), "i: not a UUID");
    EXPECT_EQ(fault("[1]"), "the document: expected an object, found an array");
    EXPECT_EQ(fault(""), "line 1, column 1: the document is empty");
    EXPECT_EQ(fault("{\"a\":1}x"), "line 1, column 8: invalid literal; expected end of input");
    EXPECT_EQ(fault(std::string("{\"a\":1}\0", 8)), "line 1, column 8: a NUL byte");
    EXPECT_TRUE(fault("{\"s\":\"é\",\n \"a\":").starts_with("line 2, column 6: unexpected end of input"))
        << fault("{\"s\":\"é\",\n \"a\":");
    EXPECT_EQ(
        decodeJSON<SheetList>(R"({"value":[{"a":1},{"a":1,"i":"?"}]})").fault(),
        (Fault{.path = "value[1].i", .reason = "not a UUID"}));
}

TEST(JSONDecoder, TakesAnyDepthUnderUnknownKeys) {
    const std::size_t depth = 1'000'000;
    const std::string nested = std::string(depth, '[') + std::string(depth, ']');
    EXPECT_TRUE(decodeJSON<Sheet>("{\"x\":" + nested + ",\"a\":1}"));
    EXPECT_FALSE(decodeJSON<Sheet>("{\"x\":" + nested + "],\"a\":1}"));
    std::string objects = "1";
    for (int i = 0; i < 2000; ++i) objects = "{\"k\":" + objects + "}";
    EXPECT_TRUE(decodeJSON<Sheet>("{\"x\":" + objects + ",\"a\":1}"));
}

TEST(JSONDecoder, BoundsTheDepthOfWhatItKeeps) {
    EXPECT_EQ(
        decodeJSON<SheetList>(R"({"value":[{"a":1}]})", 2).fault().text(), "value[0]: nested too deeply");
    EXPECT_TRUE(decodeJSON<SheetList>(R"({"value":[{"a":1}]})", 3));
}

TEST(JSONDecoder, KeepsTheFirstOfDuplicateKeys) {
    EXPECT_EQ(decodeJSON<Sheet>(R"({"a":1,"a":2,"o":3,"a":[{}]})")->a, 1);
    EXPECT_EQ(decodeJSON<Sheet>(R"({"o":null,"o":3,"a":1})")->o, std::nullopt);
}

}  // namespace
}  // namespace zelto::test
