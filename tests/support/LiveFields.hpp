#pragma once

#include <string>

#include <nlohmann/json.hpp>

#include "records/JSONEncoder.hpp"
#include "widget/Common/LiveDataFields.hpp"

namespace zelto::test {

/// The readings that are as they would be if nobody had taken them, by their names.
inline std::string untouched(const widget::LiveData& live) {
    const auto taken = nlohmann::json::parse(records::encodeJSON(live).value());
    const auto none = nlohmann::json::parse(records::encodeJSON(widget::LiveData{}).value());
    std::string names;
    for (const records::Schema::Field& field : records::schemaOf<widget::LiveData>().fields)
        if (taken.value(field.name, nlohmann::json()) == none.value(field.name, nlohmann::json()))
            names += (names.empty() ? "" : " ") + std::string(field.name);
    return names;
}

}  // namespace zelto::test
