#pragma once

#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/desktop/Display.hpp"
#include "tests/support/Child.hpp"

namespace zelto::test {

/// A pointer and a keyboard for a Wayland compositor that has none.
class Devices {
  public:
    /// For an area of that size; `folder` is for what it needs.
    Devices(
        const std::filesystem::path& folder, const std::vector<std::string>& environment, int width,
        int height);
    ~Devices();
    Devices(const Devices&) = delete;
    Devices& operator=(const Devices&) = delete;

    void move(int x, int y) { tell("move " + std::to_string(x) + " " + std::to_string(y)); }
    void press(Display::Button button) { tell("press " + code(button)); }
    void release(Display::Button button) { tell("release " + code(button)); }
    void key(const std::string& name);

  private:
    static std::string code(Display::Button button) {
        return button == Display::Button::primary ? "272" : "273";
    }
    void tell(const std::string& command);

    std::string fifo_;
    Child program_;
    std::FILE* input_ = nullptr;
};

}  // namespace zelto::test
