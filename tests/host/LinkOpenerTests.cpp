#include <gtest/gtest.h>

#include "host/LinkOpener.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::host {
namespace {

TEST(LinkOpener, RunsACommandWithTheLinkAsItIs) {
    const test::TemporaryFolder folder;
    const auto fifo = folder.path() / "fifo";
    test::run({"/usr/bin/mkfifo", fifo});
    test::Child reader({"/bin/cat", fifo});
    const std::string link = "zelto://join?url=$(echo no)'\"; `x` &";
    EXPECT_TRUE(LinkOpener("exec > '" + fifo.string() + "'; printf '%s-%s\\n' first").open(link));
    EXPECT_EQ(reader.line(), "first-" + link);
}

TEST(LinkOpener, OpensTheAppsLinksOnly) {
    for (const char* link : {"file:///etc/passwd", "https://example.org", "zelto:x", ""})
        EXPECT_EQ(
            LinkOpener("false").open(link).fault().text,
            std::string("a link that is not the app's is not opened: ") + link);
}

}  // namespace
}  // namespace zelto::host
