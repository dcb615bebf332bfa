// What zefbench does with the foundation, done by other libraries: foundation -po | foundation SECONDS TEXT_DIR
// "-po" prints the texts as a PO file, from which msgfmt makes TEXT_DIR/de/LC_MESSAGES/bench.mo. Otherwise prints
// "name peer microseconds" lines; the time is CPU time.
#include "inputs.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <libintl.h>
#include <libxml/parser.h>
#include <locale.h>
#include <mbedtls/md.h>
#include <mbedtls/pkcs5.h>
#include <openssl/evp.h>
#include <systemd/sd-event.h>
#include <time.h>

namespace {
double seconds = 0.2;

double cpuS() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

void require(bool holds, const char* what) {
    if (holds)
        return;
    fprintf(stderr, "foundation: %s failed\n", what);
    exit(1);
}

template <class Work>
void measure(const char* name, const char* peer, Work work, double each = 1) {
    work();
    const double start = cpuS();
    double spent = 0;
    long count = 0;
    do {
        work();
        ++count;
        spent = cpuS() - start;
    } while (spent < seconds);
    printf("%s %s %f\n", name, peer, spent * 1e6 / static_cast<double>(count) / each);
}

void printPo() {
    printf("msgid \"\"\nmsgstr \"Content-Type: text/plain; charset=UTF-8\\n\"\n");
    for (const std::string& key : catalogKeys())
        printf("\nmsgid \"%s\"\nmsgstr \"Text for %s\"\n", key.c_str(), key.c_str());
}

void lookUpTexts(const char* dir) {
    setenv("LANGUAGE", "de", 1);
    require(setlocale(LC_ALL, "C.UTF-8") != nullptr, "setlocale");
    require(bindtextdomain("bench", dir) && textdomain("bench") && bind_textdomain_codeset("bench", "UTF-8"), "domain");
    const std::vector<std::string> keys = catalogKeys();
    const std::vector<const char*> order = lookUps(keys);
    require(strncmp(gettext(order[1]), "Text for ", 9) == 0, "gettext");
    size_t sum = 0;
    measure(
        "lookUpText", "gettext",
        [&] {
            for (const char* key : order)
                sum += static_cast<size_t>(gettext(key)[0]);
        },
        static_cast<double>(order.size()));
    require(sum > 0, "gettext");
}

void readXml() {
    const std::string text = parametersXml();
    measure("configurationXml", "libxml2", [&] {
        xmlDocPtr doc = xmlReadMemory(text.data(), static_cast<int>(text.size()), nullptr, nullptr, XML_PARSE_NONET);
        require(doc != nullptr, "xmlReadMemory");
        xmlFreeDoc(doc);
    });
}

void deriveKeys() {
    unsigned char key[64];
    const unsigned char salt[16] = {};
    const char* const password = "correct horse battery";
    const size_t len = strlen(password);
    measure("passwordKey", "OpenSSL", [&] {
        require(PKCS5_PBKDF2_HMAC(password, static_cast<int>(len), salt, sizeof salt, 20000, EVP_sha512(), sizeof key,
                                  key) == 1,
                "PKCS5_PBKDF2_HMAC");
    });
    mbedtls_md_context_t md;
    mbedtls_md_init(&md);
    require(mbedtls_md_setup(&md, mbedtls_md_info_from_type(MBEDTLS_MD_SHA512), 1) == 0, "mbedtls_md_setup");
    measure("passwordKey", "MbedTLS", [&] {
        require(mbedtls_pkcs5_pbkdf2_hmac(&md, reinterpret_cast<const unsigned char*>(password), len, salt, sizeof salt,
                                          20000, sizeof key, key) == 0,
                "mbedtls_pkcs5_pbkdf2_hmac");
    });
    mbedtls_md_free(&md);
}

// One of many timers is put off, as a busy dialog does all the time.
void putOffTimers(int count) {
    sd_event* event = nullptr;
    require(sd_event_new(&event) >= 0, "sd_event_new");
    std::vector<sd_event_source*> timers(static_cast<size_t>(count));
    for (size_t i = 0; i < timers.size(); ++i)
        require(sd_event_add_time_relative(
                    event, &timers[i], CLOCK_MONOTONIC, 60000000 + i * 7919 % timers.size() * 1000, 0,
                    [](sd_event_source*, uint64_t, void*) { return 0; }, nullptr) >= 0,
                "add_time");
    size_t i = 0;
    measure(("restartTimer/" + std::to_string(count)).c_str(), "sd-event",
            [&] {
                for (int n = 0; n < 100; ++n, i = (i + 367) % timers.size())
                    require(sd_event_source_set_time_relative(timers[i], 60000000 + i * 7919 % timers.size() * 1000) >=
                                0,
                            "set_time");
            },
            100);
    for (sd_event_source* timer : timers)
        sd_event_source_unref(timer);
    sd_event_unref(event);
}
} // namespace

int main(int argc, char** argv) {
    if (argc > 1 && strcmp(argv[1], "-po") == 0) {
        printPo();
        return 0;
    }
    if (argc != 3)
        return 2;
    seconds = atof(argv[1]);
    lookUpTexts(argv[2]);
    readXml();
    deriveKeys();
    putOffTimers(10);
    putOffTimers(1000);
}
