// The front door and the extension, as processes.

#include <algorithm>
#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "cli/SheetGrid.hpp"
#include "foundation/Files.hpp"
#include "foundation/ISO8601.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "tests/support/Golden.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/Snapshots.hpp"
#include "tests/support/TemporaryFolder.hpp"
#include "tests/support/Trees.hpp"
#include "ui/Outline.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::test {
namespace {

struct ZeltoProcess : testing::Test {
    TemporaryFolder folder;

    static Finished zelto(std::vector<std::string> arguments, const std::string& input = "") {
        arguments.insert(arguments.begin(), programFolder() / "zelto");
        return run(arguments, input);
    }
    static Finished extension(const std::string& input) {
        return run({programFolder() / "zelto-widgets", "--home", "/no/such/home"}, input);
    }
    std::string write(const std::string& name, const std::string& text) const {
        return folder.write(name, text);
    }
};

constexpr const char* live =
    R"({"battery":73,"charging":true,"cpu":0.37,"memory":0.68,"disk":0.89,"diskFree":112400000000,"diskTotal":994662584320})";

TEST_F(ZeltoProcess, PreviewIsFullyDeterminedByItsOptions) {
    const std::vector<std::string> command{
        "preview",
        "overview",
        "--family",
        "medium",
        "--live",
        write("live.json", live),
        "--date",
        "2026-03-11T14:05:00-03:00",
        "--locale",
        "pt_BR",
        "--time-zone",
        "America/Sao_Paulo"};
    const auto text = zelto(command);
    EXPECT_EQ(text.status, 0) << text.errors;
    EXPECT_TRUE(matchesGolden("preview-overview-medium", text.output));
    auto words = command;
    words.insert(words.begin(), programFolder() / "zelto");
    EXPECT_EQ(run(words, "", {"LC_ALL=de_DE.UTF-8", "TZ=Asia/Tokyo", "HOME=/nowhere"}).output, text.output);
}

TEST_F(ZeltoProcess, PreviewTakesKindsAndSecondsAndStandardInput) {
    const auto byMember = zelto(
        {"preview",
         "overview",
         "--family",
         "small",
         "--live",
         "-",
         "--date",
         "794941500",
         "--time-zone",
         "UTC"},
        live);
    const auto byKind = zelto(
        {"preview",
         "ZeltoWidget",
         "--family",
         "small",
         "--live",
         "-",
         "--date",
         "2026-03-11T14:05:00-03:00",
         "--time-zone",
         "UTC"},
        live);
    EXPECT_EQ(byMember.status, 0) << byMember.errors;
    EXPECT_EQ(byMember.output, byKind.output);
    EXPECT_NE(byKind.output.find("Text \"17:05\""), std::string::npos) << byKind.output;
}

TEST_F(ZeltoProcess, PreviewDrawsPNGAndSVG) {
    const std::string png = folder.path() / "a.png", svg = folder.path() / "a.svg";
    const std::vector<std::string> start{
        "preview", "overview", "--family", "small", "--placeholder", "--no-snapshot", "--output"};
    for (const auto& file : {png, svg}) {
        auto command = start;
        command.push_back(file);
        const auto result = zelto(command);
        EXPECT_EQ(result.status, 0) << result.errors;
    }
    EXPECT_EQ(readFile(png)->substr(1, 3), "PNG");
    EXPECT_EQ((*readFile(png))[18] * 256 + static_cast<unsigned char>((*readFile(png))[19]), 328);
    EXPECT_NE(readFile(svg)->find("<svg"), std::string::npos);
}

TEST_F(ZeltoProcess, RefusalsAreOneClearLine) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> rows{
        {{"preview", "overview", "--family", "large", "--placeholder"},
         "zelto: --family: ZeltoWidget offers small, medium, not large\n"},
        {{"preview", "overview", "--family", "huge"},
         "zelto: --family: 'huge' is not small, medium or large\n"},
        {{"preview", "weather", "--family", "small"},
         "zelto: no widget 'weather'; there are ZeltoWidget, ZeltoBattery, ZeltoSystem, ZeltoStorage, "
         "ZeltoFans, "
         "ZeltoCalendar, ZeltoWorldClock, ZeltoClipboard, ZeltoAwake, ZeltoEqualizer, ZeltoCare\n"},
        {{"preview", "overview", "--family", "small", "--placeholder", "--locale", "zz"},
         "zelto: --locale: 'zz' is not known\n"},
        {{"preview", "overview", "--family", "small", "--placeholder", "--time-zone", "Mars"},
         "zelto: --time-zone: 'Mars' is not known\n"},
        {{"preview", "overview", "--family", "small", "--placeholder", "--date", "soon"},
         "zelto: --date: 'soon' is neither a date like 2026-03-11T14:05:00-03:00 nor seconds since 2001\n"},
        {{"timeline", "storage", "--family", "medium"},
         "zelto: --family: ZeltoStorage offers small, not medium\n"},
        {{"gallery", "--extension", "/no/such/program"},
         "zelto: cannot start the widget extension /no/such/program: No such file or directory\n"}};
    for (const auto& [command, expected] : rows) {
        const auto result = zelto(command);
        EXPECT_NE(result.status, 0);
        EXPECT_EQ(result.errors, expected);
        EXPECT_EQ(result.output, "");
    }
    EXPECT_EQ(
        zelto({"preview", "overview", "--family", "small", "--live", "-"}, "{\"charging\":1}").errors,
        "zelto: standard input: charging: expected true or false, found 1\n");
    EXPECT_EQ(zelto({"fly"}).status, 2);
    EXPECT_EQ(zelto({"--help"}).status, 0);
}

