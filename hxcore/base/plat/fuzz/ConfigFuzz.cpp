// Log specifications and command lines: each line of the input is an argument, and the whole is a specification.
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/LogDestFile.h"
#include "plat/LogRegistry.h"
#include "plat/Splitter.h"
#include "plat/utf8.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

namespace {

class Sink : public plat::LogDest {
public:
    Sink() : LogDest("sink") {}
    void write(int, const char*, const char* text) override {
        // What reaches a destination is one line of valid text.
        for (const char* pos = text; *pos; ++pos) {
            if (static_cast<unsigned char>(*pos) < 32 || *pos == 127)
                std::abort();
        }
        if (!plat::utf8::isValid(text))
            std::abort();
    }
};

constexpr size_t most = 1024; // of lines and elements beyond, each does the same again

constexpr const char* names[] = {"low", "medium", "high", nullptr};

void run(const uint8_t* data, size_t size) {
    plat::String text(std::string_view(reinterpret_cast<const char*>(data), size));
    Sink sink;
    plat::logSetSpec(text.c_str());
    plat::LogSrc source("Fuzz");
    source.error("%s", text.c_str());
    plat::logSetSpec("Fuzz:sink:100");
    source.writeLines(100, text.c_str());

    plat::Configuration config("Test");
    config.addBool("flag", "d", false);
    config.addInt("int", "d", 0, false, -100, 100);
    config.addEnum("enum", "d", nullptr, names);
    config.addString("text", "d", "");
    config.addS64("s64", "d", 0);
    config.addBinary("binary", "d", nullptr, 0);
    plat::ParameterAlias alias("alias", {"int", "other"}, &config);
    plat::ParameterAlias other("other", {"alias", "enum"}, &config);
    std::vector<const char*> args;
    for (char* pos = text.get(); pos;)
        args.push_back(plat::Splitter::split(&pos, '\n'));
    args.push_back(nullptr);
    try {
        config.setFromArgs(args.data());
    } catch (const plat::BadUtf8&) {
        // The one failure of a value that is told by throwing.
    }
    // What was taken is written and read back as the same.
    plat::Configuration copy(config);
    for (plat::ConfigParameter* param : config.getParams()) {
        if (!copy.set(param->getName(), param->getValueStr().c_str(), 20))
            std::abort();
    }
    if (!config.equals(copy))
        std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    // What is told on stderr about each bad input is of no use here; the fuzzer keeps its own stream.
    stderr = std::fopen("/dev/null", "w");
    if (!stderr)
        std::abort();
    plat::LogDestFile::stderrDest().setEnabled(false);
    plat::logActivate();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size > most)
        return 0;
    run(data, size);
    // Messages that no destination took are kept, which the fuzzer would take for a leak and look into after each run.
    plat::logSetSpec("");
    plat::LogRegistry::instance().memory().clear();
    return 0;
}
