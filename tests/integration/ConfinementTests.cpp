// What somebody gains who has broken into the extension: nothing.

#include <algorithm>
#include <csignal>
#include <cstring>

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "foundation/FileDescriptor.hpp"
#include "tests/support/Confined.hpp"
#include "tests/support/ZeltoProcess.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto::test {
namespace {

widgetkit::Confinement confinementOf(const std::filesystem::path& home) {
    const auto result =
        run({programFolder() / "zelto-widgets", "--home", home}, "{\"id\":1,\"request\":\"bundle\"}\n");
    const auto reply = widgetkit::decodeReply(result.output.substr(0, result.output.find('\n')));
    EXPECT_TRUE(reply && reply->confinement) << result.output << result.errors;
    return *reply->confinement;
}

bool isLacking(const std::string& name) {
    const auto lacks = lackedHere();
    return std::ranges::find(lacks, name) != lacks.end();
}

TEST_F(ZeltoProcess, TheBundleTellsHowTheExtensionIsConfined) {
    const auto confinement = confinementOf(folder.path());
    EXPECT_EQ(
        confinement.folders, std::vector<std::string>{folder.path() / "Library/Application Support/Zelto"});
    EXPECT_EQ(confinement.lacks, lackedHere());
}

/// What is tried, on what, and which part of the confinement refuses it.
struct Probe {
    const char* what;
    const char* object;
    const char* refusedBy;
};
void PrintTo(const Probe& probe, std::ostream* out) {
    *out << probe.what << " " << probe.object;
}

struct Probes : testing::TestWithParam<Probe> {
    TemporaryFolder folder;

    Finished attempt(bool isEarly) {
        std::string object = GetParam().object;
        if (object.starts_with("HOME")) object = folder.path() / object.substr(5);
        std::vector<std::string> environment{
            "PATH=/usr/bin:/bin",
            "LD_PRELOAD=" + (programFolder() / "libprobe.so").string(),
            "PROBE=" + std::string(GetParam().what) + " " + object};
        if (isEarly) environment.emplace_back("PROBE_EARLY=1");
        return run({programFolder() / "zelto-widgets", "--home", folder.path()}, "", environment);
    }
};

TEST_P(Probes, SucceedWithoutTheConfinementAndAreRefusedWithIt) {
    if (isSanitized) GTEST_SKIP() << "not tested: a build with sanitizers";
    if (isLacking(GetParam().refusedBy)) GTEST_SKIP() << "not tested: no " << GetParam().refusedBy;
    folder.write("secret", "42");
    const FileDescriptor listening(socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
    std::strncpy(address.sun_path, (folder.path() / "socket").c_str(), sizeof(address.sun_path) - 1);
    ASSERT_EQ(bind(listening.get(), reinterpret_cast<const sockaddr*>(&address), sizeof(address)), 0);
    ASSERT_EQ(listen(listening.get(), 1), 0);

    const Finished without = attempt(true);
    if (without.output != "allowed\n")
        GTEST_SKIP() << "not tested: refused without it too: " << without.output << without.errors;
    const Finished with = attempt(false);
    if (with.status == 0) {
        EXPECT_TRUE(with.output == "Permission denied\n" || with.output == "Operation not permitted\n")
            << with.output;
    } else {
        EXPECT_EQ(with.status, -SIGSYS) << with.output << with.errors;
    }
}

INSTANTIATE_TEST_SUITE_P(
    Confinement, Probes,
    testing::Values(
        Probe{"read", "/etc/shadow", "landlock"}, Probe{"read", "/etc/passwd", "landlock"},
        Probe{"read", "/proc/self/environ", "landlock"}, Probe{"read", "HOME/secret", "landlock"},
        Probe{"list", "HOME/", "landlock"}, Probe{"write", "HOME/new", "landlock"},
        Probe{"write", "HOME/new", "seccomp"}, Probe{"fork", "", "seccomp"},
        Probe{"exec", "/bin/true", "seccomp"}, Probe{"connect", "HOME/socket", "seccomp"},
        Probe{"signal", "", "seccomp"}, Probe{"trace", "", "seccomp"}),
    [](const auto& tested) { return std::string(tested.param.what) + std::to_string(tested.index); });

}  // namespace
}  // namespace zelto::test
