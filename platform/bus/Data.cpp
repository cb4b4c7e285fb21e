#include "bus/Data.hpp"

#include <cmath>
#include <limits>

namespace zelto::bus {

std::optional<std::int64_t> Data::integer() const {
    if (const auto* wide = std::get_if<std::uint64_t>(&value_)) {
        if (*wide > std::uint64_t{std::numeric_limits<std::int64_t>::max()}) return std::nullopt;
        return static_cast<std::int64_t>(*wide);
    }
    return get<std::int64_t>();
}

std::optional<double> Data::number() const {
    if (const auto* wide = std::get_if<std::uint64_t>(&value_)) return static_cast<double>(*wide);
    if (const auto* integer = std::get_if<std::int64_t>(&value_)) return static_cast<double>(*integer);
    const auto real = get<double>();
    return real && std::isfinite(*real) ? real : std::nullopt;
}

const Data::List& Data::list() const {
    static const List none;
    const List* list = std::get_if<List>(&value_);
    return list ? *list : none;
}

const Data::Map& Data::map() const {
    static const Map none;
    const Map* map = std::get_if<Map>(&value_);
    return map ? *map : none;
}

const Data& Data::operator[](std::size_t index) const {
    static const Data nothing;
    return index < list().size() ? list()[index] : nothing;
}

const Data& Data::operator[](std::string_view key) const {
    static const Data nothing;
    const auto found = map().find(std::string(key));
    return found != map().end() ? found->second : nothing;
}

}  // namespace zelto::bus
