#include "widgetkit/ViewBounds.hpp"

#include <cmath>

#include "ui/ViewFields.hpp"

namespace zelto::widgetkit {
namespace {

using Kind = records::Schema::Kind;

/// Walks every value of a view by its schema and looks for the first that is out of bounds.
class Inspector {
  public:
    explicit Inspector(const ViewBounds& bounds) : bounds_(bounds) {}

    Result<void> inspect(const ui::View& view, std::size_t depth) {
        if (++nodes_ > bounds_.nodes) return Fault{.reason = "too many nodes"};
        if (depth > bounds_.depth) return Fault{.reason = "nodes nested too deeply"};
        if (view.modifiers.size() > bounds_.modifiers) return Fault{.reason = "too many modifiers on a node"};
        if (const auto* image = std::get_if<ui::node::Image>(&view.node))
            if (auto checked = inspect(*image); !checked) return checked;
        if (const auto* grid = std::get_if<ui::node::Grid>(&view.node);
            grid && (grid->columns < 1 || grid->columns > 64))
            return Fault{.reason = "a grid without a sensible number of columns"};
        for (const ui::Modifier& modifier : view.modifiers)
            if (isNegative(modifier)) return Fault{.reason = "a negative size"};
        if (auto checked = values(records::schemaOf<ui::Node>(), &view.node); !checked) return checked;
        if (auto checked = values(records::schemaOf<std::vector<ui::Modifier>>(), &view.modifiers); !checked)
            return checked;
        if (const ui::Views* children = ui::childrenOf(view.node))
            for (const ui::View& child : *children)
                if (auto checked = inspect(child, depth + 1); !checked) return checked;
        return {};
    }

  private:
    static bool isNegative(const ui::Modifier& modifier) {
        if (const auto* font = std::get_if<ui::modifier::Font>(&modifier)) return font->size < 0;
        const auto* frame = std::get_if<ui::modifier::Frame>(&modifier);
        return frame && (frame->width.value_or(0) < 0 || frame->height.value_or(0) < 0);
    }

    Result<void> inspect(const ui::node::Image& image) const {
        if (image.width < 1 || image.height < 1 || image.width > bounds_.imageSide ||
            image.height > bounds_.imageSide)
            return Fault{.reason = "an image of an unreasonable size"};
        if (image.pixels.bytes.size() != static_cast<std::size_t>(image.width * image.height * 4))
            return Fault{.reason = "an image whose pixels do not match its size"};
        return {};
    }

    Result<void> values(const records::Schema& schema, const void* value) const {
        switch (schema.kind) {
            case Kind::real:
                if (!(std::fabs(*static_cast<const double*>(value)) <= bounds_.points))
                    return Fault{.reason = "a number that is too large"};
                return {};
            case Kind::date:
                if (!(std::fabs(static_cast<const Date*>(value)->sinceReference) <= bounds_.seconds))
                    return Fault{.reason = "a date beyond all clocks"};
                return {};
            case Kind::string:
                if (static_cast<const std::string*>(value)->size() > bounds_.textBytes)
                    return Fault{.reason = "a text that is too long"};
                return {};
            case Kind::optional:
            case Kind::list:
                if (&schema == &records::schemaOf<ui::Views>()) return {};  // inspected as views
                if (schema.count(value) > bounds_.values) return Fault{.reason = "too many values"};
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
    std::size_t nodes_ = 0;
};

}  // namespace

Result<void> check(const ui::View& view, const ViewBounds& bounds) {
    return Inspector(bounds).inspect(view, 1);
}

}  // namespace zelto::widgetkit
