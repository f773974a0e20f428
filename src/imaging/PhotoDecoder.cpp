#include <QHash>
#include <algorithm>
#include <cmath>
#include <mutex>
#include <shared_mutex>

#include "imaging/ImageFileIo.h"
#include "imaging/PictureData.h"
#include "metadata/mMeta.h"
#include "services/Log.h"

using vips::VError;
using vips::VImage;

namespace PhotoDecoder {

namespace {

// The headers the living RememberedHeaders hold, by path, with how many hold each.
struct Remembered {
    std::shared_mutex mutex;
    QHash<QString, std::pair<PhotoHeader, int>> headers;
};

Remembered& remembered() {
    static Remembered instance;
    return instance;
}

bool rememberedHeader(const QString& path, PhotoHeader* header) {
    Remembered& r = remembered();
    std::shared_lock lock(r.mutex);
    const auto it = r.headers.constFind(path);
    if (it == r.headers.constEnd()) return false;
    *header = it->first;
    return true;
}

bool turned(const PhotoHeader& header) {
    return header.orientation >= 5 && header.orientation <= 8;
}

// The EXIF block with its orientation set to upright, for pixels that were turned.
void markUpright(VImage& image) {
    image.set(VIPS_META_ORIENTATION, 1);
    if (image.get_typeof(VIPS_META_EXIF_NAME) == 0) return;
    size_t length = 0;
    const void* block = image.get_blob(VIPS_META_EXIF_NAME, &length);
    const QByteArray upright =
        mMeta::exifBlockUpright(QByteArray(static_cast<const char*>(block), qsizetype(length)));
    if (upright.isEmpty()) {
        image.remove(VIPS_META_EXIF_NAME);
        return;
    }
    vips_image_set_blob_copy(image.get_image(), VIPS_META_EXIF_NAME, upright.constData(),
                             size_t(upright.size()));
}

// Opens the photo shrunk as `shrink` says; a HEIF thumbnail smaller than the need (as the file
// stores it) is passed over for the image itself.
VImage opened(const QString& path, const PhotoHeader& header, ShrinkOnLoad shrink, int needWidth,
              int needHeight) {
    if (shrink.heifThumbnail) {
        const VImage thumbnail = ImageFileIo::open(path, true, shrink, header.loader);
        const bool large = turned(header)
                               ? thumbnail.width() >= needHeight && thumbnail.height() >= needWidth
                               : thumbnail.width() >= needWidth && thumbnail.height() >= needHeight;
        if (large) return thumbnail;
        shrink.heifThumbnail = false;
    }
    return ImageFileIo::open(path, true, shrink, header.loader);
}

// Decodes the photo shrunk as far as shrinkOnLoad allows for `scale` of its upright size. Without
// `wholeInMemory` the pixels of an upright photo without alpha are read from the file as they are
// used (once).
Picture decodeShrunk(const QString& path, const PhotoHeader& known, double scale,
                     bool wholeInMemory, QString* error) {
    if (!known.fault.isEmpty()) {
        if (error) *error = known.fault;
        return {};
    }
    try {
        const double s = scale > 0 ? std::min(scale, 1.0) : 1.0;
        const int needWidth = std::max(1, int(std::ceil(known.width * s - 1e-9)));
        const int needHeight = std::max(1, int(std::ceil(known.height * s - 1e-9)));
        VImage image =
            opened(path, known, shrinkOnLoad(known, needWidth, needHeight), needWidth, needHeight);
        const int orientation =
            image.get_typeof(VIPS_META_ORIENTATION) != 0 ? image.get_int(VIPS_META_ORIENTATION) : 1;
        image = ImageFileIo::toSrgb8(image, true);
        // A photo with alpha is held too: an alpha opaque everywhere says nothing, and without
        // it the images are made in 8 bits rather than premultiplied in floating point.
        const bool alpha = image.bands() == 4;
        if (wholeInMemory || orientation != 1 || alpha) image = image.copy_memory();
        if (alpha && image.extract_band(3).min() == 255)
            image = image.extract_band(0, VImage::option()->set("n", 3));
        if (orientation != 1) {
            image = image.autorot().copy_memory();
            markUpright(image);
        }
        auto data = std::make_shared<Picture::Data>();
        data->pixels = image;
        data->width = known.width;
        data->height = known.height;
        data->type = ImageFileIo::typeIdentifier(path);
        data->carriesMetadata = true;
        return Picture(data);
    } catch (const VError& e) {
        // The library's error text is shared by every thread, so it may be another photo's: it
        // goes to the log only, and the user reads a reason of our own.
        klLog() << "not decoded:" << path << QString::fromUtf8(e.what()).trimmed();
        if (error)
            *error = QStringLiteral("the photo's pixels cannot be read (truncated or damaged)");
        return {};
    }
}

}  // namespace

PhotoHeader header(const QString& path) {
    PhotoHeader read;
    if (!rememberedHeader(path, &read)) ImageFileIo::readHeader(path, &read);
    return read;
}

bool uprightSize(const QString& path, int* width, int* height, QString* error) {
    const PhotoHeader read = header(path);
    *width = read.width;
    *height = read.height;
    if (!read.fault.isEmpty() && error) *error = read.fault;
    return read.fault.isEmpty();
}

bool holdsItsType(const QString& path, QString* error) {
    return ImageFileIo::holdsItsType(path, error);
}

RememberedHeaders::RememberedHeaders(const QStringList& paths, const QList<PhotoHeader>& headers)
    : paths_(paths) {
    Remembered& r = remembered();
    std::unique_lock lock(r.mutex);
    for (qsizetype i = 0; i < paths.size(); ++i) {
        auto& entry = r.headers[paths[i]];
        entry.first = headers.value(i);  // a later reading of the same file replaces the earlier
        ++entry.second;
    }
}

RememberedHeaders::~RememberedHeaders() {
    Remembered& r = remembered();
    std::unique_lock lock(r.mutex);
    for (const QString& path : paths_) {
        const auto it = r.headers.find(path);
        if (it != r.headers.end() && --it->second == 0) r.headers.erase(it);
    }
}

ShrinkOnLoad shrinkOnLoad(const PhotoHeader& header, int needWidth, int needHeight) {
    ShrinkOnLoad shrink;
    if (header.width <= 0 || header.height <= 0 || needWidth <= 0 || needHeight <= 0 ||
        (needWidth >= header.width && needHeight >= header.height))
        return shrink;
    if (header.loader == u"VipsForeignLoadJpegFile") {
        // The decoder shrinks both sides by the same factor, so a photo stored turned needs the
        // same factor as its upright form.
        for (const int k : {8, 4, 2}) {
            if (header.width / k >= kJpegMargin * needWidth &&
                header.height / k >= kJpegMargin * needHeight) {
                shrink.jpeg = k;
                break;
            }
        }
    } else if (header.loader == u"VipsForeignLoadWebpFile") {
        // Exactly the size needed on the side that decides (the reader rounds to the nearest
        // pixel), as vipsthumbnail does: a further resampling would only blur.
        shrink.webp = std::min(
            1.0, std::max(double(needWidth) / header.width, double(needHeight) / header.height));
    } else if (header.loader == u"VipsForeignLoadHeifFile") {
        shrink.heifThumbnail = true;
    }
    return shrink;
}

Picture decode(const QString& path, double scale, QString* error) {
    return decodeShrunk(path, header(path), scale, true, error);
}

Picture decode(const QString& path, const PhotoHeader& header, double scale, QString* error) {
    return decodeShrunk(path, header, scale, true, error);
}

Picture decodeForOneUse(const QString& path, double scale, QString* error) {
    return decodeShrunk(path, header(path), scale, false, error);
}

}  // namespace PhotoDecoder
