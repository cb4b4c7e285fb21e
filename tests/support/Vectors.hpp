#pragma once

#include <string>

#include <nlohmann/json.hpp>

namespace zelto::test {

/// One table of tests/data/vectors.json: how the platform's coders and formatters behave.
const nlohmann::json& vectors(const std::string& name);

}  // namespace zelto::test