TEST_F(ZeltoProcess, SnapshotCheckNamesThePlaceOfEachFault) {
    const std::string battery =
        R"("battery":{"percent":80,"charging":true,"pluggedIn":true,"limitEnabled":true,"chargingPaused":false,"adapterDisabled":false},)";
    const std::string clip = R"("clips":[{"id":"x","date":0,"pinned":false}],)";
    const std::string event =
        R"("events":[{"id":"","title":"","start":0,"end":0,"allDay":false,"colorHex":"","meetingURL":"ht tp://x"}],)";
    const std::string good = leastDocument();
    const std::vector<std::pair<std::string, std::string>> rows{
        {leastDocument(battery), "battery.limit: missing"},
        {leastDocument(R"("memoryUsed":80.5,)"), "memoryUsed: expected a non-negative integer, found 80.5"},
        {leastDocument(clip), "clips[0].id: not a UUID"},
        {leastDocument(event), "events[0].meetingURL: not a URL"},
        {good.substr(0, 100),
         "line 1, column 101: invalid string: missing closing quote; expected string literal"},
        {good + "\n x", "line 2, column 2: invalid literal; expected end of input"},
        {leastDocument("\"x\":\"\xff\","), "line 1, column 7: invalid string: ill-formed UTF-8 byte"},
        {"", "line 1, column 1: the document is empty"}};
    for (const auto& [document, place] : rows) {
        const std::string file = write("widget.json", document);
        const auto result = zelto({"snapshot", "check", file});
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, "zelto: " + file + ": " + place + "\n");
        EXPECT_EQ(readFile(file), document);  // and changes nothing
    }
    EXPECT_EQ(zelto({"snapshot", "check", folder.path() / "missing"}).status, 1);
}

TEST_F(ZeltoProcess, SnapshotCheckAcceptsTheSample) {
    const auto sample = zelto({"snapshot", "sample"});
    const auto checked = zelto({"snapshot", "check", "-"}, sample.output);
    EXPECT_EQ(checked.status, 0) << checked.errors;
    EXPECT_TRUE(checked.output.starts_with("ok: taken ")) << checked.output;
    EXPECT_NE(
        checked.output.find("battery 80%, 1 fan, 3 clips, 3 events, 3 clock zones, 4 findings\n"),
        std::string::npos);
}

