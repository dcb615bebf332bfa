// Resampling by exact area averaging.
#pragma once

#include "plat/NonCopyable.h"
#include "rfb/PixelBuffer.h"
#include "rfb/PixelFormat.h"
#include "rfb/Rect.h"

#include <array>
#include <vector>

namespace rfb {
class ColourMap;
}

namespace hxutil {

/// Gives a buffer's image at another size: each target pixel is the mean of the source area that it covers.
///
/// Computed in whole numbers, so a part of the target is the same however it is asked for. Alpha is taken as
/// premultiplied.
class Scaler : public rfb::ImageGetter, private plat::NonCopyable {
public:
    Scaler() = default;

    /// Borrowed. With `configure` the output takes its format and map.
    void setSource(const rfb::PixelBuffer* source, bool configure = true);
    void setDstSize(rfb::Point size);
    void setPf(const rfb::PixelFormat& pf, const rfb::ColourMap* map = nullptr);

    static bool canScale(const rfb::PixelFormat& from, const rfb::PixelFormat& to);

    // rfb::ImageGetter
    /// `r` lies in the target. Throws plat::Exception "Scaler error: ..." without a source, or for a pair of formats
    /// that canScale refuses.
    void getImage(void* buffer, const rfb::Rect& r, int stride = 0) const override;
    const rfb::PixelFormat& getPf() const override { return outPf; }

    rfb::Point getSrcSize() const { return coords_.srcSz; }
    rfb::Point getDstSize() const { return coords_.dstSz; }

private:
    using Sum = std::array<int, 4>; // of the channels
    struct Job;
    struct Loops; // the inner loops, a template for each kind of format
    using ScaleFn = void (*)(const Job& job);

    /// Source pixel i covers [i dstSz, (i + 1) dstSz), target pixel j covers [j srcSz, (j + 1) srcSz), on each axis.
    struct Coords {
        rfb::Point srcSz;
        rfb::Point dstSz;
    };

    void select();
    static ScaleFn findFn(const rfb::PixelFormat& from, const rfb::PixelFormat& to);
    rfb::Rect sourceRect(const rfb::Rect& r) const;

    Coords coords_;
    mutable std::vector<Sum> rowSums; // one a target pixel; only grows
    const rfb::PixelBuffer* source = nullptr;
    rfb::PixelFormat outPf;
    const rfb::ColourMap* outMap = nullptr;
    ScaleFn scaleFn = nullptr; // null: no way
    bool plainCopy = false;
};

} // namespace hxutil
