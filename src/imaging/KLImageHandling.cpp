#include "imaging/KLImageHandling.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <algorithm>
#include <climits>
#include <cmath>

#include "imaging/ImageFileIo.h"
#include "imaging/PictureData.h"
#include "imaging/VipsRuntime.h"
#include "services/AtomicFile.h"
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

// The reason of a failed image operation. The library's error text is shared by every thread, so
// it may be another photo's: it goes to the log only, and the user reads a reason of our own.
QString reasonOf(const VError& e) {
    klLog() << "image operation failed:" << QString::fromUtf8(e.what()).trimmed();
    return QStringLiteral("the photo's pixels cannot be read (truncated or damaged)");
}

// The pixels scaled to exactly width x height (stretched when the aspect differs), with alpha
// premultiplied so that transparent edges do not darken. Lanczos all the way, with no averaging of
// boxes first: closer to the photo, and in this library faster too.
VImage scaledTo(const VImage& in, int width, int height) {
    const double hscale = double(width) / in.width();
    const double vscale = double(height) / in.height();
    const bool alpha = in.bands() == 4;
    VImage out = alpha ? in.premultiply() : in;
    out = out.resize(hscale, VImage::option()->set("vscale", vscale)->set("gap", 0.0));
    if (alpha) out = out.unpremultiply();
    if (out.format() != VIPS_FORMAT_UCHAR) out = out.cast(VIPS_FORMAT_UCHAR);
    // Rounding inside the resampler may leave a pixel more or less than asked for.
    if (out.width() != width || out.height() != height) {
        out = out.embed(0, 0, std::max(width, out.width()), std::max(height, out.height()),
                        VImage::option()->set("extend", VIPS_EXTEND_COPY));
        out = out.extract_area(0, 0, width, height);
    }
    return out.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
}

// The smaller of two images, pixel by pixel.
VImage minimum(const VImage& a, const VImage& b) {
    return (a < b).ifthenelse(a, b);
}

}  // namespace

// --- Picture

Picture::Picture(std::shared_ptr<const Data> data) : d_(std::move(data)) {}

int Picture::width() const {
    return d_ ? d_->width : 0;
}

int Picture::height() const {
    return d_ ? d_->height : 0;
}

QString Picture::typeIdentifier() const {
    return d_ ? d_->type : QString();
}

Picture Picture::Data::with(const VImage& image) const {
    auto data = std::make_shared<Data>(*this);
    data->pixels = image;
    data->width = image.width();
    data->height = image.height();
    return Picture(data);
}

// --- KLImageHandling

KLImageHandling::KLImageHandling(const CropShifts& shifts) : shifts_(shifts) {}

