#include "ui/Reading.hpp"

#include "ui/TimerText.hpp"

namespace zelto::ui {
namespace {

const std::string* labelOf(const View& view) {
    for (const Modifier& modifier : view.modifiers)
        if (const auto* accessible = std::get_if<modifier::AccessibilityLabel>(&modifier))
            return &accessible->label;
    return nullptr;
}

/// Reads what a view is; what its label says instead is met before.
struct Reader {
    Date now;
    const std::string* label;
    std::vector<std::string>& out;

    void put(std::string text) const {
        if (!text.empty()) out.push_back(std::move(text));
    }
    void read(const Views& children) const;

    void operator()(const node::Countdown& countdown) const {
        put((label ? *label + " " : "") + timerText(countdown.end, now));
    }
    void operator()(const node::Text& text) const { put(label ? *label : text.text); }
    void operator()(const node::Symbol&) const { silent(); }
    void operator()(const node::Image&) const { silent(); }
    void operator()(const node::Spacer&) const { silent(); }
    void operator()(const node::Shape&) const { silent(); }
    void operator()(const node::VStack& stack) const { read(stack.children); }
    void operator()(const node::HStack& stack) const { read(stack.children); }
    void operator()(const node::ZStack& stack) const { read(stack.children); }
    void operator()(const node::Grid& grid) const { read(grid.children); }

  private:
    void silent() const {
        if (label) put(*label);
    }
};

void read(const View& view, Date now, std::vector<std::string>& out) {
    std::visit(Reader{now, labelOf(view), out}, view.node);
}

void Reader::read(const Views& children) const {
    if (label)
        put(*label);
    else
        for (const View& child : children) zelto::ui::read(child, now, out);
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
