#include "UndoLine.hpp"

#include <cmath>
#include <gtkmm/box.h>
#include <gtkmm/cssprovider.h>
#include <gtkmm/label.h>

#include "Outline.hpp"
#include "Strings.hpp"
#include "drawing/Paths.hpp"
#include "drawing/Renderer.hpp"

namespace zelto::desktop {
namespace {

constexpr double height = 72;  // points

Glib::RefPtr<Gtk::CssProvider> styleFor(double zoom) {
    auto style = Gtk::CssProvider::create();
    const auto points = [zoom](int length) {
        return std::to_string(static_cast<int>(std::lround(length * zoom))) + "px";
    };
    style->load_from_data(
        "button { margin: 0; padding: 0; border: none; background: none; box-shadow: none; outline: none;"
        " text-shadow: none; min-height: 0; min-width: 0; border-radius: " +
        points(24) +
        "; }"
        "button:focus { box-shadow: inset 0 0 0 3px #4f8df7; }"
        "label { color: #e8e8ea; font-family: Inter; font-size: " +
        points(11) + "; } label.action { color: #8fb5ff; font-weight: 700; }");
    return style;
}

}  // namespace

UndoLine::UndoLine(
    const DisplayBackend& backend, Seams seams, const std::string& name, host::Slot slot,
    widgetkit::WidgetFamily family, double seconds)
    : LowWindow(backend, "zelto-undo"), seams_(std::move(seams)) {
    const auto style = styleFor(backend.zoom());
    const auto styled = [&style](Gtk::Widget& widget) {
        widget.get_style_context()->add_provider(style, GTK_STYLE_PROVIDER_PRIORITY_USER);
    };
    auto* box = Gtk::manage(new Gtk::Box(Gtk::ORIENTATION_VERTICAL, 2));
    box->set_valign(Gtk::ALIGN_CENTER);
    auto* what = Gtk::manage(new Gtk::Label(strings::removed(name)));
    auto* action = Gtk::manage(new Gtk::Label(strings::undo));
    action->get_style_context()->add_class("action");
    what->set_ellipsize(Pango::ELLIPSIZE_END);
    for (Gtk::Label* label : {what, action}) {
        styled(*label);
        box->pack_start(*label, Gtk::PACK_SHRINK);
    }
    styled(button_);
    button_.add(*box);
    button_.get_accessible()->set_name(strings::removed(name) + ". " + strings::undo);
    button_.signal_clicked().connect([this] { seams_.undo(); });
    const double width = widgetkit::sizeOf(family).width;
    button_.set_size_request(
        static_cast<int>(std::lround(width * backend.zoom())),
        static_cast<int>(std::lround(height * backend.zoom())));
    add(button_);
    set_title(strings::removed(name));
    show_all_children();
    backend.place(*this, slot);
    show();
    backend.keepBelow(*this);
    over_ = runloop::MainSource::after(seconds, [this] { seams_.over(); });
}

bool UndoLine::on_key_press_event(GdkEventKey* event) {
    const bool isControl = (event->state & GDK_CONTROL_MASK) != 0;
    switch (event->keyval) {
        case GDK_KEY_z:
        case GDK_KEY_Z:
            if (!isControl) break;
            seams_.undo();
            return true;
        case GDK_KEY_Escape: seams_.over(); return true;
        case GDK_KEY_Tab:
        case GDK_KEY_ISO_Left_Tab:
        case GDK_KEY_Left:
        case GDK_KEY_Right:
        case GDK_KEY_Up:
        case GDK_KEY_Down: seams_.walk(); return true;
        default: break;
    }
    return LowWindow::on_key_press_event(event);
}

void UndoLine::on_size_allocate(Gtk::Allocation& allocation) {
    LowWindow::on_size_allocate(allocation);
    if (!backend().isTranslucent()) shapeToOutline(*this, backend().zoom());
}

bool UndoLine::on_draw(const Cairo::RefPtr<Cairo::Context>& context) {
    context->set_operator(Cairo::OPERATOR_SOURCE);
    context->set_source_rgba(0, 0, 0, 0);
    context->paint();
    context->set_operator(Cairo::OPERATOR_OVER);
    context->begin_new_path();
    drawing::addContinuousRectangle(
        context->cobj(),
        {0, 0, static_cast<double>(get_allocated_width()), static_cast<double>(get_allocated_height())},
        drawing::containerCornerRadius * backend().zoom());
    context->set_source_rgb(0.09, 0.1, 0.12);
    context->fill();
    return Gtk::Window::on_draw(context);
}

}  // namespace zelto::desktop
