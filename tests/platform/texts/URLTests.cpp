#include <gtest/gtest.h>

#include "tests/support/Vectors.hpp"
#include "texts/URL.hpp"

namespace zelto::test {

using namespace texts;
namespace {

TEST(URL, ReadsAndStoresAsThePlatformDoes) {
    for (const auto& row : vectors("url_read").at("vectors")) {
        const std::string text = row.at("text");
        const auto url = URL::parse(text);
        if (row.at("accepted").get<bool>()) {
            ASSERT_TRUE(url) << text;
            EXPECT_EQ(url->text(), row.at("stored").get<std::string>()) << text;
        } else {
            EXPECT_FALSE(url) << text;
        }
    }
}

TEST(URL, ReadsBackWhatItStores) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"]s://x", "%5Ds%3A//x"},
        {"h[ttps://x", "h%5Bttps%3A//x"},
        {"x]:y", "x%5D%3Ay"},
        {"a]b:c:d", "a%5Db%3Ac%3Ad"},
        {"[:", "%5B%3A"},
        {"[/:", "%5B/:"},
        {"a@[b:c", "a@%5Bb:c"},
        {":[", ":%5B"},
        {"s:[:", "s:%5B:"},
        {"[?:", "%5B?:"},
        {"[#:[", "%5B#:%5B"},
        {"//a[@h:1/[:", "//a%5B@h:1/%5B:"}};
    for (const auto& [text, stored] : rows) {
        const auto url = URL::parse(text);
        ASSERT_TRUE(url) << text;
        EXPECT_EQ(url->text(), stored) << text;
        const auto again = URL::parse(stored);
        ASSERT_TRUE(again) << text;
        EXPECT_EQ(again->text(), stored) << text;
    }
}

TEST(URL, RejectsTextThatIsNotUTF8) {
    EXPECT_FALSE(URL::parse("https://example.com/\xff"));
}

TEST(PercentEncoding, LeavesOnlyASCIILettersAndDigits) {
    for (const auto& row : vectors("percent_encoding_alphanumerics").at("vectors")) {
        const std::string expected = row.contains("encoded") ? row.at("encoded") : row.at("platform");
        EXPECT_EQ(percentEncodedAlphanumerics(row.at("text").get<std::string>()), expected);
    }
}

}  // namespace
}  // namespace zelto::test