TEST_F(ZeltoProcess, GalleryListsTheWidgetsAsTheExtensionReportsThem) {
    const auto text = zelto({"gallery"});
    EXPECT_EQ(text.status, 0) << text.errors;
    EXPECT_TRUE(
        text.output.starts_with("ZeltoWidget  small, medium\n    Zelto · Visão geral\n    Bateria, CPU, "
                                "memória e disco do seu Mac.\n"));
    const auto widgets = decodeJSON<std::vector<WidgetDescription>>(zelto({"gallery", "--json"}).output);
    ASSERT_TRUE(widgets);
    EXPECT_EQ(widgets->size(), 11U);
}

TEST_F(ZeltoProcess, TimelinePrintsDatesAndTheFirstTree) {
    const auto result = zelto({"timeline", "overview", "--family", "medium", "--home", folder.path()});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.output.starts_with("entry 20")) << result.output;
    EXPECT_NE(result.output.find("\nreload after 20"), std::string::npos);
    EXPECT_NE(
        result.output.find("\n\nVStack alignment=center spacing=8 .widgetURL(\"zelto://open?tab=home\")"),
        std::string::npos);
    const auto clock =
        zelto({"timeline", "worldClock", "--family", "small", "--json", "--home", folder.path()});
    const auto timeline = decodeJSON<ArchivedTimeline>(clock.output);
    ASSERT_TRUE(timeline) << clock.errors;
    EXPECT_EQ(timeline->entries.size(), 30U);
}

TEST_F(ZeltoProcess, ThirtyWorldClockEntriesCrossADaylightSavingChange) {
    folder.write("Library/Application Support/Zelto/widget.json", [] {
        std::string document = leastDocument();
        const std::string zones = "\"clockZones\":[]";
        return document.replace(
            document.find(zones), zones.size(), R"("clockZones":["Asia/Kathmandu","America/Sao_Paulo"])");
    }());
    // Fifteen minutes before Lisbon's clocks go forward, one second short of a minute.
    const std::vector<std::string> command{
        programFolder() / "zelto",
        "timeline",
        "worldClock",
        "--family",
        "medium",
        "--json",
        "--home",
        folder.path(),
        "--now",
        "2026-03-29T00:45:59Z"};
    const auto result = run(command, "", {"PATH=/usr/bin", "LC_ALL=pt_PT.UTF-8", "TZ=Europe/Lisbon"});
    const auto timeline = decodeJSON<ArchivedTimeline>(result.output);
    ASSERT_TRUE(timeline) << result.errors;
    ASSERT_EQ(timeline->entries.size(), 30U);
    const Date start = *parseISO8601("2026-03-29T00:45:00Z");
    EXPECT_EQ(timeline->reloadAfter, start + 1800);
    for (int i = 0; i < 30; ++i) {
        const auto& entry = timeline->entries[static_cast<std::size_t>(i)];
        EXPECT_EQ(entry.date, start + 60.0 * i);
        const auto time = [](int hour, int minute) {
            const int hours = (hour + minute / 60) % 24, minutes = minute % 60;
            return (hours < 10 ? "0" : "") + std::to_string(hours) + (minutes < 10 ? ":0" : ":") +
                   std::to_string(minutes);
        };
        const std::string lisbon = i < 15 ? time(0, 45 + i) : time(2, i - 15);
        const auto shown = texts(ui::outline(entry.view));
        EXPECT_EQ(
            shown,
            (std::vector<std::string>{
                "Relógio mundial",
                "🇵🇹",
                lisbon,
                "Lisbon",
                "🇳🇵",
                time(6, 30 + i),
                "Kathmandu",
                "🇧🇷",
                time(21, 45 + i),
                "Sao Paulo"}));
        const std::string outline = ui::outline(entry.view);
        EXPECT_EQ(count(outline, "moon.fill"), 2) << i;
        EXPECT_EQ(count(outline, "sun.max.fill"), 1) << i;
    }
}

