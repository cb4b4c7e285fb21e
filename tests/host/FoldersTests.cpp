#include <gtest/gtest.h>

#include "host/Folders.hpp"

namespace zelto::host {
namespace {

TEST(Folders, FollowTheEnvironmentIfItIsAbsolute) {
    const auto of = [](std::optional<std::string> config, std::optional<std::string> cache) {
        const auto folders = Folders::of(
            [&](std::string_view name) { return name == "XDG_CONFIG_HOME" ? config : cache; }, "/home/ana");
        return folders.configuration.string() + " " + folders.cache.string();
    };
    EXPECT_EQ(of(std::nullopt, std::nullopt), "/home/ana/.config/zelto /home/ana/.cache/zelto");
    EXPECT_EQ(of("/c", "/k"), "/c/zelto /k/zelto");
    EXPECT_EQ(of("", "relative"), "/home/ana/.config/zelto /home/ana/.cache/zelto");
}

}  // namespace
}  // namespace zelto::host
