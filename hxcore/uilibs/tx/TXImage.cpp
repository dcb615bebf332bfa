#include "tx/TXImage.h"

#include "plat/Assert.h"
#include "plat/ConfigParameter.h"
#include "plat/Exception.h"
#include "plat/LogSrc.h"
#include "rfb/TransPixelBuffer.h"
#include "rfb/renderOps.h"
#include "tx/ErrorCatcher.h"
#include "tx/TX.h"
#include "tx/TXState.h"

#include <X11/extensions/XShm.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <vector>

#include <sys/ipc.h>
#include <sys/shm.h>

namespace tx {
namespace {

plat::LogSrc log("TXImage");
plat::IntParameter colorCubeSize("ColorCubeSize",
                                 "Size of NxNxN color cube to allocate for colormapped displays (2 to 6)", 4,
                                 /*isAdvanced=*/false, /*owner=*/nullptr, 2, 6);

constexpr size_t maxImageBytes = 512UL * 1024 * 1024; // far beyond any screen: another client may resize our windows
bool sharedAllowed = true;

void logOnce(bool* done, const char* text) {
    if (!*done)
        log.info("%s", text);
    *done = true;
}

/// Asks once whether the server takes shared memory and in what form.
bool serverHasShm() {
    static Display* asked = nullptr;
    static bool available = false;
    if (asked == dpy)
        return available;
    asked = dpy;
    available = XShmQueryExtension(dpy) != False;
    int event = 0;
    int error = 0;
    if (available && !XQueryExtension(dpy, "MIT-SHM", &state().shmOpcode, &event, &error))
        available = false;
    if (available && XShmPixmapFormat(dpy) != ZPixmap) {
        available = false;
        throw plat::Exception("XShmPixmapFormat != ZPixmap");
    }
    return available;
}

XPixmapFormatValues findPixmapFormat(int depth) {
    int count = 0;
    XPixmapFormatValues* formats = XListPixmapFormats(dpy, &count);
    XPixmapFormatValues found{};
    for (int i = 0; i < count; i++) {
        if (formats[i].depth == depth)
            found = formats[i];
    }
    if (formats)
        XFree(formats);
    if (found.bits_per_pixel != 8 && found.bits_per_pixel != 16 && found.bits_per_pixel != 24 &&
        found.bits_per_pixel != 32)
        throw plat::Exception("Error: couldn't find suitable pixmap format");
    return found;
}

uint16_t maskMax(unsigned long mask) { return static_cast<uint16_t>(mask >> std::countr_zero(mask)); }

uint8_t maskShift(unsigned long mask) { return static_cast<uint8_t>(std::countr_zero(mask)); }

/// One run of at most 16 bits.
bool isChannelMask(unsigned long mask) {
    if (mask == 0)
        return false;
    const unsigned long run = mask >> std::countr_zero(mask);
    return (run & (run + 1)) == 0 && run <= 0xffff;
}

} // namespace

/// A System V segment, attached here and at the server. It is marked for removal at once, so that none outlives us.
struct TXImage::Segment {
    explicit Segment(size_t bytes);
    ~Segment();
    Segment(const Segment&) = delete;
    Segment& operator=(const Segment&) = delete;

