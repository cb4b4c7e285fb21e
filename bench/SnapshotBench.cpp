// Decoding and encoding snapshots, beside a plain copy of the same bytes and beside the JSON library's own
// DOM.

#include <benchmark/benchmark.h>
#include <nlohmann/json.hpp>

#include "records/JSONDecoder.hpp"
#include "records/JSONEncoder.hpp"
#include "shared/WidgetSnapshotFields.hpp"

namespace zelto {

using namespace records;
using namespace shared;
namespace {

/// The sample with more of everything until the document has about `bytes` bytes.
const WidgetSnapshot& snapshotOf(std::size_t bytes) {
    static std::map<std::size_t, WidgetSnapshot> made;
    auto& snapshot = made[bytes];
    if (!snapshot.cpuHistory.empty()) return snapshot;
    snapshot = WidgetSnapshot::sample({800000000.25});
    while (encodeJSON(snapshot)->size() < bytes)
        for (std::size_t i = 0, step = std::max<std::size_t>(snapshot.clips.size() / 2, 1); i < step; ++i) {
            snapshot.clips.push_back(snapshot.clips[i]);
            snapshot.events.push_back(snapshot.events[i]);
        }
    return snapshot;
}
const std::string& documentOf(const benchmark::State& state) {
    static std::map<std::size_t, std::string> made;
    auto& text = made[static_cast<std::size_t>(state.range(0))];
    if (text.empty()) text = *encodeJSON(snapshotOf(static_cast<std::size_t>(state.range(0))));
    return text;
}
void finish(benchmark::State& state) {
    state.SetBytesProcessed(state.iterations() * std::ssize(documentOf(state)));
}

void copyBytes(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(std::string(documentOf(state)));
    finish(state);
}
void decode(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(decodeJSON<WidgetSnapshot>(documentOf(state)));
    finish(state);
}
void libraryParse(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(nlohmann::json::parse(documentOf(state)));
    finish(state);
}
void encode(benchmark::State& state) {
    const WidgetSnapshot& snapshot = snapshotOf(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(encodeJSON(snapshot));
    finish(state);
}
void libraryDump(benchmark::State& state) {
    const auto dom = nlohmann::json::parse(documentOf(state));
    for (auto _ : state) benchmark::DoNotOptimize(dom.dump());
    finish(state);
}

BENCHMARK(copyBytes)->Arg(7'000)->Arg(1'000'000);
BENCHMARK(decode)->Arg(7'000)->Arg(1'000'000);
BENCHMARK(libraryParse)->Arg(7'000)->Arg(1'000'000);
BENCHMARK(encode)->Arg(7'000)->Arg(1'000'000);
BENCHMARK(libraryDump)->Arg(7'000)->Arg(1'000'000);

}  // namespace
}  // namespace zelto

BENCHMARK_MAIN();
