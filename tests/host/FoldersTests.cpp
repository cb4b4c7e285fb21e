#include <functional>
#include <map>

#include <gtest/gtest.h>

#include "host/Folders.hpp"

namespace zelto::host {
namespace {

TEST(Folders, FollowTheEnvironmentIfItIsAbsolute) {
    const auto of = [](std::optional<std::string> config,
                       std::optional<std::string>
                           cache,
                       std::optional<std::string> home = {}) {
        const std::map<std::string, std::optional<std::string>, std::less<>> variables{
            {"XDG_CONFIG_HOME", config}, {"XDG_CACHE_HOME", cache}, {"HOME", home}};
        const auto folders =
            Folders::of({[&](std::string_view name) { return variables.find(name)->second; }, "/home/ana"});
        return folders.configuration.string() + " " + folders.cache.string();
    };
    EXPECT_EQ(of(std::nullopt, std::nullopt), "/home/ana/.config/zelto /home/ana/.cache/zelto");
    EXPECT_EQ(of("/c", "/k"), "/c/zelto /k/zelto");
    EXPECT_EQ(of("", "relative"), "/home/ana/.config/zelto /home/ana/.cache/zelto");
    EXPECT_EQ(of(std::nullopt, "/k", "/tmp/other"), "/tmp/other/.config/zelto /k/zelto");
    EXPECT_EQ(of(std::nullopt, std::nullopt, "relative"), "/home/ana/.config/zelto /home/ana/.cache/zelto");
}

}  // namespace
}  // namespace zelto::host
