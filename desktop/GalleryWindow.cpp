#include "GalleryWindow.hpp"

#include <gtkmm/cssprovider.h>

#include "Strings.hpp"

namespace zelto::desktop {
namespace {

/// The widgets' own look, whatever the desktop's theme.
void addStyle(Gtk::Window& window) {
    const auto style = Gtk::CssProvider::create();
    style->load_from_data(
        ".zelto-gallery, .zelto-gallery scrolledwindow, .zelto-gallery viewport { background: #15171c; }"
        ".zelto-gallery label { color: #e8e8ea; font-family: Inter; font-size: 13px; }"
        ".zelto-gallery .title { font-size: 17px; font-weight: 700; color: #ffffff; }"
        ".zelto-gallery .dim { color: #a6a8af; }"
        ".zelto-gallery .notice { color: #ffffff; background: #23345c; padding: 8px 24px; }"
        ".zelto-gallery button { background: none; border: 1px solid transparent; box-shadow: none;"
        " padding: 8px; border-radius: 16px; text-shadow: none; color: #e8e8ea; }"
        ".zelto-gallery button:hover { background: rgba(255, 255, 255, 0.08); }"
        ".zelto-gallery button:checked { background: rgba(79, 141, 247, 0.35); }"
        ".zelto-gallery .line button, .zelto-gallery combobox button, .zelto-gallery spinbutton,"
        " .zelto-gallery entry { background: #22252c; border: 1px solid #3a3e48; border-radius: 8px;"
        " color: #e8e8ea; padding: 4px 8px; box-shadow: none; }"
        ".zelto-gallery spinbutton button { border-radius: 0; border: none; }"
        ".zelto-gallery button:focus, .zelto-gallery entry:focus, .zelto-gallery spinbutton:focus,"
        " .zelto-gallery checkbutton:focus { box-shadow: inset 0 0 0 3px #4f8df7; outline: none; }");
    Gtk::StyleContext::add_provider_for_screen(
        window.get_screen(), style, GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    window.get_style_context()->add_class("zelto-gallery");
}

}  // namespace

GalleryWindow::GalleryWindow(Seams seams)
    : undo_(std::move(seams.undo)),
      gallery_(seams.gallery),
      placed_(seams.gallery.host, seams.gallery.backend),
      settings_(seams.gallery.host) {
    set_title(strings::windowTitle);
    addStyle(*this);
    set_default_size(800, 760);
    pages_.add(gallery_, "gallery", strings::galleryPage);
    pages_.add(placed_, "placed", strings::placedPage);
    pages_.add(settings_, "settings", strings::settingsPage);
    switcher_.set_stack(pages_);
    switcher_.set_halign(Gtk::ALIGN_CENTER);
    switcher_.set_margin_top(12);
    box_.pack_start(switcher_, Gtk::PACK_SHRINK);
    notice_.set_line_wrap();
    notice_.set_xalign(0);
    notice_.set_no_show_all();
    notice_.set_margin_top(12);
    notice_.get_style_context()->add_class("notice");
    notice_.get_accessible()->set_role(Atk::ROLE_NOTIFICATION);
    box_.pack_start(notice_, Gtk::PACK_SHRINK);
    box_.pack_start(pages_);
    add(box_);
    show_all();
    // What is typed looks for a widget, and the first Tab comes to one.
    gallery_.search();
}

void GalleryWindow::offer(const std::vector<widgetkit::WidgetDescription>& widgets) {
    gallery_.offer(widgets);
    placed_.nameAnew();
}

void GalleryWindow::say(const std::string& text) {
    // Told to assistive technology each time that it comes.
    notice_.hide();
    notice_.set_text(text);
    notice_.show();
}

bool GalleryWindow::on_key_press_event(GdkEventKey* event) {
    const bool isControl = (event->state & GDK_CONTROL_MASK) != 0;
    if (event->keyval == GDK_KEY_Escape || (event->keyval == GDK_KEY_w && isControl)) {
        close();
        return true;
    }
    if (event->keyval == GDK_KEY_z && isControl) {
        undo_();
        return true;
    }
    if (event->keyval == GDK_KEY_f && isControl) {
        pages_.set_visible_child(gallery_);
        gallery_.search();
        return true;
    }
    return Gtk::Window::on_key_press_event(event);
}

}  // namespace zelto::desktop
