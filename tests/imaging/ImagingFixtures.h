#pragma once

// Synthetic images for the imaging tests, made and read back with libvips.

#include "imaging/KLColorConversions.h"
#include "imaging/KLImageHandling.h"
#include "imaging/VipsRuntime.h"
#include "metadata/MetaFixtures.h"
#include "support/TestSupport.h"

namespace fixtures {

// libvips runs before any test makes an image.
inline const bool kVipsStarted = (VipsRuntime::ensureStarted(), true);

using Size = std::pair<int, int>;
using Pixel = std::vector<double>;

// Saves with the saver the extension names (any case).
inline void save(const vips::VImage& image, const QString& path) {
    image.write_to_file(QFile::encodeName(path).constData());
}

inline vips::VImage srgb(const vips::VImage& image) {
    return image.cast(VIPS_FORMAT_UCHAR)
        .copy(vips::VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

inline vips::VImage solid(int width, int height, Pixel rgb) {
    return srgb(vips::VImage::black(width, height, vips::VImage::option()->set("bands", 3)) + rgb);
}

// Every pixel tells where it is: R = x mod 256, G = y mod 256, B = 16 (x / 256) + y / 256.
inline vips::VImage coordinates(int width, int height) {
    const vips::VImage xy = vips::VImage::xyz(width, height);
    return srgb(
        vips::VImage::bandjoin({xy[0] & 255, xy[1] & 255, (xy[0] >> 8) * 16 + (xy[1] >> 8)}));
}

inline vips::VImage load(const QString& path) {
    return vips::VImage::new_from_file(QFile::encodeName(path).constData());
}

inline Size sizeOf(const QString& path) {
    const vips::VImage image = load(path);
    return {image.width(), image.height()};
}

inline Pixel pixel(const QString& path, int x, int y) {
    return load(path).getpoint(x, y);
}

inline std::string loader(const QString& path) {
    return load(path).get_string("vips-loader");
}

inline bool isEmptyDir(const QString& dir) {
    return QDir(dir).isEmpty(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
}

using metafixtures::tag;

}  // namespace fixtures
