#include "imaging/KLWatermark.h"

#include <fontconfig/fontconfig.h>

#include <QFileInfo>
#include <algorithm>
#include <climits>
#include <cmath>
#include <optional>
#include <vips/vips8>

#include "imaging/ImageFileIo.h"
#include "imaging/KLImageHandling.h"
#include "metadata/cXif.h"
#include "services/Log.h"
#include "services/OutputFolders.h"

using vips::VError;
using vips::VImage;

namespace {

const QString kOk = QStringLiteral("OK");
const QString kNok = QStringLiteral("NOK");
const QString kFailed = QStringLiteral("Failed");
const QString kNotSupported = QStringLiteral("Not Supported");

constexpr int kDefaultFontSize = 24;
// Text larger than this would make a stamp bigger than any photo; the size is capped.
constexpr int kMaxFontSize = 5000;
// A stamped copy is a final image: JPEG at a high quality.
constexpr int kJpegQuality = 95;

qint32 truncated(double v) {
    if (!std::isfinite(v)) return 0;
    return qint32(std::clamp(std::trunc(v), double(INT_MIN), double(INT_MAX)));
}

int orDefault(int value, int fallback) {
    return value == 0 ? fallback : value;
}

std::vector<double> rgbOf(const QColor& colour) {
    return {double(colour.red()), double(colour.green()), double(colour.blue())};
}

struct Rect {
    int x = 0, y = 0, w = 0, h = 0;
    bool empty() const { return w <= 0 || h <= 0; }
    Rect united(const Rect& o) const {
        const int left = std::min(x, o.x), top = std::min(y, o.y);
        return {left, top, std::max(x + w, o.x + o.w) - left, std::max(y + h, o.y + o.h) - top};
    }
    Rect intersected(const Rect& o) const {
        const int left = std::max(x, o.x), top = std::max(y, o.y);
        return {left, top, std::min(x + w, o.x + o.w) - left, std::min(y + h, o.y + o.h) - top};
    }
};

// What is drawn onto the photo: a coverage (1 band, float 0..1) placed with its top-left corner at
// (left, top) in pixels from the photo's top-left corner, painted in one colour or with the pixels
// of `picture` (3 bands), at `opacity`, with an optional shadow under it.
struct Stamp {
    VImage coverage;
    int left = 0;
    int top = 0;
    std::vector<double> colour;
    std::optional<VImage> picture;
    double opacity = 1.0;
    bool shadow = false;
    std::vector<double> shadowColour;
    int shadowDx = 0;  // pixels, right
    int shadowDy = 0;  // pixels, down
    double shadowSigma = 0;
};

// `layer` (3 bands, float) at `alpha` (1 band, 0..1) over `base` (3 bands, or 4 with alpha).
VImage over(const VImage& base, const VImage& layer, const VImage& alpha) {
    if (base.bands() < 4) return base * (1.0 - alpha) + layer * alpha;
    const VImage colour = base.extract_band(0, VImage::option()->set("n", 3));
    const VImage baseAlpha = base[3] / 255.0;
    const VImage outAlpha = alpha + baseAlpha * (1.0 - alpha);
    const VImage mixed = (layer * alpha + colour * baseAlpha * (1.0 - alpha)) /
                         (outAlpha == 0.0).ifthenelse(1.0, outAlpha);
    return mixed.bandjoin(outAlpha * 255.0);
}

VImage solid(const VImage& like, const std::vector<double>& rgb) {
    return VImage::black(like.width(), like.height(), VImage::option()->set("bands", 3)) + rgb;
}

// The photo with the stamp drawn on it. Only the part of the photo under the stamp and its
// shadow is recomputed; the rest passes through untouched.
VImage stamped(const VImage& photo, const Stamp& s) {
    const Rect canvas{0, 0, photo.width(), photo.height()};
    const Rect mark{s.left, s.top, s.coverage.width(), s.coverage.height()};
    const int margin = s.shadow ? int(std::ceil(3.0 * s.shadowSigma)) + 1 : 0;
    const Rect shade{mark.x + s.shadowDx - margin, mark.y + s.shadowDy - margin,
                     mark.w + 2 * margin, mark.h + 2 * margin};
    const Rect all = s.shadow ? mark.united(shade) : mark;
    const Rect area = all.intersected(canvas);
    if (area.empty()) return photo;

    auto placed = [&](const VImage& image, const Rect& at) {
        return image.embed(at.x - all.x, at.y - all.y, all.w, all.h)
            .extract_area(area.x - all.x, area.y - all.y, area.w, area.h);
    };
    VImage result = photo.extract_area(area.x, area.y, area.w, area.h).cast(VIPS_FORMAT_FLOAT);
    if (s.shadow) {
        VImage blurred = s.coverage.embed(margin, margin, shade.w, shade.h);
        if (s.shadowSigma > 0.05) blurred = blurred.gaussblur(s.shadowSigma);
        const VImage alpha = placed(blurred, shade) * s.opacity;
        result = over(result, solid(alpha, s.shadowColour), alpha);
    }
    const VImage alpha = placed(s.coverage, mark) * s.opacity;
    const VImage colour = s.picture ? placed(*s.picture, mark) : solid(alpha, s.colour);
    result = over(result, colour, alpha);
    const VImage clamped =
        (result > 255.0).ifthenelse(255.0, (result < 0.0).ifthenelse(0.0, result));
    return photo.insert(clamped.round(VIPS_OPERATION_ROUND_RINT).cast(VIPS_FORMAT_UCHAR), area.x,
                        area.y);
}

// A coverage turned by `degrees` counter-clockwise about its centre, on the bounding box of the
// turned rectangle.
VImage turned(const VImage& coverage, double degrees) {
    if (degrees == 0) return coverage;
    const double a = degrees * M_PI / 180.0;
    const double c = std::cos(a), s = std::sin(a);
    const double w = coverage.width(), h = coverage.height();
    const int bw = std::max(1, int(std::lround(std::abs(w * c) + std::abs(h * s))));
    const int bh = std::max(1, int(std::lround(std::abs(w * s) + std::abs(h * c))));
    // Pixel centres sit at whole coordinates: the centre of a w-pixel row is at (w - 1) / 2.
    return coverage.affine({c, s, -s, c},
                           VImage::option()
                               ->set("interpolate", vips::VInterpolate::new_from_name("bilinear"))
                               ->set("oarea", std::vector<int>{0, 0, bw, bh})
                               ->set("idx", -(w - 1) / 2.0)
                               ->set("idy", -(h - 1) / 2.0)
                               ->set("odx", (bw - 1) / 2.0)
                               ->set("ody", (bh - 1) / 2.0)
                               ->set("extend", VIPS_EXTEND_BLACK));
}

// The photo turned upright by its EXIF orientation, as 8-bit sRGB (with its alpha when it has
// one), carrying its EXIF block. A colour profile that no longer fits the pixels (grey, CMYK) is
// dropped.
VImage uprightPhoto(const QString& path) {
    VImage photo = ImageFileIo::open(path, false);
    if (photo.get_typeof("exif-data") == 0) {
        // The TIFF reader gives no EXIF: it is read from the file itself.
        const QByteArray block = cXif::exifBlockOf(path);
        if (!block.isEmpty()) {
            photo = photo.copy();
            vips_image_set_blob_copy(photo.get_image(), "exif-data", block.constData(),
                                     size_t(block.size()));
        }
    }
    const bool rgbSource = photo.bands() - (photo.has_alpha() ? 1 : 0) >= 3 &&
                           photo.interpretation() != VIPS_INTERPRETATION_CMYK;
    if (photo.get_typeof("orientation") != 0 && photo.get_int("orientation") > 1)
        photo = photo.autorot();
    VImage out = ImageFileIo::toSrgb8(photo, true).copy();
    if (!rgbSource && out.get_typeof("icc-profile-data") != 0) out.remove("icc-profile-data");
    return out;
}

QString pangoMarkup(const QString& text) {
    return text.toHtmlEscaped().replace(u'\'', QStringLiteral("&apos;"));
}

}  // namespace

