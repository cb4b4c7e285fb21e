#pragma once

#include <memory>
#include <optional>
#include <string>

#include "layout/TextMeasuring.hpp"

namespace zelto::drawing {

struct TypesetText;

/// Sets texts in the system's fonts: Inter, its display cut from 20 points, rounded outlines for the rounded
/// design, and whatever the system has for characters that Inter lacks. Lengths do not depend on any scale.
/// For one thread.
class Typesetter : public layout::TextMeasuring {
  public:
    Typesetter();
    ~Typesetter() override;

    layout::TextExtent measure(
        std::string_view text, const ui::modifier::Font& font, std::optional<double> width,
        std::int64_t lines) override;
    double longestRun(std::string_view text, const ui::modifier::Font& font) override;
    double lineHeight(const ui::modifier::Font& font) override;
    layout::Size symbolSize(std::string_view name, double fontSize) override;

    /// The family that stands in for the system font where that is missing; absent where it is there.
    static std::optional<std::string> substituteFont();

    /// A text that is ready to paint; stays good until the next call.
    const TypesetText& typeset(
        std::string_view text, const ui::modifier::Font& font, std::optional<double> width,
        std::int64_t lines);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace zelto::drawing
