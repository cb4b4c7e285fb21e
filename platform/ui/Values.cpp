#include "ui/Values.hpp"

#include <algorithm>
#include <cmath>

namespace zelto::ui {
namespace {

void appendHexByte(std::string& out, double component) {
    static constexpr char digits[] = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned>(std::ceil(std::min(std::max(component, 0.0), 1.0) * 255 - 0.5));
    out += digits[byte >> 4];
    out += digits[byte & 0x0F];
}

}  // namespace

std::string hexText(const Color& color) {
    std::string out = "#";
    for (const double component : {color.red, color.green, color.blue}) appendHexByte(out, component);
    if (color.opacity != 1) appendHexByte(out, color.opacity);
    return out;
}

}  // namespace zelto::ui
