#include "metadata/MetaFixtures.h"

#include <vips/vips8>

#include "imaging/VipsRuntime.h"

namespace metafixtures {

QString makeImage(const QString& path, int width, int height, const QString& options, int bands) {
    VipsRuntime::ensureStarted();
    vips::VImage image =
        vips::VImage::black(width, height, vips::VImage::option()->set("bands", bands));
    image = (image + 120).cast(VIPS_FORMAT_UCHAR);
    const QString target = options.isEmpty() ? path : path + u'[' + options + u']';
    image.write_to_file(target.toUtf8().constData());
    return path;
}

}  // namespace metafixtures
