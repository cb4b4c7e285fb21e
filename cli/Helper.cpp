#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "Commands.hpp"
#include "Failure.hpp"
#include "helper/HelperInterface.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"

namespace zelto::cli {
namespace {

constexpr int badValue = 2;
constexpr int declined = 3;

struct Ending {
    bus::ErrorKind kind;
    int status;
    const char* meaning;
};
constexpr std::array endings{
    Ending{bus::ErrorKind::refused, 1, "the helper refused for another reason"},
    Ending{bus::ErrorKind::noBus, 4, "the bus cannot be reached"},
    Ending{bus::ErrorKind::peerAbsent, 5, "no helper is there"},
    Ending{bus::ErrorKind::deadlinePassed, 6, "no answer in time"},
    Ending{bus::ErrorKind::peerDied, 7, "the helper ended in the middle of the call"},
    Ending{bus::ErrorKind::accessDenied, 8, "the helper does not serve this user"},
    Ending{bus::ErrorKind::badPayload, 9, "a payload that does not decode"},
    Ending{bus::ErrorKind::tooLarge, 10, "a payload of more than 1 MiB"},
};

[[noreturn]] void fail(const bus::Error& error) {
    const auto ending = std::ranges::find(endings, error.kind, &Ending::kind);
    if (ending == endings.end()) throw Failure("the helper: " + error.text);
    throw Failure(std::string(ending->meaning) + ": " + error.text, ending->status);
}

template <class T>
T valueOf(bus::Result<T> result) {
    if (!result) fail(result.fault());
    return *std::move(result);
}

helper::HelperConnection connectionFor(const HelperOptions& options) {
    return helper::HelperConnection(
        options.bus.empty() ? bus::Address::system() : bus::Address::at(options.bus),
        std::chrono::milliseconds(std::llround(options.deadline * 1000)));
}

std::string missingValue(const std::string& name) {
    return name + ": a value is missing (write " + name + "=…)";
}

/// A record after "limit=80", strictly by its field table.
template <class Config>
Config changed(Config config, const std::string& text) {
    const auto equals = std::min(text.find('='), text.size());
    const std::string name = text.substr(0, equals);
    std::string names;
    for (const records::Schema::Field& field : records::schemaOf<Config>().fields) {
        names += names.empty() ? "" : ", ";
        names += field.name;
        if (field.name != name) continue;
        if (equals == text.size()) throw Failure(missingValue(name), badValue);
        const records::Schema& schema = field.schema();
        std::string value = text.substr(equals + 1);
        if (schema.parse) {
            std::string quoted;
            records::appendJSONString(quoted, value);
            value = quoted;
        }
        if (!records::decodeJSON(value, schema, field.address(&config), 1))
            throw Failure(
                name + ": '" + text.substr(equals + 1) + "' is not " + std::string(schema.name), badValue);
        return config;
    }
    throw Failure("there is no field '" + name + "'; there are " + names, badValue);
}

void require(bool holds, const char* text) {
    if (!holds) throw Failure(text, badValue);
}

void check(const shared::ChargeConfig& config) {
    require(config.limit >= 1 && config.limit <= 100, "limit: must be a percentage from 1 to 100");
    require(
        config.sailing >= 0 && config.sailing <= config.limit, "sailing: must lie between 0 and the limit");
}

void check(const shared::FanConfig& config) {
    const auto isTemperature = [](double value) { return value >= 0 && value <= 120; };
    require(isTemperature(config.startTemperature), "startTemperature: must lie between 0 and 120 °C");
    require(isTemperature(config.maxTemperature), "maxTemperature: must lie between 0 and 120 °C");
    require(
        config.startTemperature < config.maxTemperature, "maxTemperature: must be above startTemperature");
    require(config.fixedLevel >= 0 && config.fixedLevel <= 1, "fixedLevel: must lie between 0 and 1");
}

template <class Config>
void set(
    const HelperOptions& options, Config shared::HelperStatus::*inForce,
    bus::Result<std::string> (helper::HelperConnection::*operation)(const Config&)) {
    // What is wrong with the changes alone is said before anybody is asked.
    Config config;
    for (const std::string& text : options.changes) config = changed(std::move(config), text);
    helper::HelperConnection helper = connectionFor(options);
    config = valueOf(helper.status()).*inForce;
    for (const std::string& text : options.changes) config = changed(std::move(config), text);
    check(config);
    if (const std::string why = valueOf((helper.*operation)(config)); !why.empty())
        throw Failure("the helper: " + why, declined);
}

std::string text(bool value) {
    return value ? "yes" : "no";
}

std::string text(double value) {
    std::ostringstream out;
    out << value;
    return out.str();
}

template <class E>
std::string text(E value) {
    return std::string(records::nameOf(value));
}

void print(const shared::HelperStatus& status) {
    const auto row = [](const char* name, const std::string& value) {
        std::cout << std::left << std::setw(20) << name << value << '\n';
    };
    const shared::ChargeConfig& charge = status.chargeConfig;
    const shared::FanConfig& fan = status.fanConfig;
    row("version", status.version);
    row("charge control", text(status.chargeBackend));
    row("charge limit",
        std::to_string(charge.limit) + " %, sailing " + std::to_string(charge.sailing) +
            (charge.enabled ? ", on" : ", off"));
    row("discharge above", text(charge.dischargeAboveLimit));
    row("charging paused", text(status.chargingPaused));
    row("adapter disabled", text(status.adapterDisabled));
    row("fan mode", text(fan.mode));
    row("fan sensor",
        text(fan.sensor) + ", " + text(fan.startTemperature) + " to " + text(fan.maxTemperature) + " °C");
    row("fixed level", text(fan.fixedLevel));
    if (status.controlTemperature) row("control temperature", text(*status.controlTemperature) + " °C");
    if (status.lastError) row("last error", *status.lastError);
    if (status.fans.empty()) return;
    std::cout << "\nfan    actual   target  minimum  maximum  manual\n" << std::fixed << std::setprecision(0);
    for (const shared::FanStatus& each : status.fans)
        std::cout << std::left << std::setw(4) << each.index << std::right << std::setw(9) << each.actual
                  << std::setw(9) << each.target << std::setw(9) << each.minimum << std::setw(9)
                  << each.maximum << std::setw(8) << text(each.manual) << '\n';
}

}  // namespace

std::string helperExitTexts() {
    std::string out = "Exit status: 0 done, 2 bad value, 3 the helper answered why it did not";
    for (const Ending& ending : endings) out += ",\n" + std::to_string(ending.status) + " " + ending.meaning;
    return out + ".";
}

void helperStatus(const HelperOptions& options) {
    const shared::HelperStatus status = valueOf(connectionFor(options).status());
    if (options.json)
        std::cout << records::encodeJSON(status).value_or("") << '\n';
    else
        print(status);
    if (status.version != shared::HelperConstants::version)
        std::cerr << "zelto: the helper is version " << status.version << ", this build expects "
                  << shared::HelperConstants::version << '\n';
}

void helperSetCharge(const HelperOptions& options) {
    set(options, &shared::HelperStatus::chargeConfig, &helper::HelperConnection::setChargeConfig);
}

void helperSetFan(const HelperOptions& options) {
    set(options, &shared::HelperStatus::fanConfig, &helper::HelperConnection::setFanConfig);
}

void helperReset(const HelperOptions& options) {
    if (const auto reset = connectionFor(options).resetAll(); !reset) fail(reset.fault());
}

}  // namespace zelto::cli
