#include "Gallery.hpp"

#include <cmath>
#include <gtkmm/cssprovider.h>

#include "PaintPicture.hpp"
#include "Strings.hpp"
#include "layout/Layout.hpp"

namespace zelto::desktop {
namespace {

constexpr double dragThreshold = 8;

/// The widgets' own look, whatever the desktop's theme.
void addStyle(Gtk::Window& window) {
    const auto style = Gtk::CssProvider::create();
    style->load_from_data(
        ".zelto-gallery, .zelto-gallery scrolledwindow, .zelto-gallery viewport { background: #15171c; }"
        ".zelto-gallery label { color: #e8e8ea; font-family: Inter; font-size: 13px; }"
        ".zelto-gallery .title { font-size: 17px; font-weight: 700; color: #ffffff; }"
        ".zelto-gallery .dim { color: #9a9ca3; }"
        ".zelto-gallery button { background: none; border: none; box-shadow: none; padding: 8px;"
        " border-radius: 16px; text-shadow: none; }"
        ".zelto-gallery button:hover { background: rgba(255, 255, 255, 0.08); }"
        ".zelto-gallery button:focus { box-shadow: inset 0 0 0 3px #4f8df7; outline: none; }");
    Gtk::StyleContext::add_provider_for_screen(
        window.get_screen(), style, GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    window.get_style_context()->add_class("zelto-gallery");
}

Gtk::Label* label(const std::string& text, const char* style) {
    auto* out = Gtk::manage(new Gtk::Label(text));
    out->set_xalign(0);
    out->set_line_wrap();
    out->get_style_context()->add_class(style);
    return out;
}

}  // namespace

/// One family of one widget: its picture on a button. The picture is asked for when the gallery opens.
class Gallery::Preview : public Gtk::Button {
  public:
    Preview(Gallery& gallery, const widgetkit::WidgetDescription& widget, widgetkit::WidgetFamily family)
        : seams_(gallery.seams_), kind_(widget.kind), family_(family) {
        auto* box = Gtk::manage(new Gtk::Box(Gtk::ORIENTATION_VERTICAL, 6));
        const ui::Size size = widgetkit::sizeOf(family);
        const double zoom = seams_.backend.zoom();
        canvas_.set_size_request(
            static_cast<int>(std::lround(size.width * zoom)),
            static_cast<int>(std::lround(size.height * zoom)));
        canvas_.signal_draw().connect(sigc::mem_fun(*this, &Preview::drawn));
        box->pack_start(canvas_, Gtk::PACK_SHRINK);
        auto* name = label(strings::nameOf(family), "dim");
        name->set_xalign(0.5);
        box->pack_start(*name, Gtk::PACK_SHRINK);
        add(*box);
        set_relief(Gtk::RELIEF_NONE);
        set_valign(Gtk::ALIGN_END);
        get_accessible()->set_name(widget.displayName + ", " + strings::nameOf(family));
        signal_clicked().connect([this] { seams_.add(kind_, family_, std::nullopt); });
        drag_ = Gtk::GestureDrag::create(*this);
        drag_->set_propagation_phase(Gtk::PHASE_CAPTURE);
        drag_->signal_drag_update().connect([this](double dx, double dy) { dragged(dx, dy); });
        drag_->signal_drag_end().connect([this](double, double) { dropped(); });
        seams_.previews.ask(
            kind_,
            family,
            [this, isThere = std::weak_ptr(life_)](const std::optional<widgetkit::ArchivedEntry>& entry) {
                if (!isThere.expired() && entry) show(*entry);
            });
    }

  private:
    void show(const widgetkit::ArchivedEntry& entry) {
        const ui::Size size = widgetkit::sizeOf(family_);
        const auto displayList =
            layout::layOut(entry.view, {.size = size, .now = seams_.now()}, seams_.renderer.measuring());
        picture_ = seams_.renderer.draw(
            displayList, seams_.backend.zoom() * get_scale_factor(), drawing::Corners::rounded);
        canvas_.queue_draw();
    }

