#pragma once

// Owners of Cairo's and Pango's objects.

#include <cairo.h>
#include <pango/pangocairo.h>

#include "foundation/Handle.hpp"

namespace zelto::drawing {

using Surface = Handle<cairo_surface_t, cairo_surface_destroy>;
using Context = Handle<cairo_t, cairo_destroy>;
using Pattern = Handle<cairo_pattern_t, cairo_pattern_destroy>;
using FontOptions = Handle<cairo_font_options_t, cairo_font_options_destroy>;
using FontMap = Handle<PangoFontMap, g_object_unref>;
using TextContext = Handle<PangoContext, g_object_unref>;
using TextLayout = Handle<PangoLayout, g_object_unref>;
using FontDescription = Handle<PangoFontDescription, pango_font_description_free>;
using TextAttributes = Handle<PangoAttrList, pango_attr_list_unref>;
using FontMetrics = Handle<PangoFontMetrics, pango_font_metrics_unref>;

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
