#include <memory>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

#include "foundation/Result.hpp"

namespace zelto::test {
namespace {

using Numbers = std::vector<std::unique_ptr<int>>;

Result<Numbers> numbers(int count) {
    if (count < 0) return Fault{.path = "count", .reason = "is negative"};
    Numbers out;
    for (int i = 1; i <= count; ++i) out.push_back(std::make_unique<int>(i));
    return out;
}

TEST(Result, HoldsAValueOrWhyThereIsNone) {
    const auto good = numbers(2);
    ASSERT_TRUE(good);
    EXPECT_TRUE(good.has_value());
    EXPECT_EQ(good->size(), 2u);
    EXPECT_EQ(*(*good)[1], 2);
    EXPECT_THROW(good.fault(), std::bad_variant_access);

    const auto bad = numbers(-1);
    ASSERT_FALSE(bad);
    EXPECT_EQ(bad.fault(), (Fault{.path = "count", .reason = "is negative"}));
    EXPECT_THROW(bad.value(), std::bad_variant_access);
}

TEST(Result, SucceedsWithoutAValue) {
    const Result<void> good;
    EXPECT_TRUE(good);
    EXPECT_THROW(good.fault(), std::bad_optional_access);
    const Result<void> bad = Fault{.reason = "no room"};
    ASSERT_FALSE(bad);
    EXPECT_EQ(bad.fault().reason, "no room");
}

TEST(Result, ThatNobodyHoldsGivesItsContentAwayByValue) {
    static_assert(std::is_same_v<decltype(numbers(1).value()), Numbers>);
    static_assert(std::is_same_v<decltype(*numbers(1)), Numbers>);
    static_assert(std::is_same_v<decltype(numbers(1).fault()), Fault>);
    static_assert(std::is_same_v<decltype(Result<void>().fault()), Fault>);
    int sum = 0;
    for (const auto& number : numbers(4).value()) sum += *number;
    EXPECT_EQ(sum, 10);
}

TEST(Fault, NamesItsPathWhereThereIsOne) {
    EXPECT_EQ((Fault{.path = "battery.limit", .reason = "missing"}.text()), "battery.limit: missing");
    EXPECT_EQ((Fault{.reason = "empty"}.text()), "empty");
}

}  // namespace
}  // namespace zelto::test
