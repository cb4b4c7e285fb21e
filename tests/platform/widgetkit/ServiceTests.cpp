#include <array>
#include <barrier>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"
#include "platform/widgetkit/LineServer.hpp"
#include "ui/Building.hpp"
#include "widgetkit/Service.hpp"

namespace zelto::test {

using namespace widgetkit;
namespace {

struct ToyEntry {
    Date date;
    std::string text;
};
struct ToyProvider {
    using Entry = ToyEntry;
    ToyEntry placeholder(const TimelineProviderContext&) const { return {{1}, "placeholder"}; }
    void getSnapshot(
        const TimelineProviderContext& context, const std::function<void(ToyEntry)>& completion) const {
        completion({{2}, context.isPreview ? "preview" : "snapshot"});
    }
    void getTimeline(
        const TimelineProviderContext&, const std::function<void(Timeline<ToyEntry>)>& completion) const {
        completion({{{{3}, "first"}, {{4}, "second"}}, TimelineReloadPolicy::after({5})});
    }
};

Service service() {
    auto toy = StaticConfiguration(
                   "Toy",
                   ToyProvider{},
                   [](const ToyEntry& entry, const EnvironmentValues& environment) {
                       return ui::Text(entry.text + " " + environment.formatting.environment().locale);
                   })
                   .configurationDisplayName("The toy")
                   .description("For tests.")
                   .supportedFamilies({WidgetFamily::systemSmall});
    std::vector<WidgetConfiguration> widgets;
    widgets.push_back(std::move(toy));
    return {std::move(widgets), {.environment = {"pt_BR", "UTC"}, .now = [] { return Date{9}; }}};
}

TEST(Service, ListsItsWidgets) {
    EXPECT_EQ(
        service().answer(R"({"id":1,"request":"bundle"})"),
        R"({"id":1,"widgets":[{"kind":"Toy","displayName":"The toy","description":"For tests.","families":["systemSmall"]}]})");
}

std::string text(const ArchivedEntry& entry) {
    return std::get<ui::node::Text>(entry.view.node).text;
}

Reply ask(const std::string& rest) {
    return decodeReply(
               service().answer(R"({"id":4,"kind":"Toy","family":"systemSmall","request":)" + rest + "}"))
        .value();
}

TEST(Service, BuildsEntriesForTheRequestsEnvironment) {
    EXPECT_EQ(text(*ask(R"("placeholder")").entry), "placeholder pt_BR");
    EXPECT_EQ(text(*ask(R"("snapshot","locale":"en_US")").entry), "snapshot en_US");
    EXPECT_EQ(text(*ask(R"("snapshot","preview":true)").entry), "preview pt_BR");
    const auto timeline = ask(R"("timeline","timeZone":"Asia/Tokyo")").timeline;
    ASSERT_TRUE(timeline);
    EXPECT_EQ(timeline->entries.size(), 2U);
    EXPECT_EQ(timeline->entries[1].date, Date{4});
    EXPECT_EQ(timeline->reloadAfter, Date{5});
}

TEST(Service, AnswersWhatMakesNoSenseWithAnErrorAndItsID) {
    const std::vector<std::array<const char*, 2>> rows{
        {"garbage", R"({"error":"line 1, column 1: invalid literal"})"},
        {R"({"id":3})", R"({"id":3,"error":"request: missing"})"},
        {R"({"id":3,"request":"sing"})", R"({"id":3,"error":"request: not a request"})"},
        {R"({"id":3,"request":)",
         R"({"id":3,"error":"line 1, column 19: unexpected end of input; expected '[', '{', or a literal"})"},
        {R"({"id":"x","request":"bundle"})", R"({"error":"id: expected an integer, found a string"})"},
        {R"({"id":3,"request":"timeline"})", R"({"id":3,"error":"kind: missing"})"},
        {R"({"id":3,"request":"timeline","kind":"Toy"})", R"({"id":3,"error":"family: missing"})"},
        {R"({"id":3,"request":"timeline","kind":"No","family":"systemSmall"})",
         R"({"id":3,"error":"kind: no widget \"No\""})"},
        {R"({"id":3,"request":"timeline","kind":"Toy","family":"systemLarge"})",
         R"({"id":3,"error":"family: Toy offers systemSmall"})"},
        {R"({"id":3,"request":"timeline","kind":"Toy","family":"systemSmall","timeZone":"Mars"})",
         R"({"id":3,"error":"timeZone: unknown"})"},
        {R"({"id":3,"request":"timeline","kind":"Toy","family":"systemSmall","locale":"zz"})",
         R"({"id":3,"error":"locale: unknown"})"}};
    for (const auto& [line, reply] : rows) EXPECT_EQ(service().answer(line), reply);
    EXPECT_EQ(
        service().answer(std::string(Service::longestLine + 1, 'x')),
        R"({"error":"a request line holds at most 65536 bytes"})");
}

/// A provider for which something runs out.
struct FailingProvider : ToyProvider {
    ToyEntry placeholder(const TimelineProviderContext&) const { throw std::bad_alloc(); }
    void getSnapshot(const TimelineProviderContext&, const std::function<void(ToyEntry)>&) const {
        throw std::runtime_error("no more of it");
    }
};

TEST(Service, WhatRunsOutCostsOneRequest) {
    std::vector<WidgetConfiguration> widgets;
    widgets.push_back(
        StaticConfiguration("Toy", FailingProvider{}, [](const ToyEntry& entry, const EnvironmentValues&) {
            return ui::Text(entry.text);
        }).supportedFamilies({WidgetFamily::systemSmall}));
    const Service failing(
        std::move(widgets), {.environment = {"pt_BR", "UTC"}, .now = [] { return Date{9}; }});
    const auto answer = [&](const std::string& request) {
        return failing.answer(R"({"id":4,"kind":"Toy","family":"systemSmall","request":")" + request + "\"}");
    };
    EXPECT_EQ(answer("placeholder"), R"({"id":4,"error":"the request failed: std::bad_alloc"})");
    EXPECT_EQ(answer("snapshot"), R"({"id":4,"error":"the request failed: no more of it"})");
    EXPECT_TRUE(decodeReply(answer("timeline"))->timeline);
}

