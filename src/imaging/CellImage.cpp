#include "imaging/CellImage.h"

#include <vips/vips8>

#include "imaging/ImageFileIo.h"
#include "imaging/VipsRuntime.h"
#include "services/Log.h"

QImage makeCellImage(const QString& path, int size) {
    if (size <= 0) return {};
    VipsRuntime::ensureStarted();
    try {
        // thumbnail() shrinks while decoding (JPEG shrink-on-load, WebP scaling, the thumbnail of
        // a HEIF when it is big enough), so a big photo is never decoded whole.
        vips::VImage image = vips::VImage::thumbnail(path.toUtf8().constData(), size,
                                                     vips::VImage::option()->set("height", size));
        // thumbnail() turned the photo by the orientation its reader gave; one the file's own EXIF
        // adds (JPEG XL) is turned here.
        const auto orientation = [](const vips::VImage& v) {
            return v.get_typeof(VIPS_META_ORIENTATION) != 0 ? v.get_int(VIPS_META_ORIENTATION) : 1;
        };
        const int turned = orientation(image);
        image = ImageFileIo::completed(path, image);
        if (orientation(image) != turned) image = image.autorot();
        // The colours as the photo's profile says, as a colour-managed display shows them.
        image = ImageFileIo::inSrgb(image).colourspace(VIPS_INTERPRETATION_sRGB);
        if (image.has_alpha()) {
            image = image.flatten(
                vips::VImage::option()->set("background", std::vector<double>{255, 255, 255}));
        }
        if (image.bands() > 3) image = image.extract_band(0, vips::VImage::option()->set("n", 3));
        image = image.cast(VIPS_FORMAT_UCHAR);
        if (image.bands() != 3) return {};
        size_t length = 0;
        void* pixels = image.write_to_memory(&length);
        const int width = image.width();
        const int height = image.height();
        QImage cell(width, height, QImage::Format_RGB888);
        if (cell.isNull() || length != size_t(width) * size_t(height) * 3) {
            g_free(pixels);
            return {};
        }
        const auto* source = static_cast<const uchar*>(pixels);
        for (int y = 0; y < height; ++y) {
            memcpy(cell.scanLine(y), source + size_t(y) * size_t(width) * 3, size_t(width) * 3);
        }
        g_free(pixels);
        return cell;
    } catch (const vips::VError& error) {
        klLog() << "no cell image for" << path << ":" << QString::fromUtf8(error.what()).trimmed();
        return {};
    }
}
