#include "platform/widgetkit/ViewBounds.hpp"

#include <cmath>

#include "platform/ui/ViewFields.hpp"

namespace zelto {
namespace {

using Kind = Schema::Kind;

/// Walks every value of a view by its schema and looks for the first that is out of bounds.
class Inspector {
  public:
    explicit Inspector(const ViewBounds& bounds) : bounds_(bounds) {}

    std::optional<std::string> inspect(const ui::View& view, std::size_t depth) {
        if (++nodes_ > bounds_.nodes) return "too many nodes";
        if (depth > bounds_.depth) return "nodes nested too deeply";
        if (view.modifiers.size() > bounds_.modifiers) return "too many modifiers on a node";
        if (const auto* image = std::get_if<ui::node::Image>(&view.node))
            if (auto fault = inspect(*image)) return fault;
        if (const auto* grid = std::get_if<ui::node::Grid>(&view.node);
            grid && (grid->columns < 1 || grid->columns > 64))
            return "a grid without a sensible number of columns";
        for (const ui::Modifier& modifier : view.modifiers)
            if (isNegative(modifier)) return "a negative size";
        if (auto fault = values(schemaOf<ui::Node>(), &view.node)) return fault;
        if (auto fault = values(schemaOf<std::vector<ui::Modifier>>(), &view.modifiers)) return fault;
        if (const ui::Views* children = ui::childrenOf(view.node))
            for (const ui::View& child : *children)
                if (auto fault = inspect(child, depth + 1)) return fault;
        return std::nullopt;
    }

  private:
    static bool isNegative(const ui::Modifier& modifier) {
        if (const auto* font = std::get_if<ui::modifier::Font>(&modifier)) return font->size < 0;
        const auto* frame = std::get_if<ui::modifier::Frame>(&modifier);
        return frame && (frame->width.value_or(0) < 0 || frame->height.value_or(0) < 0);
    }

    std::optional<std::string> inspect(const ui::node::Image& image) const {
        if (image.width < 1 || image.height < 1 || image.width > bounds_.imageSide ||
            image.height > bounds_.imageSide)
            return "an image of an unreasonable size";
        if (image.pixels.bytes.size() != static_cast<std::size_t>(image.width * image.height * 4))
            return "an image whose pixels do not match its size";
        return std::nullopt;
    }

    std::optional<std::string> values(const Schema& schema, const void* value) const {
        switch (schema.kind) {
            case Kind::real:
                if (&schema == &schemaOf<double>() &&
                    !(std::fabs(*static_cast<const double*>(value)) <= bounds_.points))
                    return "a number that is too large";
                if (&schema == &schemaOf<Date>() &&
                    !(std::fabs(static_cast<const Date*>(value)->sinceReference) <= bounds_.seconds))
                    return "a date beyond all clocks";
                return std::nullopt;
            case Kind::string:
                if (static_cast<const std::string*>(value)->size() > bounds_.textBytes)
                    return "a text that is too long";
                return std::nullopt;
            case Kind::optional:
            case Kind::list:
                if (&schema == &schemaOf<ui::Views>()) return std::nullopt;  // inspected as views
                if (schema.count(value) > bounds_.values) return "too many values";
                for (std::size_t i = 0; i < schema.count(value); ++i)
                    if (auto fault = values(schema.element(), schema.at(value, i))) return fault;
                return std::nullopt;
            case Kind::record:
                for (const auto& field : schema.fields)
                    if (auto fault = values(field.schema(), schema.address(field, value))) return fault;
                return std::nullopt;
            case Kind::choice: return values(schema.cases[schema.count(value)].schema(), schema.at(value, 0));
            default: return std::nullopt;
        }
    }

    const ViewBounds& bounds_;
    std::size_t nodes_ = 0;
};

}  // namespace

std::optional<std::string> faultOf(const ui::View& view, const ViewBounds& bounds) {
    return Inspector(bounds).inspect(view, 1);
}

}  // namespace zelto
