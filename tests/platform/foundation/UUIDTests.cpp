#include <gtest/gtest.h>

#include "foundation/UUID.hpp"
#include "tests/support/Vectors.hpp"

namespace zelto::test {
namespace {

TEST(UUID, ReadsExactlyTheCanonicalForm) {
    for (const auto& row : vectors("uuid_read").at("vectors"))
        EXPECT_EQ(
            UUID::parse(row.at("text").get<std::string>()).has_value(), row.at("recommended") == "accept")
            << row.at("text");
}

TEST(UUID, WritesUpperCase) {
    const std::string lower = "e621e1f8-c36c-495a-93fc-0c247a3e6e5f";
    EXPECT_EQ(UUID::parse(lower)->text(), "E621E1F8-C36C-495A-93FC-0C247A3E6E5F");
}

TEST(UUID, DrawsFreshIdentifiersOfVersionFour) {
    const UUID a = UUID::random(), b = UUID::random();
    EXPECT_NE(a, b);
    EXPECT_EQ(a.text()[14], '4');
    EXPECT_NE(std::string("89AB").find(a.text()[19]), std::string::npos);
}

}  // namespace
}  // namespace zelto::test
