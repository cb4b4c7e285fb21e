#include "Symbols.hpp"

#include <algorithm>
#include <string>

namespace zelto::drawing {

const Symbol* symbolNamed(std::string_view name) {
    const auto symbols = allSymbols();
    const auto found = std::ranges::find(symbols, name, &Symbol::name);
    return found == symbols.end() ? nullptr : &*found;
}

const Symbol* symbolFor(std::string_view name, double side) {
    constexpr double fewPixels = 13;
    if (side > 0 && side < fewPixels)
        if (const Symbol* cut = symbolNamed(std::string(name) + "@12")) return cut;
    return symbolNamed(name);
}

}  // namespace zelto::drawing
