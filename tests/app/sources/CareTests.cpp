#include <gtest/gtest.h>

#include "sources/Care.hpp"
#include "tests/app/MachineTree.hpp"

namespace zelto::sources {
namespace {

using test::MachineTree;

/// "ok Memória: 97 % …" a line each.
std::string text(const CareFacts& facts) {
    std::string out;
    for (const auto& item : careItems(facts))
        out += item.level + " " + item.title + ": " + item.summary + "\n";
    return out;
}

TEST(CareItems, OfWhichNothingIsKnownAreLeftOut) {
    EXPECT_EQ(text({}), "");
}

TEST(CareItems, JudgeEachAreaByItsTable) {
    struct Case {
        CareFacts facts;
        const char* expected;
    };
    const Case cases[] = {
        {{.memoryAvailable = 0.5}, "ok Memória: 50 % da memória estão livres.\n"},
        {{.memoryAvailable = 0.2},
         "info Memória: 20 % da memória estão livres. Feche programas que não usa.\n"},
        {{.memoryAvailable = 0.09},
         "attention Memória: Só 9 % da memória estão livres: feche programas que não usa.\n"},
        {{.memoryAvailable = 0.5, .memoryWaiting = 6},
         "info Memória: Programas esperam por memória: feche os que não usa.\n"},
        {{.memoryAvailable = 0.5, .memoryWaiting = 21},
         "attention Memória: Programas esperam por memória: feche os que não usa.\n"},
        {{.volumes = {{"/", 0.5}, {"/home", 0.16}}}, "ok Discos: Há espaço livre bastante.\n"},
        {{.volumes = {{"/", 0.5}, {"/home", 0.15}}}, "info Discos: Restam 15 % em /home: libere espaço.\n"},
        {{.volumes = {{"/", 0.04}, {"/home", 0.15}}}, "attention Discos: Restam 4 % em /: libere espaço.\n"},
        {{.volumes = {{"/", 0.5}}, .failingDrives = {"WD"}},
         "attention Discos: O disco avisa de falha: faça uma cópia dos seus dados (WD).\n"},
        {{.volumes = {{"/", 0.5}}, .wornDrives = {"WD"}},
         "info Discos: O disco está gasto, sem erros (WD).\n"},
        {{.batteryHealth = 0.81}, "ok Bateria: A bateria guarda 81 % da carga de fábrica.\n"},
        {{.batteryHealth = 0.80}, "info Bateria: A bateria guarda 80 % da carga de fábrica.\n"},
        {{.batteryHealth = 0.59},
         "attention Bateria: A bateria guarda 59 % da carga de fábrica: pense em trocá-la.\n"},
        {{.updates = CareFacts::Updates{1, 7}}, "attention Segurança: 1 atualização de segurança espera.\n"},
        {{.updates = CareFacts::Updates{3, 0}},
         "attention Segurança: 3 atualizações de segurança esperam.\n"},
        {{.updates = CareFacts::Updates{0, 7}}, "info Segurança: 7 atualizações esperam.\n"},
        {{.updates = CareFacts::Updates{0, 0}}, "ok Segurança: Tudo está atualizado.\n"},
        {{.updates = CareFacts::Updates{0, 0}, .firewall = false},
         "info Segurança: O firewall está instalado e desligado.\n"},
        {{.firewall = true}, "ok Segurança: O firewall está ligado.\n"},
        {{.secureBoot = false}, "info Segurança: A inicialização segura está desligada.\n"},
        {{.failedSystemServices = {{}}}, "ok Serviços: Nenhum serviço falhou.\n"},
        {{.failedSystemServices = {{"a", "b", "c", "d"}}},
         "attention Serviços: Falharam: a, b, c e mais 1.\n"},
        {{.failedSystemServices = {{}}, .failedUserServices = {{"x"}}}, "info Serviços: Falharam: x.\n"},
        {{.chip = ChipTemperature{52.4}}, "ok Temperatura: O chip está a 52 °C.\n"},
        {{.chip = ChipTemperature{80}}, "info Temperatura: O chip está a 80 °C.\n"},
        {{.chip = ChipTemperature{96}},
         "attention Temperatura: O chip está a 96 °C: deixe as saídas de ar livres.\n"},
        {{.chip = ChipTemperature{91, 95}},
         "attention Temperatura: O chip está a 91 °C: deixe as saídas de ar livres.\n"},
        {{.startSeconds = 21}, "ok Inicialização: O sistema iniciou em 21 s.\n"},
        {{.startSeconds = 95}, "info Inicialização: O sistema iniciou em 95 s.\n"},
        {{.restartRequired = true}, "attention Reinício: Reinicie para terminar as atualizações.\n"},
        {{.newerKernel = true}, "info Reinício: Reinicie para usar o kernel novo.\n"},
        {{.newerKernel = false}, "ok Reinício: Nada espera por um reinício.\n"},
        {{.firmwareUpdates = 2}, "info Firmware: 2 firmwares podem ser atualizados.\n"},
        {{.firmwareUpdates = 0}, "ok Firmware: O firmware está atualizado.\n"},
    };
    for (const Case& each : cases) EXPECT_EQ(text(each.facts), each.expected);
}

TEST(CareItems, StandInOneOrder) {
    const CareFacts facts{
        .memoryAvailable = 0.5,
        .volumes = {{"/", 0.5}},
        .batteryHealth = 0.9,
        .updates = CareFacts::Updates{},
        .failedSystemServices = {{}},
        .chip = ChipTemperature{50},
        .startSeconds = 10,
        .newerKernel = false,
        .firmwareUpdates = 0};
    std::string titles;
    for (const auto& item : careItems(facts)) titles += item.title + " ";
    EXPECT_EQ(
        titles, "Memória Discos Bateria Segurança Serviços Temperatura Inicialização Reinício Firmware ");
}

TEST(CareFiles, TellWhatTheyHold) {
    const MachineTree machine(
        {{"proc/meminfo", "MemTotal:       16000 kB\nMemFree: 1 kB\nMemAvailable:    4000 kB\n"},
         {"proc/pressure/memory",
          "some avg10=0.00 avg60=1.00 avg300=7.25 total=1\nfull avg10=0 avg60=0 avg300=0 total=0\n"},
         {"etc/ufw/ufw.conf", "# firewall\nENABLED=no\n"},
         {"sys/firmware/efi/efivars/SecureBoot-8be4df61-93ca-11d2-aa0d-00e098032b8c",
          std::string("\6\0\0\0\1", 5)},
         {"run/reboot-required", ""}});
    const auto facts = readCareFiles(machine.root(), "6.1.0-9-amd64");
    EXPECT_EQ(facts.memoryAvailable, 0.25);
    EXPECT_EQ(facts.memoryWaiting, 7.25);
    EXPECT_EQ(facts.firewall, false);
    EXPECT_EQ(facts.secureBoot, true);
    EXPECT_EQ(facts.restartRequired, true);
    ASSERT_EQ(facts.volumes.size(), 1U);
    EXPECT_EQ(facts.volumes.front().path, "/");
}

TEST(CareFiles, OfAMachineThatTellsNothingAreNoFacts) {
    const auto facts = readCareFiles(MachineTree().root(), "");
    EXPECT_EQ(facts.memoryAvailable, std::nullopt);
    EXPECT_EQ(facts.firewall, std::nullopt);
    EXPECT_EQ(facts.newerKernel, std::nullopt);
}

TEST(CareFiles, AVolumeOfTheNetworkIsLeftAlone) {
    for (const char* type : {"nfs4", "autofs", "cifs", "fuse.sshfs"}) {
        const MachineTree machine({{"proc/self/mounts", std::string("server:/ / ") + type + " rw 0 0\n"}});
        EXPECT_TRUE(readCareFiles(machine.root(), "").volumes.empty()) << type;
    }
}

TEST(CareFiles, ANewerKernelOfTheSameKindWaitsForARestart) {
    const auto isNewer =
        [](const std::string& running, std::initializer_list<const char*> installed, bool hasImages = true) {
            const MachineTree machine;
            for (const std::string kernel : installed) {
                machine.add({{"lib/modules/" + kernel + "/modules.dep", ""}});
                if (hasImages) machine.add({{"boot/vmlinuz-" + kernel, ""}});
            }
            return readCareFiles(machine.root(), running).newerKernel;
        };
    EXPECT_EQ(isNewer("6.1.0-9-amd64", {"6.1.0-9-amd64"}), false);
    EXPECT_EQ(isNewer("6.1.0-9-amd64", {"6.1.0-9-amd64", "6.1.0-13-amd64"}), true);
    EXPECT_EQ(isNewer("6.1.0-13-amd64", {"6.1.0-9-amd64", "6.1.0-13-amd64"}), false);
    EXPECT_EQ(isNewer("6.1.0-9-amd64", {"6.1.0-9-amd64", "6.1.0-13-rt"}), false);
    EXPECT_EQ(isNewer("6.1.0-9-amd64", {"6.1.0-9-amd64", "6.1.0-13-rt-amd64"}), false);
    EXPECT_EQ(isNewer("6.5.6-200.fc39.x86_64", {"6.5.6-200.fc39.x86_64", "6.5.6-300.fc39.x86_64"}), true);
    // What is left of a kernel that was removed, and a machine that runs one from elsewhere.
    EXPECT_EQ(isNewer("6.1.0-9-amd64", {"6.1.0-9-amd64", "6.1.0-13-amd64"}, false), false);
    EXPECT_EQ(isNewer("6.6.1-mine", {"6.1.0-9-amd64"}), std::nullopt);
}

}  // namespace
}  // namespace zelto::sources
