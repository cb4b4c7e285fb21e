#include "Gallery.hpp"

#include <cmath>

#include "PaintPicture.hpp"
#include "Strings.hpp"
#include "layout/Layout.hpp"

namespace zelto::desktop {
namespace {

constexpr double dragThreshold = 8;

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
        seams_.host.previews().ask(
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
        const DisplayBackend& backend = seams_.backend;
        if (!backend.hasOneSpace() || backend.areas().empty()) return std::nullopt;
        int x = 0, y = 0;
        GdkDevice* pointer = gdk_seat_get_pointer(gdk_display_get_default_seat(gdk_display_get_default()));
        gdk_device_get_position(pointer, nullptr, &x, &y);
        const std::size_t monitor = backend.monitorAt(x, y).value_or(0);
        const MonitorArea& area = backend.areas()[monitor];
        const ui::Size size = widgetkit::sizeOf(family_);
        const layout::Point corner{
            x - area.x - size.width * backend.zoom() / 2, y - area.y - size.height * backend.zoom() / 2};
        return backend.slotAt(monitor, corner, family_);
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
        dragIcon_->place(*place, seams_.host.isFree(*place, family_) ? Landing::free : Landing::refused);
    }

    void dropped() {
        if (!std::exchange(isDragging_, false)) return;
        dragIcon_.reset();
        const auto place = target();
        seams_.add(kind_, family_, place);
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

Gallery::Gallery(Seams seams) : Gtk::Box(Gtk::ORIENTATION_VERTICAL, 0), seams_(std::move(seams)) {
    search_.set_placeholder_text(strings::gallerySearch);
    search_.get_accessible()->set_name(strings::gallerySearch);
    search_.set_margin_start(24);
    search_.set_margin_end(24);
    search_.set_margin_top(16);
    search_.signal_changed().connect([this] { find(); });
    pack_start(search_, Gtk::PACK_SHRINK);
    list_.set_border_width(24);
    scroller_.set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
    scroller_.add(list_);
    pack_start(scroller_);
    nothingFound_.set_text(strings::galleryNothingFound);
    nothingFound_.set_xalign(0);
    offer(seams_.host.offers().widgets());
}

Gallery::~Gallery() = default;

void Gallery::offer(const std::vector<widgetkit::WidgetDescription>& widgets) {
    previews_.clear();
    rows_.clear();
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
        rows_.push_back({row, widget.displayName + " " + widget.description + " " + widget.kind});
    }
    list_.pack_start(nothingFound_, Gtk::PACK_SHRINK);
    list_.show_all();
    find();
}

void Gallery::find() {
    const std::string wanted = search_.get_text();
    bool isAny = rows_.empty();
    for (const Row& row : rows_) {
        // By the beginnings of words, whatever their case and accents.
        const bool isFound =
            wanted.empty() || g_str_match_string(wanted.c_str(), row.texts.c_str(), TRUE) != FALSE;
        row.widget->set_visible(isFound);
        isAny = isAny || isFound;
    }
    nothingFound_.set_visible(!isAny);
}

}  // namespace zelto::desktop
