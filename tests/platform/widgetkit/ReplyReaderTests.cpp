#include <gtest/gtest.h>

#include "ui/Building.hpp"
#include "widgetkit/ReplyReader.hpp"

namespace zelto::widgetkit {
namespace {

using namespace ui;

std::string lineWith(const View& view, std::int64_t id, double date) {
    Reply reply;
    reply.id = id;
    reply.timeline = ArchivedTimeline{{{{date}, view}}, {date + 300}};
    return *encodeReply(reply);
}

View row(const std::string& text) {
    return HStack({}, Text(text), Symbol("fan")).padding(Edges::all, 3);
}

TEST(ReplyReader, ReadsWhatDecodingReads) {
    ReplyReader reader;
    const std::vector<std::string> lines{
        lineWith(row("a"), 1, 10),
        lineWith(row("a"), 2, 20),
        lineWith(row("b"), 3, 30),
        lineWith(row("a"), 4, 40),
        // One that begins as another one does.
        lineWith(VStack({}, row("a"), row("b")), 5, 50),
        lineWith(VStack({}, row("a")), 6, 60),
        lineWith(VStack({}, row("a"), row("b")), 7, 70),
        // Texts that look like what is replaced, and like what replaces it.
        lineWith(Text(R"(,"view":{)"), 8, 80),
        lineWith(Text("\x1a"), 9, 90),
        lineWith(Text("\x1a"), 10, 100),
        R"({"id":11,"error":"none"})",
        R"({"id":12,"timeline":{"entries":[],"reloadAfter":1}})"};
    for (int round = 0; round < 2; ++round)
        for (const std::string& line : lines)
            EXPECT_EQ(reader.read(line).value(), decodeReply(line).value()) << line;
}

TEST(ReplyReader, OfSeveralEntriesNoneIsTakenForAnother) {
    ReplyReader reader;
    const auto known = lineWith(row("a"), 1, 10);
    EXPECT_EQ(reader.read(known).value(), decodeReply(known).value());
    Reply reply;
    reply.id = 2;
    reply.timeline = ArchivedTimeline{{{{1}, row("a")}, {{2}, row("b")}}, {3}};
    EXPECT_EQ(reader.read(*encodeReply(reply)).value(), reply);
    reply.timeline = {};
    reply.entry = ArchivedEntry{{1}, row("a")};
    EXPECT_EQ(reader.read(*encodeReply(reply)).value(), reply);
}

TEST(ReplyReader, RefusesWhatDecodingRefusesBehindAKnownView) {
    ReplyReader reader;
    const auto line = lineWith(row("a"), 1, 10);
    ASSERT_TRUE(reader.read(line));
    for (const char* ending : {"", "}", "]", ",", "x"}) {
        const std::string damaged = line.substr(0, line.size() - 1) + ending;
        const auto decoded = decodeReply(damaged);
        const auto read = reader.read(damaged);
        ASSERT_EQ(read.has_value(), decoded.has_value()) << damaged;
        if (read) {
            EXPECT_EQ(read.value(), decoded.value());
        }
    }
}

TEST(ReplyReader, RemembersSoManyViews) {
    ReplyReader reader;
    for (std::size_t i = 0; i < ReplyReader::mostViews * 2; ++i) {
        const auto line = lineWith(row(std::to_string(i)), static_cast<std::int64_t>(i), 10);
        EXPECT_EQ(reader.read(line).value(), decodeReply(line).value());
    }
    const auto first = lineWith(row("0"), 1, 20);
    EXPECT_EQ(reader.read(first).value(), decodeReply(first).value());
}

}  // namespace
}  // namespace zelto::widgetkit
