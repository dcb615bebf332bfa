#include "mui/MuAnimation.h"

#include "plat/SysColors.h"

namespace mui {
namespace {
constexpr unsigned spinnerIntervalMs = 80;
constexpr int spinnerFrames = 12;

std::vector<plat::String> spinnerNames(bool darkBackground) {
    std::vector<plat::String> names;
    for (int i = 0; i < spinnerFrames; ++i)
        names.push_back(plat::strFormat("spinner%s%02d", darkBackground ? "black" : "", i));
    return names;
}
} // namespace

MuAnimation::MuAnimation(MuContainer* parent, const char* name, unsigned intervalMs_,
                         const std::vector<plat::String>& imageNames_, const rfb::Point& size_)
    : image(MuImage::create(parent, name, imageNames_.empty() ? nullptr : imageNames_[0].c_str(), size_)),
      imageNames(imageNames_), size(size_), intervalMs(intervalMs_), timer(this) {
    image->setWatcher(this);
}

MuAnimation::~MuAnimation() {
    if (image)
        image->setWatcher(nullptr);
}

void MuAnimation::setRunning(bool run) {
    if (running == run || !image)
        return;
    running = run;
    waiting = false;
    if (running) {
        image->setShown(true);
        timer.start(intervalMs);
    } else {
        timer.cancel();
    }
    showFrame(0);
    seen = true; // what it stood at needs no paint
}

bool MuAnimation::timerExpired(plat::Timer*) {
    if (!seen) {
        waiting = true;
        return false;
    }
    showFrame(frame + 1);
    return true;
}

void MuAnimation::imagePainted(MuImage*) {
    seen = true;
    if (!waiting)
        return;
    waiting = false;
    timer.start(intervalMs);
}

void MuAnimation::imageGone(MuImage*) {
    image = nullptr;
    running = false;
    timer.cancel();
}

void MuAnimation::setFrames(const std::vector<plat::String>& names) {
    imageNames = names;
    if (image)
        showFrame(frame);
}

void MuAnimation::showFrame(size_t index) {
    seen = false;
    if (imageNames.empty())
        return;
    frame = index % imageNames.size();
    image->setImage(imageNames[frame].c_str(), size);
}

MuSpinner::MuSpinner(MuContainer* parent, bool darkBackground, const rfb::Point& spinnerSize)
    : MuAnimation(parent, "spinner", spinnerIntervalMs, spinnerNames(darkBackground), spinnerSize),
      dark(darkBackground), followsTheme(darkBackground == plat::isDarkMode()) {}

void MuSpinner::imageStyleChanged(MuImage*) {
    if (!followsTheme || dark == plat::isDarkMode())
        return;
    dark = !dark;
    setFrames(spinnerNames(dark));
}

} // namespace mui
