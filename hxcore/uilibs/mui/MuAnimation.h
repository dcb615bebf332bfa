// Pictures in turn.
#pragma once

#include "mui/MuImage.h"
#include "plat/NonCopyable.h"
#include "plat/Timer.h"

#include <vector>

namespace mui {

/// Shows one image after the other while it runs, and sleeps while nobody can see it.
///
/// A frame that was not painted is followed by no other: the next paint sets it going again. Its image element belongs
/// to the parent container, and may go before it.
class MuAnimation : private plat::Timer::Callback, private MuImage::Watcher, private plat::NonCopyable {
public:
    /// `size` in pixels, (0,0) for the natural one.
    MuAnimation(MuContainer* parent, const char* name, unsigned intervalMs, const std::vector<plat::String>& imageNames,
                const rfb::Point& size);
    ~MuAnimation() override;

    void setRunning(bool run); ///< true shows the image, false goes back to the first frame
    bool isRunning() const { return running; }
    MuImage* getImage() { return image; } ///< null once it is gone

protected:
    void setFrames(const std::vector<plat::String>& imageNames); ///< at the same place in the turn
    void imageStyleChanged(MuImage*) override {}

private:
    bool timerExpired(plat::Timer*) override;
    // MuImage::Watcher
    void imagePainted(MuImage*) override;
    void imageGone(MuImage*) override;

    void showFrame(size_t index);

    MuImage* image;
    std::vector<plat::String> imageNames;
    rfb::Point size;
    unsigned intervalMs;
    size_t frame = 0;
    bool running = false;
    bool seen = false;    // the current frame was painted
    bool waiting = false; // for a paint, with no timer
    plat::Timer timer;
};

/// The wheel that says "wait", an element "spinner". On the background of the theme it changes with the theme.
class MuSpinner : public MuAnimation {
public:
    MuSpinner(MuContainer* parent, bool darkBackground, const rfb::Point& size = {0, 0});

private:
    void imageStyleChanged(MuImage*) override;

    bool dark;
    bool followsTheme;
};

} // namespace mui
