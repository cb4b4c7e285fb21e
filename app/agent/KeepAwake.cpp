#include "agent/KeepAwake.hpp"

#include <system_error>

#include "foundation/Files.hpp"
#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"

namespace zelto::agent {
namespace {

constexpr const char* login = "org.freedesktop.login1";
constexpr const char* screen = "org.freedesktop.ScreenSaver";
constexpr const char* screenObject = "/org/freedesktop/ScreenSaver";
constexpr const char* application = "Zelto";
constexpr const char* reason = "Manter acordado";

}  // namespace

/// What is kept: the period under way.
struct KeptAwake {
    std::optional<Date> end = {};
};

}  // namespace zelto::agent

ZELTO_RECORD(zelto::agent::KeptAwake, end);

namespace zelto::agent {

KeepAwake::KeepAwake(Seams seams) : seams_(std::move(seams)) {
    timerSource_ = runloop::MainSource::whenReadable(timer_.fd(), [this] {
        timer_.take();
        armed();
    });
    subscriptions_.push_back(
        seams_.systemBus.watch(login, [this](bool isThere) { presenceChanged(login_, isThere); }));
    subscriptions_.push_back(
        seams_.sessionBus.watch(screen, [this](bool isThere) { presenceChanged(screen_, isThere); }));
}

KeepAwake::~KeepAwake() {
    release(login_);
    release(screen_);
}

void KeepAwake::resume() {
    const auto bytes = readFile(seams_.file);
    if (!bytes) return;
    const auto kept = records::decodeJSON<KeptAwake>(*bytes);
    if (!kept) {
        seams_.log(seams_.file.string() + ": " + kept.fault().text() + "; the machine is not kept awake");
    } else if (!kept->end || *kept->end > seams_.now()) {
        start(kept->end);
        return;
    }
    std::error_code error;
    std::filesystem::remove(seams_.file, error);
}

void KeepAwake::start(std::optional<Date> end) {
    const bool wasOn = isOn_;
    isOn_ = true;
    end_ = end;
    store();
    armed();
    if (!isOn_) return;
    if (!wasOn) {
        for (Holder* holder : {&login_, &screen_}) ask(*holder);
        judge();
    }
    seams_.changed();
}

void KeepAwake::stop(const std::string& why) {
    if (!isOn_) return;
    if (!why.empty()) seams_.log.info("the machine is no longer kept awake: " + why);
    isOn_ = false;
    end_.reset();
    store();
    judgement_.reset();
    timer_.arm(std::nullopt);
    for (Holder* holder : {&login_, &screen_}) release(*holder);
    seams_.changed();
}

void KeepAwake::armed() {
    if (isOn_ && end_ && *end_ <= seams_.now())
        stop("its time is over");
    else
        timer_.arm(isOn_ ? end_ : std::nullopt);
}

void KeepAwake::store() const {
    if (!isOn_) {
        std::error_code error;
        std::filesystem::remove(seams_.file, error);
        return;
    }
    makePrivateFolder(seams_.file.parent_path());
    const auto written = writeFileAtomically(
        seams_.file,
        records::encodeJSON(KeptAwake{end_}).value_or("{}"),
        {.durability = Durability::processDeath, .readers = Readers::owner});
    if (!written)
        seams_.log(
            seams_.file.string() +
            " cannot be written, so a restart will end keeping awake: " + written.fault().reason);
}

void KeepAwake::presenceChanged(Holder& holder, bool isThere) {
    // Whoever went away has let go of everything.
    holder.isThere = isThere;
    holder.state = Holder::State::absent;
    holder.token = {};
    ++holder.question;
    if (isOn_) ask(holder);
    judge();
}

void KeepAwake::ask(Holder& holder) {
    if (!holder.isThere) return;
    holder.state = Holder::State::asked;
    const auto reply = [this, &holder, question = ++holder.question](const bus::Result<bus::Data>& results) {
        answered(holder, question, results);
    };
    if (&holder == &login_)
        seams_.systemBus.call(
            {login, "/org/freedesktop/login1", "org.freedesktop.login1.Manager", "Inhibit"},
            "(ssss)",
            {"idle", application, reason, "block"},
            reply);
    else
        seams_.sessionBus.call(
            {screen, screenObject, screen, "Inhibit"}, "(ss)", {application, reason}, reply);
}

void KeepAwake::answered(Holder& holder, unsigned question, const bus::Result<bus::Data>& results) {
    const bool isGranted = results && (&holder == &login_ ? results.value()[0].descriptor() != nullptr
                                                          : results.value()[0].integer().has_value());
    if (question != holder.question) {
        if (isGranted) giveBack(holder, results.value()[0]);
        return;
    }
    holder.state = isGranted ? Holder::State::held : Holder::State::refused;
    if (isGranted)
        holder.token = results.value()[0];
    else
        holder.reason = results ? "an answer of another shape" : results.fault().text;
    judge();
}

void KeepAwake::giveBack(const Holder& holder, const bus::Data& token) {
    // logind lets go when the descriptor is closed.
    if (&holder == &screen_)
        seams_.sessionBus.call(
            {screen, screenObject, screen, "UnInhibit"}, "(u)", {token}, [](const auto&) {});
}

void KeepAwake::release(Holder& holder) {
    if (holder.state == Holder::State::held) giveBack(holder, holder.token);
    holder.token = {};
    holder.state = Holder::State::absent;
    ++holder.question;
}

void KeepAwake::judge() {
    const auto may = [](const Holder& holder) {
        return holder.state == Holder::State::held || holder.state == Holder::State::asked;
    };
    if (!isOn_ || may(login_) || may(screen_)) {
        judgement_.reset();
        return;
    }
    judgement_ = runloop::MainSource::after(seams_.grace, [this] {
        std::string why;
        for (const std::string& each : holders().refused) why += (why.empty() ? "" : "; ") + each;
        stop("nobody here can do it (" + why + ")");
    });
}

KeepAwake::Holders KeepAwake::holders() const {
    Holders out;
    for (const Holder* holder : {&login_, &screen_}) {
        if (holder->state == Holder::State::held)
            out.held.push_back(holder->name);
        else if (holder->state == Holder::State::refused)
            out.refused.push_back(holder->name + ": " + holder->reason);
        else if (!holder->isThere)
            out.refused.push_back(holder->name + ": it is not there");
    }
    return out;
}

}  // namespace zelto::agent