TEST_F(ZeltoProcess, RenderDrawsEveryOfferedFamilyAndASheet) {
    const auto pictures = folder.path() / "pictures";
    const auto result = zelto({"render", "--scale", "1", "--output", pictures, "--home", folder.path()});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.output.starts_with("19 pictures and gallery.png are in ")) << result.output;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(pictures), {}), 20);
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
    EXPECT_TRUE(result.output.starts_with("18 pictures and gallery.png are in ")) << result.output;
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(pictures), {}), 19);
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

TEST_F(ZeltoProcess, PreviewReadsAloud) {
    const auto result = zelto(
        {"preview",
         "battery",
         "--family",
         "medium",
         "--sample",
         "--placeholder",
         "--date",
         "0",
         "--accessibility"});
    EXPECT_EQ(
        result.output,
        "80%\nCarregando\nBateria\nSaúde\n86%\nCiclos\n454\nTemperatura\n31 °C\nCarregador\n45 W\nLimite de "
        "carga\n80%\n");
}

TEST_F(ZeltoProcess, PreviewReadsWhatFiguresAreOf) {
    const auto read =
        [](const std::string& kind, const std::string& family, const std::string& snapshot = "") {
            std::vector<std::string> words{
                "preview", kind, "--family", family, "--placeholder", "--date", "0", "--accessibility"};
            if (snapshot.empty())
                words.emplace_back("--sample");
            else
                words.insert(words.end(), {"--snapshot", snapshot});
            return zelto(words).output;
        };
    EXPECT_EQ(read("system", "small"), "Sistema\nchip 52°\nCPU, 22%\nmemória, 55%\nchip, 52°\n");
    EXPECT_EQ(
        read("care", "medium"),
        "Cuidados\nhá 1 hora\natenção\nMemória\ninformação\nDiscos\nBateria\nSegurança\n");
    EXPECT_EQ(read("fans", "small"), "Ventoinhas\n2400 rpm\nAutomático\nchip a 52°\n");
    EXPECT_EQ(
        read("awake", "medium"),
        "Manter acordado\nAcordado\ntermina em 45:00\n30 min\n1 h\n2 h\nsem fim\nDesligar\n");
    const std::string agenda = read("calendar", "medium");
    EXPECT_NE(agenda.find("\nEntrar: Daily do time\n"), std::string::npos) << agenda;
    EXPECT_NE(agenda.find("\nEntrar: Revisão do projeto\n"), std::string::npos) << agenda;
    const std::string clip = R"({"id":"6F9619FF-8B86-D011-B42D-00CF4FC964FF","date":0,"pinned":false)";
    EXPECT_EQ(
        read(
            "clipboard",
            "medium",
            write(
                "clips.json",
                leastDocument(
                    "\"clips\":[" + clip + "}," + clip + R"(,"text":" \n"},)" + clip + R"(,"text":"x"}],)"))),
        "Copiados\ntoque para copiar\nitem vazio\nitem vazio\nx\n");
}