    bool drawn(const Cairo::RefPtr<Cairo::Context>& context) {
        paintPicture(context, picture_, canvas_.get_allocated_width(), canvas_.get_allocated_height());
        return true;
    }

    /// The place under the pointer, where the display tells where that is.
    std::optional<host::Slot> target() const {
        if (!seams_.backend.hasOneSpace()) return std::nullopt;
        int x = 0, y = 0;
        GdkDevice* pointer = gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_display_get_default()));
        gdk_device_get_position(pointer, nullptr, &x, &y);
        if (seams_.backend.areas().empty()) return std::nullopt;
        const MonitorArea& area = seams_.backend.areas().front();
        const ui::Size size = widgetkit::sizeOf(family_);
        const double zoom = seams_.backend.zoom();
        const layout::Point corner{x - area.x - size.width * zoom / 2, y - area.y - size.height * zoom / 2};
        return seams_.backend.slotAt(0, corner, family_);
    }

    void dragged(double dx, double dy) {
        if (!isDragging_) {
            if (std::hypot(dx, dy) < dragThreshold) return;
            drag_->set_state(Gtk::EVENT_SEQUENCE_CLAIMED);
            isDragging_ = true;
        }
        const auto place = target();
        if (!place) return;
        if (!dragIcon_) dragIcon_ = std::make_unique<DragIcon>(seams_.backend, family_, picture_);
        dragIcon_->place(*place);
    }

    void dropped() {
        if (!std::exchange(isDragging_, false)) return;
        dragIcon_.reset();
        const auto place = target();
        seams_.add(kind_, family_, place ? std::optional(place->cell) : std::nullopt);
    }

    Seams& seams_;
    std::string kind_;
    widgetkit::WidgetFamily family_;
    Gtk::DrawingArea canvas_;
    drawing::Picture picture_;
    Glib::RefPtr<Gtk::GestureDrag> drag_;
    std::unique_ptr<DragIcon> dragIcon_;
    bool isDragging_ = false;
    std::shared_ptr<int> life_ = std::make_shared<int>();
};

Gallery::Gallery(Seams seams, const std::vector<widgetkit::WidgetDescription>& offered)
    : seams_(std::move(seams)) {
    set_title(strings::galleryTitle);
    addStyle(*this);
    set_default_size(800, 760);
    list_.set_border_width(24);
    scroller_.set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
    scroller_.add(list_);
    add(scroller_);
    offer(offered);
    show_all();
    // Nothing is chosen until somebody chooses: the first key brings the focus.
    unset_focus();
}

Gallery::~Gallery() = default;

bool Gallery::on_key_press_event(GdkEventKey* event) {
    const bool isControl = (event->state & GDK_CONTROL_MASK) != 0;
    if (event->keyval != GDK_KEY_Escape && !(event->keyval == GDK_KEY_w && isControl))
        return Gtk::Window::on_key_press_event(event);
    close();
    return true;
}

void Gallery::offer(const std::vector<widgetkit::WidgetDescription>& widgets) {
    previews_.clear();
    for (Gtk::Widget* child : list_.get_children()) list_.remove(*child);
    list_.pack_start(
        *label(widgets.empty() ? strings::galleryEmpty : strings::galleryHint, "dim"), Gtk::PACK_SHRINK);
    for (const widgetkit::WidgetDescription& widget : widgets) {
        auto* row = Gtk::manage(new Gtk::Box(Gtk::ORIENTATION_VERTICAL, 4));
        row->pack_start(*label(widget.displayName, "title"), Gtk::PACK_SHRINK);
        row->pack_start(*label(widget.description, "dim"), Gtk::PACK_SHRINK);
        auto* families = Gtk::manage(new Gtk::Box(Gtk::ORIENTATION_HORIZONTAL, 12));
        for (const widgetkit::WidgetFamily family : widget.families)
            families->pack_start(
                *previews_.emplace_back(std::make_unique<Preview>(*this, widget, family)), Gtk::PACK_SHRINK);
        row->pack_start(*families, Gtk::PACK_SHRINK);
        list_.pack_start(*row, Gtk::PACK_SHRINK);
    }
    list_.show_all();
}

}  // namespace zelto::desktop
