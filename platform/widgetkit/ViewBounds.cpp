#include "widgetkit/ViewBounds.hpp"

#include <algorithm>
#include <cmath>

#include "ui/ViewFields.hpp"

namespace zelto::widgetkit {
namespace {

using Kind = records::Schema::Kind;

/// Walks every value of a view by its schema and looks for the first that is out of bounds.
class Inspector {
  public:
    explicit Inspector(const ViewBounds& bounds) : bounds_(bounds) {}

    /// The length of what is read of it.
    Result<std::size_t> inspect(const ui::View& view, std::size_t depth, double fontSize) {
        if (++nodes_ > bounds_.nodes) return Fault{.reason = "too many nodes"};
        if (depth > bounds_.depth) return Fault{.reason = "nodes nested too deeply"};
        if (view.modifiers.size() > bounds_.modifiers) return Fault{.reason = "too many modifiers on a node"};
        if (const auto* image = std::get_if<ui::node::Image>(&view.node))
            if (auto checked = inspect(*image); !checked) return std::move(checked).fault();
        if (const auto* grid = std::get_if<ui::node::Grid>(&view.node);
            grid && (grid->columns < 1 || grid->columns > 64))
            return Fault{.reason = "a grid without a sensible number of columns"};
        if (isNegative(view.node)) return Fault{.reason = "a negative size"};
        if (auto checked = values(records::schemaOf<ui::Node>(), &view.node); !checked)
            return std::move(checked).fault();
        const std::string* label = nullptr;
        bool isLink = false;
        for (const ui::Modifier& modifier : view.modifiers) {
            if (auto checked = inspect(modifier); !checked) return std::move(checked).fault();
            if (const auto* accessible = std::get_if<ui::modifier::AccessibilityLabel>(&modifier);
                accessible && !label)
                label = &accessible->label;
            isLink = isLink || std::holds_alternative<ui::modifier::Link>(modifier);
        }
        // The innermost font holds.
        const auto font = std::ranges::find_if(view.modifiers, [](const ui::Modifier& modifier) {
            return std::holds_alternative<ui::modifier::Font>(modifier);
        });
        if (font != view.modifiers.end()) fontSize = std::get<ui::modifier::Font>(*font).size;
        if (isLettered(view.node) && fontSize > bounds_.largePoints && ++largeTexts_ > bounds_.largeTexts)
            return Fault{.reason = "too many large texts"};
        if (strokeWidth(view.node) > bounds_.thickPoints && ++thickStrokes_ > bounds_.thickStrokes)
            return Fault{.reason = "too many thick strokes"};
        std::size_t inside = 0;
        if (const ui::Views* children = ui::childrenOf(view.node))
            for (const ui::View& child : *children) {
                auto read = inspect(child, depth + 1, fontSize);
                if (!read) return read;
                inside = joinedLength(inside, *read);
            }
        const std::size_t read = readLength(view.node, label, inside);
        if (isLink && read > bounds_.linkNameBytes) return Fault{.reason = "a link whose name is too long"};
        return read;
    }

  private:
    /// As texts are joined: by a comma and a space.
    static std::size_t joinedLength(std::size_t first, std::size_t second) {
        return first == 0 ? second : second == 0 ? first : first + 2 + second;
    }
    /// Of a node whose children are read in `inside` bytes, and of a countdown's longest text.
    static std::size_t readLength(const ui::Node& node, const std::string* label, std::size_t inside) {
        constexpr std::size_t longestTimer = 32;
        if (std::holds_alternative<ui::node::Countdown>(node))
            return longestTimer + (label ? label->size() + 1 : 0);
        if (label) return label->size();
        if (const auto* text = std::get_if<ui::node::Text>(&node)) return text->text.size();
        return inside;
    }

