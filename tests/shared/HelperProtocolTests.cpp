#include <unordered_set>

#include <gtest/gtest.h>

#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/HelperProtocol.hpp"

namespace zelto {

using namespace records;
using namespace shared;
namespace {

const std::string leastStatus =
    R"({"version":"0.6.0","chargeConfig":{"enabled":true,"limit":75,"sailing":3,"dischargeAboveLimit":true},)"
    R"("chargeBackend":"inhibit","chargingPaused":false,"adapterDisabled":true,)"
    R"("fanConfig":{"mode":"fixed","sensor":"cpu","startTemperature":45.5,"maxTemperature":90,"fixedLevel":0.25},)"
    R"("fans":[]})";

template <class T>
std::string faultOf(const std::string& json) {
    const auto decoded = decodeJSON<T>(json);
    return decoded ? "" : decoded.fault().text();
}

TEST(ChargeConfig, EveryKeyIsRequiredAlthoughEachFieldHasADefault) {
    EXPECT_EQ(
        faultOf<ChargeConfig>(R"({"enabled":true,"limit":80,"sailing":5})"), "dischargeAboveLimit: missing");
    EXPECT_EQ(
        faultOf<ChargeConfig>(R"({"enabled":true,"limit":80.5,"sailing":5,"dischargeAboveLimit":false})"),
        "limit: expected an integer, found 80.5");
    EXPECT_EQ(
        faultOf<ChargeConfig>(R"({"enabled":1,"limit":80,"sailing":5,"dischargeAboveLimit":false})"),
        "enabled: expected true or false, found 1");
}

TEST(ChargeConfig, IsEncodedInTheOrderOfItsTable) {
    EXPECT_EQ(
        encodeJSON(ChargeConfig{}),
        R"({"enabled":false,"limit":80,"sailing":5,"dischargeAboveLimit":false})");
}

TEST(ChargeConfig, EqualityComparesAllFields) {
    const ChargeConfig config;
    EXPECT_EQ(config, ChargeConfig{});
    EXPECT_NE(config, ChargeConfig{.enabled = true});
    EXPECT_NE(config, ChargeConfig{.limit = 81});
    EXPECT_NE(config, ChargeConfig{.sailing = 6});
    EXPECT_NE(config, ChargeConfig{.dischargeAboveLimit = true});
}

TEST(FanConfig, IsEncodedInTheOrderOfItsTable) {
    EXPECT_EQ(
        encodeJSON(FanConfig{}),
        R"({"mode":"automatic","sensor":"hottest","startTemperature":50,"maxTemperature":80,"fixedLevel":0.5})");
}

TEST(FanConfig, KnowsItsModes) {
    const auto withMode = [](const std::string& mode) {
        return R"({"mode":")" + mode +
               R"(","sensor":"cpu","startTemperature":50,"maxTemperature":80,"fixedLevel":0.5})";
    };
    EXPECT_EQ(decodeJSON<FanConfig>(withMode("fixed"))->mode, FanMode::fixed);
    EXPECT_EQ(faultOf<FanConfig>(withMode("manual")), "mode: not a fan mode");
}

TEST(FanConfig, EqualityComparesAllFields) {
    const FanConfig config;
    EXPECT_EQ(config, FanConfig{});
    EXPECT_NE(config, FanConfig{.mode = FanMode::fixed});
    EXPECT_NE(config, FanConfig{.sensor = FanSensor::cpu});
    EXPECT_NE(config, FanConfig{.startTemperature = 51});
    EXPECT_NE(config, FanConfig{.maxTemperature = 81});
    EXPECT_NE(config, FanConfig{.fixedLevel = 0.6});
}

TEST(HelperStatus, DecodesWithoutItsOptionalKeysAndLeavesThemOutAgain) {
    const auto status = decodeJSON<HelperStatus>(leastStatus);
    ASSERT_TRUE(status);
    EXPECT_FALSE(status->controlTemperature);
    EXPECT_FALSE(status->lastError);
    EXPECT_TRUE(status->fans.empty());
    EXPECT_EQ(status->chargeConfig.limit, 75);
    EXPECT_EQ(status->chargeBackend, ChargeBackend::inhibit);
    EXPECT_EQ(encodeJSON(*status), leastStatus);
}

