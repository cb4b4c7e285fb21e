// A stand-in for the privileged helper: keeps the contract, and changes nothing but its own memory.
// stand-in-helper BUS-ADDRESS [trust=UID] [stall] [decline]: "ready" and each call go to standard output.

#include <cstdio>
#include <string>
#include <vector>

#include <unistd.h>

#include "helper/HelperInterface.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"

namespace {

using namespace zelto::helper;
using namespace zelto::records;
using namespace zelto::shared;
using namespace zelto;

void say(const char* line) {
    std::puts(line);
    std::fflush(stdout);
}

class StandIn : public ZeltoHelperProtocol {
  public:
    bool stalls = false, declines = false;

    void statusWithReply(ReplyBlock<Data> reply) override {
        say("statusWithReply");
        if (keeps(reply)) return;
        reply(encodeJSON(status_).value());
    }
    void setChargeConfig(Data config, ReplyBlock<std::string> reply) override {
        say("setChargeConfig");
        set(status_.chargeConfig, config, std::move(reply));
    }
    void setFanConfig(Data config, ReplyBlock<std::string> reply) override {
        say("setFanConfig");
        set(status_.fanConfig, config, std::move(reply));
    }
    void resetAllWithReply(ReplyBlock<> reply) override {
        say("resetAllWithReply");
        status_.chargeConfig = {};
        status_.fanConfig = {};
        reply();
    }

  private:
    bool keeps(ReplyBlock<Data>& reply) {
        if (stalls) kept_.push_back(std::move(reply));
        return stalls;
    }

    template <class Config>
    void set(Config& current, const Data& data, ReplyBlock<std::string> reply) {
        if (declines) {
            status_.lastError = "no controller";
        } else {
            current = decodeJSON<Config>(data).value();
            status_.lastError.reset();
        }
        reply(status_.lastError.value_or(""));
    }

    HelperStatus status_{
        std::string(HelperConstants::version),
        {},
        ChargeBackend::inhibit,
        false,
        false,
        {},
        {FanStatus{0, 1350.5, 1200, 5900, 1400, false}, FanStatus{1, 1380, 1200, 6100, 1400, true}},
        61.5};
    std::vector<ReplyBlock<Data>> kept_;
};

}  // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    StandIn helper;
    uid_t trusted = getuid();
    for (const std::string& word : words) {
        if (word.starts_with("trust=")) trusted = static_cast<uid_t>(std::stoul(word.substr(6)));
        if (word == "stall") helper.stalls = true;
        if (word == "decline") helper.declines = true;
    }
    const auto listener =
        listenAsHelper(helper, {.address = bus::Address::at(words.at(0)), .trusted = {trusted}});
    if (!listener) {
        std::fprintf(stderr, "stand-in-helper: %s\n", listener.fault().text.c_str());
        return 1;
    }
    say("ready");
    pause();
}
