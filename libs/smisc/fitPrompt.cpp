#include "smisc/fitPrompt.h"

#include "plat/monoTime.h"

#include <algorithm>

namespace smisc {
namespace {
constexpr int maxRounds = 10;
} // namespace

rfb::Point fitPrompt(int wantedWidth, const PromptLimits& limits, PromptMeasure& measure) {
    int width = std::min(std::max(wantedWidth, limits.minWidth), limits.maxWidth);
    int measured = 0;
    int height = 0;
    for (int round = 0; round < maxRounds; ++round) {
        measured = width;
        height = std::min(measure.heightAt(width), limits.maxHeight);
        if (2 * width < 5 * height)
            break;
        width = std::max(width * 9 / 10, limits.least);
        if (width == measured)
            break;
    }
    if (width != measured)
        height = std::min(measure.heightAt(width), limits.maxHeight);
    return {width, height};
}

int roundedSeconds(int64_t ticks) {
    const int64_t half = plat::ticksPerSecond / 2;
    return static_cast<int>((ticks + (ticks < 0 ? -half : half)) / plat::ticksPerSecond);
}

} // namespace smisc