KLWatermark::KLWatermark(WatermarkSettings s) : settings(std::move(s)) {}

double KLWatermark::opacity(int percent) {
    if (percent == 0 || percent > 100) return 1.0;
    if (percent < 0) return 0.1;
    return percent / 100.0;
}

bool KLWatermark::anchor(int position, double W, double H, double tw, double th, int dx, int dy,
                         int angle, int* x, int* y) {
    if (position < 0 || position > 8) return false;
    const int row = position / 3;
    const int column = position % 3;
    double bx = column == 0 ? 0.0 : column == 1 ? (W - tw) * 0.5 : W - tw;
    double by = row == 0 ? H - th : row == 1 ? (H - th) * 0.5 : 0.0;
    // Kept on purpose: the offsets turn with the sign of the angle.
    if (angle == 0) {
        bx += dx;
        by += dy;
    } else if (angle > 0) {
        bx += dy;
        by -= dx;
    } else {
        bx -= dy;
        by += dx;
    }
    *x = truncated(bx);
    *y = truncated(by);
    return true;
}

QStringList KLWatermark::fontFamilies() {
    static const QStringList families = [] {
        QStringList names;
        FcPattern* pattern = FcPatternCreate();
        FcObjectSet* objects = FcObjectSetBuild(FC_FAMILY, nullptr);
        if (FcFontSet* fonts = FcFontList(nullptr, pattern, objects)) {
            for (int i = 0; i < fonts->nfont; ++i) {
                FcChar8* family = nullptr;
                if (FcPatternGetString(fonts->fonts[i], FC_FAMILY, 0, &family) == FcResultMatch &&
                    family && family[0] != '.')
                    names.append(QString::fromUtf8(reinterpret_cast<const char*>(family)));
            }
            FcFontSetDestroy(fonts);
        }
        FcObjectSetDestroy(objects);
        FcPatternDestroy(pattern);
        names.removeDuplicates();
        std::sort(names.begin(), names.end(), [](const QString& a, const QString& b) {
            const int c = a.compare(b, Qt::CaseInsensitive);
            return c != 0 ? c < 0 : a < b;
        });
        return names;
    }();
    return families;
}

