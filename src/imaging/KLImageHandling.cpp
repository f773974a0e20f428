#include "imaging/KLImageHandling.h"

#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <climits>
#include <cmath>
#include <vips/vips8>

#include "imaging/ImageFileIo.h"
#include "imaging/VipsRuntime.h"
#include "presets/SettingsStore.h"
#include "services/Log.h"
#include "services/TextValues.h"

using vips::VError;
using vips::VImage;

namespace {

const QString kOk = QStringLiteral("OK");
const QString kFailed = QStringLiteral("Failed");
const QString kNotSupported = QStringLiteral("Not Supported");

// Truncation toward zero into a 32-bit integer, saturating instead of overflowing.
qint32 truncated(double v) {
    if (!std::isfinite(v)) return 0;
    return qint32(std::clamp(std::trunc(v), double(INT_MIN), double(INT_MAX)));
}

bool sizeIsWritable(qint64 width, qint64 height) {
    return width > 0 && height > 0 && width * height <= ImageFileIo::kMaxPixels;
}

// Shrink-on-load straight to the exact size (stretched when the aspect differs); the stored
// orientation is kept, the sizes follow the stored pixel width and height.
VImage thumbnailOf(const QString& path, int width, int height) {
    VipsRuntime::ensureStarted();
    return VImage::thumbnail(QFile::encodeName(path).constData(), width,
                             VImage::option()
                                 ->set("height", height)
                                 ->set("size", VIPS_SIZE_FORCE)
                                 ->set("no_rotate", true)
                                 ->set("fail_on", VIPS_FAIL_ON_TRUNCATED));
}

QString fileNameOf(const QString& path) {
    return QFileInfo(path).fileName();
}

// The smaller of two images, pixel by pixel.
VImage minimum(const VImage& a, const VImage& b) {
    return (a < b).ifthenelse(a, b);
}

}  // namespace

KLImageHandling::KLImageHandling(const SettingsStore* settings) : settings_(settings) {}

int KLImageHandling::cropOffset(const QString& name) const {
    // The gallery registers these controls; a store without them reads as no shift.
    if (!settings_ || !settings_->registry().find(name)) return 0;
    return settings_->integer(name);
}

bool KLImageHandling::computeTargetSize(int width, int height, int size, int mode) {
    const double W = width;
    const double H = height;
    const double S = size;
    auto byWidth = [&] {
        myScaleFactor = S * 100.0 / W;
        newImgW = size;
        newImgH = truncated(H * myScaleFactor / 100.0);
    };
    auto byHeight = [&] {
        myScaleFactor = S * 100.0 / H;
        newImgH = size;
        newImgW = truncated(W * myScaleFactor / 100.0);
    };
    // Kept on purpose: a photo that is already small enough gets its width and height exchanged.
    auto keepExchanged = [&] {
        myScaleFactor = 100.0;
        newImgW = height;
        newImgH = width;
    };
    if (width <= 0 || height <= 0) return false;
    switch (mode) {
        case 0:
            byWidth();
            break;
        case 1:
            byHeight();
            break;
        case 2:
        case 5:
            W > H ? byWidth() : byHeight();
            break;
        case 3:
            myScaleFactor = S;
            newImgW = truncated(W * S / 100.0);
            newImgH = truncated(H * S / 100.0);
            break;
        case 4:
            H > W ? byWidth() : byHeight();
            break;
        case 6:
            if (W > H && W > S)
                byWidth();
            else if (!(W > H) && H > S)
                byHeight();
            else
                keepExchanged();
            break;
        case 7:
            H > S ? byHeight() : keepExchanged();
            break;
        default:
            break;  // the previous size stays
    }
    return sizeIsWritable(newImgW, newImgH);
}

QString KLImageHandling::resizeImage(const QString& source, int size, int mode,
                                     const QString& folder) {
    const QString type = ImageFileIo::typeIdentifier(source);
    if (ImageFileIo::isRefusedType(type)) return kNotSupported;
    int width = 0;
    int height = 0;
    if (!ImageFileIo::pixelSize(source, &width, &height)) return kFailed;
    if (!computeTargetSize(width, height, size, mode) || type.isEmpty()) return kFailed;
    try {
        return hSaveToNewImageFile(folder + fileNameOf(source), type,
                                   thumbnailOf(source, newImgW, newImgH));
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "resize failed:" << source << e.what();
        return kFailed;
    }
}

