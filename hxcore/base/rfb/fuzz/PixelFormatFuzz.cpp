// Pixel formats as text and from the wire: whatever is valid prints, and a text form that parses again is the same.
#include "rdr/MemInStream.h"
#include "rdr/MemOutStream.h"
#include "rfb/Colour.h"
#include "rfb/ColourMap.h"
#include "rfb/PixelBuffer.h"
#include "rfb/TransPixelBuffer.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

namespace {

void checkText(const char* text) {
    rfb::PixelFormat pf;
    if (!pf.parse(text))
        return;
    char printed[rfb::PixelFormat::printSize];
    pf.print(printed);
    if (!pf.isValid())
        std::abort();
    rfb::PixelFormat again;
    const char* last = std::strrchr(printed, ' ') + 1;
    if (pf.trueColour && (!again.parse(last) || !again.equal(pf)))
        std::abort();
}

void checkWire(const uint8_t* data, size_t size) {
    rdr::MemInStream in(data, size);
    rfb::PixelFormat pf;
    pf.read(in);
    rdr::MemOutStream written;
    pf.write(written);
    rdr::MemInStream back(written.data(), written.size());
    rfb::PixelFormat same;
    same.read(back);
    if (!same.equal(pf))
        std::abort();
    char printed[rfb::PixelFormat::printSize];
    pf.print(printed);
    pf.setDepth();
    rfb::PixelFormat native = pf;
    native.toNativeEndian();
    // Channels of 16 bits are only slow here.
    if (!pf.isValid() || std::max({pf.redMax, pf.greenMax, pf.blueMax, pf.alphaMax}) > 1023)
        return;
    uint8_t pixels[16] = {1, 2, 3, 4, 0xff, 0xff, 0xff, 0xff};
    const rfb::FullFramePixelBuffer source(pf, rfb::Rect(0, 0, 2, 2), pixels, 2);
    const rfb::ColorCubeOrth cube(3);
    const rfb::PixelFormat* const targets[] = {&rfb::pfARGB8888(), &rfb::pfRGB888(), &rfb::pfRGB565(), &rfb::pfRGB222(),
                                               &rfb::pfIndexed8()};
    rfb::TransPixelBuffer out(/*channelTables16=*/true);
    out.setColourMap(&cube);
    out.setPF(*targets[size > 16 ? data[16] % std::size(targets) : 0]);
    out.setSource(&source);
    uint32_t result[4];
    out.getImage(result, out.getRect());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    checkText(std::string(reinterpret_cast<const char*>(data), size).c_str());
    if (size >= 16)
        checkWire(data, size);
    return 0;
}
