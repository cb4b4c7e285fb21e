#include "platform/drawing/Symbols.hpp"

#include <algorithm>

namespace zelto::drawing {

const Symbol* symbolNamed(std::string_view name) {
    const auto symbols = allSymbols();
    const auto found = std::ranges::find(symbols, name, &Symbol::name);
    return found == symbols.end() ? nullptr : &*found;
}

}  // namespace zelto::drawing