TEST(Service, HandsOutWhatHostsTake) {
    std::vector<WidgetConfiguration> widgets;
    widgets.push_back(
        StaticConfiguration("Toy", ToyProvider{}, [](const ToyEntry&, const EnvironmentValues&) {
            return ui::VStack({}, ui::Text(std::string(20'000, 'x')), ui::Countdown({1e300}));
        }).supportedFamilies({WidgetFamily::systemSmall}));
    const Service talkative(
        std::move(widgets), {.environment = {"pt_BR", "UTC"}, .now = [] { return Date{9}; }});
    for (const char* request : {"placeholder", "snapshot", "timeline"}) {
        const auto reply = decodeReply(talkative.answer(
            R"({"id":4,"kind":"Toy","family":"systemSmall","request":")" + std::string(request) + "\"}"));
        ASSERT_TRUE(reply);
        EXPECT_FALSE(reply->error) << *reply->error;
    }
}

struct PipePair {
    FileDescriptor read, write;
    PipePair() {
        std::array<int, 2> ends{};
        if (pipe2(ends.data(), O_CLOEXEC) != 0) throw std::runtime_error("no pipe");
        read = FileDescriptor(ends[0]);
        write = FileDescriptor(ends[1]);
    }
};

std::string drain(int fd) {
    std::string out;
    std::array<char, 256> buffer;
    for (ssize_t count = 0; (count = read(fd, buffer.data(), buffer.size())) > 0;)
        out.append(buffer.data(), static_cast<std::size_t>(count));
    return out;
}

TEST(LineServer, WorksOnLinesSideBySide) {
    constexpr int lines = 11;
    PipePair in, out;
    const std::string input = "0\n1\n2\n3\n4\n5\n6\n7\n8\n9\n10";  // the last line may lack its end
    ASSERT_EQ(write(in.write.get(), input.data(), input.size()), std::ssize(input));
    in.write.reset();
    // Nobody gets past the barrier unless all are worked on at once.
    std::barrier together(lines);
    EXPECT_TRUE(serveLines(in.read.get(), out.write.get(), 100, [&](std::string_view line) {
        together.arrive_and_wait();
        return "<" + std::string(line) + ">";
    }));
    out.write.reset();
    const std::string output = drain(out.read.get());
    for (int i = 0; i < lines; ++i)
        EXPECT_NE(output.find("<" + std::to_string(i) + ">\n"), std::string::npos);
}

TEST(LineServer, OutlivesAnAnswerForWhichThereIsNoMemory) {
    PipePair in, out;
    const std::string input = "a\nb\na\nb\n";
    ASSERT_EQ(write(in.write.get(), input.data(), input.size()), std::ssize(input));
    in.write.reset();
    EXPECT_TRUE(serveLines(in.read.get(), out.write.get(), 10, [](std::string_view line) {
        if (line == "a") throw std::bad_alloc();
        return std::string(line);
    }));
    out.write.reset();
    EXPECT_EQ(drain(out.read.get()), "b\nb\n");
}

TEST(LineServer, CutsLongLinesAndPassesOverEmptyOnes) {
    PipePair in, out;
    const std::string input = "\n  \r\n" + std::string(50, 'x') + "\nshort\n";
    ASSERT_EQ(write(in.write.get(), input.data(), input.size()), std::ssize(input));
    in.write.reset();
    EXPECT_TRUE(serveLines(in.read.get(), out.write.get(), 10, [](std::string_view line) {
        return std::to_string(line.size());
    }));
    out.write.reset();
    const std::string output = drain(out.read.get());
    EXPECT_TRUE(output == "11\n5\n" || output == "5\n11\n") << output;
}

}  // namespace
}  // namespace zelto::test
