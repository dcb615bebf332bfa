// Drawing and scaling on a screen of 1280 x 1024; tools/bench-peers/pixels does the same with other libraries.
#include "hxutil/FontZefBm.h"
#include "hxutil/Scaler.h"
#include "hxutil/getFont.h"
#include "registerBuiltInResources.h"
#include "rfb/Colour.h"
#include "rfb/PixelBuffer.h"
#include "rfb/PixelTranslator.h"
#include "rfb/renderOps.h"

#include <benchmark/benchmark.h>
#include <memory>

namespace {

constexpr int width = 1280, height = 1024;

/// Pixels that no branch predictor learns: 0xaarrggbb, premultiplied.
void fillNoise(rfb::ManagedPixelBuffer& pb) {
    int stride;
    uint8_t* p = pb.getPixelsRW(pb.getRect(), &stride);
    uint32_t state = 1;
    for (int i = 0; i < pb.width() * pb.height(); ++i, p += 4) {
        state = state * 1664525 + 1013904223;
        const uint32_t a = state >> 24;
        p[0] = static_cast<uint8_t>((state >> 16 & 255) * a / 255);
        p[1] = static_cast<uint8_t>((state >> 8 & 255) * a / 255);
        p[2] = static_cast<uint8_t>((state >> 12 & 255) * a / 255);
        p[3] = static_cast<uint8_t>(a);
    }
}

void pixelFill(benchmark::State& state) {
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), width, height);
    uint32_t pixel = 0;
    for ([[maybe_unused]] auto _ : state)
        rfb::fillRect(pb, pb.getRect(), pixel += 0x010203);
}
BENCHMARK(pixelFill);

void pixelOver(benchmark::State& state) {
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), width, height), src(rfb::pfARGB8888(), width, height);
    fillNoise(src);
    for ([[maybe_unused]] auto _ : state)
        rfb::compose(pb, {}, src, src.getRect(), rfb::overOp);
}
BENCHMARK(pixelOver);

void pixelGradient(benchmark::State& state) {
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), width, height);
    for ([[maybe_unused]] auto _ : state)
        rfb::gradientFill(pb, pb.getRect(), rfb::Colour::rgb(0xf0f0f0), rfb::Colour::rgb(0x203040));
}
BENCHMARK(pixelGradient);

void pixelTo565(benchmark::State& state) {
    rfb::ManagedPixelBuffer src(rfb::pfARGB8888(), width, height), dst(rfb::pfRGB565(), width, height);
    fillNoise(src);
    const auto translator = rfb::PixelTranslator::make(rfb::pfRGB888(), nullptr, rfb::pfRGB565(), nullptr, false);
    int srcStride, dstStride;
    const uint8_t* from = src.getPixelsR(src.getRect(), &srcStride);
    uint8_t* to = dst.getPixelsRW(dst.getRect(), &dstStride);
    for ([[maybe_unused]] auto _ : state)
        translator->translate(from, srcStride, to, dstStride, dst.size());
}
BENCHMARK(pixelTo565);

void pixelScale(benchmark::State& state) {
    rfb::ManagedPixelBuffer src(rfb::pfRGB888(), 4000, 3000);
    fillNoise(src);
    hxutil::Scaler scaler;
    scaler.setSource(&src);
    const rfb::Point size(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    scaler.setDstSize(size);
    rfb::ManagedPixelBuffer dst(rfb::pfRGB888(), size.x, size.y);
    int stride;
    uint8_t* to = dst.getPixelsRW(dst.getRect(), &stride);
    for ([[maybe_unused]] auto _ : state)
        scaler.getImage(to, dst.getRect(), stride);
}
BENCHMARK(pixelScale)->Args({1000, 750})->Args({1037, 771});

/// A screen full of body text: 64 lines of 100 characters.
void pixelGlyphs(benchmark::State& state) {
    registerBuiltInResources();
    const hxutil::Font* font = hxutil::loadFont("helv16");
    rfb::ManagedPixelBuffer pb(rfb::pfRGB888(), width, height);
    std::string text;
    for (int i = 0; i < 100; ++i)
        text += static_cast<char>(' ' + 1 + i % 90);
    for ([[maybe_unused]] auto _ : state)
        for (int line = 0; line < 64; ++line)
            font->drawString(pb, text.c_str(), {0, line * 16}, 0x102030);
}
BENCHMARK(pixelGlyphs);

} // namespace