QString KLImageHandling::cropImage(const QString& source, int cropWidth, int cropHeight,
                                   const QString& folder, const QString& kind, int position) {
    const QString type = ImageFileIo::typeIdentifier(source);
    if (ImageFileIo::isRefusedType(type)) return storeResult = kNotSupported;
    const bool thumb = kind == u"myCropThumb";
    myXWOffsetPlus = cropOffset(thumb ? QStringLiteral("tfCropThumbXOffset")
                                      : QStringLiteral("tfCropBigXOffset"));
    myYHOffsetPlus = cropOffset(thumb ? QStringLiteral("tfCropThumbYOffset")
                                      : QStringLiteral("tfCropBigYOffset"));
    int width = 0;
    int height = 0;
    const bool readable = ImageFileIo::pixelSize(source, &width, &height);

    // 64-bit so that no shift or box size can overflow; positions outside 0..8 keep the corner.
    const qint64 W = width, H = height, CW = cropWidth, CH = cropHeight;
    const qint64 dx = myXWOffsetPlus, dy = myYHOffsetPlus;
    const qint64 left = dx, centre = (W - CW) / 2 + dx, right = W - CW + dx;
    const qint64 top = dy, middle = (H - CH) / 2 + dy, bottom = H - CH + dy;
    if (position >= 0 && position <= 8) {
        const qint64 xs[3] = {left, centre, right};
        const qint64 ys[3] = {top, middle, bottom};
        myXWOffset = truncated(double(xs[position % 3]));
        myYHOffset = truncated(double(ys[position / 3]));
    }
    if (!readable || type.isEmpty()) return storeResult = kFailed;

    // The box is cut to the part that lies on the image, as the drawing layer does.
    const qint64 x0 = std::max<qint64>(myXWOffset, 0);
    const qint64 y0 = std::max<qint64>(myYHOffset, 0);
    const qint64 x1 = std::min<qint64>(qint64(myXWOffset) + CW, W);
    const qint64 y1 = std::min<qint64>(qint64(myYHOffset) + CH, H);
    if (x1 <= x0 || y1 <= y0) return storeResult = kFailed;
    try {
        const VImage image = ImageFileIo::open(source, true);
        storeResult =
            hSaveToNewImageFile(folder + fileNameOf(source), type,
                                image.extract_area(int(x0), int(y0), int(x1 - x0), int(y1 - y0)));
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "crop failed:" << source << e.what();
        storeResult = kFailed;
    }
    return storeResult;
}

QString KLImageHandling::hHandleImages(const QString& boxWidth, const QString& boxHeight,
                                       const QString& source, const QString& folder,
                                       const QString& fileName) {
    const int W = TextValues::intValue(boxWidth);
    const int H = TextValues::intValue(boxHeight);
    const QString output = folder + fileName;
    if (ImageFileIo::isRefusedType(ImageFileIo::typeIdentifier(source)))
        return storeResult = kNotSupported;
    int width = 0;
    int height = 0;
    if (!ImageFileIo::pixelSize(source, &width, &height) || !sizeIsWritable(W, H))
        return storeResult = kFailed;

    const double w = width;
    const double h = height;
    const double fh = (H * 100.0) / h;
    const double fw = (W * 100.0) / w;
    if (fh > fw) {
        newImgW = truncated(w * fh / 100.0);
        newImgH = H;
    } else {
        newImgW = W;
        newImgH = truncated(h * fw / 100.0);
    }
    if (!sizeIsWritable(newImgW, newImgH)) return storeResult = kFailed;
    myXWOffset = (newImgW - W) / 2;
    myYHOffset = (newImgH - H) / 2;
    const int cutW = std::min(W, newImgW - myXWOffset);
    const int cutH = std::min(H, newImgH - myYHOffset);
    if (myXWOffset < 0 || myYHOffset < 0 || cutW <= 0 || cutH <= 0) return storeResult = kFailed;
    try {
        const VImage scaled = thumbnailOf(source, newImgW, newImgH);
        storeResult = hSaveToNewImageFile(output, QStringLiteral("public.jpeg"),
                                          scaled.extract_area(myXWOffset, myYHOffset, cutW, cutH));
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "slide image failed:" << source << e.what();
        storeResult = kFailed;
    }
    return storeResult;
}

