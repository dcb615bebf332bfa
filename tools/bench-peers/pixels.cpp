// What zefbench's pixel benchmarks do, with pixman, cairo, Qt 5, gdk-pixbuf and ImageMagick: pixels [SECONDS]
// Prints "name peer microseconds of CPU" lines, the best of what each library offers for the job.
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <cairo.h>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <gdk-pixbuf/gdk-pixbuf.h>
#include <pixman.h>
#include <string>
#include <time.h>
#include <vector>
#include <wand/MagickWand.h>

namespace {

constexpr int width = 1280, height = 1024;
double seconds = 0.3;

double nowS() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) / 1e9;
}

/// The mean of a spell of `seconds`, after one call that warms the caches.
double measure(const std::function<void()>& job) {
    job();
    const double start = nowS();
    int count = 0;
    while (nowS() - start < seconds) {
        job();
        ++count;
    }
    return (nowS() - start) / count * 1e6;
}

void report(const char* name, const char* peer, double us) {
    printf("%s %s %.3f\n", name, peer, us);
    fflush(stdout);
}

std::vector<uint32_t> noise(int count) {
    std::vector<uint32_t> pixels(static_cast<size_t>(count));
    uint32_t state = 1;
    for (uint32_t& p : pixels) {
        state = state * 1664525 + 1013904223;
        const uint32_t a = state >> 24;
        p = a << 24 | (state >> 12 & 255) * a / 255 << 16 | (state >> 8 & 255) * a / 255 << 8 |
            (state >> 16 & 255) * a / 255;
    }
    return pixels;
}

pixman_image_t* image(pixman_format_code_t format, int w, int h, std::vector<uint32_t>& bits) {
    const int stride = PIXMAN_FORMAT_BPP(format) / 8 * w;
    return pixman_image_create_bits(format, w, h, bits.data(), stride);
}

void fills() {
    std::vector<uint32_t> bits(width * height);
    uint32_t pixel = 0;
    report("pixelFill", "pixman",
           measure([&] { pixman_fill(bits.data(), width, 32, 0, 0, width, height, pixel += 0x010203); }));
}

void overs() {
    std::vector<uint32_t> dstBits(width * height), srcBits = noise(width * height);
    pixman_image_t* dst = image(PIXMAN_x8r8g8b8, width, height, dstBits);
    pixman_image_t* src = image(PIXMAN_a8r8g8b8, width, height, srcBits);
    report("pixelOver", "pixman", measure([&] {
               pixman_image_composite32(PIXMAN_OP_OVER, src, nullptr, dst, 0, 0, 0, 0, 0, 0, width, height);
           }));
    QImage from(reinterpret_cast<uchar*>(srcBits.data()), width, height, QImage::Format_ARGB32_Premultiplied);
    QImage to(width, height, QImage::Format_RGB32);
    to.fill(0);
    QPainter painter(&to);
    report("pixelOver", "Qt", measure([&] { painter.drawImage(0, 0, from); }));
}

void gradients() {
    std::vector<uint32_t> bits(width * height);
    pixman_image_t* dst = image(PIXMAN_x8r8g8b8, width, height, bits);
    const pixman_point_fixed_t top = {0, 0}, bottom = {0, pixman_int_to_fixed(height)};
    const pixman_gradient_stop_t stops[] = {{0, {0xf0f0, 0xf0f0, 0xf0f0, 0xffff}},
                                            {pixman_fixed_1, {0x2020, 0x3030, 0x4040, 0xffff}}};
    pixman_image_t* gradient = pixman_image_create_linear_gradient(&top, &bottom, stops, 2);
    report("pixelGradient", "pixman", measure([&] {
               pixman_image_composite32(PIXMAN_OP_SRC, gradient, nullptr, dst, 0, 0, 0, 0, 0, 0, width, height);
           }));
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* cr = cairo_create(surface);
    cairo_pattern_t* pattern = cairo_pattern_create_linear(0, 0, 0, height);
    cairo_pattern_add_color_stop_rgb(pattern, 0, 0.94, 0.94, 0.94);
    cairo_pattern_add_color_stop_rgb(pattern, 1, 0.125, 0.1875, 0.25);
    cairo_set_source(cr, pattern);
    cairo_set_operator(cr, CAIRO_OPERATOR_SOURCE);
    report("pixelGradient", "cairo", measure([&] {
               cairo_rectangle(cr, 0, 0, width, height);
               cairo_fill(cr);
               cairo_surface_flush(surface);
           }));
}

