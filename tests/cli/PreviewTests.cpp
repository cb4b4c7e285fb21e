// zelto preview, as a process.

#include <gtest/gtest.h>

#include "foundation/Files.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "tests/support/EnormousSnapshot.hpp"
#include "tests/support/Golden.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/Snapshots.hpp"
#include "tests/support/Trees.hpp"
#include "tests/support/ZeltoProcess.hpp"

namespace zelto::test {
namespace {

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
    EXPECT_TRUE(matchesGolden("ZeltoWidget-systemMedium-preview", text.output));
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

}  // namespace
}  // namespace zelto::test
