#include "sources/Care.hpp"

#include <algorithm>
#include <cmath>

namespace zelto::sources {
namespace {

using Item = shared::WidgetSnapshot::CareItem;
using Finding = std::optional<Item>;

constexpr const char* ok = "ok";
constexpr const char* info = "info";
constexpr const char* attention = "attention";

std::string percent(double fraction) {
    return std::to_string(std::lround(fraction * 100)) + " %";
}

/// "1 atualização", "3 atualizações".
std::string count(std::int64_t number, const char* one, const char* many) {
    return std::to_string(number) + " " + (number == 1 ? one : many);
}

/// A few names, and how many more there are.
std::string joined(const std::vector<std::string>& names) {
    constexpr std::size_t most = 3;
    std::string out;
    for (std::size_t i = 0; i < std::min(names.size(), most); ++i) out += (i > 0 ? ", " : "") + names[i];
    if (names.size() > most) out += " e mais " + std::to_string(names.size() - most);
    return out;
}

Finding memory(const CareFacts& facts) {
    if (!facts.memoryAvailable) return std::nullopt;
    const double waiting = facts.memoryWaiting.value_or(0);
    const std::string rest = percent(*facts.memoryAvailable) + " da memória estão livres";
    if (*facts.memoryAvailable < 0.10)
        return Item{"Memória", attention, "Só " + rest + ": feche programas que não usa."};
    if (waiting > 5)
        return Item{
            "Memória",
            waiting > 20 ? attention : info,
            "Programas esperam por memória: feche os que não usa."};
    if (*facts.memoryAvailable <= 0.20) return Item{"Memória", info, rest + ". Feche programas que não usa."};
    return Item{"Memória", ok, rest + "."};
}

Finding drives(const CareFacts& facts) {
    if (facts.volumes.empty() && !facts.drivesKnown) return std::nullopt;
    if (!facts.failingDrives.empty())
        return Item{
            "Discos",
            attention,
            "O disco avisa de falha: faça uma cópia dos seus dados (" + joined(facts.failingDrives) + ")."};
    const auto fullest = std::ranges::min_element(facts.volumes, {}, &CareFacts::Volume::free);
    if (fullest != facts.volumes.end() && fullest->free <= 0.15)
        return Item{
            "Discos",
            fullest->free < 0.05 ? attention : info,
            "Restam " + percent(fullest->free) + " em " + fullest->path + ": libere espaço."};
    if (!facts.wornDrives.empty())
        return Item{"Discos", info, "O disco está gasto, sem erros (" + joined(facts.wornDrives) + ")."};
    return Item{"Discos", ok, "Há espaço livre bastante."};
}

Finding battery(const CareFacts& facts) {
    if (!facts.batteryHealth) return std::nullopt;
    const std::string text = "A bateria guarda " + percent(*facts.batteryHealth) + " da carga de fábrica";
    if (*facts.batteryHealth < 0.60) return Item{"Bateria", attention, text + ": pense em trocá-la."};
    return Item{"Bateria", *facts.batteryHealth <= 0.80 ? info : ok, text + "."};
}

Finding security(const CareFacts& facts) {
    if (facts.updates && facts.updates->security > 0)
        return Item{
            "Segurança",
            attention,
            count(
                facts.updates->security,
                "atualização de segurança espera.",
                "atualizações de segurança esperam.")};
    if (facts.firewall == false) return Item{"Segurança", info, "O firewall está instalado e desligado."};
    if (facts.updates && facts.updates->others > 0)
        return Item{
            "Segurança", info, count(facts.updates->others, "atualização espera.", "atualizações esperam.")};
    if (facts.secureBoot == false) return Item{"Segurança", info, "A inicialização segura está desligada."};
    if (facts.updates) return Item{"Segurança", ok, "Tudo está atualizado."};
    if (facts.firewall) return Item{"Segurança", ok, "O firewall está ligado."};
    if (facts.secureBoot) return Item{"Segurança", ok, "A inicialização segura está ligada."};
    return std::nullopt;
}

Finding services(const CareFacts& facts) {
    if (!facts.failedSystemServices && !facts.failedUserServices) return std::nullopt;
    const std::vector<std::string> none;
    const auto& system = facts.failedSystemServices ? *facts.failedSystemServices : none;
    const auto& user = facts.failedUserServices ? *facts.failedUserServices : none;
    if (!system.empty()) return Item{"Serviços", attention, "Falharam: " + joined(system) + "."};
    if (!user.empty()) return Item{"Serviços", info, "Falharam: " + joined(user) + "."};
    return Item{"Serviços", ok, "Nenhum serviço falhou."};
}

Finding temperature(const CareFacts& facts) {
    if (!facts.chip) return std::nullopt;
    const std::string text = "O chip está a " + std::to_string(std::lround(facts.chip->celsius)) + " °C";
    const double critical = facts.chip->critical.value_or(100);
    if (facts.chip->celsius > critical - 5)
        return Item{"Temperatura", attention, text + ": deixe as saídas de ar livres."};
    if (facts.chip->celsius >= 80) return Item{"Temperatura", info, text + "."};
    return Item{"Temperatura", ok, text + "."};
}

Finding start(const CareFacts& facts) {
    if (!facts.startSeconds) return std::nullopt;
    const std::string text =
        "O sistema iniciou em " + std::to_string(std::lround(*facts.startSeconds)) + " s.";
    return Item{"Inicialização", *facts.startSeconds < 30 ? ok : info, text};
}

Finding restart(const CareFacts& facts) {
    if (facts.restartRequired == true)
        return Item{"Reinício", attention, "Reinicie para terminar as atualizações."};
    if (facts.newerKernel == true) return Item{"Reinício", info, "Reinicie para usar o kernel novo."};
    if (facts.newerKernel == false) return Item{"Reinício", ok, "Nada espera por um reinício."};
    return std::nullopt;
}

Finding firmware(const CareFacts& facts) {
    if (!facts.firmwareUpdates) return std::nullopt;
    if (*facts.firmwareUpdates > 0)
        return Item{
            "Firmware",
            info,
            count(
                *facts.firmwareUpdates, "firmware pode ser atualizado.", "firmwares podem ser atualizados.")};
    return Item{"Firmware", ok, "O firmware está atualizado."};
}

}  // namespace

std::vector<Item> careItems(const CareFacts& facts) {
    std::vector<Item> items;
    for (const auto area :
         {memory, drives, battery, security, services, temperature, start, restart, firmware})
        if (auto finding = area(facts)) items.push_back(*std::move(finding));
    return items;
}

}  // namespace zelto::sources
