#include "Typesetter.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <tuple>
#include <unordered_map>

#include <fontconfig/fontconfig.h>
#include <pango/pangofc-fontmap.h>

#include "Symbols.hpp"
#include "TypesetText.hpp"

namespace zelto::drawing {
namespace {

/// From this size on, in points, the cut that is drawn for large sizes is used.
constexpr double displaySize = 20;
/// The rounded design is the regular cut, stroked this wide (in em), made smaller by what the stroke adds so
/// that its capitals keep their height, and set wider by as much.
constexpr double roundingStroke = 0.062;
constexpr double capHeight = 0.7273;
constexpr double roundedScale = 1 - roundingStroke / capHeight;

/// The system font, and what is nearest to it where that is missing.
#define FAMILIES "Inter,Noto Sans,Liberation Sans,DejaVu Sans,Sans"

/// How many texts are kept set; a widget has a dozen, most of which recur with every entry.
constexpr std::size_t mostTexts = 1024;
/// All that eleven widgets show takes less than a tenth of it.
constexpr std::size_t mostMaskBytes = std::size_t{32} << 20;

PangoWeight pangoWeight(ui::Weight weight) {
    switch (weight) {
        case ui::Weight::regular: return PANGO_WEIGHT_NORMAL;
        case ui::Weight::semibold: return PANGO_WEIGHT_SEMIBOLD;
        case ui::Weight::bold: return PANGO_WEIGHT_BOLD;
    }
    return PANGO_WEIGHT_NORMAL;
}

double points(int pangoUnits) {
    return static_cast<double>(pangoUnits) / PANGO_SCALE;
}

/// Of Inter, in em: the height of a line, and how much of it is above the baseline.
constexpr double interLine = 1.2102, interAscent = 0.96875;

/// Lines are whole points high, whatever font a character is taken from; those of the rounded design as if it
/// were not made smaller.
double lineHeightOf(const ui::modifier::Font& font) {
    constexpr double slack = 0.01;
    return std::ceil(interLine * font.size - slack);
}
/// Of the first line, from its top: what rounding up has added is shared by both sides.
double baselineOf(const ui::modifier::Font& font) {
    return (lineHeightOf(font) - interLine * font.size) / 2 + interAscent * font.size;
}

bool isRounded(const ui::modifier::Font& font) {
    return font.design == ui::Design::rounded;
}

using FontPattern = Handle<FcPattern, FcPatternDestroy>;

FontDescription describe(const ui::modifier::Font& font) {
    FontDescription description(pango_font_description_new());
    const bool rounded = isRounded(font);
    pango_font_description_set_family_static(
        description.get(), font.size >= displaySize && !rounded ? "Inter Display," FAMILIES : FAMILIES);
    pango_font_description_set_weight(
        description.get(), rounded ? PANGO_WEIGHT_NORMAL : pangoWeight(font.weight));
    pango_font_description_set_absolute_size(
        description.get(), font.size * (rounded ? roundedScale : 1) * PANGO_SCALE);
    return description;
}

using FontKey = std::tuple<double, ui::Weight, ui::Design, ui::Digits>;

struct TextKey {
    std::string text;
    FontKey font;
    double width;  // -1 for none
    std::int64_t lines;
    bool operator==(const TextKey&) const = default;
};
struct TextKeyHash {
    std::size_t operator()(const TextKey& key) const {
        const auto mix = [](std::size_t a, std::size_t b) { return a * 0x9E3779B97F4A7C15U + b; };
        std::size_t hash = std::hash<std::string>()(key.text);
        hash = mix(hash, std::hash<double>()(std::get<0>(key.font)));
        hash = mix(hash, static_cast<std::size_t>(std::get<1>(key.font)));
        hash = mix(hash, std::hash<double>()(key.width));
        return mix(hash, static_cast<std::size_t>(key.lines));
    }
};

}  // namespace

struct Typesetter::State {
    FontMap fontMap{pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT)};
    TextContext context;
    std::map<FontKey, FontDescription> fonts;
    std::unordered_map<TextKey, TypesetText, TextKeyHash> texts;
    std::size_t maskBytes = 0;

