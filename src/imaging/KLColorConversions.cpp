#include "imaging/KLColorConversions.h"

#include <QFileInfo>
#include <algorithm>
#include <array>
#include <cmath>
#include <vips/vips8>

#include "imaging/ImageFileIo.h"
#include "imaging/PictureData.h"
#include "imaging/VipsRuntime.h"
#include "services/Log.h"

using vips::VError;
using vips::VImage;

namespace {

using Matrix = std::array<double, 9>;  // row-major 3 x 3, applied to (R, G, B) in 0..1

// ---- The formulas of every effect, in one place. Images are 3-band float sRGB in 0..1. ----
namespace formulas {

const Matrix kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};
// Luma weights (ITU-R BT.601), the grey a colour is seen as.
const double kLumaR = 0.299, kLumaG = 0.587, kLumaB = 0.114;
// The classic sepia toning matrix.
const Matrix kSepia = {0.393, 0.769, 0.189, 0.349, 0.686, 0.168, 0.272, 0.534, 0.131};

Matrix product(const Matrix& a, const Matrix& b) {
    Matrix m{};
    for (int r = 0; r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            for (int k = 0; k < 3; ++k) m[r * 3 + c] += a[r * 3 + k] * b[k * 3 + c];
    return m;
}

// Mixes two matrices: (1 - t) a + t b.
Matrix mix(const Matrix& a, const Matrix& b, double t) {
    Matrix m{};
    for (int i = 0; i < 9; ++i) m[i] = (1 - t) * a[i] + t * b[i];
    return m;
}

// Saturation s: 0 is grey, 1 unchanged, above 1 more vivid.
Matrix saturation(double s) {
    const Matrix grey = {kLumaR, kLumaG, kLumaB, kLumaR, kLumaG, kLumaB, kLumaR, kLumaG, kLumaB};
    return mix(grey, kIdentity, s);
}

// Per-channel gains: a colour cast (warm above 1 in red, cool above 1 in blue).
Matrix tint(double r, double g, double b) {
    return {r, 0, 0, 0, g, 0, 0, 0, b};
}

// Hue rotation by `radians` about the grey axis, done in YIQ (luma stays, chroma turns).
Matrix hueRotation(double radians) {
    const Matrix toYiq = {0.299, 0.587, 0.114, 0.596, -0.274, -0.322, 0.211, -0.523, 0.312};
    const double c = std::cos(radians), s = std::sin(radians);
    const Matrix turn = {1, 0, 0, 0, c, -s, 0, s, c};
    // Inverse of toYiq by cofactors.
    const Matrix& m = toYiq;
    const double det = m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
                       m[2] * (m[3] * m[7] - m[4] * m[6]);
    const Matrix fromYiq = {(m[4] * m[8] - m[5] * m[7]) / det, (m[2] * m[7] - m[1] * m[8]) / det,
                            (m[1] * m[5] - m[2] * m[4]) / det, (m[5] * m[6] - m[3] * m[8]) / det,
                            (m[0] * m[8] - m[2] * m[6]) / det, (m[2] * m[3] - m[0] * m[5]) / det,
                            (m[3] * m[7] - m[4] * m[6]) / det, (m[1] * m[6] - m[0] * m[7]) / det,
                            (m[0] * m[4] - m[1] * m[3]) / det};
    return product(fromYiq, product(turn, toYiq));
}

VImage recombined(const VImage& rgb, const Matrix& m) {
    return rgb.recomb(VImage::new_matrix(3, 3, const_cast<double*>(m.data()), 9));
}

// One grey band replicated into three.
VImage greyOf(const VImage& rgb) {
    const VImage l = rgb.recomb(VImage::new_matrixv(3, 1, kLumaR, kLumaG, kLumaB));
    return VImage::bandjoin({l, l, l});
}

// S-shaped tone curve through (0,0), (0.5,0.5), (1,1): strength k in 0..1 deepens shadows and
// lifts highlights (monotone for k <= 1).
VImage contrastCurve(const VImage& v, double k) {
    return v + k * (v * (1.0 - v) * (2.0 * v - 1.0));
}

// Raises the black point and lowers the white point: the washed-out print look.
VImage lift(const VImage& v, double black, double white) {
    return black + (white - black) * v;
}

// sRGB transfer curve to linear light and back.
VImage toLinear(const VImage& v) {
    return (v <= 0.04045).ifthenelse(v / 12.92, ((v + 0.055) / 1.055).pow(2.4));
}
VImage fromLinear(const VImage& l) {
    const VImage positive = (l < 0.0).ifthenelse(0.0, l);
    return (positive <= 0.0031308)
        .ifthenelse(positive * 12.92, 1.055 * positive.pow(1.0 / 2.4) - 0.055);
}

// Noir: grey with a hard, deep contrast.
VImage noir(const VImage& v) {
    return contrastCurve(contrastCurve(greyOf(v), 0.9), 0.4);
}
// Mono: grey with the tones left soft.
VImage mono(const VImage& v) {
    return contrastCurve(greyOf(v), 0.15);
}
// Sepia tone: the original mixed with its sepia toning by `intensity`.
VImage sepia(const VImage& v, double intensity) {
    return recombined(v, mix(kIdentity, kSepia, intensity));
}
// Chrome: vivid colours and a crisp contrast.
VImage chrome(const VImage& v) {
    return contrastCurve(recombined(v, saturation(1.3)), 0.35);
}
// Invert: every channel turned into its complement.
VImage invert(const VImage& v) {
    return 1.0 - v;
}
// Process: a cool, cross-processed cast with a little extra contrast.
VImage process(const VImage& v) {
    return contrastCurve(recombined(v, product(tint(0.92, 1.02, 1.1), saturation(1.1))), 0.3);
}
// Instant: a warm, slightly faded instant print.
VImage instant(const VImage& v) {
    return lift(recombined(v, product(tint(1.08, 1.02, 0.88), saturation(0.85))), 0.06, 0.97);
}
// Transfer: an old transfer print, warm and soft with raised blacks.
VImage transfer(const VImage& v) {
    return lift(contrastCurve(recombined(v, product(tint(1.12, 1.03, 0.8), saturation(0.8))), 0.2),
                0.05, 0.96);
}
// Fade: muted colours over a lifted black point.
VImage fade(const VImage& v) {
    return lift(recombined(v, saturation(0.55)), 0.12, 0.94);
}
// Colour controls with saturation and contrast 1: the brightness is added to every channel.
VImage brightness(const VImage& v, double amount) {
    return v + amount;
}
// Exposure: linear light multiplied by 2^EV.
VImage exposure(const VImage& v, double ev) {
    return fromLinear(toLinear(v) * std::exp2(std::clamp(ev, -60.0, 60.0)));
}
// Gamma: every channel raised to the power.
VImage gamma(const VImage& v, double power) {
    return v.pow(power);
}
// Hue: the colours turned round the grey axis by the angle in radians.
VImage hue(const VImage& v, double radians) {
    return recombined(v, hueRotation(radians));
}
// Pixellate: square cells of `scale` pixels whose grid passes through (cx, cy); each cell takes
// the mean of its pixels.
VImage pixellate(const VImage& v, double scale, int cx, int cy) {
    const int s = int(std::clamp<long>(std::lround(scale), 1, std::max(v.width(), v.height())));
    if (s == 1) return v;
    const int left = (s - cx % s) % s;  // padding that puts a cell edge at x = 0
    const int top = (s - cy % s) % s;
    const int w = (v.width() + left + s - 1) / s * s;
    const int h = (v.height() + top + s - 1) / s * s;
    const VImage padded =
        v.embed(left, top, w, h, VImage::option()->set("extend", VIPS_EXTEND_COPY));
    return padded.shrink(s, s).zoom(s, s).extract_area(left, top, v.width(), v.height());
}

}  // namespace formulas

const QString kOk = QStringLiteral("OK");

}  // namespace

