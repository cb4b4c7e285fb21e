// zelto render, as a process.

#include <gtest/gtest.h>

#include "cli/SheetGrid.hpp"
#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "tests/support/EnormousSnapshot.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/Snapshots.hpp"
#include "tests/support/ZeltoProcess.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::test {

using namespace records;
using namespace shared;
using namespace widgetkit;
namespace {

/// How many looks the extension offers.
std::ptrdiff_t offeredFamilies() {
    const auto gallery = run({programFolder() / "zelto", "gallery", "--json"});
    const auto offered = decodeJSON<std::vector<WidgetDescription>>(gallery.output);
    std::ptrdiff_t count = 0;
    for (const auto& widget : *offered) count += std::ssize(widget.families);
    return count;
}

TEST_F(ZeltoProcess, RenderDrawsEveryOfferedFamilyAndASheet) {
    const auto pictures = folder.path() / "pictures";
    const auto result = zelto({"render", "--scale", "1", "--output", pictures, "--home", folder.path()});
    EXPECT_EQ(result.status, 0) << result.errors;
    const auto count = offeredFamilies();
    EXPECT_TRUE(result.output.starts_with(std::to_string(count) + " pictures and gallery.png are in "))
        << result.output;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(pictures), {}), count + 1);
    for (const auto& entry : std::filesystem::directory_iterator(pictures))
        EXPECT_EQ(readFile(entry.path())->substr(1, 3), "PNG") << entry.path();
}

/// The opacity of a PNG's first pixel; 255 where the file has no opacity.
int firstOpacity(const std::filesystem::path& file) {
    const auto result = run(
        {"/usr/bin/env",
         "python3",
         "-c",
         "import sys,zlib,struct\n"
         "d=open(sys.argv[1],'rb').read()\n"
         "alpha=d[25]==6\n"
         "i=8;data=b''\n"
         "while i<len(d):\n"
         " n=struct.unpack('>I',d[i:i+4])[0]\n"
         " if d[i+4:i+8]==b'IDAT': data+=d[i+8:i+8+n]\n"
         " i+=12+n\n"
         "print(zlib.decompress(data)[4] if alpha else 255)",
         file});
    EXPECT_EQ(result.status, 0) << result.errors;
    return std::atoi(result.output.c_str());
}

TEST_F(ZeltoProcess, PicturesHaveRoundedCornersWhenAskedTo) {
    for (const bool rounded : {false, true}) {
        const auto file = folder.path() / (rounded ? "rounded.png" : "square.png");
        std::vector<std::string> words{
            "preview", "fans", "--family", "small", "--sample", "--placeholder", "--output", file};
        if (rounded) words.emplace_back("--corners");
        EXPECT_EQ(zelto(words).status, 0);
        EXPECT_EQ(firstOpacity(file), rounded ? 0 : 255);
        words = {"render", "--kind", "fans", "--preview", "--output", folder.path() / "p"};
        if (rounded) words.emplace_back("--corners");
        EXPECT_EQ(zelto(words).status, 0);
        EXPECT_EQ(firstOpacity(folder.path() / "p/ZeltoFans-small.png"), rounded ? 0 : 255);
    }
    const auto svg = zelto(
        {"preview",
         "fans",
         "--family",
         "small",
         "--sample",
         "--placeholder",
         "--format",
         "svg",
         "--corners"});
    EXPECT_NE(svg.output.find("clip"), std::string::npos);
    const auto text =
        zelto({"preview", "fans", "--family", "small", "--sample", "--placeholder", "--corners"});
    EXPECT_EQ(text.status, 1);
    EXPECT_EQ(text.errors, "zelto: --corners: only for pictures\n");
}

TEST(SheetGrid, LeavesNoTileEmptyWhereThatCanBe) {
    using enum WidgetFamily;
    const auto sizeOfSheet = [](const std::vector<WidgetFamily>& families) {
        cli::SheetGrid grid(families);
        for (const WidgetFamily family : families) grid.place(family);
        const auto size = grid.size();
        return std::pair((size.width - 40) / 180, (size.height - 40) / 180);
    };
    EXPECT_EQ(sizeOfSheet({systemSmall}), std::pair(1.0, 1.0));
    EXPECT_EQ(sizeOfSheet({systemSmall, systemMedium}), std::pair(3.0, 1.0));
    EXPECT_EQ(sizeOfSheet({systemMedium, systemLarge}), std::pair(2.0, 3.0));
    EXPECT_EQ(
        sizeOfSheet({systemSmall, systemSmall, systemSmall, systemSmall, systemSmall, systemSmall}),
        std::pair(3.0, 2.0));
}

TEST_F(ZeltoProcess, RenderOfOneKindAsked) {
    const auto result =
        zelto({"render", "--kind", "battery", "--preview", "--scale", "1", "--output", folder.path() / "p"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "p/ZeltoBattery-small.png"));
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "p/ZeltoWidget-small.png"));
}

TEST_F(ZeltoProcess, AnExtensionThatIsKilledInTheMiddleGivesAClearMessage) {
    // It lists its widgets and then dies the way kill -9 makes it die.
    const std::string program = write(
        "extension",
        "#!/bin/sh\nread line\ncase \"$line\" in *bundle*) ;; *) kill -9 $$ ;; esac\nprintf '%s\\n' '" +
            extension(R"({"id":1,"request":"bundle"})")
                .output.substr(0, extension(R"({"id":1,"request":"bundle"})").output.size() - 1) +
            "'\nread line\nkill -9 $$\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const auto result = zelto({"render", "--extension", program, "--output", folder.path() / "p"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "zelto: the widget extension died (signal 9, Killed)\n");
    EXPECT_FALSE(std::filesystem::exists(folder.path() / "p"));
}

TEST_F(ZeltoProcess, RenderDrawsWhatItCanAndNamesTheRest) {
    // A fan's speed that no integer holds is the end of the process that is to show it.
    auto snapshot = WidgetSnapshot::sample();
    snapshot.fans[0].actual = 1e300;
    snapshot.save(HomeLookup::fixed(folder.path()));
    const auto pictures = folder.path() / "pictures";
    const auto result = zelto({"render", "--scale", "1", "--output", pictures, "--home", folder.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.errors,
        "zelto: not drawn: ZeltoFans (small): the widget extension died (signal 6, Aborted)\n");
    const auto count = offeredFamilies() - 1;
    EXPECT_TRUE(result.output.starts_with(std::to_string(count) + " pictures and gallery.png are in "))
        << result.output;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(pictures), {}), count + 1);
    EXPECT_FALSE(std::filesystem::exists(pictures / "ZeltoFans-small.png"));
}

TEST_F(ZeltoProcess, NonsenseFromAnExtensionGivesAClearMessage) {
    const std::string program = write("extension", "#!/bin/sh\nread line\necho hello\ncat > /dev/null\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    const auto result = zelto({"gallery", "--extension", program});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.errors,
        "zelto: the widget extension sent an invalid reply: line 1, column 1: invalid literal\n");
}

TEST_F(ZeltoProcess, RenderShowsTenOfAnEnormousSnapshot) {
    folder.write("Library/Application Support/Zelto/widget.json", enormousDocument());
    const auto result = zelto(
        {"render",
         "--scale",
         "1",
         "--output",
         folder.path() / "p",
         "--home",
         folder.path(),
         "--now",
         "2001-01-01T00:00:00Z"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(
        result.errors,
        "zelto: not drawn: ZeltoFans (small): the widget extension died (signal 6, Aborted)\n");
    EXPECT_TRUE(result.output.starts_with("18 pictures and gallery.png are in ")) << result.output;
}

}  // namespace
}  // namespace zelto::test
