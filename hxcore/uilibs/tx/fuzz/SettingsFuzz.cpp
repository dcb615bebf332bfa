// The bytes in which a desktop publishes its look.
#include "tx/desktopTexts.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::span<const char> bytes(reinterpret_cast<const char*>(data), size);
    tx::XSettings settings;
    settings.parse(bytes);
    for (const auto& [name, text] : settings.texts)
        tx::isDarkTheme(text);
    const int dpi = tx::parseXftDpi({bytes.data(), bytes.size()});
    if (dpi != 0)
        tx::scaleForDpi(dpi);
    return 0;
}