    XShmSegmentInfo info{};
    bool serverAttached = false;

private:
    void attachToServer();
    void detach();
};

TXImage::Segment::Segment(size_t bytes) {
    info.shmid = shmget(IPC_PRIVATE, bytes, IPC_CREAT | 0600);
    if (info.shmid < 0)
        throw plat::StdlibException("shmget");
    info.shmaddr = static_cast<char*>(shmat(info.shmid, nullptr, 0));
    if (reinterpret_cast<intptr_t>(info.shmaddr) == -1) {
        const plat::StdlibException failure("shmat");
        shmctl(info.shmid, IPC_RMID, nullptr);
        throw failure;
    }
    try {
        attachToServer();
    } catch (...) {
        detach();
        throw;
    }
    shmctl(info.shmid, IPC_RMID, nullptr);
}

TXImage::Segment::~Segment() {
    if (serverAttached && dpy)
        XShmDetach(dpy, &info);
    shmdt(info.shmaddr);
}

void TXImage::Segment::attachToServer() {
    ErrorCatcher catcher(100);
    if (!XShmAttach(dpy, &info))
        throw plat::Exception("XShmAttach failed");
    catcher.check("XShmAttach failed");
    serverAttached = true;
}

void TXImage::Segment::detach() {
    shmdt(info.shmaddr);
    shmctl(info.shmid, IPC_RMID, nullptr);
}

TXImage::TXImage(int width, int height)
    : TXImage(width, height, DefaultVisual(dpy, DefaultScreen(dpy)), DefaultDepth(dpy, DefaultScreen(dpy))) {}

TXImage::TXImage(int width, int height, Visual* visual_, int depth_) : visual(visual_), depth(depth_) {
    findNativeFormat();
    drawingPf = nativePf;
    width = std::max(width, 1);
    height = std::max(height, 1);
    useStore(createXImage(width, height), width, height);
}

TXImage::~TXImage() = default;

void TXImage::findNativeFormat() {
    const XPixmapFormatValues pixmapFormat = findPixmapFormat(depth);
    bitmapPad = pixmapFormat.scanline_pad;
    nativePf.bpp = static_cast<uint8_t>(pixmapFormat.bits_per_pixel);
    nativePf.depth = static_cast<uint8_t>(depth);
    nativePf.bigEndian = nativePf.bpp > 8 && ImageByteOrder(dpy) == MSBFirst ? 1 : 0;
    if (visual->c_class == TrueColor && isChannelMask(visual->red_mask) && isChannelMask(visual->green_mask) &&
        isChannelMask(visual->blue_mask))
        findTrueColour();
    else if ((visual->c_class == PseudoColor || visual->c_class == StaticColor) && nativePf.bpp == 8)
        makeColourCube();
    else
        throw plat::ExceptionFmt("unsupported visual: class %d, depth %d", visual->c_class, depth);
    char text[rfb::PixelFormat::printSize];
    static bool told = false;
    if (!told)
        log.info("Native pixel format %s", nativePf.print(text));
    told = true;
}

void TXImage::findTrueColour() {
    nativePf.trueColour = 1;
    nativePf.redMax = maskMax(visual->red_mask);
    nativePf.greenMax = maskMax(visual->green_mask);
    nativePf.blueMax = maskMax(visual->blue_mask);
    nativePf.redShift = maskShift(visual->red_mask);
    nativePf.greenShift = maskShift(visual->green_mask);
    nativePf.blueShift = maskShift(visual->blue_mask);
    nativePf.setDepth(); // a visual of depth 32 has 24 bits of colour
}

void TXImage::makeColourCube() {
    // One cube for the process: its colours are allocated once.
    static std::vector<unsigned long> pixels;
    static Colormap allocatedIn = none;
    nativePf.trueColour = 0;
    nativePf.depth = 8;
    const int n = colorCubeSize.value();
    auto table = std::make_unique<rfb::ColorCubePlusTable>(n);
    const auto count = static_cast<size_t>(table->size());
    if (allocatedIn != colormap || pixels.size() != count) {
        std::vector<XColor> colours(count);
        const auto level = [n](size_t i) {
            const int step = static_cast<int>(i) % n;
            return static_cast<unsigned short>((step * 255 + (n - 1) / 2) / (n - 1) * 257);
        };
        const auto side = static_cast<size_t>(n);
        for (size_t i = 0; i < count; i++) {
            colours[i].red = level(i / side / side);
            colours[i].green = level(i / side);
            colours[i].blue = level(i);
        }
        allocColours(colours.data(), table->size());
        pixels.clear();
        for (const XColor& colour : colours)
            pixels.push_back(colour.pixel);
        allocatedIn = colormap;
    }
    for (size_t i = 0; i < count; i++)
        table->setPixel(static_cast<int>(i), static_cast<uint32_t>(pixels[i]));
    cube = std::move(table);
}

void TXImage::setSharedAllowed(bool allowed) { sharedAllowed = allowed; }

TXImage::Store::Store() = default;

TXImage::Store::~Store() {
    if (!xim)
        return;
    xim->data = nullptr; // ours, not Xlib's
    XDestroyImage(xim);
}

TXImage::Store::Store(Store&& other) noexcept { *this = std::move(other); }

TXImage::Store& TXImage::Store::operator=(Store&& other) noexcept {
    std::swap(xim, other.xim);
    std::swap(segment, other.segment);
    std::swap(plain, other.plain);
    return *this;
}

/// Bytes of a row, padded to bitmapPad bits; of pixels of 24 bits, that takes a multiple of as many pixels as bytes.
size_t TXImage::paddedRow(int width) const {
    const auto unit = static_cast<size_t>(bitmapPad % nativePf.bpp == 0 ? bitmapPad / nativePf.bpp : bitmapPad / 8);
    const size_t pixels = (static_cast<size_t>(width) + unit - 1) / unit * unit;
    return pixels * static_cast<size_t>(nativePf.bytesPerPixel());
}

TXImage::Store TXImage::createXImage(int width, int height) const {
    const size_t bytesPerLine = paddedRow(width);
    if (bytesPerLine * static_cast<size_t>(height) > maxImageBytes)
        throw plat::ExceptionFmt("image of %dx%d is too large", width, height);
    Store fresh;
    if (sharedAllowed)
        createShared(&fresh, width, height, bytesPerLine);
    if (!fresh.xim)
        createPlain(&fresh, width, height, bytesPerLine);
    return fresh;
}

void TXImage::createShared(Store* fresh, int width, int height, size_t bytesPerLine) const {
    static bool told = false;
    try {
        if (!serverHasShm())
            return;
        fresh->segment = std::make_unique<Segment>(bytesPerLine * static_cast<size_t>(height));
        XShmSegmentInfo* info = &fresh->segment->info;
        XImage* const xim = XShmCreateImage(dpy, visual, static_cast<unsigned>(depth), ZPixmap, info->shmaddr, info,
                                            static_cast<unsigned>(width), static_cast<unsigned>(height));
        if (!xim)
            throw plat::Exception("XShmCreateImage failed");
        fresh->xim = xim;
        const auto imBytesPerLine = [bytesPerLine] { return static_cast<int>(bytesPerLine); };
        ASSERT(xim->bytes_per_line == imBytesPerLine());
        logOnce(&told, "Using shared memory XImage");
    } catch (const plat::Exception& e) {
        log.info("%s", e.what());
        fresh->segment.reset();
    }
}

void TXImage::createPlain(Store* fresh, int width, int height, size_t bytesPerLine) const {
    static bool told = false;
    fresh->plain = std::make_unique<uint8_t[]>(bytesPerLine * static_cast<size_t>(height));
    fresh->xim = XCreateImage(dpy, visual, static_cast<unsigned>(depth), ZPixmap, 0,
                              reinterpret_cast<char*>(fresh->plain.get()), static_cast<unsigned>(width),
                              static_cast<unsigned>(height), bitmapPad, static_cast<int>(bytesPerLine));
    if (!fresh->xim)
        throw plat::Exception("XCreateImage failed");
    logOnce(&told, "Using non-shm XImage");
}

/// Takes the native pixels over, and makes the buffer to draw into, which is the same unless there is a translator.
void TXImage::useStore(Store fresh, int width, int height) {
    store = std::move(fresh);
    rect = {0, 0, width, height};
    format = drawingPf;
    if (!translator) {
        data = store.pixels();
        strideP = imBytesPerLine() / nativePf.bytesPerPixel();
        colourMap = cube.get();
        return;
    }
    drawing = std::make_unique<uint8_t[]>(static_cast<size_t>(width) * static_cast<size_t>(height) *
                                          static_cast<size_t>(drawingPf.bytesPerPixel()));
    data = drawing.get();
    strideP = width;
    translator->setSource(this);
}

void TXImage::setPF(const rfb::PixelFormat& pf) {
    ASSERT(pf.isValid());
    drawingPf = pf;
    translator.reset();
    drawing.reset();
    colourMap = nullptr;
    if (!pf.equal(nativePf)) {
        translator = std::make_unique<rfb::TransPixelBuffer>();
        translator->setPF(nativePf);
        translator->setColourMap(cube.get());
    }
    useStore(std::move(store), width(), height());
}

void TXImage::setColourMap(const rfb::ColourMap* map) {
    colourMap = map;
    if (translator)
        translator->setSource(this); // its tables depend on the map
}

void TXImage::resize(int newWidth, int newHeight) {
    newWidth = std::max(newWidth, 1);
    newHeight = std::max(newHeight, 1);
    if (rfb::Point(newWidth, newHeight) == size())
        return;
    Store fresh = createXImage(newWidth, newHeight); // may throw: nothing has changed
    const rfb::Rect both = rect.intersect({0, 0, newWidth, newHeight});
    const Store oldStore = std::move(store);
    const std::unique_ptr<uint8_t[]> oldDrawing = std::move(drawing);
    const uint8_t* const oldData = data;
    const int oldStride = strideP;
    useStore(std::move(fresh), newWidth, newHeight);
    rfb::copyRect(data, oldData, both.size(), format.bytesPerPixel(), oldStride, strideP);
}

void TXImage::putImage(Window window, const rfb::Rect& wanted, const rfb::Point& offset, GC gc) {
    const rfb::Rect r = wanted.intersect(rect);
    if (r.isEmpty())
        return;
    if (translator) {
        const int stridePx = imBytesPerLine() / nativePf.bytesPerPixel();
        uint8_t* const to = store.pixels() + static_cast<ptrdiff_t>(r.tl.y) * imBytesPerLine() +
                            static_cast<ptrdiff_t>(r.tl.x) * nativePf.bytesPerPixel();
        translator->getImage(to, r, stridePx);
    }
    const rfb::Point at = r.tl + offset;
    const auto w = static_cast<unsigned>(r.width());
    const auto h = static_cast<unsigned>(r.height());
    if (store.segment && sharedAllowed)
        XShmPutImage(dpy, window, gc, store.xim, r.tl.x, r.tl.y, at.x, at.y, w, h, /*send_event=*/False);
    else
        XPutImage(dpy, window, gc, store.xim, r.tl.x, r.tl.y, at.x, at.y, w, h); // also of shared memory
}

} // namespace tx
