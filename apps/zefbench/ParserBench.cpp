// Parsers: configuration as text and as XML, and markup.
#include "inputs.h"
#include "plat/Configuration.h"
#include "plat/Markup.h"
#include "rdr/MemInStream.h"
#include "rdr/StreamConfig.h"
#include "rdr/XmlConfig.h"

#include <benchmark/benchmark.h>
#include <string>

namespace {

constexpr int settings = 400;

void fill(plat::Configuration& config) {
    for (int i = 0; i < settings; ++i)
        config.addString(("Name" + std::to_string(i)).c_str(), "a setting", "default");
}

void configurationText(benchmark::State& state) {
    plat::Configuration config("Bench");
    config.setLogChanges(false);
    fill(config);
    std::string text;
    for (int i = 0; i < settings; ++i)
        text += "Name" + std::to_string(i) + "=a value of some length with a \\\\ and a \\n in it\n";
    for ([[maybe_unused]] auto _ : state) {
        rdr::MemInStream in(text.data(), text.size());
        plat::StreamConfig::read(in, config, plat::PriorityPreference);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(configurationText);

void configurationXml(benchmark::State& state) {
    const std::string text = parametersXml();
    plat::Configuration target("Target");
    target.setLogChanges(false);
    for ([[maybe_unused]] auto _ : state)
        plat::XmlConfig::read(target, text.data(), text.size());
    if (target.getParams().size() != 400)
        state.SkipWithError("not all parameters were read");
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(configurationXml);

void markup(benchmark::State& state) {
    std::string text;
    for (int i = 0; i < 50; ++i)
        text += "<div style=\"font-size:120%\">Words with <b>weight</b> and <a href=\"https://x.example\">a "
                "link</a>.</div>";
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(plat::Markup::strip(text.c_str()));
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}
BENCHMARK(markup);

} // namespace