    State() {
        // One point is one unit, glyphs stand where their advances put them, no length is fitted to pixels:
        // the same ones come out at every scale. Outlines alone are fitted, in height only, when they are
        // drawn.
        pango_cairo_font_map_set_resolution(PANGO_CAIRO_FONT_MAP(fontMap.get()), 72);
        context.reset(pango_font_map_create_context(fontMap.get()));
        pango_context_set_round_glyph_positions(context.get(), FALSE);
        const FontOptions options(cairo_font_options_create());
        cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_SLIGHT);
        cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
        pango_cairo_context_set_font_options(context.get(), options.get());
        pango_context_set_language(context.get(), pango_language_from_string("pt"));
    }

    const PangoFontDescription* description(const ui::modifier::Font& font) {
        auto& kept = fonts[{font.size, font.weight, font.design, font.digits}];
        if (!kept) kept = describe(font);
        return kept.get();
    }

    /// A text that is cut is set once more without the blanks before its ellipsis.
    TypesetText set(
        std::string_view text, const ui::modifier::Font& font, std::optional<double> width,
        std::int64_t lines) {
        TypesetText out = setOnce(text, font, width, lines);
        if (lines != 1) return out;
        const auto cut = cutAt(out.layout.get());
        if (!cut) return out;
        std::size_t end = std::min(*cut, text.size());
        while (end > 0 && (text[end - 1] == ' ' || text[end - 1] == '\t')) --end;
        if (end == *cut || end == 0) return out;
        return setOnce(std::string(text.substr(0, end)) + "…", font, width, lines);
    }

    static bool hasColor(PangoLayout* layout) {
        bool found = false;
        for (const GSList* line = pango_layout_get_lines_readonly(layout); line && !found; line = line->next)
            for (const GSList* run = static_cast<const PangoLayoutLine*>(line->data)->runs; run && !found;
                 run = run->next) {
                const PangoGlyphString* glyphs = static_cast<const PangoLayoutRun*>(run->data)->glyphs;
                for (int i = 0; i < glyphs->num_glyphs; ++i)
                    found = found || glyphs->glyphs[i].attr.is_color != 0;
            }
        return found;
    }

    /// Where in its text the ellipsis of a line begins; absent when it has none.
    static std::optional<std::size_t> cutAt(PangoLayout* layout) {
        if (!pango_layout_is_ellipsized(layout)) return std::nullopt;
        const PangoLayoutLine* line = pango_layout_get_line_readonly(layout, 0);
        for (const GSList* each = line ? line->runs : nullptr; each; each = each->next) {
            const PangoItem* item = static_cast<const PangoLayoutRun*>(each->data)->item;
            if ((item->analysis.flags & PANGO_ANALYSIS_FLAG_IS_ELLIPSIS) != 0)
                return static_cast<std::size_t>(item->offset);
        }
        return std::nullopt;
    }

    TypesetText setOnce(
        std::string_view text, const ui::modifier::Font& font, std::optional<double> width,
        std::int64_t limit) {
        TypesetText out;
        out.layout.reset(pango_layout_new(context.get()));
        PangoLayout* layout = out.layout.get();
        pango_layout_set_font_description(layout, description(font));
        pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
        pango_layout_set_auto_dir(layout, TRUE);
        if (width) {
            // Rounded up: a width that a text has just been told to have must hold it.
            pango_layout_set_width(layout, static_cast<int>(std::ceil(*width * PANGO_SCALE)));
            pango_layout_set_wrap(layout, PANGO_WRAP_WORD);
            if (limit > 0) {
                pango_layout_set_height(layout, static_cast<int>(-limit));
                pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
            }
        }
        const TextAttributes attributes(pango_attr_list_new());
        if (isRounded(font)) {
            out.roundingStroke = roundingStroke * font.size;
            pango_attr_list_insert(
                attributes.get(),
                pango_attr_letter_spacing_new(static_cast<int>(out.roundingStroke * PANGO_SCALE)));
        }
        if (font.digits == ui::Digits::monospaced)
            pango_attr_list_insert(attributes.get(), pango_attr_font_features_new("tnum=1"));
        pango_layout_set_attributes(layout, attributes.get());
        out.lineHeight = lineHeightOf(font);
        out.extent = {{0, 0}, baselineOf(font)};
        double left = 0, right = 0, top = 0, bottom = 0;
        int lines = 0;
        out.maskBytes = &maskBytes;
        double leftmost = std::numeric_limits<double>::infinity();
        out.forEachLine([&](PangoLayoutLine*, double x, double) { leftmost = std::min(leftmost, x); });
        out.left = leftmost;
        out.forEachLine([&](PangoLayoutLine* line, double x, double y) {
            PangoRectangle logical, ink;
            pango_layout_line_get_extents(line, &ink, &logical);
            out.extent.size.width = std::max(out.extent.size.width, points(logical.width));
            ++lines;
            if (ink.width == 0 || ink.height == 0) return;
            const double half = out.roundingStroke / 2;
            const bool isFirst = right == left;
            const auto span = [isFirst](double& least, double& most, double from, double to) {
                least = isFirst ? from : std::min(least, from);
                most = isFirst ? to : std::max(most, to);
            };
            span(top, bottom, y + points(ink.y) - half, y + points(ink.y + ink.height) + half);
            span(left, right, x + points(ink.x) - half, x + points(ink.x + ink.width) + half);
        });
        out.extent.size.height = lines * out.lineHeight;
        out.ink = {left, top, right - left, bottom - top};
        out.isColored = hasColor(layout);
        return out;
    }
};

