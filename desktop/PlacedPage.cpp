#include "PlacedPage.hpp"

#include <algorithm>
#include <gtkmm/button.h>
#include <gtkmm/comboboxtext.h>
#include <optional>
#include <utility>

#include "Strings.hpp"
#include "runloop/MainLoop.hpp"

namespace zelto::desktop {

/// A widget's line. It stays while the widget does, so that the focus does.
class PlacedPage::Line : public Gtk::Box {
  public:
    Line(PlacedPage& page, const host::PlacedWidget& widget)
        : Gtk::Box(Gtk::ORIENTATION_VERTICAL, 4),
          host_(page.host_),
          backend_(page.backend_),
          widget_(widget) {
        title_.set_xalign(0);
        title_.get_style_context()->add_class("title");
        where_.set_xalign(0);
        where_.get_style_context()->add_class("dim");
        pack_start(title_, Gtk::PACK_SHRINK);
        pack_start(where_, Gtk::PACK_SHRINK);
        auto* controls = Gtk::manage(new Gtk::Box(Gtk::ORIENTATION_HORIZONTAL, 6));
        controls->get_style_context()->add_class("line");
        for (const auto& [text, spoken, columns, rows] :
             {Move{"←", "para a esquerda", -1, 0},
              Move{"→", "para a direita", 1, 0},
              Move{"↑", "para cima", 0, -1},
              Move{"↓", "para baixo", 0, 1}}) {
            auto& button =
                addButton(*controls, text, [this, columns = columns, rows = rows] { step(columns, rows); });
            moves_.emplace_back(&button, spoken);
        }
        sizes_.signal_changed().connect([this] { sizeChosen(); });
        monitors_.signal_changed().connect([this] { monitorChosen(); });
        controls->pack_start(sizes_, Gtk::PACK_SHRINK);
        controls->pack_start(monitors_, Gtk::PACK_SHRINK);
        monitors_.set_no_show_all();
        reload_ =
            &addButton(*controls, strings::reload, [this] { static_cast<void>(host_.reload(widget_.id)); });
        remove_ = &addButton(*controls, strings::remove, [this] {
            // Not from within its own signal.
            runloop::postToMainThread(
                [&host = host_, id = widget_.id] { static_cast<void>(host.remove(id)); });
        });
        pack_start(*controls, Gtk::PACK_SHRINK);
        show_all();
    }

    const std::string& id() const { return widget_.id; }

    void present(const host::PlacedWidget& widget, const std::optional<host::Slot>& slot) {
        widget_ = widget;
        slot_ = slot;
        const auto* description = host_.offers().find(widget.kind);
        const std::string name = description ? description->displayName : widget.kind;
        title_.set_text(name);
        where_.set_text(slot ? placeOf(*slot) : strings::withoutRoom);
        const auto nameIt = [&name](Gtk::Widget& control, const std::string& what) {
            control.get_accessible()->set_name(name + ": " + what);
        };
        for (const auto& [button, spoken] : moves_) nameIt(*button, spoken);
        nameIt(*reload_, strings::reload);
        nameIt(*remove_, strings::remove);
        nameIt(sizes_, strings::scale);
        nameIt(monitors_, strings::moveTo);
        isShowing_ = true;
        sizes_.remove_all();
        families_ = description ? description->families : std::vector{widget.family};
        for (const auto family : families_) sizes_.append(strings::nameOf(family));
        sizes_.set_active(static_cast<int>(std::ranges::find(families_, widget.family) - families_.begin()));
        monitors_.remove_all();
        for (std::size_t i = 0; i < backend_.areas().size(); ++i)
            monitors_.append(strings::monitorName(backend_.areas()[i].name, i));
        if (slot) monitors_.set_active(static_cast<int>(slot->monitor));
        monitors_.set_visible(backend_.areas().size() > 1);
        isShowing_ = false;
    }

  private:
    struct Move {
        const char *text, *spoken;
        int columns, rows;
    };

