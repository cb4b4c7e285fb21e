#include <algorithm>

#include <gtest/gtest.h>

#include "host/DesktopInterface.hpp"
#include "tests/host/Hosted.hpp"

namespace zelto::host {

using namespace records;
namespace {

struct OnTheBus : Hosted {
    int galleries = 0, focused = 0, ends = 0;
    std::string scale;

    /// The result of a call, or why there is none.
    std::string call(const std::string& name, bus::Values arguments = {}) {
        const auto interface = desktopInterface(
            {.host = [this]() -> WidgetHost& { return *host; },
             .showGallery = [this] { ++galleries; },
             .focusNext = [this] { ++focused; },
             .quit = [this] { ++ends; },
             .setOption = [this](const std::string& option, const std::string& value) -> Result<void> {
                 if (option != "scale") return Fault{.reason = "no option '" + option + "'"};
                 scale = value;
                 return {};
             }});
        std::string out;
        const auto row = std::ranges::find(interface.methods, name, &bus::Method::name);
        row->handler(
            std::move(arguments),
            bus::Answer(
                [&out](const bus::Result<bus::Values>& result) {
                    if (!result) {
                        EXPECT_EQ(result.fault().kind, bus::ErrorKind::badPayload);
                        out = result.fault().text;
                    } else if (!result->empty()) {
                        out = std::get<std::string>(result->front());
                    }
                },
                {}));
        return out;
    }
};

TEST_F(OnTheBus, EveryMethodDoesWhatItSays) {
    start();
    EXPECT_EQ(call("list"), "[]");
    const std::string id = call("add", {"battery", "small", ""});
    EXPECT_EQ(
        call("list"),
        R"([{"id":")" + id + R"(","kind":"Battery","family":"systemSmall","column":0,"row":0}])");
    EXPECT_EQ(call("move", {id, "", 3, 2}), "");
    EXPECT_EQ(call("resize", {id, "systemMedium"}), "");
    EXPECT_EQ(call("move", {id, "DP-1", 0, 1}), "");
    EXPECT_EQ(
        call("list"),
        R"([{"id":")" + id +
            R"(","kind":"Battery","family":"systemMedium","monitor":"DP-1","column":0,"row":1}])");
    asked.clear();
    EXPECT_EQ(call("reload", {"Battery"}), "");
    EXPECT_EQ(call("reload", {""}), "");
    EXPECT_EQ(call("remove", {id}), "");
    EXPECT_EQ(call("list"), "[]");
    EXPECT_EQ(call("undo"), id);
    EXPECT_EQ(call("remove", {id}), "");
    EXPECT_EQ(call("set", {"scale", "2"}), "");
    EXPECT_EQ(scale, "2");
    EXPECT_EQ(call("gallery"), "");
    EXPECT_EQ(call("quit"), "");
    EXPECT_EQ(galleries, 1);
    EXPECT_EQ(call("focus"), "");
    EXPECT_EQ(focused, 1);
    EXPECT_EQ(ends, 1);
}

TEST_F(OnTheBus, ArgumentsAndResultsHaveNames) {
    const auto described =
        desktopInterface({.host = {}, .showGallery = {}, .focusNext = {}, .quit = {}, .setOption = {}})
            .introspection();
    EXPECT_NE(
        described.find(R"(<method name="move"><arg name="id" type="s" direction="in"/>)"
                       R"(<arg name="monitor" type="s" direction="in"/>)"
                       R"(<arg name="column" type="x" direction="in"/>)"
                       R"(<arg name="row" type="x" direction="in"/></method>)"),
        std::string::npos)
        << described;
    EXPECT_NE(described.find(R"(<arg name="id" type="s" direction="out"/>)"), std::string::npos);
    EXPECT_NE(described.find(R"(<property name="seen" type="b" access="read"/>)"), std::string::npos);
}

TEST_F(OnTheBus, WhatMakesNoSenseIsAnsweredWithWhy) {
    start();
    EXPECT_EQ(call("add", {"Battery", "huge", ""}), "'huge' is not small, medium or large");
    EXPECT_EQ(call("add", {"Nothing", "systemSmall", ""}), "no widget 'Nothing'");
    EXPECT_EQ(call("add", {"Battery", "systemSmall", "HDMI-9"}), "no monitor 'HDMI-9'");
    EXPECT_EQ(call("undo"), "nothing was removed in the last ten seconds");
    EXPECT_EQ(call("set", {"frob", "2"}), "no option 'frob'");
    EXPECT_EQ(call("resize", {"x", "systemSmall"}), "no placed widget 'x'");
    EXPECT_EQ(call("move", {"x", "", 0, 0}), "no placed widget 'x'");
    EXPECT_EQ(call("remove", {"x"}), "no placed widget 'x'");
    EXPECT_EQ(call("reload", {"Nothing"}), "no widget 'Nothing'");
}

TEST(Additions, AreAKindAndAFamily) {
    const auto parse = [](const std::string& text) {
        const auto addition = parseAddition(text);
        return addition ? addition->first + " " + std::string(nameOf(addition->second)) : "nothing";
    };
    EXPECT_EQ(parse("ZeltoBattery:small"), "ZeltoBattery systemSmall");
    EXPECT_EQ(parse("ZeltoBattery:systemLarge"), "ZeltoBattery systemLarge");
    EXPECT_EQ(parse("a:b:medium"), "a:b systemMedium");
    for (const char* bad : {"", ":", ":small", "ZeltoBattery", "ZeltoBattery:", "ZeltoBattery:huge"})
        EXPECT_EQ(parse(bad), "nothing") << bad;
}

}  // namespace
}  // namespace zelto::host