Picture KLImageHandling::fail(const QString& result, const QString& reason) {
    storeResult = result;
    lastError = reason;
    return {};
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

bool KLImageHandling::computeSlideSize(int width, int height, int W, int H) {
    if (width <= 0 || height <= 0 || !sizeIsWritable(W, H)) return false;
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
    if (!sizeIsWritable(newImgW, newImgH)) return false;
    myXWOffset = (newImgW - W) / 2;
    myYHOffset = (newImgH - H) / 2;
    return myXWOffset >= 0 && myYHOffset >= 0;
}

bool KLImageHandling::computeGridSize(int width, int height, int S) {
    if (width <= 0 || height <= 0) return false;
    // Kept on purpose: the factor is a whole percent, so most heights come out slightly short.
    myScaleFactor = double((qint64(S) * 100) / width);
    newImgW = S;
    newImgH = truncated(height * myScaleFactor / 100.0);
    return sizeIsWritable(newImgW, newImgH);
}

Picture KLImageHandling::resized(const Picture& photo, int size, int mode) {
    if (photo.isNull()) return fail(kFailed, QStringLiteral("not a readable image"));
    if (!computeTargetSize(photo.width(), photo.height(), size, mode))
        return fail(kFailed,
                    QStringLiteral("no image of that size (%1, mode %2)").arg(size).arg(mode));
    try {
        return photo.data().with(scaledTo(photo.data().pixels, newImgW, newImgH));
    } catch (const VError& e) {
        return fail(kFailed, reasonOf(e));
    }
}

Picture KLImageHandling::cropped(const Picture& image, int cropWidth, int cropHeight,
                                 const QString& kind, int position) {
    const bool thumb = kind == u"myCropThumb";
    myXWOffsetPlus = thumb ? shifts_.thumbX : shifts_.bigX;
    myYHOffsetPlus = thumb ? shifts_.thumbY : shifts_.bigY;
    const qint64 W = image.width(), H = image.height(), CW = cropWidth, CH = cropHeight;
    // 64-bit so that no shift or box size can overflow; positions outside 0..8 keep the corner.
    const qint64 dx = myXWOffsetPlus, dy = myYHOffsetPlus;
    if (position >= 0 && position <= 8) {
        const qint64 xs[3] = {dx, (W - CW) / 2 + dx, W - CW + dx};
        const qint64 ys[3] = {dy, (H - CH) / 2 + dy, H - CH + dy};
        myXWOffset = truncated(double(xs[position % 3]));
        myYHOffset = truncated(double(ys[position / 3]));
    }
    if (image.isNull()) return fail(kFailed, QStringLiteral("not a readable image"));

    // The box is cut to the part that lies on the image, as the drawing layer does.
    const qint64 x0 = std::max<qint64>(myXWOffset, 0);
    const qint64 y0 = std::max<qint64>(myYHOffset, 0);
    const qint64 x1 = std::min<qint64>(qint64(myXWOffset) + CW, W);
    const qint64 y1 = std::min<qint64>(qint64(myYHOffset) + CH, H);
    if (x1 <= x0 || y1 <= y0) return fail(kFailed, QStringLiteral("the crop box misses the image"));
    try {
        VImage pixels = image.data().pixels;
        if (pixels.width() != W || pixels.height() != H) pixels = scaledTo(pixels, int(W), int(H));
        storeResult = kOk;
        return image.data().with(pixels.extract_area(int(x0), int(y0), int(x1 - x0), int(y1 - y0)));
    } catch (const VError& e) {
        return fail(kFailed, reasonOf(e));
    }
}

Picture KLImageHandling::framed(const Picture& image, const QColor& color, quint32 width) {
    if (image.isNull()) return fail(kFailed, QStringLiteral("not a readable image"));
    try {
        const VImage pixels = image.data().pixels;
        const int W = pixels.width();
        const int H = pixels.height();
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
        if (pixels.bands() == 4) ink.push_back(255.0);
        const VImage out =
            (pixels * (1.0 - coverage) + ink * coverage)
                .round(VIPS_OPERATION_ROUND_RINT)
                .cast(VIPS_FORMAT_UCHAR)
                .copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
        storeResult = kOk;
        return image.data().with(out);
    } catch (const VError& e) {
        return fail(kFailed, reasonOf(e));
    }
}

Picture KLImageHandling::slide(const Picture& photo, const QString& boxWidth,
                               const QString& boxHeight) {
    const int W = TextValues::intValue(boxWidth);
    const int H = TextValues::intValue(boxHeight);
    if (photo.isNull()) return fail(kFailed, QStringLiteral("not a readable image"));
    if (!computeSlideSize(photo.width(), photo.height(), W, H))
        return fail(kFailed, QStringLiteral("no slide of %1 x %2").arg(boxWidth, boxHeight));
    const int cutW = std::min(W, newImgW - myXWOffset);
    const int cutH = std::min(H, newImgH - myYHOffset);
    try {
        const VImage scaled = scaledTo(photo.data().pixels, newImgW, newImgH);
        return photo.data().with(scaled.extract_area(myXWOffset, myYHOffset, cutW, cutH));
    } catch (const VError& e) {
        return fail(kFailed, reasonOf(e));
    }
}

Picture KLImageHandling::covered(const Picture& photo, int width, int height, int position,
                                 int shiftX, int shiftY) {
    if (photo.isNull()) return fail(kFailed, QStringLiteral("not a readable image"));
    if (!sizeIsWritable(width, height))
        return fail(kFailed, QStringLiteral("no image of %1 x %2").arg(width).arg(height));
    const double scale = std::max(double(width) / photo.width(), double(height) / photo.height());
    const int scaledW = std::max(width, int(std::lround(photo.width() * scale)));
    const int scaledH = std::max(height, int(std::lround(photo.height() * scale)));
    if (!sizeIsWritable(scaledW, scaledH))
        return fail(kFailed, QStringLiteral("no image of %1 x %2").arg(width).arg(height));
    const int at = position >= 0 && position <= 8 ? position : 4;
    const qint64 xs[3] = {0, (scaledW - width) / 2, scaledW - width};
    const qint64 ys[3] = {0, (scaledH - height) / 2, scaledH - height};
    myXWOffset = int(std::clamp<qint64>(xs[at % 3] + shiftX, 0, scaledW - width));
    myYHOffset = int(std::clamp<qint64>(ys[at / 3] + shiftY, 0, scaledH - height));
    try {
        const VImage scaled = scaledTo(photo.data().pixels, scaledW, scaledH);
        storeResult = kOk;
        return photo.data().with(scaled.extract_area(myXWOffset, myYHOffset, width, height));
    } catch (const VError& e) {
        return fail(kFailed, reasonOf(e));
    }
}

Picture KLImageHandling::fitted(const Picture& photo, int longest) {
    if (photo.isNull()) return fail(kFailed, QStringLiteral("not a readable image"));
    const int own = std::max(photo.width(), photo.height());
    const double scale = std::min(1.0, double(longest) / own);
    const int w = std::max(1, int(std::lround(photo.width() * scale)));
    const int h = std::max(1, int(std::lround(photo.height() * scale)));
    if (longest <= 0 || !sizeIsWritable(w, h))
        return fail(kFailed, QStringLiteral("no image of longest side %1").arg(longest));
    try {
        storeResult = kOk;
        return photo.data().with(scaledTo(photo.data().pixels, w, h));
    } catch (const VError& e) {
        return fail(kFailed, reasonOf(e));
    }
}

Picture KLImageHandling::gridImage(const Picture& photo, const QString& width) {
    if (photo.isNull()) return fail(kFailed, QStringLiteral("not a readable image"));
    if (!computeGridSize(photo.width(), photo.height(), TextValues::intValue(width)))
        return fail(kFailed, QStringLiteral("no grid image of width %1").arg(width));
    try {
        return photo.data().with(scaledTo(photo.data().pixels, newImgW, newImgH));
    } catch (const VError& e) {
        return fail(kFailed, reasonOf(e));
    }
}

QString KLImageHandling::hSaveToNewImageFile(const QString& path, const QString& typeIdentifier,
                                             const Picture& image) {
    if (image.isNull()) return kFailed;
    // Only JPEG and TIFF carry the source's metadata; the other types are written without it.
    const bool keep = image.data().carriesMetadata &&
                      (typeIdentifier == u"public.jpeg" || typeIdentifier == u"public.tiff");
    lastError.clear();
    return ImageFileIo::save(image.data().pixels, path, typeIdentifier, keep,
                             ImageFileIo::kWorkingJpegQuality, &lastError);
}

namespace {

// The compression title as a JPEG quality: "1".."8" are tenths, anything else 0.9.
int jpegQuality(const QString& compression) {
    static const QStringList steps = {"1", "2", "3", "4", "5", "6", "7", "8"};
    const qsizetype step = steps.indexOf(compression);
    return step >= 0 ? int(step + 1) * 10 : 90;
}

// One page the size of the image (one point per pixel) holding the whole image.
bool writePdf(const VImage& pixels, const QString& output, QString* error) {
    const QImage image = ImageFileIo::toQImage(pixels);
    if (image.isNull()) return false;
    const QString temporary = AtomicFile::temporaryPathFor(output);
    {
        QPdfWriter pdf(temporary);
        pdf.setResolution(72);
        pdf.setPageMargins(QMarginsF(0, 0, 0, 0));
        pdf.setPageSize(QPageSize(QSizeF(image.width(), image.height()), QPageSize::Point,
                                  QString(), QPageSize::ExactMatch));
        QPainter painter;
        if (!painter.begin(&pdf)) {
            QFile::remove(temporary);
            if (error) *error = QStringLiteral("cannot write the PDF");
            return false;
        }
        painter.drawImage(QRect(0, 0, image.width(), image.height()), image);
        painter.end();
    }
    if (QFileInfo(temporary).size() <= 0) {
        QFile::remove(temporary);
        if (error) *error = QStringLiteral("cannot write the PDF");
        return false;
    }
    return AtomicFile::commit(temporary, output, error);
}

}  // namespace

SaveAsResult KLImageHandling::hSaveAsFileType(const Picture& image, const QString& baseName,
                                              const QString& format, const QString& compression,
                                              const QString& folder, bool* written,
                                              QString* error) {
    const QString output = folder + baseName + u'.' + format;
    static const QHash<QString, QString> types = {
        {"png", "public.png"},         {"tiff", "public.tiff"}, {"bmp", "public.bmp"},
        {"gif", "com.compuserve.gif"}, {"jpeg", "public.jpeg"}, {"jp2", "public.jp2"}};
    bool ok = false;
    if (!image.isNull() && (format == u"pdf" || types.contains(format))) {
        try {
            if (format == u"pdf") {
                ok = writePdf(image.data().pixels, output, error);
            } else {
                // PNG and TIFF are written with the picture's properties, so they keep them.
                const bool keep =
                    image.data().carriesMetadata && (format == u"png" || format == u"tiff");
                ok = ImageFileIo::save(image.data().pixels, output, types.value(format), keep,
                                       jpegQuality(compression), error) == kOk;
            }
        } catch (const VError& e) {
            const QString reason = reasonOf(e);
            klLog() << "conversion failed:" << output << reason;
            if (error) *error = reason;
        }
        if (!ok) klLog() << "not converted:" << output;
    } else if (error) {
        *error = image.isNull() ? QStringLiteral("not a readable image")
                                : QStringLiteral("no such format: ") + format;
    }
    if (written) *written = ok;
    return {QUrl::fromLocalFile(output), format, baseName};
}

Picture KLImageHandling::hWorkingCopy(const Picture& photo) {
    if (photo.isNull()) return photo;
    auto data = std::make_shared<Picture::Data>(photo.data());
    const QString written = ImageFileIo::writtenType(data->type);
    data->carriesMetadata =
        data->carriesMetadata && (written == u"public.jpeg" || written == u"public.tiff");
    return Picture(data);
}

bool KLImageHandling::isSupportedSource(const QString& path, QString* error) {
    const QString type = ImageFileIo::typeIdentifier(path);
    if (!type.isEmpty() && !ImageFileIo::isRefusedType(type)) return true;
    if (error) *error = QStringLiteral("this file type is not supported");
    return false;
}

QString KLImageHandling::writtenFileName(const QString& source) {
    return ImageFileIo::writtenFileName(source);
}

// --- On files

QString KLImageHandling::resizeImage(const QString& source, int size, int mode,
                                     const QString& folder) {
    const QString type = ImageFileIo::typeIdentifier(source);
    if (ImageFileIo::isRefusedType(type)) return kNotSupported;
    const PhotoHeader header = PhotoDecoder::header(source);
    lastError = header.fault;
    if (!header.fault.isEmpty()) return kFailed;
    const int width = header.width;
    const int height = header.height;
    if (!computeTargetSize(width, height, size, mode) || type.isEmpty()) return kFailed;
    const double scale = std::max(double(newImgW) / width, double(newImgH) / height);
    const Picture result =
        resized(PhotoDecoder::decode(source, header, scale, &lastError), size, mode);
    if (result.isNull()) return kFailed;
    return hSaveToNewImageFile(folder + ImageFileIo::writtenFileName(source),
                               ImageFileIo::writtenType(type), result);
}

QString KLImageHandling::cropImage(const QString& source, int cropWidth, int cropHeight,
                                   const QString& folder, const QString& kind, int position) {
    const QString type = ImageFileIo::typeIdentifier(source);
    if (ImageFileIo::isRefusedType(type)) return storeResult = kNotSupported;
    Picture photo;
    if (!type.isEmpty()) photo = PhotoDecoder::decode(source, 1.0, &lastError);
    const Picture result = cropped(photo, cropWidth, cropHeight, kind, position);
    if (result.isNull()) return storeResult = kFailed;
    return storeResult = hSaveToNewImageFile(folder + ImageFileIo::writtenFileName(source),
                                             ImageFileIo::writtenType(type), result);
}

QString KLImageHandling::hHandleImages(const QString& boxWidth, const QString& boxHeight,
                                       const QString& source, const QString& folder,
                                       const QString& fileName) {
    if (ImageFileIo::isRefusedType(ImageFileIo::typeIdentifier(source)))
        return storeResult = kNotSupported;
    const PhotoHeader header = PhotoDecoder::header(source);
    lastError = header.fault;
    if (!header.fault.isEmpty() ||
        !computeSlideSize(header.width, header.height, TextValues::intValue(boxWidth),
                          TextValues::intValue(boxHeight)))
        return storeResult = kFailed;
    const Picture photo =
        PhotoDecoder::decode(source, header, double(newImgW) / header.width, &lastError);
    const Picture result = slide(photo, boxWidth, boxHeight);
    if (result.isNull()) return storeResult = kFailed;
    return storeResult =
               hSaveToNewImageFile(folder + fileName, QStringLiteral("public.jpeg"), result);
}

QString KLImageHandling::hHandleRgImages(const QString& width, const QString& source,
                                         const QString& folder, const QString& fileName) {
    if (ImageFileIo::isRefusedType(ImageFileIo::typeIdentifier(source)))
        return storeResult = kNotSupported;
    const PhotoHeader header = PhotoDecoder::header(source);
    lastError = header.fault;
    if (!header.fault.isEmpty() ||
        !computeGridSize(header.width, header.height, TextValues::intValue(width)))
        return storeResult = kFailed;
    const Picture photo =
        PhotoDecoder::decode(source, header, double(newImgW) / header.width, &lastError);
    const Picture result = gridImage(photo, width);
    if (result.isNull()) return storeResult = kFailed;
    return storeResult =
               hSaveToNewImageFile(folder + fileName, QStringLiteral("public.jpeg"), result);
}

QString KLImageHandling::addBorderToImage2(const QString& path, const QColor& color,
                                           quint32 width) {
    storeResult = kFailed;
    const QString type = ImageFileIo::typeIdentifier(path);
    if (ImageFileIo::isRefusedType(type)) return storeResult = kNotSupported;
    const Picture result = framed(PhotoDecoder::decode(path, 1.0, &lastError), color, width);
    if (result.isNull()) return storeResult = kFailed;
    // In place, or beside a photo of a type that is read but not written.
    const QString written = QFileInfo(path).dir().filePath(ImageFileIo::writtenFileName(path));
    return storeResult = hSaveToNewImageFile(written, ImageFileIo::writtenType(type), result);
}

SaveAsResult KLImageHandling::hSaveAsFileType(const QString& path, const QString& format,
                                              const QString& compression, const QString& folder) {
    const QString baseName = QFileInfo(path).completeBaseName();
    const bool known = format == u"pdf" || format == u"png" || format == u"tiff" ||
                       format == u"bmp" || format == u"gif" || format == u"jpeg" ||
                       format == u"jp2";
    const Picture working = known ? PhotoDecoder::decode(path, 1.0) : Picture();
    bool written = false;
    const SaveAsResult result =
        hSaveAsFileType(working, baseName, format, compression, folder, &written);
    // The working file goes unless it was just rewritten in place; also when nothing was
    // written, so that a format such as "jpg" (no format here) leaves no working file behind.
    const bool samePath = QFileInfo(result.url.toLocalFile()).absoluteFilePath() ==
                          QFileInfo(path).absoluteFilePath();
    if (!samePath || !written) QFile::remove(path);
    return result;
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
        klLog() << "rotation failed:" << reasonOf(e);
        return {};
    }
}
