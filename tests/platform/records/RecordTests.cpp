// What the field tables prove when they are compiled.

#include <gtest/gtest.h>

#include "records/Record.hpp"

namespace zelto::test {

using namespace records;

enum class Fruit { apple, pear, plum };
struct Basket {
    std::int64_t count = 0;
    std::optional<double> weight;
    std::vector<std::string> labels;
    Fruit fruit = Fruit::apple;
};

}  // namespace zelto::test

ZELTO_NAMES(zelto::test::Fruit, "a fruit", apple, pear, plum);
ZELTO_RECORD(zelto::test::Basket, count, weight, labels, fruit);

namespace zelto::test {
namespace {

struct Empty {};
struct Nested {
    Basket basket;
    Empty empty;
};

TEST(MemberCount, IsThatOfTheRecord) {
    EXPECT_EQ(detail::memberCount<Empty>(), 0U);
    EXPECT_EQ(detail::memberCount<Nested>(), 2U);
    EXPECT_EQ(detail::memberCount<Basket>(), 4U);
    EXPECT_EQ(schemaOf<Basket>().fields.size(), 4U);
}

TEST(HasCase, TellsWhereAnEnumerationEnds) {
    EXPECT_TRUE((detail::hasCase<Fruit, 0>()));
    EXPECT_TRUE((detail::hasCase<Fruit, 2>()));
    EXPECT_FALSE((detail::hasCase<Fruit, 3>()));
}

TEST(Names, GoBothWays) {
    EXPECT_EQ(nameOf(Fruit::pear), "pear");
    EXPECT_EQ(named<Fruit>("plum"), Fruit::plum);
    EXPECT_EQ(named<Fruit>("Plum"), std::nullopt);
    EXPECT_EQ(named<Fruit>(""), std::nullopt);
}

}  // namespace
}  // namespace zelto::test
