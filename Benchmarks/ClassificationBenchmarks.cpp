// What classifying costs: each session of every report is categorized and resolved, each sample's title is read.
#include "Kestrio/Classification/Categorizer.h"
#include "Kestrio/Classification/ProjectDetection.h"

#include <benchmark/benchmark.h>

namespace kestrio {
namespace {

Categorizer::Snapshot fiftyChoices() {
    Categorizer::Snapshot snapshot;
    for (int i = 0; i < 50; ++i) {
        snapshot.appOverrides.emplace("org.example.app" + std::to_string(i), ActivityCategory::work);
        snapshot.domainOverrides.emplace("site" + std::to_string(i) + ".example.org", ActivityCategory::social);
    }
    return snapshot;
}

void category(benchmark::State& state, const char* bundleID, const std::optional<std::string>& domain) {
    const auto snapshot = fiftyChoices();
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(snapshot.category(bundleID, domain));
}
BENCHMARK_CAPTURE(category, ofAKnownApplication, "com.microsoft.VSCode", std::nullopt);
BENCHMARK_CAPTURE(category, ofAnUnknownApplication, "org.example.unknown", std::nullopt);
BENCHMARK_CAPTURE(category, ofAKnownSite, "org.mozilla.firefox", "github.com");
BENCHMARK_CAPTURE(category, ofAParentAfterAWalk, "org.mozilla.firefox", "a.b.c.github.com");
BENCHMARK_CAPTURE(category, ofAnUnknownSite, "org.mozilla.firefox", "www.unknown.example.org");
BENCHMARK_CAPTURE(category, ofALocalServer, "org.mozilla.firefox", "localhost:3000");

void snapshot(benchmark::State& state) {
    Categorizer categorizer({}, {});
    for (const auto& [bundleID, category] : fiftyChoices().appOverrides)
        categorizer.setAppCategory(category, bundleID);
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(categorizer.snapshot());
}
BENCHMARK(snapshot);

void project(benchmark::State& state, const char* bundleID, const char* appName, const char* title) {
    const ProjectDetector detector({"alice", "/home/alice", "walrus", {}});
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(detector.detect(bundleID, appName, title));
}
BENCHMARK_CAPTURE(project, ofAnEditor, "com.microsoft.VSCode", "Code", "ActivityMonitor.cpp — kestrio");
BENCHMARK_CAPTURE(project, ofAProjectFirst, "com.jetbrains.clion", "CLion", "kestrio – ActivityMonitor.cpp [kestrio]");
BENCHMARK_CAPTURE(project, ofATerminal, "io.alacritty", "Alacritty", "alice@walrus: ~/work/kestrio (main)");
BENCHMARK_CAPTURE(project, ofAnotherApplication, "org.mozilla.firefox", "Firefox", "A page of usual length");

void resolution(benchmark::State& state, const char* title) {
    std::vector<ProjectRule> rules;
    for (int i = 0; i < state.range(0); ++i)
        rules.push_back({{}, "keyword " + std::to_string(i), "Project"});
    const std::optional<std::string> url = "https://example.org/some/path/of/usual/length";
    const std::optional<std::string> detected = "kestrio";
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(ProjectRules::resolve(rules, title, url, detected));
}
BENCHMARK_CAPTURE(resolution, ofAPlainTitle, "A title of usual length, as pages have it")->Arg(0)->Arg(1)->Arg(20);
BENCHMARK_CAPTURE(resolution, ofATitleWithAccents, "Ein Titel üblicher Länge, wie ihn Seiten haben")->Arg(1)->Arg(20);

} // namespace
} // namespace kestrio