Typesetter::Typesetter() : state_(std::make_unique<State>()) {}
Typesetter::~Typesetter() = default;

std::optional<std::string> Typesetter::substituteFont() {
    const FontPattern wanted(FcNameParse(reinterpret_cast<const FcChar8*>(FAMILIES)));
    FcConfigSubstitute(nullptr, wanted.get(), FcMatchPattern);
    FcDefaultSubstitute(wanted.get());
    FcResult result = FcResultNoMatch;
    const FontPattern found(FcFontMatch(nullptr, wanted.get(), &result));
    FcChar8* family = nullptr;
    if (!found || FcPatternGetString(found.get(), FC_FAMILY, 0, &family) != FcResultMatch) return "no font";
    const std::string name(reinterpret_cast<const char*>(family));
    return name.starts_with("Inter") ? std::nullopt : std::optional(name);
}

const TypesetText& Typesetter::typeset(
    std::string_view text, const ui::modifier::Font& font, std::optional<double> width, std::int64_t lines) {
    TextKey key{
        std::string(text), {font.size, font.weight, font.design, font.digits}, width ? *width : -1, lines};
    const auto found = state_->texts.find(key);
    if (found != state_->texts.end()) return found->second;
    if (state_->texts.size() >= mostTexts || state_->maskBytes > mostMaskBytes) {
        state_->texts.clear();
        state_->maskBytes = 0;
    }
    return state_->texts.emplace(std::move(key), state_->set(text, font, width, lines)).first->second;
}

layout::TextExtent Typesetter::measure(
    std::string_view text, const ui::modifier::Font& font, std::optional<double> width, std::int64_t lines) {
    return typeset(text, font, width, lines).extent;
}

double Typesetter::lineHeight(const ui::modifier::Font& font) {
    return lineHeightOf(font);
}

double Typesetter::longestRun(std::string_view text, const ui::modifier::Font& font) {
    // In no room at all, every line holds what cannot be divided.
    return typeset(text, font, 0, 0).extent.size.width;
}

layout::Size Typesetter::symbolSize(std::string_view name, double fontSize) {
    const double side = symbolSide(fontSize);
    const Symbol* symbol = symbolNamed(name);
    return {symbol ? (symbol->right - symbol->left) / 24 * side : side, std::ceil(side - 0.01)};
}

}  // namespace zelto::drawing
