#include "mui/MuAnimation.h"

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
      imageNames(imageNames_), size(size_), intervalMs(intervalMs_), timer(this) {}

void MuAnimation::setRunning(bool run) {
    if (running == run)
        return;
    running = run;
    if (running) {
        image->setShown(true);
        timer.start(intervalMs);
    } else {
        timer.cancel();
    }
    showFrame(0);
}

bool MuAnimation::timerExpired(plat::Timer*) {
    showFrame(frame + 1);
    return true;
}

void MuAnimation::showFrame(size_t index) {
    if (imageNames.empty())
        return;
    frame = index % imageNames.size();
    image->setImage(imageNames[frame].c_str(), size);
}

MuSpinner::MuSpinner(MuContainer* parent, bool darkBackground, const rfb::Point& spinnerSize)
    : MuAnimation(parent, "spinner", spinnerIntervalMs, spinnerNames(darkBackground), spinnerSize) {}

} // namespace mui
