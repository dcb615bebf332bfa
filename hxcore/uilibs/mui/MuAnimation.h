// Pictures in turn.
#pragma once

#include "mui/MuImage.h"
#include "plat/NonCopyable.h"
#include "plat/Timer.h"

#include <vector>

namespace mui {

/// Shows one image after the other while it runs. Its image element belongs to the parent container, which must
/// outlive it or be deleted with it.
class MuAnimation : private plat::Timer::Callback, private plat::NonCopyable {
public:
    /// `size` in pixels, (0,0) for the natural one.
    MuAnimation(MuContainer* parent, const char* name, unsigned intervalMs, const std::vector<plat::String>& imageNames,
                const rfb::Point& size);

    void setRunning(bool run); ///< true shows the image, false goes back to the first frame
    bool isRunning() const { return running; }
    MuImage* getImage() { return image; }

private:
    bool timerExpired(plat::Timer*) override;
    void showFrame(size_t index);

    MuImage* image;
    std::vector<plat::String> imageNames;
    rfb::Point size;
    unsigned intervalMs;
    size_t frame = 0;
    bool running = false;
    plat::Timer timer;
};

/// The wheel that says "wait", an element "spinner".
class MuSpinner : public MuAnimation {
public:
    MuSpinner(MuContainer* parent, bool darkBackground, const rfb::Point& size = {0, 0});
};

} // namespace mui
