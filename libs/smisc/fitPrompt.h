// The size of the connection prompt, and the time that it has left.
#pragma once

#include "rfb/Rect.h"

#include <cstdint>

namespace smisc {

/// In pixels.
struct PromptLimits {
    int least;     ///< below this width the buttons don't fit
    int minWidth;  ///< at first
    int maxWidth;  ///< at most
    int maxHeight; ///< at most: what is higher scrolls
};

/// Tells how high the prompt would be.
class PromptMeasure {
public:
    virtual ~PromptMeasure() = default;
    virtual int heightAt(int width) = 0;
};

/// As wide as the text wants, between the limits, then narrower until it isn't more than 2.5 times as wide as high.
/// Ten rounds at most. The height is that of the last round asked for, at most maxHeight.
rfb::Point fitPrompt(int wantedWidth, const PromptLimits& limits, PromptMeasure& measure);

/// Ticks of 100 ns as seconds, to the nearest one, half of one away from zero.
int roundedSeconds(int64_t ticks);

} // namespace smisc
