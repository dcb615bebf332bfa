// Texts, password keys, log calls and timers; tools/bench-peers/foundation does the same with other libraries.
#include "crypto/Pbkdf2.h"
#include "inputs.h"
#include "loc/Localize.h"
#include "plat/LogSrc.h"
#include "plat/Timer.h"

#include <benchmark/benchmark.h>
#include <deque>

namespace {

void lookUpText(benchmark::State& state) {
    loc::Localize& localize = loc::Localize::instance();
    const std::vector<std::string> keys = catalogKeys();
    for (const std::string& key : keys)
        localize.addTranslation("de", key.c_str(), ("Text for " + key).c_str());
    localize.setLocales({"de_DE", "en_US"}, nullptr);
    const std::vector<const char*> order = lookUps(keys);
    size_t i = 0;
    for ([[maybe_unused]] auto _ : state) {
        benchmark::DoNotOptimize(LOC_TEXT(order[i]));
        i = i + 1 < order.size() ? i + 1 : 0;
    }
}
BENCHMARK(lookUpText);

void passwordKey(benchmark::State& state) {
    const uint8_t salt[16] = {};
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(crypto::Pbkdf2::derive("correct horse battery", salt, 20000, 64, 512));
}
BENCHMARK(passwordKey);

plat::LogSrc source("Bench");

void filteredLog(benchmark::State& state) {
    plat::logSetSpec("*:stderr:0");
    plat::logActivate();
    int number = 0;
    for ([[maybe_unused]] auto _ : state) {
        source.verbose("a message about %d and %s", number, "something");
        benchmark::DoNotOptimize(++number);
    }
}
BENCHMARK(filteredLog);

// What the loop above costs without its call but with the comparison.
void oneComparison(benchmark::State& state) {
    volatile int limit = 0;
    int number = 0;
    for ([[maybe_unused]] auto _ : state) {
        if (limit >= plat::LogVerbose)
            std::abort();
        benchmark::DoNotOptimize(++number);
    }
}
BENCHMARK(oneComparison);

class Counter : public plat::Timer::Callback {
public:
    bool timerExpired(plat::Timer*) override {
        ++fired;
        return false;
    }
    int64_t fired = 0;
};

// One of many timers is put off, as a busy dialog does all the time.
void restartTimer(benchmark::State& state) {
    plat::TimerManager manager(/*nested=*/true);
    Counter counter;
    std::deque<plat::Timer> timers;
    const auto count = static_cast<size_t>(state.range(0));
    for (size_t i = 0; i < count; ++i)
        timers.emplace_back(&counter).start(static_cast<uint32_t>(60000 + i * 7919 % count));
    size_t i = 0;
    for ([[maybe_unused]] auto _ : state) {
        timers[i].start(static_cast<uint32_t>(60000 + i * 7919 % count));
        i = (i + 367) % count;
    }
}
BENCHMARK(restartTimer)->Arg(10)->Arg(1000);

// All of them fall due at once.
void fireTimers(benchmark::State& state) {
    plat::TimerManager manager(/*nested=*/true);
    Counter counter;
    std::deque<plat::Timer> timers;
    for (int64_t i = 0; i < state.range(0); ++i)
        timers.emplace_back(&counter);
    for ([[maybe_unused]] auto _ : state) {
        for (plat::Timer& timer : timers)
            timer.start(0);
        manager.processTimers();
    }
    if (counter.fired != state.iterations() * state.range(0))
        state.SkipWithError("a timer did not fire");
}
BENCHMARK(fireTimers)->Arg(1000);

} // namespace
