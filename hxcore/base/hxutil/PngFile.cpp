#include "hxutil/PngFile.h"

#include "plat/Assert.h"
#include "rfb/PixelBuffer.h"
#include "rfb/renderOps.h"

#include <png.h>

#include <csetjmp>
#include <cstdio>
#include <cstring>

namespace hxutil {
namespace {
constexpr png_uint_32 maxSide = 4096;
constexpr png_alloc_size_t maxChunkBytes = 1 << 20;
constexpr png_uint_32 maxChunks = 64;
constexpr png_byte unusedChunks[] = "eXIf\0iCCP\0iTXt\0sPLT\0tEXt\0zTXt"; // what else may be packed, or large
constexpr int unusedChunkCount = sizeof unusedChunks / 5;
} // namespace

// libpng leaves a failing call by longjmp: what calls it here has no objects to destroy, and throws outside.
struct PngFile::Reader {
    const uint8_t* data;
    size_t left;
    char name[96];
    char message[128] = "";
    png_structp png = nullptr;
    png_infop info = nullptr;
    int colourType = 0;
    bool rendered = false;

    Reader(const void* data_, size_t lenBytes, const char* name_)
        : data(static_cast<const uint8_t*>(data_)), left(lenBytes) {
        std::snprintf(name, sizeof name, "%s", name_);
    }
    ~Reader() { png_destroy_read_struct(&png, &info, nullptr); }
    Reader(const Reader&) = delete;
    Reader& operator=(const Reader&) = delete;

    static void onError(png_structp png, png_const_charp text) {
        auto* self = static_cast<Reader*>(png_get_error_ptr(png));
        std::snprintf(self->message, sizeof self->message, "%s", text);
        png_longjmp(png, 1);
    }

    static void onWarning(png_structp, png_const_charp) {}

    static void onRead(png_structp png, png_bytep out, size_t length) {
        auto* self = static_cast<Reader*>(png_get_io_ptr(png));
        if (length > self->left)
            png_error(png, "Bad PNG data");
        std::memcpy(out, self->data, length);
        self->data += length;
        self->left -= length;
    }

    bool open() {
        png = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, onError, onWarning);
        info = png ? png_create_info_struct(png) : nullptr;
        if (!info) {
            std::snprintf(message, sizeof message, "out of memory");
            return false;
        }
        if (setjmp(png_jmpbuf(png)))
            return false;
        png_set_user_limits(png, maxSide, maxSide);
        png_set_chunk_malloc_max(png, maxChunkBytes);
        png_set_chunk_cache_max(png, maxChunks);
        png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, unusedChunks, unusedChunkCount);
        png_set_read_fn(png, this, onRead);
        png_read_info(png, info);
        png_set_expand(png);
        png_set_strip_16(png);
        png_set_bgr(png);
        png_set_filler(png, 0, PNG_FILLER_AFTER);
        png_set_interlace_handling(png);
        png_read_update_info(png, info);
        colourType = png_get_color_type(png, info);
        return true;
    }

    bool readRows(uint8_t* first, png_uint_32 height, ptrdiff_t stepBytes) {
        if (setjmp(png_jmpbuf(png)))
            return false;
        // An interlaced image comes in seven passes, each filling in pixels between those of the one before.
        const int passes = png_get_interlace_type(png, info) == PNG_INTERLACE_ADAM7 ? 7 : 1;
        for (int pass = 0; pass < passes; ++pass)
            for (png_uint_32 y = 0; y < height; ++y)
                png_read_row(png, first + static_cast<ptrdiff_t>(y) * stepBytes, nullptr);
        png_read_end(png, nullptr);
        return true;
    }

    [[noreturn]] void fail() const {
        char text[256];
        std::snprintf(text, sizeof text, "%s: %s", name, message);
        throw PngException(text);
    }
};

PngFile::PngFile(const void* data, size_t lenBytes, bool premultiply_, const char* name)
    : reader(std::make_unique<Reader>(data, lenBytes, name)), premultiply(premultiply_) {
    if (!reader->open())
        reader->fail();
    if (reader->colourType != PNG_COLOR_TYPE_RGB && reader->colourType != PNG_COLOR_TYPE_RGB_ALPHA) {
        char text[160];
        std::snprintf(text, sizeof text, "PNG color type %d not supported: %s", reader->colourType, reader->name);
        throw PngException(text);
    }
    size = rfb::Point(static_cast<int>(png_get_image_width(reader->png, reader->info)),
                      static_cast<int>(png_get_image_height(reader->png, reader->info)));
    pf = reader->colourType == PNG_COLOR_TYPE_RGB ? rfb::pfRGB888() : rfb::pfARGB8888();
}

PngFile::~PngFile() = default;

void PngFile::render(rfb::WritablePixelBuffer* pb, rfb::Point position) {
    ASSERT(pb->getPf().equal(pf));
    ASSERT(!reader->rendered);
    reader->rendered = true;
    const rfb::Rect r = rfb::Rect::at(position, size);
    int stride;
    uint8_t* first = pb->getPixelsRW(r, &stride);
    if (!reader->readRows(first, static_cast<png_uint_32>(size.y), ptrdiff_t{stride} * 4))
        reader->fail();
    pb->commit(r);
    if (premultiply && pf.alphaMax)
        rfb::compose(*pb, position, *pb, r, rfb::premultiplyOp);
}

} // namespace hxutil
