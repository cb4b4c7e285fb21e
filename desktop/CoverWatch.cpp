#include "CoverWatch.hpp"

#include <X11/Xlib.h>
#include <algorithm>
#include <gdk/gdkx.h>
#include <optional>
#include <set>
#include <span>
#include <utility>

#include "runloop/MainLoop.hpp"

namespace zelto::desktop {
namespace {

/// Changes that follow each other so soon, in seconds, are looked at together: a window that is dragged
/// changes all the time.
constexpr double together = 0.2;
/// Of a property's list; a window manager tells of fewer windows.
constexpr long mostItems = 4096;

/// The numbers of a property of 32 bits each.
std::optional<std::vector<unsigned long>> numbers(Display* display, Window window, Atom name) {
    Atom type = None;
    int format = 0;
    unsigned long count = 0, left = 0;
    unsigned char* data = nullptr;
    if (XGetWindowProperty(
            display,
            window,
            name,
            0,
            mostItems,
            False,
            AnyPropertyType,
            &type,
            &format,
            &count,
            &left,
            &data) != Success)
        return std::nullopt;
    std::optional<std::vector<unsigned long>> out;
    // As longs, however long those are.
    if (type != None && format == 32) {
        const auto* values = reinterpret_cast<const unsigned long*>(data);
        out.emplace(values, values + count);
    }
    if (data) XFree(data);
    return out;
}

}  // namespace

struct CoverWatch::State {
    State(GdkDisplay* wanted, std::function<void()> told)
        : gdk(wanted),
          display(gdk_x11_display_get_xdisplay(wanted)),
          root(DefaultRootWindow(display)),
          changed(std::move(told)) {
        const auto atom = [this](const char* name) { return XInternAtom(display, name, False); };
        stacking = atom("_NET_CLIENT_LIST_STACKING");
        currentDesktop = atom("_NET_CURRENT_DESKTOP");
        windowDesktop = atom("_NET_WM_DESKTOP");
        windowState = atom("_NET_WM_STATE");
        hidden = atom("_NET_WM_STATE_HIDDEN");
        opaqueRegion = atom("_NET_WM_OPAQUE_REGION");
        opacity = atom("_NET_WM_WINDOW_OPACITY");
        GdkWindow* rootWindow = gdk_screen_get_root_window(gdk_screen_get_default());
        gdk_window_set_events(
            rootWindow,
            static_cast<GdkEventMask>(gdk_window_get_events(rootWindow) | GDK_PROPERTY_CHANGE_MASK));
        gdk_window_add_filter(nullptr, &filter, this);
        look();
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;
    ~State() { gdk_window_remove_filter(nullptr, &filter, this); }

    static GdkFilterReturn filter(GdkXEvent* event, GdkEvent*, gpointer self) {
        static_cast<State*>(self)->take(*static_cast<const XEvent*>(event));
        return GDK_FILTER_CONTINUE;
    }

    void take(const XEvent& event) {
        bool isNews = false;
        switch (event.type) {
            case PropertyNotify: {
                const Atom name = event.xproperty.atom;
                isNews = event.xproperty.window == root ? name == stacking || name == currentDesktop
                                                        : name == windowState || name == windowDesktop ||
                                                              name == opaqueRegion || name == opacity;
                break;
            }
            case ConfigureNotify: isNews = followed.contains(event.xconfigure.window); break;
            case MapNotify: isNews = followed.contains(event.xmap.window); break;
            case UnmapNotify: isNews = followed.contains(event.xunmap.window); break;
            default: break;
        }
        if (!isNews || std::exchange(isDue, true)) return;
        due = runloop::MainSource::after(together, [this] {
            isDue = false;
            look();
            changed();
        });
    }

    /// Windows come and go while they are asked for.
    void look() {
        gdk_x11_display_error_trap_push(gdk);
        windows.clear();
        const auto desktops = numbers(display, root, currentDesktop);
        const auto desktop = desktops && !desktops->empty() ? std::optional(desktops->front()) : std::nullopt;
        std::set<Window> there;
        const std::vector<unsigned long> stack =
            numbers(display, root, stacking).value_or(std::vector<unsigned long>());
        for (const Window window : stack) {
            there.insert(window);
            // Ours are known to the toolkit, which has an event mask of its own for them.
            const bool isOwn = gdk_x11_window_lookup_for_display(gdk, window) != nullptr;
            if (!isOwn && !followed.contains(window))
                XSelectInput(display, window, StructureNotifyMask | PropertyChangeMask);
            windows.push_back(
                {window, isShown(window, desktop) ? opaqueAreas(window) : std::vector<ScreenArea>()});
        }
        followed = std::move(there);
        gdk_x11_display_error_trap_pop_ignored(gdk);
    }

    bool isShown(Window window, std::optional<unsigned long> desktop) const {
        constexpr unsigned long everyDesktop = 0xFFFFFFFF;
        XWindowAttributes attributes{};
        if (XGetWindowAttributes(display, window, &attributes) == 0 || attributes.map_state != IsViewable)
            return false;
        const auto states = numbers(display, window, windowState);
        if (states && std::ranges::find(*states, hidden) != states->end()) return false;
        const auto own = numbers(display, window, windowDesktop);
        return !desktop || !own || own->empty() || own->front() == everyDesktop || own->front() == *desktop;
    }

    struct Extent {
        ScreenArea area;
        int depth;
    };
    std::optional<Extent> extentOf(Window window) const {
        XWindowAttributes attributes{};
        int x = 0, y = 0;
        Window child = None;
        if (XGetWindowAttributes(display, window, &attributes) == 0 ||
            XTranslateCoordinates(display, window, root, 0, 0, &x, &y, &child) == 0)
            return std::nullopt;
        return Extent{{x, y, attributes.width, attributes.height}, attributes.depth};
    }

    /// What a window manager has put around a window; the window itself where there is nothing.
    Window frameOf(Window window) const {
        Window rootFound = None, parent = None, *children = nullptr;
        unsigned int count = 0;
        while (XQueryTree(display, window, &rootFound, &parent, &children, &count) != 0) {
            if (children) XFree(children);
            if (parent == None || parent == root) break;
            window = parent;
        }
        return window;
    }

    std::vector<ScreenArea> opaqueAreas(Window window) const {
        constexpr unsigned long whole = 0xFFFFFFFF;
        constexpr int depthWithOpacity = 32;
        const auto overall = numbers(display, window, opacity);
        if (overall && !overall->empty() && overall->front() != whole) return {};
        if (const auto frame = extentOf(frameOf(window)); frame && frame->depth != depthWithOpacity)
            return {frame->area};
        const auto extent = extentOf(window);
        if (!extent) return {};
        const ScreenArea& area = extent->area;
        if (extent->depth != depthWithOpacity) return {area};
        std::vector<ScreenArea> out;
        const std::vector<unsigned long> told =
            numbers(display, window, opaqueRegion).value_or(std::vector<unsigned long>());
        for (std::size_t i = 0; i + 4 <= told.size(); i += 4) {
            const std::span rectangle(told.data() + i, 4);
            // Whatever a stranger writes there; windows reach no further.
            if (std::ranges::any_of(rectangle, [](unsigned long each) { return each > 0x7FFF; })) continue;
            out.push_back(
                {area.x + static_cast<int>(rectangle[0]),
                 area.y + static_cast<int>(rectangle[1]),
                 static_cast<int>(rectangle[2]),
                 static_cast<int>(rectangle[3])});
        }
        return out;
    }

    GdkDisplay* gdk;
    Display* display;
    Window root;
    std::function<void()> changed;
    Atom stacking = None, currentDesktop = None, windowDesktop = None, windowState = None, hidden = None,
         opaqueRegion = None, opacity = None;
    std::vector<OtherWindow> windows;  // from the lowest to the highest
    std::set<Window> followed;
    bool isDue = false;
    runloop::MainSource due;
};

CoverWatch::CoverWatch(GdkDisplay* display, std::function<void()> changed) {
    if (GDK_IS_X11_DISPLAY(display)) state_ = std::make_unique<State>(display, std::move(changed));
}

CoverWatch::~CoverWatch() = default;

bool CoverWatch::isHidden(GdkWindow* window) const {
    if (!state_ || !window) return false;
    gdk_x11_display_error_trap_push(state_->gdk);
    const Window own = gdk_x11_window_get_xid(window);
    const auto extent = state_->extentOf(own);
    gdk_x11_display_error_trap_pop_ignored(state_->gdk);
    return extent && desktop::isHidden(extent->area, own, state_->windows);
}

}  // namespace zelto::desktop
