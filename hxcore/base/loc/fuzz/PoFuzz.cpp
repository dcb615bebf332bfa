// Text files of translations; what is read is valid text under a valid key.
#include "loc/PoReader.h"
#include "plat/fuzz/quietLog.h"
#include "plat/utf8.h"
#include "rdr/MemInStream.h"
#include "rdr/exceptions.h"

#include <cstdlib>

namespace {

class Checker : public loc::PoReader::Callback {
public:
    void addText(const char* key, const char* text) override {
        if (!*key || !plat::utf8::isValid(key) || !plat::utf8::isValid(text))
            std::abort();
    }
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Checker checker;
    rdr::MemInStream in(data, size);
    try {
        loc::PoReader(checker, "fuzz", "en").read(in);
    } catch (const rdr::StringTooLongException&) {
    }
    return 0;
}
