// Each widget from entry to pixels: build, archive, lay out, draw at 2x, beside filling the same pixels.

#include <benchmark/benchmark.h>
#include <cairo.h>

#include "drawing/Renderer.hpp"
#include "layout/Layout.hpp"
#include "widget/Widgets/ZeltoWidgetBundle.hpp"
#include "widgetkit/Messages.hpp"

namespace zelto {

using namespace shared;
using namespace texts;
using namespace widget;
using namespace widgetkit;
namespace {

constexpr Date date{794941500};  // 2026-03-11T14:05:00-03:00

ProviderSources sources() {
    static const WidgetSnapshot snapshot = WidgetSnapshot::sample(date);
    return {.now = [] { return date; }, .live = placeholderLiveData, .snapshot = [] { return snapshot; }};
}

struct Subject {
    WidgetConfiguration widget;
    WidgetFamily family;
    Formatting formatting{{"pt_BR", "America/Sao_Paulo"}};

    ArchivedEntry entry() const {
        return widget.snapshot({family, false}, {family, formatting, [] { return date; }});
    }
    layout::LayoutOptions options() const {
        const ui::Size size = sizeOf(family);
        return {.size = size, .now = date};
    }
};

void build(benchmark::State& state, const Subject& subject) {
    benchmark::DoNotOptimize(subject.entry());
    for (auto _ : state) benchmark::DoNotOptimize(subject.entry());
}
void archive(benchmark::State& state, const Subject& subject) {
    Reply reply;
    reply.id = 1;
    reply.entry = subject.entry();
    for (auto _ : state) benchmark::DoNotOptimize(encodeReply(reply));
}
/// A whole timeline, built and archived: what a host waits for beyond the reading.
void timeline(benchmark::State& state, const Subject& subject) {
    for (auto _ : state) {
        Reply reply;
        reply.id = 1;
        reply.timeline = subject.widget.timeline(
            {subject.family, false}, {subject.family, subject.formatting, [] { return date; }});
        benchmark::DoNotOptimize(encodeReply(reply));
    }
}
void readArchive(benchmark::State& state, const Subject& subject) {
    Reply reply;
    reply.id = 1;
    reply.entry = subject.entry();
    const std::string line = *encodeReply(reply);
    for (auto _ : state) benchmark::DoNotOptimize(decodeReply(line));
}
void layOut(benchmark::State& state, const Subject& subject) {
    drawing::Renderer renderer;
    const auto entry = subject.entry();
    benchmark::DoNotOptimize(layout::layOut(entry.view, subject.options(), renderer.measuring()));
    for (auto _ : state)
        benchmark::DoNotOptimize(layout::layOut(entry.view, subject.options(), renderer.measuring()));
}
void drawCold(benchmark::State& state, const Subject& subject) {
    const auto entry = subject.entry();
    for (auto _ : state) {
        drawing::Renderer renderer;
        benchmark::DoNotOptimize(
            renderer.draw(layout::layOut(entry.view, subject.options(), renderer.measuring()), 2));
    }
}
void drawWarm(benchmark::State& state, const Subject& subject) {
    drawing::Renderer renderer;
    const auto displayList = layout::layOut(subject.entry().view, subject.options(), renderer.measuring());
    drawing::Picture picture = renderer.draw(displayList, 2);
    for (auto _ : state) {
        renderer.draw(displayList, 2, drawing::Corners::rounded, picture);
        benchmark::ClobberMemory();
    }
}
/// The same number of pixels, filled with one colour by Cairo.
void fill(benchmark::State& state, const Subject& subject) {
    const ui::Size size = sizeOf(subject.family);
    cairo_surface_t* surface = cairo_image_surface_create(
        CAIRO_FORMAT_ARGB32, static_cast<int>(size.width * 2), static_cast<int>(size.height * 2));
    cairo_t* context = cairo_create(surface);
    cairo_set_source_rgb(context, 0.1, 0.2, 0.3);
    for (auto _ : state) {
        cairo_paint(context);
        benchmark::ClobberMemory();
    }
    cairo_destroy(context);
    cairo_surface_destroy(surface);
}

void registerAll() {
    static std::vector<std::unique_ptr<Subject>> subjects;
    for (auto& widget : ZeltoWidgetBundle{sources()}.body())
        for (const WidgetFamily family : widget.info().families) {
            subjects.push_back(std::make_unique<Subject>(Subject{widget, family}));
            const Subject& subject = *subjects.back();
            const std::string name =
                widget.info().kind + "/" + std::to_string(static_cast<int>(family)) + "/";
            const auto add = [&](const char* what, void (*run)(benchmark::State&, const Subject&)) {
                benchmark::RegisterBenchmark(
                    (name + what).c_str(), [run, &subject](benchmark::State& state) { run(state, subject); })
                    ->Unit(benchmark::kMicrosecond)
                    ->MinTime(0.1);
            };
            add("build", build);
            add("archive", archive);
            add("readArchive", readArchive);
            add("timeline", timeline);
            add("layOut", layOut);
            add("drawCold", drawCold);
            add("drawWarm", drawWarm);
            add("fill", fill);
        }
}

}  // namespace
}  // namespace zelto

int main(int argc, char** argv) {
    zelto::registerAll();
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
