#include <gtest/gtest.h>

#include "ui/Building.hpp"
#include "ui/Reading.hpp"

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
        Countdown({60}).accessibilityLabel("termina em"),
        Text(""));
    EXPECT_EQ(
        ui::readingTexts(view, {0}),
        (std::vector<std::string>{"37%", "Bateria, 73%", "dia", "45:00", "termina em 1:00"}));
}

}  // namespace
}  // namespace zelto::test