struct KLColorConversions::Filter {
    QString input;                                 // the photo the filter was given
    std::function<VImage(const VImage&)> formula;  // on 3-band float sRGB in 0..1
};

KLColorConversions::KLColorConversions() = default;
KLColorConversions::~KLColorConversions() = default;

bool KLColorConversions::writesFileNamed(const QString& fileName) {
    const QString ext = QFileInfo(fileName).suffix();
    static const QStringList written = {"tif", "TIF",  "tiff", "TIFF", "jpg",
                                        "JPG", "jpeg", "JPEG", "png"};
    return written.contains(ext);  // compared exactly: "PNG" or "Jpg" are not written
}

QString KLColorConversions::convertColorTo(const QString& path, const QString& folder,
                                           const QString& code) {
    using namespace formulas;
    static const std::vector<std::function<VImage(const VImage&)>> effects = {
        noir,
        mono,
        [](const VImage& v) { return sepia(v, 0.3); },
        [](const VImage& v) { return sepia(v, 0.6); },
        [](const VImage& v) { return sepia(v, 1.0); },
        chrome,
        invert,
        process,
        instant,
        transfer,
        fade,
        invert,  // "11" repeats "6": the list has always had both
    };
    bool known = false;
    const int index = code.toInt(&known);
    if (known && index >= 0 && index < int(effects.size()) && code == QString::number(index))
        filter_ = std::make_shared<Filter>(Filter{path, effects[size_t(index)]});
    // Kept on purpose: an unknown code runs the previous filter again, on its own old photo.
    return run(path, folder, filter_);
}