/// A snapshot of which the widgets cut and leave out as much as they ever do.
std::string enormousDocument() {
    auto s = WidgetSnapshot::sample(Date{0});
    s.clips[0].text = std::string(17'000, 'x');
    s.events[0].title = std::string(100'000, 'y');
    s.events[0].meetingURL = URL::parse("https://example.com/" + std::string(9000, 'z'));
    s.events[0].location = std::string(100'000, 'y');
    s.cpuHistory.assign(100'000, 0.5);
    s.careItems.assign(5000, {.title = "Memória", .level = "attention", .summary = {}});
    s.awakeEnd = Date{1e300};
    s.fans[0].actual = 1e300;
    return *encodeJSON(s);
}

TEST_F(ZeltoProcess, SnapshotCheckNotesWhatWidgetsCutOrLeaveOut) {
    const auto result = zelto({"snapshot", "check", "-"}, enormousDocument());
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(
        result.output.substr(result.output.find('\n') + 1),
        "note: awakeEnd: beyond the years 1 to 9999, at whose end it is held\n"
        "note: clips[0].text: longer than 1,024 bytes; the widgets show its beginning\n"
        "note: events[0].title: longer than 1,024 bytes; the widgets show its beginning\n"
        "note: cpuHistory: more than 5504 values; only what can be told apart of them is drawn\n"
        "note: careItems: more than 1,000; the last ones may be left out\n"
        "note: fans[0].actual: beyond 64 bits; the fans widget keeps its last picture\n"
        "note: events[0].meetingURL: too long for a link; its button opens the calendar tab\n");
    EXPECT_TRUE(result.output.starts_with("ok: taken 2001-01-01T00:00:00Z, battery 80%")) << result.output;
    // What fits is not worth a word; of very many notes the first are.
    EXPECT_EQ(std::ranges::count(zelto({"snapshot", "check", "-"}, leastDocument()).output, '\n'), 1);
    auto many = WidgetSnapshot::sample();
    many.clockZones.assign(100, std::string(2000, 'x'));
    const std::string output = zelto({"snapshot", "check", "-"}, *encodeJSON(many)).output;
    EXPECT_EQ(std::ranges::count(output, '\n'), 1 + 20 + 1);
    EXPECT_TRUE(output.ends_with("note: and 80 more\n")) << output;
    // Titles that fit one by one may be too many together.
    auto findings = WidgetSnapshot::sample();
    findings.careItems.assign(1000, {.title = std::string(60, 'x'), .level = "ok", .summary = {}});
    EXPECT_TRUE(zelto({"snapshot", "check", "-"}, *encodeJSON(findings))
                    .output.ends_with(
                        "note: careItems: titles of more than 48 KiB together; the last ones are cut\n"));
}

TEST_F(ZeltoProcess, SnapshotCheckRefusesWhatNoWidgetReads) {
    const std::string file = write("big.json", leastDocument());
    std::filesystem::resize_file(file, std::uintmax_t{200} << 30);
    const auto result = zelto({"snapshot", "check", file});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "zelto: " + file + ": larger than 16 MiB, which no widget reads\n");
}

TEST_F(ZeltoProcess, PreviewShowsAWidgetsOwnTreeToTheLetter) {
    const std::string file = write("enormous.json", enormousDocument());
    const auto text =
        zelto({"preview", "clipboard", "--family", "medium", "--snapshot", file, "--placeholder"});
    EXPECT_EQ(text.status, 0) << text.errors;
    EXPECT_NE(text.output.find(std::string(17'000, 'x')), std::string::npos);
    // A picture is what a host would draw.
    for (const char* kind : {"clipboard", "calendar", "system", "care"}) {
        const auto png = zelto(
            {"preview",
             kind,
             "--family",
             "medium",
             "--snapshot",
             file,
             "--placeholder",
             "--output",
             folder.path() / (std::string(kind) + ".png")});
        EXPECT_EQ(png.status, 0) << kind << ": " << png.errors;
    }
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

TEST_F(ZeltoProcess, MemoryThatRunsOutCostsARequestAndNotTheProcess) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizer itself needs more address space than any limit here";
#endif
    auto s = WidgetSnapshot::sample();
    s.clips[0].text = std::string(15'000'000, 'x');
    s.save(HomeLookup::fixed(folder.path()));
    const std::string requests =
        R"({"id":1,"request":"timeline","kind":"ZeltoClipboard","family":"systemMedium"})"
        "\n"
        R"({"id":2,"request":"bundle"})"
        "\n";
    int without = 0, with = 0;
    // From hardly enough for the process, threads included, to enough for fifteen megabytes three times over.
    for (const int megabytes : {70, 90, 110, 400}) {
        const auto result =
            run({"/bin/sh",
                 "-c",
                 "ulimit -v $0; exec \"$@\"",
                 std::to_string(megabytes * 1000),
                 programFolder() / "zelto-widgets",
                 "--home",
                 folder.path()},
                requests);
        EXPECT_EQ(result.status, 0) << megabytes << ": " << result.errors;
        EXPECT_EQ(std::ranges::count(result.output, '\n'), 2) << megabytes << ": " << result.errors;
        EXPECT_NE(result.output.find(R"({"id":1,)"), std::string::npos);
        EXPECT_NE(result.output.find(R"({"id":2,"widgets":)"), std::string::npos);
        const bool isShown = result.output.find("xxxx") != std::string::npos;
        const bool isError = result.output.find(R"({"id":1,"error":"the request failed: std::bad_alloc"})") !=
                             std::string::npos;
        EXPECT_NE(isShown, isError) << megabytes << ": " << result.output.substr(0, 200);
        ++(isShown ? with : without);
    }
    EXPECT_GT(without, 0);
    EXPECT_GT(with, 0);
}

TEST_F(ZeltoProcess, AnImpossibleFanSpeedStopsTheExtensionAndTheHostSaysSo) {
    std::string document =
        leastDocument(R"("fans":[{"actual":1e19,"minimum":0,"maximum":1,"manual":false}],)");
    const auto now = std::to_string(static_cast<std::int64_t>(Date::now().sinceReference));
    document.replace(document.find("\"date\":0"), 8, "\"date\":" + now);
    folder.write("Library/Application Support/Zelto/widget.json", document);
    const auto result = zelto({"timeline", "fans", "--family", "small", "--home", folder.path()});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "zelto: the widget extension died (signal 6, Aborted)\n");
}

// ---- the extension by itself ----

TEST_F(ZeltoProcess, TheExtensionSurvivesGarbageAndEndsWithItsInput) {
    const auto result = extension(
        "\nnonsense\n{\"id\":1}\n" + std::string(100'000, 'x') +
        "\n{\"id\":2,\"request\":\"bundle\"}\n{\"id\":3,\"request\":\"bundle\"}");
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(std::ranges::count(result.output, '\n'), 5);
    for (const char* piece :
         {"{\"error\":\"line 1",
          "{\"id\":1,\"error\":\"request: missing\"}",
          "a request line holds at most 65536 bytes",
          "{\"id\":2,\"widgets\":",
          "{\"id\":3,\"widgets\":"})
        EXPECT_NE(result.output.find(piece), std::string::npos) << piece;
}

TEST_F(ZeltoProcess, EveryProgramTellsTheSameVersion) {
    std::set<std::string> versions;
    for (const std::string program : {"zelto", "zelto-desktop", "zelto-widgets"}) {
        const auto result = run({programFolder() / program, "--version"});
        EXPECT_EQ(result.status, 0);
        ASSERT_TRUE(result.output.starts_with(program + " ")) << result.output;
        versions.insert(result.output.substr(program.size() + 1));
    }
    ASSERT_EQ(versions.size(), 1U);
    EXPECT_TRUE(std::regex_match(*versions.begin(), std::regex("[0-9]+\\.[0-9]+\\.[0-9]+\n")));
}

TEST_F(ZeltoProcess, TheExtensionRefusesUnknownOptions) {
    const auto result = run({programFolder() / "zelto-widgets", "--fly"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "zelto-widgets: invalid option '--fly' (try --help)\n");
}

TEST_F(ZeltoProcess, TheExtensionReadsTheMachineAndTheSnapshotThatItIsPointedTo) {
    folder.write("sys/class/power_supply/BAT0/type", "Battery\n");
    folder.write("sys/class/power_supply/BAT0/capacity", "7\n");
    const auto result = zelto({"timeline", "overview", "--family", "small", "--machine", folder.path()});
    EXPECT_NE(result.output.find("Text \"7%\""), std::string::npos) << result.output << result.errors;
    EXPECT_NE(result.output.find("trim=0.07 paint=stroke(style=#FF6166"), std::string::npos);
}

}  // namespace
}  // namespace zelto::test