QStringList KLWatermark::watermarkImageExtensions() {
    return {"pdf", "png", "jpg", "jpeg", "gif", "tif", "tiff", "tga", "targa", "psd"};
}

namespace {

// The checks every stamp makes before decoding: the type has an encoder, the photo reads as an
// image, the copy would not land on the original. "" when the stamp may go on.
QString refusal(const QString& photo, const QString& folder, const QString& type,
                const char* unreadable) {
    if (ImageFileIo::isRefusedType(type)) return kNotSupported;
    if (type.isEmpty()) return kFailed;
    int width = 0;
    int height = 0;
    if (!ImageFileIo::pixelSize(photo, &width, &height)) {
        if (unreadable) klLog() << unreadable;
        return kNok;
    }
    if (OutputFolders::holds(folder, photo)) {
        klLog() << "Refused to write into the folder of the photo itself:" << photo;
        return kFailed;
    }
    return {};
}

QString written(const VImage& image, const QString& path, const QString& type, bool jpegLog) {
    const bool jpeg = type == u"public.jpeg";
    if (jpeg && jpegLog) klLog() << "jpeg: A";
    const bool keepMetadata = jpeg || type == u"public.tiff";
    if (jpeg && jpegLog) klLog() << "jpeg: B";
    const QString result = ImageFileIo::save(image, path, type, keepMetadata, kJpegQuality);
    if (jpeg && jpegLog) klLog() << "jpeg: C";
    if (result != kOk) klLog() << QStringLiteral("Failed to write image to %1").arg(path);
    if (jpeg && jpegLog) klLog() << "jpeg: D";
    return result;
}

}  // namespace

QString KLWatermark::setWatermarkText(const QString& photo, const QString& folder) {
    const QString type = ImageFileIo::typeIdentifier(photo);
    const WatermarkSettings& s = settings;
    myFontSize = std::min(s.fontSize > 0 ? s.fontSize : kDefaultFontSize, kMaxFontSize);
    myWMAngle = s.angle;
    myFontTransparancy = opacity(s.fontTransparency);
    const QStringList fonts = s.fontList.isEmpty() ? fontFamilies() : s.fontList;
    usedFont = !s.font.isEmpty() ? s.font : fonts.size() > 1 ? fonts[1] : fonts.value(0);
    lastOutputPath = folder + ImageFileIo::writtenFileName(photo);

    const QString refused = refusal(photo, folder, type, nullptr);
    if (!refused.isEmpty()) return refused;
    try {
        VImage canvas = uprightPhoto(photo);
        const double W = canvas.width();
        const double H = canvas.height();
        if (!s.text.trimmed().isEmpty()) {
            const QString font = QStringLiteral("%1, %2")
                                     .arg(usedFont.isEmpty() ? QStringLiteral("Sans") : usedFont)
                                     .arg(int(myFontSize));
            // The box the text's ink fills: its size places the text on the grid.
            const VImage ink = VImage::text(
                pangoMarkup(s.text).toUtf8().constData(),
                VImage::option()->set("font", font.toUtf8().constData())->set("dpi", 72));
            const double tw = ink.width();
            const double th = ink.height();
            int x = 0;
            int y = 0;
            if (anchor(s.position, W, H, tw, th, s.xOffset, s.yOffset, s.angle, &x, &y)) {
                Stamp stamp;
                stamp.coverage = turned(ink.cast(VIPS_FORMAT_FLOAT) / 255.0, myWMAngle);
                // Turned about the centre of the text box, whose lower-left corner is (x, y)
                // with y up.
                const double pivotX = x + tw / 2.0;
                const double pivotY = H - y - th / 2.0;
                stamp.left = int(std::lround(pivotX - stamp.coverage.width() / 2.0));
                stamp.top = int(std::lround(pivotY - stamp.coverage.height() / 2.0));
                stamp.colour = rgbOf(s.fontColor);
                stamp.opacity = myFontTransparancy;
                stamp.shadow = s.shadow;
                stamp.shadowColour = rgbOf(s.shadowColor);
                stamp.shadowDx = orDefault(s.shadowXOffset, 2);
                stamp.shadowDy = -orDefault(s.shadowYOffset, 2);  // y up on the canvas
                stamp.shadowSigma = orDefault(s.shadowRadius, 1) / 2.0;
                canvas = stamped(canvas, stamp);
            }
        }
        return written(canvas, lastOutputPath, ImageFileIo::writtenType(type), false);
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "watermark failed:" << photo << e.what();
        klLog() << QStringLiteral("Failed to write image to %1").arg(lastOutputPath);
        return kFailed;
    }
}

