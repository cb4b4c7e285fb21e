#include "platform/layout/Reading.hpp"

#include "platform/layout/TimerText.hpp"

namespace zelto::layout {
namespace {

void read(const ui::View& view, Date now, std::vector<std::string>& out) {
    const auto put = [&out](std::string text) {
        if (!text.empty()) out.push_back(std::move(text));
    };
    for (const ui::Modifier& modifier : view.modifiers)
        if (const auto* accessible = std::get_if<ui::modifier::AccessibilityLabel>(&modifier)) {
            put(accessible->label);
            return;
        }
    if (const auto* text = std::get_if<ui::node::Text>(&view.node)) put(text->text);
    if (const auto* countdown = std::get_if<ui::node::Countdown>(&view.node))
        put(timerText(countdown->end, now));
    if (const ui::Views* children = ui::childrenOf(view.node))
        for (const ui::View& child : *children) read(child, now, out);
}

}  // namespace

std::vector<std::string> readingTexts(const ui::View& view, Date now) {
    std::vector<std::string> out;
    read(view, now, out);
    return out;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string out;
    for (const std::string& text : texts) out += (out.empty() ? "" : ", ") + text;
    return out;
}

}  // namespace zelto::layout
