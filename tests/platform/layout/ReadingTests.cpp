#include <gtest/gtest.h>

#include "platform/layout/Reading.hpp"
#include "platform/ui/Building.hpp"

namespace zelto::test {
namespace {

using namespace ui;

TEST(ReadingTexts, AreInOrderWithLabelsInPlaceOfWhatTheyName) {
    const View view = VStack(
        {},
        Label("cpu", "37%"),
        VStack({}, Text("73%"), Text("Bateria")).accessibilityLabel("Bateria, 73%"),
        Symbol("sun.max.fill").accessibilityLabel("dia"),
        Symbol("globe"),
        Countdown({2700}),
        Text(""));
    EXPECT_EQ(
        layout::readingTexts(view, {0}), (std::vector<std::string>{"37%", "Bateria, 73%", "dia", "45:00"}));
}

}  // namespace
}  // namespace zelto::test
