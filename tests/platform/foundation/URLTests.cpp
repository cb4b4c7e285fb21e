#include <gtest/gtest.h>

#include "platform/foundation/URL.hpp"
#include "tests/support/Vectors.hpp"

namespace zelto::test {
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
