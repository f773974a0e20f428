#include <cmath>

#include "ImagingFixtures.h"

using fixtures::Pixel;

// A colourful 320 x 320 image: red grows with x, green with y, blue fixed; alpha (x / 2) if asked.
static vips::VImage gradient(bool alpha = false) {
    const vips::VImage xy = vips::VImage::xyz(320, 320);
    const vips::VImage rgb = vips::VImage::bandjoin({xy[0] * 0.75, xy[1] * 0.75, xy[0] * 0 + 90});
    return fixtures::srgb(alpha ? rgb.bandjoin(xy[0] * 0.5) : rgb);
}

// Runs effect `code` (or enhancement `code` with `value`) on `image` in a folder of its own and
// returns the copy.
static vips::VImage applied(const vips::VImage& image, const QString& code, float value = NAN) {
    static int calls = 0;
    const QString dir = testsupport::freshDir(QString("fx-%1").arg(++calls));
    fixtures::save(image, dir + "a.png");
    QDir().mkpath(dir + "out");
    KLColorConversions colours;
    std::isnan(value) ? colours.convertColorTo(dir + "a.png", dir + "out/", code)
                      : colours.enhanceColorTo(dir + "a.png", dir + "out/", code, value);
    EXPECT_TRUE(colours.lastWritten) << code;
    return fixtures::load(dir + "out/a.png");
}

// Grey effects give equal channels; sepia-like ones warm a grey (R > G > B, more so code by code);
// inverting twice is the identity and keeps the alpha.
TEST(Effects, GreyEqualChannelsSepiaWarmsGreyInvertTwiceIsTheIdentity) {
    for (const QString code : {"0", "1"}) {
        const vips::VImage grey = applied(gradient(), code);
        EXPECT_EQ((grey[0] - grey[1]).abs().max() + (grey[1] - grey[2]).abs().max(), 0) << code;
    }
    double spread = 0;
    for (const QString code : {"2", "3", "4"}) {
        const Pixel px = applied(fixtures::solid(32, 32, {128, 128, 128}), code).getpoint(16, 16);
        EXPECT_TRUE(px[0] > px[1] && px[1] > px[2]) << code;
        EXPECT_GT(px[0] - px[2], spread) << code;
        spread = px[0] - px[2];
    }
    const vips::VImage once = applied(gradient(true), "6");
    EXPECT_EQ(once.getpoint(100, 200), (Pixel{255 - 75, 255 - 150, 255 - 90, 50}));
    EXPECT_EQ((applied(once, "11") - gradient(true)).abs().max(), 0);
}

// Exposure of one stop doubles linear light. Pixellate cells of 20 start at the centre, 150:
// [150, 170) and [10, 30) are cells, [140, 160) is not. A cell holds the mean of its pixels: red
// 0.75 x (150..169) averages 119.6.
TEST(Enhance, ExposureDoublesLinearLightPixellateCellsAlignOnTheCentre) {
    const Pixel in{60, 90, 120};
    const Pixel out = applied(fixtures::solid(16, 16, in), "1", 1.0f).getpoint(8, 8);
    auto linear = [](double v) {
        v /= 255.0;
        return v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4);
    };
    for (int band = 0; band < 3; ++band)
        EXPECT_NEAR(linear(out[band]) / linear(in[band]), 2.0, 0.04) << band;
    const vips::VImage cells = applied(gradient(), "6", 20.0f);
    auto constant = [&](int x, int y) {
        const vips::VImage cell = cells.extract_area(x, y, 20, 20);
        return (cell - cell.getpoint(0, 0)).abs().max() == 0;
    };
    EXPECT_TRUE(constant(150, 150) && constant(10, 10));
    EXPECT_FALSE(constant(140, 150) || constant(150, 140));
    EXPECT_NEAR(cells.getpoint(155, 155)[0], 119.6, 1);
}

// Kept on purpose: an unknown code runs the object's previous filter on its old photo, for
// effects and enhancements alike; a fresh object has none. The blur writes nothing.
TEST(Effects, UnknownCodeRunsThePreviousFilterOnItsOldPhotoBlurWritesNothing) {
    const QString dir = testsupport::freshDir("fx-reuse"),
                  out = testsupport::freshDir("fx-reuse/out");
    fixtures::save(fixtures::solid(8, 8, {10, 20, 30}), dir + "a.png");
    fixtures::save(fixtures::solid(8, 8, {200, 200, 200}), dir + "b.png");
    KLColorConversions colours;
    colours.convertColorTo(dir + "a.png", out, "6");
    for (const bool enhance : {false, true}) {
        QFile::remove(out + "b.png");
        enhance ? colours.enhanceColorTo(dir + "b.png", out, "99", 1.0f)
                : colours.convertColorTo(dir + "b.png", out, "12");
        EXPECT_EQ(fixtures::pixel(out + "b.png", 0, 0), (Pixel{245, 235, 225}));  // a, inverted
    }
    const QMap<QString, QByteArray> before = testsupport::contentsUnder(dir);
    for (const QString code : {"12", "-1", "", "x", "06"}) {
        EXPECT_EQ(KLColorConversions().convertColorTo(dir + "a.png", out, code), "OK");
        EXPECT_EQ(KLColorConversions().enhanceColorTo(dir + "a.png", out, code, 1), "OK");
    }
    EXPECT_EQ(colours.hApplyGaussianBlur(dir + "a.png", 5.0f), "OK");
    EXPECT_EQ(testsupport::contentsUnder(dir), before);
}

// Copies are written only for the exact extensions, in their type; JPEGs at best quality.
TEST(Effects, CopiesAreWrittenByTheExactExtension) {
    const QString dir = testsupport::freshDir("fx-ext"), out = testsupport::freshDir("fx-ext/out");
    const std::pair<QString, std::string> cases[] = {
        // name, reader ("" when not written)
        {"p1.JPG", "jpegload"}, {"p2.jpeg", "jpegload"}, {"p3.JPEG", "jpegload"},
        {"p4.jpg", "jpegload"}, {"p5.png", "pngload"},   {"p6.PNG", ""},
        {"p7.tif", "tiffload"}, {"p8.TIFF", "tiffload"}, {"p9.Tif", ""},
        {"p10.Jpg", ""},        {"p11.gif", ""}};
    for (const auto& [name, loader] : cases) {
        fixtures::save(fixtures::solid(30, 20, {128, 128, 128}), dir + name);
        EXPECT_EQ(KLColorConversions().convertColorTo(dir + name, out, "3"), "OK");
        EXPECT_EQ(QFile::exists(out + name) ? fixtures::loader(out + name) : "", loader) << name;
        EXPECT_TRUE(loader != "jpegload" ||
                    testsupport::exiftool(out + name, "JPEGQualityEstimate").toInt() >= 98);
    }
}
