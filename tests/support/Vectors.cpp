#include "tests/support/Vectors.hpp"

#include <fstream>

#include "tests/support/Paths.hpp"

namespace zelto::test {

const nlohmann::json& vectors(const std::string& name) {
    static const nlohmann::json all = [] {
        std::ifstream in(dataFolder() / "vectors.json");
        return nlohmann::json::parse(in);
    }();
    return all.at(name);
}

}  // namespace zelto::test