QString KLColorConversions::enhanceColorTo(const QString& path, const QString& folder,
                                           const QString& code, float value) {
    using namespace formulas;
    const double v = value;
    std::function<VImage(const VImage&)> formula;
    if (code == u"0")
        formula = [v](const VImage& i) { return brightness(i, v); };
    else if (code == u"1")
        formula = [v](const VImage& i) { return exposure(i, v); };
    else if (code == u"2")
        formula = [v](const VImage& i) { return gamma(i, v); };
    else if (code == u"3")
        formula = [v](const VImage& i) { return hue(i, v); };
    else if (code == u"4" || code == u"5" || code == u"6")
        formula = [v](const VImage& i) { return pixellate(i, v, 150, 150); };
    else if (code == u"7")
        formula = process;
    else if (code == u"8")
        formula = instant;
    else if (code == u"9")
        formula = transfer;
    else if (code == u"10")
        formula = fade;
    if (formula) filter_ = std::make_shared<Filter>(Filter{path, formula});
    return run(path, folder, filter_);
}

QString KLColorConversions::run(const QString& path, const QString& folder,
                                std::shared_ptr<Filter> filter) {
    lastWritten = false;
    lastOutputPath = folder + QFileInfo(path).fileName();
    if (!filter || !writesFileNamed(lastOutputPath)) return kOk;
    const QString ext = QFileInfo(lastOutputPath).suffix().toLower();
    const QString type = ext.startsWith(u't')   ? QStringLiteral("public.tiff")
                         : ext.startsWith(u'j') ? QStringLiteral("public.jpeg")
                                                : QStringLiteral("public.png");
    int width = 0;
    int height = 0;
    if (!ImageFileIo::pixelSize(filter->input, &width, &height)) return kOk;
    try {
        // Decoded once, upright, 8-bit sRGB, with its metadata.
        const Picture photo = PhotoDecoder::decode(filter->input, 1.0);
        if (photo.isNull()) return kOk;
        const VImage source = photo.data().pixels;
        const bool alpha = source.bands() == 4;
        const VImage colour =
            alpha ? source.extract_band(0, VImage::option()->set("n", 3)) : source;
        const VImage result = filter->formula(colour.cast(VIPS_FORMAT_FLOAT) / 255.0) * 255.0;
        const VImage clamped =
            (result > 255.0).ifthenelse(255.0, (result < 0.0).ifthenelse(0.0, result));
        VImage out = clamped.round(VIPS_OPERATION_ROUND_RINT).cast(VIPS_FORMAT_UCHAR);
        if (alpha) out = out.bandjoin(source[3]);  // alpha passes through untouched
        out = out.copy(VImage::option()->set("interpretation", VIPS_INTERPRETATION_sRGB));
        // "Best quality" JPEG; the other types take no options.
        lastWritten = ImageFileIo::save(out, lastOutputPath, type, true, 100) == u"OK";
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "colour effect failed:" << filter->input << e.what();
    }
    return kOk;
}

QString KLColorConversions::hApplyGaussianBlur(const QString& path, float radius) {
    // Kept on purpose: the blurred image is made and dropped, so no file changes. The pipeline is
    // built (which checks the photo) but never computed, as nobody looks at its pixels.
    try {
        const VImage photo = ImageFileIo::open(path, true);
        if (radius > 0) (void)photo.gaussblur(double(radius));
    } catch (const VError& e) {
        vips_error_clear();  // the message is in e
        klLog() << "blur failed:" << path << e.what();
    }
    return kOk;
}

QString KLColorConversions::hSetDefaultValue(int index, const QString& currentText) {
    switch (index) {
        case 0:
            return QStringLiteral("0.0");
        case 1:
            return QStringLiteral("0.5");
        case 2:
            return QStringLiteral("0.75");
        case 3:
            return QStringLiteral("0.0");
        default:
            return currentText;
    }
}
