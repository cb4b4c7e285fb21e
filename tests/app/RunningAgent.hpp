#pragma once

#include <optional>
#include <string>
#include <vector>

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"
#include "tests/app/MachineTree.hpp"
#include "tests/app/MainLoop.hpp"
#include "tests/support/Child.hpp"
#include "tests/support/Paths.hpp"
#include "tests/support/PrivateBus.hpp"
#include "tests/support/Process.hpp"
#include "tests/support/TemporaryFolder.hpp"

namespace zelto::test {

/// The real agent with a home, folders, a session's bus, a machine and programs for pages of its own. The bus
/// of the machine's daemons is empty unless a test has one.
class RunningAgent {
  public:
    RunningAgent() {
        // What the desktop opens pages of all kinds with writes their addresses down.
        const auto program = folder_.write(
            "pages-program", "echo \"$DESKTOP_STARTUP_ID $1\" >> " + pagesFile().string() + "\n");
        folder_.write(
            "data/applications/pages.desktop",
            "[Desktop Entry]\nType=Application\nName=Pages\nExec=/bin/sh " + program.string() +
                " %u\nMimeType=x-scheme-handler/https;x-scheme-handler/http;text/html;\n");
        folder_.write(
            "data/applications/mimeapps.list",
            "[Default "
            "Applications]\nx-scheme-handler/https=pages.desktop\nx-scheme-handler/http=pages.desktop\n"
            "text/html=pages.desktop\n");
    }

    MachineTree& machine() { return machine_; }
    const PrivateBus& session() const { return session_; }
    const std::filesystem::path& folder() const { return folder_.path(); }
    void useSystemBus(const std::string& address) { systemBus_ = address; }

    void launch() { process_.emplace(command(), environment(), folder_.path() / "log"); }
    /// Lets the bus start it when it is wanted.
    void install() const {
        const auto program = folder_.write("agent-program", "exec " + words() + "\n");
        folder_.write(
            "services/com.kavra.zelto.service",
            "[D-BUS Service]\nName=com.kavra.zelto\nExec=/usr/bin/env -i " + variables() + " /bin/sh " +
                program.string() + "\n");
        // The bus looks again.
        run(
            {"/usr/bin/gdbus",
             "call",
             "--address",
             session_.address(),
             "--dest",
             "org.freedesktop.DBus",
             "--object-path",
             "/org/freedesktop/DBus",
             "--method",
             "org.freedesktop.DBus.ReloadConfig"});
    }
    /// Waits until it answers.
    bool start() {
        launch();
        return runUntil([this] { return zelto({"app", "status"}).status == 0; });
    }
    Child& process() { return *process_; }
    void kill() {
        process_->kill(SIGKILL);
        process_->wait();
    }
    std::string log() const { return readFile(folder_.path() / "log").value_or(""); }

    /// The command line, on the same bus.
    Finished zelto(std::vector<std::string> words) const {
        words.insert(words.begin(), programFolder() / "zelto");
        words.insert(words.end(), {"--bus", session_.address()});
        return run(words, "", environment());
    }
    std::filesystem::path snapshotFile() const {
        return folder_.path() / "home/Library/Application Support/Zelto/widget.json";
    }
    std::optional<shared::WidgetSnapshot> snapshot() const {
        auto snapshot = records::decodeJSON<shared::WidgetSnapshot>(readFile(snapshotFile()).value_or(""));
        return snapshot ? std::optional(*std::move(snapshot)) : std::nullopt;
    }
    bool becomes(const std::function<bool(const shared::WidgetSnapshot&)>& condition) const {
        return runUntil([&] {
            const auto now = snapshot();
            return now && condition(*now);
        });
    }
    /// What was opened, "TOKEN ADDRESS" a line each.
    std::string pages() const { return readFile(pagesFile()).value_or(""); }

    std::vector<std::string> environment() const {
        std::vector<std::string> variables{"PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8", "TZ=America/Sao_Paulo"};
        for (const auto& [name, place] :
             {std::pair{"HOME", "home"},
              {"XDG_CONFIG_HOME", "config"},
              {"XDG_STATE_HOME", "state"},
              {"XDG_DATA_HOME", "data"}})
            variables.push_back(std::string(name) + "=" + (folder_.path() / place).string());
        return variables;
    }

  private:
    std::vector<std::string> command() const {
        return {
            programFolder() / "zelto-agent",
            "--bus",
            session_.address(),
            "--system-bus",
            systemBus_,
            "--home",
            (folder_.path() / "home").string(),
            "--machine",
            machine_.root().string()};
    }
    std::string words() const {
        std::string out;
        for (const std::string& word : command()) out += "'" + word + "' ";
        return out + "2>> '" + (folder_.path() / "log").string() + "'";
    }
    std::string variables() const {
        std::string out;
        for (const std::string& variable : environment()) out += variable + " ";
        return out;
    }
    std::filesystem::path pagesFile() const { return folder_.path() / "pages"; }

    TemporaryFolder folder_;
    PrivateBus session_{
        "<type>session</type><servicedir>" + (folder_.path() / "services").string() +
        R"(</servicedir><policy context="default"><allow user="*"/><allow own="*"/>)"
        R"(<allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/></policy>)"};
    MachineTree machine_{MachineTree::Files{
        {"proc/stat", "cpu  100 0 50 850 0 0 0 0 0 0\n"},
        {"proc/meminfo",
         "MemTotal: 1000 kB\nMemAvailable: 600 kB\nAnonPages: 200 kB\nShmem: 40 kB\nSUnreclaim: 10 kB\n"}}};
    std::string systemBus_ = "unix:path=/nonexistent/bus";
    std::optional<Child> process_;
};

}  // namespace zelto::test
