#include "loc/TransMap.h"

#include "loc/format.h"
#include "plat/Assert.h"

#include <cstring>
#include <memory>

namespace loc {
namespace {

thread_local TransMap* thrTop = nullptr;

// Texts that were replaced after someone may have asked for them.
std::vector<std::unique_ptr<const char[]>>& retired() {
    static auto* const texts = new std::vector<std::unique_ptr<const char[]>>;
    return *texts;
}

} // namespace

Translation::~Translation() {
    if (owned)
        delete[] text;
}

void Translation::adopt(char* newText) {
    if (owned)
        retired().emplace_back(text);
    text = newText;
    owned = true;
}

void Translation::borrow(const char* newText) {
    if (owned)
        retired().emplace_back(text);
    text = newText;
    owned = false;
}

void Translation::copy(const char* newText) {
    adopt(plat::strDup(plat::strOrEmpty(newText)));
    state = TR_UNUSED;
}

void Translation::reduce() {
    if (std::strchr(text, '%'))
        adopt(formatted(text, {}).take());
}

TransMap& TransMap::process() {
    static auto* const map = new TransMap; // lookups may come late in the end of the process
    return *map;
}

TransMap& TransMap::current() { return thrTop ? *thrTop : process(); }

TransMap::~TransMap() {
    if (!pushed)
        return;
    ASSERT(thrTop == this);
    thrTop = previous;
}

void TransMap::push() {
    ASSERT(!pushed);
    previous = thrTop;
    thrTop = this;
    pushed = true;
}

} // namespace loc
