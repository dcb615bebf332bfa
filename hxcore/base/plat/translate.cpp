#include "plat/translate.h"

namespace plat {
namespace {
constinit Translator* current = nullptr;
} // namespace

void setTranslator(Translator* translator) { current = translator; }

const char* translate(const char* key) { return current ? current->translate(key) : key; }

void translateWith(DString& out, const char* key, const char* arg) {
    if (current)
        current->translateWith(out, key, arg);
    else
        out.format("%s %s", key, strOrEmpty(arg));
}

} // namespace plat