QString KLImageHandling::hHandleRgImages(const QString& width, const QString& source,
                                         const QString& folder, const QString& fileName) {
    const int S = TextValues::intValue(width);
    const QString output = folder + fileName;
    if (ImageFileIo::isRefusedType(ImageFileIo::typeIdentifier(source)))
        return storeResult = kNotSupported;
    int w = 0;
    int h = 0;
    if (!ImageFileIo::pixelSize(source, &w, &h)) return storeResult = kFailed;
    // Kept on purpose: the factor is a whole percent, so most heights come out slightly short.
    myScaleFactor = double((qint64(S) * 100) / w);
    newImgW = S;
    newImgH = truncated(h * myScaleFactor / 100.0);
    if (!sizeIsWritable(newImgW, newImgH)) return storeResult = kFailed;
    try {
        storeResult = hSaveToNewImageFile(output, QStringLiteral("public.jpeg"),
                                          thumbnailOf(source, newImgW, newImgH));
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "grid image failed:" << source << e.what();
        storeResult = kFailed;
    }
    return storeResult;
}

QString KLImageHandling::addBorderToImage2(const QString& path, const QColor& color,
                                           quint32 width) {
    storeResult = kFailed;
    const QString type = ImageFileIo::typeIdentifier(path);
    if (ImageFileIo::isRefusedType(type)) return storeResult = kNotSupported;
    int W = 0;
    int H = 0;
    if (!ImageFileIo::pixelSize(path, &W, &H)) return storeResult;
    try {
        const VImage image = ImageFileIo::toSrgb8(ImageFileIo::open(path, true), true);
        // A stroke of `width` centred on the edges: a pixel at distance d from the nearest edge is
        // covered by (width / 2 - d), clamped to 0..1 (the half pixel of an odd width is blended).
        const VImage xy = VImage::xyz(W, H);
        const VImage x = xy[0].cast(VIPS_FORMAT_FLOAT);
        const VImage y = xy[1].cast(VIPS_FORMAT_FLOAT);
        const VImage distance = minimum(minimum(x, (W - 1) - x), minimum(y, (H - 1) - y));
        const VImage raw = (width / 2.0) - distance;
        const VImage coverage = (raw > 1.0).ifthenelse(1.0, (raw < 0.0).ifthenelse(0.0, raw));
        std::vector<double> ink = {double(color.red()), double(color.green()),
                                   double(color.blue())};
        if (image.bands() == 4) ink.push_back(255.0);
        const VImage framed = image * (1.0 - coverage) + ink * coverage;
        const VImage out =
            framed.round(VIPS_OPERATION_ROUND_RINT)
                .cast(VIPS_FORMAT_UCHAR)
                .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
        storeResult = hSaveToNewImageFile(path, type, out);
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "frame failed:" << path << e.what();
        storeResult = kFailed;
    }
    return storeResult;
}

QImage KLImageHandling::hRotatePictureBase(const QImage& image, const QString& angle) {
    degrees = TextValues::floatValue(angle);
    if (image.isNull()) return {};
    const double a = double(degrees) * M_PI / 180.0;
    const double c = std::cos(a);
    const double s = std::sin(a);
    const double w = image.width();
    const double h = image.height();
    const long bw = std::max(1L, std::lround(std::abs(w * c) + std::abs(h * s)));
    const long bh = std::max(1L, std::lround(std::abs(w * s) + std::abs(h * c)));
    if (!sizeIsWritable(bw, bh)) return {};
    try {
        const VImage source = ImageFileIo::fromQImage(image).premultiply();
        // Counter-clockwise as seen, with y pointing down: x' = x cos + y sin, y' = -x sin + y cos,
        // about the centre of the source and the centre of the new canvas.
        const VImage turned = source.affine(
            {c, s, -s, c}, VImage::option()
                               ->set("interpolate", vips::VInterpolate::new_from_name("bilinear"))
                               ->set("oarea", std::vector<int>{0, 0, int(bw), int(bh)})
                               ->set("idx", -w / 2.0)
                               ->set("idy", -h / 2.0)
                               ->set("odx", bw / 2.0)
                               ->set("ody", bh / 2.0)
                               ->set("extend", VIPS_EXTEND_BACKGROUND)
                               ->set("background", std::vector<double>{0, 0, 0, 0}));
        const VImage out =
            turned.unpremultiply()
                .cast(VIPS_FORMAT_UCHAR)
                .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
        return ImageFileIo::toQImage(out);
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "rotation failed:" << e.what();
        return {};
    }
}

QString KLImageHandling::hSaveToNewImageFile(const QString& path, const QString& typeIdentifier,
                                             const VImage& image) {
    // Only JPEG and TIFF carry the source's metadata; the other types are written without it.
    const bool keep = typeIdentifier == u"public.jpeg" || typeIdentifier == u"public.tiff";
    return ImageFileIo::save(image, path, typeIdentifier, keep);
}