    static bool isLettered(const ui::Node& node) {
        return std::holds_alternative<ui::node::Text>(node) ||
               std::holds_alternative<ui::node::Symbol>(node) ||
               std::holds_alternative<ui::node::Countdown>(node);
    }
    /// 0 for what has no stroke.
    static double strokeWidth(const ui::Node& node) {
        const auto* shape = std::get_if<ui::node::Shape>(&node);
        const auto* stroke = shape ? std::get_if<ui::Stroke>(&shape->paint) : nullptr;
        return stroke ? stroke->lineWidth : 0;
    }
    static bool isNegative(const ui::Node& node) {
        if (const auto* spacer = std::get_if<ui::node::Spacer>(&node))
            return spacer->minLength.value_or(0) < 0;
        const auto* shape = std::get_if<ui::node::Shape>(&node);
        const auto* corners = shape ? std::get_if<ui::RoundedRectangle>(&shape->geometry) : nullptr;
        return strokeWidth(node) < 0 || (corners && corners->radius < 0);
    }

    Result<void> inspect(const ui::Modifier& modifier) {
        const std::string* url = nullptr;
        if (const auto* font = std::get_if<ui::modifier::Font>(&modifier)) {
            if (font->size < 0) return Fault{.reason = "a negative size"};
            if (font->size > bounds_.fontPoints) return Fault{.reason = "a font that is too large"};
        } else if (const auto* frame = std::get_if<ui::modifier::Frame>(&modifier)) {
            if (frame->width.value_or(0) < 0 || frame->height.value_or(0) < 0)
                return Fault{.reason = "a negative size"};
        } else if (const auto* link = std::get_if<ui::modifier::Link>(&modifier)) {
            if (++links_ > bounds_.links) return Fault{.reason = "too many links"};
            url = &link->url;
        } else if (const auto* whole = std::get_if<ui::modifier::WidgetURL>(&modifier)) {
            url = &whole->url;
        }
        if (!url) return values(records::schemaOf<ui::Modifier>(), &modifier);
        if (url->size() > bounds_.linkBytes) return Fault{.reason = "a link that is too long"};
        return {};
    }

    Result<void> inspect(const ui::node::Image& image) const {
        if (image.width < 1 || image.height < 1 || image.width > bounds_.imageSide ||
            image.height > bounds_.imageSide)
            return Fault{.reason = "an image of an unreasonable size"};
        if (image.pixels.bytes.size() != static_cast<std::size_t>(image.width * image.height * 4))
            return Fault{.reason = "an image whose pixels do not match its size"};
        return {};
    }

    Result<void> text(const std::string& text) {
        if (text.size() > bounds_.textBytes) return Fault{.reason = "a text that is too long"};
        allTextBytes_ += text.size();
        if (allTextBytes_ > bounds_.allTextBytes) return Fault{.reason = "too much text"};
        return {};
    }

    Result<void> values(const records::Schema& schema, const void* value) {
        switch (schema.kind) {
            case Kind::real:
                if (!(std::fabs(*static_cast<const double*>(value)) <= bounds_.points))
                    return Fault{.reason = "a number that is too large"};
                return {};
            case Kind::date:
                if (!(std::fabs(static_cast<const Date*>(value)->sinceReference) <= bounds_.seconds))
                    return Fault{.reason = "a date beyond all clocks"};
                return {};
            case Kind::string: return text(*static_cast<const std::string*>(value));
            case Kind::optional:
            case Kind::list:
                if (&schema == &records::schemaOf<ui::Views>()) return {};  // inspected as views
                allValues_ += schema.count(value);
                if (schema.count(value) > bounds_.values || allValues_ > bounds_.allValues)
                    return Fault{.reason = "too many values"};
                for (std::size_t i = 0; i < schema.count(value); ++i)
                    if (auto checked = values(schema.element(), schema.at(value, i)); !checked)
                        return checked;
                return {};
            case Kind::record:
                for (const auto& field : schema.fields)
                    if (auto checked = values(field.schema(), schema.address(field, value)); !checked)
                        return checked;
                return {};
            case Kind::choice: return values(schema.cases[schema.count(value)].schema(), schema.at(value, 0));
            default: return {};
        }
    }

    const ViewBounds& bounds_;
    std::size_t nodes_ = 0, links_ = 0, allTextBytes_ = 0, allValues_ = 0, largeTexts_ = 0, thickStrokes_ = 0;
};

}  // namespace

Result<void> check(const ui::View& view, const ViewBounds& bounds) {
    auto inspected = Inspector(bounds).inspect(view, 1, 0);
    if (!inspected) return std::move(inspected).fault();
    return {};
}

}  // namespace zelto::widgetkit
