#pragma once

// Owners of Cairo's and Pango's objects.

#include <memory>

#include <cairo.h>
#include <pango/pangocairo.h>

namespace zelto::drawing {

template <auto destroy>
struct Destroy {
    template <class T>
    void operator()(T* object) const {
        destroy(object);
    }
};

using Surface = std::unique_ptr<cairo_surface_t, Destroy<cairo_surface_destroy>>;
using Context = std::unique_ptr<cairo_t, Destroy<cairo_destroy>>;
using Pattern = std::unique_ptr<cairo_pattern_t, Destroy<cairo_pattern_destroy>>;
using FontOptions = std::unique_ptr<cairo_font_options_t, Destroy<cairo_font_options_destroy>>;
using FontMap = std::unique_ptr<PangoFontMap, Destroy<g_object_unref>>;
using TextContext = std::unique_ptr<PangoContext, Destroy<g_object_unref>>;
using TextLayout = std::unique_ptr<PangoLayout, Destroy<g_object_unref>>;
using FontDescription = std::unique_ptr<PangoFontDescription, Destroy<pango_font_description_free>>;
using TextAttributes = std::unique_ptr<PangoAttrList, Destroy<pango_attr_list_unref>>;
using FontMetrics = std::unique_ptr<PangoFontMetrics, Destroy<pango_font_metrics_unref>>;

/// Saves a context's state for as long as it lives.
class SavedState {
  public:
    explicit SavedState(cairo_t* context) : context_(context) { cairo_save(context_); }
    SavedState(const SavedState&) = delete;
    SavedState& operator=(const SavedState&) = delete;
    ~SavedState() { cairo_restore(context_); }

  private:
    cairo_t* context_;
};

}  // namespace zelto::drawing
