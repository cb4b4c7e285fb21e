// Draws how the widgets look on desktops of all kinds: contact-sheets FOLDER [DESKTOP...] runs the real host
// on each and writes FOLDER/DESKTOP.png with four pictures: all eleven, a drag, a menu, and a message.

#include <algorithm>
#include <chrono>
#include <functional>
#include <iostream>
#include <map>
#include <thread>

#include "drawing/PNG.hpp"
#include "foundation/Files.hpp"
#include "tests/desktop/Display.hpp"
#include "tests/desktop/GnomeShell.hpp"
#include "tests/desktop/KWin.hpp"
#include "tests/desktop/PlacedWidgets.hpp"
#include "tests/desktop/RunningDesktop.hpp"

namespace {

using namespace zelto;
using namespace zelto::test;

using Start = std::function<std::unique_ptr<Display>()>;
const std::map<std::string, Start> desktops{
    {"gnome", [] { return std::make_unique<GnomeShell>(); }},
    {"kwin-wayland", [] { return std::make_unique<KWin>(); }},
    {"weston", [] { return startWeston(); }},
    {"sway", [] { return startTwoOutputs(); }},
    {"kwin-x11", [] { return startX11(Manager::kwin); }},
    {"xfce", [] { return startX11(Manager::xfwm); }},
    {"openbox", [] { return startX11(Manager::openbox); }},
    {"openbox-picom", [] { return startX11(Manager::picom); }},
    {"i3", [] { return startX11(Manager::i3); }},
    {"fluxbox", [] { return startX11(Manager::fluxbox); }}};

/// Half as large, a pixel the mean of four.
drawing::Picture halved(const drawing::Picture& from) {
    drawing::Picture out;
    out.width = from.width / 2;
    out.height = from.height / 2;
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x) {
            std::uint32_t pixel = 0xFF000000U;
            for (const int shift : {0, 8, 16}) {
                std::uint32_t sum = 0;
                for (const auto& [dx, dy] : {std::pair{0, 0}, {1, 0}, {0, 1}, {1, 1}})
                    sum += from.at(2 * x + dx, 2 * y + dy) >> shift & 0xFF;
                pixel |= sum / 4 << shift;
            }
            out.pixels.push_back(pixel);
        }
    return out;
}

/// Two beside each other, two below.
drawing::Picture sheet(const std::vector<drawing::Picture>& pictures) {
    drawing::Picture out;
    const int width = pictures.front().width, height = pictures.front().height;
    out.width = 2 * width;
    out.height = 2 * height;
    for (int y = 0; y < out.height; ++y)
        for (int x = 0; x < out.width; ++x)
            out.pixels.push_back(pictures.at(static_cast<std::size_t>(x / width + 2 * (y / height)))
                                     .at(x % width, y % height));
    return out;
}

/// For what a desktop fades in.
void settle() {
    std::this_thread::sleep_for(std::chrono::seconds(1));
}

void draw(const std::string& name, const Start& start, const std::filesystem::path& folder) {
    const auto display = start();
    RunningDesktop desktop(*display);
    const auto widgets = eleven();
    desktop.place(widgets);
    display->move(Display::width - 2, Display::height - 2);
    desktop.start();
    const bool isRight = eventually([&] { return desktop.allSeen(); });
    std::cout << name << ": " << (isRight ? "every pixel is in its place" : "not what was expected")
              << std::endl;
    std::vector<drawing::Picture> pictures{halved(display->screenshot())};
    const auto at = [&](const host::PlacedWidget& widget, layout::Point point) {
        const auto [x, y] = RunningDesktop::onDisplay(widget, point);
        return std::pair(x, y + display->panel());
    };
    const auto [x, y] = at(widgets[4], {20, 82});
    display->move(x, y);
    display->press(Display::Button::primary);
    for (int i = 1; i <= 6; ++i) display->move(x - 30 * i, y + 90 * i);
    settle();
    pictures.push_back(halved(display->screenshot()));
    display->move(x, y);
    display->release(Display::Button::primary);
    const auto [menuX, menuY] = at(widgets[0], {200, 80});
    display->click(menuX, menuY, Display::Button::secondary);
    settle();
    pictures.push_back(halved(display->screenshot()));
    display->key("Escape");
    settle();
    desktop.forgetHandler();
    const auto [tapX, tapY] = at(widgets[1], {8, 82});
    display->click(tapX, tapY);
    settle();
    pictures.push_back(halved(display->screenshot()));
    const auto png = drawing::encodePNG(sheet(pictures));
    if (!png || !writeFileAtomically(folder / (name + ".png"), *png))
        throw std::runtime_error("cannot write into " + folder.string());
    std::cout << desktop.log() << std::flush;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "usage: contact-sheets FOLDER [DESKTOP...]\n";
        return 2;
    }
    std::filesystem::create_directories(argv[1]);
    const std::vector<std::string> wanted(argv + 2, argv + argc);
    int status = 0;
    for (const auto& [name, start] : desktops) {
        if (!wanted.empty() && std::ranges::find(wanted, name) == wanted.end()) continue;
        try {
            draw(name, start, argv[1]);
        } catch (const std::exception& error) {
            std::cout << name << ": " << error.what() << std::endl;
            status = 1;
        }
    }
    return status;
}
