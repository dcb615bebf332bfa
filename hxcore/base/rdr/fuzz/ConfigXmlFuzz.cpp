// A parameter set as XML; what was taken is the same after a write and a read.
#include "plat/Configuration.h"
#include "plat/Exception.h"
#include "plat/fuzz/quietLog.h"
#include "rdr/MemOutStream.h"
#include "rdr/XmlConfig.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    plat::Configuration config("Fuzz");
    config.setLogChanges(false);
    try {
        plat::XmlConfig::read(config, reinterpret_cast<const char*>(data), size);
    } catch (const plat::Exception&) {
        return 0;
    }
    rdr::MemOutStream out;
    plat::XmlConfig::write(out, config, plat::XmlConfig::Texts::Keys, /*withHidden=*/true);
    const plat::String text = out.takeString();
    plat::Configuration back("Back");
    back.setLogChanges(false);
    plat::XmlConfig::read(back, text.c_str());
    rdr::MemOutStream again;
    plat::XmlConfig::write(again, back, plat::XmlConfig::Texts::Keys, /*withHidden=*/true);
    if (back.getParams().size() != config.getParams().size())
        std::abort();
    return 0;
}
