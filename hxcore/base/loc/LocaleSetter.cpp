#include "loc/LocaleSetter.h"

#include "loc/Localize.h"
#include "loc/TransMap.h"
#include "loc/localeNames.h"
#include "plat/Assert.h"
#include "plat/LogSrc.h"

namespace loc {
namespace {
plat::LogSrc log("Localize");
thread_local LocaleSetter* thrInst = nullptr;
} // namespace

LocaleSetter::LocaleSetter(const char* list) : previous(thrInst) {
    if (list && *list)
        chooseLanguage(list);
    else
        osLocale = previous ? previous->osLocale : getProcessOsLocale();
    thrInst = this;
    ownLocale = newlocale(LC_ALL_MASK, osLocale.name.c_str(), nullptr);
    if (ownLocale)
        formerLocale = uselocale(ownLocale);
}

LocaleSetter::~LocaleSetter() {
    ASSERT(thrInst == this);
    thrInst = previous;
    if (transMap)
        log.verbose("restoring locale");
    if (ownLocale) {
        uselocale(formerLocale);
        freelocale(ownLocale);
    }
}

void LocaleSetter::chooseLanguage(const char* list) {
    log.verbose("setting locale %s", list);
    const std::vector<std::string> locales = normaliseLocales(list);
    localeList = joinLocales(locales);
    osLocale = chooseOsLocale(locales);
    transMap = std::make_unique<TransMap>();
    transMap->push();
    Localize::instance().setLocales(locales, nullptr);
}

const LocaleSetter* LocaleSetter::current() { return thrInst; }

const LocaleSetter* LocaleSetter::currentWithList() {
    const LocaleSetter* setter = thrInst;
    while (setter && setter->localeList.empty())
        setter = setter->previous;
    return setter;
}

} // namespace loc