    Gtk::Button& addButton(Gtk::Box& box, const std::string& text, const std::function<void()>& action) {
        auto* button = Gtk::manage(new Gtk::Button(text));
        button->signal_clicked().connect(action);
        box.pack_start(*button, Gtk::PACK_SHRINK);
        return *button;
    }

    std::string placeOf(const host::Slot& slot) const {
        const std::string monitor = strings::monitorName(backend_.areas()[slot.monitor].name, slot.monitor);
        return strings::place(monitor, slot.cell.column, slot.cell.row);
    }

    /// Where widgets stay, a person is told so.
    bool isLocked() {
        const bool isLocked = host_.settings().locked.value_or(false);
        if (isLocked) where_.set_text(strings::locked);
        return isLocked;
    }
    void step(int columns, int rows) {
        if (!slot_ || isLocked()) return;
        const host::Cell wanted{slot_->cell.column + columns, slot_->cell.row + rows};
        const host::Slot slot = backend_.slotAt(slot_->monitor, backend_.position(wanted), widget_.family);
        tell(host_.move(widget_.id, slot));
    }
    void sizeChosen() {
        const int chosen = sizes_.get_active_row_number();
        if (!isShowing_ && chosen >= 0)
            tell(host_.setFamily(widget_.id, families_[static_cast<std::size_t>(chosen)]));
    }
    void monitorChosen() {
        const int chosen = monitors_.get_active_row_number();
        if (!isShowing_ && chosen >= 0 && !isLocked())
            tell(host_.send(widget_.id, static_cast<std::size_t>(chosen), widget_.cell()));
    }
    void tell(const Result<void>& done) {
        if (!done) where_.set_text(strings::noRoom);
    }

    host::WidgetHost& host_;
    const DisplayBackend& backend_;
    host::PlacedWidget widget_;
    std::optional<host::Slot> slot_;
    Gtk::Label title_, where_;
    std::vector<std::pair<Gtk::Button*, std::string>> moves_;
    std::vector<widgetkit::WidgetFamily> families_;
    Gtk::ComboBoxText sizes_, monitors_;
    Gtk::Button *reload_ = nullptr, *remove_ = nullptr;
    bool isShowing_ = false;
};

PlacedPage::PlacedPage(host::WidgetHost& host, const DisplayBackend& backend)
    : host_(host), backend_(backend) {
    set_policy(Gtk::POLICY_NEVER, Gtk::POLICY_AUTOMATIC);
    list_.set_border_width(24);
    empty_.set_text(strings::nothingPlaced);
    empty_.set_xalign(0);
    empty_.set_no_show_all();
    list_.pack_start(empty_, Gtk::PACK_SHRINK);
    add(list_);
}

PlacedPage::~PlacedPage() = default;

void PlacedPage::arranged(const std::vector<host::ArrangedWidget>& widgets) {
    arranged_ = widgets;
    nameAnew();
}

void PlacedPage::nameAnew() {
    std::erase_if(lines_, [this](const auto& line) {
        return std::ranges::find(host_.widgets(), line->id(), &host::PlacedWidget::id) ==
               host_.widgets().end();
    });
    for (std::size_t i = 0; i < host_.widgets().size(); ++i) {
        const host::PlacedWidget& widget = host_.widgets()[i];
        auto line = std::ranges::find(lines_, widget.id, [](const auto& each) { return each->id(); });
        if (line == lines_.end()) {
            line = lines_.insert(lines_.end(), std::make_unique<Line>(*this, widget));
            list_.pack_start(**line, Gtk::PACK_SHRINK);
        }
        list_.reorder_child(**line, static_cast<int>(i) + 1);
        const auto place = std::ranges::find(
            arranged_, widget.id, [](const host::ArrangedWidget& each) { return each.widget.id; });
        (*line)->present(widget, place == arranged_.end() ? std::nullopt : std::optional(place->slot));
    }
    empty_.set_visible(host_.widgets().empty());
}

}  // namespace zelto::desktop
