#pragma once

#include <functional>
#include <gtkmm/button.h>
#include <gtkmm/fixed.h>
#include <gtkmm/label.h>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "drawing/Renderer.hpp"
#include "layout/DisplayList.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::desktop {

/// Something to tap: draws nothing but that the pointer is over it or that it has the focus.
class TapArea : public Gtk::Button {
  public:
    /// A corner radius in the display's units.
    TapArea(double cornerRadius, bool showsHover);

  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& context) override;

  private:
    double cornerRadius_;
    bool showsHover_;
};

/// What a widget shows, and where it can be tapped: its picture, with one area for all of it and one for each
/// link. What an entry changes is drawn, and a countdown once a second while it is seen.
class WidgetView : public Gtk::Fixed {
  public:
    struct Seams {
        drawing::Renderer& renderer;
        std::function<Date()> now;
        std::function<void(const std::string& url)> open;
        drawing::Corners corners = drawing::Corners::rounded;
    };
    WidgetView(Seams seams, double zoom);
    ~WidgetView() override;

    /// Its name for assistive technology.
    void name(const std::string& displayName);
    void resize(widgetkit::WidgetFamily family);
    void present(const widgetkit::ArchivedEntry& entry);
    /// Says something briefly, over the picture.
    void say(const std::string& text);
    /// Whether anything of it is seen; a countdown stops otherwise.
    void setSeen(bool isSeen);
    /// What is drawn, for the ghost of a drag.
    const drawing::Picture& picture() const { return picture_; }

  protected:
    bool on_draw(const Cairo::RefPtr<Cairo::Context>& context) override;
    /// The widget's own size, whatever a message would like.
    void get_preferred_width_vfunc(int& minimum, int& natural) const override;
    void get_preferred_height_vfunc(int& minimum, int& natural) const override;

  private:
    void layOutAgain();
    void describe(Date now);
    void placeLinks();
    void drawAll();
    /// Draws what differs from what is drawn.
    void drawChanges(const layout::DisplayList& before);
    void tick();
    void waitForTick();
    double scale() const;

    Seams seams_;
    double zoom_;
    layout::Size size_;
    std::string name_;
    std::optional<widgetkit::ArchivedEntry> entry_;
    layout::DisplayList displayList_;
    drawing::Picture picture_;
    double drawnScale_ = 0;
    TapArea whole_;
    std::vector<std::unique_ptr<TapArea>> links_;
    std::unique_ptr<Gtk::Label> message_;
    bool isSeen_ = true;
    struct Sources;
    std::unique_ptr<Sources> sources_;
};

}  // namespace zelto::desktop
