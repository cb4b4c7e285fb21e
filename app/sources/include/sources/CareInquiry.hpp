#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "bus/Client.hpp"
#include "sources/Care.hpp"

namespace zelto::sources {

/// Asks the daemons of the machine what an analysis wants to know: the drives' own verdicts (udisks, which
/// keeps them: no drive is woken), failed services and the time of the start (systemd), updates (PackageKit),
/// firmware (fwupd), the firewall (firewalld). For the main thread; one question at a time.
class CareInquiry {
  public:
    CareInquiry(bus::Client& systemBus, bus::Client& sessionBus) : system_(systemBus), session_(sessionBus) {}
    CareInquiry(const CareInquiry&) = delete;
    CareInquiry& operator=(const CareInquiry&) = delete;

    struct Scope {
        /// Updates are looked up in the network, and starting the daemon costs: once a day, on mains.
        bool updates = true;
    };
    /// Answers once with what was told; who is missing, or takes longer than a minute, has told nothing. What
    /// the files tell is not in it.
    void ask(Scope scope, std::function<void(CareFacts)> answered);

  private:
    struct Round;
    using Then = std::function<void(CareFacts&, const bus::Result<bus::Data>&)>;
    /// One of the questions that the answer waits for.
    void call(
        const std::shared_ptr<Round>& round, bus::Client& bus, const bus::Target& target,
        const std::string& signature, bus::Data::List arguments, Then then, bool starts = false);
    void askServices(
        const std::shared_ptr<Round>& round, bus::Client& bus,
        std::optional<std::vector<std::string>> CareFacts::*services);
    void askStart(const std::shared_ptr<Round>& round);
    void askDrives(const std::shared_ptr<Round>& round);
    void judgeDrives(const std::shared_ptr<Round>& round, const bus::Data::Map& objects);
    void askFirewall(const std::shared_ptr<Round>& round);
    void askFirmware(const std::shared_ptr<Round>& round);
    void askUpdates(const std::shared_ptr<Round>& round);
    void followUpdates(const std::shared_ptr<Round>& round, const std::string& transaction);

    bus::Client &system_, &session_;
};

}  // namespace zelto::sources