QString KLWatermark::setWatermarkImage(const QString& photo, const QString& folder) {
    const QString type = ImageFileIo::typeIdentifier(photo);
    const WatermarkSettings& s = settings;
    // Kept on purpose: the image stamp takes its size from the font size field.
    myImageSize = std::min(s.fontSize > 0 ? s.fontSize : kDefaultFontSize, kMaxFontSize);
    myImageWMAngle = s.imageAngle;
    myImageTransparancy = opacity(s.imageTransparency);
    lastOutputPath = folder + ImageFileIo::writtenFileName(photo);

    const QString refused = refusal(photo, folder, type, "Invalid image or no image selected.");
    if (!refused.isEmpty()) return refused;
    try {
        VImage canvas = uprightPhoto(photo);
        const double W = canvas.width();
        const double H = canvas.height();
        KLImageHandling rotation;
        const QImage mark =
            rotation.hRotatePictureBase(ImageFileIo::toQImage(ImageFileIo::toSrgb8(
                                            ImageFileIo::open(s.imagePath, false), true)),
                                        QString::number(myImageWMAngle));
        if (mark.isNull()) {
            klLog() << "watermark image not usable:" << s.imagePath;
            return kFailed;
        }
        // A rectangle as wide as the size value, in the turned watermark's proportions.
        const int tw = int(myImageSize);
        const int th = std::max(1, int(std::lround(myImageSize * mark.height() / mark.width())));
        const VImage rgba = ImageFileIo::fromQImage(mark);
        const VImage scaled =
            s.renderMethod == 1
                ? rgba.resize(double(tw) / rgba.width(),
                              VImage::option()
                                  ->set("vscale", double(th) / rgba.height())
                                  ->set("kernel", VIPS_KERNEL_NEAREST))
                : rgba.thumbnail_image(
                      tw, VImage::option()->set("height", th)->set("size", VIPS_SIZE_FORCE));
        // Exactly the rectangle, whatever rounding the resampler did.
        const VImage fitted =
            scaled.embed(0, 0, tw, th, VImage::option()->set("extend", VIPS_EXTEND_COPY));
        int x = 0;
        int y = 0;
        if (anchor(s.imagePosition, W, H, tw, th, s.imageXOffset, s.imageYOffset, s.imageAngle, &x,
                   &y)) {
            Stamp stamp;
            stamp.coverage = fitted[3].cast(VIPS_FORMAT_FLOAT) / 255.0;
            stamp.picture =
                fitted.extract_band(0, VImage::option()->set("n", 3)).cast(VIPS_FORMAT_FLOAT);
            stamp.left = x;
            stamp.top = int(H) - y - th;
            stamp.opacity = myImageTransparancy;
            stamp.shadow = s.imageShadow;
            stamp.shadowColour = rgbOf(s.imageShadowColor);
            stamp.shadowDx = s.imageShadowXOffset;
            stamp.shadowDy = -s.imageShadowYOffset;
            stamp.shadowSigma = std::max(0, s.imageShadowRadius) / 2.0;
            canvas = stamped(canvas, stamp);
        }
        return written(canvas, lastOutputPath, ImageFileIo::writtenType(type), true);
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "watermark failed:" << photo << s.imagePath << e.what();
        klLog() << QStringLiteral("Failed to write image to %1").arg(lastOutputPath);
        return kFailed;
    }
}
