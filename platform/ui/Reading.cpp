#include "platform/ui/Reading.hpp"

#include "platform/ui/TimerText.hpp"

namespace zelto::ui {
namespace {

const std::string* labelOf(const View& view) {
    for (const Modifier& modifier : view.modifiers)
        if (const auto* accessible = std::get_if<modifier::AccessibilityLabel>(&modifier))
            return &accessible->label;
    return nullptr;
}

void read(const View& view, Date now, std::vector<std::string>& out) {
    const auto put = [&out](std::string text) {
        if (!text.empty()) out.push_back(std::move(text));
    };
    const std::string* label = labelOf(view);
    if (const auto* countdown = std::get_if<node::Countdown>(&view.node)) {
        put((label ? *label + " " : "") + timerText(countdown->end, now));
        return;
    }
    if (label) {
        put(*label);
        return;
    }
    if (const auto* text = std::get_if<node::Text>(&view.node)) put(text->text);
    if (const Views* children = childrenOf(view.node))
        for (const View& child : *children) read(child, now, out);
}

}  // namespace

std::vector<std::string> readingTexts(const View& view, Date now) {
    std::vector<std::string> out;
    read(view, now, out);
    return out;
}

std::string joined(const std::vector<std::string>& texts) {
    std::string out;
    for (const std::string& text : texts) out += (out.empty() ? "" : ", ") + text;
    return out;
}

}  // namespace zelto::ui