void conversions() {
    std::vector<uint32_t> srcBits = noise(width * height);
    const QImage from(reinterpret_cast<uchar*>(srcBits.data()), width, height, QImage::Format_RGB32);
    const double whole = measure([&] { (void)from.convertToFormat(QImage::Format_RGB16); });
    QImage to(width, height, QImage::Format_RGB16);
    QPainter painter(&to);
    painter.setCompositionMode(QPainter::CompositionMode_Source);
    report("pixelTo565", "Qt", std::min(whole, measure([&] { painter.drawImage(0, 0, from); })));
}

void scalings(int w, int h) {
    constexpr int fromWidth = 4000, fromHeight = 3000;
    const std::string name = "pixelScale/" + std::to_string(w) + "/" + std::to_string(h);
    std::vector<uint32_t> srcBits = noise(fromWidth * fromHeight), dstBits(static_cast<size_t>(w * h));
    pixman_image_t* src = image(PIXMAN_x8r8g8b8, fromWidth, fromHeight, srcBits);
    pixman_image_t* dst = image(PIXMAN_x8r8g8b8, w, h, dstBits);
    const double sx = double(fromWidth) / w, sy = double(fromHeight) / h;
    pixman_transform_t transform;
    pixman_transform_init_scale(&transform, pixman_double_to_fixed(sx), pixman_double_to_fixed(sy));
    pixman_image_set_transform(src, &transform);
    int count = 0;
    pixman_fixed_t* box = pixman_filter_create_separable_convolution(
        &count, pixman_double_to_fixed(sx), pixman_double_to_fixed(sy), PIXMAN_KERNEL_IMPULSE, PIXMAN_KERNEL_IMPULSE,
        PIXMAN_KERNEL_BOX, PIXMAN_KERNEL_BOX, 4, 4);
    pixman_image_set_filter(src, PIXMAN_FILTER_SEPARABLE_CONVOLUTION, box, count);
    report(name.c_str(), "pixman",
           measure([&] { pixman_image_composite32(PIXMAN_OP_SRC, src, nullptr, dst, 0, 0, 0, 0, 0, 0, w, h); }));

    GdkPixbuf* pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, fromWidth, fromHeight);
    guchar* bytes = gdk_pixbuf_get_pixels(pixbuf);
    for (int i = 0; i < gdk_pixbuf_get_rowstride(pixbuf) * fromHeight; ++i)
        bytes[i] = static_cast<guchar>(i * 7919 >> 5);
    double best = 1e9;
    for (const GdkInterpType type : {GDK_INTERP_TILES, GDK_INTERP_BILINEAR})
        best = std::min(best, measure([&] { g_object_unref(gdk_pixbuf_scale_simple(pixbuf, w, h, type)); }));
    report(name.c_str(), "gdk-pixbuf", best);

    MagickWand* wand = NewMagickWand();
    MagickConstituteImage(wand, fromWidth, fromHeight, "BGRP", CharPixel, srcBits.data());
    report(name.c_str(), "ImageMagick", measure([&] {
               MagickWand* copy = CloneMagickWand(wand);
               MagickResizeImage(copy, static_cast<size_t>(w), static_cast<size_t>(h), BoxFilter, 1.0);
               DestroyMagickWand(copy);
           }));
}

void glyphs() {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    cairo_t* cr = cairo_create(surface);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_NONE);
    cairo_set_font_options(cr, options);
    cairo_select_font_face(cr, "Sans", CAIRO_FONT_SLANT_NORMAL, CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(cr, 12);
    cairo_set_source_rgb(cr, 0.06, 0.12, 0.19);
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += static_cast<char>(' ' + 1 + i % 90);
    cairo_glyph_t* found = nullptr;
    int count = 0;
    cairo_scaled_font_text_to_glyphs(cairo_get_scaled_font(cr), 0, 12, text.c_str(), -1, &found, &count, nullptr,
                                     nullptr, nullptr);
    // The glyphs of each line are placed beforehand, so that only the drawing counts.
    std::vector<std::vector<cairo_glyph_t>> lines(64, {found, found + count});
    for (size_t line = 0; line < lines.size(); ++line)
        for (cairo_glyph_t& glyph : lines[line])
            glyph.y += 16.0 * static_cast<double>(line);
    report("pixelGlyphs", "cairo", measure([&] {
               for (const auto& line : lines)
                   cairo_show_glyphs(cr, line.data(), count);
               cairo_surface_flush(surface);
           }));
}

} // namespace

int main(int argc, char** argv) {
    if (argc > 1)
        seconds = atof(argv[1]);
    MagickWandGenesis();
    MagickSetResourceLimit(ThreadResource, 1); // all others use one
    fills();
    overs();
    gradients();
    conversions();
    scalings(1000, 750);
    scalings(1037, 771);
    glyphs();
}