TEST(HelperStatus, IsEncodedInTheOrderOfItsTable) {
    const HelperStatus status{
        "0.6.0",
        {},
        ChargeBackend::adapterOnly,
        true,
        false,
        {},
        {FanStatus{0, 1350.5, 1200, 5900, 1400, true}},
        61.5,
        "SMC"};
    const std::string json =
        R"({"version":"0.6.0","chargeConfig":{"enabled":false,"limit":80,"sailing":5,"dischargeAboveLimit":false},)"
        R"("chargeBackend":"adapterOnly","chargingPaused":true,"adapterDisabled":false,)"
        R"("fanConfig":{"mode":"automatic","sensor":"hottest","startTemperature":50,"maxTemperature":80,"fixedLevel":0.5},)"
        R"("fans":[{"index":0,"actual":1350.5,"minimum":1200,"maximum":5900,"target":1400,"manual":true}],)"
        R"("controlTemperature":61.5,"lastError":"SMC"})";
    EXPECT_EQ(encodeJSON(status), json);
    const auto decoded = decodeJSON<HelperStatus>(json);
    ASSERT_TRUE(decoded);
    EXPECT_EQ(encodeJSON(*decoded), json);
}

TEST(HelperStatus, NamesTheFieldThatIsWrong) {
    std::string json = leastStatus;
    json.replace(json.find("inhibit"), 7, "maybe");
    EXPECT_EQ(faultOf<HelperStatus>(json), "chargeBackend: not a charge back-end");
    json = leastStatus;
    json.replace(json.find("[]"), 2, R"([{"index":0,"actual":1,"minimum":1,"maximum":2,"target":1}])");
    EXPECT_EQ(faultOf<HelperStatus>(json), "fans[0].manual: missing");
}

TEST(FanStatus, IsKnownByItsIndex) {
    EXPECT_EQ((FanStatus{3, 0, 0, 0, 0, false}.id()), 3);
}

template <class E, std::size_t count>
std::string namesOf(const std::array<E, count>& cases) {
    std::string out;
    for (const E value : cases) out += std::string(nameOf(value)) + " ";
    return out;
}

TEST(HelperEnumerations, ListTheirCasesInOrderAndHash) {
    EXPECT_EQ(namesOf(allFanModes), "automatic temperature fixed ");
    EXPECT_EQ(namesOf(allFanSensors), "hottest cpu ");
    EXPECT_EQ(std::unordered_set<FanMode>(allFanModes.begin(), allFanModes.end()).size(), 3U);
    EXPECT_EQ((std::unordered_set{ChargeBackend::inhibit, ChargeBackend::unavailable}).size(), 2U);
}

TEST(HelperConstants, AreTheAppsOwn) {
    EXPECT_EQ(HelperConstants::machService, "com.kavra.zelto.helper");
    EXPECT_EQ(HelperConstants::plistName, "com.kavra.zelto.helper.plist");
    EXPECT_EQ(HelperConstants::appIdentifier, "com.kavra.zelto");
    EXPECT_EQ(HelperConstants::version, "0.6.0");
}

TEST(ReplyBlock, IsCalledOnceAndTellsWhenItGoesAwayUnanswered) {
    int answers = 0, abandonments = 0;
    const auto make = [&] {
        return ReplyBlock<std::string>([&](const std::string&) { ++answers; }, [&] { ++abandonments; });
    };
    {
        auto reply = make();
        reply("done");
        EXPECT_THROW(reply("again"), std::logic_error);
    }
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(abandonments, 0);
    {
        auto reply = make();
        auto moved = std::move(reply);
        EXPECT_EQ(abandonments, 0);
    }
    EXPECT_EQ(answers, 1);
    EXPECT_EQ(abandonments, 1);
}

}  // namespace
}  // namespace zelto
